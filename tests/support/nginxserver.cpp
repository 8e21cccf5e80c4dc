#include "tests/support/nginxserver.h"

#include "tests/support/trust.h"

#include <QDir>

namespace {

const char pattern[] = R"(daemon off;
master_process off; # so that ending the process ends all of it
pid %1/pid;
error_log stderr;
events { }
http {
    access_log off;
    client_body_temp_path %1/temporary;
    proxy_temp_path %1/temporary;
    fastcgi_temp_path %1/temporary;
    uwsgi_temp_path %1/temporary;
    scgi_temp_path %1/temporary;
    default_type application/octet-stream;
    server {
        listen 127.0.0.1:%2;
        listen 127.0.0.1:%3 ssl;
        ssl_certificate %4;
        ssl_certificate_key %5;
        root %1/www;
        location /noranges/ { max_ranges 0; alias %1/www/; }
        location /gzip/ { gzip on; gzip_types *; gzip_min_length 1; alias %1/www/; }
        location /moved/ { rewrite ^/moved/(.*)$ /$1 redirect; }
        location /secured/ { rewrite ^/secured/(.*)$ https://localhost:%3/$1 redirect; }
    }
}
)";

} // namespace

NginxServer::NginxServer()
{
    if (!QDir(m_folder.path()).mkdir(QStringLiteral("www")))
        qFatal("cannot make a folder");
}

bool NginxServer::start()
{
    const QString name = m_folder.path(QStringLiteral("nginx.conf"));
    TestFolder::write(name, configuration());
    const QString log = m_folder.path(QStringLiteral("early.log")); // until its settings are read
    return m_process.start({QStringLiteral("-p"), m_folder.path(), QStringLiteral("-e"), log,
                            QStringLiteral("-c"), name},
                           m_port);
}

QString NginxServer::address(const QString &path) const
{
    return QStringLiteral("http://localhost:%1%2").arg(m_port).arg(path);
}

QString NginxServer::tlsAddress(const QString &path) const
{
    return QStringLiteral("https://localhost:%1%2").arg(m_tlsPort).arg(path);
}

QByteArray NginxServer::configuration() const
{
    return QString::fromLatin1(pattern)
        .arg(m_folder.path(), QString::number(m_port), QString::number(m_tlsPort),
             certificateFile(Identity::Localhost), keyFile(Identity::Localhost))
        .toLocal8Bit();
}
