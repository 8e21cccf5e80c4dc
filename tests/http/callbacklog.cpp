#include "tests/http/callbacklog.h"

#include <QJsonDocument>
#include <QJsonObject>

HttpRequest &CallbackLog::bindOutcomes(HttpRequest &request)
{
    return request.onFinished([this] { add(QStringLiteral("finished()")); })
        .onFinished([this](const QByteArray &body) {
            add(QStringLiteral("finished(bytes %1)").arg(QString::fromLatin1(body)));
        })
        .onFinished(
            [this](const QString &body) { add(QStringLiteral("finished(text %1)").arg(body)); })
        .onFinished([this](const QVariantMap &map) {
            const QJsonDocument json(QJsonObject::fromVariantMap(map));
            add(QStringLiteral("finished(map %1)")
                    .arg(QString::fromUtf8(json.toJson(QJsonDocument::Compact))));
        })
        .onError([this] { add(QStringLiteral("error()")); })
        .onError([this](QNetworkReply::NetworkError code) {
            add(QStringLiteral("error(code %1)").arg(int(code)));
        })
        .onError([this](const QByteArray &text) {
            add(QStringLiteral("error(text %1)").arg(QString::fromLocal8Bit(text)));
        })
        .onRetried([this] { add(QStringLiteral("retried()")); })
        .onRepeated([this] { add(QStringLiteral("repeated()")); });
}

HttpRequest &CallbackLog::bindFile(HttpRequest &request)
{
    return request.onDownloadFileFinished([this] { add(QStringLiteral("file()")); })
        .onDownloadFileFinished(
            [this](const QString &name) { add(QStringLiteral("file ") + name); })
        .onDownloadFileError([this] { add(QStringLiteral("fileError()")); })
        .onDownloadFileError(
            [this](const QString &text) { add(QStringLiteral("fileError ") + text); });
}

HttpRequest &CallbackLog::bindTimeout(HttpRequest &request)
{
    return request.onTimeout([this] { add(QStringLiteral("timeout()")); });
}

int CallbackLog::outcomes() const
{
    return m_lines.count(QStringLiteral("finished()")) + m_lines.count(QStringLiteral("error()"));
}
