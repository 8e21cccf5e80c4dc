#include "network/filefetch.h"

#include <QDebug>
#include <QEventLoop>
#include <QFile>
#include <QMetaEnum>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QUrl>

namespace {

const char *errorName(QNetworkReply::NetworkError error)
{
    return QMetaEnum::fromType<QNetworkReply::NetworkError>().valueToKey(error);
}

} // namespace

FileFetch::Result FileFetch::fetch(const QString &address, const char *tag)
{
    QNetworkAccessManager manager;
    QNetworkReply *reply = manager.get(QNetworkRequest(QUrl(address, QUrl::TolerantMode)));
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    if (!reply->isFinished()) // the application is quitting
        reply->abort();
    if (reply->error() != QNetworkReply::NoError)
        qDebug() << "[error]" << tag << errorName(reply->error());
    // An aborted reply is closed and cannot be read. Every reply goes with its manager.
    return {reply->error(), reply->isOpen() ? reply->readAll() : QByteArray()};
}

bool FileFetch::save(const QByteArray &body, const QString &path, const char *tag,
                     const char *openError)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        qDebug() << tag << openError << path;
        return false;
    }
    file.write(body);
    return true;
}
