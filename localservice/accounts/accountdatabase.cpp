#include "localservice/accounts/accountdatabase.h"

#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace localservice {

namespace {

constexpr int schemaVersion = 1;
constexpr int busyTimeout = 5000; // ms, while somebody looks at the file

// Times are seconds since the epoch. Tokens are kept as digests, so a look at the file does not
// show any. The first account is the one of this machine; the others have a phone number.
constexpr const char *schema = R"(
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
)";

// SQLite gives its journal the rights of the file.
const std::filesystem::path &madePrivate(const std::filesystem::path &path)
{
    const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    const bool isPrivate = file >= 0 && ::fchmod(file, S_IRUSR | S_IWUSR) == 0;
    if (file >= 0)
        ::close(file);
    if (!isPrivate)
        throw std::runtime_error("cannot write \"" + path.string() + "\"");
    return path;
}

} // namespace

AccountDatabase::AccountDatabase(const std::filesystem::path &file)
try : m_database(madePrivate(file).string(), SQLite::OPEN_READWRITE, busyTimeout) {
    prepareSchema();
} catch (const SQLite::Exception &error) {
    throw std::runtime_error("cannot use \"" + file.string() + "\": " + error.what());
}

void AccountDatabase::prepareSchema()
{
    const int version = m_database.execAndGet("PRAGMA user_version").getInt();
    if (version == schemaVersion)
        return;
    if (version != 0)
        throw SQLite::Exception("it is of another version");
    SQLite::Transaction transaction(m_database);
    m_database.exec(schema);
    m_database.exec("PRAGMA user_version = " + std::to_string(schemaVersion));
    transaction.commit();
}

} // namespace localservice
