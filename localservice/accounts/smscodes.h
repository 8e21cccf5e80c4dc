#pragma once

#include "localservice/accounts/accountdatabase.h"

#include <chrono>
#include <string>

namespace localservice {

/// The codes that were sent to phone numbers; they survive the process. May be used by several
/// threads. Every operation may throw SQLite::Exception, as AccountDatabase::transaction() does.
class SmsCodes
{
public:
    static constexpr int mostWrongGuesses = 5; ///< With as many a code is dead.
    static constexpr int mostOfNumber = 5;     ///< Codes for one number in an hour.
    static constexpr int mostOfAll = 100;      ///< Codes for all numbers together in an hour.

    /// @p database outlives this. A code is valid for @p lifetime.
    SmsCodes(AccountDatabase &database, std::chrono::seconds lifetime);

    /// Makes a code of six digits for @p phone in place of an older one; Refusal if there were too
    /// many.
    std::string issue(const std::string &phone);

    /// Whether @p code is the valid one of @p phone; it is used up then. A wrong one is counted.
    bool redeem(const std::string &phone, const std::string &code);

    /// Forgets the codes that have expired and were sent more than an hour ago.
    void sweep();

private:
    AccountDatabase &m_database;
    const std::chrono::seconds m_lifetime;
};

} // namespace localservice
