#pragma once

#include "command.h"

// What the service can tell anybody. Asking for it waits in a nested event loop.

/// The voices that texts can be spoken with.
class VoiceList : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(VoiceList)

public:
    using Command::Command;

    void start() override;
};

/// The tracks of background music.
class MusicList : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(MusicList)

public:
    using Command::Command;

    void start() override;
};

/// Whether there is a newer version.
class UpdateCheck : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(UpdateCheck)

public:
    using Command::Command;

    void start() override;
};
