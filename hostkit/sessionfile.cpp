#include "hostkit/sessionfile.h"

#include "hostkit/privatefiles.h"
#include "hostkit/session.h"
#include "hostkit/wholefile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

namespace {

QString folder()
{
    const QString settings =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return QDir(settings).filePath(QStringLiteral("vospeak"));
}

constexpr qint64 longest = 65536; // bytes; a session has a few hundred

} // namespace

QString SessionFile::path() { return QDir(folder()).filePath(QStringLiteral("session.json")); }

QString SessionFile::problem()
{
    if (QFileInfo(path()).isDir())
        return QCoreApplication::translate("SessionFile", "\"%1\" is a folder").arg(path());
    // The user may have made a link of the folder.
    const QString target = QFileInfo(folder()).canonicalFilePath();
    return PrivateFiles::claimFolder(target.isEmpty() ? folder() : target);
}

Session SessionFile::load()
{
    QFile file(path());
    // Opening a pipe waits until somebody writes to it.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    return Session::from(QJsonDocument::fromJson(file.read(longest)).object());
}

QString SessionFile::save(const Session &session)
{
    if (QString problem = SessionFile::problem(); !problem.isEmpty())
        return problem;
    const PrivateFiles onlyOurs;
    return WholeFile::write(path(), QJsonDocument(session.toJson()).toJson(),
                            QFile::ReadOwner | QFile::WriteOwner);
}

bool SessionFile::exists()
{
    const QFileInfo file(path());
    return file.exists() || file.isSymLink();
}

bool SessionFile::remove() { return !exists() || QFile::remove(path()); }
