#include "tests/support/httpbinserver.h"

bool HttpbinServer::start()
{
    return m_process.start({QStringLiteral("--bind"), QStringLiteral("127.0.0.1:%1").arg(m_port),
                            QStringLiteral("--threads"), QStringLiteral("4"),
                            QStringLiteral("httpbin:app")},
                           m_port);
}

QString HttpbinServer::address(const QString &path) const
{
    return QStringLiteral("http://localhost:%1%2").arg(m_port).arg(path);
}
