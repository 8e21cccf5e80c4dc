#include "hostkit/inputfile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QString>

namespace {

bool hasScheme(const QString &recording, QLatin1String scheme)
{
    return recording.startsWith(scheme + QLatin1String("://"), Qt::CaseInsensitive);
}

} // namespace

bool InputFile::isAddress(const QString &recording)
{
    return hasScheme(recording, QLatin1String("https"));
}

QString InputFile::problem(const QString &path)
{
    if (hasScheme(path, QLatin1String("http")))
        return QCoreApplication::translate("InputFile",
                                           "the address of a recording must begin with https://");
    const QFileInfo info(path);
    if (!info.exists())
        return QCoreApplication::translate("InputFile", "there is no file \"%1\"").arg(path);
    if (info.isDir())
        return QCoreApplication::translate("InputFile", "\"%1\" is a folder").arg(path);
    // Opening a pipe waits until somebody writes to it.
    if (!info.isFile())
        return QCoreApplication::translate("InputFile", "\"%1\" is no ordinary file").arg(path);
    if (info.size() == 0)
        return QCoreApplication::translate("InputFile", "the file \"%1\" is empty").arg(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QCoreApplication::translate("InputFile", "cannot read \"%1\": %2")
            .arg(path, file.errorString());
    return {};
}
