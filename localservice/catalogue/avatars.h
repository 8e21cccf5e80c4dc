#pragma once

#include <string>
#include <vector>

namespace localservice {

/// The names of the stock pictures, percent-encoded as they stand in addresses.
std::vector<std::string> avatarNames();

/// Draws one of them, as a PNG file.
std::string drawAvatar(const std::string &name);

} // namespace localservice
