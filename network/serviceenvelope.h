#pragma once

#include <QJsonValue>

#include <optional>

class QByteArray;

/// Every reply of the service is a JSON object {"code", "message", "data"}.
namespace ServiceEnvelope {

/// What a slot logs when a reply is none, or a refusal.
struct Texts
{
    const char *slot;      ///< Named in the line about a reply that is not JSON.
    const char *refusal;   ///< Begins the line about a refusal.
    const char *separator; ///< Between code and message; null: the message alone is logged.
};

/// The member "data" of a reply whose code is 0, undefined when it has none. Nothing for any other
/// reply: one that is not JSON and a refusal are logged, one without an object or a code is not.
std::optional<QJsonValue> read(const QByteArray &reply, const Texts &texts);

} // namespace ServiceEnvelope
