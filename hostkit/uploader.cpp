#include "hostkit/uploader.h"

#include "hostkit/networkreason.h"
#include "hostkit/serveraddress.h"
#include "hostkit/servicelease.h"
#include "http/httpclient.h"
#include "http/httprequest.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <memory>

namespace {

using Kind = Reason::Kind;

// The address is made of the credentials: the storage itself gives none.
QString newAddress(const OSS_SIGN_INFO &credentials)
{
    const QString name = QUuid::createUuid().toString(QUuid::WithoutBraces);
    return QStringLiteral("%1/%2/%3/%4.wav")
        .arg(credentials.endpoint, credentials.bucketName, credentials.dir, name);
}

} // namespace

Uploader::Uploader(ServiceLease *service, QObject *parent)
    : QObject(parent)
    , m_service(service)
    , m_client(new HttpClient(this))
{
}

void Uploader::upload(const QString &path)
{
    m_path = path;
    m_service->ask(
        &VoNetworkIntf::signalGetOssSign, [](VoNetworkIntf *service) { service->GetOssSign(); },
        [this](OSS_SIGN_INFO *credentials) { onCredentials(credentials); });
}

void Uploader::onCredentials(OSS_SIGN_INFO *credentials)
{
    const std::unique_ptr<OSS_SIGN_INFO> owned(credentials);
    if (!credentials) {
        Q_EMIT refused();
        return;
    }
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        Q_EMIT failed({Kind::File, tr("cannot read \"%1\": %2").arg(m_path, file.errorString())});
        return;
    }
    const QByteArray bytes = file.readAll();
    if (bytes.size() != file.size())
        Q_EMIT failed({Kind::File, tr("cannot read all of \"%1\"").arg(m_path)});
    else
        put(*credentials, bytes);
}

void Uploader::put(const OSS_SIGN_INFO &credentials, const QByteArray &bytes)
{
    m_address = newAddress(credentials);
    if (!ServerAddress::isUsable(m_address)) {
        Q_EMIT failed(
            {Kind::BadAnswer, tr("the service sent no usable address for the recording")});
        return;
    }
    const HttpResponse *response =
        HttpRequest(HttpMethod::Put, m_client)
            .url(m_address)
            .headers({{QStringLiteral("x-security-token"), credentials.SecurityToken},
                      {QStringLiteral("Content-Type"), QStringLiteral("audio/wav")}})
            .rawBody(bytes)
            .onUploadProgress(this, &Uploader::onSent)
            .onFinished(this, &Uploader::onReply)
            .onError(this, &Uploader::onError)
            .send();
    if (!response)
        Q_EMIT failed({Kind::BadAnswer, tr("the recording could not be sent")});
}

void Uploader::onReply(const QByteArray &reply)
{
    const QJsonObject envelope = QJsonDocument::fromJson(reply).object();
    const QString message = envelope.value(QLatin1String("message")).toString();
    if (envelope.value(QLatin1String("code")).toInt(-1) == 0)
        Q_EMIT uploaded(m_address);
    else if (message.isEmpty())
        Q_EMIT failed(
            {Kind::BadAnswer, tr("the storage refused the recording or sent no usable answer")});
    else
        Q_EMIT failed({Kind::Refused, tr("the storage refused the recording: %1").arg(message)});
}

// The last callback of a request that failed; the toolkit ends the reply after it. If the client
// went before that, Qt would warn of a second error.
void Uploader::onError(const QByteArray &text)
{
    m_client->setParent(nullptr);
    m_client->deleteLater();
    Reason reason = NetworkReason::ofText(QString::fromLocal8Bit(text));
    reason.text = tr("the recording could not be uploaded: %1").arg(reason.text);
    Q_EMIT failed(reason);
}

// Qt reports 0 of 0 as the request ends.
void Uploader::onSent(qint64 done, qint64 total)
{
    if (total > 0)
        Q_EMIT sent(done, total);
}
