#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace localservice {

/// A picture of four bytes per point: red, green, blue and opacity.
struct Picture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> points; ///< Row by row from the top.
};

/// As a PNG file; std::runtime_error if that fails.
std::string encodePng(const Picture &picture);

} // namespace localservice
