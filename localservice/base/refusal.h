#pragma once

#include <stdexcept>
#include <string>

namespace localservice {

/// The "code" of an envelope; README.md has the table.
enum class Code {
    Ok = 0,
    Malformed = 400,    ///< Not understood.
    Unauthorized = 401, ///< An access or refresh token that is not valid.
    Forbidden = 403,    ///< Another secret that is not valid, or the wrong place to ask from.
    NotFound = 404,     ///< There is no such thing, or no longer.
    TooLarge = 413,     ///< A body, a text or a recording.
    AddressTooLong = 414,
    UnusableAudio = 415,
    OutOfRange = 416,    ///< A part of a file that it does not have.
    UnusableValue = 422, ///< Understood, and not possible.
    Busy = 429,          ///< Too many at a time, or in an hour.
    Failed = 500,        ///< An engine, the disk or the service itself.
};

/// Thrown by whatever cannot serve a request; what() is told to the client, in plain English.
class Refusal : public std::runtime_error
{
public:
    Refusal(Code code, const std::string &message)
        : std::runtime_error(message)
        , m_code(code)
    {
    }

    Code code() const { return m_code; }

private:
    Code m_code;
};

} // namespace localservice
