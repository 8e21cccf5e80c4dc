#include "http/httpdownloader.h"

#include "http/httpblocker.h"
#include "http/httpclient.h"
#include "http/httpdispatch.h"
#include "http/httpresponse.h"
#include "http/probeclient.h"
#include "http/replykeeper.h"

#include <QFile>
#include <QRegularExpression>
#include <QUrl>

namespace {

constexpr int probeTimeoutMs = 30000;
constexpr qint64 probeBufferSize = 4096; // bytes; nobody reads what the probe brings
constexpr char rangeHeader[] = "Range";
// The attribute that holds the caller's Range header while the toolkit's is in its place.
constexpr auto callersRange = QNetworkRequest::UserMax;

QString nameFromAddress(const QUrl &address)
{
    const QString name = address.fileName(QUrl::FullyDecoded);
    return name.isEmpty() ? address.host() : name;
}

void setRange(QNetworkRequest &request, const QByteArray &range)
{
    request.setAttribute(callersRange, request.rawHeader(rangeHeader));
    request.setRawHeader(rangeHeader, range);
}

void restoreRange(QNetworkRequest &request)
{
    const QVariant range = request.attribute(callersRange);
    if (!range.isValid())
        return;
    request.setRawHeader(rangeHeader, range.toByteArray()); // null: there was none
    request.setAttribute(callersRange, QVariant());
}

// A retry and a repeat send the copy that the attempt before them has filled in. What that attempt
// found out does not hold for the next one.
HttpRequest withoutFindings(HttpRequest request)
{
    HttpRequestFields &fields = request.fields;
    restoreRange(fields.networkRequest);
    fields.reply = nullptr;
    fields.supportsResume = false;
    fields.downloadedBytes = 0;
    fields.totalBytes = 0;
    return request;
}

} // namespace

HttpResponse *HttpDownloader::start(const HttpRequest &request)
{
    // The response is made before the probe is sent: of a request that blocks everything is over
    // when sendProbe() returns.
    const QPointer<HttpResponse> response( // the caller's
        new HttpResponse(withoutFindings(request), nullptr));
    const QPointer<HttpDownloader> downloader( // the response's child
        new HttpDownloader(response));
    downloader->sendProbe();
    if (downloader) { // the caller is about to have the response
        downloader->m_starting = false;
        downloader->m_keeper.reset();
    }
    return response;
}

HttpDownloader::HttpDownloader(HttpResponse *response)
    : QObject(response)
    , m_request(response->request())
    , m_fileName(nameFromAddress(m_request.fields.networkRequest.url()))
    , m_response(response)
{
    // A client that goes ends the download, as it ends any other request, and no callback follows.
    if (m_request.fields.client)
        connect(m_request.fields.client, &QObject::destroyed, this,
                [response] { delete response; });
}

HttpDownloader::~HttpDownloader()
{
    delete m_probe; // which ends the probe
}

void HttpDownloader::sendProbe()
{
    HttpRequest probe(HttpMethod::Get, probeClient());
    probe.fields.networkRequest.setUrl(m_request.fields.networkRequest.url());
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED // 5.15 prefers the attribute with the policy; they do the same
    probe.fields.networkRequest.setAttribute(QNetworkRequest::FollowRedirectsAttribute, true);
    QT_WARNING_POP
    probe.onHead(this, SLOT(onHead(QList<QNetworkReply::RawHeaderPair>)))
        .onHead(this, SLOT(onHead(QMap<QString, QString>)))
        .onReadyRead(this, SLOT(onReadyRead(QNetworkReply *)))
        .onError(this, SLOT(onResponse(QNetworkReply::NetworkError)))
        .timeout(probeTimeoutMs)
        .readBufferSize(probeBufferSize);
    m_probe = probe.send();
    // The wait is here and not in the probe's send(), so that m_probe is known while it lasts:
    // whatever ends the download meanwhile ends the probe through it.
    if (m_request.fields.block)
        HttpBlocker::waitFor(m_probe->request().fields.reply);
}

void HttpDownloader::onHead(QList<QNetworkReply::RawHeaderPair> headerForPair)
{
    m_headerPairs = headerForPair;
}

