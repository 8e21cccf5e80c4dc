// Fuzzes how the local service prepares texts to speak. The input is a text.

#include "input.h"
#include "localservice/speech/speechtext.h"

#include <algorithm>

using namespace localservice;

namespace {

constexpr std::size_t longestPiece = 400;

bool isPrintable(char c) { return c >= ' ' && c < 0x7f; }

bool isSpoken(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

std::string spokenIn(const std::string &text)
{
    std::string result;
    std::copy_if(text.begin(), text.end(), std::back_inserter(result), isSpoken);
    return result;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string utf8 = Input(data, size).rest();
    require(characterCount(utf8) <= utf8.size(), "a character has at least one byte");
    const std::string text = speakableText(utf8);
    require(std::all_of(text.begin(), text.end(), isPrintable), "what is spoken is ASCII");
    std::string together;
    for (const std::string &piece : speakablePieces(text)) {
        require(!piece.empty() && piece.size() <= longestPiece, "a piece is not too long");
        together += piece;
    }
    require(spokenIn(together) == spokenIn(text), "every letter is in one of the pieces");
    require(text.empty() == together.empty(), "a text that can be spoken has pieces");
    return 0;
}
