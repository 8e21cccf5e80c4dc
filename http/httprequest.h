#pragma once

#include "http/httpcallbackforms.h"
#include "http/httptypes.h"

#include <QAuthenticator>
#include <QByteArray>
#include <QList>
#include <QMap>
#include <QNetworkRequest>
#include <QPair>
#include <QSslError>
#include <QString>
#include <QVariant>

class HttpClient;
class HttpResponse;
class QHttpMultiPart;
class QJsonObject;
class QNetworkReply;

/// What a request consists of, as plain data. A copy is independent of the original, except that
/// both have the same pointers. The operations of HttpRequest say more of each field.
struct HttpRequestFields
{
    /// (key, target) pairs in binding order.
    using Callbacks = QList<QPair<QString, QVariant>>;

    HttpMethod method = HttpMethod::Unknown; ///< The verb.
    HttpClient *client = nullptr;            ///< Sends the request; not owned.
    QNetworkReply *reply = nullptr; ///< Set by the toolkit in the copy that was sent; not owned.
    QNetworkRequest networkRequest; ///< Address and headers.
    BodyType bodyType = BodyType::None; ///< How the body is held and sent.
    QVariant body = QByteArray();       ///< What @c bodyType says.
    qint32 timeoutMs = -1;              ///< Milliseconds; 0 and less: no limit.
    bool block = false;                 ///< send() waits for the reply.
    qint32 retryCount = 0;              ///< How often a failure is sent again; 0 and less: never.
    bool isRetry = false;               ///< Set by the toolkit in the copy that a retry sends.
    qint32 repeatCount = 1;             ///< Attempts in all, retries apart; 1 and less: one.
    QAuthenticator authenticator;       ///< Credentials; null: the receivers are asked.
    qint32 maxAuthenticationTimes = 1;  ///< Answers to authentication; negative: no limit.
    qint64 readBufferSize = -1;         ///< Bytes; 0: no bound; negative: see the setter.
    bool gathersBody = false;          ///< The body leaves the reply as it arrives, into one array.
    QList<QSslError> ignoredSslErrors; ///< The TLS errors to expect.
    bool isDownload = false;           ///< The body goes into a file.
    QString downloadFilePath;          ///< Empty: the server or the address names the file.
    bool enableResume = true;          ///< A partial file is continued.
    bool supportsResume = false;       ///< Set by the toolkit: the server serves ranges.
    qint64 downloadedBytes = 0;        ///< Set by the toolkit: bytes in the file.
    qint64 totalBytes = 0;             ///< Set by the toolkit: bytes announced; 0: unknown.
    QMap<int, Callbacks> callbacks;    ///< By CallbackKind.
    QVariantMap extraMap1;             ///< The caller's; copied with the request, never read.
    QVariantMap extraMap2;             ///< The caller's; copied with the request, never read.
    qint32 logLevel = HttpLogLevel::BadBindings; ///< What HttpLogLevel names with it and below.
};

/// Describes one HTTP request, which send() sends. A value: copies are independent of each other,
/// except that the pointers in them (client, multi-part body, receivers) are shared and not owned.
///
/// Callbacks are bound before send(); bound later they reach the next send() only. The typed
/// conveniences (onFinished() and so on) take one of
///  - a callable, whose own parameters pick the form: onFinished([](QByteArray body) { ... });
///  - a receiver with a pointer to member, called for as long as the receiver lives;
///  - a receiver with a slot text: onFinished(this, SLOT(onBody(QByteArray))).
///
/// Callables and members are called directly, on the client's thread; a slot text connects with
/// the automatic type, so a receiver in another thread is called there. A slot text attaches to
/// every form whose arguments begin with its own: SLOT(done()) under Finished attaches to all
/// five, is called five times, and owns the reply; a callable without parameters is called once.
/// Receivers must live until send() returns; after that they may go at any time.
class HttpRequest
{
public:
    /// A request without address, headers and body. @p client sends it and is not owned; without a
    /// client nothing is sent.
    HttpRequest(HttpMethod method, HttpClient *client);
    ///@{
    /// Copies and moves; the pointers are shared.
    HttpRequest(const HttpRequest &) = default;
    HttpRequest(HttpRequest &&) = default;
    HttpRequest &operator=(const HttpRequest &) = default;
    HttpRequest &operator=(HttpRequest &&) = default;
    ///@}
    virtual ~HttpRequest();

