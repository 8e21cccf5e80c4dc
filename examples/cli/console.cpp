#include "console.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <cstdio>

namespace {

QtMessageHandler defaultHandler = nullptr;

void passOnWarnings(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        defaultHandler(type, context, message);
}

// A line stays one line whatever the names in it consist of.
QString onOneLine(QString text)
{
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control)
            character = QLatin1Char(' ');
    }
    return text.trimmed();
}

} // namespace

bool Console::print(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    const size_t size = static_cast<size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
}

void Console::complain(const QString &problem)
{
    const QByteArray line = onOneLine(problem).toLocal8Bit();
    std::fprintf(stderr, "vospeak: %s\n", line.constData());
}

void Console::setUpLog(bool verbose)
{
    if (!verbose)
        defaultHandler = qInstallMessageHandler(passOnWarnings);
}
