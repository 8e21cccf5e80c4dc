#include "commands/localprogram.h"

#include "hostkit/hostkit.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QStandardPaths>
#include <QUrl>

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
    const QString host = QUrl(HostKit::serviceAddress()).host();
    return host == QLatin1String("localhost") || QHostAddress(host).isLoopback();
}
