#pragma once

#include <QByteArray>

/// The verb of a request. Unknown, and any value outside this list, is never sent.
enum class HttpMethod : qint32 {
    Unknown = 0, ///< No verb.
    Head = 1,    ///< May never finish; see docs/http-toolkit.md, "Known surprises".
    Get = 2,
    Put = 3,
    Post = 4,
    Delete = 5,
};

/// How the body of a request is held and sent.
enum class BodyType : qint32 {
    None = 0,                  ///< Nothing.
    Raw = 1,                   ///< A QByteArray, sent as it is.
    RawJson = 2,               ///< A QByteArray with a serialised JSON document, sent as it is.
    x_www_form_urlencoded = 3, ///< A QByteArray with an encoded form, sent as it is.
    FileMap = 4,   ///< A QMap<QString, QString>, part name to file path; sent as a multi-part form.
    MultiPart = 5, ///< A QHttpMultiPart *, built by the caller.
    FormData = 6,  ///< A QVariantMap, part name to value; sent as a multi-part form.
};

/// The family of HttpResponse signals that a callback is attached to. Each is described at the
/// operation of HttpRequest that has its name: onFinished() for Finished, and so on.
enum class CallbackKind : qint32 {
    Finished = 0,
    Error = 1,
    DownloadProgress = 2,
    UploadProgress = 3,
    Timeout = 4,
    ReadyRead = 5,
    DownloadFileFinished = 6,
    DownloadFileError = 7,
    Encrypted = 8,
    MetaDataChanged = 9,
    PreSharedKeyAuthenticationRequired = 10,
    RedirectAllowed = 11,
    Redirected = 12,
    SslErrors = 13,
    Retried = 14,
    Repeated = 15,
    AuthenticationRequired = 16,
    AuthenticationRequireFailed = 17,
    Head = 18,
    DownloadFileProgress = 19,
    DownloadFileNameChanged = 20,
};

/// What a request logs to Qt's message stream. Each line names the lowest log level of the request
/// at which it is logged.
namespace HttpLogLevel {
constexpr qint32 Critical = 2;      ///< Requests that could not be sent.
constexpr qint32 BadBindings = 3;   ///< Callbacks that fit no signal of their kind.
constexpr qint32 Dumps = 4;         ///< Requests and responses in full, credentials included.
constexpr qint32 NetworkErrors = 5; ///< Each error that Qt reports, retried or not.
} // namespace HttpLogLevel

/// The text of @p method as it is sent; empty for Unknown and for every value outside the list. May
/// be called from any thread.
QByteArray httpVerb(HttpMethod method);

/// The name of @p type as dumps print it; empty for a value outside the list. Never null.
const char *bodyTypeName(BodyType type);
