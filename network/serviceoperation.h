#pragma once

#include "http/httptypes.h"

#include <QLatin1String>

/// The parts of the web service, each the beginning of its endpoints' paths.
constexpr QLatin1String convertServicePrefix("/convert/public/index.php/v1/");

/// What the request of an operation is made of, and the slots of VoNetworker that answer it.
struct ServiceOperation
{
    HttpMethod method;
    QLatin1String prefix;
    QLatin1String path; ///< Appended to the prefix as it stands.
    QLatin1String successSlot;
    QLatin1String failureSlot;
};
