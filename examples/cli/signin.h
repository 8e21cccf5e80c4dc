#pragma once

#include "command.h"

struct UserInfo;

/// The common part of the ways to sign in: they bring a session, which is kept.
class SignIn : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(SignIn)

public:
    void start() override;

protected:
    using Command::Command;

    /// Begins to sign in; answered by finishWith() or failed().
    virtual void signIn() = 0;

    /// Keeps the session of @p user, who has signed in, and ends the command.
    void finishWith(const UserInfo &user);
};
