#include "localservice/accounts/accountdatabase.h"

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace localservice {

namespace {

constexpr int busyTimeout = 5000; // ms, for whoever else has the file open

// A migration makes the next version of a file out of the one before; "user_version" counts those
// that a file has had. None is ever changed, since files were made by it: a new table is another
// migration at the end.
//
// Times are seconds since the epoch. Tokens are kept as digests, so a look at the file does not
// show any. The account without a phone number is that of this machine.
constexpr std::array migrations{R"(
    CREATE TABLE account (
        id INTEGER PRIMARY KEY AUTOINCREMENT,
        phone TEXT UNIQUE,
        nickname TEXT NOT NULL);
    INSERT INTO account (nickname) VALUES ('Local user');
    CREATE TABLE token (
        digest TEXT PRIMARY KEY,
        account INTEGER NOT NULL REFERENCES account (id),
        kind INTEGER NOT NULL,
        expires INTEGER NOT NULL) WITHOUT ROWID;
    CREATE TABLE sms_code (
        id INTEGER PRIMARY KEY AUTOINCREMENT,
        phone TEXT NOT NULL,
        code TEXT NOT NULL,
        sent INTEGER NOT NULL,
        expires INTEGER NOT NULL,
        wrong_guesses INTEGER NOT NULL DEFAULT 0,
        used INTEGER NOT NULL DEFAULT 0);
)"};

} // namespace

AccountDatabase::AccountDatabase(const std::filesystem::path &file)
try : m_database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, busyTimeout) {
    migrate();
} catch (const SQLite::Exception &error) {
    throw std::runtime_error("cannot use \"" + file.string() + "\": " + error.what());
}

void AccountDatabase::migrate()
{
    const int version = m_database.execAndGet("PRAGMA user_version").getInt();
    const int newest = static_cast<int>(migrations.size());
    if (version == newest)
        return;
    if (version < 0 || version > newest)
        throw SQLite::Exception("it was made by a later version of the service");
    SQLite::Transaction transaction(m_database);
    for (int i = version; i < newest; ++i)
        m_database.exec(migrations[static_cast<std::size_t>(i)]);
    m_database.exec("PRAGMA user_version = " + std::to_string(newest));
    transaction.commit();
}

} // namespace localservice
