#include "console.h"

#include "terminal.h"

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

bool write(const QString &text, std::FILE *stream)
{
    const QByteArray bytes = text.toUtf8();
    const size_t size = static_cast<size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
}

} // namespace

bool Console::print(const QString &text) { return write(text, stdout); }

void Console::show(const QString &text) { write(text, stderr); }

// The line break that a user types ends the line; elsewhere nobody types.
void Console::ask(const QString &question)
{
    show(question + (Terminal::is(stdin) ? QStringLiteral(" ") : QStringLiteral("\n")));
}

void Console::complain(const QString &problem)
{
    const QByteArray line = onOneLine(problem).toLocal8Bit();
    std::fprintf(stderr, "vospeak: %s\n", line.constData());
}

QString Console::onOneLine(QString text)
{
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control)
            character = QLatin1Char(' ');
    }
    return text.trimmed();
}

void Console::setUpLog(bool verbose)
{
    if (!verbose)
        defaultHandler = qInstallMessageHandler(passOnWarnings);
}
