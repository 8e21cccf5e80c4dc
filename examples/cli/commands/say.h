#pragma once

#include "commands/command.h"

#include <QTemporaryDir>

/// Says a text.
class Say : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Say)

public:
    Say(const Options &options, const Tools &tools);

    static QString read(Options &options);
    static QString prepare(Options &options);

    void start() override;

private:
    void onSpoken(const QString &path, qint64 bytes);
    void play(const QString &path, qint64 bytes);
    void finishWith(const QString &path, qint64 bytes);

    QTemporaryDir m_folder; ///< Has the audio when no file is asked for.
};
