#pragma once

#include <string>

namespace localservice {

constexpr const char *hexadecimalDigits = "0123456789abcdef";

/// @p bytes in lower-case hexadecimal.
std::string hexadecimal(const std::string &bytes);

} // namespace localservice
