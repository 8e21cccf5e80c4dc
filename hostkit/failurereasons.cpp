#include "hostkit/failurereasons.h"

#include "hostkit/hostkit.h"
#include "hostkit/networkreason.h"
#include "hostkit/serveraddress.h"
#include "http/ofthisthread.h"

#include <QLoggingCategory>
#include <QMutex>
#include <QRegularExpression>

#include <atomic>
#include <utility>

namespace {

// The state of the handler changes as the first object comes and the last one goes.
QMutex &stateMutex()
{
    static QMutex mutex;
    return mutex;
}
int objects = 0;
std::atomic<QtMessageHandler> hostsHandler{nullptr};
std::atomic<QtMessageHandler> earlierHandler{nullptr};
std::atomic<bool> showsDebug{true}; // what the host's rules say of the category "default"

/// What a thread has heard of its requests.
struct Heard
{
    Reason lastReason;
    QString fetchedAddress;
};

thread_local bool isHandling = false;
thread_local bool isPictureSafe = false;

// What the debug stream put in quotation marks, as it was before.
QString unquoted(const QString &quoted)
{
    static const QRegularExpression escape(QStringLiteral(R"(\\(?:u([0-9a-f]{4})|(.)))"),
                                           QRegularExpression::CaseInsensitiveOption);
    QString text;
    int end = 0;
    for (auto matches = escape.globalMatch(quoted); matches.hasNext();) {
        const auto match = matches.next();
        text += quoted.midRef(end, match.capturedStart() - end);
        const QString letter = match.captured(2);
        if (letter.isEmpty())
            text += QChar(match.captured(1).toUShort(nullptr, 16));
        else // a control character becomes a blank: the reason is one line
            text += letter == QLatin1String("\"") || letter == QLatin1String("\\")
                        ? letter
                        : QStringLiteral(" ");
        end = match.capturedEnd();
    }
    return text + quoted.mid(end);
}

Reason refusal(int code, const QString &message)
{
    QString text = HostKit::tr("the service refused");
    if (!message.isEmpty())
        text = HostKit::tr("the service refused: %1").arg(message);
    else if (code != 0)
        text = HostKit::tr("the service refused with code %1").arg(code);
    return {Reason::Kind::Refused, text, code};
}

// [error] VoNetworker::slotTTSFail "Connection refused"
// [error] VoNetworker::DownloadLongTTSRet ConnectionRefusedError
void readFailure(const QString &line)
{
    static const QRegularExpression failure(
        QStringLiteral(R"x(^\[error\] VoNetworker::(slot)?\w+ (?:"(.*)"|(\w+))\s*$)x"),
        QRegularExpression::DotMatchesEverythingOption);
    const auto match = failure.match(line);
    if (!match.hasMatch())
        return;
    auto &heard = ofThisThread<Heard>();
    heard.lastReason =
        match.capturedLength(1) > 0
            ? NetworkReason::ofText(unquoted(match.captured(2)), HostKit::serviceAddress())
            : NetworkReason::ofName(match.captured(3), heard.fetchedAddress);
}

// [error]slotTTSSuc failed:retCode= 401 ,msg= "the access token is not valid"
// [error]slotShortSTTSuc failed: 401 , "the access token is not valid"
// [error]get oss sign failed: "no"
void readRefusal(const QString &line)
{
    static const QRegularExpression refused(
        QStringLiteral(
            R"x(^\[error\][\w ]+ failed:(?:retCode=)?(?: (-?\d+) ,(?:msg=)?)? "(.*)"\s*$)x"),
        QRegularExpression::DotMatchesEverythingOption);
    if (const auto match = refused.match(line); match.hasMatch())
        ofThisThread<Heard>().lastReason =
            refusal(match.captured(1).toInt(), unquoted(match.captured(2)));
}

// "[error][slotTTSSuc]json parse error:illegal value"
void readParseError(const QString &line)
{
    static const QRegularExpression unreadable(
        QStringLiteral(R"(^"\[error\]\[slot\w+\]json parse)"));
    if (unreadable.match(line).hasMatch())
        ofThisThread<Heard>().lastReason = {Reason::Kind::BadAnswer,
                                            HostKit::tr("the service sent no usable answer")};
}

// VoNetworker::DownloadLoginQrCode qrUrl= "https://..." ,saveDir= "/tmp/..."
void readFetch(const QString &line)
{
    static const QRegularExpression fetch(QStringLiteral(
        R"x(^VoNetworker::Download(\w+) (?:qrUrl|fileUrl|url)= "(.*)" ,save\w+= )x"));
    const auto match = fetch.match(line);
    if (!match.hasMatch())
        return;
    const QString address = match.captured(2);
    ofThisThread<Heard>().fetchedAddress = address;
    if (match.captured(1) == QLatin1String("LoginQrCode"))
        isPictureSafe = ServerAddress::isUsable(address);
}

void readLine(const QString &line)
{
    if (line.startsWith(QLatin1String("VoNetworker::Download")))
        readFetch(line);
    else if (line.startsWith(QLatin1String("\"[error]")))
        readParseError(line);
    else if (line.startsWith(QLatin1String("[error] ")))
        readFailure(line);
    else if (line.startsWith(QLatin1String("[error]")))
        readRefusal(line);
}

bool isLibrarys(QtMsgType type, const QMessageLogContext &context)
{
    return type == QtDebugMsg && (!context.category || qstrcmp(context.category, "default") == 0);
}

// A host may have set a handler of its own later, which goes on to this one, and which another
// object of the class has found in front of it: then the message comes here twice.
void onMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (isHandling) {
        if (const QtMessageHandler handler = earlierHandler)
            handler(type, context, message);
        return;
    }
    if (isLibrarys(type, context)) {
        readLine(message);
        if (!showsDebug)
            return;
    }
    isHandling = true;
    if (const QtMessageHandler handler = hostsHandler)
        handler(type, context, message);
    isHandling = false;
}

} // namespace

// The library's category may be silenced; then it is made to speak, and the host hears nothing.
FailureReasons::FailureReasons()
{
    const QMutexLocker lock(&stateMutex());
    if (objects++ > 0)
        return;
    showsDebug = QLoggingCategory::defaultCategory()->isDebugEnabled();
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, true);
    const QtMessageHandler previous = qInstallMessageHandler(onMessage);
    if (previous != onMessage)
        earlierHandler = hostsHandler.exchange(previous);
}

// A handler that was set meanwhile stays; it may know this one, which goes on to the host's.
FailureReasons::~FailureReasons()
{
    const QMutexLocker lock(&stateMutex());
    if (--objects > 0)
        return;
    QLoggingCategory::defaultCategory()->setEnabled(QtDebugMsg, showsDebug);
    const QtMessageHandler current = qInstallMessageHandler(hostsHandler);
    if (current != onMessage)
        qInstallMessageHandler(current);
}

Reason FailureReasons::take() { return std::exchange(ofThisThread<Heard>().lastReason, {}); }

bool FailureReasons::isPictureTrusted() { return isPictureSafe; }
