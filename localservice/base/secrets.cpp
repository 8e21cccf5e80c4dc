#include "localservice/base/secrets.h"

#include "localservice/base/hexadecimal.h"
#include "localservice/base/sha256.h"

#include <openssl/crypto.h>
#include <openssl/rand.h>

#include <stdexcept>

namespace localservice {

namespace {

constexpr std::uint64_t largestToken = (std::uint64_t{1} << 53U) - 1;
constexpr std::int64_t leastToken = 2;
constexpr std::uint64_t codes = 1000000; // 64 random bits favour none of them noticeably
constexpr std::size_t codeDigits = 6;

std::uint64_t randomNumber()
{
    std::uint64_t number = 0;
    if (RAND_bytes(reinterpret_cast<unsigned char *>(&number), sizeof number) != 1)
        throw std::runtime_error("no secure random numbers");
    return number;
}

} // namespace

std::int64_t randomToken()
{
    std::int64_t token = 0;
    while (token < leastToken)
        token = static_cast<std::int64_t>(randomNumber() & largestToken);
    return token;
}

std::string randomCode()
{
    const std::string digits = std::to_string(randomNumber() % codes);
    return std::string(codeDigits - digits.size(), '0') + digits;
}

bool isSameSecret(const std::string &one, const std::string &other)
{
    return one.size() == other.size() && CRYPTO_memcmp(one.data(), other.data(), one.size()) == 0;
}

std::string digestOf(const std::string &secret) { return hexadecimal(sha256(secret)); }

} // namespace localservice
