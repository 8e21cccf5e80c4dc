#include "wholefile.h"

#include <QByteArray>
#include <QSaveFile>

// A few bytes wait in a buffer until the file is flushed. In Qt 5.15 commit() does so too, but
// takes no notice of the outcome, and puts an empty file in place of the old one when the disk is
// full.
QString WholeFile::write(const QString &path, const QByteArray &bytes,
                         std::optional<QFileDevice::Permissions> permissions)
{
    QSaveFile file(path);
    const bool isDone = file.open(QIODevice::WriteOnly)
                        && (!permissions || file.setPermissions(*permissions))
                        && file.write(bytes) == bytes.size() && file.flush() && file.commit();
    return isDone ? QString() : file.errorString();
}
