#pragma once

#include "terminal/exitstatus.h"

#include <QString>

/// Tells the user of failures on standard error: as one line with the program's name or, for a user
/// who wants JSON, as the object "error" with kind, message, status and the service's code.
namespace Failures {

/// Of what was wrong before the service was asked, or of what has no reason.
void tell(const QString &problem, ExitStatus status, bool json);

/// With @p file, the one of several to which that happened.
void tell(const Reason &reason, bool json, const QString &file = {});

} // namespace Failures
