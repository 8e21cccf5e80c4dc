#include "tests/support/externalserver.h"

#include "tests/support/patience.h"

#include <QElapsedTimer>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>

namespace {

QString find(const QString &program)
{
    const QString path = QStandardPaths::findExecutable(program);
    return path.isEmpty() ? QStandardPaths::findExecutable(program, {QStringLiteral("/usr/sbin")})
                          : path;
}

bool takesConnections(quint16 port)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, port);
    return socket.waitForConnected(patienceMs);
}

} // namespace

ExternalServer::ExternalServer(const QString &program)
    : m_program(program)
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

ExternalServer::~ExternalServer()
{
    m_process.terminate(); // the server ends its own children then
    if (!m_process.waitForFinished(patienceMs))
        kill();
}

quint16 ExternalServer::freePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

bool ExternalServer::start(const QStringList &arguments, quint16 port)
{
    m_process.start(find(m_program), arguments);
    QElapsedTimer clock;
    clock.start();
    if (m_process.waitForStarted(patienceMs)) {
        // Each turn waits for news of the process before it tries again.
        while (clock.elapsed() < patienceMs && !m_process.waitForFinished(20)) {
            if (takesConnections(port))
                return true;
        }
    }
    m_errorText = m_program + QStringLiteral(": ") + m_process.errorString() + QLatin1Char('\n')
                  + QString::fromLocal8Bit(m_process.readAll());
    return false;
}

void ExternalServer::kill()
{
    m_process.kill();
    m_process.waitForFinished(patienceMs);
}
