#pragma once

#include "hostkit/reason.h"

#include <array>

/// The exit status of vospeak. After a signal it is 128 and the signal's number, as in shells.
enum ExitStatus : int {
    Success = 0,
    Failure = 1,       ///< Something else failed: a file, an answer that cannot be used.
    WrongUse = 2,      ///< The command line cannot be carried out; the service was not asked.
    NoNetwork = 3,     ///< A server, or the proxy on the way, did not answer, or not in time.
    NotTrusted = 4,    ///< The server is not trusted, or speaks no TLS.
    Refused = 5,       ///< The service refused, or wants a user to sign in first.
    Interrupted = 130, ///< By SIGINT or Ctrl-C.
    Unread = 141,      ///< As by SIGPIPE: nobody reads the result any more.
    Terminated = 143,  ///< By SIGTERM.
};

/// What a status is written as, and what it means.
struct ExitMeaning
{
    const char *status = nullptr;
    const char *meaning = nullptr;
};

/// In the order of their numbers.
const std::array<ExitMeaning, 7> &exitMeanings();

/// The status of a failure of @p kind.
ExitStatus exitStatus(Reason::Kind kind);

/// What @p kind is called in the JSON document about a failure.
const char *nameOf(Reason::Kind kind);
