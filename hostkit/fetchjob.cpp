#include "hostkit/fetchjob.h"

#include "hostkit/networkreason.h"
#include "hostkit/proxies.h"

#include <QFile>
#include <QFileInfo>

namespace {

using Kind = Reason::Kind;

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

Reason refusalIn(const QNetworkReply *reply)
{
    if (statusOf(reply) == proxyWantsUser && Proxies::areUsed())
        return NetworkReason::proxyWantsUser();
    const QString reason = reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
    return {Kind::Refused,
            FetchJob::tr("the server answered %1 %2").arg(statusOf(reply)).arg(reason).trimmed()};
}

} // namespace

FetchJob::FetchJob(const QString &address, const QString &path, bool resume, QObject *parent)
    : Job(parent)
    , m_address(address)
    , m_source(address)
    , m_path(path)
    , m_output(path)
    , m_part(m_output.partPath())
    , m_resume(resume)
{
}

Reason FetchJob::problem(const QString &path, bool resume)
{
    const OutputFile file(path);
    QString problem = file.problem();
    if (problem.isEmpty())
        problem = file.partProblem(resume);
    return problem.isEmpty() ? Reason() : Reason{Kind::File, problem};
}

// The request asks for the bytes as the server has them: a body that is compressed on the way has
// no announced length.
HttpRequest FetchJob::request()
{
    HttpRequest request(HttpMethod::Get, m_client);
    request.url(m_source).headers(
        {{QStringLiteral("Accept-Encoding"), QStringLiteral("identity")}});
    request.fields.networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                                               QNetworkRequest::NoLessSafeRedirectPolicy);
    return request.onError(this, &FetchJob::onError);
}

// The length is asked for first, by a request whose body is not read: a download by the toolkit
// never ends where the resource is empty, and appends the whole resource to a complete part.
void FetchJob::begin()
{
    if (const Reason reason = problem(m_path, m_resume); !reason.isNone())
        return fail(reason);
    m_client = new HttpClient(work());
    m_response = request().readBufferSize(smallBuffer).onHead(this, &FetchJob::onFound).send();
    Q_EMIT progressed(Stage::Asking, 0, 0);
}

void FetchJob::onFound(const QList<QNetworkReply::RawHeaderPair> &head)
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
void FetchJob::prepare()
{
    m_kept = m_resume ? QFileInfo(m_part).size() : 0;
    if (m_kept > m_length)
        m_kept = 0;
    if (m_kept == 0)
        QFile::remove(m_part);
}

// Without an announced length the body may come in chunks. Qt waits without end for a chunk that is
// larger than the buffer's bound and cut off, so there is no bound then.
void FetchJob::download()
{
    m_response = request()
                     .readBufferSize(m_length < 0 ? noBound : usualBound)
                     .download(m_part)
                     .enableResume(m_kept > 0)
                     .onMetaDataChanged([this] { onBegin(); })
                     .onDownloadFileProgress(this, &FetchJob::onProgress)
                     .onDownloadFileError(this, &FetchJob::onFileError)
                     .onFinished([this] { complete(); })
                     .send();
}

// This runs before the part is opened: an answer that is refused here leaves it alone. The toolkit
// appends any answer to a part that is there, once the server has said that it serves ranges. A
// server that says so may send the whole resource all the same.
void FetchJob::onBegin()
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
    onProgress(0, 0);
}

void FetchJob::beginAnew()
{
    delete m_response;
    m_kept = 0;
    download();
}

void FetchJob::onProgress(qint64 received, qint64 total)
{
    Q_UNUSED(total)
    Q_EMIT progressed(Stage::Fetching, m_kept + received, qMax<qint64>(m_length, 0));
}

// The toolkit reports a failed transfer here too, before onError(), which has better words for it.
void FetchJob::onFileError()
{
    const QNetworkReply *reply = replyTo(m_response);
    if (reply->error() == QNetworkReply::NoError && !reply->isFinished())
        giveUpFile(tr("\"%1\" could not be written").arg(m_part));
}

// The last callback of a request that failed; the toolkit ends the reply after it. If the client
// went before that, Qt would warn of a second error.
void FetchJob::onError(const QByteArray &text)
{
    m_client->setParent(nullptr);
    m_client->deleteLater();
    const QNetworkReply *reply = replyTo(m_response);
    const int status = statusOf(reply);
    if (status > 0 && !isSuccess(status) && !isRedirect(status))
        giveUp(refusalIn(reply));
    else if (reply->error() == QNetworkReply::NoError) // Qt takes it for a success
        giveUp({Kind::Network, tr("the connection ended too early")});
    else
        giveUp(NetworkReason::ofText(QString::fromLocal8Bit(text)));
}

void FetchJob::complete()
{
    if (m_length == 0)
        QFile(m_part).open(QIODevice::WriteOnly);
    const qint64 size = QFileInfo(m_part).size();
    const QString path = m_path;
    if (m_length >= 0 && size != m_length)
        giveUp({Kind::Network, tr("%1 bytes came of %2").arg(size).arg(m_length)});
    else if (!m_output.replaceBy(m_part))
        giveUpFile(tr("\"%1\" could not be renamed to \"%2\"").arg(m_part, m_path));
    else if (conclude())
        Q_EMIT succeeded(path, size);
}

// Ends the request, so that a page about the failure that may be under way stays out of the part.
void FetchJob::refuse() { giveUp(refusalIn(replyTo(m_response))); }

void FetchJob::giveUpFile(const QString &problem) { giveUp({Kind::File, problem}); }

// The end of the job destroys the client, which ends the exchange for good. If only the response
// were deleted, an error that Qt is about to report would still arrive, and Qt would warn of a
// second one.
void FetchJob::giveUp(const Reason &reason)
{
    const QString address = QUrl(m_address).toDisplayString(QUrl::RemovePassword);
    fail({reason.kind, tr("\"%1\" could not be downloaded: %2").arg(address, reason.text)});
}
