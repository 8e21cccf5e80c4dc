#pragma once

#include "http/httptypes.h"

/// The parts of the web service, each the beginning of its endpoints' paths.
constexpr char convertServicePrefix[] = "/convert/public/index.php/v1/";
constexpr char ucenterServicePrefix[] = "/ucenter/public/index.php/v1/";
constexpr char appServicePrefix[] = "/app/public/index.php/v1/";

/// How a refusal is logged: the text, the code, the separator, the message.
struct RefusalLine
{
    const char *text;      ///< %1 stands for the stem of the slots' names.
    const char *separator; ///< Null: only the message follows the text.
};

/// The two forms that the operations share.
constexpr RefusalLine refusalWithNames{"[error]slot%1Suc failed:retCode=", ",msg="};
constexpr RefusalLine refusalWithComma{"[error]slot%1Suc failed:", ","};

/// One operation of the web service: its request, the slots that answer it, what is logged of it.
struct ServiceOperation
{
    HttpMethod method = HttpMethod::Get;
    const char *prefix = "";
    const char *path = ""; ///< Appended to the prefix as it stands; %1 is filled.
    const char *stem = ""; ///< The slots of VoNetworker are slotSTEMSuc and slotSTEMFail.
    RefusalLine refusal = refusalWithNames;
    /// The stem that is logged of a reply that is no success; null: that of the slots.
    const char *loggedStem = nullptr;
};
