#include "localservice/server/byterange.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace localservice {

namespace {

constexpr std::string_view unit = "bytes=";

bool isDigits(const std::string &text)
{
    return text.find_first_not_of("0123456789") == std::string::npos;
}

// The largest number there is when it would be larger.
std::size_t number(const std::string &digits) { return std::strtoull(digits.c_str(), nullptr, 10); }

} // namespace

std::optional<ByteRange> requestedRange(const std::string &header, std::size_t size)
{
    const std::size_t dash = header.find('-');
    if (header.rfind(unit, 0) != 0 || dash == std::string::npos)
        return std::nullopt;
    const std::string first = header.substr(unit.size(), dash - unit.size());
    const std::string last = header.substr(dash + 1);
    if (!isDigits(first) || !isDigits(last) || (first.empty() && last.empty()))
        return std::nullopt;
    if (first.empty()) {
        const std::size_t length = std::min(number(last), size);
        return ByteRange{size - length, length};
    }
    const std::size_t begin = number(first);
    if (!last.empty() && number(last) < begin)
        return std::nullopt;
    if (begin >= size)
        return ByteRange{size, 0};
    const std::size_t rest = size - begin;
    return ByteRange{begin, last.empty() ? rest : std::min(rest - 1, number(last) - begin) + 1};
}

} // namespace localservice
