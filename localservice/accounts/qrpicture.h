#pragma once

#include <string>

namespace localservice {

/// The QR code of @p text, with the margin that readers need, as a PNG file; std::runtime_error if
/// the text is too long for one.
std::string qrPicture(const std::string &text);

} // namespace localservice
