#include "hostkit/wholefile.h"

#include <QByteArray>
#include <QSaveFile>

// The file is flushed before commit(), because commit() of Qt 5.15 does not notice when that fails:
// on a full disk it would put an empty file in place of the old one.
QString WholeFile::write(const QString &path, const QByteArray &bytes,
                         std::optional<QFileDevice::Permissions> permissions)
{
    QSaveFile file(path);
    const bool isDone = file.open(QIODevice::WriteOnly)
                        && (!permissions || file.setPermissions(*permissions))
                        && file.write(bytes) == bytes.size() && file.flush() && file.commit();
    return isDone ? QString() : file.errorString();
}
