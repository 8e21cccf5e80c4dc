#include "localservice/server/requestbody.h"

#include "localservice/base/refusal.h"
#include "localservice/server/connections.h"
#include "localservice/server/requestlog.h"

namespace localservice {

namespace {

[[noreturn]] void refuseUnread(const std::string &message)
{
    requestNotes().endsConnection = true;
    throw Refusal(Code::Malformed, message);
}

// The library takes what is no number for 0, and the body for the next request.
bool isNumber(const std::string &text)
{
    return !text.empty() && text.size() < 19
           && text.find_first_not_of("0123456789") == std::string::npos;
}

} // namespace

std::string readBody(const httplib::Request &request, const httplib::ContentReader &reader,
                     std::size_t largest)
{
    if (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding"))
        return {};
    if (request.has_header("Content-Length")
        && !isNumber(request.get_header_value("Content-Length")))
        refuseUnread("the Content-Length is not a length");
    if (request.is_multipart_form_data())
        refuseUnread("forms are not understood");

    std::string body;
    std::size_t size = 0;
    const bool complete = reader([&](const char *data, std::size_t length) {
        Connections::madeUse();
        size += length;
        if (size <= largest)
            body.append(data, length);
        else
            body = std::string(); // of no use any more
        return true;
    });
    if (!complete)
        requestNotes().endsConnection = true;
    if (size > largest)
        throw Refusal(Code::TooLarge,
                      "the body is larger than " + std::to_string(largest / 1024) + " KiB");
    if (!complete)
        throw Refusal(Code::Malformed, "the body cannot be read");
    return body;
}

} // namespace localservice
