#include "uploader.h"

#include "command.h"
#include "hostkit/failurereason.h"
#include "hostkit/serveraddress.h"
#include "http/httprequest.h"
#include "network/vonetworkintf.h"
#include "progress.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <memory>

namespace {

// The address is made of the credentials: the storage itself gives none.
QString newAddress(const OSS_SIGN_INFO &credentials)
{
    const QString name = QUuid::createUuid().toString(QUuid::WithoutBraces);
    return QStringLiteral("%1/%2/%3/%4.wav")
        .arg(credentials.endpoint, credentials.bucketName, credentials.dir, name);
}

} // namespace

Uploader::Uploader(VoNetworkIntf *service, Progress *progress, QObject *parent)
    : QObject(parent)
    , m_service(service)
    , m_progress(progress)
{
    connect(service, &VoNetworkIntf::signalGetOssSign, this, &Uploader::onCredentials);
}

void Uploader::upload(const QString &path)
{
    m_path = path;
    m_service->GetOssSign();
}

void Uploader::onCredentials(OSS_SIGN_INFO *credentials)
{
    const std::unique_ptr<OSS_SIGN_INFO> owned(credentials);
    if (!credentials) {
        Q_EMIT failed(Command::refusedByService());
        return;
    }
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        Q_EMIT failed(QStringLiteral("cannot read \"%1\": %2").arg(m_path, file.errorString()));
        return;
    }
    const QByteArray bytes = file.readAll();
    if (bytes.size() != file.size())
        Q_EMIT failed(QStringLiteral("cannot read all of \"%1\"").arg(m_path));
    else
        put(*credentials, bytes);
}

void Uploader::put(const OSS_SIGN_INFO &credentials, const QByteArray &bytes)
{
    m_address = newAddress(credentials);
    if (!ServerAddress::isUsable(m_address)) {
        Q_EMIT failed(QStringLiteral("the service sent no usable address for the recording"));
        return;
    }
    const HttpResponse *response =
        HttpRequest(HttpMethod::Put, &m_client)
            .url(m_address)
            .headers({{QStringLiteral("x-security-token"), credentials.SecurityToken},
                      {QStringLiteral("Content-Type"), QStringLiteral("audio/wav")}})
            .rawBody(bytes)
            .onUploadProgress(this, &Uploader::showSent)
            .onFinished(this, &Uploader::onReply)
            .onError(this, &Uploader::onError)
            .send();
    if (!response)
        Q_EMIT failed(QStringLiteral("the recording could not be sent"));
}

void Uploader::onReply(const QByteArray &reply)
{
    const QJsonObject envelope = QJsonDocument::fromJson(reply).object();
    const QString message = envelope.value(QLatin1String("message")).toString();
    if (envelope.value(QLatin1String("code")).toInt(-1) == 0)
        Q_EMIT uploaded(m_address);
    else if (message.isEmpty())
        Q_EMIT failed(QStringLiteral("the storage refused the recording or sent no usable answer"));
    else
        Q_EMIT failed(QStringLiteral("the storage refused the recording: %1").arg(message));
}

void Uploader::onError(const QByteArray &text)
{
    Q_EMIT failed(QStringLiteral("the recording could not be uploaded: %1")
                      .arg(FailureReason::inWords(QString::fromLocal8Bit(text))));
}

void Uploader::showSent(qint64 sent, qint64 total)
{
    if (total > 0)
        m_progress->show(QStringLiteral("uploading %1 %").arg(100 * sent / total));
}