void HttpDownloader::onHead(QMap<QString, QString> headerForMap)
{
    m_headerMap = headerForMap;
    for (auto it = headerForMap.cbegin(); it != headerForMap.cend(); ++it)
        readHeader(it.key(), it.value());
}

void HttpDownloader::readHeader(const QString &name, const QString &value)
{
    const auto isAbout = [&name](const char *header) {
        return name.contains(QLatin1String(header), Qt::CaseInsensitive);
    };
    if (isAbout("Content-Disposition")) {
        static const QRegularExpression attachment(QRegularExpression::anchoredPattern(
            QStringLiteral(R"(attachment;\s*filename=([\S]+))")));
        const QRegularExpressionMatch match = attachment.match(value);
        if (match.hasMatch())
            m_fileName = match.captured(1);
    }
    if (isAbout("Content-Length")) // Qt may have joined it with those of redirecting answers
        m_contentLength = value.section(QLatin1Char(','), -1).trimmed().toLongLong();
    if (isAbout("Content-Range") || isAbout("Accept-Ranges"))
        m_rangesSupported = true; // whatever it says
}

void HttpDownloader::onReadyRead(QNetworkReply *reply)
{
    // Nobody is connected to this response: the caller hears neither of the name that was chosen
    // nor of a file that is complete already.
    HttpResponse unheard(HttpRequest(m_request.fields.method, nullptr), nullptr);
    HttpRequestFields &fields = m_request.fields;
    if (fields.downloadFilePath.isEmpty()) {
        fields.downloadFilePath = m_fileName;
        Q_EMIT unheard.downloadFileNameChanged(m_fileName);
    }
    fields.totalBytes = m_contentLength;
    fields.supportsResume = m_rangesSupported;
    planResume(&unheard);
    // The download is sent after abort() has returned, not from the error that abort() reports: the
    // connection ends after that, and a server that serves one at a time waits for its end.
    disconnect(m_probe, nullptr, this, nullptr);
    const QPointer<HttpDownloader> self(this);
    reply->abort();
    if (self)
        onResponse(QNetworkReply::OperationCanceledError);
}

// Only a file that is shorter than announced is continued. One that is as long, or longer, has the
// whole resource appended: no range is asked for, and the file is opened at its end.
void HttpDownloader::planResume(HttpResponse *unheard)
{
    HttpRequestFields &fields = m_request.fields;
    QFile file(fields.downloadFilePath);
    if (!fields.enableResume || !m_rangesSupported || !file.exists()
        || !file.open(QIODevice::ReadOnly))
        return;
    fields.downloadedBytes = file.size();
    if (fields.downloadedBytes < m_contentLength)
        setRange(fields.networkRequest,
                 "bytes=" + QByteArray::number(fields.downloadedBytes) + '-');
    else if (fields.downloadedBytes == m_contentLength)
        announceComplete(unheard);
}

void HttpDownloader::announceComplete(HttpResponse *response)
{
    Q_EMIT response->head(m_headerPairs);
    Q_EMIT response->head(m_headerMap);
    Q_EMIT response->downloadFileProgress(m_contentLength, m_contentLength);
    Q_EMIT response->downloadFileFinished();
    Q_EMIT response->downloadFileFinished(m_request.fields.downloadFilePath);
    Q_EMIT response->finished();
    Q_EMIT response->finished(QByteArray());
    Q_EMIT response->finished(QVariantMap());
    Q_EMIT response->finished(static_cast<QNetworkReply *>(nullptr));
    Q_EMIT response->finished(QString());
}

// The download is sent however the probe ended: its own outcome is the one that the caller hears.
void HttpDownloader::onResponse(QNetworkReply::NetworkError code)
{
    Q_UNUSED(code)
    if (m_request.fields.client) // from here on it destroys the reply, and so the response, itself
        disconnect(m_request.fields.client, nullptr, this, nullptr);
    const QPointer<HttpDownloader> self(this);
    const HttpResponse *served = HttpDispatch::dispatch(m_request, m_response);
    if (!self)
        return;
    if (!served)
        m_response->deleteLater(); // no outcome will follow
    else if (m_request.fields.block && m_starting)
        m_keeper = std::make_unique<ReplyKeeper>(served->request().fields.reply);
}
