#include "fetch.h"

#include "failurereason.h"
#include "options.h"
#include "progress.h"
#include "proxies.h"

#include <QFile>
#include <QFileInfo>

namespace {

constexpr qint64 smallBuffer = 4096; // bytes; nobody reads what the first question brings
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

// -1 when it is not announced: a transfer coding overrides a length. Behind a redirect Qt may put
// the length that counts after that of the redirecting answer: "145, 3000".
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

// Whether @p reply brings the bytes from @p first to the end of @p length.
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

// Identity: the bytes as the server has them. What is compressed on the way has no length
// beforehand.
HttpRequest Fetch::request()
{
    HttpRequest request(HttpMethod::Get, &*m_client);
    request.url(m_source).headers(
        {{QStringLiteral("Accept-Encoding"), QStringLiteral("identity")}});
    request.fields.networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                                               QNetworkRequest::NoLessSafeRedirectPolicy);
    return request.onError(this, &Fetch::onError);
}

// A download does not end by itself when there is nothing to download, and appends the whole to a
// part that is complete. So the server is asked first what there is.
void Fetch::start()
{
    progress()->show(QStringLiteral("asking for the file"));
    m_response = request().readBufferSize(smallBuffer).onHead(this, &Fetch::onFound).send();
}

void Fetch::onFound(const QList<QNetworkReply::RawHeaderPair> &head)
{
    const QNetworkReply *reply = replyTo(m_response);
    if (reply->error() != QNetworkReply::NoError)
        return; // onError() has told
    if (!isSuccess(statusOf(reply)) || statusOf(reply) == partOfIt)
        return refuse();
    m_length = lengthIn(head);
    if (m_length < 0 && reply->isFinished() && reply->bytesAvailable() == 0)
        m_length = 0;
    m_source = reply->url().toString(QUrl::FullyEncoded);
    delete m_response; // that was all
    prepare();
    if (m_kept == m_length)
        complete();
    else
        download();
}

// Only the beginning of what there is can be continued, and only when its length is known.
void Fetch::prepare()
{
    m_kept = m_resume ? QFileInfo(m_part).size() : 0;
    if (m_kept > m_length)
        m_kept = 0;
    if (m_kept == 0)
        QFile::remove(m_part);
}

// Without a length the body may come in chunks. One that is larger than the usual bound and is cut
// off would be waited for without end.
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

// Comes before the part is opened: what is refused here does not touch it. The library appends
// whatever comes to a part that is there, once the server has said that it serves ranges; that it
// does was not promised.
void Fetch::onBegin()
{
    const QNetworkReply *reply = replyTo(m_response);
    const int status = statusOf(reply);
    if (isRedirect(status))
        return; // it is followed
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

// Also comes before onError(), which has the better words for what ended the transfer.
void Fetch::onFileError()
{
    const QNetworkReply *reply = replyTo(m_response);
    if (reply->error() == QNetworkReply::NoError && !reply->isFinished())
        endWith(QStringLiteral("\"%1\" could not be written").arg(m_part));
}

// The reply is the library's to end: nothing else comes of it.
void Fetch::onError(const QByteArray &text)
{
    const QNetworkReply *reply = replyTo(m_response);
    const int status = statusOf(reply);
    if (status > 0 && !isSuccess(status) && !isRedirect(status))
        tell(refusalIn(reply));
    else if (reply->error() == QNetworkReply::NoError)
        tell(QStringLiteral("the connection ended too early")); // seen by the library only
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

// A page about the failure may be under way; it is not to get into the part.
void Fetch::refuse() { endWith(refusalIn(replyTo(m_response))); }

// With its client the exchange ends for good. After the response alone is deleted, an error that Qt
// is about to report would still arrive, and Qt warns of a second one.
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
