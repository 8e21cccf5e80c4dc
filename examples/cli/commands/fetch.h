#pragma once

#include "commands/command.h"

/// Downloads an address into a file.
class Fetch : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Fetch)

public:
    using Command::Command;

    static QString read(Options &options);
    static QString prepare(Options &options);

    void start() override;
};
