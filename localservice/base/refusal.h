#pragma once

#include <stdexcept>
#include <string>

namespace localservice {

/// The "code" of an envelope. What is no operation has it as its HTTP status, too.
enum class Code {
    Ok = 0,               ///< Served.
    Malformed = 400,      ///< The request is not understood.
    Unauthorized = 401,   ///< An access or refresh token is not valid.
    Forbidden = 403,      ///< Another secret is not valid, or a browser's page must not ask.
    NotFound = 404,       ///< There is no such thing, or no longer.
    TooLarge = 413,       ///< A body, a text or a recording is too long.
    AddressTooLong = 414, ///< The address has more than 2048 bytes.
    UnusableAudio = 415,  ///< A recording cannot be read or recognised.
    OutOfRange = 416,     ///< A file does not have the part that was asked for.
    UnusableValue = 422,  ///< A value is understood, and not possible.
    Busy = 429,           ///< There are too many at a time, or were in the last hour.
    Failed = 500,         ///< An engine, the disk or the service itself failed.
};

/// Thrown by whatever cannot serve a request; what() is told to the client, in plain English.
class Refusal : public std::runtime_error
{
public:
    /// @p code is not Code::Ok.
    Refusal(Code code, const std::string &message)
        : std::runtime_error(message)
        , m_code(code)
    {
    }

    /// Why the request is not served.
    Code code() const { return m_code; }

private:
    Code m_code;
};

} // namespace localservice
