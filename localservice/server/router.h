#pragma once

#include "localservice/accounts/signinpage.h"
#include "localservice/catalogue/catalogue.h"
#include "localservice/pages/startpage.h"
#include "localservice/server/operations.h"
#include "localservice/storage/credentials.h"
#include "localservice/storage/storage.h"

#include <httplib.h>

#include <cstddef>
#include <string>

namespace localservice {

/// Takes each request to the part of the service that it is for, by the path as it was sent. May be
/// used by several threads.
class Router
{
public:
    /// Where requests go; everything outlives the router.
    struct Parts
    {
        const Operations &operations;
        Storage &storage;
        const Credentials &credentials;
        SignInPage &signInPage;
        const StartPage &startPage;
        Catalogue &catalogue;
    };

    /// @p origin, such as "https://localhost:8443", begins the addresses of objects.
    Router(const Parts &parts, const std::string &origin);

    /// Fills in the reply to a request, be it a refusal; never throws.
    void respond(const httplib::Request &request, httplib::Response &response,
                 const std::string &body) const;

    /// The bytes that the body of a request may have: those of an object for an upload, 512 KiB for
    /// every other one.
    static std::size_t largestBody(const httplib::Request &request);

private:
    void serve(const httplib::Request &request, httplib::Response &response,
               const std::string &path, const std::string &body) const;
    void serveObject(const httplib::Request &request, httplib::Response &response,
                     const std::string &path, const std::string &body) const;
    Page signInPage(const httplib::Request &request, const std::string &path,
                    const std::string &body) const;

    const Parts m_parts;
    const std::string m_origin;
};

} // namespace localservice
