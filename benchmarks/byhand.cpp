#include "benchmarks/contender.h"
#include "benchmarks/work.h"
#include "network/vonetwork.h"
#include "network/vonetworkintf.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QUrl>

// What a host would write instead of using the service client: the same requests with the same
// headers, and the same records.

namespace {

const struct
{
    QString category;
    DubType type;
} categories[] = {
    {QStringLiteral("超高清"), DUB_TYPE_ULTRA_HD},
    {QStringLiteral("文学"), DUB_TYPE_LITERATURE},
    {QStringLiteral("通用"), DUB_TYPE_GENERAL},
    {QStringLiteral("英文"), DUB_TYPE_FOREIGN_LANGUAGE},
    {QStringLiteral("美式英语"), DUB_TYPE_FOREIGN_LANGUAGE},
    {QStringLiteral("多语种"), DUB_TYPE_FOREIGN_LANGUAGE},
    {QStringLiteral("方言"), DUB_TYPE_DIALECT},
    {QStringLiteral("客服"), DUB_TYPE_CUSTOMER_SERVICE},
    {QStringLiteral("直播"), DUB_TYPE_LIVE_STREAMING},
    {QStringLiteral("童声"), DUB_TYPE_CHILD},
    {QStringLiteral("多情感"), DUB_TYPE_EMOTIONAL},
};

#define STORAGE "https://localhost:8443/speechdesk/voice_avatar/"
const struct
{
    QString address;
    QString file;
} avatars[] = {
    {QStringLiteral(STORAGE "%E5%A5%B301.png"), QStringLiteral("women_01.png")},
    {QStringLiteral(STORAGE "%E5%A5%B302.png"), QStringLiteral("women_02.png")},
    {QStringLiteral(STORAGE "avatar_girl.png"), QStringLiteral("avatar_girl.png")},
    {QStringLiteral(STORAGE "%E7%94%B701.png"), QStringLiteral("man_01.png")},
    {QStringLiteral(STORAGE "%E7%94%B702.png"), QStringLiteral("man_02.png")},
    {QStringLiteral(STORAGE "avatar_children.png"), QStringLiteral("avatar_children.png")},
};

DubType typeOf(const QString &category)
{
    for (const auto &known : categories) {
        if (category == known.category)
            return known.type;
    }
    return DUB_TYPE_GENERAL;
}

QString pictureOf(const QString &address)
{
    for (const auto &known : avatars) {
        if (address == known.address)
            return known.file;
    }
    return QStringLiteral("women_01.png");
}

DubInfo *voiceOf(const QJsonObject &voice)
{
    auto *info = new DubInfo; // the caller's
    info->name = voice.value(QLatin1String("name")).toString();
    info->voiceParam = voice.value(QLatin1String("voiceParam")).toString();
    info->type = voice.value(QLatin1String("type")).toString();
    info->avatar = pictureOf(voice.value(QLatin1String("avatar")).toString());
    info->category = voice.value(QLatin1String("category")).toString();
    info->dubType = typeOf(info->category);
    info->scene = voice.value(QLatin1String("scene")).toString();
    info->audition_url = voice.value(QLatin1String("audition_url")).toString();
    const QStringList features =
        voice.value(QLatin1String("supportFeature")).toString().split(QLatin1Char(','));
    info->supportTTS = features.contains(QStringLiteral("语音合成"));
    info->supportLongTTS = features.contains(QStringLiteral("长文本语音合成"));
    return info;
}

QList<DubInfo *> voicesIn(const QByteArray &reply)
{
    const QJsonObject envelope = QJsonDocument::fromJson(reply).object();
    const QJsonArray list =
        envelope.value(QLatin1String("data")).toObject().value(QLatin1String("list")).toArray();
    QList<DubInfo *> voices;
    for (const QJsonValue &voice : list)
        voices.append(voiceOf(voice.toObject()));
    return voices;
}

QByteArray deviceId()
{
    QProcess process;
    process.start(QStringLiteral("wmic"),
                  {QStringLiteral("csproduct"), QStringLiteral("get"), QStringLiteral("uuid")});
    process.waitForFinished(-1);
    return process.readAllStandardOutput().simplified();
}

class ByHand : public Contender
{
public:
    void perform(const Work &work, int count) override
    {
        for (int i = 0; i < count; ++i) {
            if (!m_manager) {
                m_deviceId = deviceId();
                m_manager = std::make_unique<QNetworkAccessManager>();
            }
            switch (work.kind) {
            case Kind::Voices:
                receive(m_manager->get(request(work)), [](const QByteArray &body) {
                    const QList<DubInfo *> voices = voicesIn(body);
                    if (voices.isEmpty())
                        qFatal("no voices");
                    qDeleteAll(voices);
                });
                break;
            case Kind::Speech:
                receive(m_manager->post(jsonRequest(work), speechBody()), readAudio);
                break;
            case Kind::Start:
                receive(m_manager->get(request(work)),
                        [](const QByteArray &body) { QJsonDocument::fromJson(body).object(); });
                m_manager.reset();
                break;
            default:
                qFatal("not a work of the service");
            }
        }
    }

private:
    QNetworkRequest request(const Work &work) const
    {
        QNetworkRequest request(QUrl(QString::fromLatin1(work.address)));
        request.setRawHeader("appcode", "40000000");
        request.setRawHeader("appversion", VoNetwork::GetAppVersion().toUtf8());
        request.setRawHeader("channelcode", "channel_360");
        request.setRawHeader("deviceid", m_deviceId);
        request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
        request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
        return request;
    }

    QNetworkRequest jsonRequest(const Work &work) const
    {
        QNetworkRequest request = this->request(work);
        request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArray("application/json"));
        return request;
    }

    static QByteArray speechBody()
    {
        const QJsonObject body{{QStringLiteral("feature"), QStringLiteral("voiceSynthesis")},
                               {QStringLiteral("text"), QStringLiteral("hello world")}};
        return QJsonDocument(body).toJson();
    }

    static void readAudio(const QByteArray &reply)
    {
        const QJsonObject envelope = QJsonDocument::fromJson(reply).object();
        const QJsonObject data = envelope.value(QLatin1String("data")).toObject();
        if (data.value(QLatin1String("audio")).toString().isEmpty())
            qFatal("no audio");
    }

    template <typename Use>
    static void receive(QNetworkReply *reply, Use use)
    {
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::errorOccurred, &loop,
                         [reply] { qFatal("%s", qPrintable(reply->errorString())); });
        QObject::connect(reply, &QNetworkReply::finished, &loop, [reply, use, &loop] {
            use(reply->readAll());
            reply->deleteLater();
            loop.quit();
        });
        loop.exec();
    }

    QByteArray m_deviceId;
    std::unique_ptr<QNetworkAccessManager> m_manager;
};

} // namespace

std::unique_ptr<Contender> makeByHand() { return std::make_unique<ByHand>(); }
