#include "jsonbody.h"

#include "refusal.h"

#include <cstdint>

namespace localservice {

namespace {

constexpr int deepestNesting = 64;

[[noreturn]] void refuseMalformed(const std::string &message)
{
    throw Refusal(Code::Malformed, message);
}

std::string quoted(const char *key) { return std::string(1, '"') + key + '"'; }

// Values are built from the inside out, so a limit on the way in is one on memory and on the
// stack as well.
bool limitNesting(int depth, nlohmann::json::parse_event_t, nlohmann::json &)
{
    if (depth > deepestNesting)
        refuseMalformed("the body is nested too deeply");
    return true;
}

} // namespace

JsonBody::JsonBody(const std::string &bytes)
{
    try {
        m_object = nlohmann::json::parse(bytes, limitNesting);
    } catch (const nlohmann::json::exception &) {
        refuseMalformed("the body is not JSON in UTF-8");
    }
    if (!m_object.is_object())
        refuseMalformed("the body is not a JSON object");
}

std::string JsonBody::text(const char *key) const
{
    if (!m_object.contains(key))
        refuseMalformed(quoted(key) + " is missing");
    return text(key, std::string());
}

std::string JsonBody::text(const char *key, const std::string &fallback) const
{
    const auto found = m_object.find(key);
    if (found == m_object.end())
        return fallback;
    if (!found->is_string())
        refuseMalformed(quoted(key) + " has to be a string");
    return found->get<std::string>();
}

int JsonBody::integer(const char *key, int fallback, int least, int most) const
{
    const auto found = m_object.find(key);
    if (found == m_object.end())
        return fallback;
    if (!found->is_number_integer())
        refuseMalformed(quoted(key) + " has to be an integer");
    // Unsigned values too large for the signed type are beyond every limit here.
    const bool huge = found->is_number_unsigned() && found->get<std::uint64_t>() > INT32_MAX;
    const std::int64_t value = huge ? INT64_MAX : found->get<std::int64_t>();
    if (value < least || value > most)
        throw Refusal(Code::UnusableValue, quoted(key) + " has to be from " + std::to_string(least)
                                               + " to " + std::to_string(most));
    return static_cast<int>(value);
}

bool JsonBody::flag(const char *key, bool fallback) const
{
    const std::string value = text(key, fallback ? "true" : "false");
    if (value != "true" && value != "false")
        throw Refusal(Code::UnusableValue, quoted(key) + " has to be \"true\" or \"false\"");
    return value == "true";
}

} // namespace localservice
