#include "localservice/base/hexadecimal.h"

namespace localservice {

std::string hexadecimal(const std::string &bytes)
{
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += hexadecimalDigits[byte >> 4U];
        text += hexadecimalDigits[byte & 0xfU];
    }
    return text;
}

} // namespace localservice
