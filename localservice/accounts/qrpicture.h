#pragma once

#include <string>

namespace localservice {

/// The QR code of @p text as a PNG file, with the margin that readers need; std::runtime_error if
/// the text is too long for one.
std::string qrPicture(const std::string &text);

} // namespace localservice
