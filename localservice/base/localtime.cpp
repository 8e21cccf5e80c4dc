#include "localservice/base/localtime.h"

#include <array>

namespace localservice {

std::string localTime(std::time_t time, const char *form)
{
    std::tm parts{};
    localtime_r(&time, &parts);
    std::array<char, 64> text{};
    const std::size_t size = std::strftime(text.data(), text.size(), form, &parts);
    return {text.data(), size};
}

} // namespace localservice
