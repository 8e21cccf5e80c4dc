#pragma once

#include <QImage>

#include <string>

namespace localservice {

/// @p image as a PNG file; std::runtime_error if that fails.
std::string encodePng(const QImage &image);

} // namespace localservice
