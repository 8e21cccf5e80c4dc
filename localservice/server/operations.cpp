#include "localservice/server/operations.h"

#include "localservice/server/headervalue.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace localservice {

namespace {

constexpr const char *speechPrefix = "/convert/public/index.php/v1/";
constexpr const char *accountPrefix = "/ucenter/public/index.php/v1/";
constexpr const char *appPrefix = "/app/public/index.php/v1/";

std::string at(const char *prefix, const char *name) { return std::string(prefix) + name; }

std::string authorizationOf(const httplib::Request &request)
{
    return headerValue(request, "Authorization");
}

} // namespace

Operations::Operations(SpeechApi &speech, SignInApi &signIn, Catalogue &catalogue,
                       UpgradeFile &upgrade)
{
    addSpeech(speech);
    addSignIn(signIn);
    m_operations.push_back({"GET", at(speechPrefix, "asr/getVoice"),
                            [&](const auto &, const auto &) { return catalogue.voices(); }});
    m_operations.push_back({"GET", at(speechPrefix, "asr/getBackgroundMusic"),
                            [&](const auto &, const auto &) { return catalogue.music(); }});
    m_operations.push_back({"GET", at(appPrefix, "app/upgrade"),
                            [&](const auto &, const auto &) { return upgrade.read(); }});
}

void Operations::addSpeech(SpeechApi &speech)
{
    m_operations.push_back(
        {"POST", at(speechPrefix, "asr/process"), [&](const auto &request, const auto &body) {
             return speech.process(authorizationOf(request), body);
         }});
    m_operations.push_back(
        {"POST", at(speechPrefix, "asr/freeProcess"),
         [&](const auto &, const auto &body) { return speech.freeProcess(body); }});
    m_operations.push_back({"POST", at(speechPrefix, "asr/getProcessResult"),
                            [&](const auto &request, const auto &body) {
                                return speech.taskResult(authorizationOf(request), body);
                            }});
    m_operations.push_back({"GET", at(speechPrefix, "upload/getsignsts"),
                            [&](const auto &, const auto &) { return speech.uploadCredential(); }});
}

void Operations::addSignIn(SignInApi &signIn)
{
    m_operations.push_back({"GET", at(accountPrefix, "login/getMpQrCode"),
                            [&](const auto &, const auto &) { return signIn.qrCode(); }});
    m_operations.push_back(
        {"GET", at(accountPrefix, "login/getMpStatus"), [&](const auto &request, const auto &) {
             return signIn.qrStatus(request.get_param_value("business_code"));
         }});
    m_operations.push_back({"POST", at(accountPrefix, "verify/sms"),
                            [&](const auto &, const auto &body) { return signIn.sendCode(body); }});
    m_operations.push_back(
        {"POST", at(accountPrefix, "login/sms"),
         [&](const auto &, const auto &body) { return signIn.signInWithCode(body); }});
    m_operations.push_back(
        {"GET", at(accountPrefix, "token/refresh"), [&](const auto &request, const auto &) {
             return signIn.renew(request.get_param_value("refresh_token"));
         }});
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
    for (const Operation &operation : m_operations) {
        if (operation.method == request.method && operation.path == path)
            return operation.call(request, body);
    }
    return std::nullopt;
}

} // namespace localservice
