#pragma once

#include <string>
#include <vector>

namespace localservice {

/// The names of the stock pictures, percent-encoded as they stand in addresses.
std::vector<std::string> avatarNames();

/// Draws the picture of one of these names, as a PNG file; std::out_of_range for any other name.
std::string drawAvatar(const std::string &name);

} // namespace localservice
