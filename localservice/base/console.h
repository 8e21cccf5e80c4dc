#pragma once

#include <string>

namespace localservice {

/// Writes "vo-localservice: ", @p line and a newline to standard output, at once and as a whole:
/// whoever started the service reads what it says while it runs. Dropped when nobody does.
void say(const std::string &line);

/// The same to standard error.
void warn(const std::string &line);

/// The same to standard error, @p line alone.
void log(const std::string &line);

} // namespace localservice
