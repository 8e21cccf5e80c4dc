#include "fetch.h"

#include "hostkit/failurereason.h"
#include "hostkit/proxies.h"
#include "options.h"
#include "progress.h"

#include <QFile>
#include <QFileInfo>

namespace {

constexpr qint64 smallBuffer = 4096; // bytes; the body of the first request is not read
constexpr qint64 noBound = 0;
constexpr qint64 usualBound = -1;
constexpr int partOfIt = 206;
constexpr int proxyWantsUser = 407;

const QNetworkReply *replyTo(const HttpResponse *response)
{
    return response->request().fields.reply;
}

int statusOf(const QNetworkReply *reply)
{
    return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

bool isSuccess(int status) { return status >= 200 && status < 300; }

bool isRedirect(int status) { return status >= 300 && status < 400; }

// The announced length in bytes; -1 when there is none, as beside a transfer coding, which
// overrides it. After a redirect Qt may join the length of the redirecting answer with the one that
// counts, in this order: "145, 3000".
qint64 lengthIn(const QList<QNetworkReply::RawHeaderPair> &head)
{
    bool isNumber = false;
    qint64 length = -1;
    for (const auto &[name, value] : head) {
        if (name.compare("Transfer-Encoding", Qt::CaseInsensitive) == 0)
            return -1;
        if (name.compare("Content-Length", Qt::CaseInsensitive) == 0)
            length = value.mid(value.lastIndexOf(',') + 1).trimmed().toLongLong(&isNumber);
    }
    return isNumber ? length : -1;
}

// Whether @p reply brings the bytes from @p first on of a resource that has @p length of them.
bool isRestFrom(qint64 first, qint64 length, const QNetworkReply *reply)
{
    const QString range = QStringLiteral("bytes %1-%2/").arg(first).arg(length - 1);
    return statusOf(reply) == partOfIt
           && reply->rawHeader("Content-Range").startsWith(range.toLatin1());
}

QString refusalIn(const QNetworkReply *reply)
{
    if (statusOf(reply) == proxyWantsUser && Proxies::areUsed())
        return FailureReason::proxyWantsUser();
    const QString reason = reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
    return QStringLiteral("the server answered %1 %2").arg(statusOf(reply)).arg(reason).trimmed();
}

} // namespace

Fetch::Fetch(const Options &options, const Tools &tools)
    : Command(options, tools)
    , m_address(options.address)
    , m_source(options.address)
    , m_path(options.output)
    , m_output(options.output)
    , m_part(m_output.partPath())
    , m_resume(options.resume)
{
}

// The request asks for the bytes as the server has them: a body that is compressed on the way has
// no announced length.
HttpRequest Fetch::request()
{
    HttpRequest request(HttpMethod::Get, &*m_client);
    request.url(m_source).headers(
        {{QStringLiteral("Accept-Encoding"), QStringLiteral("identity")}});
    request.fields.networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                                               QNetworkRequest::NoLessSafeRedirectPolicy);
    return request.onError(this, &Fetch::onError);
}

// The length is asked for first, by a request whose body is not read: a download by the toolkit
// never ends where the resource is empty, and appends the whole resource to a complete part.
void Fetch::start()
{
    progress()->show(QStringLiteral("asking for the file"));
    m_response = request().readBufferSize(smallBuffer).onHead(this, &Fetch::onFound).send();
}

void Fetch::onFound(const QList<QNetworkReply::RawHeaderPair> &head)
{
    const QNetworkReply *reply = replyTo(m_response);
    if (reply->error() != QNetworkReply::NoError)
        return; // onError() reports it
    if (!isSuccess(statusOf(reply)) || statusOf(reply) == partOfIt)
        return refuse();
    m_length = lengthIn(head);
    if (m_length < 0 && reply->isFinished() && reply->bytesAvailable() == 0)
        m_length = 0;
    m_source = reply->url().toString(QUrl::FullyEncoded);
    delete m_response; // which ends the request before its body is received
    prepare();
    if (m_kept == m_length)
        complete();
    else
        download();
}

