#pragma once

#include "tests/support/externalserver.h"
#include "tests/support/testfolder.h"

#include <QNetworkProxy>

/// squid in a process of its own: a proxy for HTTP and, by CONNECT, for HTTPS that serves only
/// user() with password(), and keeps no copies. It takes elsewhere.example for this machine,
/// because Qt uses no proxy for localhost.
class SquidServer
{
public:
    /// False when it does not start; errorText() says why.
    bool start();
    QString errorText() const { return m_process.errorText(); }

    static QString user() { return QStringLiteral("reader"); }
    static QString password() { return QStringLiteral("secret"); }

    /// Its address, without credentials.
    QString address() const;

    /// The proxy as Qt takes it, with the credentials if any are given.
    QNetworkProxy proxy(const QString &user = QString(), const QString &password = QString()) const;

    /// The requests that it has answered and the tunnels that have ended, in order, each as
    /// "STATUS METHOD ADDRESS USER"; the user is "-" where none was named.
    QStringList log() const;

private:
    TestFolder m_folder;
    const quint16 m_port = ExternalServer::freePort();
    ExternalServer m_process{QStringLiteral("squid")};
};
