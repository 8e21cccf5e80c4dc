#pragma once

#include "commands/command.h"

/// Says who is signed in. The service is not asked.
class WhoAmI : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(WhoAmI)

public:
    using Command::Command;

    void start() override;
};
