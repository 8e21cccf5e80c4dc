#pragma once

#include "tests/support/externalserver.h"
#include "tests/support/testfolder.h"

#include <QNetworkProxy>

/// squid in a process of its own: a proxy for HTTP and, by CONNECT, for HTTPS that serves none but
/// user() with password(), and keeps no copies. To it elsewhere.example is this machine: Qt sends
/// nothing that is for localhost through an application's proxy.
class SquidServer
{
public:
    /// False when it does not start; errorText() says why.
    bool start();
    QString errorText() const { return m_process.errorText(); }

    static QString user() { return QStringLiteral("reader"); }
    static QString password() { return QStringLiteral("secret"); }

    /// As an address without credentials.
    QString address() const;

    /// As what Qt sends its requests through, with the credentials given, if any.
    QNetworkProxy proxy(const QString &user = QString(), const QString &password = QString()) const;

    /// The requests that it has answered, and tunnels that have ended, in order:
    /// "STATUS METHOD ADDRESS USER", the user "-" where nobody was named.
    QStringList log() const;

private:
    TestFolder m_folder;
    const quint16 m_port = ExternalServer::freePort();
    ExternalServer m_process{QStringLiteral("squid")};
};
