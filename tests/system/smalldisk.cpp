#include "smalldisk.h"

#include <QFile>

#include <sched.h>
#include <sys/mount.h>

SmallDisk::SmallDisk(const QString &path)
    : m_path(path.toLocal8Bit())
    , m_isThere(unshare(CLONE_NEWNS) == 0
                && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
                && mount("none", m_path.constData(), "tmpfs", 0, "size=128k") == 0)
{
}

SmallDisk::~SmallDisk()
{
    if (m_isThere)
        umount2(m_path.constData(), MNT_DETACH);
}

bool SmallDisk::isThere() const { return m_isThere; }

void SmallDisk::fill(int room) const
{
    QFile file(filler());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        qFatal("cannot write %s", qPrintable(file.fileName()));
    while (file.write(QByteArray(4096, 'f')) > 0) {
    }
    file.resize(file.size() - room);
}

void SmallDisk::empty() const { QFile::remove(filler()); }

QString SmallDisk::filler() const
{
    return QString::fromLocal8Bit(m_path) + QStringLiteral("/filler");
}
