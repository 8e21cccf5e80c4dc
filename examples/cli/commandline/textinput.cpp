#include "commandline/textinput.h"

#include "hostkit/limits.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QTextCodec>

#include <cstdio>

namespace {

// Bytes; a text that is longer has too many characters, whatever they are, and is refused for that.
constexpr qint64 longest = 4 * qint64(Limits::longText) + 5;

bool open(QFile &file, const QString &path)
{
    if (path == QLatin1String("-"))
        return file.open(stdin, QIODevice::ReadOnly);
    file.setFileName(path);
    return file.open(QIODevice::ReadOnly);
}

} // namespace

QString TextInput::read(const QString &path, QString &text)
{
    QFile file;
    if (QFileInfo(path).isDir())
        return QStringLiteral("\"%1\" is a folder").arg(path);
    if (!open(file, path))
        return QStringLiteral("cannot read \"%1\": %2").arg(path, file.errorString());
    QByteArray bytes;
    for (QByteArray more = file.read(longest); !more.isEmpty() && bytes.size() < longest;
         more = file.read(longest - bytes.size()))
        bytes += more;
    QTextCodec::ConverterState state;
    text = QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars > 0 || (state.remainingChars > 0 && bytes.size() < longest))
        return QStringLiteral("the text is not in UTF-8");
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    return {};
}
