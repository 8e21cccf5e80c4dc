// The samples of docs/host-guide.md.

#include "http/httpclient.h"
#include "http/httprequest.h"
#include "network/vonetwork.h"
#include "network/vonetworkintf.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QNetworkProxy>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QTimer>
#include <QUuid>

#include <functional>
#include <memory>

struct Release
{
    void operator()(VoNetworkIntf *service) const { VoNetwork::ReleaseVoNetwork(service); }
};
using Service = std::unique_ptr<VoNetworkIntf, Release>;

Service makeService() { return Service(VoNetwork::CreateVoNetworkIntf()); }

bool trust(const QString &authorityFile)
{
    const QList<QSslCertificate> authority = QSslCertificate::fromPath(authorityFile);
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setCaCertificates(QSslConfiguration::systemCaCertificates() + authority);
    QSslConfiguration::setDefaultConfiguration(tls);
    return !authority.isEmpty();
}

void useProxy(const QString &user, const QString &password)
{
    QNetworkProxy::setApplicationProxy(
        {QNetworkProxy::HttpProxy, QStringLiteral("proxy.example"), 3128, user, password});
}

void silence() { QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false")); }

void speak(VoNetworkIntf *service, const QString &text, qint64 token)
{
    TTSParams params;
    params.text = text;
    params.format = QStringLiteral("wav");
    params.sample_rate = 16000;
    params.voice = QStringLiteral("rms"); // DubInfo::voiceParam
    params.volume = 50;
    service->TTS(&params, false, token);
}

void saveSpeech(VoNetworkIntf *service, const QString &path)
{
    QObject::connect(service, &VoNetworkIntf::signalTTSRet, service,
                     [path](TTS_STATUS status, const QString &audioBase64) {
                         const QByteArray audio = QByteArray::fromBase64(audioBase64.toLatin1());
                         QFile file(path);
                         if (status == TTS_SUCCESS && file.open(QFile::WriteOnly))
                             file.write(audio);
                     });
}

void fetchLongSpeech(VoNetworkIntf *service, const QString &path)
{
    QObject::connect(
        service, &VoNetworkIntf::signalGetLongTTSResult, service,
        [service, path](LONG_TTS_STATUS status, const QString &, const QString &,
                        const QString &audioUrl) {
            if (status == LONG_TTS_SUCCESS && service->DownloadLongTTSRet(audioUrl, path))
                qInfo() << "written:" << path;
        },
        Qt::QueuedConnection); // the download waits, and the reply that brought the address ends
                               // first
}

void upload(const OSS_SIGN_INFO &credentials, const QByteArray &recording, HttpClient *client,
            const std::function<void(const QString &address)> &done)
{
    const QString name = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const QString address =
        QStringLiteral("%1/%2/%3/%4.wav")
            .arg(credentials.endpoint, credentials.bucketName, credentials.dir, name);
    HttpRequest(HttpMethod::Put, client)
        .url(address)
        .headers({{QStringLiteral("x-security-token"), credentials.SecurityToken},
                  {QStringLiteral("Content-Type"), QStringLiteral("audio/wav")}})
        .rawBody(recording)
        .timeout(60000)
        .onFinished([done, address] { done(address); })
        .onError([done] { done(QString()); })
        .send();
}

void recognizeRecording(VoNetworkIntf *service, HttpClient *client, const QByteArray &recording,
                        qint64 token)
{
    QObject::connect(service, &VoNetworkIntf::signalGetOssSign, service, [=](OSS_SIGN_INFO *info) {
        const std::unique_ptr<OSS_SIGN_INFO> credentials(info);
        if (!credentials)
            return;
        upload(*credentials, recording, client, [service, token](const QString &address) {
            if (!address.isEmpty())
                service->ShortSTT(address, token, QStringLiteral("guide"));
        });
    });
    service->GetOssSign();
}

void followRecognition(VoNetworkIntf *service, qint64 token)
{
    const auto askSoon = [service, token](const QString &task) {
        QTimer::singleShot(1000, service, [=] { service->GetSTTTaskResult(task, token); });
    };
    QObject::connect(service, &VoNetworkIntf::signalCreateSTTTask, service,
                     [askSoon](STT_STATUS status, const QString &task) {
                         if (status == STT_SUCCESS && !task.isEmpty())
                             askSoon(task);
                     });
    QObject::connect(
        service, &VoNetworkIntf::signalGetSTTResult, service,
        [askSoon](STT_STATUS status, const QString &task, const QString &, const QString &text) {
            if (status == STT_PROCESSING)
                askSoon(task);
            else if (status == STT_SUCCESS)
                qInfo() << text;
            else
                qWarning() << (task.isEmpty() ? "the question failed" : "the task failed");
        });
}

QStringList voiceNames(VoNetworkIntf *service)
{
    QStringList names;
    const QList<DubInfo *> voices = service->GetDubList();
    for (const DubInfo *voice : voices)
        names.append(voice->name);
    qDeleteAll(voices);
    return names;
}

QList<DubInfo *> voicesSoon(VoNetworkIntf *service)
{
    QTimer limit;
    limit.setSingleShot(true);
    QObject::connect(&limit, &QTimer::timeout, service,
                     [service] { VoNetwork::ReleaseVoNetwork(service); });
    limit.start(20000);
    return service->GetDubList(); // empty after the limit, and service is gone
}

void signInByCode(VoNetworkIntf *service)
{
    QDir(QDir::tempPath()).mkpath(QStringLiteral("VoTTS")); // without it there is no answer
    QObject::connect(
        service, &VoNetworkIntf::signalGetLoginQrCodeEnd, service, [service](LoginQrCode *info) {
            const std::unique_ptr<LoginQrCode> code(info);
            if (!code || QFileInfo(code->qrImagePath).size() == 0)
                return; // no code, or none of its picture
            qInfo() << "scan" << code->qrImagePath << "before" << code->expire_time;
            service->GetLoginQrCodeStatus(code->business_code); // and again until there is a user
        });
    service->GetLoginQrCode();
}

void onSignedIn(VoNetworkIntf *service, const std::function<void(qint64 token)> &use)
{
    QObject::connect(service, &VoNetworkIntf::signalSmsLoginEnd, service, [use](UserInfo *info) {
        const std::unique_ptr<UserInfo> user(info);
        if (user)
            use(user->token);
    });
}

QDateTime asTheServiceMeant(QDateTime time)
{
    time.setOffsetFromUtc(8 * 3600); // the service writes its times in UTC+8
    return time;
}
