#include "console.h"

#include "terminal.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <cstdio>

#ifdef Q_OS_WIN
#include <fcntl.h>
#include <io.h>
#include <qt_windows.h>
#endif

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

bool isPlain(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    case QChar::Other_Format: // two of them shape words
        return character == QChar(0x200c) || character == QChar(0x200d);
    default:
        return true;
    }
}

} // namespace

#ifdef Q_OS_WIN
// Text mode would put a carriage return before each line feed.
void Console::setUpStreams()
{
    _setmode(_fileno(stdout), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
    const HANDLE screen = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(screen, &mode))
        SetConsoleMode(screen, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}
#else
void Console::setUpStreams() {}
#endif

bool Console::print(const QString &text) { return write(text, stdout); }

void Console::show(const QString &text) { write(text, stderr); }

// The line break that a user types ends the line; elsewhere nobody types.
void Console::ask(const QString &question)
{
    show(question + (Terminal::is(stdin) ? QStringLiteral(" ") : QStringLiteral("\n")));
}

void Console::complain(const QString &problem)
{
    show(QStringLiteral("vospeak: %1\n").arg(onOneLine(problem)));
}

QString Console::onOneLine(QString text)
{
    for (QChar &character : text) {
        if (!isPlain(character))
            character = QLatin1Char(' ');
    }
    return text.trimmed();
}

void Console::setUpLog(bool verbose)
{
    if (!verbose)
        defaultHandler = qInstallMessageHandler(passOnWarnings);
}

void Console::endLog()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
}
