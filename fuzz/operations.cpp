// Fuzzes the operations of the local service. The first line of the input is the method, the path
// without its prefix and the value of the query; the second is the Authorization header, in which #
// stands for a valid access token; the rest is the body. The engines are told to stop, so that no
// execution waits for them.

#include "localservice/server/operations.h"
#include "input.h"
#include "localservice/accounts/accountdatabase.h"
#include "localservice/accounts/accounts.h"
#include "localservice/accounts/qrsignins.h"
#include "localservice/accounts/signinapi.h"
#include "localservice/accounts/smscodes.h"
#include "localservice/base/console.h"
#include "localservice/base/refusal.h"
#include "localservice/catalogue/catalogue.h"
#include "localservice/catalogue/upgradefile.h"
#include "localservice/server/envelope.h"
#include "localservice/speech/recognizer.h"
#include "localservice/speech/speechapi.h"
#include "localservice/speech/synthesizer.h"
#include "localservice/speech/tasks.h"
#include "localservice/storage/credentials.h"
#include "localservice/storage/storage.h"
#include "temporaryfolder.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <sstream>

using namespace localservice;
using nlohmann::json;

namespace {

constexpr std::chrono::hours hour(1);
constexpr const char *origin = "https://localhost:8443";

/// The service without its server.
class Service
{
public:
    Service()
    {
        (void)!std::freopen("/dev/null", "w", stdout); // the service prints sign-in codes
    }

    /// The valid access token for which # stands.
    std::string token() const { return m_token; }

    Operations operations{m_speech, m_signIn, m_catalogue, m_upgrade};

    /// Forgets the codes that were sent, which limit how soon another one may be.
    void forget()
    {
        m_database.transaction(
            [](SQLite::Database &database) { return database.exec("DELETE FROM sms_code"); });
    }

private:
    TemporaryFolder m_folder;
    std::atomic<bool> m_stopping{true};
    Storage m_storage{m_folder.path() / "storage"};
    AccountDatabase m_database{m_folder.path() / "accounts.sqlite"};
    UpgradeFile m_upgrade{m_folder.path() / "upgrade.json"};
    Recognizer m_recognizer{LOCALSERVICE_MODEL_DIR, 1, m_stopping};
    Synthesizer m_synthesizer{m_stopping};
    Catalogue m_catalogue{m_synthesizer, origin};
    Accounts m_accounts{m_database, {hour, hour}};
    SmsCodes m_smsCodes{m_database, hour};
    QrSignIns m_qrSignIns{hour};
    Credentials m_credentials;
    Tasks m_tasks{1, hour, m_stopping};
    SpeechApi m_speech{{m_recognizer, m_synthesizer, m_storage, m_credentials, m_tasks, m_accounts},
                       {origin, 8443, std::nullopt, hour, hour}};
    SignInApi m_signIn{{m_accounts, m_smsCodes, m_qrSignIns, m_catalogue}, origin};
    const std::string m_token =
        std::to_string(m_accounts.issue(m_accounts.local().id, TokenKind::Access).number);
};

struct Outcome
{
    Code code = Code::Ok;
    json data;
};

Outcome outcomeOf(const Service &service, const std::string &path, const httplib::Request &request,
                  const std::string &body)
{
    try {
        const auto data = service.operations.call(path, request, body);
        return data ? Outcome{Code::Ok, *data} : Outcome{Code::NotFound, {}};
    } catch (const Refusal &refusal) {
        return {refusal.code(), {}};
    }
}

std::string withToken(std::string text, const std::string &token)
{
    const std::size_t at = text.find('#');
    return at == std::string::npos ? text : text.replace(at, 1, token);
}

bool needsToken(const std::string &method, const std::string &path)
{
    return method == "POST" && (path == "asr/process" || path == "asr/getProcessResult");
}

// Checks that nothing succeeds for which a secret of the service is needed.
void checkSecrets(const std::string &path, const Outcome &outcome)
{
    if (outcome.code != Code::Ok)
        return;
    if (path == "login/getMpStatus")
        require(outcome.data.at("status") == 2, "an unknown code to scan is over");
    require(path != "token/refresh", "an unknown token is not renewed");
    require(path != "login/sms", "a code that was not sent signs nobody in");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Service service;
    service.forget();
    Input input(data, size);
    httplib::Request request;
    std::istringstream words(input.line());
    std::string path;
    std::string query;
    words >> request.method >> path >> query;
    for (const char *name : {"business_code", "refresh_token"})
        request.params.emplace(name, withToken(query, service.token()));
    const std::string authorization = withToken(input.line(), service.token());
    request.headers.emplace("Authorization", authorization);
    const std::string body = input.rest();

    for (const char *prefix : {"/convert", "/ucenter", "/app"}) {
        const Outcome outcome =
            outcomeOf(service, prefix + ("/public/index.php/v1/" + path), request, body);
        const bool isTokenRight = authorization == "Bearer " + service.token();
        if (prefix == std::string("/convert") && needsToken(request.method, path))
            require((outcome.code == Code::Unauthorized) != isTokenRight,
                    "just the right token is accepted");
        checkSecrets(path, outcome);
        (void)successEnvelope(outcome.data);
    }
    return 0;
}
