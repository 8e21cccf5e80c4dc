#pragma once

/// What vospeak tells its caller. One that is interrupted returns 128 and the signal's number, as
/// shells count.
enum ExitStatus : int {
    Success = 0,
    Failure = 1,  ///< The operation was refused or failed.
    WrongUse = 2, ///< The command line cannot be carried out; the service was not asked.
    Interrupted = 130,
    Terminated = 143,
};
