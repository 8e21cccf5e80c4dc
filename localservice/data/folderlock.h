#pragma once

#include <filesystem>

namespace localservice {

/// Keeps a folder for this process: no other one gets a lock on it for as long as this lives. The
/// end of the process, however it comes, releases it.
class FolderLock
{
public:
    /// Makes the folder if it is missing. std::runtime_error if another process has its lock or
    /// if there cannot be one.
    explicit FolderLock(const std::filesystem::path &folder);
    ~FolderLock();

    FolderLock(const FolderLock &) = delete;
    FolderLock &operator=(const FolderLock &) = delete;

private:
    int m_file = -1;
};

} // namespace localservice
