#pragma once

#include "command.h"

/// Forgets the session. The service is not told: its tokens run out by themselves.
class SignOut : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(SignOut)

public:
    using Command::Command;

    void start() override;
};
