#pragma once

#include "tests/support/externalserver.h"
#include "tests/support/testfolder.h"

/// nginx in a process of its own, in the clear and over TLS as Identity::Localhost. It serves the
/// files of a folder:
///  - /NAME           with ranges
///  - /noranges/NAME  without ranges
///  - /gzip/NAME      compressed
///  - /moved/NAME     a redirect to /NAME
///  - /secured/NAME   a redirect to /NAME over TLS
class NginxServer
{
public:
    NginxServer();

    /// False when it cannot be started; errorText() says why. May be called again after kill().
    bool start();
    void kill() { m_process.kill(); }
    QString errorText() const { return m_process.errorText(); }

    /// The path of the file that it serves as @p name.
    QString file(const QString &name) const { return m_folder.path(QStringLiteral("www/") + name); }

    QString address(const QString &path) const;
    QString tlsAddress(const QString &path) const;

private:
    QByteArray configuration() const;

    TestFolder m_folder;
    const quint16 m_port = ExternalServer::freePort();
    const quint16 m_tlsPort = ExternalServer::freePort();
    ExternalServer m_process{QStringLiteral("nginx")};
};
