#include "localservice/accounts/signinapi.h"

#include "localservice/accounts/signinpage.h"
#include "localservice/base/console.h"
#include "localservice/base/jsonbody.h"
#include "localservice/base/refusal.h"

#include <QDateTime>

namespace localservice {

namespace {

constexpr int codeForSignIn = 1; // the only scene in which a code is sent

// The values of "status" in the reply to who polls a sign-in by QR code.
constexpr int waiting = 0;
constexpr int confirmed = 1;
constexpr int over = 2; // expired, declined or already used

std::string timeText(std::int64_t time)
{
    return QDateTime::fromSecsSinceEpoch(time)
        .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))
        .toStdString();
}

std::string phoneOf(const JsonBody &body)
{
    constexpr std::size_t fewestDigits = 5;
    constexpr std::size_t mostDigits = 15;
    std::string phone = body.text("phone");
    const std::size_t begin = !phone.empty() && phone[0] == '+' ? 1 : 0;
    const std::size_t digits = phone.size() - begin;
    if (digits < fewestDigits || digits > mostDigits
        || phone.find_first_not_of("0123456789", begin) != std::string::npos)
        throw Refusal(Code::UnusableValue, "\"phone\" has to be 5 to 15 digits, with or without +");
    return phone;
}

} // namespace

SignInApi::SignInApi(const SignInServices &services, const std::string &origin)
    : m_services(services)
    , m_origin(origin)
{
}

nlohmann::json SignInApi::qrCode(const std::string &application)
{
    const QrSignIn signIn = m_services.qrSignIns.begin(application);
    say("sign-in page " + m_origin + SignInPage::pathOf(signIn));
    return {{"url", m_origin + SignInPage::picturePathOf(signIn)},
            {"expire_time", signIn.expires},
            {"business_code", signIn.pollSecret}};
}

nlohmann::json SignInApi::qrStatus(const std::string &businessCode)
{
    switch (m_services.qrSignIns.collect(businessCode)) {
    case QrSignInState::Waiting:
        return {{"status", waiting}};
    case QrSignInState::Confirmed:
        return {{"status", confirmed}, {"user_info", signedIn(m_services.accounts.local())}};
    default:
        return {{"status", over}};
    }
}

nlohmann::json SignInApi::sendCode(const std::string &body)
{
    const JsonBody request(body);
    const std::string phone = phoneOf(request);
    if (request.integer("scene", 0, codeForSignIn, codeForSignIn) != codeForSignIn)
        throw Refusal(Code::Malformed, "\"scene\" is missing");
    say("SMS to " + phone + ": " + m_services.smsCodes.issue(phone) + " is your sign-in code");
    return nlohmann::json::object();
}

nlohmann::json SignInApi::signInWithCode(const std::string &body)
{
    const JsonBody request(body);
    const std::string phone = phoneOf(request);
    if (!m_services.smsCodes.redeem(phone, request.text("verify")))
        throw Refusal(Code::Forbidden, "the code is not valid, or no longer");
    return signedIn(m_services.accounts.ofPhone(phone));
}

nlohmann::json SignInApi::renew(const std::string &refreshToken)
{
    const auto token = m_services.accounts.renew(refreshToken);
    if (!token)
        throw Refusal(Code::Unauthorized, "the refresh token is not valid, or no longer");
    return {{"token", token->number}, {"expire_time", timeText(token->expires)}};
}

nlohmann::json SignInApi::signedIn(const Account &account)
{
    const Token access = m_services.accounts.issue(account.id, TokenKind::Access);
    const Token refresh = m_services.accounts.issue(account.id, TokenKind::Refresh);
    return {{"base",
             {{"user_id", account.id},
              {"nickname", account.nickname},
              {"header_url", m_services.catalogue.userPicture(account.id)}}},
            {"token",
             {{"token", access.number},
              {"refresh_token", refresh.number},
              {"token_expire_time", timeText(access.expires)},
              {"refresh_expire_time", timeText(refresh.expires)}}}};
}

} // namespace localservice
