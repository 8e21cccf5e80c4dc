#include "localservice/server/operations.h"

#include "localservice/server/connections.h"
#include "localservice/server/peerprogram.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace localservice {

// The parts of a request that operations read.
struct Operations::Question
{
    const httplib::Request &request;
    const std::string &body;

    // The library's own get_header_value() ends it at its first NUL.
    std::string authorization() const
    {
        const auto found = request.headers.find("Authorization");
        return found == request.headers.end() ? std::string() : found->second;
    }
    std::string parameter(const char *name) const { return request.get_param_value(name); }
};

namespace {

constexpr const char *speechPrefix = "/convert/public/index.php/v1/";
constexpr const char *accountPrefix = "/ucenter/public/index.php/v1/";
constexpr const char *appPrefix = "/app/public/index.php/v1/";

} // namespace

Operations::Operations(SpeechApi &speech, SignInApi &signIn, Catalogue &catalogue,
                       UpgradeFile &upgrade)
{
    const auto add = [this](const char *method, const char *prefix, const char *name, Call call) {
        m_operations.push_back({method, std::string(prefix) + name, std::move(call)});
    };
    add("POST", speechPrefix, "asr/process",
        [&](const Question &q) { return speech.process(q.authorization(), q.body); });
    add("POST", speechPrefix, "asr/freeProcess",
        [&](const Question &q) { return speech.freeProcess(q.body); });
    add("POST", speechPrefix, "asr/getProcessResult",
        [&](const Question &q) { return speech.taskResult(q.authorization(), q.body); });
    add("GET", speechPrefix, "upload/getsignsts",
        [&](const Question &) { return speech.uploadCredential(); });
    add("GET", speechPrefix, "asr/getVoice", [&](const Question &) { return catalogue.voices(); });
    add("GET", speechPrefix, "asr/getBackgroundMusic",
        [&](const Question &) { return catalogue.music(); });
    add("GET", accountPrefix, "login/getMpQrCode",
        [&](const Question &) { return signIn.qrCode(peerProgram(Connections::ofThisThread())); });
    add("GET", accountPrefix, "login/getMpStatus",
        [&](const Question &q) { return signIn.qrStatus(q.parameter("business_code")); });
    add("POST", accountPrefix, "verify/sms",
        [&](const Question &q) { return signIn.sendCode(q.body); });
    add("POST", accountPrefix, "login/sms",
        [&](const Question &q) { return signIn.signInWithCode(q.body); });
    add("GET", accountPrefix, "token/refresh",
        [&](const Question &q) { return signIn.renew(q.parameter("refresh_token")); });
    add("GET", appPrefix, "app/upgrade", [&](const Question &) { return upgrade.read(); });
}

bool Operations::isResponsible(const std::string &path)
{
    const std::array<std::string_view, 3> prefixes{speechPrefix, accountPrefix, appPrefix};
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [&](std::string_view prefix) { return path.rfind(prefix, 0) == 0; });
}

std::optional<nlohmann::json> Operations::call(const std::string &path,
                                               const httplib::Request &request,
                                               const std::string &body) const
{
    for (const Operation &operation : m_operations)
        if (operation.method == request.method && operation.path == path)
            return operation.call({request, body});
    return std::nullopt;
}

} // namespace localservice
