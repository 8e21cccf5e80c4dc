#pragma once

#include <cstdint>
#include <string>

namespace localservice {

/// 128 bits of the system's secure random numbers as 32 lower-case hexadecimal digits.
std::string randomId();

/// Whether @p text has the form of a random id.
bool isRandomId(const std::string &text);

/// A random token from 2 to 2^53 - 1: a double can hold it. 0 and 1 are left out: clients without a
/// token may send them.
std::int64_t randomToken();

/// Six random decimal digits.
std::string randomCode();

/// Whether both are the same, in a time that does not tell where they differ.
bool isSameSecret(const std::string &one, const std::string &other);

/// The SHA-256 of @p secret in hexadecimal: it tells a secret again without being one.
std::string digestOf(const std::string &secret);

} // namespace localservice
