#pragma once

class QString;

/// The reason why a request failed. The service object gives none; the library's log has it.
namespace FailureReason {

/// Reads in @p message, a line of the log, why a request had no answer. May be called in any
/// thread: only the main one logs such lines.
void readLog(const QString &message);

/// The line for the user about the last request that failed: why the service could not be reached,
/// or @p otherwise when it did answer.
QString orElse(const QString &otherwise);

/// Whether the library fetched the last picture of a code from a usable address, as the log says.
bool isPictureTrusted();

/// What Qt's @p errorText means for the user.
QString inWords(const QString &errorText);

/// The words for a proxy that wants a user, or another one.
QString proxyWantsUser();

} // namespace FailureReason
