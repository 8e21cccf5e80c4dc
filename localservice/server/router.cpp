#include "localservice/server/router.h"

#include "localservice/base/refusal.h"
#include "localservice/server/envelope.h"
#include "localservice/server/filereply.h"
#include "localservice/server/requestlog.h"

#include <algorithm>
#include <memory>
#include <sstream>

namespace localservice {

namespace {

constexpr std::size_t largestOperation = 512UL * 1024; // bytes of its body

// The path without the query. Repeated slashes are one: clients put one at either side of a joint.
std::string normalPath(const std::string &target)
{
    std::string path = target.substr(0, target.find('?'));
    path.erase(
        std::unique(path.begin(), path.end(), [](char a, char b) { return a == '/' && b == '/'; }),
        path.end());
    return path;
}

bool isReading(const httplib::Request &request)
{
    return request.method == "GET" || request.method == "HEAD";
}

// Browsers say whether a page of this service or of somebody else's made a request.
bool isFromElsewhere(const httplib::Request &request)
{
    const std::string site = request.get_header_value("Sec-Fetch-Site");
    return site == "cross-site" || site == "same-site";
}

// A page that keeps its address to itself, as the sign-in page does, has the origin "null".
bool hasOtherOrigin(const httplib::Request &request)
{
    const std::string origin = request.get_header_value("Origin");
    return request.has_header("Origin") && origin != "null"
           && origin != "https://" + request.get_header_value("Host");
}

[[noreturn]] void refuseUnknown() { throw Refusal(Code::NotFound, "there is no such operation"); }

OpenObject inMemory(const std::string &bytes)
{
    return {std::make_shared<std::istringstream>(bytes), bytes.size()};
}

Language languageOf(const httplib::Request &request)
{
    return preferredLanguage(request.get_header_value("Accept-Language"));
}

void setPage(httplib::Response &response, const Page &page)
{
    requestNotes().code = page.status == 200 ? Code::Ok : static_cast<Code>(page.status);
    response.status = page.status;
    for (const auto &[name, value] : page.headers)
        response.set_header(name, value);
    response.set_content(page.html, "text/html;charset=utf-8");
}

} // namespace

Router::Router(const Parts &parts, const std::string &origin)
    : m_parts(parts)
    , m_origin(origin)
{
}

std::size_t Router::largestBody(const httplib::Request &request)
{
    const bool isUpload =
        request.method == "PUT" && Storage::isResponsible(normalPath(request.target));
    return isUpload ? Storage::largestObject : largestOperation;
}

void Router::respond(const httplib::Request &request, httplib::Response &response,
                     const std::string &body) const
{
    const std::string path = normalPath(request.target);
    bool isOfOperation = Operations::isResponsible(path);
    response.status = 200; // a request that the library refused has another one
    try {
        if (!isOfOperation) {
            serve(request, response, path, body);
            return;
        }
        // Operations are for applications. A page of somebody else's could use up or ask for codes.
        if (request.has_header("Origin") || isFromElsewhere(request))
            throw Refusal(Code::Forbidden, "the operations are not for pages");
        const auto data = m_parts.operations.call(path, request, body);
        isOfOperation = data.has_value();
        if (!data)
            refuseUnknown();
        response.set_content(successEnvelope(*data), envelopeType);
    } catch (const std::exception &error) {
        setRefusal(response, error, isOfOperation);
    }
}

void Router::serve(const httplib::Request &request, httplib::Response &response,
                   const std::string &path, const std::string &body) const
{
    if (Storage::isResponsible(path))
        serveObject(request, response, path, body);
    else if (SignInPage::isPage(path))
        setPage(response, signInPage(request, path, body));
    else if (SignInPage::isPicture(path) && isReading(request))
        setFile(request, response, path, inMemory(m_parts.signInPage.picture(path)));
    else if (path == StartPage::path && isReading(request))
        setPage(response, m_parts.startPage.show(languageOf(request)));
    else if (path == iconPath && isReading(request))
        setFile(request, response, path, inMemory(icon()));
    else if (Catalogue::isResponsible(path) && isReading(request))
        setFile(request, response, path, inMemory(m_parts.catalogue.file(path)));
    else
        refuseUnknown();
}

void Router::serveObject(const httplib::Request &request, httplib::Response &response,
                         const std::string &path, const std::string &body) const
{
    const bool isPut = request.method == "PUT";
    if (!isPut && !isReading(request))
        refuseUnknown();
    const std::string token = isPut || request.has_header("x-security-token")
                                  ? request.get_header_value("x-security-token")
                                  : request.get_param_value("security-token");
    const ObjectName object =
        m_parts.credentials.permitted(path, token, isPut ? Access::ReadAndWrite : Access::Read);
    if (isPut) {
        m_parts.storage.write(object, body);
        const nlohmann::json data{{"address", m_origin + Storage::pathOf(object)}};
        response.set_content(successEnvelope(data), envelopeType);
    } else if (const auto file = m_parts.storage.open(object)) {
        setFile(request, response, path, *file);
    } else {
        throw Refusal(Code::NotFound, "there is no such object, or no longer");
    }
}

Page Router::signInPage(const httplib::Request &request, const std::string &path,
                        const std::string &body) const
{
    if (isReading(request))
        return m_parts.signInPage.show(path, languageOf(request));
    if (request.method != "POST")
        refuseUnknown();
    if (isFromElsewhere(request) || hasOtherOrigin(request))
        throw Refusal(Code::Forbidden, "only the page itself can confirm");
    return m_parts.signInPage.answer(path, body, languageOf(request));
}

} // namespace localservice
