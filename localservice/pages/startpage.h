#pragma once

#include "localservice/pages/page.h"

#include <string>

namespace localservice {

/// The page at "/": what the service is, and how a browser comes to trust it.
class StartPage
{
public:
    static constexpr const char *path = "/";

    /// @p authority is the file of the authority that signed the service's certificate.
    explicit StartPage(const std::string &authority);

    Page show(Language language) const;

private:
    std::string m_authority;
};

} // namespace localservice
