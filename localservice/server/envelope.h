#pragma once

#include "localservice/base/refusal.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include <exception>
#include <string>

namespace localservice {

/// The media type of envelopes. The HTTP library compresses none that has a parameter: clients see
/// in "Content-Length" how much there is to come.
constexpr const char *envelopeType = "application/json;charset=utf-8";

/// The body of a reply to a request that was served: {"code":0,"message":"ok","data":...}.
std::string successEnvelope(const nlohmann::json &data);

/// The body of a reply to a request that was not: a code other than 0, a message, no data.
std::string refusalEnvelope(Code code, const std::string &message);

/// Makes @p response say why its request was not served, and notes the code for the log. Any @p
/// error but a Refusal is Code::Failed. Who calls an operation looks for the code in the envelope:
/// the status is 200 there, and equals the code elsewhere.
void setRefusal(httplib::Response &response, const std::exception &error,
                bool isOfOperation = false);

} // namespace localservice
