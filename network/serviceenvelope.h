#pragma once

#include <QJsonValue>

#include <optional>

class QByteArray;
struct ServiceOperation;

/// The envelope of the service's replies: a JSON object {"code", "message", "data"}, whose code 0
/// means success.
namespace ServiceEnvelope {

/// The member "data" of @p reply, a success; undefined when it has none. No value when the reply to
/// @p operation is no success: it is not JSON or has another code, both of which are logged, or it
/// is no object or has no code, which are not.
std::optional<QJsonValue> read(const QByteArray &reply, const ServiceOperation &operation);

} // namespace ServiceEnvelope
