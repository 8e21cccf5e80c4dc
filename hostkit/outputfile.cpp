#include "hostkit/outputfile.h"

#include "hostkit/wholefile.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <filesystem>
#include <system_error>

namespace {

std::filesystem::path nativePath(const QString &path)
{
#ifdef Q_OS_WIN
    return path.toStdWString();
#else
    return QFile::encodeName(path).toStdString();
#endif
}

// Renames as the system does: QFile refuses when the new name is that of a file.
bool renameOver(const QString &from, const QString &to)
{
    std::error_code error;
    std::filesystem::rename(nativePath(from), nativePath(to), error);
    return !error;
}

// The file to replace is the one that a link leads to; the link stays.
QString resolved(const QString &path)
{
    const QString target = QFileInfo(path).canonicalFilePath();
    return target.isEmpty() ? path : target;
}

// Whether the file also has another name, whose contents a write would change too.
bool leadsElsewhere(const QString &path)
{
    std::error_code error;
    const auto names = std::filesystem::hard_link_count(nativePath(path), error);
    return QFileInfo(path).isSymLink() || (!error && names > 1);
}

} // namespace

OutputFile::OutputFile(const QString &path)
    : m_path(resolved(path))
{
}

QString OutputFile::problem() const
{
    const QFileInfo file(m_path);
    const QFileInfo folder(file.path());
    if (file.isDir() || file.fileName().isEmpty())
        return tr("\"%1\" is a folder").arg(m_path);
    if (file.exists() && !file.isFile())
        return tr("\"%1\" is no ordinary file").arg(m_path);
    if (!folder.isDir())
        return tr("there is no folder \"%1\"").arg(folder.filePath());
    if (!folder.isWritable() || (file.exists() && !file.isWritable()))
        return tr("\"%1\" may not be written").arg(m_path);
    return {};
}

QString OutputFile::write(const QByteArray &bytes) const { return WholeFile::write(m_path, bytes); }

QString OutputFile::partPath() const { return m_path + QLatin1String(".part"); }

QString OutputFile::partProblem(bool resume) const
{
    if (resume && leadsElsewhere(partPath()))
        return tr("\"%1\" is a link and cannot be gone on with").arg(partPath());
    return OutputFile(partPath()).problem();
}

bool OutputFile::replaceBy(const QString &path) const { return renameOver(path, m_path); }

bool OutputFile::take(const std::function<bool(const QString &path)> &fetch) const
{
    const QFileInfo target(m_path);
    // In a folder of its own the file can be made anew, with the permissions of any new file.
    const QTemporaryDir folder(target.dir().filePath(QStringLiteral(".vospeak-XXXXXX")));
    const QString fetched = folder.filePath(QStringLiteral("audio"));
    return folder.isValid() && fetch(fetched) && replaceBy(fetched);
}
