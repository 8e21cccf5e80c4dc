#include "start/serviceprocess.h"

#include "commands/localprogram.h"

ServiceProcess::ServiceProcess(QObject *parent)
    : QObject(parent)
    , m_process(new LocalProgram(this))
{
    connect(m_process, &QProcess::readyReadStandardOutput, this, &ServiceProcess::onOutput);
    // What is not read is lost and keeps no request waiting; the last line says why it has ended.
    connect(m_process, &QProcess::readyReadStandardError, this, [this] {
        const QList<QByteArray> lines = m_process->readAllStandardError().trimmed().split('\n');
        m_lastError = lines.last();
    });
    connect(m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &ServiceProcess::onEnd);
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            Q_EMIT failed(m_process->errorString());
    });
}

QString ServiceProcess::program()
{
    return LocalProgram::isAsked() ? LocalProgram::path() : QString();
}

void ServiceProcess::start()
{
    if (m_process->state() != QProcess::NotRunning)
        return;
    m_lastError.clear();
    m_process->listen();
}

void ServiceProcess::onOutput()
{
    while (m_process->canReadLine()) {
        const QString line = QString::fromLocal8Bit(m_process->readLine()).trimmed();
        const QString separator = QStringLiteral(", authority ");
        const int place = line.indexOf(separator);
        if (place >= 0)
            Q_EMIT ready(line.mid(place + separator.size()));
        else
            Q_EMIT said(line.section(QStringLiteral(": "), 1));
    }
}

void ServiceProcess::onEnd()
{
    Q_EMIT failed(m_lastError.isEmpty() ? tr("the local service has ended")
                                        : QString::fromLocal8Bit(m_lastError));
}
