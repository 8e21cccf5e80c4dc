#pragma once

class QByteArray;
class QJsonObject;
class QJsonParseError;
class QString;
struct ServiceOperation;

/// The debug lines that the operations share.
namespace ServiceLog {

/// The start of the operation that is called @p name.
void begin(const char *name);

/// The same of an operation that sends @p body.
void begin(const char *name, const QJsonObject &body);

/// The same of an operation about @p subject.
void begin(const char *name, const QString &subject);

/// The start of a file's download, with what the two places are called.
void beginDownload(const char *name, const char *from, const QString &address, const char *to,
                   const QString &path);

/// A request that failed on the network. @p failInfo is read as UTF-8: where the local encoding, in
/// which the toolkit writes it, is another one, letters beyond ASCII are lost.
void failure(const ServiceOperation &operation, const QByteArray &failInfo);

/// A reply that is not JSON.
void parseError(const ServiceOperation &operation, const QJsonParseError &error);

/// A reply with a code other than 0.
void refusal(const ServiceOperation &operation, int code, const QString &message);

} // namespace ServiceLog
