#include "localservice/base/randomid.h"

#include "localservice/base/hexadecimal.h"

#include <openssl/rand.h>

#include <stdexcept>

namespace localservice {

namespace {

constexpr std::size_t idBytes = 16;

} // namespace

std::string randomId()
{
    std::string bytes(idBytes, '\0');
    if (RAND_bytes(reinterpret_cast<unsigned char *>(bytes.data()), static_cast<int>(idBytes)) != 1)
        throw std::runtime_error("no secure random numbers");
    return hexadecimal(bytes);
}

bool isRandomId(const std::string &text)
{
    return text.size() == 2 * idBytes
           && text.find_first_not_of(hexadecimalDigits) == std::string::npos;
}

} // namespace localservice
