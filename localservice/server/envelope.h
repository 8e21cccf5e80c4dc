#pragma once

#include "localservice/base/refusal.h"

#include <nlohmann/json.hpp>

#include <string>

namespace localservice {

/// The reply to a request that was served: {"code":0,"message":"ok","data":...}.
std::string successEnvelope(const nlohmann::json &data);

/// The reply to a request that was not: a code other than 0, a message, no data.
std::string refusalEnvelope(Code code, const std::string &message);

} // namespace localservice
