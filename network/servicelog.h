#pragma once

class QByteArray;
class QJsonObject;
class QJsonParseError;
class QString;
struct ServiceOperation;

/// The debug lines that the operations share.
namespace ServiceLog {

/// Logs the start of the operation @p name.
void begin(const char *name);

/// Logs the start of the operation @p name, which sends @p body.
void begin(const char *name, const QJsonObject &body);

/// Logs the start of the operation @p name, which is about @p subject.
void begin(const char *name, const QString &subject);

/// Logs the start of a download by the operation @p name. @p from and @p to are the labels of
/// @p address and @p path in the line.
void beginDownload(const char *name, const char *from, const QString &address, const char *to,
                   const QString &path);

/// Logs a request that failed on the network. @p failInfo is read as UTF-8. The toolkit writes it
/// in the local encoding: where that is another, letters beyond ASCII are lost.
void failure(const ServiceOperation &operation, const QByteArray &failInfo);

/// Logs a reply that is not JSON.
void parseError(const ServiceOperation &operation, const QJsonParseError &error);

/// Logs a refusal: a reply with a code other than 0.
void refusal(const ServiceOperation &operation, int code, const QString &message);

} // namespace ServiceLog
