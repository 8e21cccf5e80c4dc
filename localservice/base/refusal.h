#pragma once

#include <stdexcept>
#include <string>

namespace localservice {

/// The "code" of an envelope; README.md has the table.
enum class Code {
    Ok = 0,
    Malformed = 400,
    Unauthorized = 401,
    Forbidden = 403,
    NotFound = 404,
    TooLarge = 413,
    AddressTooLong = 414,
    UnusableAudio = 415,
    OutOfRange = 416,
    UnusableValue = 422,
    Busy = 429,
    Failed = 500,
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
