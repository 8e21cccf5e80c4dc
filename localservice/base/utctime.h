#pragma once

#include <chrono>
#include <string>

namespace localservice {

/// @p time to the second, such as 2026-01-31T18:05:00Z.
std::string utcTime(std::chrono::system_clock::time_point time);

} // namespace localservice
