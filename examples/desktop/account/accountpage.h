#pragma once

#include <QDateTime>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class CodeSignInJob;
class Desk;
class Notice;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class SmsSignInJob;

/// Who is signed in, and the ways to sign in.
class AccountPage : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(AccountPage)

public:
    explicit AccountPage(Desk *desk, QWidget *parent = nullptr);

private:
    QGroupBox *makeCode();
    QGroupBox *makeSms();
    void showUser();
    void signOut();
    void askForCode();
    void showCode(const QString &picture, const QDateTime &expires);
    void showTimeLeft();
    void endCode(const QString &why);
    void askForSms();
    void enterSms();
    void hear(const QString &line);

    Desk *m_desk;
    Notice *m_notice;
    QLabel *m_user;
    QPushButton *m_signOut;
    QWidget *m_ways;
    QLabel *m_picture;
    QLabel *m_timeLeft;
    QPushButton *m_newCode;
    QLineEdit *m_phone;
    QPushButton *m_send;
    QLineEdit *m_smsCode;
    QPushButton *m_enter;
    QLabel *m_heard;
    QTimer m_clock; ///< Runs while a code is shown.
    QDateTime m_expires;
    QPointer<CodeSignInJob> m_code; ///< While a code is asked for or shown.
    QPointer<SmsSignInJob> m_sms;   ///< From the number to the end of the sign-in.
};
