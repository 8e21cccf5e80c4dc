// Fuzzes how the local service reads JSON bodies. The input is a body.

#include "input.h"
#include "localservice/base/jsonbody.h"
#include "localservice/base/refusal.h"
#include "localservice/server/envelope.h"

#include <algorithm>
#include <cstddef>
#include <optional>

using namespace localservice;
using nlohmann::json;

namespace {

constexpr int deepestNesting = 65; // the body itself and 64 levels within
constexpr std::ptrdiff_t mostBrackets = 5000;

int depthOf(const json &value)
{
    int deepest = 0;
    if (value.is_structured()) {
        for (const json &element : value)
            deepest = std::max(deepest, depthOf(element));
    }
    return value.is_structured() ? deepest + 1 : 0;
}

/// Whether a document may be so deep that reading it here would need too much of the stack.
bool mayBeDeep(const std::string &bytes)
{
    return std::count_if(bytes.begin(), bytes.end(), [](char c) { return c == '[' || c == '{'; })
           > mostBrackets;
}

/// Whether the service should take @p document, found out without the service's own code.
bool isUsable(const json &document)
{
    return document.is_object() && depthOf(document) <= deepestNesting;
}

/// Whether @p read returns. If it does not, it must be refused.
template <typename Read>
bool succeeds(Read read)
{
    try {
        read();
        return true;
    } catch (const Refusal &refusal) {
        require(refusal.code() == Code::Malformed || refusal.code() == Code::UnusableValue,
                "a body is refused as malformed or unusable");
        return false;
    }
}

void checkMember(const JsonBody &body, const std::string &key, const json &value)
{
    std::string text;
    const bool isText = succeeds([&] { text = body.text(key.c_str()); });
    require(isText == value.is_string() && (!isText || text == value), "a text is what it was");
    int number = 0;
    if (succeeds([&] { number = body.integer(key.c_str(), 0, -500, 48000); }))
        require(value == number && number >= -500 && number <= 48000, "a number is within limits");
    bool flag = false;
    if (succeeds([&] { flag = body.flag(key.c_str(), false); }))
        require(value == (flag ? "true" : "false"), "a flag is one of two words");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string bytes = Input(data, size).rest();
    std::optional<JsonBody> body;
    const bool isTaken = succeeds([&] { body.emplace(bytes); });
    const json message = json::parse(refusalEnvelope(Code::Malformed, bytes));
    require(message.at("code") == 400, "whatever a message is made of, it can be told");
    if (mayBeDeep(bytes))
        return 0;
    const json document = json::parse(bytes, nullptr, false);
    require(isTaken == isUsable(document), "just objects of a limited depth are taken");
    if (!isTaken)
        return 0;
    for (const auto &[key, value] : document.items()) {
        if (key.find('\0') == std::string::npos)
            checkMember(*body, key, value);
    }
    require(json::parse(successEnvelope(document)).at("data") == document,
            "what is answered is read as it was");
    return 0;
}
