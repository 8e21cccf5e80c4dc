#pragma once

#include <httplib.h>

#include <cstddef>
#include <string>

namespace localservice {

/// Reads the body of a request to its end, even if it is too large, since a client reads no reply
/// before it has sent everything. Refused if it has more than @p largest bytes (after
/// decompression), if it is a form of several parts or if it does not arrive. When there may be a
/// rest of it, the connection is noted to end after the reply.
std::string readBody(const httplib::Request &request, const httplib::ContentReader &reader,
                     std::size_t largest);

} // namespace localservice
