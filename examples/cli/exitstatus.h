#pragma once

/// The exit status of vospeak. After a signal it is 128 and the signal's number, as in shells.
enum ExitStatus : int {
    Success = 0,
    Failure = 1,       ///< The operation was refused or failed.
    WrongUse = 2,      ///< The command line cannot be carried out; the service was not asked.
    Interrupted = 130, ///< By SIGINT or Ctrl-C.
    Terminated = 143,  ///< By SIGTERM.
};
