#include "localservice/data/folderlock.h"

#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>

namespace localservice {

void lockFolder(const std::filesystem::path &folder)
{
    std::filesystem::create_directories(folder);
    const std::filesystem::path path = folder / "lock";
    // The lock is that of the open file, which nobody closes.
    const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0 || ::flock(file, LOCK_EX | LOCK_NB) != 0)
        throw std::runtime_error(file >= 0 && errno == EWOULDBLOCK
                                     ? "another service uses \"" + folder.string() + '"'
                                     : "cannot lock \"" + path.string() + '"');
}

} // namespace localservice
