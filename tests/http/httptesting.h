#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

class QObject;
class QVariant;

inline QString operator""_s(const char *text, std::size_t length)
{
    return QString::fromUtf8(text, int(length));
}

inline QByteArray operator""_b(const char *bytes, std::size_t length)
{
    return QByteArray(bytes, int(length));
}

/// A request as it came over the wire, taken apart.
struct WireRequest
{
    explicit WireRequest(const QByteArray &bytes);

    /// The value of the only header of that name; fails the test when there is not exactly one.
    QByteArray header(const QByteArray &name) const;

    QByteArray line;
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;
};

namespace HttpTesting {

/// Runs the event loop until @p object is destroyed; false when it is still there after a while.
bool waitUntilGone(const QObject *object);

/// The whole of a request as Qt puts it on the wire to localhost, with the caller's own header
/// lines (each with its CRLF) where Qt puts them.
QByteArray wire(const QByteArray &verb, const QByteArray &path, quint16 port,
                const QByteArray &ownLines = QByteArray(), const QByteArray &body = QByteArray());

/// @p request without the line that depends on the language of the machine.
QByteArray withoutLanguage(const QByteArray &request);

/// The text that a SignalRecorder writes for @p value.
QString recorded(const QVariant &value);

/// The column "download", and a row without and one with it.
void addDownloadRows();

/// A port on which nobody listens.
quint16 deadPort();

/// Whether this program is one for Windows that Wine runs.
bool isUnderWine();

} // namespace HttpTesting
