#pragma once

#include <httplib.h>

#include <cstddef>
#include <string>

namespace localservice {

/// Reads the body of a request to its end, since most clients read no reply before they have sent
/// everything. A Refusal says that it has more than @p largest bytes (after decompression), is a
/// form of several parts or does not arrive; when a rest of it may still come, the notes on the
/// request end the connection after the reply.
std::string readBody(const httplib::Request &request, const httplib::ContentReader &reader,
                     std::size_t largest);

} // namespace localservice
