#pragma once

#include <QByteArray>
#include <QNetworkReply>

class QString;

/// The plain fetch of an address into a file. It shares nothing with the requests of the
/// operations: each fetch has an access manager of its own, sends no header of the library's, and
/// follows no redirect.
namespace FileFetch {

struct Result
{
    QNetworkReply::NetworkError error; ///< NoError when the body is complete.
    QByteArray body;                   ///< What arrived, also with an error.
};

/// Fetches @p address, waiting in a nested event loop without a time-out. An application that quits
/// ends the wait with OperationCanceledError. An error is logged under @p tag.
Result fetch(const QString &address, const char *tag);

/// Replaces the file @p path by @p body; no folder is made. False when the file cannot be opened,
/// which is logged with @p tag and @p openError. That the disk takes only a part goes unnoticed.
bool save(const QByteArray &body, const QString &path, const char *tag, const char *openError);

} // namespace FileFetch
