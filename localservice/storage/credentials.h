#pragma once

#include "localservice/storage/storage.h"

#include <QDateTime>

#include <chrono>
#include <map>
#include <mutex>
#include <string>

namespace localservice {

/// What the holder of a credential may do with the objects of its directory.
enum class Access {
    Read,         ///< Get them.
    ReadAndWrite, ///< Get, put and replace them.
};

/// A right of access to one directory of the storage.
struct Credential
{
    std::string directory; ///< "uploads/ID" or "results/ID"; no other credential has it.
    std::string token;     ///< The secret that goes with it.
    QDateTime expiration;  ///< In UTC.
};

/// The credentials that were given out. They live in memory: none survives the process. May be used
/// by several threads.
class Credentials
{
public:
    /// Makes a credential for a new directory under @p parent, valid for @p lifetime.
    Credential issue(const std::string &parent, Access access, std::chrono::seconds lifetime);

    /// The object at the path of an address, to which @p token now allows @p access; Refusal if it
    /// does not.
    ObjectName permitted(const std::string &path, const std::string &token, Access access) const;

    /// Forgets the credentials that have expired.
    void sweep();

private:
    struct Entry
    {
        std::string token;
        Access access = Access::Read;
        // Changes of the clock do not affect it, unlike the time that the holder is told.
        std::chrono::steady_clock::time_point expiration;
    };

    bool allows(const std::string &directory, const std::string &token, Access access) const;

    mutable std::mutex m_mutex;
    std::map<std::string, Entry> m_entries; // by directory; guarded by m_mutex
};

} // namespace localservice
