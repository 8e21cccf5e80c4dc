#pragma once

#include <QByteArray>
#include <QNetworkReply>

class QString;

/// The plain fetch of an address into a file. Apart from the operations' requests: no header of
/// the library's own, no redirect followed, an access manager of its own.
namespace FileFetch {

struct Result
{
    QNetworkReply::NetworkError error;
    QByteArray body; ///< What arrived, also with an error.
};

/// Waits for @p address in a nested event loop, without a time-out; an application that quits
/// meanwhile ends the wait with OperationCanceledError. An error is logged under @p tag.
Result fetch(const QString &address, const char *tag);

/// Replaces the file @p path by @p body; no folder is made. False when the file cannot be opened,
/// which is logged as @p tag and @p openError. A short write is not noticed.
bool save(const QByteArray &body, const QString &path, const char *tag, const char *openError);

} // namespace FileFetch
