#pragma once

#include "localservice/accounts/qrsignins.h"
#include "localservice/pages/page.h"

#include <QString>

#include <string>

namespace localservice {

/// What people see of a sign-in by QR code: the picture, and the page that it leads to. May be
/// used by several threads.
class SignInPage
{
public:
    /// @p signIns outlives this; @p origin begins the address that the pictures show, and
    /// @p account names who is signed in.
    SignInPage(QrSignIns &signIns, const std::string &origin, const std::string &account);

    /// The paths of the page and of the picture of a sign-in.
    static std::string pathOf(const QrSignIn &signIn);
    static std::string picturePathOf(const QrSignIn &signIn);

    /// Whether @p path is under the folder of the pages or of the pictures, respectively.
    static bool isPage(const std::string &path);
    static bool isPicture(const std::string &path);

    /// The page with the buttons, or one that says why there are none: status 404 for an unknown
    /// code, 410 for one that has expired, was used or was declined. Nothing is changed by it.
    Page show(const std::string &path, Language language);

    /// Takes what a button sends: nothing confirms the sign-in, "answer=no" declines it, and for
    /// everything else there is a Refusal. Returns a page that says what was done, or why that is
    /// not possible, with the statuses of show().
    Page answer(const std::string &path, const std::string &body, Language language);

    /// The QR code of the page as a PNG file; Refusal if there is no such picture, or no longer.
    std::string picture(const std::string &path);

private:
    QrSignIns &m_signIns;
    std::string m_origin;
    QString m_account; // in HTML
};

} // namespace localservice
