#pragma once

#include <string>

namespace localservice {

/// 128 bits of the system's secure random numbers as 32 lower-case hexadecimal digits.
/// std::runtime_error if there are none to be had.
std::string randomId();

/// Whether @p text has the form of a random id.
bool isRandomId(const std::string &text);

} // namespace localservice
