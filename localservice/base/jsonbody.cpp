#include "localservice/base/jsonbody.h"

#include "localservice/base/refusal.h"

#include <algorithm>

namespace localservice {

namespace {

constexpr int deepestNesting = 64; // within the object that the body is

[[noreturn]] void refuseMalformed(const std::string &message)
{
    throw Refusal(Code::Malformed, message);
}

std::string quoted(const char *key) { return std::string(1, '"') + key + '"'; }

// The depth to which arrays and objects of a JSON text are nested. It may be wrong behind the first
// error, which the parser does not get beyond.
int nestingOf(const std::string &json)
{
    int depth = 0;
    int deepest = 0;
    bool isInString = false;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (c == '"')
            isInString = !isInString;
        else if (isInString)
            i += c == '\\' ? 1 : 0;
        else if (c == '[' || c == '{')
            deepest = std::max(deepest, ++depth);
        else if (c == ']' || c == '}')
            --depth;
    }
    return deepest;
}

} // namespace

JsonBody::JsonBody(const std::string &bytes)
{
    // The parser has no limit of its own.
    if (nestingOf(bytes) > 1 + deepestNesting)
        refuseMalformed("the body is nested too deeply");
    try {
        m_object = nlohmann::json::parse(bytes);
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
    // A double may round a large integer, and stays beyond every limit here.
    const auto value = found->get<double>();
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
