#include "hostkit/proxies.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QList>
#include <QNetworkProxy>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <algorithm>
#include <initializer_list>
#include <memory>

namespace {

// The names of variables; the first that is set and not empty counts. HTTP_PROXY is not among them:
// a web server that runs programs sets it to what one of its clients has sent.
using Names = std::initializer_list<const char *>;
constexpr Names httpsNames = {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"};
constexpr Names httpNames = {"http_proxy", "all_proxy", "ALL_PROXY"};
constexpr Names exceptionNames = {"no_proxy", "NO_PROXY"};

struct Variable
{
    QLatin1String name;
    QString value;
};

Variable firstOf(Names names)
{
    for (const char *name : names) {
        const QString value = qEnvironmentVariable(name);
        if (!value.isEmpty())
            return {QLatin1String(name), value};
    }
    return {};
}

// No value when @p address is not the address of a proxy.
std::optional<QNetworkProxy> proxyAt(const QString &address)
{
    if (address.isEmpty())
        return QNetworkProxy(QNetworkProxy::NoProxy);
    const bool hasScheme = address.contains(QLatin1String("://"));
    const QUrl url(hasScheme ? address : QLatin1String("http://") + address);
    const QString scheme = url.scheme();
    const bool isHttp = scheme == QLatin1String("http");
    const bool resolvesHere = scheme == QLatin1String("socks5");
    if ((!isHttp && !resolvesHere && scheme != QLatin1String("socks5h")) || url.host().isEmpty()
        || url.port() <= 0)
        return {};
    QNetworkProxy proxy(isHttp ? QNetworkProxy::HttpProxy : QNetworkProxy::Socks5Proxy, url.host(),
                        quint16(url.port()), url.userName(QUrl::FullyDecoded),
                        url.password(QUrl::FullyDecoded));
    if (resolvesHere)
        proxy.setCapabilities(proxy.capabilities() & ~QNetworkProxy::HostNameLookupCapability);
    return proxy;
}

QString refused(const QString &source)
{
    return QCoreApplication::translate(
               "Proxies", "%1 is no proxy: there are http://HOST:PORT, socks5://HOST:PORT and "
                          "socks5h://HOST:PORT, with USER:PASSWORD@ before the host if need be")
        .arg(source);
}

// Whether @p entry of NO_PROXY covers @p host. A name, with or without a dot before it, stands for
// itself and all names below it; an asterisk for every host; a number, which may have a mask, for
// hosts that are written as numbers.
bool isException(const QString &entry, const QString &host)
{
    if (entry == QLatin1String("*"))
        return true;
    const QHostAddress number(host);
    if (!number.isNull())
        return number.isInSubnet(QHostAddress::parseSubnet(entry));
    const QString suffix = entry.startsWith(QLatin1Char('.')) ? entry : QLatin1Char('.') + entry;
    const QString name = QLatin1Char('.') + host;
    return name.endsWith(suffix, Qt::CaseInsensitive);
}

/// The proxies that the environment variables name.
class VariableProxies : public QNetworkProxyFactory
{
public:
    VariableProxies(const QNetworkProxy &https, const QNetworkProxy &http)
        : m_https(https)
        , m_http(http)
        , m_exceptions(firstOf(exceptionNames)
                           .value.replace(QLatin1Char(','), QLatin1Char(' '))
                           .split(QLatin1Char(' '), Qt::SkipEmptyParts))
    {
    }

    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override
    {
        const QString host = query.peerHostName();
        if (std::any_of(m_exceptions.cbegin(), m_exceptions.cend(),
                        [&host](const QString &entry) { return isException(entry, host); }))
            return {QNetworkProxy(QNetworkProxy::NoProxy)};
        return {query.protocolTag() == QLatin1String("http") ? m_http : m_https};
    }

private:
    QNetworkProxy m_https;
    QNetworkProxy m_http;
    QStringList m_exceptions;
};

QString useVariables(const QString &destination)
{
    const bool isHttp = QUrl(destination, QUrl::TolerantMode).scheme() == QLatin1String("http");
    const Variable https = firstOf(httpsNames);
    const Variable http = firstOf(httpNames);
    if (https.name.isEmpty() && http.name.isEmpty())
        return {}; // Qt goes by the system's settings then
    const auto httpsProxy = proxyAt(https.value);
    const auto httpProxy = proxyAt(isHttp ? http.value : QString());
    if (!httpsProxy || !httpProxy)
        return refused(QCoreApplication::translate("Proxies", "the value of %1")
                           .arg(httpsProxy ? http.name : https.name));
    QNetworkProxyFactory::setApplicationProxyFactory( // which owns it
        std::make_unique<VariableProxies>(*httpsProxy, *httpProxy).release());
    return {};
}

} // namespace

QString Proxies::use(const std::optional<QString> &address, const QString &destination)
{
    if (!address)
        return useVariables(destination);
    const auto proxy = proxyAt(*address);
    if (!proxy)
        return refused(QCoreApplication::translate("Proxies", "the value of --proxy"));
    QNetworkProxy::setApplicationProxy(*proxy);
    return {};
}

bool Proxies::areUsed()
{
    const QNetworkProxyQuery query(QUrl(QStringLiteral("https://elsewhere.invalid")));
    const QList<QNetworkProxy> proxies = QNetworkProxyFactory::proxyForQuery(query);
    return std::any_of(proxies.cbegin(), proxies.cend(), [](const QNetworkProxy &proxy) {
        return proxy.type() != QNetworkProxy::NoProxy;
    });
}
