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

// A terminal or a pipe that is opened once more can be told not to wait; the stream itself is
// shared with whoever started the service, who may not want that.
int openOnce(int file)
{
    struct stat status = {};
    if (::fstat(file, &status) != 0 || !(S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode)))
        return -1;
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    return ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

/// A stream of the process. What does not fit into it is dropped at once: nobody is to wait for a
/// reader that does not read.
class Stream
{
public:
    explicit Stream(int file)
        : m_file(file)
        , m_own(openOnce(file))
    {
    }

    void write(const std::string &line)
    {
        const std::string bytes = line + '\n';
        // A pipe takes as many at once and as a whole.
        const std::size_t size = std::min<std::size_t>(bytes.size(), PIPE_BUF);
        const std::lock_guard<std::mutex> lock(m_mutex);
        pollfd target{m_file, POLLOUT, 0};
        if (m_own >= 0)
            (void)!::write(m_own, bytes.data(), size);
        else if (::poll(&target, 1, 0) == 1 && (target.revents & POLLOUT) != 0)
            (void)!::write(m_file, bytes.data(), size);
    }

private:
    int m_file;
    int m_own;
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
