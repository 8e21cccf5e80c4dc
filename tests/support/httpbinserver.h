#pragma once

#include "tests/support/externalserver.h"

/// httpbin in a process of its own: a server that answers with the request it got, in JSON.
class HttpbinServer
{
public:
    /// False when it does not start; errorText() says why.
    bool start();
    QString errorText() const { return m_process.errorText(); }

    QString address(const QString &path) const;

private:
    const quint16 m_port = ExternalServer::freePort();
    ExternalServer m_process{QStringLiteral("gunicorn")};
};
