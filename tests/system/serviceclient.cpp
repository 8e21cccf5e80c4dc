#include "serviceclient.h"

#include "localservice.h"
#include "serviceaddress.h"
#include "tests/support/patience.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTimer>
#include <QUrl>

namespace {

QString operation(const QString &name)
{
    return serviceAddress() + QStringLiteral("/convert/public/index.php/v1/") + name;
}

QSslConfiguration trusting(const QString &authority)
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(QSslCertificate::fromPath(authority));
    return configuration;
}

} // namespace

QByteArray ServiceClient::Reply::header(const QByteArray &name) const
{
    for (const auto &header : headers) {
        if (header.first.toLower() == name.toLower())
            return header.second;
    }
    return {};
}

int ServiceClient::Reply::code() const
{
    return QJsonDocument::fromJson(body).object().value(QLatin1String("code")).toInt(-1);
}

bool ServiceClient::Reply::isRefusal() const
{
    const QJsonObject envelope = QJsonDocument::fromJson(body).object();
    return envelope.value(QLatin1String("code")).toInt(0) != 0
           && !envelope.value(QLatin1String("message")).toString().isEmpty();
}

bool ServiceClient::Reply::isSuccess() const { return status == 200 && code() == 0; }

QJsonObject ServiceClient::Reply::data() const
{
    return QJsonDocument::fromJson(body).object().value(QLatin1String("data")).toObject();
}

ServiceClient::ServiceClient(const QString &authority)
    : m_authority(authority)
{
}

ServiceClient::Reply ServiceClient::post(const QString &name, const QByteArray &body,
                                         const QByteArray &authorization)
{
    QNetworkRequest post = request(operation(name));
    post.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    if (!authorization.isEmpty())
        post.setRawHeader("Authorization", authorization);
    return wait(m_manager.post(post, body));
}

ServiceClient::Reply ServiceClient::post(const QString &name, const QJsonObject &body,
                                         const QByteArray &authorization)
{
    return post(name, QJsonDocument(body).toJson(), authorization);
}

ServiceClient::Reply ServiceClient::postTo(const QString &address, const QByteArray &body)
{
    QNetworkRequest post = request(address);
    post.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    return wait(m_manager.post(post, body));
}

QJsonObject ServiceClient::credentials()
{
    return get(operation(QStringLiteral("upload/getsignsts"))).data();
}

ServiceClient::Reply ServiceClient::put(const QString &address, const QByteArray &body,
                                        const QString &securityToken)
{
    QNetworkRequest put = request(address);
    put.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("audio/wav"));
    if (!securityToken.isEmpty())
        put.setRawHeader("x-security-token", securityToken.toUtf8());
    return wait(m_manager.put(put, body));
}

ServiceClient::Reply ServiceClient::get(const QString &address, const QString &securityToken)
{
    QNetworkRequest get = request(address);
    if (!securityToken.isEmpty())
        get.setRawHeader("x-security-token", securityToken.toUtf8());
    return wait(m_manager.get(get));
}

ServiceClient::Reply ServiceClient::head(const QString &address)
{
    return wait(m_manager.head(request(address)));
}

ServiceClient::Reply ServiceClient::verbatim(const QByteArray &requestLine,
                                             const QByteArray &headers, const QByteArray &body)
{
    const QUrl service(serviceAddress());
    QSslSocket socket;
    socket.setSslConfiguration(trusting(m_authority));
    socket.connectToHostEncrypted(service.host(), static_cast<quint16>(service.port()));
    if (!socket.waitForEncrypted(patienceMs))
        return {};
    socket.write(requestLine + " HTTP/1.1\r\nHost: " + service.authority().toLatin1()
                 + "\r\nConnection: close\r\n" + headers
                 + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
    QByteArray reply;
    while (socket.state() == QAbstractSocket::ConnectedState && socket.waitForReadyRead(patienceMs))
        reply += socket.readAll();
    reply += socket.readAll();
    const int end = reply.indexOf("\r\n\r\n");
    Reply result{reply.split(' ').value(1).toInt(), reply.mid(end + 4)};
    const auto lines = reply.left(end).split('\n').mid(1);
    for (const QByteArray &line : lines)
        result.headers.append(
            {line.left(line.indexOf(':')), line.mid(line.indexOf(':') + 1).trimmed()});
    return result;
}

QJsonObject ServiceClient::speech(const char *feature, const QString &text)
{
    return {{QStringLiteral("feature"), QString::fromLatin1(feature)},
            {QStringLiteral("text"), text},
            {QStringLiteral("format"), QStringLiteral("wav")},
            {QStringLiteral("sample_rate"), 16000},
            {QStringLiteral("voice"), QStringLiteral("rms")},
            {QStringLiteral("volume"), 50},
            {QStringLiteral("speech_rate"), 0},
            {QStringLiteral("pitch_rate"), 0},
            {QStringLiteral("pageFeature"), QString()}};
}

QByteArray ServiceClient::authorization()
{
    return "Bearer " + QByteArray::number(LocalService::token());
}

QNetworkRequest ServiceClient::request(const QString &address) const
{
    QNetworkRequest request{QUrl(address)};
    request.setSslConfiguration(trusting(m_authority));
    return request;
}

ServiceClient::Reply ServiceClient::wait(QNetworkReply *reply)
{
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(patienceMs, reply, &QNetworkReply::abort);
    if (!reply->isFinished())
        loop.exec();
    Reply result{reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
                 reply->readAll(), reply->rawHeaderPairs()};
    delete reply;
    return result;
}
