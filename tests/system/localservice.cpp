#include "localservice.h"

#include "serviceaddress.h"
#include "tests/support/patience.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QFile>
#include <QUrl>

#include <csignal>

LocalService::LocalService() = default;

LocalService::~LocalService()
{
    m_process.kill();
    m_process.waitForFinished(patienceMs);
    // Nobody else reads the log of a service that did what was asked of it and yet was at fault.
    if (log().contains("Sanitizer") || log().contains("runtime error"))
        qFatal("a sanitiser complains of the local service:\n%s", log().constData());
}

qint64 LocalService::token() { return 9007199254740993; }

bool LocalService::start(const QStringList &furtherArguments)
{
    return startWithoutDevelopmentToken(
        QStringList{QStringLiteral("--development-token"), QString::number(token())}
        + furtherArguments);
}

bool LocalService::startWithoutDevelopmentToken(const QStringList &furtherArguments)
{
    const int port = QUrl(serviceAddress()).port();
    m_readyLine.clear();
    m_process.setStandardErrorFile(m_folder.filePath(QStringLiteral("log")));
    m_process.start(program(),
                    QStringList{QStringLiteral("--port"), QString::number(port),
                                QStringLiteral("--data"), m_folder.filePath(QStringLiteral("data"))}
                        + furtherArguments);
    QElapsedTimer elapsed;
    elapsed.start();
    while (!m_readyLine.endsWith('\n') && elapsed.elapsed() < patienceMs) {
        if (!m_process.waitForReadyRead(static_cast<int>(patienceMs - elapsed.elapsed())))
            break;
        m_readyLine += m_process.readAllStandardOutput();
    }
    if (!m_readyLine.endsWith('\n'))
        qWarning() << "the local service is not ready:" << m_process.errorString() << log();
    return m_readyLine.endsWith('\n');
}

void LocalService::send(int signal)
{
    if (m_process.processId() > 0)
        ::kill(static_cast<pid_t>(m_process.processId()), signal);
}

int LocalService::stop(int signal)
{
    send(signal);
    const bool ended =
        m_process.state() == QProcess::NotRunning || m_process.waitForFinished(patienceMs);
    return ended && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QByteArray LocalService::readyLine() const { return m_readyLine; }

QByteArray LocalService::takeLine(const QByteArray &part)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (elapsed.elapsed() < patienceMs) {
        m_out += m_process.readAllStandardOutput();
        for (int end = m_out.indexOf('\n'); end >= 0; end = m_out.indexOf('\n')) {
            QByteArray line = m_out.left(end);
            m_out.remove(0, end + 1);
            if (line.contains(part))
                return line;
        }
        m_process.waitForReadyRead(100);
    }
    return {};
}

QString LocalService::authority() const { return dataFile(QStringLiteral("tls/authority.pem")); }

QString LocalService::dataFile(const QString &name) const
{
    return m_folder.filePath(QStringLiteral("data/") + name);
}

QByteArray LocalService::log() const
{
    QFile file(m_folder.filePath(QStringLiteral("log")));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList LocalService::access() const
{
    return {QStringLiteral("--ca"), authority(), QStringLiteral("--token"),
            QString::number(token())};
}

QString LocalService::program() { return QStringLiteral(LOCALSERVICE); }
