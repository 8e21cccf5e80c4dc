#pragma once

#include <ctime>
#include <string>

namespace localservice {

/// @p time in the time zone of this machine, in the form of strftime().
std::string localTime(std::time_t time, const char *form);

} // namespace localservice
