#include "commandline/authority.h"

#include "commandline/options.h"
#include "hostkit/inputfile.h"
#include "hostkit/sessionfile.h"
#include "hostkit/wholefile.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr qint64 longest = 65536; // bytes; the file has a line or two

// The contents of vospeak.conf, in UTF-8.
QByteArray contents()
{
    QFile file(Authority::settings());
    return QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly) ? file.read(longest)
                                                                      : QByteArray();
}

// What the last line ca=FILE names. A path that is not absolute begins at the folder of the file:
// it has to mean the same wherever the program is started.
QString named()
{
    QString path;
    const QByteArrayList lines = contents().split('\n');
    for (const QByteArray &line : lines) {
        const int sign = line.indexOf('=');
        if (sign > 0 && line.left(sign).trimmed() == "ca")
            path = QString::fromUtf8(line.mid(sign + 1)).trimmed();
    }
    return path.isEmpty() ? path : QFileInfo(Authority::settings()).dir().filePath(path);
}

QString namedBefore(const Options &options)
{
    return options.authority.isEmpty() ? qEnvironmentVariable("VOSPEAK_CA") : options.authority;
}

} // namespace

QString Authority::of(const Options &options)
{
    const QString path = namedBefore(options);
    return path.isEmpty() ? named() : path;
}

QString Authority::problem(const Options &options)
{
    const QFileInfo file(settings());
    const bool isEmpty = !file.exists() || (file.isFile() && file.size() == 0);
    return isEmpty || !namedBefore(options).isEmpty() ? QString()
                                                      : InputFile::problem(file.filePath());
}

bool Authority::remember(const QString &path)
{
    QByteArray lines = contents();
    if (!lines.isEmpty() && !lines.endsWith('\n'))
        lines += '\n';
    return SessionFile::problem().isEmpty() // which makes the folder
           && WholeFile::write(settings(), lines + "ca=" + path.toUtf8() + '\n').isEmpty();
}

QString Authority::settings()
{
    return QFileInfo(SessionFile::path()).dir().filePath(QStringLiteral("vospeak.conf"));
}
