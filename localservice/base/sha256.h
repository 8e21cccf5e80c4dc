#pragma once

#include <string>

namespace localservice {

/// The 32 bytes of the SHA-256 of @p bytes. std::runtime_error if there is none to be had.
std::string sha256(const std::string &bytes);

} // namespace localservice
