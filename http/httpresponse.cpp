#include "http/httpresponse.h"

#include "http/httpblocker.h"
#include "http/httpcallbackbinder.h"
#include "http/httpdump.h"
#include "http/httpresponsetimeout.h"
#include "http/replykeeper.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QNetworkAccessManager>

#include <optional>
#include <vector>

namespace {

// The overloaded signals by what they carry.
constexpr auto finishedReply = QOverload<QNetworkReply *>::of(&HttpResponse::finished);
constexpr auto finishedPlain = QOverload<>::of(&HttpResponse::finished);
constexpr auto finishedBytes = QOverload<QByteArray>::of(&HttpResponse::finished);
constexpr auto finishedText = QOverload<QString>::of(&HttpResponse::finished);
constexpr auto finishedMap = QOverload<QVariantMap>::of(&HttpResponse::finished);
constexpr auto errorReply = QOverload<QNetworkReply *>::of(&HttpResponse::error);
constexpr auto errorPlain = QOverload<>::of(&HttpResponse::error);
constexpr auto errorCode = QOverload<QNetworkReply::NetworkError>::of(&HttpResponse::error);
constexpr auto errorBytes = QOverload<QByteArray>::of(&HttpResponse::error);
constexpr auto timeoutReply = QOverload<QNetworkReply *>::of(&HttpResponse::timeout);
constexpr auto timeoutPlain = QOverload<>::of(&HttpResponse::timeout);
constexpr auto fileFinishedPlain = QOverload<>::of(&HttpResponse::downloadFileFinished);
constexpr auto fileFinishedName = QOverload<QString>::of(&HttpResponse::downloadFileFinished);
constexpr auto fileErrorPlain = QOverload<>::of(&HttpResponse::downloadFileError);
constexpr auto fileErrorText = QOverload<QString>::of(&HttpResponse::downloadFileError);
constexpr auto authenticationFailedPlain =
    QOverload<>::of(&HttpResponse::authenticationRequireFailed);
constexpr auto authenticationFailedReply =
    QOverload<QNetworkReply *>::of(&HttpResponse::authenticationRequireFailed);
constexpr auto headList = QOverload<QList<QNetworkReply::RawHeaderPair>>::of(&HttpResponse::head);
constexpr auto headMap = QOverload<QMap<QString, QString>>::of(&HttpResponse::head);

// Qt 5.15 renamed the signal and deprecated the old name.
#if QT_VERSION >= QT_VERSION_CHECK(5, 15, 0)
constexpr auto replyError = &QNetworkReply::errorOccurred;
#else
constexpr auto replyError = QOverload<QNetworkReply::NetworkError>::of(&QNetworkReply::error);
#endif

/// A signal of the reply and the slot that answers it, by their places in the meta-objects.
struct Wire
{
    int signal;
    int slot;
};

template <typename Signal>
Wire wire(Signal signal, const char *slot)
{
    const int index = HttpResponse::staticMetaObject.indexOfSlot(slot);
    Q_ASSERT(index >= 0);
    return {QMetaMethod::fromSignal(signal).methodIndex(), index};
}

// By index and worked out once: these connections are made for every request. onFinished() comes
// before onHandleHead(), which answers the same finished().
const std::vector<Wire> &replyWires()
{
    using Reply = QNetworkReply;
    static const std::vector<Wire> wires{
        wire(&Reply::finished, "onFinished()"),
        wire(&Reply::finished, "onHandleHead()"),
        wire(replyError, "onError(QNetworkReply::NetworkError)"),
        wire(&Reply::downloadProgress, "onDownloadProgress(qint64,qint64)"),
        wire(&Reply::uploadProgress, "onUploadProgress(qint64,qint64)"),
        wire(&Reply::readyRead, "onReadOnceReplyHeader()"),
        wire(&Reply::readyRead, "onHandleHead()"),
        wire(&Reply::readyRead, "onReadyRead()"),
        wire(&Reply::encrypted, "onEncrypted()"),
        wire(&Reply::metaDataChanged, "onMetaDataChanged()"),
        wire(&Reply::redirected, "onRedirected(QUrl)"),
        wire(&Reply::sslErrors, "onSslErrors(QList<QSslError>)"),
        wire(&Reply::redirectAllowed, "onRedirectAllowed()"),
        wire(&Reply::preSharedKeyAuthenticationRequired,
             "onPreSharedKeyAuthenticationRequired(QSslPreSharedKeyAuthenticator*)"),
    };
    return wires;
}

QString errorText(const QNetworkReply *reply, QNetworkReply::NetworkError code)
{
    QString text = reply->errorString();
    if (!text.isEmpty() && reply->error() != QNetworkReply::NoError)
        return text;
    return QLatin1String(QMetaEnum::fromType<QNetworkReply::NetworkError>().valueToKey(code));
}

QMap<QString, QString> headerMap(const QList<QNetworkReply::RawHeaderPair> &headers)
{
    QMap<QString, QString> map;
    for (const QNetworkReply::RawHeaderPair &header : headers)
        map.insert(QString::fromUtf8(header.first), QString::fromUtf8(header.second));
    return map;
}

void dumpResponses(const QNetworkReply *reply)
{
    const auto responses =
        reply->findChildren<HttpResponse *>(QString(), Qt::FindDirectChildrenOnly);
    for (const HttpResponse *response : responses)
        qDebug().noquote() << HttpDump::response(response->request().fields);
}

} // namespace

