#pragma once

#include "http/httptypes.h"

/// The parts of the web service, each the beginning of its endpoints' paths.
constexpr char convertServicePrefix[] = "/convert/public/index.php/v1/";
constexpr char ucenterServicePrefix[] = "/ucenter/public/index.php/v1/";
constexpr char appServicePrefix[] = "/app/public/index.php/v1/";

/// What the request of an operation is made of, and the slots of VoNetworker that answer it.
struct ServiceOperation
{
    HttpMethod method = HttpMethod::Unknown;
    const char *prefix = nullptr;
    const char *path = nullptr; ///< Appended to the prefix as it stands; %1 is filled.
    const char *successSlot = nullptr;
    const char *failureSlot = nullptr;
};
