#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace localservice {

/// The JSON object in the body of a request. Every failure is a Refusal, which names the key if
/// there is one.
class JsonBody
{
public:
    /// Refused unless @p bytes are one JSON object, in UTF-8, with at most 64 levels nested in it.
    explicit JsonBody(const std::string &bytes);

    /// The string under @p key; refused if it is missing or no string.
    std::string text(const char *key) const;

    /// The string under @p key, or @p fallback if it is missing; refused if it is no string.
    std::string text(const char *key, const std::string &fallback) const;

    /// The integer under @p key, or @p fallback if it is missing; refused if it is no integer or
    /// not from @p least to @p most.
    int integer(const char *key, int fallback, int least, int most) const;

    /// Whether the string under @p key is "true", or @p fallback if it is missing; refused if it is
    /// neither "true" nor "false".
    bool flag(const char *key, bool fallback) const;

private:
    nlohmann::json m_object;
};

} // namespace localservice
