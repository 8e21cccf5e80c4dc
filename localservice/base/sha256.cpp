#include "localservice/base/sha256.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

namespace localservice {

std::string sha256(const std::string &bytes)
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int size = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("no digests");
    return {reinterpret_cast<const char *>(digest.data()), size};
}

} // namespace localservice
