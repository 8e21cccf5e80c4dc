#pragma once

#include "http/httprequest.h"

#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <atomic>
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
/// Each attempt at the request has exactly one outcome, either the finished() family or the error()
/// family; an attempt that is retried has none. Whoever is connected to finished(QNetworkReply*) or
/// error(QNetworkReply*) owns the reply and deletes it later. The reply that
/// timeout(QNetworkReply*) carries goes after the signal, unless error(QNetworkReply*) has handed
/// it over before.
class HttpResponse : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpResponse)

public:
    /// Serves the reply of @p request, if it has one, and attaches its callbacks. The time-out
    /// begins in any case. Hosts have their responses from HttpRequest::send().
    HttpResponse(HttpRequest request, QObject *parent);

    /// Ends an exchange that is under way; no callback follows.
    ~HttpResponse() override;

    /// For a receiver of finished(QByteArray) that is through with a long body, while it is called
    /// on the client's thread: the memory is free once the receiver's own copy is gone. What is
    /// called after it gets an empty body. Has no effect at any other time.
    void dropBody();

    /// Serves the reply of @p request from now on, and waits for it if the request blocks. The
    /// time-out begins once more. The toolkit's own, for the response of a download, which a caller
    /// has before there is a reply; hosts have no use for it.
    void setRequest(const HttpRequest &request);

    /// The copy of the request that was sent. One that may go out again has its receivers as
    /// QPointer<QObject>, which reads as a QObject pointer and as null once the receiver is gone.
    const HttpRequest &request() const;

Q_SIGNALS:
    /// Another reply is served than before; it stays the toolkit's.
    void replyChanged(QNetworkReply *reply);

    ///@{
    /// Success. Emitted in the order reply, nothing, body as bytes, text, map. The receiver of the
    /// reply owns it; what it reads from it is missing in the other forms.
    void finished(QNetworkReply *reply);
    void finished();
    void finished(QByteArray result);
    /// The members of a JSON object; empty for any other body.
    void finished(QVariantMap resultMap);
    /// The body read as UTF-8.
    void finished(QString result);
    ///@}

    /// Declared for callbacks to attach to; never emitted. See downloadFileProgress().
    void downloadProgress(qint64, qint64);
    /// Bytes sent and in all; -1 where the total is unknown.
    void uploadProgress(qint64, qint64);

    ///@{
    /// Final failure. Emitted in the order reply, nothing, code, text; the text is in the local
    /// 8-bit encoding. The receiver of the reply owns it.
    void error(QByteArray error);
    void error();
    void error(QNetworkReply::NetworkError error);
    void error(QNetworkReply *reply);
    ///@}

    ///@{
    /// The time-out ended the attempt; follows the error() family. Emitted in the order reply,
    /// nothing.
    void timeout();
    void timeout(QNetworkReply *reply);
    ///@}

    /// Part of the body arrived. The reply stays the toolkit's.
    void readyRead(QNetworkReply *reply);

    /// Declared for callbacks to attach to; never emitted to a caller.
    void downloadFileNameChanged(QString fileName);

    ///@{
    /// The file of a download is complete, unless an error was reported before; precedes the
    /// finished() family. @p file is its name as it was given.
    void downloadFileFinished();
    void downloadFileFinished(QString file);
    ///@}

    ///@{
    /// The file cannot be opened or written, in which case the exchange goes on, or the download
    /// failed; precedes the error() family. The text names address, file and fault.
    void downloadFileError();
    void downloadFileError(QString errorString);
    ///@}

    ///@{
    /// The events of the reply that have the same names, passed on.
    void encrypted();
    void metaDataChanged();
    void preSharedKeyAuthenticationRequired(QSslPreSharedKeyAuthenticator *authenticator);
    void redirectAllowed();
    void redirected(QUrl url);
    void sslErrors(QList<QSslError> errors);
    ///@}

    /// This attempt was a retry; precedes its outcome.
    void retried();
    /// No further attempt follows; only timeout() may come after it.
    void repeated();

    /// The server asks for credentials and the request has none. To be filled in before the
    /// receiver returns.
    void authenticationRequired(QAuthenticator *authentication);
    ///@{
    /// The server asks for the second time or later. The reply stays the toolkit's.
    void authenticationRequireFailed();
    void authenticationRequireFailed(QNetworkReply *);
    ///@}

    /// The reply's headers, once, as soon as there is a body or an end.
    void head(QList<QNetworkReply::RawHeaderPair>);
    /// The same by name; a repeated name keeps its last value.
    void head(QMap<QString, QString>);

    /// Bytes received and in all of every request, download or not; -1 where the total is unknown.
    void downloadFileProgress(qint64 bytesReceived, qint64 bytesTotal);

protected:
    /// Notes that @p signal has had a receiver.
    void connectNotify(const QMetaMethod &signal) override;

private Q_SLOTS: // the last methods of the class; Slot in replywires.cpp has them in this order
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
    /// What an outcome does, a piece at a time. Returns false once a receiver has destroyed this
    /// response.
    using Step = bool (HttpResponse::*)();

    class Living;

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
    void gather();
    bool tellFileProblem(const QString &pattern);

    bool tellRetried();
    bool tellFileFinished();
    bool tellBody();
    bool tellBytes(QByteArray *body);
    bool tellMeaning(const QByteArray &body);
    bool sendRetry();
    bool tellFileError();
    bool tellError();
    bool repeatOrEnd();
    bool tellHead();
    bool releaseReply();

    HttpRequest m_request;
    std::atomic<quint64> m_everConnected{0}; ///< The bits of signals that have had a receiver.
    Living *m_living = nullptr;              ///< The last that was made; each lives on the stack.
    QPointer<QNetworkReply> m_reply;
    bool m_isTaken = false;               ///< The reply is a receiver's.
    std::unique_ptr<DownloadFile> m_file; ///< Downloads only.
    QByteArray m_body;                    ///< What has been gathered of the body.
    QByteArray *m_told = nullptr;         ///< The body, while finished(QByteArray) is emitted.
    qint32 m_retriesLeft = 0;
    qint32 m_authenticationCount = 0;
    bool m_headHandled = false;
    std::optional<QNetworkReply::NetworkError> m_outcome; ///< Set just before it is reported.
};
