#pragma once

#include "localservice/base/refusal.h"

#include <httplib.h>

#include <chrono>
#include <string>

namespace localservice {

/// What is known about a request besides what the HTTP library keeps.
struct RequestNotes
{
    /// When the service began with it.
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    std::string feature;  ///< As the client gave it; empty if it gave none.
    Code code = Code::Ok; ///< Of the envelope; of another reply, what its status stands for.
    /// The connection ends after the reply: what follows on it cannot be told from a body that has
    /// not been read.
    bool endsConnection = false;
    /// The connection had ended before: the request is what the HTTP library had buffered of it.
    bool isLeftOver = false;
};

/// The notes on the request that this thread is working on: a thread serves one at a time.
RequestNotes &requestNotes();

/// Writes a line about an answered request to standard error: time, method, path, feature, HTTP
/// status, code, duration. Headers, the query, and what follows in the path of a sign-in or of an
/// object are left out: secrets are in them.
void logRequest(const httplib::Request &request, const httplib::Response &response);

} // namespace localservice
