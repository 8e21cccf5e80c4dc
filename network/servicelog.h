#pragma once

class QByteArray;
class QJsonObject;

/// The debug lines that all operations share.
namespace ServiceLog {

/// The start of an operation that sends @p body.
void begin(const char *operation, const QJsonObject &body);

/// A request that failed on the network.
void failure(const char *slot, const QByteArray &failInfo);

} // namespace ServiceLog
