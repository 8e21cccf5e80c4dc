#include "http/httpresponse.h"

#include "http/downloadfile.h"
#include "http/httpblocker.h"
#include "http/httpcallbackbinder.h"
#include "http/httpdump.h"
#include "http/httpresponsetimeout.h"
#include "http/ofthisthread.h"
#include "http/replykeeper.h"
#include "http/replywires.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QThread>

#include <cstring>
#include <limits>
#include <utility>

/// Tells whether a response is still there after something that may destroy it. Unlike a QPointer
/// it allocates nothing.
class HttpResponse::Living
{
    Q_DISABLE_COPY(Living)

public:
    explicit Living(HttpResponse *response)
        : m_response(response)
        , m_outer(std::exchange(response->m_living, this))
    {
    }

    ~Living()
    {
        if (m_response)
            m_response->m_living = m_outer;
    }

    /// To be called when the response goes: also for those that were made before this.
    void end()
    {
        m_response = nullptr;
        if (m_outer)
            m_outer->end();
    }

    explicit operator bool() const { return m_response != nullptr; }

private:
    HttpResponse *m_response;
    Living *const m_outer; ///< Made before this, and there for longer.
};

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

// Without a bound Qt receives as fast as it can and keeps in memory what is not written yet. What
// it has deciphered it hands on in pieces of 4 KiB, but in one of 64 KiB where that is the bound: a
// download over TLS takes a quarter less time and processor time then. A bound that is a few KiB
// off gains nothing. Without TLS a larger bound wakes the threads less often.
constexpr qint64 downloadBufferSize = 524288;     // bytes
constexpr qint64 downloadBufferSizeOfTls = 65536; // bytes

