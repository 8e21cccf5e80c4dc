#include "hostkit/networkreason.h"

#include "hostkit/hostkit.h"
#include "hostkit/proxies.h"

#include <QCoreApplication>
#include <QMetaEnum>
#include <QNetworkReply>
#include <QUrl>

namespace {

using Kind = Reason::Kind;

QString translated(const char *text) { return QCoreApplication::translate("NetworkReason", text); }

// Qt's texts are in English, since no translation of Qt's own is loaded. Every failure of TLS has
// the same one.
constexpr struct
{
    const char *text; // Qt's text, or its end
    const char *name; // the enumerator
    Kind kind;
    const char *words;
} errors[] = {
    {"SSL handshake failed", "SslHandshakeFailedError", Kind::Tls,
     QT_TRANSLATE_NOOP("NetworkReason",
                       "the authority of the server is not trusted, or it does not speak TLS")},
    {"Connection refused", "ConnectionRefusedError", Kind::Unreachable,
     QT_TRANSLATE_NOOP("NetworkReason", "connection refused")},
    {" not found", "HostNotFoundError", Kind::Unreachable,
     QT_TRANSLATE_NOOP("NetworkReason", "the host was not found")},
    {"Connection closed", "RemoteHostClosedError", Kind::Network,
     QT_TRANSLATE_NOOP("NetworkReason", "the connection was closed")},
    {"timed out", "TimeoutError", Kind::Unreachable,
     QT_TRANSLATE_NOOP("NetworkReason", "it took too long")},
};

constexpr char proxyRefuses[] = "Proxy requires authentication";
constexpr char proxyRefusesName[] = "ProxyAuthenticationRequiredError";

// A server may answer with the status of a proxy although no proxy is on the way.
Reason proxyRefusal()
{
    if (Proxies::areUsed())
        return NetworkReason::proxyWantsUser();
    return {Kind::Refused,
            translated(QT_TRANSLATE_NOOP("NetworkReason",
                                         "the server wants a user and a password for a proxy"))};
}

// The words, behind the server that did not answer if it is named.
Reason notAnswered(Kind kind, const QString &words, const QString &address)
{
    const QString origin = QUrl(address, QUrl::TolerantMode)
                               .toDisplayString(QUrl::RemoveUserInfo | QUrl::RemovePath
                                                | QUrl::RemoveQuery | QUrl::RemoveFragment);
    if (origin.isEmpty() || kind == Kind::Tls)
        return {kind == Kind::Unreachable ? Kind::Network : kind, words};
    const bool isServices = origin == HostKit::serviceAddress();
    const QString text =
        kind == Kind::Unreachable
            ? translated(QT_TRANSLATE_NOOP("NetworkReason", "cannot reach %1: %2"))
            : translated(QT_TRANSLATE_NOOP("NetworkReason", "no answer from %1: %2"));
    return {kind == Kind::Unreachable && !isServices ? Kind::Network : kind,
            text.arg(origin, words)};
}

Reason answered(const QString &words)
{
    return {Kind::Refused,
            translated(QT_TRANSLATE_NOOP("NetworkReason", "the server answered: %1")).arg(words)};
}

// "ContentNotFoundError" as words.
QString wordsOf(const QString &name)
{
    const QString letters = name.chopped(name.endsWith(QLatin1String("Error")) ? 5 : 0);
    QString words;
    for (const QChar letter : letters) {
        if (letter.isUpper() && !words.isEmpty())
            words += QLatin1Char(' ');
        words += letter.toLower();
    }
    return words;
}

} // namespace

Reason NetworkReason::ofText(const QString &text, const QString &address)
{
    if (text == QLatin1String(proxyRefuses))
        return proxyRefusal();
    if (text == QLatin1String("Host requires authentication"))
        return answered(text);
    const QLatin1String reply("server replied:");
    if (const int place = text.indexOf(reply); place >= 0)
        return answered(text.mid(place + reply.size()).trimmed());
    for (const auto &error : errors) {
        if (text.endsWith(QLatin1String(error.text)))
            return notAnswered(error.kind, translated(error.words), address);
    }
    return notAnswered(Kind::Network, text, address);
}

Reason NetworkReason::ofName(const QString &name, const QString &address)
{
    if (name == QLatin1String(proxyRefusesName))
        return proxyRefusal();
    for (const auto &error : errors) {
        if (name == QLatin1String(error.name))
            return notAnswered(error.kind, translated(error.words), address);
    }
    // Errors of a proxy are from 100 on, what the server had to say of the content from 200 on.
    const int value =
        QMetaEnum::fromType<QNetworkReply::NetworkError>().keyToValue(name.toLatin1().constData());
    if (value > QNetworkReply::UnknownProxyError)
        return answered(wordsOf(name));
    return notAnswered(value > QNetworkReply::UnknownNetworkError ? Kind::Proxy : Kind::Network,
                       wordsOf(name), address);
}

Reason NetworkReason::proxyWantsUser()
{
    return {Kind::Proxy,
            translated(QT_TRANSLATE_NOOP("NetworkReason",
                                         "the proxy wants a user and a password that it knows"))};
}
