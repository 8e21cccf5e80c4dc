#include "localservice/base/console.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace localservice {

namespace {

// A pipe or a terminal, opened once more so that writing to it does not wait. The stream itself is
// shared with whoever started the service and stays as it is, as does any other kind of file.
int withoutWaiting(int file)
{
    struct stat status = {};
    if (::fstat(file, &status) != 0 || !(S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode)))
        return file;
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    const int own = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    return own < 0 ? file : own;
}

/// A stream of the process. What does not fit into it is dropped at once: nobody is to wait for a
/// reader that does not read.
class Stream
{
public:
    explicit Stream(int file)
        : m_file(withoutWaiting(file))
    {
    }

    void write(const std::string &line)
    {
        const std::string bytes = line + '\n';
        const std::lock_guard<std::mutex> lock(m_mutex);
        pollfd target{m_file, POLLOUT, 0};
        // A pipe takes PIPE_BUF bytes as a whole or not at all.
        if (::poll(&target, 1, 0) == 1 && (target.revents & POLLOUT) != 0)
            (void)!::write(m_file, bytes.data(), std::min<std::size_t>(bytes.size(), PIPE_BUF));
    }

private:
    const int m_file;
    std::mutex m_mutex;
};

Stream &standardOutput()
{
    static Stream stream(STDOUT_FILENO);
    return stream;
}

Stream &standardError()
{
    static Stream stream(STDERR_FILENO);
    return stream;
}

} // namespace

void say(const std::string &line) { standardOutput().write("vo-localservice: " + line); }

void warn(const std::string &line) { standardError().write("vo-localservice: " + line); }

void log(const std::string &line) { standardError().write(line); }

} // namespace localservice