qint64 downloadBufferSizeFor(const QNetworkReply &reply)
{
    return reply.url().scheme() == QLatin1String("https") ? downloadBufferSizeOfTls
                                                          : downloadBufferSize;
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

// QIODevice::readAll() allocates 16 KiB and then 32, however little there is to read, and read() 16
// for a buffer of its own when it is asked for less. For blocks of more than a KiB the C library
// first merges its small free ones, which costs more than all else that is done for a request; so a
// short body is read into a buffer on the stack, and the array of one that nobody has kept serves
// the next.
constexpr int mostOfShort = 16 * 1024; // bytes

/// The array that is left over in this thread, if there is one; those that are cheap to have are
/// apart, so that a body gets one of about its own size.
QByteArray &spareFor(int size)
{
    struct Spares
    {
        QByteArray cheap;
        QByteArray dear;
    };
    constexpr int mostOfCheap = 1024; // bytes
    Spares &spares = ofThisThread<Spares>();
    return size <= mostOfCheap ? spares.cheap : spares.dear;
}

QByteArray readShort(QNetworkReply *reply)
{
    char bytes[mostOfShort];
    const int size = int(reply->read(bytes, mostOfShort));
    if (size <= 0)
        return {};
    QByteArray body = std::exchange(spareFor(size), {});
    body.resize(size);
    std::memcpy(body.data(), bytes, std::size_t(size));
    return body;
}

// readAll() reads a long body by 16 KiB and moves it each time that it needs a larger array.
QByteArray readLong(QNetworkReply *reply, int size)
{
    QByteArray body(size, Qt::Uninitialized);
    body.truncate(int(qMax(reply->read(body.data(), size), qint64(0))));
    return body;
}

QByteArray readBody(QNetworkReply *reply)
{
    constexpr qint64 most = std::numeric_limits<int>::max() / 2; // of an array of bytes
    const qint64 available = reply->bytesAvailable();
    if (available <= 0 || available > most)
        return reply->readAll();
    QByteArray body = available > mostOfShort ? readLong(reply, int(available)) : readShort(reply);
    if (body.size() == available && reply->bytesAvailable() == 0)
        return body;
    const QByteArray rest = reply->readAll(); // a host's own class may miscount
    return body.isEmpty() ? rest : body + rest;
}

/// Keeps @p body for the next one, if it has no other owner and is short.
void recycle(QByteArray body)
{
    if (body.isDetached() && body.capacity() <= mostOfShort)
        spareFor(body.capacity()) = std::move(body);
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
    if (m_living)
        m_living->end();
    // The reply is null when its own destruction destroys this child.
    if (!m_reply || m_isTaken)
        return;
    disconnect(m_reply, nullptr, this, nullptr);
    m_reply->abort();
    m_reply->deleteLater();
}

const HttpRequest &HttpResponse::request() const { return m_request; }

void HttpResponse::dropBody()
{
    if (m_told)
        m_told->clear();
}

void HttpResponse::setRequest(const HttpRequest &request)
{
    const bool changed = m_request.fields.reply != request.fields.reply;
    m_request = request; // callbacks that run during the wait see what was sent
    serveRequest();
    if (HttpBlocker::waitIfAsked(this) && changed)
        deliver<&HttpResponse::replyChanged>(m_request.fields.reply);
}

void HttpResponse::serveRequest()
{
    HttpRequestFields &fields = m_request.fields;
    if (fields.timeoutMs > 0)
        new HttpResponseTimeout(fields.timeoutMs, this); // this response's child
    if (fields.retryCount > 0 || fields.repeatCount > 1 || fields.isDownload)
        HttpCallbackBinder::watchReceivers(fields); // it may go out again
    m_reply = fields.reply;
    m_isTaken = false;
    m_body.clear();
    if (!m_reply)
        return;
    if (fields.isDownload)
        m_file = std::make_unique<DownloadFile>();
    ReplyWires::connectNeeded(m_reply, this, fields, m_everConnected);
    boundReadBuffer();
    HttpCallbackBinder::attach(this, fields);
}

// Somebody connects to this response, on any thread. The reply is the client's thread's to touch.
void HttpResponse::connectNotify(const QMetaMethod &signal)
{
    const quint64 bit = ReplyWires::bitOf(signal.methodIndex());
    m_everConnected |= bit;
    if (QThread::currentThread() == thread())
        ReplyWires::connectFor(m_reply, this, bit);
    else
        QMetaObject::invokeMethod(
            this, [this, bit] { ReplyWires::connectFor(m_reply, this, bit); },
            Qt::QueuedConnection);
}

template <auto Signal>
bool HttpResponse::hasReceivers() const
{
    static const QMetaMethod signal = QMetaMethod::fromSignal(Signal);
    static const quint64 bit = ReplyWires::bitOf(signal.methodIndex());
    return (m_everConnected & bit) != 0 && isSignalConnected(signal);
}

/// Emits @p Signal. False when a receiver has destroyed this response: nothing of it may be
/// touched then.
template <auto Signal, typename... Values>
bool HttpResponse::deliver(Values &&...values)
{
    if (!hasReceivers<Signal>())
        return true;
    const Living self(this);
    // Qt uses the reply after its signal has returned. In an event loop that a receiver runs, a
    // deleteLater() of the reply would take effect before that, whoever has asked for it: who has
    // taken the reply, the client, another receiver.
    const ReplyKeeper keeper(m_reply);
    Q_EMIT(this->*Signal)(std::forward<Values>(values)...);
    return bool(self);
}

/// Emits @p Signal with the reply, which its receivers own from then on.
template <auto Signal>
bool HttpResponse::handOver()
{
    if (!hasReceivers<Signal>())
        return true;
    m_isTaken = true;
    return deliver<Signal>(m_reply.data());
}

/// Takes the steps in order. Any of them may end this response, and nothing more is done then.
void HttpResponse::run(std::initializer_list<Step> steps)
{
    for (const Step step : steps) {
        if (!(this->*step)())
            return;
    }
}

void HttpResponse::onFinished()
{
    using R = HttpResponse;
    if (m_reply->error() != QNetworkReply::NoError || m_outcome) {
        tellHead();
        return;
    }
    // Data is left to write when the exchange has ended while a receiver of the first data ran.
    if (!writeAvailable())
        return;
    if (m_file && m_file->isCutOff(*m_reply))
        return onError(QNetworkReply::RemoteHostClosedError);
    m_outcome = QNetworkReply::NoError;
    if (m_request.fields.logLevel >= HttpLogLevel::Dumps)
        dumpResponses(m_reply);
    run({&R::tellRetried, &R::tellFileFinished, &R::handOver<finishedReply>, &R::tellBody,
         &R::repeatOrEnd, &R::tellHead, &R::releaseReply});
}

void HttpResponse::onError(QNetworkReply::NetworkError code)
{
    using R = HttpResponse;
    // Qt reports a second error for a reply that is aborted from inside a callback.
    if (m_outcome)
        return;
    m_outcome = code;
    if (m_request.fields.logLevel >= HttpLogLevel::NetworkErrors)
        qDebug().noquote() << QStringLiteral("%1 error: %2")
                                  .arg(m_reply->url().toString(), QString::number(int(code)));
    // Both tables end with the head, because Qt emits finished() some time after the error, and
    // this response may be gone by then.
    if (m_retriesLeft >= 1)
        run({&R::sendRetry, &R::tellHead, &R::releaseReply});
    else
        run({&R::tellRetried, &R::tellFileError, &R::handOver<errorReply>, &R::tellError,
             &R::repeatOrEnd, &R::tellHead, &R::releaseReply});
}

void HttpResponse::onTimeout()
{
    using R = HttpResponse;
    if (!m_reply || !m_reply->isRunning())
        return;
    const Living self(this);
    m_reply->abort(); // reports OperationCanceledError, so onError() runs in here
    if (self)
        run({&R::handOver<timeoutReply>, &R::deliver<timeoutPlain>, &R::tellHead,
             &R::releaseReply});
}

bool HttpResponse::tellRetried()
{
    return !m_request.fields.isRetry || deliver<&HttpResponse::retried>();
}

bool HttpResponse::tellFileFinished()
{
    if (!isWriting())
        return true;
    if (!deliver<fileFinishedPlain>() || !deliver<fileFinishedName>(m_file->name()))
        return false;
    m_file->close();
    return true;
}

bool HttpResponse::tellBody()
{
    if (!hasReceivers<finishedPlain>() && !hasReceivers<finishedBytes>()
        && !hasReceivers<finishedText>() && !hasReceivers<finishedMap>())
        return true;
    const bool isGathered = m_request.fields.gathersBody;
    if (isGathered)
        gather();
    QByteArray body = isGathered ? std::exchange(m_body, {}) : readBody(m_reply);
    const bool isLiving = deliver<finishedPlain>() && tellBytes(&body) && tellMeaning(body);
    recycle(std::move(body));
    return isLiving;
}

// Text and map cost a copy of the body each, so they are made only for receivers.
bool HttpResponse::tellMeaning(const QByteArray &body)
{
    if (hasReceivers<finishedText>() && !deliver<finishedText>(QString::fromUtf8(body)))
        return false;
    return !hasReceivers<finishedMap>()
           || deliver<finishedMap>(QJsonDocument::fromJson(body).object().toVariantMap());
}

// What deliver() does, but without the copy that the signal's own function keeps until all
// receivers have returned: dropBody() reaches the only one.
bool HttpResponse::tellBytes(QByteArray *body)
{
    if (!hasReceivers<finishedBytes>())
        return true;
    static const int signal =
        QMetaMethod::fromSignal(finishedBytes).methodIndex() - staticMetaObject.methodOffset();
    const Living self(this);
    const ReplyKeeper keeper(m_reply);
    void *arguments[] = {nullptr, body};
    m_told = body;
    QMetaObject::activate(this, &staticMetaObject, signal, arguments);
    if (self)
        m_told = nullptr;
    return bool(self);
}

bool HttpResponse::sendRetry()
{
    const Living self(this);
    HttpRequest retry(m_request);
    retry.fields.retryCount = --m_retriesLeft;
    retry.fields.isRetry = true;
    retry.send(); // returns after the retry, if the request blocks
    return bool(self);
}

bool HttpResponse::tellFileError()
{
    if (!m_file)
        return true;
    const QString message = QStringLiteral("Url: %1 file: %2 error: %3")
                                .arg(m_request.fields.networkRequest.url().toString(),
                                     m_file->name(), errorText(m_reply, *m_outcome));
    if (!deliver<fileErrorPlain>() || !deliver<fileErrorText>(message))
        return false;
    m_file->close();
    return true;
}

bool HttpResponse::tellError()
{
    const QNetworkReply::NetworkError code = *m_outcome;
    const QByteArray text = errorText(m_reply, code).toLocal8Bit();
    return deliver<errorPlain>() && deliver<errorCode>(code) && deliver<errorBytes>(text);
}

bool HttpResponse::repeatOrEnd()
{
    if (m_request.fields.repeatCount <= 1)
        return deliver<&HttpResponse::repeated>();
    --m_request.fields.repeatCount;
    const Living self(this);
    m_request.send();
    return bool(self);
}

bool HttpResponse::tellHead()
{
    if (m_headHandled)
        return true;
    m_headHandled = true;
    if (!hasReceivers<headList>() && !hasReceivers<headMap>())
        return true;
    const QList<QNetworkReply::RawHeaderPair> headers = m_reply->rawHeaderPairs();
    return deliver<headList>(headers) && deliver<headMap>(headerMap(headers));
}

bool HttpResponse::releaseReply()
{
    if (!m_isTaken)
        m_reply->deleteLater();
    return true;
}

void HttpResponse::onHandleHead()
{
    if (m_headHandled)
        ReplyWires::disconnectHead(m_reply, this);
    else
        tellHead();
}

void HttpResponse::onAuthenticationRequired(QNetworkReply *reply, QAuthenticator *authenticator)
{
    // The access manager announces this for all of its replies.
    if (reply != m_reply)
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

void HttpResponse::onReadOnceReplyHeader()
{
    ReplyWires::disconnectOpening(m_reply, this);
    const HttpRequestFields &fields = m_request.fields;
    if (m_file->open(fields.downloadFilePath, fields.supportsResume && fields.enableResume))
        return;
    boundReadBuffer();
    tellFileProblem(QStringLiteral("Url: %1 %2 Non-Writable") + m_file->nameProblem());
}

void HttpResponse::onReadyRead()
{
    if (m_request.fields.gathersBody)
        gather();
    if (writeAvailable())
        deliver<&HttpResponse::readyRead>(m_reply.data());
}

// What the reply keeps of a long body are many pieces, and the C library does not give the memory
// of freed ones back. Those that are taken as they arrive serve the next.
void HttpResponse::gather()
{
    const int size = m_body.size();
    m_body.resize(size + int(m_reply->bytesAvailable()));
    const qint64 taken = m_reply->read(m_body.data() + size, m_body.size() - size);
    m_body.truncate(size + int(qMax(taken, qint64(0))));
}

qint64 HttpResponse::readBufferBound() const
{
    const HttpRequestFields &fields = m_request.fields;
    if (m_file && m_file->hasFailedToOpen())
        return 0; // nobody reads: a full buffer would hold up the exchange for good
    return fields.isDownload && fields.readBufferSize < 0 ? downloadBufferSizeFor(*m_reply)
                                                          : fields.readBufferSize;
}

// Qt loses the bound when its network thread takes up the request and at each redirect that it
// follows, and a bound that is set after the first data has no effect. So the bound is set at once
// and again by a queued call, which comes after the calls that Qt has queued for those steps.
void HttpResponse::boundReadBuffer()
{
    const qint64 bytes = readBufferBound();
    if (bytes < 0)
        return;
    QNetworkReply *reply = m_reply;
    reply->setReadBufferSize(bytes);
    QMetaObject::invokeMethod(
        reply, [reply, bytes] { reply->setReadBufferSize(bytes); }, Qt::QueuedConnection);
}

bool HttpResponse::isWriting() const { return m_file && m_file->isOpen(); }

/// False when a receiver has destroyed this response.
bool HttpResponse::writeAvailable()
{
    if (!isWriting() || m_reply->bytesAvailable() == 0)
        return true;
    const DownloadFile::Taken taken = m_file->takeFrom(m_reply);
    m_request.fields.downloadedBytes += taken.written;
    return taken.written == taken.read
           || tellFileProblem(QStringLiteral("Url: %1 %2 Write failed!"));
}

bool HttpResponse::tellFileProblem(const QString &pattern)
{
    return deliver<fileErrorPlain>()
           && deliver<fileErrorText>(
               pattern.arg(m_request.fields.networkRequest.url().toString(), m_file->name()));
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
    if (m_file)
        m_file->noteHeaders(*m_reply);
    deliver<&HttpResponse::metaDataChanged>();
}

void HttpResponse::onPreSharedKeyAuthenticationRequired(
    QSslPreSharedKeyAuthenticator *authenticator)
{
    deliver<&HttpResponse::preSharedKeyAuthenticationRequired>(authenticator);
}

void HttpResponse::noteRedirect()
{
    if (m_file)
        m_file->noteRedirect();
    boundReadBuffer();
}

void HttpResponse::onRedirectAllowed()
{
    noteRedirect();
    deliver<&HttpResponse::redirectAllowed>();
}

void HttpResponse::onRedirected(QUrl url)
{
    noteRedirect();
    deliver<&HttpResponse::redirected>(std::move(url));
}

void HttpResponse::onSslErrors(QList<QSslError> errors)
{
    deliver<&HttpResponse::sslErrors>(std::move(errors));
}
