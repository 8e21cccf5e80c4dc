#include "hostkit/networkreason.h"

#include "hostkit/proxies.h"

#include <QCoreApplication>
#include <QMetaEnum>
#include <QNetworkReply>
#include <QUrl>

namespace {

using Kind = Reason::Kind;

QString translated(const char *text) { return QCoreApplication::translate("NetworkReason", text); }

// %1 is the address. Qt's texts are in English, since no translation of Qt's own is loaded. Every
// failure of TLS has the same one.
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
     QT_TRANSLATE_NOOP("NetworkReason", "cannot reach %1: connection refused")},
    {" not found", "HostNotFoundError", Kind::Unreachable,
     QT_TRANSLATE_NOOP("NetworkReason", "cannot reach %1: the host was not found")},
    {"Connection closed", "RemoteHostClosedError", Kind::Network,
     QT_TRANSLATE_NOOP("NetworkReason", "no answer from %1: the connection was closed")},
    {"timed out", "TimeoutError", Kind::Unreachable,
     QT_TRANSLATE_NOOP("NetworkReason", "cannot reach %1: it took too long")},
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

QString originOf(const QString &address)
{
    return QUrl(address, QUrl::TolerantMode)
        .toDisplayString(QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery
                         | QUrl::RemoveFragment);
}

Reason answered(const QString &words)
{
    return {Kind::Refused,
            translated(QT_TRANSLATE_NOOP("NetworkReason", "the server answered: %1")).arg(words)};
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
            return {error.kind,
                    translated(error.words).replace(QLatin1String("%1"), originOf(address))};
    }
    return {Kind::Network, translated(QT_TRANSLATE_NOOP("NetworkReason", "no answer from %1: %2"))
                               .arg(originOf(address), text)};
}

Reason NetworkReason::ofName(const QString &name, const QString &address)
{
    if (name == QLatin1String(proxyRefusesName))
        return proxyRefusal();
    for (const auto &error : errors) {
        if (name == QLatin1String(error.name))
            return {error.kind,
                    translated(error.words).replace(QLatin1String("%1"), originOf(address))};
    }
    // Errors of a proxy are from 100 on, what the server had to say of the content from 200 on.
    const int value =
        QMetaEnum::fromType<QNetworkReply::NetworkError>().keyToValue(name.toLatin1());
    if (value > QNetworkReply::UnknownProxyError)
        return answered(name);
    return {value > QNetworkReply::UnknownNetworkError ? Kind::Proxy : Kind::Network,
            translated(QT_TRANSLATE_NOOP("NetworkReason", "no answer from %1: %2"))
                .arg(originOf(address), name)};
}

Reason NetworkReason::proxyWantsUser()
{
    return {Kind::Proxy,
            translated(QT_TRANSLATE_NOOP("NetworkReason",
                                         "the proxy wants a user and a password that it knows"))};
}
