#include "hostkit/privatefiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

#ifdef Q_OS_WIN

PrivateFiles::PrivateFiles()
    : m_before(0)
{
}

PrivateFiles::~PrivateFiles() = default; // on Windows a user's folders are private by themselves

#else

#include <sys/stat.h>
#include <unistd.h>

PrivateFiles::PrivateFiles()
    : m_before(umask(S_IRWXG | S_IRWXO))
{
}

PrivateFiles::~PrivateFiles() { umask(static_cast<mode_t>(m_before)); }

#endif

namespace {

// A folder of somebody else may hold links that lead elsewhere.
bool isOwn(const QFileInfo &folder)
{
#ifdef Q_OS_WIN
    Q_UNUSED(folder)
    return true;
#else
    return folder.ownerId() == geteuid();
#endif
}

} // namespace

QString PrivateFiles::claimFolder(const QString &path)
{
    const PrivateFiles onlyOurs;
    const QFileInfo folder(path);
    if (!folder.exists() && !folder.isSymLink() && !QDir().mkpath(path))
        return tr("cannot make the folder \"%1\"").arg(path);
    const QFileInfo made(path);
    if (!made.isDir())
        return tr("\"%1\" is no folder").arg(path);
    if (made.isSymLink())
        return tr("\"%1\" is a link").arg(path);
    if (!isOwn(made))
        return tr("the folder \"%1\" belongs to somebody else").arg(path);
    if (!QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
        return tr("the folder \"%1\" cannot be made private").arg(path);
    return {};
}
