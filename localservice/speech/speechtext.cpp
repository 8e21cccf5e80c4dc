#include "localservice/speech/speechtext.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace localservice {

namespace {

constexpr std::size_t longestPiece = 400;
constexpr std::size_t longestAbbreviation = 4; // without its dot

constexpr std::array<std::pair<const char *, const char *>, 9> plainForms{{
    {"\u2018", "'"},
    {"\u2019", "'"},
    {"\u201c", "\""},
    {"\u201d", "\""},
    {"\u2010", "-"},
    {"\u2011", "-"},
    {"\u2013", " - "},
    {"\u2014", " - "},
    {"\u2026", "..."},
}};

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U; }

bool isSpoken(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// The form of the character of @p length bytes at @p begin.
std::string plainForm(const char *begin, std::size_t length)
{
    if (length == 1)
        return std::string(1, *begin >= ' ' && *begin < 0x7f ? *begin : ' ');
    for (const auto &[typographic, plain] : plainForms) {
        if (std::strlen(typographic) == length && std::memcmp(typographic, begin, length) == 0)
            return plain;
    }
    return " ";
}

// The words that end in a dot within a sentence: "Dr.", "Prof.", initials, "e.g.".
bool isAbbreviation(const std::string &text, std::size_t dot)
{
    const std::size_t blank = text.rfind(' ', dot);
    const std::size_t begin = blank == std::string::npos ? 0 : blank + 1;
    const std::string word = text.substr(begin, dot - begin);
    const bool isCapitalised = !word.empty() && word[0] >= 'A' && word[0] <= 'Z';
    return word.size() <= 1 || word.find('.') != std::string::npos
           || (isCapitalised && word.size() <= longestAbbreviation);
}

bool endsSentence(const std::string &text, std::size_t at)
{
    if (at + 1 < text.size() && text[at + 1] != ' ')
        return false;
    return text[at] == '!' || text[at] == '?' || (text[at] == '.' && !isAbbreviation(text, at));
}

// Where the piece that begins at @p begin ends: after the sentence, if that is not too long for
// one piece, else after the last blank, else anywhere.
std::size_t endOfPiece(const std::string &text, std::size_t begin)
{
    std::size_t blank = 0;
    for (std::size_t i = begin; i < text.size() && i < begin + longestPiece; ++i) {
        if (endsSentence(text, i) || i + 1 == text.size())
            return i + 1;
        if (text[i] == ' ')
            blank = i + 1;
    }
    return blank > begin ? blank : begin + longestPiece;
}

} // namespace

std::size_t characterCount(const std::string &utf8)
{
    return utf8.size()
           - static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), isContinuation));
}

std::string speakableText(const std::string &utf8)
{
    std::string text;
    for (std::size_t begin = 0; begin < utf8.size();) {
        std::size_t end = begin + 1;
        while (end < utf8.size() && isContinuation(utf8[end]))
            ++end;
        text += plainForm(utf8.data() + begin, end - begin);
        begin = end;
    }
    return std::any_of(text.begin(), text.end(), isSpoken) ? text : std::string();
}

std::vector<std::string> speakablePieces(const std::string &text)
{
    std::vector<std::string> pieces;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = endOfPiece(text, begin);
        const std::string piece = text.substr(begin, end - begin);
        if (std::any_of(piece.begin(), piece.end(), isSpoken))
            pieces.push_back(piece);
        begin = end;
    }
    return pieces;
}

} // namespace localservice