// Keeps a part that can be the beginning of the resource, whose length has to be known for that.
void Fetch::prepare()
{
    m_kept = m_resume ? QFileInfo(m_part).size() : 0;
    if (m_kept > m_length)
        m_kept = 0;
    if (m_kept == 0)
        QFile::remove(m_part);
}

// Without an announced length the body may come in chunks. Qt waits without end for a chunk that is
// larger than the buffer's bound and cut off, so there is no bound then.
void Fetch::download()
{
    m_response = request()
                     .readBufferSize(m_length < 0 ? noBound : usualBound)
                     .download(m_part)
                     .enableResume(m_kept > 0)
                     .onMetaDataChanged([this] { onBegin(); })
                     .onDownloadFileProgress(this, &Fetch::onProgress)
                     .onDownloadFileError(this, &Fetch::onFileError)
                     .onFinished([this] { complete(); })
                     .send();
}

// This runs before the part is opened: an answer that is refused here leaves it alone. The toolkit
// appends any answer to a part that is there, once the server has said that it serves ranges. A
// server that says so may send the whole resource all the same.
void Fetch::onBegin()
{
    const QNetworkReply *reply = replyTo(m_response);
    const int status = statusOf(reply);
    if (isRedirect(status))
        return; // the answer to the redirect follows
    const bool appends = m_kept > 0 && m_response->request().fields.supportsResume;
    if (!isSuccess(status) || (!appends && status == partOfIt))
        return refuse();
    if (appends && !isRestFrom(m_kept, m_length, reply))
        return beginAnew();
    if (!appends) {
        m_kept = 0;
        m_length = lengthIn(reply->rawHeaderPairs());
    }
    m_transfer.emplace(m_kept, m_length);
}

void Fetch::beginAnew()
{
    delete m_response;
    m_kept = 0;
    download();
}

void Fetch::onProgress(qint64 received, qint64 total)
{
    Q_UNUSED(total)
    if (m_transfer)
        progress()->show(m_transfer->line(received));
}

// The toolkit reports a failed transfer here too, before onError(), which has better words for it.
void Fetch::onFileError()
{
    const QNetworkReply *reply = replyTo(m_response);
    if (reply->error() == QNetworkReply::NoError && !reply->isFinished())
        endWith(QStringLiteral("\"%1\" could not be written").arg(m_part));
}

// The last callback of a request that failed; the toolkit ends the reply.
void Fetch::onError(const QByteArray &text)
{
    const QNetworkReply *reply = replyTo(m_response);
    const int status = statusOf(reply);
    if (status > 0 && !isSuccess(status) && !isRedirect(status))
        tell(refusalIn(reply));
    else if (reply->error() == QNetworkReply::NoError)
        tell(QStringLiteral("the connection ended too early")); // Qt takes it for a success
    else
        tell(FailureReason::inWords(QString::fromLocal8Bit(text)));
}

void Fetch::complete()
{
    if (m_length == 0)
        QFile(m_part).open(QIODevice::WriteOnly);
    const qint64 size = QFileInfo(m_part).size();
    if (m_length >= 0 && size != m_length)
        tell(QStringLiteral("%1 bytes came of %2").arg(size).arg(m_length));
    else if (!m_output.replaceBy(m_part))
        tell(QStringLiteral("\"%1\" could not be renamed to \"%2\"").arg(m_part, m_path));
    else
        finish({}, {{QStringLiteral("file"), m_path}, {QStringLiteral("bytes"), size}});
}

// Ends the request, so that a page about the failure that may be under way stays out of the part.
void Fetch::refuse() { endWith(refusalIn(replyTo(m_response))); }

// Destroying the client ends the exchange for good. If only the response were deleted, an error
// that Qt is about to report would still arrive, and Qt would warn of a second one.
void Fetch::endWith(const QString &problem)
{
    m_client.reset();
    tell(problem);
}

void Fetch::tell(const QString &problem)
{
    const QString address = QUrl(m_address).toDisplayString(QUrl::RemovePassword);
    Q_EMIT failed(QStringLiteral("\"%1\" could not be downloaded: %2").arg(address, problem));
}
