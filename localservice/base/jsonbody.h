#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace localservice {

/// The JSON object in the body of a request. Every failure is a Refusal that names the key.
class JsonBody
{
public:
    /// Refused unless @p bytes is one JSON object, in UTF-8, nested no deeper than 64 levels.
    explicit JsonBody(const std::string &bytes);

    /// The string under @p key, which has to be there.
    std::string text(const char *key) const;

    /// The string under @p key, or @p fallback if there is none.
    std::string text(const char *key, const std::string &fallback) const;

    /// The integer under @p key, or @p fallback if there is none; refused outside of @p least to
    /// @p most.
    int integer(const char *key, int fallback, int least, int most) const;

    /// Whether "true" stands under @p key; anything but "true" and "false" is refused.
    bool flag(const char *key, bool fallback) const;

private:
    nlohmann::json m_object;
};

} // namespace localservice