HttpResponse::HttpResponse(HttpRequest request, QObject *parent)
    : QObject(parent)
    , m_request(std::move(request))
    , m_retriesLeft(m_request.fields.retryCount)
{
    registerHttpMetaTypes();
    serveRequest();
}

HttpResponse::~HttpResponse()
{
    // Null when it is the reply's own end that leads here.
    QNetworkReply *reply = m_reply;
    if (!reply)
        return;
    disconnect(reply, nullptr, this, nullptr);
    reply->abort();
    reply->deleteLater();
}

const HttpRequest &HttpResponse::request() const { return m_request; }

bool HttpResponse::isDelivering() const { return m_deliveries > 0; }

void HttpResponse::setRequest(const HttpRequest &request)
{
    const bool changed = m_request.fields.reply != request.fields.reply;
    m_request = request; // callbacks that run during the wait see what was sent
    serveRequest();
    if (waitIfAsked() && changed)
        deliver<&HttpResponse::replyChanged>(m_request.fields.reply);
}

bool HttpResponse::waitIfAsked()
{
    if (!m_request.fields.block || !m_request.fields.reply)
        return true;
    const QPointer<HttpResponse> self(this);
    HttpBlocker::waitFor(m_request.fields.reply);
    return !self.isNull();
}

void HttpResponse::serveRequest()
{
    if (m_request.fields.timeoutMs > 0)
        new HttpResponseTimeout(m_request.fields.timeoutMs, this); // this response's child
    QNetworkReply *reply = m_request.fields.reply;
    m_reply = reply;
    m_headers = ReplyHeaders();
    if (m_request.fields.retryCount > 0 || m_request.fields.repeatCount > 1
        || m_request.fields.isDownload) // it may go out again
        HttpCallbackBinder::watchReceivers(m_request.fields);
    if (!reply)
        return;
    for (const Wire &wire : replyWires())
        QMetaObject::connect(reply, wire.signal, this, wire.slot);
    connect(reply->manager(), &QNetworkAccessManager::authenticationRequired, this,
            &HttpResponse::onAuthenticationRequired);
    boundReadBuffer(m_request.fields.readBufferSize);
    HttpCallbackBinder::attach(this, m_request.fields);
}

template <auto Signal>
bool HttpResponse::hasReceivers() const
{
    static const QMetaMethod signal = QMetaMethod::fromSignal(Signal);
    return isSignalConnected(signal);
}

