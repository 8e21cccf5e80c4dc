#include "sessionfile.h"

#include "privatefiles.h"
#include "session.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>

namespace {

QString folder() { return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation); }

QString path() { return QDir(folder()).filePath(QStringLiteral("session.json")); }

constexpr qint64 longest = 65536; // bytes; a session has a few hundred

} // namespace

QString SessionFile::problem()
{
    if (QFileInfo(path()).isDir())
        return QStringLiteral("\"%1\" is a folder").arg(path());
    // A link that the user made leads to where the files really are.
    const QString target = QFileInfo(folder()).canonicalFilePath();
    return PrivateFiles::claimFolder(target.isEmpty() ? folder() : target);
}

Session SessionFile::load()
{
    QFile file(path());
    // Opening a pipe would wait for somebody to write to it.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    return Session::from(QJsonDocument::fromJson(file.read(longest)).object());
}

bool SessionFile::save(const Session &session)
{
    if (!problem().isEmpty())
        return false;
    const PrivateFiles onlyOurs;
    const QByteArray bytes = QJsonDocument(session.toJson()).toJson();
    QSaveFile file(path());
    return file.open(QIODevice::WriteOnly)
           // An older file's permissions would be taken over.
           && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
           && file.write(bytes) == bytes.size() && file.commit();
}

bool SessionFile::exists()
{
    const QFileInfo file(path());
    return file.exists() || file.isSymLink();
}

bool SessionFile::remove() { return !exists() || QFile::remove(path()); }
