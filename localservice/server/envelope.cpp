#include "localservice/server/envelope.h"

#include "localservice/server/requestlog.h"

namespace localservice {

namespace {

// What is no UTF-8 in a message, which may repeat what a client sent, is replaced.
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

void setRefusal(httplib::Response &response, const std::exception &error, bool isOfOperation)
{
    const auto *const refusal = dynamic_cast<const Refusal *>(&error);
    const Code code = refusal ? refusal->code() : Code::Failed;
    requestNotes().code = code;
    response.status = isOfOperation ? 200 : static_cast<int>(code);
    if (requestNotes().endsConnection)
        response.set_header("Connection", "close");
    response.set_content(refusalEnvelope(code, refusal ? refusal->what() : "the service failed"),
                         envelopeType);
}

} // namespace localservice
