#include "program.h"

#include "tests/support/patience.h"

#include <QEventLoop>
#include <QTimer>

#include <csignal>

Program::Program(const QStringList &arguments, const QString &errFile, const QString &outFile)
{
    m_process.setStandardErrorFile(errFile);
    m_process.setStandardOutputFile(outFile);
    m_process.start(path(), arguments);
    m_process.waitForStarted(patienceMs);
}

Program::~Program()
{
    m_process.kill();
    m_process.waitForFinished(patienceMs);
}

Outcome Program::outcome()
{
    QEventLoop loop;
    QObject::connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
                     &loop, &QEventLoop::quit);
    QTimer::singleShot(patienceMs, &loop, &QEventLoop::quit);
    if (m_process.state() != QProcess::NotRunning)
        loop.exec();
    const bool ended =
        m_process.state() == QProcess::NotRunning && m_process.exitStatus() == QProcess::NormalExit;
    return {ended ? m_process.exitCode() : -1, m_process.readAllStandardOutput(), err()};
}

QString Program::path() { return QStringLiteral(VOSPEAK); }

void Program::signal(int number) const
{
    if (m_process.processId() > 0)
        ::kill(static_cast<pid_t>(m_process.processId()), number);
}

void Program::type(const QByteArray &text) { m_process.write(text); }

void Program::endInput() { m_process.closeWriteChannel(); }

QByteArray Program::err()
{
    m_err += m_process.readAllStandardError();
    return m_err;
}

Outcome vospeak(const QStringList &arguments) { return Program(arguments).outcome(); }

QStringList arguments(const char *line) { return QString::fromUtf8(line).split(QLatin1Char(' ')); }

bool isOneLine(const QByteArray &err)
{
    return (err.startsWith("vospeak: ") || err.startsWith("{\"error\":{")) && err.count('\n') == 1
           && err.endsWith('\n');
}
