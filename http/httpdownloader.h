#pragma once

#include "http/httprequest.h"

#include <QList>
#include <QMap>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

class HttpResponse;
class ReplyKeeper;

/// Begins a download: asks for the resource's name, length and ranges with a request of its own
/// (the probe), which it cuts off at the first data, decides whether a partial file can be
/// continued, and sends the download itself. A child of the response that the caller is given;
/// whichever goes takes the other with it.
class HttpDownloader : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpDownloader)

public:
    /// Starts what @p request describes. The response serves no reply until the probe has ended,
    /// and goes without an answer when the client does. Null when a request that blocks has ended
    /// and its response was deleted meanwhile.
    static HttpResponse *start(const HttpRequest &request);

    ~HttpDownloader() override;

private Q_SLOTS:
    void onResponse(QNetworkReply::NetworkError code);
    void onHead(QList<QNetworkReply::RawHeaderPair> headerForPair);
    void onHead(QMap<QString, QString> headerForMap);
    void onReadyRead(QNetworkReply *reply);

private:
    explicit HttpDownloader(HttpResponse *response);

    void sendProbe();
    void readHeader(const QString &name, const QString &value);
    void planResume(HttpResponse *unheard);
    void announceComplete(HttpResponse *response);

    HttpRequest m_request;
    bool m_rangesSupported = false;
    QString m_fileName; ///< For a caller who gives none.
    qint64 m_contentLength = 0;
    QList<QNetworkReply::RawHeaderPair> m_headerPairs;
    QMap<QString, QString> m_headerMap;
    HttpResponse *m_response;              ///< The caller's, and this object's parent.
    QPointer<HttpResponse> m_probe;        ///< A child of the probe's reply.
    bool m_starting = true;                ///< start() has not returned.
    std::unique_ptr<ReplyKeeper> m_keeper; ///< Of a reply that ended before start() returned.
};
