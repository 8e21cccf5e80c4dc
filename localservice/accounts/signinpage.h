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
    struct Reply
    {
        int status = 200;
        std::string html;
    };

    /// @p signIns outlives this; @p origin begins the address that the pictures show, and
    /// @p account names who is signed in.
    SignInPage(QrSignIns &signIns, const std::string &origin, const std::string &account);

    static std::string pathOf(const QrSignIn &signIn);
    static std::string picturePathOf(const QrSignIn &signIn);

    /// Whether @p path is that of a page or of a picture, respectively.
    static bool isPage(const std::string &path);
    static bool isPicture(const std::string &path);

    /// The headers of every page: it may load, send and be shown nowhere but where it belongs.
    static const std::map<std::string, std::string> &headers();

    /// The page with the button, or one that says why there is none. Nothing is changed by it.
    Reply show(const std::string &path);

    /// Confirms the sign-in, and says so or why that is not possible.
    Reply confirm(const std::string &path);

    /// The PNG file; Refusal if there is no such picture, or no longer.
    std::string picture(const std::string &path);

private:
    QrSignIns &m_signIns;
    std::string m_origin;
    std::string m_account;
};

} // namespace localservice
