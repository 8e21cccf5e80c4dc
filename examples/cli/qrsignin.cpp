#include "qrsignin.h"

#include "codepicture.h"
#include "console.h"
#include "hostkit/failurereason.h"
#include "hostkit/privatefiles.h"
#include "network/vonetworkintf.h"
#include "progress.h"
#include "qrcode.h"
#include "qrdrawing.h"
#include "terminal.h"

#include <QDir>
#include <QFile>
#include <QImage>

#include <algorithm>
#include <limits>

namespace {

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
        return QStringLiteral("\"%1\" cannot be written: %2").arg(picture(), file.errorString());
    return {};
}

int millisecondsTo(const QDateTime &time)
{
    const qint64 left = QDateTime::currentDateTime().msecsTo(time);
    return static_cast<int>(std::clamp<qint64>(left, 0, std::numeric_limits<int>::max() / 2));
}

} // namespace

QrSignIn::QrSignIn(const Options &options, const Tools &tools)
    : SignIn(options, tools)
{
    connect(tools.service, &VoNetworkIntf::signalGetLoginQrCodeEnd, this, &QrSignIn::onCode);
    connect(tools.service, &VoNetworkIntf::signalGetLoginQrCodeStatusEnd, this,
            &QrSignIn::onStatus);
    m_nextQuestion.setSingleShot(true);
    connect(&m_nextQuestion, &QTimer::timeout, this, &QrSignIn::ask);
    m_expiry.setSingleShot(true);
    connect(&m_expiry, &QTimer::timeout, this,
            [this] { giveUp(QStringLiteral("the code has expired")); });
}

QrSignIn::~QrSignIn() = default;

void QrSignIn::signIn()
{
    if (const QString problem = pictureProblem(); !problem.isEmpty())
        giveUp(problem);
    else
        service()->GetLoginQrCode();
}

// Called twice when the picture could not be fetched: with null, then with the record.
void QrSignIn::onCode(LoginQrCode *code)
{
    m_code.reset(code);
    if (m_isOver)
        return;
    if (!code) {
        giveUp(refusedByService());
        return;
    }
    // The library fetches the picture from any address. Whoever can replace it by another code on
    // the way would have the user confirm that one.
    if (!FailureReason::isPictureTrusted()) {
        giveUp(QStringLiteral("the service sent no usable address of the code's picture"));
        return;
    }
    const QImage image = CodePicture::read(code->qrImagePath);
    if (image.isNull()) {
        giveUp(QStringLiteral("no usable picture of the code came or could be written"));
        return;
    }
    if (const auto modules = QrCode::read(image))
        Console::show(QrDrawing::draw(*modules, Terminal::is(stderr)));
    Console::show(QStringLiteral("Scan this code to sign in; its picture is %1\n").arg(picture()));
    waitForUser();
}

// Asks at intervals, and once more when the code has expired.
void QrSignIn::waitForUser()
{
    m_expiry.start(millisecondsTo(m_code->expire_time) + interval);
    m_nextQuestion.start(interval);
}

void QrSignIn::ask()
{
    progress()->show(
        QStringLiteral("waiting, %1 s left").arg(millisecondsTo(m_code->expire_time) / 1000));
    service()->GetLoginQrCodeStatus(m_code->business_code);
}

// The service object gives null for a user who has not confirmed and for a request that failed.
void QrSignIn::onStatus(UserInfo *user)
{
    const std::unique_ptr<UserInfo> owned(user);
    if (m_isOver)
        return;
    if (!user) {
        m_nextQuestion.start(interval);
        return;
    }
    m_isOver = true;
    m_expiry.stop();
    finishWith(*user);
}

void QrSignIn::giveUp(const QString &problem)
{
    m_isOver = true;
    m_nextQuestion.stop();
    Q_EMIT failed(problem);
}
