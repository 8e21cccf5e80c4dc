#pragma once

#include "commands/command.h"

/// Removes the session. The service is not told; the tokens expire by themselves.
class SignOut : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(SignOut)

public:
    using Command::Command;

    void start() override;
};
