#include "localservice/accounts/signinpage.h"

#include "localservice/accounts/qrpicture.h"
#include "localservice/base/refusal.h"

#include <QDateTime>

#include <cstring>

namespace localservice {

namespace {

constexpr const char *pageFolder = "/signin/";
constexpr const char *pictureFolder = "/signin-picture/";
constexpr const char *pictureSuffix = ".png";

constexpr const char *no = "answer=no"; // the body that the button "Not me" sends

struct Texts
{
    Text title;
    Text contents; ///< Names the {application}, the {account} and the {end} of the code.
};

constexpr Text namedApplication{"The application <strong>%1</strong>",
                                "应用程序 <strong>%1</strong> "};
constexpr Text unknownApplication{"An application", "一个应用程序"};

constexpr Texts question{
    {"Sign in?", "要登录吗？"},
    {R"(<p>{application} on this computer asks to be signed in to the speech service as <strong>{account}</strong>.</p>
<form method="post">
<button>Sign in</button>
<button class="other" name="answer" value="no">Not me</button>
</form>
<p class="note">The code expires at <time>{end}</time><span class="clock" aria-hidden="true">, in </span>.</p>
)",
     R"(<p>本机上的{application}请求以 <strong>{account}</strong> 的身份登录语音服务。</p>
<form method="post">
<button>登录</button>
<button class="other" name="answer" value="no">不是我</button>
</form>
<p class="note">此二维码将于 <time>{end}</time> 过期<span class="clock" aria-hidden="true">，还剩 </span>。</p>
)"}};

constexpr Texts done{
    {"Signed in", "已登录"},
    {R"(<p role="status">{application} has been signed in as <strong>{account}</strong>.</p>
<p class="note">You can close this page.</p>
)",
     R"(<p role="status">{application}已以 <strong>{account}</strong> 的身份登录。</p>
<p class="note">您可以关闭此页面。</p>
)"}};

constexpr Texts declined{
    {"Not signed in", "未登录"},
    {R"(<p role="status">The sign-in has been declined. The code is of no use any more.</p>
<p class="note">You can close this page.</p>
)",
     R"(<p role="status">登录请求已被拒绝，此二维码不再有效。</p>
<p class="note">您可以关闭此页面。</p>
)"}};

constexpr Texts unknown{{"Unknown code", "未知二维码"},
                        {R"(<p>There is no such code, or it expired some time ago.</p>
<p class="note">Ask the application for a new code.</p>
)",
                         R"(<p>没有此二维码，或者它早已过期。</p>
<p class="note">请在应用程序中获取新的二维码。</p>
)"}};

constexpr Texts expired{{"Code expired", "二维码已过期"},
                        {R"(<p>This code has expired. Nothing has been signed in with it.</p>
<p class="note">Ask the application for a new code.</p>
)",
                         R"(<p>此二维码已过期，没有应用程序用它登录。</p>
<p class="note">请在应用程序中获取新的二维码。</p>
)"}};

constexpr Texts used{{"Code already used", "二维码已使用"},
                     {R"(<p>This code has been used. It works only once.</p>
<p class="note">Ask the application for a new code.</p>
)",
                      R"(<p>此二维码已被使用，每个二维码只能使用一次。</p>
<p class="note">请在应用程序中获取新的二维码。</p>
)"}};

// %1 is the number of seconds that are left. Where the browser cannot count, the clock is not
// shown: it does not know the property then that shows it. The buttons go at the end, too, which
// the refresh may miss when the computer sleeps.
constexpr const char *countdown =
    R"(@property --left{syntax:"<integer>";inherits:true;initial-value:0}
@property --minutes{syntax:"<integer>";inherits:true;initial-value:0}
@property --shown{syntax:"<custom-ident>";inherits:true;initial-value:inline}
@keyframes count{from{--left:%1}to{--left:0}}
@keyframes go{to{visibility:hidden}}
.clock{display:var(--shown,none);white-space:nowrap;animation:count %1s steps(%1) both;
--minutes:calc((var(--left) - 29.5)/60);
counter-reset:minutes var(--minutes) seconds calc(var(--left) - 60*var(--minutes))}
.clock::after{content:counter(minutes) ":" counter(seconds,decimal-leading-zero)}
form{animation:go 0s %1s forwards}
)";

// Has the browser ask again when the code has expired.
constexpr const char *refresh = "<meta http-equiv=\"refresh\" content=\"%1\">\n";

QString applicationOf(const ShownSignIn &signIn, Language language)
{
    const QString name = QString::fromStdString(signIn.application).toHtmlEscaped();
    return name.isEmpty() ? QString::fromUtf8(unknownApplication.in(language))
                          : QString::fromUtf8(namedApplication.in(language)).arg(name);
}

PageContents contentsOf(const Texts &texts, const ShownSignIn &signIn, const QString &account,
                        Language language)
{
    const QTime end = QDateTime::fromSecsSinceEpoch(signIn.expires).time();
    QString html = QString::fromUtf8(texts.contents.in(language));
    html.replace(QLatin1String("{account}"), account)
        .replace(QLatin1String("{end}"), end.toString(Qt::ISODate))
        .replace(QLatin1String("{application}"), applicationOf(signIn, language));
    return {QString::fromUtf8(texts.title.in(language)), html};
}

Page noLonger(QrSignInState state, Language language)
{
    const auto page = [&](int status, const Texts &texts) {
        return makePage(language, contentsOf(texts, {}, {}, language), status);
    };
    switch (state) {
    case QrSignInState::Unknown:
        return page(404, unknown);
    case QrSignInState::Expired:
        return page(410, expired);
    case QrSignInState::Declined:
        return page(410, declined);
    default:
        return page(410, used);
    }
}

std::string secretOf(const std::string &path) { return path.substr(std::strlen(pageFolder)); }

} // namespace

SignInPage::SignInPage(QrSignIns &signIns, const std::string &origin, const std::string &account)
    : m_signIns(signIns)
    , m_origin(origin)
    , m_account(QString::fromStdString(account).toHtmlEscaped())
{
}

std::string SignInPage::pathOf(const QrSignIn &signIn) { return pageFolder + signIn.pageSecret; }

std::string SignInPage::picturePathOf(const QrSignIn &signIn)
{
    return pictureFolder + signIn.pictureSecret + pictureSuffix;
}

bool SignInPage::isPage(const std::string &path) { return path.rfind(pageFolder, 0) == 0; }

bool SignInPage::isPicture(const std::string &path) { return path.rfind(pictureFolder, 0) == 0; }

Page SignInPage::show(const std::string &path, Language language)
{
    const ShownSignIn signIn = m_signIns.show(secretOf(path));
    if (signIn.state != QrSignInState::Waiting)
        return noLonger(signIn.state, language);
    PageContents contents = contentsOf(question, signIn, m_account, language);
    contents.head = QString::fromUtf8(refresh).arg(signIn.left.count());
    contents.style = QString::fromUtf8(countdown).arg(signIn.left.count());
    return makePage(language, contents);
}

Page SignInPage::answer(const std::string &path, const std::string &body, Language language)
{
    if (!body.empty() && body != no)
        throw Refusal(Code::Malformed, "the answer is not understood");
    const auto decision = body.empty() ? QrSignInState::Confirmed : QrSignInState::Declined;
    const ShownSignIn signIn = m_signIns.show(secretOf(path));
    const QrSignInState before = m_signIns.decide(secretOf(path), decision);
    if (before != QrSignInState::Waiting)
        return noLonger(before, language);
    return makePage(language,
                    contentsOf(body.empty() ? done : declined, signIn, m_account, language));
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
