#pragma once

#include <QString>

/// What the user asks for.
struct Options
{
    enum class Action { Say, Recognize };

    Action action = Action::Say;
    QString text;      ///< To be said.
    QString recording; ///< To be recognised: a file or an address.
    QString output;    ///< The file that gets the audio.
    QString voice;
    QString authority; ///< Certificate file; empty: the system's authorities only.
    qint32 sampleRate = 0;
    qint64 token = 0;
    bool longForm = false; ///< As a task that is asked after, not in one reply.
    bool anonymous = false;
    bool verbose = false;
};
