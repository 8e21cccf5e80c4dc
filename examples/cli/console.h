#pragma once

class QString;

/// The two streams that the user sees.
namespace Console {

/// Writes @p text to standard output, in UTF-8 whatever the locale is: it may well be kept in a
/// file. False when it did not get there.
bool print(const QString &text);

/// Writes one line to standard error.
void complain(const QString &problem);

/// Keeps the log away from standard error except for warnings and worse; with @p verbose all of it
/// goes there.
void setUpLog(bool verbose);

} // namespace Console
