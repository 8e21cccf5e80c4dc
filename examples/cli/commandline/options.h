#pragma once

#include "hostkit/speakjob.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

struct CommandRow;

/// When lines for the user are coloured.
enum class Colour { Auto, Always, Never };

/// The user's wishes, as the command line has them.
struct Options
{
    const CommandRow *command = nullptr;
    QStringList subjects; ///< What stands behind the command.

    Speech speech;     ///< To be said.
    QString textFile;  ///< Has the text to be said; "-": standard input.
    QByteArray input;  ///< The recording that came on standard input.
    QString address;   ///< To be downloaded.
    QString output;    ///< The file that gets what is made or comes; "-": standard output.
    QString phone;     ///< Gets the sign-in code; empty: sign in by scanning a code.
    QString authority; ///< Certificate file; empty: the one of the settings, if any.
    std::optional<QString> proxy; ///< An address, or empty for none; no value: by the environment.
    std::optional<qint64> token;  ///< No value: the session's.
    int timeout = 0;              ///< Milliseconds; 0: none.
    Colour colour = Colour::Auto;
    int record = 0;        ///< Seconds to be recorded; 0: none.
    bool longForm = false; ///< As a task that is asked after, not in one reply.
    bool play = false;     ///< The audio is heard.
    bool resume = false;   ///< A download goes on where an earlier one ended.
    bool scan = false;     ///< Signing in is by a code to scan.
    bool open = false;     ///< The picture of that code is shown in a window.
    bool status = false;   ///< Of a task; it is not waited for.
    bool json = false;     ///< The result, or why there is none, is written as JSON.
    bool quiet = false;    ///< Only results and failures are written.
    bool verbose = false;  ///< The whole log goes to standard error.
};
