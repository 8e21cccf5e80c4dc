#pragma once

#include <string>
#include <vector>

namespace localservice {

/// The number of characters in @p utf8, which has to be valid UTF-8.
std::size_t characterCount(const std::string &utf8);

/// The part of @p utf8 that the engine can speak, in printable ASCII. Letters lose their accents,
/// typographic quotes and dashes get their plain forms, and whatever has none becomes a blank.
/// Empty if no letter or digit is left.
std::string speakableText(const std::string &utf8);

/// Cuts a speakable text into its sentences, and those of more than 400 characters further, between
/// words where possible. Pieces without a letter or digit are left out.
std::vector<std::string> speakablePieces(const std::string &text);

} // namespace localservice