/// Emits @p Signal. False when a receiver has destroyed this response: nothing of it may be
/// touched then.
template <auto Signal, typename... Values>
bool HttpResponse::deliver(Values &&...values)
{
    if (!hasReceivers<Signal>())
        return true;
    const QPointer<HttpResponse> self(this);
    // Qt goes on using the reply when its signal has been emitted. Somebody may have it deleted
    // later in an event loop that a receiver runs: who has taken it, the client, another receiver.
    std::optional<ReplyKeeper> keeper;
    if (m_deliveries++ == 0 && m_request.fields.reply)
        keeper.emplace(m_request.fields.reply);
    Q_EMIT(this->*Signal)(std::forward<Values>(values)...);
    if (!self)
        return false;
    --m_deliveries;
    return true;
}

void HttpResponse::releaseReply()
{
    // Qt says that a reply is finished some time after its error, when this one may be gone.
    const QPointer<HttpResponse> self(this);
    onHandleHead();
    if (self && m_reply)
        m_reply->deleteLater();
}

void HttpResponse::onFinished()
{
    QNetworkReply *reply = m_request.fields.reply;
    if (reply->error() != QNetworkReply::NoError || m_outcomeReported)
        return;
    if (!writeTheRest())
        return;
    if (isCutOff())
        return onError(QNetworkReply::RemoteHostClosedError);
    m_outcomeReported = true;
    if (m_request.fields.logLevel >= 4)
        dumpResponses(reply);
    if (!deliverRetried() || !deliverFileFinished())
        return;
    if (!deliverReply<finishedReply>(reply) || !deliverBody(reply) || !repeatOrEnd())
        return;
    releaseReply();
}

// Qt often takes a connection that breaks off for the end of the body. A file must not be taken
// for complete then; where no length is announced, as with chunks, nobody can tell.
bool HttpResponse::isCutOff() const
{
    if (!m_downloadFile || !m_downloadFile->isOpen())
        return false;
    return m_received < announcedLength();
}

// 0 when there is none. A transfer coding overrides the length and brings an end of its own.
qint64 HttpResponse::announcedLength() const
{
    qint64 length = 0;
    const QList<QNetworkReply::RawHeaderPair> headers = m_headers.of(*m_request.fields.reply);
    for (const QNetworkReply::RawHeaderPair &header : headers) {
        if (header.first.compare("Transfer-Encoding", Qt::CaseInsensitive) == 0)
            return 0;
        if (header.first.compare("Content-Length", Qt::CaseInsensitive) == 0)
            length = header.second.toLongLong();
    }
    return length;
}

// There is some when the exchange has ended inside a receiver of the first data, before it was
// read.
bool HttpResponse::writeTheRest()
{
    QNetworkReply *reply = m_request.fields.reply;
    if (!m_downloadFile || !m_downloadFile->isOpen() || reply->bytesAvailable() == 0)
        return true;
    return writeToFile(reply->readAll());
}

/// Whoever is connected to @p Signal owns the reply from here on.
template <auto Signal>
bool HttpResponse::deliverReply(QNetworkReply *reply)
{
    if (!hasReceivers<Signal>())
        return true;
    m_reply = nullptr;
    return deliver<Signal>(reply);
}

bool HttpResponse::deliverBody(QNetworkReply *reply)
{
    if (!hasReceivers<finishedPlain>() && !hasReceivers<finishedBytes>()
        && !hasReceivers<finishedText>() && !hasReceivers<finishedMap>())
        return true;
    const QByteArray body = reply->readAll();
    if (!deliver<finishedPlain>() || !deliver<finishedBytes>(body))
        return false;
    // Text and map cost a copy of the body each: they are made for receivers that are there.
    if (hasReceivers<finishedText>() && !deliver<finishedText>(QString::fromUtf8(body)))
        return false;
    return !hasReceivers<finishedMap>()
           || deliver<finishedMap>(QJsonDocument::fromJson(body).object().toVariantMap());
}

