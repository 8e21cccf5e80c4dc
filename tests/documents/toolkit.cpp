// The samples of README.md and docs/http-toolkit.md that are no programs of their own.

#include "http/httpclient.h"
#include "http/httprequest.h"

#include <QDebug>
#include <QJsonObject>

void sendNote()
{
    HttpClient client;
    HttpRequest(HttpMethod::Post, &client)
        .url(QStringLiteral("https://example.org/notes"))
        .jsonBody(QJsonObject{{QStringLiteral("title"), QStringLiteral("hello")}})
        .retry(2)
        .onFinished([](const QByteArray &body) { qDebug() << body; })
        .onError([](QNetworkReply::NetworkError code) { qDebug() << code; })
        .send();
}

void fetchFile(HttpClient &client)
{
    HttpRequest(HttpMethod::Get, &client)
        .url(QStringLiteral("https://example.org/big.iso"))
        .download(QStringLiteral("big.iso"))
        .onDownloadFileFinished([](const QString &file) { qDebug() << file; })
        .onDownloadFileError([](const QString &problem) { qWarning() << problem; })
        .send();
}
