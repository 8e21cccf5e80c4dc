#include "randomid.h"

#include <openssl/rand.h>

#include <array>
#include <stdexcept>

namespace localservice {

namespace {

constexpr std::size_t idBytes = 16;
constexpr const char *digits = "0123456789abcdef";

} // namespace

std::string randomId()
{
    std::array<unsigned char, idBytes> bytes{};
    if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1)
        throw std::runtime_error("no secure random numbers");
    std::string id;
    for (const unsigned char byte : bytes) {
        id += digits[byte >> 4U];
        id += digits[byte & 0xfU];
    }
    return id;
}

bool isRandomId(const std::string &text)
{
    return text.size() == 2 * idBytes && text.find_first_not_of(digits) == std::string::npos;
}

} // namespace localservice