    /// Sets the address, parsed in tolerant mode.
    HttpRequest &url(const QString &address);

    /// Sets one header per entry, in key order; a later value replaces an earlier one of the same
    /// name. Names and values are sent in UTF-8 up to their first NUL, CR or LF; an entry that has
    /// no name then is left out.
    HttpRequest &headers(const QVariantMap &map);

    /// An indented JSON document, with Content-Type "application/json".
    HttpRequest &jsonBody(const QJsonObject &object);

    /// Bytes that are sent as they are. The content type is the caller's to set.
    HttpRequest &rawBody(const QByteArray &bytes);

    /// Bytes that are form-encoded already, with Content-Type "application/x-www-form-urlencoded".
    HttpRequest &formUrlEncodedBody(const QByteArray &encoded);

    /// One name=value pair per entry in key order, each percent-encoded, with Content-Type
    /// "application/x-www-form-urlencoded".
    HttpRequest &formUrlEncodedBody(const QVariantMap &nameToValue);

    /// A multi-part form with one file per entry. When one of them cannot be opened, Qt sends the
    /// whole form empty; on Windows the request fails. CR and LF in the names of parts and files
    /// become %0D and %0A.
    HttpRequest &fileMapBody(const QMap<QString, QString> &nameToPath);

    /// A multi-part form with one text per entry. CR and LF in the names become %0D and %0A.
    HttpRequest &formDataBody(const QVariantMap &nameToValue);

    /// A multi-part object of the caller's, which the reply owns once the request is sent. Its
    /// devices are read once: what a retry or a repeat sends of it is empty.
    HttpRequest &multiPartBody(QHttpMultiPart *multiPart);

    /// Limits each attempt as a whole to @p ms milliseconds, which progress does not prolong; then
    /// it fails with OperationCanceledError. 0 and less: no limit.
    HttpRequest &timeout(int ms);

    /// Whether send() waits, in an event loop of its own, until the reply has finished. Callbacks
    /// run before it returns, and so may anything else on the thread.
    HttpRequest &block(bool block);

    /// How often a request that failed is sent again before its failure is reported; 0 and less:
    /// never.
    HttpRequest &retry(int count);

    /// How often the request is sent in all, retries apart, whatever its outcomes are; 1 and less:
    /// once.
    HttpRequest &repeat(int count);

    /// Credentials that are given to a server which asks for them. The caller keeps line breaks out
    /// of the user name: Qt sends it as it is where the server asks for a digest.
    HttpRequest &authenticator(const QAuthenticator &authenticator);

    /// How many times a server that asks is given credentials, those of the request or of a
    /// receiver; 0: never; negative: no limit.
    HttpRequest &maxAuthenticationTimes(int count);

    /// Bytes that the reply buffers before it stops receiving; 0: no bound; negative: no bound, but
    /// 512 KiB for downloads, 64 KiB where they come over TLS. A bounded reply that nobody reads
    /// stalls.
    HttpRequest &readBufferSize(qint64 bytes);

    /// The TLS errors that are expected and so do not end the exchange.
    HttpRequest &ignoreSslErrors(const QList<QSslError> &errors);

    /// The body goes into the file @p filePath; empty: into one named after the server's
    /// Content-Disposition, which may lead to another folder, or the address. A file that is as
    /// long as the server announces, or longer, is appended to.
    HttpRequest &download(const QString &filePath);

    /// Whether a download continues a partial file, if the server serves ranges.
    HttpRequest &enableResume(bool enable);

    /// Logs to Qt's message stream what HttpLogLevel names with @p level and below; 0: nothing.
    HttpRequest &logLevel(int level);

    /// Appends a callback: as @p key a slot text ("1name(arguments)", as SLOT() makes it) with its
    /// receiver as a QObject pointer in @p target, or the name of a std::function type of
    /// httpcallbacktypes.h with the function. An entry that fits no signal of its kind is skipped,
    /// with a warning, when the request is sent.
    HttpRequest &bind(CallbackKind kind, const QString &key, const QVariant &target);

