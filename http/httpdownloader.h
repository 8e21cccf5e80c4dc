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

/// Begins a download. A request of its own, the probe, asks for the resource's name, its length and
/// whether ranges are served, and is cut off at the first data. Then the downloader decides whether
/// a partial file can be continued, and sends the download itself. It is a child of the response
/// that the caller is given. Hosts use HttpRequest::download() and send().
class HttpDownloader : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpDownloader)

public:
    /// Starts the download that @p request describes; called on its client's thread. The response
    /// serves no reply until the probe has ended. It goes without a callback when the client is
    /// destroyed or the download cannot be sent. Null after a wait (the request blocks) in which
    /// the response was deleted.
    static HttpResponse *start(const HttpRequest &request);

    /// Ends the probe if it is under way.
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
    QString m_fileName;         ///< Used when the caller gives none.
    qint64 m_contentLength = 0; ///< Bytes; 0: unknown.
    QList<QNetworkReply::RawHeaderPair> m_headerPairs;
    QMap<QString, QString> m_headerMap;
    HttpResponse *m_response;       ///< The caller's, and this object's parent.
    QPointer<HttpResponse> m_probe; ///< A child of the probe's reply.
    bool m_starting = true;         ///< start() has not returned.
    /// Keeps the reply of a blocking download, and so the response, until start() returns it.
    std::unique_ptr<ReplyKeeper> m_keeper;
};
