#pragma once

#include "localservice/accounts/qrsignins.h"

#include <map>
#include <string>

namespace localservice {

/// What people see of a sign-in by QR code: the picture, and the page that it leads to. May be
/// used by several threads.
class SignInPage
{
public:
    /// A page: the HTTP status, and HTML in UTF-8.
    struct Reply
    {
        int status = 200;
        std::string html;
    };

    /// @p signIns outlives this; @p origin begins the address that the pictures show, and
    /// @p account names who is signed in.
    SignInPage(QrSignIns &signIns, const std::string &origin, const std::string &account);

    /// The paths of the page and of the picture of a sign-in.
    static std::string pathOf(const QrSignIn &signIn);
    static std::string picturePathOf(const QrSignIn &signIn);

    /// Whether @p path is under the folder of the pages or of the pictures, respectively.
    static bool isPage(const std::string &path);
    static bool isPicture(const std::string &path);

    /// The headers of every page. They keep a browser from loading anything into it, sending its
    /// address elsewhere and showing it in a frame.
    static const std::map<std::string, std::string> &headers();

    /// The page with the button, or one that says why there is none: status 404 for an unknown
    /// code, 410 for one that has expired or was used. Nothing is changed by it.
    Reply show(const std::string &path);

    /// Confirms the sign-in and returns a page that says so, or why that is not possible, with the
    /// statuses of show().
    Reply confirm(const std::string &path);

    /// The QR code of the page as a PNG file; Refusal if there is no such picture, or no longer.
    std::string picture(const std::string &path);

private:
    QrSignIns &m_signIns;
    std::string m_origin;
    std::string m_account;
};

} // namespace localservice