void HttpResponse::onError(QNetworkReply::NetworkError code)
{
    // Aborting the reply from inside a callback makes Qt report a second error for it.
    if (m_outcomeReported)
        return;
    m_outcomeReported = true;

    QNetworkReply *reply = m_request.fields.reply;
    if (m_request.fields.logLevel >= 5)
        qDebug().noquote() << QStringLiteral("%1 error: %2")
                                  .arg(reply->url().toString(), QString::number(int(code)));
    if (m_retriesLeft >= 1) {
        --m_retriesLeft;
        const QPointer<HttpResponse> self(this);
        HttpRequest retry(m_request);
        retry.fields.retryCount = m_retriesLeft;
        retry.fields.isRetry = true;
        retry.send(); // returns after the retry, if the request blocks
        if (self)
            releaseReply();
        return;
    }

    const QString text = errorText(reply, code);
    if (!deliverRetried() || !deliverFileError(text) || !deliverReply<errorReply>(reply))
        return;
    if (!deliver<errorPlain>() || !deliver<errorCode>(code)
        || !deliver<errorBytes>(text.toLocal8Bit()) || !repeatOrEnd())
        return;
    releaseReply();
}

bool HttpResponse::deliverRetried()
{
    return !m_request.fields.isRetry || deliver<&HttpResponse::retried>();
}

bool HttpResponse::repeatOrEnd()
{
    if (m_request.fields.repeatCount <= 1)
        return deliver<&HttpResponse::repeated>();
    --m_request.fields.repeatCount;
    const QPointer<HttpResponse> self(this);
    m_request.send();
    return !self.isNull();
}

void HttpResponse::onHandleHead()
{
    if (m_headHandled)
        return;
    m_headHandled = true;
    if (!hasReceivers<headList>() && !hasReceivers<headMap>())
        return;
    const QList<QNetworkReply::RawHeaderPair> headers = m_headers.of(*m_request.fields.reply);
    if (deliver<headList>(headers))
        deliver<headMap>(headerMap(headers));
}

void HttpResponse::onTimeout()
{
    QNetworkReply *reply = m_request.fields.reply;
    if (!reply || !reply->isRunning())
        return;
    const QPointer<HttpResponse> self(this);
    reply->abort(); // reports OperationCanceledError, so onError() runs in here
    if (!self || !deliverReply<timeoutReply>(reply) || !deliver<timeoutPlain>())
        return;
    releaseReply();
}

void HttpResponse::onAuthenticationRequired(QNetworkReply *reply, QAuthenticator *authenticator)
{
    // The access manager announces this for all of its replies.
    if (reply != m_request.fields.reply)
        return;
    ++m_authenticationCount;
    if (m_authenticationCount >= 2
        && (!deliver<authenticationFailedPlain>() || !deliver<authenticationFailedReply>(reply)))
        return;
    const HttpRequestFields &fields = m_request.fields;
    if (fields.maxAuthenticationTimes >= 0 && m_authenticationCount > fields.maxAuthenticationTimes)
        return;
    if (fields.authenticator.isNull()) {
        deliver<&HttpResponse::authenticationRequired>(authenticator);
        return;
    }
    authenticator->setUser(fields.authenticator.user());
    authenticator->setPassword(fields.authenticator.password());
}

bool HttpResponse::deliverFileFinished()
{
    if (!m_downloadFile || !m_downloadFile->isOpen())
        return true;
    if (!deliver<fileFinishedPlain>() || !deliver<fileFinishedName>(m_downloadFile->fileName()))
        return false;
    m_downloadFile->close();
    return true;
}

bool HttpResponse::deliverFileError(const QString &text)
{
    if (!m_request.fields.isDownload)
        return true;
    const QString fileName = m_downloadFile ? m_downloadFile->fileName() : QString();
    const QString message =
        QStringLiteral("Url: %1 file: %2 error: %3")
            .arg(m_request.fields.networkRequest.url().toString(), fileName, text);
    if (!deliver<fileErrorPlain>() || !deliver<fileErrorText>(message))
        return false;
    if (m_downloadFile)
        m_downloadFile->close();
    return true;
}

