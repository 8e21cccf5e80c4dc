#pragma once

#include "linereader.h"
#include "signin.h"

/// Signs in by a code that the service sends to a phone and the user types.
class SmsSignIn : public SignIn
{
    Q_OBJECT
    Q_DISABLE_COPY(SmsSignIn)

public:
    SmsSignIn(const Options &options, const Tools &tools);

protected:
    void signIn() override;

private:
    void askForCode();
    void onCode(const QString &code);
    void onUser(UserInfo *user);

    QString m_phone;
    LineReader m_reader;
};
