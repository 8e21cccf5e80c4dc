#include "tests/support/squidserver.h"

#include <QFile>

namespace {

// The settings: no copies are kept, and nothing is written outside of the server's folder.
const char pattern[] = R"(http_port 127.0.0.1:%1
visible_hostname localhost
hosts_file %4
pid_filename none
pinger_enable off
netdb_filename none
cache_log /dev/null
cache deny all
server_persistent_connections off
shutdown_lifetime 0 seconds
max_filedescriptors 1024
auth_param basic program /usr/lib/squid/basic_ncsa_auth %2
auth_param basic children 1
acl known proxy_auth REQUIRED
http_access allow known
http_access deny all
acl asked method GET HEAD POST PUT DELETE CONNECT
logformat short %>Hs %rm %ru %un
access_log stdio:%3 logformat=short asked
)";

// The user, and the password as "openssl passwd -apr1" prints it.
const char passwords[] = "reader:$apr1$voproxy1$FYQCMrmiFp6vCbTtpbmyH.\n";

void write(const QString &fileName, const QByteArray &bytes)
{
    TestFolder::write(fileName, bytes);
    QFile::setPermissions(fileName, QFile::permissions(fileName) | QFileDevice::ReadOther
                                        | QFileDevice::WriteOther);
}

} // namespace

bool SquidServer::start()
{
    // A squid that root starts goes on as another user, who has to get into the folder.
    QFile::setPermissions(m_folder.path(), QFile::permissions(m_folder.path())
                                               | QFileDevice::ReadOther | QFileDevice::ExeOther);
    const QString configuration = m_folder.path(QStringLiteral("squid.conf"));
    const QString users = m_folder.path(QStringLiteral("passwords"));
    const QString hosts = m_folder.path(QStringLiteral("hosts"));
    const QString log = m_folder.path(QStringLiteral("log"));
    write(users, passwords);
    write(log, QByteArray());
    write(hosts, "127.0.0.1 localhost elsewhere.example\n");
    write(
        configuration,
        QString::fromLatin1(pattern).arg(QString::number(m_port), users, log, hosts).toLocal8Bit());
    // Its name keeps its shared memory apart from that of other squids.
    return m_process.start({QStringLiteral("-N"), QStringLiteral("-d"), QStringLiteral("1"),
                            QStringLiteral("-n"), QStringLiteral("test%1").arg(m_port),
                            QStringLiteral("-f"), configuration},
                           m_port);
}

QString SquidServer::address() const { return QStringLiteral("http://127.0.0.1:%1").arg(m_port); }

QNetworkProxy SquidServer::proxy(const QString &user, const QString &password) const
{
    return QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), m_port, user,
                         password);
}

QStringList SquidServer::log() const
{
    return QString::fromUtf8(TestFolder::contents(m_folder.path(QStringLiteral("log"))))
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}
