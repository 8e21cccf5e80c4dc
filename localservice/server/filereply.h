#pragma once

#include "localservice/storage/storage.h"

#include <httplib.h>

#include <string>

namespace localservice {

/// Makes @p file the body of @p response, its type after the suffix of @p path. A GET may ask for
/// one range of bytes: the status is then 206, or there is a Refusal (Code::OutOfRange) when the
/// file ends before it. A range that is not understood, more than one, and one with If-Range are
/// ignored.
void setFile(const httplib::Request &request, httplib::Response &response, const std::string &path,
             const OpenObject &file);

} // namespace localservice
