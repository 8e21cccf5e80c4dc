#include "localservice/server/envelope.h"

namespace localservice {

namespace {

// Replacing what is no UTF-8 keeps the reply readable whatever a message was made of.
std::string bytes(const nlohmann::json &envelope)
{
    return envelope.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace

std::string successEnvelope(const nlohmann::json &data)
{
    return bytes({{"code", static_cast<int>(Code::Ok)}, {"message", "ok"}, {"data", data}});
}

std::string refusalEnvelope(Code code, const std::string &message)
{
    return bytes({{"code", static_cast<int>(code)}, {"message", message}});
}

} // namespace localservice
