#include "hostkit/signinjobs.h"

#include "hostkit/hostkit.h"
#include "hostkit/privatefiles.h"
#include "hostkit/servicelease.h"
#include "hostkit/session.h"
#include "hostkit/sessionfile.h"
#include "hostkit/tokenkeeper.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QTimer>

namespace {

using Kind = Reason::Kind;

constexpr int interval = 1000; // ms between two questions

// The folder in which the library puts the picture.
QString folder() { return QDir(QDir::tempPath()).filePath(QStringLiteral("VoTTS")); }

QString picture() { return QDir(folder()).filePath(QStringLiteral("login_qr_code.png")); }

// Checked beforehand, because the library does not answer when it cannot write the picture.
QString pictureProblem()
{
    if (QString problem = PrivateFiles::claimFolder(folder()); !problem.isEmpty())
        return problem;
    const PrivateFiles onlyOurs;
    QFile file(picture());
    const bool isGone = !file.exists() || file.remove(); // the picture of an earlier code
    if (!isGone || !file.open(QIODevice::WriteOnly))
        return CodeSignInJob::tr("\"%1\" cannot be written: %2").arg(picture(), file.errorString());
    return {};
}

// A code that nobody could ask about may have been confirmed.
bool hasAnswered(const Reason &reason)
{
    return reason.kind != Kind::Unreachable && reason.kind != Kind::Network
           && reason.kind != Kind::Tls && reason.kind != Kind::Proxy;
}

// Answered twice when the picture could not be fetched: with null, then with the record. The loop
// goes on until the handler of the first answer has returned, which is after the second.
std::unique_ptr<LoginQrCode> waitForCode(VoNetworkIntf *service)
{
    std::unique_ptr<LoginQrCode> last;
    QEventLoop loop;
    const auto take = [&](LoginQrCode *code) {
        last.reset(code);
        loop.quit();
    };
    QObject::connect(service, &VoNetworkIntf::signalGetLoginQrCodeEnd, &loop, take);
    service->GetLoginQrCode();
    loop.exec();
    return last;
}

} // namespace

void SignInJob::begin()
{
    if (const QString problem = SessionFile::problem(); !problem.isEmpty())
        fail({Kind::File, problem});
    else
        signIn();
}

// The user is a copy: it may be a part of what goes.
void SignInJob::finishWith(UserInfo user)
{
    if (const Reason reason = kit()->tokens()->keep(Session::from(user)); !reason.isNone())
        fail(reason);
    else if (conclude())
        Q_EMIT succeeded(user);
}

CodeSignInJob::CodeSignInJob(HostKit *kit, QObject *parent)
    : SignInJob(kit, parent)
{
}

CodeSignInJob::~CodeSignInJob() = default;

void CodeSignInJob::signIn()
{
    if (const QString problem = pictureProblem(); !problem.isEmpty())
        return fail({Kind::File, problem});
    struct Answer
    {
        std::shared_ptr<LoginQrCode> code;
        bool isTrusted = false;
    };
    const auto answer = std::make_shared<Answer>();
    runWaiting(
        [=](VoNetworkIntf *service) {
            answer->code = waitForCode(service);
            answer->isTrusted = FailureReasons::isPictureTrusted();
        },
        [=](const Reason &reason) {
            m_code = answer->code;
            onCode(reason, answer->isTrusted);
        });
    Q_EMIT progressed(Stage::Asking, 0, 0);
}

// The library fetches the picture from any address. Whoever can replace it by another code on the
// way would have the user confirm that one.
void CodeSignInJob::onCode(const Reason &reason, bool isTrusted)
{
    if (!m_code)
        return fail(reason.isNone() ? notAnswered() : reason);
    if (!isTrusted)
        return fail(
            {Kind::BadAnswer, tr("the service sent no usable address of the code's picture")});
    if (!reason.isNone())
        return fail(reason);
    if (QFileInfo(m_code->qrImagePath).size() == 0)
        return fail({Kind::File, tr("no usable picture of the code came or could be written")});
    m_since = QDateTime::currentDateTime();
    askLater();
    Q_EMIT codeReady(picture(), m_code->expire_time);
}

void CodeSignInJob::askLater()
{
    QTimer::singleShot(interval, work(), [this] { ask(); });
}

// Asks at intervals, and once more when the code has expired.
void CodeSignInJob::ask()
{
    service()->ask(
        &VoNetworkIntf::signalGetLoginQrCodeStatusEnd,
        [this](VoNetworkIntf *service) { service->GetLoginQrCodeStatus(m_code->business_code); },
        [this](UserInfo *user) { onUser(user); });
    Q_EMIT progressed(Stage::WaitingForUser, m_since.secsTo(QDateTime::currentDateTime()),
                      m_since.secsTo(m_code->expire_time));
}

// The service object gives null for a user who has not confirmed and for a request that failed.
void CodeSignInJob::onUser(UserInfo *user)
{
    const std::unique_ptr<UserInfo> owned(user);
    const Reason reason = FailureReasons::take();
    if (user)
        finishWith(*user);
    else if (m_code->expire_time >= QDateTime::currentDateTime())
        askLater();
    else if (hasAnswered(reason))
        fail({Kind::Expired, tr("the code has expired")});
    else
        fail(reason);
}

SmsSignInJob::SmsSignInJob(HostKit *kit, const QString &phone, QObject *parent)
    : SignInJob(kit, parent)
    , m_phone(phone)
{
}

void SmsSignInJob::signIn()
{
    if (!m_code.isEmpty())
        return enter(m_code);
    service()->ask(
        &VoNetworkIntf::signalSendSmsEnd,
        [this](VoNetworkIntf *service) { service->SendSmsVerifyCode(m_phone); },
        [this] { onSent(); });
    Q_EMIT progressed(Stage::Asking, 0, 0);
}

// The service object does not say whether a code was sent; the log may.
void SmsSignInJob::onSent()
{
    if (const Reason reason = FailureReasons::take(); !reason.isNone())
        return fail(reason);
    const QPointer<QObject> here(work());
    Q_EMIT progressed(Stage::WaitingForUser, 0, 0);
    if (here)
        Q_EMIT codeSent();
}

void SmsSignInJob::enter(const QString &code)
{
    m_code = code;
    if (!isUnderWay())
        return;
    service()->ask(
        &VoNetworkIntf::signalSmsLoginEnd,
        [=](VoNetworkIntf *service) { service->SmsVerifyCodeLogin(m_phone, code); },
        [this](UserInfo *user) { onUser(user); });
    Q_EMIT progressed(Stage::Asking, 0, 0);
}

void SmsSignInJob::onUser(UserInfo *user)
{
    const std::unique_ptr<UserInfo> owned(user);
    if (user)
        finishWith(*user);
    else
        failAsTold();
}

RenewJob::RenewJob(HostKit *kit, QObject *parent)
    : ServiceJob(kit, parent)
{
}

void RenewJob::begin()
{
    kit()->tokens()->renew(
        0, work(),
        [this](qint64) {
            if (conclude())
                Q_EMIT succeeded();
        },
        [this](const Reason &reason) { fail(reason); });
}
