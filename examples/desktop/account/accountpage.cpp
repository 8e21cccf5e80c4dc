#include "account/accountpage.h"

#include "common/desk.h"
#include "common/notice.h"
#include "hostkit/signinjobs.h"
#include "hostkit/tokenkeeper.h"
#include "signin/codepicture.h"
#include "start/serviceprocess.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int pictureSize = 240; // pixels
constexpr int patience = 5;      // seconds, with the answer that a code has expired

} // namespace

AccountPage::AccountPage(Desk *desk, QWidget *parent)
    : QWidget(parent)
    , m_desk(desk)
    , m_notice(new Notice)
    , m_user(new QLabel)
    , m_signOut(new QPushButton(tr("Sign &out")))
    , m_ways(new QWidget)
    , m_picture(new QLabel)
    , m_timeLeft(new QLabel)
    , m_newCode(new QPushButton(tr("&Show a code")))
    , m_phone(new QLineEdit)
    , m_send(new QPushButton(tr("S&end an SMS")))
    , m_smsCode(new QLineEdit)
    , m_enter(new QPushButton(tr("Sign &in")))
    , m_heard(new QLabel)
{
    m_user->setTextFormat(Qt::PlainText);
    m_user->setObjectName(QStringLiteral("user"));
    m_heard->setTextInteractionFlags(Qt::TextBrowserInteraction);
    m_heard->setOpenExternalLinks(true);
    m_heard->setWordWrap(true);
    auto *user = new QHBoxLayout;
    user->addWidget(m_user, 1);
    user->addWidget(m_signOut);
    auto *ways = new QHBoxLayout(m_ways);
    ways->setContentsMargins({});
    ways->addWidget(makeCode());
    ways->addWidget(makeSms());
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_notice);
    layout->addLayout(user);
    layout->addWidget(m_ways);
    layout->addWidget(m_heard);
    layout->addStretch(1);

    connect(m_signOut, &QPushButton::clicked, this, &AccountPage::signOut);
    connect(m_newCode, &QPushButton::clicked, this, &AccountPage::askForCode);
    connect(m_send, &QPushButton::clicked, this, &AccountPage::askForSms);
    connect(m_enter, &QPushButton::clicked, this, &AccountPage::enterSms);
    connect(m_phone, &QLineEdit::returnPressed, m_send, &QPushButton::click);
    connect(m_smsCode, &QLineEdit::returnPressed, m_enter, &QPushButton::click);
    connect(desk->service(), &ServiceProcess::said, this, &AccountPage::hear);
    connect(desk, &Desk::sessionChanged, this, &AccountPage::showUser);
    connect(&m_clock, &QTimer::timeout, this, &AccountPage::showTimeLeft);
    endCode({});
    showUser();
}

QGroupBox *AccountPage::makeCode()
{
    m_picture->setObjectName(QStringLiteral("code"));
    m_newCode->setObjectName(QStringLiteral("newCode"));
    m_picture->setFixedSize(pictureSize, pictureSize);
    m_picture->setAlignment(Qt::AlignCenter);
    m_picture->setFrameShape(QFrame::StyledPanel);
    m_picture->setWordWrap(true);
    m_picture->setAccessibleName(tr("Code to sign in with"));
    auto *group = new QGroupBox(tr("With a code"));
    auto *layout = new QVBoxLayout(group);
    layout->addWidget(m_picture, 0, Qt::AlignHCenter);
    layout->addWidget(m_timeLeft, 0, Qt::AlignHCenter);
    layout->addWidget(m_newCode, 0, Qt::AlignHCenter);
    layout->addStretch(1);
    return group;
}

QGroupBox *AccountPage::makeSms()
{
    m_phone->setInputMethodHints(Qt::ImhDialableCharactersOnly);
    m_smsCode->setInputMethodHints(Qt::ImhDigitsOnly);
    m_smsCode->setEnabled(false);
    m_enter->setEnabled(false);
    auto *group = new QGroupBox(tr("By SMS"));
    auto *phone = new QLabel(tr("&Phone number"));
    phone->setBuddy(m_phone);
    auto *code = new QLabel(tr("&Code of the SMS"));
    code->setBuddy(m_smsCode);
    auto *layout = new QGridLayout(group);
    layout->addWidget(phone, 0, 0);
    layout->addWidget(m_phone, 0, 1);
    layout->addWidget(m_send, 0, 2);
    layout->addWidget(code, 1, 0);
    layout->addWidget(m_smsCode, 1, 1);
    layout->addWidget(m_enter, 1, 2);
    layout->setRowStretch(2, 1);
    return group;
}

