#pragma once

#include "localservice/accounts/accountdatabase.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace localservice {

/// Somebody who can be signed in.
struct Account
{
    std::int64_t id = 0;  ///< From 1 on; no two accounts ever have the same.
    std::string nickname; ///< The name that people see.
};

/// The kinds of tokens, as the database has them.
enum class TokenKind {
    Access = 0,  ///< Operations want one.
    Refresh = 1, ///< Accounts::renew() takes one.
};

/// A token that was given out just now.
struct Token
{
    std::int64_t number = 0;  ///< From 2 to 2^53 - 1.
    std::int64_t expires = 0; ///< Seconds since the epoch.
};

/// The accounts and the tokens that their sign-ins gave out; both survive the process. Tokens are
/// compared as texts: another way to write the same number is another token. May be used by several
/// threads. Every operation may throw SQLite::Exception, as AccountDatabase::transaction() does.
class Accounts
{
public:
    /// How long tokens of each kind are valid.
    struct Lifetimes
    {
        std::chrono::seconds access{};
        std::chrono::seconds refresh{};
    };

    /// @p database outlives this.
    Accounts(AccountDatabase &database, const Lifetimes &lifetimes);

    /// The one account of this machine.
    Account local();

    /// The account of a phone number of four digits at least, which is made if there is none.
    Account ofPhone(const std::string &phone);

    /// Gives out a token. An account with more than 1000 of a kind loses those that would expire
    /// first.
    Token issue(std::int64_t account, TokenKind kind);

    /// Whether @p token is an access token that has not expired.
    bool accepts(const std::string &token);

    /// A new access token for the account of a refresh token; nothing if that is unknown or has
    /// expired. Earlier access tokens stay valid.
    std::optional<Token> renew(const std::string &refreshToken);

    /// Forgets the tokens that have expired.
    void sweep();

private:
    std::optional<std::int64_t> accountOf(const std::string &token, TokenKind kind);

    AccountDatabase &m_database;
    const Lifetimes m_lifetimes;
};

} // namespace localservice
