#pragma once

#include <string>

namespace localservice {

/// @p bytes in base64, padded.
std::string base64(const std::string &bytes);

} // namespace localservice
