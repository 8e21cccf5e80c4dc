#include "hostkit/failurereason.h"

#include "hostkit/proxies.h"
#include "hostkit/serveraddress.h"

#include <QRegularExpression>
#include <QString>

#include <algorithm>
#include <iterator>

namespace {

constexpr char proxyRefuses[] = "Proxy requires authentication";
constexpr char proxyRefusesName[] = "ProxyAuthenticationRequiredError";
constexpr char unknownToProxy[] =
    "the proxy wants a user and a password that it knows (see --proxy)";

// Qt's texts are in English, since no translation is loaded. Every failure of TLS has the same one.
constexpr struct
{
    const char *text;  // Qt's text of an error; null: it is for users already
    const char *name;  // the enumerator of the error, which the log has of a file
    const char *words; // for the user
} reasons[] = {
    {"SSL handshake failed", "SslHandshakeFailedError",
     "TLS: not trusted, or not spoken (--ca adds an authority to trust)"},
    {proxyRefuses, proxyRefusesName, unknownToProxy},
    {nullptr, "ConnectionRefusedError", "Connection refused"},
    {nullptr, "HostNotFoundError", "the host was not found"},
    {nullptr, "RemoteHostClosedError", "Connection closed"},
    {nullptr, "TimeoutError", "it took too long"},
};

// Texts of errors contain one of these when the server did answer.
constexpr const char *answers[] = {"server replied:", "Host requires authentication"};

QString &last()
{
    static QString reason;
    return reason;
}

bool &pictureTrust()
{
    static bool isTrusted = false;
    return isTrusted;
}

// A server may answer with the status of a proxy although no proxy is on the way.
bool isProxyMimicked(const QString &error)
{
    return (error == QLatin1String(proxyRefuses) || error == QLatin1String(proxyRefusesName))
           && !Proxies::areUsed();
}

QString textIn(const QString &text)
{
    const bool isAnswer =
        isProxyMimicked(text)
        || std::any_of(std::begin(answers), std::end(answers),
                       [&text](const char *part) { return text.contains(QLatin1String(part)); });
    return isAnswer ? QString() : FailureReason::inWords(text);
}

QString named(const QString &name)
{
    for (const auto &reason : reasons) {
        if (name == QLatin1String(reason.name) && !isProxyMimicked(name))
            return QLatin1String(reason.words);
    }
    return {};
}

} // namespace

// The library logs the error's text, in quotation marks, of an operation, and the error's name of a
// file that it fetches.
void FailureReason::readLog(const QString &message)
{
    static const QRegularExpression failure(
        QStringLiteral(R"x(^\[error\] VoNetworker::\w+ (?:"(.+)"|(\w+))\s*$)x"));
    static const QRegularExpression picture(
        QStringLiteral(R"x(^VoNetworker::DownloadLoginQrCode qrUrl= "(.*)" ,saveDir= )x"));
    if (const auto match = picture.match(message); match.hasMatch())
        pictureTrust() = ServerAddress::isUsable(match.captured(1));
    if (const auto match = failure.match(message); match.hasMatch())
        last() = match.capturedLength(1) > 0 ? textIn(match.captured(1)) : named(match.captured(2));
}

QString FailureReason::orElse(const QString &otherwise)
{
    return last().isEmpty() ? otherwise
                            : QStringLiteral("the service could not be reached: %1").arg(last());
}

bool FailureReason::isPictureTrusted() { return pictureTrust(); }

QString FailureReason::inWords(const QString &errorText)
{
    if (isProxyMimicked(errorText))
        return QStringLiteral("the server wants a user and a password for a proxy");
    for (const auto &reason : reasons) {
        if (reason.text && errorText == QLatin1String(reason.text))
            return QLatin1String(reason.words);
    }
    return errorText;
}

QString FailureReason::proxyWantsUser() { return QLatin1String(unknownToProxy); }
