#pragma once

#include <string>
#include <vector>

namespace localservice {

/// The characters in @p utf8, which has to be valid UTF-8.
std::size_t characterCount(const std::string &utf8);

/// What the engine can speak of @p utf8: ASCII. Letters lose their accents, typographic quotes and
/// dashes become their plain forms, and whatever has none becomes a blank. Empty if no letter or
/// digit is left.
std::string speakableText(const std::string &utf8);

/// A speakable text in pieces of at most 400 characters: its sentences, the longer ones cut between
/// words where possible. What has nothing to say in it is left out.
std::vector<std::string> speakablePieces(const std::string &text);

} // namespace localservice
