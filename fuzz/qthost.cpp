#include "qthost.h"

#include <QNetworkProxyFactory>

#include <cerrno>
#include <sys/socket.h>

namespace {

// Gives every request a proxy that cannot serve it, upon which an access manager fails the request.
class NoWayOut : public QNetworkProxyFactory
{
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override
    {
        return {QNetworkProxy(query.protocolTag() == QLatin1String("ftp")
                                  ? QNetworkProxy::HttpCachingProxy
                                  : QNetworkProxy::FtpCachingProxy)};
    }
};

} // namespace

// Replaces the connect() of the C library: requests to this machine itself go without a proxy.
extern "C" int connect(int, const sockaddr *, socklen_t)
{
    errno = ECONNREFUSED;
    return -1;
}

QtHost::QtHost()
    : m_application(m_argumentCount, m_arguments)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    QNetworkProxyFactory::setApplicationProxyFactory(new NoWayOut); // which owns it
    const QString home = QString::fromStdString(m_folder.path().string());
    for (const char *name : {"HOME", "TMPDIR", "XDG_CONFIG_HOME"})
        qputenv(name, home.toLocal8Bit());
}

void QtHost::settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
