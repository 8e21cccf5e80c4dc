#pragma once

#include "localservice/base/refusal.h"

#include <httplib.h>

#include <chrono>
#include <string>

namespace localservice {

/// What is known about a request besides what the server keeps.
struct RequestNotes
{
    /// When the service began with it.
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    std::string feature;  ///< As the client gave it; empty if it gave none.
    Code code = Code::Ok; ///< Of the envelope, or what it would be.
    /// Whether the connection has to end after the reply: what follows on it cannot be told from
    /// a body that has not been read.
    bool endsConnection = false;
    /// Whether the connection had ended before, and this is what the library had buffered of it.
    bool isLeftOver = false;
};

/// The notes on the request that this thread is working on: a thread serves one at a time.
RequestNotes &requestNotes();

/// Writes one line about a request that has been answered to stderr: time, method, path, feature,
/// HTTP status, code, duration. Neither headers, nor the query, nor what follows in the path of a
/// sign-in or of an object are told: secrets are in them.
void logRequest(const httplib::Request &request, const httplib::Response &response);

} // namespace localservice
