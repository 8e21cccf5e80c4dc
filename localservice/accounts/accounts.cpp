#include "localservice/accounts/accounts.h"

#include "localservice/base/secrets.h"

#include <SQLiteCpp/VariadicBind.h>

#include <ctime>

namespace localservice {

namespace {

constexpr int mostTokens = 1000; // of an account and a kind
constexpr std::size_t shownDigits = 4;

Account accountFrom(SQLite::Statement &query)
{
    query.executeStep();
    return {query.getColumn(0).getInt64(), query.getColumn(1).getString()};
}

} // namespace

Accounts::Accounts(AccountDatabase &database, const Lifetimes &lifetimes)
    : m_database(database)
    , m_lifetimes(lifetimes)
{
}

Account Accounts::local()
{
    return m_database.transaction([](SQLite::Database &database) {
        SQLite::Statement query(database, "SELECT id, nickname FROM account WHERE phone IS NULL");
        return accountFrom(query);
    });
}

Account Accounts::ofPhone(const std::string &phone)
{
    return m_database.transaction([&](SQLite::Database &database) {
        SQLite::Statement insertion(
            database, "INSERT INTO account (phone, nickname) VALUES (?, ?) "
                      "ON CONFLICT (phone) DO UPDATE SET phone = phone RETURNING id, nickname");
        SQLite::bind(insertion, phone, "User " + phone.substr(phone.size() - shownDigits));
        return accountFrom(insertion);
    });
}

bool Accounts::accepts(const std::string &token)
{
    return accountOf(token, TokenKind::Access).has_value();
}

std::optional<Token> Accounts::renew(const std::string &refreshToken)
{
    const auto account = accountOf(refreshToken, TokenKind::Refresh);
    if (!account)
        return std::nullopt;
    return issue(*account, TokenKind::Access);
}

void Accounts::sweep()
{
    m_database.transaction([](SQLite::Database &database) {
        SQLite::Statement deletion(database, "DELETE FROM token WHERE expires <= ?");
        SQLite::bind(deletion, std::int64_t{std::time(nullptr)});
        return deletion.exec();
    });
}

Token Accounts::issue(std::int64_t account, TokenKind kind)
{
    const auto lifetime = kind == TokenKind::Access ? m_lifetimes.access : m_lifetimes.refresh;
    const Token token{randomToken(), std::time(nullptr) + lifetime.count()};
    m_database.transaction([&](SQLite::Database &database) {
        SQLite::Statement insertion(
            database, "INSERT INTO token (digest, account, kind, expires) VALUES (?, ?, ?, ?)");
        SQLite::bind(insertion, digestOf(std::to_string(token.number)), account,
                     static_cast<int>(kind), token.expires);
        insertion.exec();
        SQLite::Statement deletion(
            database, "DELETE FROM token WHERE digest IN (SELECT digest FROM token "
                      "WHERE account = ? AND kind = ? ORDER BY expires DESC LIMIT -1 OFFSET ?)");
        SQLite::bind(deletion, account, static_cast<int>(kind), mostTokens);
        return deletion.exec();
    });
    return token;
}

std::optional<std::int64_t> Accounts::accountOf(const std::string &token, TokenKind kind)
{
    return m_database.transaction([&](SQLite::Database &database) -> std::optional<std::int64_t> {
        SQLite::Statement query(
            database, "SELECT account FROM token WHERE digest = ? AND kind = ? AND expires > ?");
        SQLite::bind(query, digestOf(token), static_cast<int>(kind),
                     std::int64_t{std::time(nullptr)});
        if (!query.executeStep())
            return std::nullopt;
        return query.getColumn(0).getInt64();
    });
}

} // namespace localservice
