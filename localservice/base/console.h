#pragma once

#include <string>

namespace localservice {

// Lines for whoever started the service and reads them while it runs. Each is written at once, as a
// whole up to 4096 bytes, and is dropped when it does not fit into what nobody reads. May be used
// by several threads.

/// Writes "vo-localservice: ", @p line and a newline to standard output.
void say(const std::string &line);

/// Writes the same to standard error.
void warn(const std::string &line);

/// Writes @p line and a newline to standard error.
void log(const std::string &line);

} // namespace localservice
