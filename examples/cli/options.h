#pragma once

#include <QFlags>
#include <QString>

#include <optional>

/// The user's wishes, as the command line has them.
struct Options
{
    enum class Action {
        Say = 1 << 0,
        Recognize = 1 << 1,
        Voices = 1 << 2,
        Music = 1 << 3,
        Update = 1 << 4,
        Login = 1 << 5,
        Logout = 1 << 6,
        Fetch = 1 << 7,
    };
    Q_DECLARE_FLAGS(Actions, Action)

    Action action = Action::Say;
    QString text;                 ///< To be said.
    QString recording;            ///< To be recognised: a file or an address.
    QString address;              ///< To be downloaded.
    QString output;               ///< The file that gets the audio, or what was downloaded.
    QString voice;                ///< DubInfo::voiceParam.
    QString phone;                ///< Gets the sign-in code; empty: sign in by scanning a code.
    QString authority;            ///< Certificate file; empty: the system's authorities only.
    std::optional<QString> proxy; ///< An address, or empty for none; no value: by the environment.
    qint32 sampleRate = 0;        ///< Samples per second.
    std::optional<qint64> token;  ///< No value: the session's.
    bool longForm = false;        ///< As a task that is asked after, not in one reply.
    bool anonymous = false;       ///< Without a token.
    bool resume = false;          ///< A download goes on where an earlier one ended.
    bool json = false;            ///< The result is printed as JSON, not as text.
    bool verbose = false;         ///< The whole log goes to standard error.
};

Q_DECLARE_OPERATORS_FOR_FLAGS(Options::Actions)
