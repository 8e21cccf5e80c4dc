#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>

namespace localservice {

/// Files that are made when they are first asked for and kept in memory from then on. There are as
/// many as were added. May be used by several threads once all have been added.
class FileCache
{
public:
    using Make = std::function<std::string()>;

    /// The file at @p path will be what @p make returns.
    void add(const std::string &path, Make make);

    /// The bytes of a file; Refusal if there is none at @p path. What @p make threw is thrown on,
    /// and it is called again the next time.
    std::string get(const std::string &path);

private:
    struct File
    {
        Make make;
        std::mutex mutex;
        bool isMade = false; // guarded by mutex
        std::string bytes;   // likewise
    };

    std::map<std::string, File> m_files; // by path
};

} // namespace localservice
