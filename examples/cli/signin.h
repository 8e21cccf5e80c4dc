#pragma once

#include "command.h"

struct UserInfo;

/// What the ways to sign in have in common: a session comes of it, which is kept.
class SignIn : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(SignIn)

public:
    void start() override;

protected:
    using Command::Command;

    virtual void signIn() = 0;

    /// The service knows the user now.
    void finishWith(const UserInfo &user);
};
