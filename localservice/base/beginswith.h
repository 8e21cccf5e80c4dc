#pragma once

#include <string>
#include <string_view>

namespace localservice {

inline bool beginsWith(const std::string &text, std::string_view beginning)
{
    return text.compare(0, beginning.size(), beginning) == 0;
}

} // namespace localservice
