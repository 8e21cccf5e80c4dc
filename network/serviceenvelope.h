#pragma once

#include <QJsonValue>

#include <optional>

class QByteArray;
struct ServiceOperation;

/// Every reply of the service is a JSON object {"code", "message", "data"}.
namespace ServiceEnvelope {

/// The member "data" of @p reply to @p operation when its code is 0, undefined when it has none.
/// Nothing for any other reply: one that is not JSON and a refusal are logged, one without an
/// object or a code is not.
std::optional<QJsonValue> read(const QByteArray &reply, const ServiceOperation &operation);

} // namespace ServiceEnvelope
