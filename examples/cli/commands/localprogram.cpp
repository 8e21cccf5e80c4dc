#include "commands/localprogram.h"

#include "hostkit/hostkit.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QStandardPaths>
#include <QUrl>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/prctl.h>
#endif

namespace {

constexpr int patience = 6000; // ms; the service ends within five seconds

QUrl address() { return QUrl(HostKit::serviceAddress()); }

} // namespace

LocalProgram::~LocalProgram()
{
    blockSignals(true);
    if (state() == NotRunning)
        return;
    terminate();
    if (!waitForFinished(patience))
        kill();
}

// Installed, both programs are in one folder; the build has a folder for each.
QString LocalProgram::path()
{
    const QString name = QStringLiteral("vo-localservice");
    const QString here = QCoreApplication::applicationDirPath();
    const QString ours =
        QStandardPaths::findExecutable(name, {here, here + QStringLiteral("/../../localservice")});
    return ours.isEmpty() ? QStandardPaths::findExecutable(name) : ours;
}

bool LocalProgram::isAsked()
{
    const QString host = address().host();
    return host == QLatin1String("localhost") || QHostAddress(host).isLoopback();
}

void LocalProgram::listen()
{
    start(path(), {QStringLiteral("--port"), QString::number(address().port(443))});
}

void LocalProgram::setupChildProcess()
{
#ifdef Q_OS_LINUX
    prctl(PR_SET_PDEATHSIG, SIGTERM);
#endif
}
