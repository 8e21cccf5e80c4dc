#pragma once

#include <cstdint>
#include <string>

namespace localservice {

/// 128 bits of the system's secure random numbers as 32 lower-case hexadecimal digits.
std::string randomId();

/// A random number from 2 to 2^53 - 1, which a double holds. Clients without a token may send 0
/// or 1.
std::int64_t randomToken();

/// Six random decimal digits.
std::string randomCode();

/// The SHA-256 of @p secret as 64 lower-case hexadecimal digits.
std::string digestOf(const std::string &secret);

} // namespace localservice
