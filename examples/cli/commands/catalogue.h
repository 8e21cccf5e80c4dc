#pragma once

#include "commands/command.h"

#include <QTemporaryDir>
#include <QVector>

struct DubInfo;

// The commands that need no session.

/// Lists the voices that texts can be spoken with, or plays the sample of one.
class VoiceList : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(VoiceList)

public:
    using Command::Command;

    static QString read(Options &options);
    static QString prepare(Options &options);

    void start() override;

private:
    void list(const QVector<DubInfo> &voices);
    void fetch(const QString &sample);
    void play(const QString &path);

    QTemporaryDir m_folder; ///< Has the sample.
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
