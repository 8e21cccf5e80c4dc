#include "localservice/data/folderlock.h"

#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace localservice {

FolderLock::FolderLock(const std::filesystem::path &folder)
{
    std::filesystem::create_directories(folder);
    const std::filesystem::path path = folder / "lock";
    m_file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (m_file >= 0 && ::flock(m_file, LOCK_EX | LOCK_NB) == 0)
        return;
    const bool isTaken = m_file >= 0 && errno == EWOULDBLOCK;
    if (m_file >= 0)
        ::close(m_file);
    throw std::runtime_error(isTaken ? "another service uses \"" + folder.string() + '"'
                                     : "cannot lock \"" + path.string() + '"');
}

FolderLock::~FolderLock() { ::close(m_file); }

} // namespace localservice
