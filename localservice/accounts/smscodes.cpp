#include "localservice/accounts/smscodes.h"

#include "localservice/base/refusal.h"
#include "localservice/base/secrets.h"

#include <SQLiteCpp/VariadicBind.h>

#include <cstdint>
#include <ctime>

namespace localservice {

namespace {

// Limits count the codes that were sent in so long a time, whatever became of them.
constexpr std::int64_t hour = 3600; // seconds

std::int64_t now() { return std::time(nullptr); }

void refuseTooMany(SQLite::Database &database, const std::string &phone)
{
    SQLite::Statement count(
        database, "SELECT COUNT(*), COALESCE(SUM(phone = ?), 0) FROM sms_code WHERE sent > ?");
    SQLite::bind(count, phone, now() - hour);
    count.executeStep();
    if (count.getColumn(1).getInt() >= SmsCodes::mostOfNumber)
        throw Refusal(Code::Busy, "that number has been sent too many codes; try again in an hour");
    if (count.getColumn(0).getInt() >= SmsCodes::mostOfAll)
        throw Refusal(Code::Busy, "too many codes have been sent; try again in an hour");
}

} // namespace

SmsCodes::SmsCodes(AccountDatabase &database, std::chrono::seconds lifetime)
    : m_database(database)
    , m_lifetime(lifetime)
{
}

std::string SmsCodes::issue(const std::string &phone)
{
    std::string code = randomCode();
    m_database.transaction([&](SQLite::Database &database) {
        refuseTooMany(database, phone);
        SQLite::Statement insertion(
            database, "INSERT INTO sms_code (phone, code, sent, expires) VALUES (?, ?, ?, ?)");
        SQLite::bind(insertion, phone, code, now(), now() + m_lifetime.count());
        return insertion.exec();
    });
    return code;
}

// The newest code of a number is its only one. Guesses at the same time are counted one after the
// other, since each is a transaction.
bool SmsCodes::redeem(const std::string &phone, const std::string &code)
{
    return m_database.transaction([&](SQLite::Database &database) {
        SQLite::Statement query(database, "SELECT id, code FROM (SELECT * FROM sms_code WHERE "
                                          "phone = ? ORDER BY id DESC LIMIT 1) "
                                          "WHERE expires > ? AND wrong_guesses < ? AND used = 0");
        SQLite::bind(query, phone, now(), mostWrongGuesses);
        if (!query.executeStep())
            return false;
        const bool isRight = query.getColumn(1).getString() == code;
        SQLite::Statement update(
            database, isRight
                          ? "UPDATE sms_code SET used = 1 WHERE id = ?"
                          : "UPDATE sms_code SET wrong_guesses = wrong_guesses + 1 WHERE id = ?");
        SQLite::bind(update, query.getColumn(0).getInt64());
        update.exec();
        return isRight;
    });
}

void SmsCodes::sweep()
{
    m_database.transaction([](SQLite::Database &database) {
        SQLite::Statement deletion(database,
                                   "DELETE FROM sms_code WHERE sent <= ? AND expires <= ?");
        SQLite::bind(deletion, now() - hour, now());
        return deletion.exec();
    });
}

} // namespace localservice
