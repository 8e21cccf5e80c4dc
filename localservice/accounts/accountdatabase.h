#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <filesystem>
#include <mutex>

namespace localservice {

/// The SQLite file that holds accounts, tokens and SMS codes. Only its owner can read it. May be
/// used by several threads, one of which is served at a time.
class AccountDatabase
{
public:
    /// Opens the file, or makes it, and brings one of an earlier version up to date.
    /// std::runtime_error if it cannot be used; one of a later version never can.
    explicit AccountDatabase(const std::filesystem::path &file);

    /// Returns what @p work, which is given the database, returns. What it changes is kept as a
    /// whole, or not at all when it throws.
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