    /// The exchange succeeded. Forms: (), (QByteArray), (QVariantMap), (QNetworkReply *) or
    /// (QString). The body as bytes, as the map of a JSON object, or as UTF-8 text. Whoever takes
    /// the reply owns it and deletes it later.
    template <typename... Target>
    HttpRequest &onFinished(Target &&...target)
    {
        return bindTarget<CallbackKind::Finished>(std::forward<Target>(target)...);
    }

    /// The exchange failed for good. Forms: (), (QByteArray), (QNetworkReply *) or
    /// (QNetworkReply::NetworkError). The error's text in the local 8-bit encoding, its code, or
    /// the reply; whoever takes the reply owns it and deletes it later.
    template <typename... Target>
    HttpRequest &onError(Target &&...target)
    {
        return bindTarget<CallbackKind::Error>(std::forward<Target>(target)...);
    }

    /// Accepted for completeness; no response emits it. Use onDownloadFileProgress(). Forms:
    /// (qint64, qint64). Bytes received and in all.
    template <typename... Target>
    HttpRequest &onDownloadProgress(Target &&...target)
    {
        return bindTarget<CallbackKind::DownloadProgress>(std::forward<Target>(target)...);
    }

    /// Part of the body was sent. Forms: (qint64, qint64). Bytes sent and in all (-1: unknown).
    template <typename... Target>
    HttpRequest &onUploadProgress(Target &&...target)
    {
        return bindTarget<CallbackKind::UploadProgress>(std::forward<Target>(target)...);
    }

    /// The time-out ended an attempt. Called after the error; when the attempt is retried, after
    /// the retry has been sent (if the request blocks: answered). Forms: (QNetworkReply *) or ().
    /// The reply goes when the callbacks are over, unless onError() has handed it over.
    template <typename... Target>
    HttpRequest &onTimeout(Target &&...target)
    {
        return bindTarget<CallbackKind::Timeout>(std::forward<Target>(target)...);
    }

    /// Part of the body arrived. Forms: (QNetworkReply *). The reply stays the toolkit's.
    template <typename... Target>
    HttpRequest &onReadyRead(Target &&...target)
    {
        return bindTarget<CallbackKind::ReadyRead>(std::forward<Target>(target)...);
    }

    /// The file of a download is complete, unless onDownloadFileError() was called before. Forms:
    /// () or (QString). The file's name as it was given.
    template <typename... Target>
    HttpRequest &onDownloadFileFinished(Target &&...target)
    {
        return bindTarget<CallbackKind::DownloadFileFinished>(std::forward<Target>(target)...);
    }

    /// A download failed, or its file cannot be written, in which case the exchange goes on. Forms:
    /// () or (QString). What went wrong, with address and file.
    template <typename... Target>
    HttpRequest &onDownloadFileError(Target &&...target)
    {
        return bindTarget<CallbackKind::DownloadFileError>(std::forward<Target>(target)...);
    }

    /// The TLS handshake is complete. Forms: ().
    template <typename... Target>
    HttpRequest &onEncrypted(Target &&...target)
    {
        return bindTarget<CallbackKind::Encrypted>(std::forward<Target>(target)...);
    }

    /// Headers of the reply became known. Forms: ().
    template <typename... Target>
    HttpRequest &onMetaDataChanged(Target &&...target)
    {
        return bindTarget<CallbackKind::MetaDataChanged>(std::forward<Target>(target)...);
    }

    /// The TLS server asks for a pre-shared key. Forms: (QSslPreSharedKeyAuthenticator *). To be
    /// filled in before the callback returns.
    template <typename... Target>
    HttpRequest &onPreSharedKeyAuthenticationRequired(Target &&...target)
    {
        return bindTarget<CallbackKind::PreSharedKeyAuthenticationRequired>(
            std::forward<Target>(target)...);
    }

    /// A redirect was allowed by the caller, who verifies each (UserVerifiedRedirectPolicy). Forms:
    /// ().
    template <typename... Target>
    HttpRequest &onRedirectAllowed(Target &&...target)
    {
        return bindTarget<CallbackKind::RedirectAllowed>(std::forward<Target>(target)...);
    }

