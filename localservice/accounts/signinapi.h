#pragma once

#include "localservice/accounts/accounts.h"
#include "localservice/accounts/qrsignins.h"
#include "localservice/accounts/smscodes.h"
#include "localservice/catalogue/catalogue.h"

#include <nlohmann/json.hpp>

#include <string>

namespace localservice {

/// What the operations to sign in need; everything outlives them.
struct SignInServices
{
    Accounts &accounts;
    SmsCodes &smsCodes;
    QrSignIns &qrSignIns;
    const Catalogue &catalogue; ///< For the pictures of users.
};

/// The operations to sign in and to stay it. Each takes the body or the query parameter of its
/// request and returns the "data" of its reply, or throws a Refusal. May be used by several
/// threads.
class SignInApi
{
public:
    /// @p origin, such as "https://localhost:8443", begins the addresses that are given out.
    SignInApi(const SignInServices &services, const std::string &origin);

    /// Begins a sign-in by QR code for @p application, whose name may be empty; the address of its
    /// page goes to standard output as well.
    nlohmann::json qrCode(const std::string &application);

    /// Tells who polls how far a sign-in by QR code has come, and signs in once it is confirmed.
    nlohmann::json qrStatus(const std::string &businessCode);

    /// Makes an SMS code, which goes to standard output instead of a telephone.
    nlohmann::json sendCode(const std::string &body);

    /// Signs in with an SMS code.
    nlohmann::json signInWithCode(const std::string &body);

    /// Gives out another access token for a refresh token.
    nlohmann::json renew(const std::string &refreshToken);

private:
    nlohmann::json signedIn(const Account &account);

    SignInServices m_services;
    std::string m_origin;
};

} // namespace localservice
