#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <filesystem>
#include <mutex>

namespace localservice {

/// The SQLite file that holds accounts, tokens and SMS codes. May be used by several threads, one
/// of which is served at a time.
class AccountDatabase
{
public:
    /// Opens the file, or makes it with the rights that the umask leaves, and brings one of an
    /// earlier version up to date. std::runtime_error if it cannot be used; one of a later version
    /// never can.
    explicit AccountDatabase(const std::filesystem::path &file);

    /// Calls @p work with the database and returns what that returns. Its changes are kept
    /// together, or not at all when it throws. SQLite::Exception if the file cannot be read or
    /// written, or if another process has locked it for five seconds.
    template <typename Work>
    auto transaction(Work work)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        SQLite::Transaction transaction(m_database);
        auto result = work(m_database);
        transaction.commit();
        return result;
    }

private:
    void migrate();

    std::mutex m_mutex;
    SQLite::Database m_database; // guarded by m_mutex
};

} // namespace localservice
