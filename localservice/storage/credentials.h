#pragma once

#include <QDateTime>

#include <chrono>
#include <map>
#include <mutex>
#include <string>

namespace localservice {

/// What a holder may do with the objects of a directory.
enum class Access {
    Read,
    ReadAndWrite, ///< Replacing objects included.
};

/// A right of access to one directory of the storage.
struct Credential
{
    std::string directory; ///< Such as "uploads/<id>"; no other credential has it.
    std::string token;     ///< The secret that goes with it.
    QDateTime expiration;  ///< In UTC.
};

/// The credentials that have been given out. They live in memory: none survives the process.
/// May be used by several threads.
class Credentials
{
public:
    /// A new credential for a new directory under @p parent.
    Credential issue(const std::string &parent, Access access, std::chrono::seconds lifetime);

    /// Whether @p token is valid now for @p access to @p directory.
    bool allows(const std::string &directory, const std::string &token, Access access) const;

    /// Forgets what has expired.
    void sweep();

private:
    struct Entry
    {
        std::string token;
        Access access = Access::Read;
        // Not affected by changes of the clock, unlike the time that the holder is told.
        std::chrono::steady_clock::time_point expiration;
    };

    mutable std::mutex m_mutex;
    std::map<std::string, Entry> m_entries; // by directory; guarded by m_mutex
};

} // namespace localservice
