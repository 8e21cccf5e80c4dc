#pragma once

#include "command.h"

// The commands that need no session.

/// Lists the voices that texts can be spoken with.
class VoiceList : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(VoiceList)

public:
    using Command::Command;

    void start() override;
};

/// Lists the tracks of background music.
class MusicList : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(MusicList)

public:
    using Command::Command;

    void start() override;
};

/// Says whether there is a newer version.
class UpdateCheck : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(UpdateCheck)

public:
    using Command::Command;

    void start() override;
};
