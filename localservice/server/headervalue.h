#pragma once

#include <httplib.h>

#include <string>

namespace localservice {

/// The whole value of the header @p name; empty if there is none. The library's own function ends
/// it at the first NUL, so that a secret could be written in more than one way.
inline std::string headerValue(const httplib::Request &request, const char *name)
{
    const auto found = request.headers.find(name);
    return found == request.headers.end() ? std::string() : found->second;
}

} // namespace localservice
