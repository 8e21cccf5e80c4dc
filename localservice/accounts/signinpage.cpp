#include "localservice/accounts/signinpage.h"

#include "localservice/accounts/qrpicture.h"
#include "localservice/base/refusal.h"

#include <QCryptographicHash>
#include <QDateTime>

#include <cstring>

namespace localservice {

namespace {

constexpr const char *pageFolder = "/signin/";
constexpr const char *pictureFolder = "/signin-picture/";
constexpr const char *pictureSuffix = ".png";

// Each pair of colours has a contrast of 7 to 1 or more; those of the system differ between
// browsers.
constexpr const char *style = R"(
:root{color-scheme:light dark}
*{box-sizing:border-box}
body{margin:0;padding:1.5rem;min-height:100vh;display:flex;align-items:center;justify-content:center;
background:#eef2f7;color:#16202c;font:1.125rem/1.5 system-ui,sans-serif}
main{width:100%;max-width:28rem;padding:2rem 1.5rem;border-radius:1rem;background:#fff;
box-shadow:0 .25rem 1.5rem #16202c26}
h1{margin:0 0 1rem;font-size:1.75rem;line-height:1.2}
p{margin:0 0 1rem}
p:last-child{margin:0}
.note{color:#3b4856}
button{width:100%;min-height:3.5rem;margin:.5rem 0 1.5rem;padding:.75rem 1rem;border:0;
border-radius:.75rem;background:#0b4fa8;color:#fff;font:inherit;font-size:1.25rem;font-weight:600;
cursor:pointer}
button:hover{background:#083d84}
button:focus-visible{outline:.2rem solid #0b4fa8;outline-offset:.2rem}
@media (prefers-color-scheme:dark){
body{background:#0e141b;color:#eef2f7}
main{background:#1a232e;box-shadow:none}
.note{color:#c3cedb}
button{background:#9cc7ff;color:#06203f}
button:hover{background:#c2ddff}
button:focus-visible{outline-color:#9cc7ff}
}
)";

// Names an inline style in a content security policy.
std::string sourceOf(const std::string &text)
{
    const QByteArray digest =
        QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha256);
    return "'sha256-" + digest.toBase64().toStdString() + "'";
}

std::string page(const std::string &title, const std::string &contents)
{
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<title>"
           + title + "</title>\n<style>" + style + "</style>\n</head>\n<body>\n<main>\n<h1>" + title
           + "</h1>\n" + contents + "</main>\n</body>\n</html>\n";
}

SignInPage::Reply question(const std::string &account, std::time_t expires)
{
    const QTime end = QDateTime::fromSecsSinceEpoch(expires).time();
    return {200, page("Sign in?",
                      "<p>The application that shows the code will be signed in to the speech "
                      "service on this computer as <strong>"
                          + account
                          + "</strong>.</p>\n<form method=\"post\">\n"
                            "<button type=\"submit\">Sign in</button>\n</form>\n"
                            "<p class=\"note\">The code expires at <time>"
                          + end.toString(Qt::ISODate).toStdString()
                          + "</time>.</p>\n<p class=\"note\">If you have not asked for this, close "
                            "this page; nothing happens then.</p>\n")};
}

SignInPage::Reply done(const std::string &account)
{
    return {200, page("Signed in",
                      "<p role=\"status\">The application has been signed in as <strong>" + account
                          + "</strong>.</p>\n"
                            "<p class=\"note\">You can close this page.</p>\n")};
}

SignInPage::Reply refusal(int status, const std::string &title, const std::string &reason)
{
    return {status, page(title, "<p>" + reason
                                    + "</p>\n<p class=\"note\">Ask the application for a new code "
                                      "and scan that one.</p>\n")};
}

SignInPage::Reply noLonger(QrSignInState state)
{
    switch (state) {
    case QrSignInState::Unknown:
        return refusal(404, "Unknown code", "There is no such code, or it expired some time ago.");
    case QrSignInState::Expired:
        return refusal(410, "Code expired",
                       "This code has expired. Nothing has been signed in with it.");
    default:
        return refusal(410, "Code already used", "This code has been used. It works only once.");
    }
}

std::string secretOf(const std::string &path) { return path.substr(std::strlen(pageFolder)); }

} // namespace

SignInPage::SignInPage(QrSignIns &signIns, const std::string &origin, const std::string &account)
    : m_signIns(signIns)
    , m_origin(origin)
    , m_account(account)
{
}

std::string SignInPage::pathOf(const QrSignIn &signIn) { return pageFolder + signIn.pageSecret; }

std::string SignInPage::picturePathOf(const QrSignIn &signIn)
{
    return pictureFolder + signIn.pictureSecret + pictureSuffix;
}

bool SignInPage::isPage(const std::string &path) { return path.rfind(pageFolder, 0) == 0; }

bool SignInPage::isPicture(const std::string &path) { return path.rfind(pictureFolder, 0) == 0; }

const std::map<std::string, std::string> &SignInPage::headers()
{
    static const std::map<std::string, std::string> all{
        {"Content-Security-Policy", "default-src 'none'; style-src " + sourceOf(style)
                                        + "; form-action 'self'; base-uri 'none'; "
                                          "frame-ancestors 'none'"},
        {"Referrer-Policy", "no-referrer"},
        {"X-Content-Type-Options", "nosniff"},
    };
    return all;
}

SignInPage::Reply SignInPage::show(const std::string &path)
{
    std::time_t expires = 0;
    const QrSignInState state = m_signIns.state(secretOf(path), &expires);
    return state == QrSignInState::Waiting ? question(m_account, expires) : noLonger(state);
}

SignInPage::Reply SignInPage::confirm(const std::string &path)
{
    const QrSignInState before = m_signIns.confirm(secretOf(path));
    return before == QrSignInState::Waiting ? done(m_account) : noLonger(before);
}

std::string SignInPage::picture(const std::string &path)
{
    const std::string name = path.substr(std::strlen(pictureFolder));
    const std::string secret = name.substr(0, name.find('.'));
    if (const auto page = m_signIns.pageOf(secret); page && name == secret + pictureSuffix)
        return qrPicture(m_origin + pageFolder + *page);
    throw Refusal(Code::NotFound, "there is no such picture, or no longer");
}

} // namespace localservice