    /// The server redirects a request that follows redirects. Forms: (QUrl). The new address.
    template <typename... Target>
    HttpRequest &onRedirected(Target &&...target)
    {
        return bindTarget<CallbackKind::Redirected>(std::forward<Target>(target)...);
    }

    /// The TLS handshake met errors, which are not ignored. Forms: (QList<QSslError>).
    template <typename... Target>
    HttpRequest &onSslErrors(Target &&...target)
    {
        return bindTarget<CallbackKind::SslErrors>(std::forward<Target>(target)...);
    }

    /// A retry has its outcome, whose callbacks follow. Forms: ().
    template <typename... Target>
    HttpRequest &onRetried(Target &&...target)
    {
        return bindTarget<CallbackKind::Retried>(std::forward<Target>(target)...);
    }

    /// The last attempt of a request is over, repeated or not. Forms: ().
    template <typename... Target>
    HttpRequest &onRepeated(Target &&...target)
    {
        return bindTarget<CallbackKind::Repeated>(std::forward<Target>(target)...);
    }

    /// The server asks for credentials and the request has none. Forms: (QAuthenticator *). To be
    /// filled in before the callback returns.
    template <typename... Target>
    HttpRequest &onAuthenticationRequired(Target &&...target)
    {
        return bindTarget<CallbackKind::AuthenticationRequired>(std::forward<Target>(target)...);
    }

    /// The server asks again: it did not accept the credentials. Forms: () or (QNetworkReply *).
    /// The reply stays the toolkit's.
    template <typename... Target>
    HttpRequest &onAuthenticationRequireFailed(Target &&...target)
    {
        return bindTarget<CallbackKind::AuthenticationRequireFailed>(
            std::forward<Target>(target)...);
    }

    /// The headers of the reply, once, as soon as there is a body or an end. Forms:
    /// (QList<QNetworkReply::RawHeaderPair>) or (QMap<QString, QString>). The map has the last
    /// value of a name that is repeated.
    template <typename... Target>
    HttpRequest &onHead(Target &&...target)
    {
        return bindTarget<CallbackKind::Head>(std::forward<Target>(target)...);
    }

    /// Part of the body arrived, of a download or not. Forms: (qint64, qint64). Bytes received and
    /// in all (-1: unknown) in this exchange: what a continued file had before is not counted.
    template <typename... Target>
    HttpRequest &onDownloadFileProgress(Target &&...target)
    {
        return bindTarget<CallbackKind::DownloadFileProgress>(std::forward<Target>(target)...);
    }

    /// Accepted for completeness; never called. Forms: (QString).
    template <typename... Target>
    HttpRequest &onDownloadFileNameChanged(Target &&...target)
    {
        return bindTarget<CallbackKind::DownloadFileNameChanged>(std::forward<Target>(target)...);
    }

    /// Sends a copy of the request; called on the client's thread. Returns the response, which
    /// belongs to its reply and goes with it: at once, or after the exchange if the request blocks.
    /// Deleting the response ends the exchange without a further callback. Null when nothing could
    /// be sent (an unknown method, no client, a multi-part body without an object): no callback
    /// runs then, and a critical message says why. Null also after a wait in which the response was
    /// deleted.
    ///
    /// A download has its response before its reply: see HttpDownloader.
    HttpResponse *send() const;

    HttpRequestFields fields; ///< What the builder operations fill in.

private:
    template <CallbackKind Kind, typename... Target>
    HttpRequest &bindTarget(Target &&...target)
    {
        constexpr bool fits = HttpCallbackForms::Fits<Kind, Target...>::value;
        static_assert(fits,
                      "takes a callable or a receiver's member with the parameters of one of the "
                      "forms named above the operation, or a receiver with a slot text");
        if constexpr (fits) {
            const HttpCallbackForms::Entry entry =
                HttpCallbackForms::entry(std::forward<Target>(target)...);
            bind(Kind, entry.key, entry.target);
        }
        return *this;
    }

    void setBody(BodyType type, const QVariant &body);
};
