// Fuzzes what gives access to the objects and sign-ins of the local service. The lines of the input
// are a path, a security token, a phone number and a code. In them @ stands for a directory that
// the token allows, # for the token, $ for the code that was sent.

#include "localservice/storage/credentials.h"
#include "input.h"
#include "localservice/accounts/accountdatabase.h"
#include "localservice/accounts/accounts.h"
#include "localservice/accounts/smscodes.h"
#include "localservice/base/refusal.h"
#include "localservice/storage/storage.h"
#include "temporaryfolder.h"

#include <chrono>
#include <istream>
#include <iterator>

using namespace localservice;

namespace {

constexpr std::chrono::hours hour(1);
constexpr const char *prefix = "/storage/speech/";

struct Service
{
    TemporaryFolder folder;
    Storage storage{folder.path() / "storage"};
    Credentials credentials;
    Credential mayWrite = credentials.issue(Storage::uploads, Access::ReadAndWrite, hour);
    Credential mayRead = credentials.issue(Storage::results, Access::Read, hour);
    AccountDatabase database{folder.path() / "accounts.sqlite"};
    SmsCodes smsCodes{database, hour};
    Accounts accounts{database, {hour, hour}};
};

std::string replaced(std::string text, char placeholder, const std::string &value)
{
    const std::size_t at = text.find(placeholder);
    return at == std::string::npos ? text : text.replace(at, 1, value);
}

std::string contents(const OpenObject &object)
{
    object.stream->seekg(0);
    return std::string(std::istreambuf_iterator<char>(*object.stream), {});
}

/// Whether @p call returns. If it does not, it must be refused as forbidden.
template <typename Call>
bool isAllowed(Call call)
{
    try {
        call();
        return true;
    } catch (const Refusal &refusal) {
        require(refusal.code() == Code::Forbidden, "who may not is told no more than that");
        return false;
    }
}

void checkPath(const std::string &path)
{
    const auto object = Storage::parsePath(path);
    if (!object)
        return;
    require(Storage::pathOf(*object) == path, "a path is written as it was read");
    require(object->name.find('/') == std::string::npos && object->name != "."
                && object->name != ".." && object->directory.find("..") == std::string::npos,
            "an object is in its directory");
}

void checkAccess(Service &service, const Credential &credential, bool mayWrite, std::string path,
                 std::string token)
{
    path = replaced(path, '@', credential.directory);
    token = replaced(token, '#', credential.token);
    checkPath(path);
    const std::string bytes = path + token;
    const bool isWritten = isAllowed([&] {
        service.storage.write(service.credentials.permitted(path, token, Access::ReadAndWrite),
                              bytes);
    });
    require(!isWritten
                || (mayWrite && token == credential.token
                    && path.rfind(prefix + credential.directory + "/", 0) == 0),
            "only the right token writes, and only there");
    if (isWritten)
        require(contents(
                    *service.storage.open(service.credentials.permitted(path, token, Access::Read)))
                    == bytes,
                "an object is read as it was written");
}

void checkCode(Service &service, const std::string &phone, const std::string &guess)
{
    service.database.transaction(
        [](SQLite::Database &database) { return database.exec("DELETE FROM sms_code"); });
    const std::string code = service.smsCodes.issue(phone);
    const std::string tried = replaced(guess, '$', code);
    require(service.smsCodes.redeem(phone, tried) == (tried == code), "just the code signs in");
    require(service.smsCodes.redeem(phone, code) == (tried != code), "a code signs in once");
    require(!service.accounts.accepts(guess) && !service.accounts.renew(guess),
            "a code is no token");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Service service;
    Input input(data, size);
    const std::string path = input.line();
    const std::string token = input.line();
    checkAccess(service, service.mayWrite, true, path, token);
    checkAccess(service, service.mayRead, false, path, token);
    const std::string phone = input.line();
    checkCode(service, phone, input.rest());
    return 0;
}
