#include "commandline/authority.h"

#include "commandline/options.h"
#include "hostkit/sessionfile.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

// A path in the file that is not absolute begins at the folder of the file: it has to mean the same
// wherever the program is started.
QString Authority::of(const Options &options)
{
    if (!options.authority.isEmpty())
        return options.authority;
    if (QString path = qEnvironmentVariable("VOSPEAK_CA"); !path.isEmpty())
        return path;
    const QSettings file(settings(), QSettings::IniFormat);
    const QString path = file.value(QStringLiteral("ca")).toString();
    return path.isEmpty() ? path : QFileInfo(settings()).dir().filePath(path);
}

bool Authority::remember(const QString &path)
{
    QSettings file(settings(), QSettings::IniFormat);
    file.setValue(QStringLiteral("ca"), path);
    file.sync();
    return file.status() == QSettings::NoError;
}

QString Authority::settings()
{
    return QFileInfo(SessionFile::path()).dir().filePath(QStringLiteral("vospeak.conf"));
}