void AccountPage::showUser()
{
    const Session session = m_desk->kit()->tokens()->session();
    const bool isSignedIn = m_desk->isSignedIn();
    m_user->setText(isSignedIn
                        ? tr("Signed in as %1 until %2")
                              .arg(session.nickname,
                                   QLocale().toString(session.refreshExpiry, QLocale::ShortFormat))
                        : tr("Nobody is signed in. Short texts can be spoken all the same."));
    m_signOut->setVisible(isSignedIn);
    m_ways->setVisible(!isSignedIn);
    m_heard->clear();
}

void AccountPage::signOut()
{
    const bool isDone = m_desk->kit()->tokens()->signOut();
    m_notice->tell(isDone ? QString() : tr("The session could not be removed"));
    showUser();
}

void AccountPage::askForCode()
{
    if (m_code)
        m_code->cancel();
    m_notice->tell({});
    m_code = new CodeSignInJob(m_desk->kit(), this);
    connect(m_code, &CodeSignInJob::codeReady, this, &AccountPage::showCode);
    connect(m_code, &SignInJob::succeeded, this, [this] { endCode({}); });
    connect(m_code, &Job::failed, this, [this](const Reason &reason) {
        endCode(reason.kind == Reason::Kind::Cancelled ? QString() : reason.line());
    });
    m_timeLeft->setText(tr("A code is asked for..."));
    m_desk->run(m_code.data(), tr("Sign-in with a code"));
}

void AccountPage::showCode(const QString &picture, const QDateTime &expires)
{
    const QImage image = CodePicture::read(picture);
    if (image.isNull()) {
        m_code->cancel();
        m_notice->tell(tr("no usable picture of the code came"));
        return;
    }
    const QPixmap pixels = QPixmap::fromImage(image);
    const int side = pictureSize * devicePixelRatio();
    QPixmap scaled = pixels.scaled(side, side, Qt::KeepAspectRatio);
    scaled.setDevicePixelRatio(devicePixelRatio());
    m_picture->setPixmap(scaled);
    m_newCode->setText(tr("&New code"));
    m_expires = expires;
    m_clock.start(1000);
    showTimeLeft();
}

void AccountPage::showTimeLeft()
{
    const qint64 late = m_expires.secsTo(QDateTime::currentDateTime());
    if (late > patience && m_code) { // the service does not answer that it has expired
        m_code->cancel();
        return m_notice->tell(tr("The code has expired"));
    }
    const qint64 seconds = qMax<qint64>(0, -late);
    m_timeLeft->setText(tr("To be confirmed within %1:%2")
                            .arg(seconds / 60)
                            .arg(seconds % 60, 2, 10, QLatin1Char('0')));
}

void AccountPage::endCode(const QString &why)
{
    m_code = nullptr;
    m_clock.stop();
    m_picture->setText(tr("A code to sign in with will be here"));
    m_timeLeft->clear();
    m_newCode->setText(tr("&Show a code"));
    m_notice->tell(why);
}

void AccountPage::askForSms()
{
    delete m_sms;
    m_notice->tell({});
    m_sms = new SmsSignInJob(m_desk->kit(), m_phone->text().trimmed(), this);
    const auto end = [this] {
        m_send->setEnabled(true);
        m_smsCode->clear();
        m_smsCode->setEnabled(false);
        m_enter->setEnabled(false);
    };
    connect(m_sms, &SmsSignInJob::codeSent, this, [this] {
        m_send->setEnabled(true);
        m_smsCode->setEnabled(true);
        m_enter->setEnabled(true);
        m_smsCode->setFocus();
    });
    connect(m_sms, &SignInJob::succeeded, this, end);
    connect(m_sms, &Job::failed, this, [=](const Reason &reason) {
        end();
        m_notice->tell(reason.line());
    });
    m_send->setEnabled(false);
    m_desk->run(m_sms.data(), tr("Sign-in by SMS"));
}

void AccountPage::enterSms()
{
    if (!m_sms)
        return;
    m_enter->setEnabled(false);
    m_sms->enter(m_smsCode->text().trimmed());
}

// The local service has no telephone to send to.
void AccountPage::hear(const QString &line)
{
    const int link = line.indexOf(QStringLiteral("https://"));
    const QString escaped = line.toHtmlEscaped();
    if (link < 0)
        return m_heard->setText(tr("The local service says: %1").arg(escaped));
    m_heard->setText(tr("The local service has no phone: <a href=\"%1\">confirm on its page</a>")
                         .arg(line.mid(link).toHtmlEscaped()));
}
