#pragma once

#include "http/httptypes.h"

/// The parts of the web service. Each is the beginning of the paths of its endpoints.
constexpr char convertServicePrefix[] = "/convert/public/index.php/v1/";
constexpr char ucenterServicePrefix[] = "/ucenter/public/index.php/v1/";
constexpr char appServicePrefix[] = "/app/public/index.php/v1/";

/// The line in which a refusal is logged: the text, the code, the separator, the message.
struct RefusalLine
{
    const char *text;      ///< %1 stands for the logged stem of the operation.
    const char *separator; ///< Null: the message follows the text, without the code.
};

/// The two forms that all operations but one share.
constexpr RefusalLine refusalWithNames{"[error]slot%1Suc failed:retCode=", ",msg="};
constexpr RefusalLine refusalWithComma{"[error]slot%1Suc failed:", ","};

/// One operation of the web service: its request, the slots that take its reply, and how its
/// failures are logged.
struct ServiceOperation
{
    HttpMethod method = HttpMethod::Get; ///< Get, without a body, or Post, with a JSON body.
    const char *prefix = "";             ///< The part of the service.
    const char *path = ""; ///< Appended to the prefix as it stands; %1 is the query's argument.
    const char *stem = ""; ///< The slots of VoNetworker are slotSTEMSuc and slotSTEMFail.
    RefusalLine refusal = refusalWithNames;
    /// The stem in the log lines of a reply that is no success; null: that of the slots.
    const char *loggedStem = nullptr;
};
