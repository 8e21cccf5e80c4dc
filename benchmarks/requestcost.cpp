// Sends requests in several ways. scripts/benchmark.sh counts the instructions of each way and
// works out what a request costs over the bare network access manager.
//
//   request-cost serve               answers on a free port of loopback, which it prints first
//   request-cost bare PORT COUNT     sends COUNT requests through the access manager alone
//   request-cost toolkit PORT COUNT  the same through HttpRequest, body and error bound to slots
//   request-cost strings PORT COUNT  the access manager with string connections, every body form
#include "http/httpclient.h"
#include "http/httprequest.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTcpSocket>
#include <QVariantMap>

#include <cstdio>

namespace {

constexpr int bodyBytes = 200;

void serve(QTcpServer *server)
{
    const QByteArray reply = "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(bodyBytes)
                             + "\r\n\r\n" + QByteArray(bodyBytes, 'x');
    QObject::connect(server, &QTcpServer::newConnection, server, [server, reply] {
        QTcpSocket *socket = server->nextPendingConnection();
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        QObject::connect(socket, &QIODevice::readyRead, socket, [socket, reply] {
            // The requests come one at a time and have no body: each ends with an empty line.
            if (socket->readAll().endsWith("\r\n\r\n"))
                socket->write(reply);
        });
        QObject::connect(socket, &QAbstractSocket::disconnected, socket, &QObject::deleteLater);
    });
    server->listen(QHostAddress::LocalHost);
    std::printf("%d\n", int(server->serverPort()));
    std::fflush(stdout);
}

} // namespace

/// Sends one request after the other and quits after the last.
class Sender : public QObject
{
    Q_OBJECT

public:
    enum class Way { Bare, Toolkit, Strings };

    Sender(Way way, const QString &address, int count)
        : m_way(way)
        , m_address(address)
        , m_left(count)
    {
    }

    void next()
    {
        if (m_left-- == 0) {
            QCoreApplication::quit();
            return;
        }
        switch (m_way) {
        case Way::Bare:
            sendBare();
            break;
        case Way::Toolkit:
            sendToolkit();
            break;
        case Way::Strings:
            sendStrings();
            break;
        }
    }

public Q_SLOTS:
    void onBody(QByteArray body)
    {
        if (body.size() != bodyBytes)
            qFatal("a body of %d bytes", body.size());
        next();
    }

    void onFailure(QByteArray text) { qFatal("%s", text.constData()); }

    void onReply()
    {
        auto *reply = qobject_cast<QNetworkReply *>(sender());
        const QByteArray body = reply->readAll();
        m_text = QString::fromUtf8(body);
        m_map = QJsonDocument::fromJson(body).object().toVariantMap();
        reply->deleteLater();
        onBody(body);
    }

    void ignore() {}

private:
    QNetworkReply *get()
    {
        return m_client.sendCustomRequest(QNetworkRequest(QUrl(m_address)), "GET", QByteArray());
    }

    void sendBare()
    {
        QNetworkReply *reply = get();
        connect(reply, &QNetworkReply::finished, this, [this, reply] {
            const QByteArray body = reply->readAll();
            reply->deleteLater();
            onBody(body);
        });
    }

    void sendToolkit()
    {
        const QVariant self = QVariant::fromValue(static_cast<QObject *>(this));
        HttpRequest(HttpMethod::Get, &m_client)
            .url(m_address)
            .bind(CallbackKind::Finished, QStringLiteral("1onBody(QByteArray)"), self)
            .bind(CallbackKind::Error, QStringLiteral("1onFailure(QByteArray)"), self)
            .send();
    }

    void sendStrings()
    {
        QNetworkReply *reply = get();
        connect(reply, SIGNAL(finished()), this, SLOT(onReply()));
        for (const char *signal :
             {SIGNAL(finished()), SIGNAL(errorOccurred(QNetworkReply::NetworkError)),
              SIGNAL(downloadProgress(qint64, qint64)), SIGNAL(uploadProgress(qint64, qint64)),
              SIGNAL(readyRead()), SIGNAL(readyRead()), SIGNAL(readyRead()), SIGNAL(encrypted()),
              SIGNAL(metaDataChanged()), SIGNAL(redirected(QUrl)),
              SIGNAL(sslErrors(QList<QSslError>)), SIGNAL(redirectAllowed()),
              SIGNAL(preSharedKeyAuthenticationRequired(QSslPreSharedKeyAuthenticator *))})
            connect(reply, signal, this, SLOT(ignore()));
    }

    const Way m_way;
    const QString m_address;
    int m_left;
    HttpClient m_client;
    QString m_text;
    QVariantMap m_map;
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("serve")) {
        QTcpServer server;
        serve(&server);
        return QCoreApplication::exec();
    }
    const QHash<QString, Sender::Way> ways{{QStringLiteral("bare"), Sender::Way::Bare},
                                           {QStringLiteral("toolkit"), Sender::Way::Toolkit},
                                           {QStringLiteral("strings"), Sender::Way::Strings}};
    if (arguments.size() != 4 || !ways.contains(arguments.at(1)))
        qFatal("usage: request-cost serve | (bare|toolkit|strings) PORT COUNT");
    Sender sender(ways.value(arguments.at(1)),
                  QStringLiteral("http://127.0.0.1:%1/").arg(arguments.at(2)),
                  arguments.at(3).toInt());
    sender.next();
    return QCoreApplication::exec();
}

#include "requestcost.moc"
