#pragma once

#include "http/httprequest.h"

#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <initializer_list>
#include <memory>
#include <optional>

class DownloadFile;

// The overloads of finished, error, timeout and head are this class's interface: a callback picks
// the form it wants by its own arguments. clazy:excludeall=overloaded-signal

/// Serves one network reply: turns its events into signals, sends the request again for a retry or
/// a repeat, and deletes the reply when it is over. The response is a child of the reply, goes with
/// it and lives on the client's thread. From inside a signal a receiver may abort the reply, delete
/// it later, or destroy the client (HttpClient says when not), also in an event loop that it runs
/// there: the reply stays until the receiver has returned.
///
/// Exactly one outcome is reported for each attempt at the request, but none for one that is
/// retried: either the finished() family or the error() family. Whoever is connected to
/// finished(QNetworkReply*) or error(QNetworkReply*) owns the reply and deletes it later;
/// timeout(QNetworkReply*) hands over a reply that is about to go unless error(QNetworkReply*) has
/// handed it over before.
class HttpResponse : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpResponse)

public:
    /// Serves the reply of @p request, if it has one, and attaches its callbacks. The time-out
    /// begins in any case.
    HttpResponse(HttpRequest request, QObject *parent);

    /// Ends an exchange that is under way; no callback follows.
    ~HttpResponse() override;

    /// Serves the reply of @p request from now on, and waits for it if the request asks for that.
    /// The toolkit's, for a response that was handed to a caller before its reply existed: hosts
    /// have no use for it. The time-out begins once more.
    void setRequest(const HttpRequest &request);

    /// The copy of the request that was sent. One that may go out again has its receivers as
    /// QPointer<QObject>, which reads as a QObject pointer and as null once the receiver is gone.
    const HttpRequest &request() const;

Q_SIGNALS:
    /// Another reply is served than before.
    void replyChanged(QNetworkReply *reply);

    /// Success. Emitted in the order reply, nothing, bytes, text, map; a form without a receiver
    /// is not made. The receiver of the reply owns it.
    void finished(QNetworkReply *reply);
    void finished();
    void finished(QByteArray result);
    /// The members of a JSON object; empty for any other body.
    void finished(QVariantMap resultMap);
    /// The body read as UTF-8.
    void finished(QString result);

    /// Declared for callbacks to attach to; never emitted. See downloadFileProgress().
    void downloadProgress(qint64, qint64);
    /// Bytes sent and in all; -1 where the total is unknown.
    void uploadProgress(qint64, qint64);

    /// Final failure, in the order reply, nothing, code, text; the text is in the local 8-bit
    /// encoding. The receiver of the reply owns it.
    void error(QByteArray error);
    void error();
    void error(QNetworkReply::NetworkError error);
    void error(QNetworkReply *reply);

    /// The time-out ended the exchange; follows the error() family.
    void timeout();
    void timeout(QNetworkReply *reply);

    /// Part of the body arrived. The reply stays the toolkit's.
    void readyRead(QNetworkReply *reply);

    /// Declared for callbacks to attach to; never emitted to a caller.
    void downloadFileNameChanged(QString fileName);
    /// The file side of downloads.
    void downloadFileFinished();
    void downloadFileFinished(QString file);
    void downloadFileError();
    void downloadFileError(QString errorString);

    /// What the reply reports, passed on.
    void encrypted();
    void metaDataChanged();
    void preSharedKeyAuthenticationRequired(QSslPreSharedKeyAuthenticator *authenticator);
    void redirectAllowed();
    void redirected(QUrl url);
    void sslErrors(QList<QSslError> errors);

    /// This attempt was a retry; precedes its outcome.
    void retried();
    /// No further attempt follows; only timeout() may come after it.
    void repeated();

    /// The server asks for credentials and the request has none to give.
    void authenticationRequired(QAuthenticator *authentication);
    /// The server asks for the second time or later.
    void authenticationRequireFailed();
    void authenticationRequireFailed(QNetworkReply *);

    /// The reply's headers, once, as soon as there is a body or an end.
    void head(QList<QNetworkReply::RawHeaderPair>);
    /// By name; a repeated name keeps its last value.
    void head(QMap<QString, QString>);

    /// Bytes received and in all of every request, download or not; -1 where unknown.
    void downloadFileProgress(qint64 bytesReceived, qint64 bytesTotal);

private Q_SLOTS:
    void onFinished();
    void onError(QNetworkReply::NetworkError error);
    void onDownloadProgress(qint64 bytesReceived, qint64 bytesTotal);
    void onUploadProgress(qint64 bytesSent, qint64 bytesTotal);
    void onTimeout();
    void onReadyRead();
    void onReadOnceReplyHeader();
    void onEncrypted();
    void onMetaDataChanged();
    void onPreSharedKeyAuthenticationRequired(QSslPreSharedKeyAuthenticator *authenticator);
    void onRedirectAllowed();
    void onRedirected(QUrl url);
    void onSslErrors(QList<QSslError> errors);
    void onAuthenticationRequired(QNetworkReply *reply, QAuthenticator *authenticator);
    void onHandleHead();

private:
    /// False once a receiver has destroyed this response.
    using Step = bool (HttpResponse::*)();

    template <auto Signal>
    bool hasReceivers() const;
    template <auto Signal, typename... Values>
    bool deliver(Values &&...values);
    template <auto Signal>
    bool handOver();
    void run(std::initializer_list<Step> steps);

    void serveRequest();
    qint64 readBufferBound() const;
    void boundReadBuffer();
    void noteRedirect();
    bool isWriting() const;
    bool writeAvailable();
    bool tellFileProblem(const QString &pattern);

    bool tellRetried();
    bool tellFileFinished();
    bool tellBody();
    bool sendRetry();
    bool tellFileError();
    bool tellError();
    bool repeatOrEnd();
    bool tellHead();
    bool releaseReply();

    HttpRequest m_request;
    QPointer<QNetworkReply> m_reply;
    bool m_isTaken = false;               ///< The reply is a receiver's.
    std::unique_ptr<DownloadFile> m_file; ///< Downloads only.
    qint32 m_retriesLeft = 0;
    qint32 m_authenticationCount = 0;
    bool m_headHandled = false;
    std::optional<QNetworkReply::NetworkError> m_outcome; ///< Set when it is about to be reported.
};
