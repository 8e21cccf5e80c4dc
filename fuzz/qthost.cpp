#include "qthost.h"

#include <QNetworkProxyFactory>

#include <cerrno>
#include <sys/socket.h>

namespace {

// An access manager that is given nothing but a proxy that does not suit ends every request.
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

// In place of the C library's: this machine itself is asked without a proxy.
extern "C" int connect(int, const sockaddr *, socklen_t)
{
    errno = ECONNREFUSED;
    return -1;
}

QtHost::QtHost()
    : m_application(m_argumentCount, m_arguments)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    QNetworkProxyFactory::setApplicationProxyFactory(new NoWayOut); // takes it
    const QString home = QString::fromStdString(m_folder.path().string());
    for (const char *name : {"HOME", "TMPDIR", "XDG_CONFIG_HOME"})
        qputenv(name, home.toLocal8Bit());
}

void QtHost::settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