void HttpResponse::onReadOnceReplyHeader()
{
    if (!m_request.fields.isDownload)
        return;
    disconnect(m_request.fields.reply, SIGNAL(readyRead()), this, SLOT(onReadOnceReplyHeader()));
    const HttpRequestFields &fields = m_request.fields;
    m_downloadFile = std::make_unique<QFile>(fields.downloadFilePath);
    const bool resume = fields.supportsResume && fields.enableResume && m_downloadFile->exists();
    // Unbuffered, so that what the disk refuses is noticed when it is written.
    const QIODevice::OpenMode mode = resume ? QIODevice::Append : QIODevice::WriteOnly;
    if (m_downloadFile->open(mode | QIODevice::Unbuffered))
        return;
    boundReadBuffer(0); // nobody reads: a full buffer would hold up the exchange for good
    deliverFileProblem(QStringLiteral("Url: %1 %2 Non-Writable"));
}

// Qt passes a bound on to the thread that receives only once that works on the request, which is
// after what is queued now. A bound that comes after the first data does not hold any more. Each
// redirect that is followed begins that anew, without the bound.
void HttpResponse::boundReadBuffer(qint64 bytes)
{
    QNetworkReply *reply = m_request.fields.reply;
    if (bytes >= 0)
        QMetaObject::invokeMethod(
            reply, [reply, bytes] { reply->setReadBufferSize(bytes); }, Qt::QueuedConnection);
}

void HttpResponse::onReadyRead()
{
    QNetworkReply *reply = m_request.fields.reply;
    if (m_downloadFile && m_downloadFile->isOpen() && !writeToFile(reply->readAll()))
        return;
    deliver<&HttpResponse::readyRead>(reply);
}

/// False when a receiver has destroyed this response.
bool HttpResponse::writeToFile(const QByteArray &data)
{
    m_received += data.size();
    const qint64 written = m_downloadFile->write(data);
    if (written > 0)
        m_request.fields.downloadedBytes += written;
    return written == data.size() || deliverFileProblem(QStringLiteral("Url: %1 %2 Write failed!"));
}

bool HttpResponse::deliverFileProblem(const QString &pattern)
{
    return deliver<fileErrorPlain>()
           && deliver<fileErrorText>(pattern.arg(m_request.fields.networkRequest.url().toString(),
                                                 m_downloadFile->fileName()));
}

void HttpResponse::onDownloadProgress(qint64 bytesReceived, qint64 bytesTotal)
{
    deliver<&HttpResponse::downloadFileProgress>(bytesReceived, bytesTotal);
}

void HttpResponse::onUploadProgress(qint64 bytesSent, qint64 bytesTotal)
{
    deliver<&HttpResponse::uploadProgress>(bytesSent, bytesTotal);
}

void HttpResponse::onEncrypted() { deliver<&HttpResponse::encrypted>(); }

void HttpResponse::onMetaDataChanged()
{
    m_headers.onMetaDataChanged(*m_request.fields.reply);
    deliver<&HttpResponse::metaDataChanged>();
}

void HttpResponse::onPreSharedKeyAuthenticationRequired(
    QSslPreSharedKeyAuthenticator *authenticator)
{
    deliver<&HttpResponse::preSharedKeyAuthenticationRequired>(authenticator);
}

void HttpResponse::onRedirectAllowed()
{
    m_headers.onRedirected();
    boundReadBuffer(m_request.fields.readBufferSize);
    deliver<&HttpResponse::redirectAllowed>();
}

void HttpResponse::onRedirected(QUrl url)
{
    m_headers.onRedirected();
    boundReadBuffer(m_request.fields.readBufferSize);
    deliver<&HttpResponse::redirected>(std::move(url));
}

void HttpResponse::onSslErrors(QList<QSslError> errors)
{
    deliver<&HttpResponse::sslErrors>(std::move(errors));
}
