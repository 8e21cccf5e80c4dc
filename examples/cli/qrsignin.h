#pragma once

#include "signin.h"

#include <QTimer>

struct LoginQrCode;

/// Signs in by a code that the user scans with a phone.
class QrSignIn : public SignIn
{
    Q_OBJECT
    Q_DISABLE_COPY(QrSignIn)

public:
    QrSignIn(const Options &options, const Tools &tools);
    ~QrSignIn() override;

protected:
    void signIn() override;

private:
    void onCode(LoginQrCode *code);
    void waitForUser();
    void ask();
    void onStatus(UserInfo *user);
    void giveUp(const QString &problem);

    std::unique_ptr<LoginQrCode> m_code;
    QTimer m_nextQuestion;
    QTimer m_expiry;
    bool m_isOver = false;
};
