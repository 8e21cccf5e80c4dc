#include "localservice/server/peerprogram.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <sstream>
#include <sys/socket.h>

namespace localservice {

namespace {

namespace fs = std::filesystem;

// The kernel adds it to the name of a file that was replaced since.
constexpr const char *replaced = " (deleted)";

// One end of a connection as /proc/net/tcp writes it; empty for no such end.
std::string endOf(int socket, int (*nameOfEnd)(int, sockaddr *, socklen_t *))
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    std::array<char, 16> text{};
    if (nameOfEnd(socket, reinterpret_cast<sockaddr *>(&address), &size) == 0)
        std::snprintf(text.data(), text.size(), "%08X:%04X", unsigned(address.sin_addr.s_addr),
                      unsigned(ntohs(address.sin_port)));
    return text.data();
}

// The socket from @p local to @p remote as it stands among the open files of its process; empty if
// no process has it open.
std::string fileOf(const std::string &local, const std::string &remote)
{
    constexpr std::size_t localEnd = 1; // fields of a line
    constexpr std::size_t remoteEnd = 2;
    constexpr std::size_t inode = 9;
    std::ifstream table("/proc/self/net/tcp");
    for (std::string line; std::getline(table, line);) {
        std::array<std::string, inode + 1> fields;
        std::istringstream words(line);
        for (std::string &field : fields)
            words >> field;
        if (fields[localEnd] == local && fields[remoteEnd] == remote && fields[inode] != "0")
            return "socket:[" + fields[inode] + "]";
    }
    return {};
}

std::string linkedFrom(const fs::path &link)
{
    std::error_code isGoneOrAnotherUsers;
    return fs::read_symlink(link, isGoneOrAnotherUsers).string();
}

bool hasOpen(const fs::path &process, const std::string &file)
{
    std::error_code isGoneOrAnotherUsers;
    fs::directory_iterator entry(process / "fd", isGoneOrAnotherUsers);
    while (entry != fs::directory_iterator() && linkedFrom(entry->path()) != file)
        entry.increment(isGoneOrAnotherUsers);
    return entry != fs::directory_iterator();
}

} // namespace

std::string peerProgram(int socket)
{
    const std::string file = fileOf(endOf(socket, ::getpeername), endOf(socket, ::getsockname));
    if (file.empty())
        return {};
    for (const fs::directory_entry &process : fs::directory_iterator("/proc")) {
        if (!hasOpen(process.path(), file))
            continue;
        const std::string name = fs::path(linkedFrom(process.path() / "exe")).filename().string();
        return name.substr(0, name.rfind(replaced));
    }
    return {};
}

} // namespace localservice
