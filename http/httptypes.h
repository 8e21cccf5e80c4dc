#pragma once

#include <QByteArray>

/// The verb of a request. Unknown, and any value outside this list, is never sent.
enum class HttpMethod : qint32 {
    Unknown = 0, ///< No verb.
    Head = 1,    ///< May never finish; see docs/http-toolkit.md, "Known surprises".
    Get = 2,     ///< GET.
    Put = 3,     ///< PUT.
    Post = 4,    ///< POST.
    Delete = 5,  ///< DELETE.
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
/// operation of HttpRequest that stands beside it.
enum class CallbackKind : qint32 {
    Finished = 0,                            ///< onFinished().
    Error = 1,                               ///< onError().
    DownloadProgress = 2,                    ///< onDownloadProgress().
    UploadProgress = 3,                      ///< onUploadProgress().
    Timeout = 4,                             ///< onTimeout().
    ReadyRead = 5,                           ///< onReadyRead().
    DownloadFileFinished = 6,                ///< onDownloadFileFinished().
    DownloadFileError = 7,                   ///< onDownloadFileError().
    Encrypted = 8,                           ///< onEncrypted().
    MetaDataChanged = 9,                     ///< onMetaDataChanged().
    PreSharedKeyAuthenticationRequired = 10, ///< onPreSharedKeyAuthenticationRequired().
    RedirectAllowed = 11,                    ///< onRedirectAllowed().
    Redirected = 12,                         ///< onRedirected().
    SslErrors = 13,                          ///< onSslErrors().
    Retried = 14,                            ///< onRetried().
    Repeated = 15,                           ///< onRepeated().
    AuthenticationRequired = 16,             ///< onAuthenticationRequired().
    AuthenticationRequireFailed = 17,        ///< onAuthenticationRequireFailed().
    Head = 18,                               ///< onHead().
    DownloadFileProgress = 19,               ///< onDownloadFileProgress().
    DownloadFileNameChanged = 20,            ///< onDownloadFileNameChanged().
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
