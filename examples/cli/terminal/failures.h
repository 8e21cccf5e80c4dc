#pragma once

#include "terminal/exitstatus.h"

class QString;

/// Tells the user of failures on standard error: as one line with the program's name or, for a user
/// who wants JSON, as the object "error" with kind, message, status and the service's code.
namespace Failures {

/// Of what was wrong before the service was asked, or of what has no reason.
void tell(const QString &problem, ExitStatus status, bool json);

void tell(const Reason &reason, bool json);

} // namespace Failures
