#include "terminal/console.h"

#include "terminal/terminal.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QString>
#include <QVector>
#include <QtGlobal>

#include <algorithm>
#include <cstdio>

#ifdef Q_OS_WIN
#include <fcntl.h>
#include <io.h>
#include <qt_windows.h>
#else
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <unistd.h>
#endif

namespace {

QtMessageHandler defaultHandler = nullptr;
bool showsAll = false;
bool readerIsGone = false;

void onMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (showsAll || (type != QtDebugMsg && type != QtInfoMsg))
        defaultHandler(type, context, message);
}

#ifdef Q_OS_WIN

bool write(const QByteArray &bytes, std::FILE *stream)
{
    const size_t size = static_cast<size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
}

#else

// Another program that has the same pipe may have made it non-blocking. When such a pipe is full,
// this waits for room; stdio would drop the rest.
bool write(const QByteArray &bytes, std::FILE *stream)
{
    const int descriptor = fileno(stream);
    const char *rest = bytes.cbegin();
    while (rest != bytes.cend()) {
        const ssize_t written = ::write(descriptor, rest, size_t(bytes.cend() - rest));
        if (written >= 0) {
            rest += written;
        } else if (errno == EAGAIN) {
            pollfd room = {descriptor, POLLOUT, 0};
            poll(&room, 1, -1);
        } else if (errno != EINTR) {
            readerIsGone |= errno == EPIPE && stream == stdout;
            return false;
        }
    }
    return true;
}

#endif

QString escaped(uint character)
{
    if (QChar::requiresSurrogates(character))
        return escaped(QChar::highSurrogate(character)) + escaped(QChar::lowSurrogate(character));
    return QStringLiteral("\\u%1").arg(character, 4, 16, QLatin1Char('0'));
}

} // namespace

#ifdef Q_OS_WIN
// Standard output is made binary: text mode would put a carriage return before each line feed.
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
// The signal would end the program before it has tidied up; sockets of Qt ignore it in the end,
// too.
void Console::setUpStreams() { std::signal(SIGPIPE, SIG_IGN); }
#endif

bool Console::print(const QString &text) { return write(text.toUtf8(), stdout); }

bool Console::printBytes(const QByteArray &bytes) { return write(bytes, stdout); }

bool Console::hasLostReader() { return readerIsGone; }

// JSON asks for escapes only below the blank.
QString Console::line(const QJsonObject &document)
{
    QString line;
    const QString json = QString::fromUtf8(QJsonDocument(document).toJson(QJsonDocument::Compact));
    const QVector<uint> characters = json.toUcs4();
    for (const uint character : characters) {
        if (isPlain(character))
            line += QString::fromUcs4(&character, 1);
        else
            line += escaped(character);
    }
    return line + QLatin1Char('\n');
}

QString Console::printingFailed()
{
    return QStringLiteral("the result could not be written to standard output");
}

void Console::show(const QString &text) { write(text.toUtf8(), stderr); }

// At a terminal the user's own line break ends the line; where nobody types, the question ends it.
void Console::ask(const QString &question)
{
    show(question + (Terminal::is(stdin) ? QStringLiteral(" ") : QStringLiteral("\n")));
}

void Console::complain(const QString &problem)
{
    show(QStringLiteral("vospeak: %1\n").arg(onOneLine(problem)));
}

bool Console::isPlain(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    case QChar::Other_Format: // two of them shape words
        return character == 0x200c || character == 0x200d;
    default:
        return true;
    }
}

QString Console::onOneLine(const QString &text)
{
    QVector<uint> characters = text.toUcs4();
    std::replace_if(
        characters.begin(), characters.end(), [](uint character) { return !isPlain(character); },
        uint(' '));
    return QString::fromUcs4(characters.constData(), characters.size()).trimmed();
}

void Console::setUpLog(bool verbose)
{
    showsAll = verbose;
    if (verbose) // QT_LOGGING_RULES may have turned the debug lines off
        QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, true);
    defaultHandler = qInstallMessageHandler(onMessage);
}

void Console::endLog()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
}
