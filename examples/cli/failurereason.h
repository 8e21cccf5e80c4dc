#pragma once

class QString;

/// Why a request failed. The service object itself gives no reason; the library's log has it.
namespace FailureReason {

/// Takes up what @p message, of the log, tells about a request that had no answer. May be called in
/// any thread: only the main one has such messages.
void readLog(const QString &message);

/// The line about the service when it could not be reached, for the last request that failed;
/// @p otherwise when it answered.
QString orElse(const QString &otherwise);

/// Whether the library has taken the picture of a code from a usable address, as the log tells.
bool isPictureTrusted();

/// What Qt's @p errorText means for the user.
QString inWords(const QString &errorText);

/// The same for a proxy that refuses the user, or the lack of one.
QString proxyWantsUser();

} // namespace FailureReason
