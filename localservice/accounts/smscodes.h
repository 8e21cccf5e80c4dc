#pragma once

#include "localservice/accounts/accountdatabase.h"

#include <chrono>
#include <string>

namespace localservice {

/// The codes that were sent to phone numbers; they survive the process. May be used by several
/// threads.
class SmsCodes
{
public:
    static constexpr int mostWrongGuesses = 5; ///< Of a code, which is dead then.
    static constexpr int mostOfNumber = 5;     ///< Codes for one number in an hour.
    static constexpr int mostOfAll = 100;      ///< Codes for all numbers together in an hour.

    /// @p database outlives this.
    SmsCodes(AccountDatabase &database, std::chrono::seconds lifetime);

    /// A new code for @p phone in place of an older one; Refusal if there were too many.
    std::string issue(const std::string &phone);

    /// Whether @p code is the valid one of @p phone, which it is no longer then.
    bool redeem(const std::string &phone, const std::string &code);

    /// Forgets what counts for nothing any more.
    void sweep();

private:
    AccountDatabase &m_database;
    const std::chrono::seconds m_lifetime;
};

} // namespace localservice
