#include "network/buildconstants.h"
#include "network/filefetch.h"
#include "network/servicelog.h"
#include "network/serviceoperation.h"
#include "network/vonetworker.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QPointer>
#include <QStringView>
#include <QVector>

namespace {

constexpr ServiceOperation getDubList{HttpMethod::Get, convertServicePrefix, "asr/getVoice",
                                      "GetDubList"};
constexpr ServiceOperation getBgmList{HttpMethod::Get, convertServicePrefix,
                                      "asr/getBackgroundMusic", "GetBgmList"};

// What the service calls the two kinds of synthesis among the features of a voice.
constexpr QStringView shortSynthesis = u"语音合成";
constexpr QStringView longSynthesis = u"长文本语音合成";

constexpr struct
{
    QStringView category;
    DubType type = DUB_TYPE_UNSET;
} categories[] = {
    {u"超高清", DUB_TYPE_ULTRA_HD},
    {u"文学", DUB_TYPE_LITERATURE},
    {u"通用", DUB_TYPE_GENERAL},
    {u"英文", DUB_TYPE_FOREIGN_LANGUAGE},
    {u"美式英语", DUB_TYPE_FOREIGN_LANGUAGE},
    {u"多语种", DUB_TYPE_FOREIGN_LANGUAGE},
    {u"方言", DUB_TYPE_DIALECT},
    {u"客服", DUB_TYPE_CUSTOMER_SERVICE},
    {u"直播", DUB_TYPE_LIVE_STREAMING},
    {u"童声", DUB_TYPE_CHILD},
    {u"多情感", DUB_TYPE_EMOTIONAL},
};

constexpr QStringView defaultPicture = u"women_01.png";

// The stock pictures: their paths on the storage host, and the host's files for them.
constexpr struct
{
    QStringView path; // percent-encoded as the service sends it
    QStringView file;
} avatars[] = {
    {u"/speechdesk/voice_avatar/%E5%A5%B301.png", u"women_01.png"},
    {u"/speechdesk/voice_avatar/%E5%A5%B302.png", u"women_02.png"},
    {u"/speechdesk/voice_avatar/avatar_girl.png", u"avatar_girl.png"},
    {u"/speechdesk/voice_avatar/%E7%94%B701.png", u"man_01.png"},
    {u"/speechdesk/voice_avatar/%E7%94%B702.png", u"man_02.png"},
    {u"/speechdesk/voice_avatar/avatar_children.png", u"avatar_children.png"},
};

/// Whether @p list, whose parts are separated by commas, has @p part.
bool hasPart(QStringView list, QStringView part)
{
    for (auto end = list.indexOf(QLatin1Char(',')); end >= 0;
         end = list.indexOf(QLatin1Char(','))) {
        if (list.left(end) == part)
            return true;
        list = list.mid(end + 1);
    }
    return list == part;
}

BgmInfo *bgmInfoFrom(const QJsonObject &track)
{
    auto *info = new BgmInfo; // the caller's of GetBgmList()
    info->name = track.value(QLatin1String("name")).toString();
    info->url = track.value(QLatin1String("url")).toString();
    return info;
}

} // namespace

QList<DubInfo *> VoNetworker::GetDubList()
{
    ServiceLog::begin("VoNetworker::GetDubList");
    dubList = {};
    issue(getDubList, commonHeaders(), {});
    return waitForAnswer() ? dubList : QList<DubInfo *>();
}

void VoNetworker::slotGetDubListSuc(QByteArray jsonStr)
{
    if (auto data = dataOf(&jsonStr, getDubList)) {
        QJsonArray voices = data->toObject().value(QLatin1String("list")).toArray();
        data.reset(); // the voices have no other owner now, so each goes when it is replaced
        dubList.reserve(voices.size());
        for (int i = 0; i < voices.size(); ++i) {
            dubList.append(dubInfoFrom(voices.at(i).toObject()));
            voices.replace(i, QJsonValue()); // its memory serves the next record
        }
    }
    endWait();
}

void VoNetworker::slotGetDubListFail(QByteArray failInfo)
{
    ServiceLog::failure(getDubList, failInfo);
    endWait();
}

QList<BgmInfo *> VoNetworker::GetBgmList()
{
    bgmList = {};
    ServiceLog::begin("VoNetworker::GetBgmList");
    issue(getBgmList, commonHeaders(), {});
    return waitForAnswer() ? bgmList : QList<BgmInfo *>();
}

void VoNetworker::slotGetBgmListSuc(QByteArray jsonStr)
{
    if (const auto data = dataOf(&jsonStr, getBgmList)) {
        const QJsonArray tracks = data->toArray(); // voices are a level deeper, in "list"
        for (const QJsonValue &track : tracks)
            bgmList.append(bgmInfoFrom(track.toObject()));
    }
    endWait();
}

void VoNetworker::slotGetBgmListFail(QByteArray failInfo)
{
    ServiceLog::failure(getBgmList, failInfo);
    endWait();
}

DubInfo *VoNetworker::dubInfoFrom(const QJsonObject &voice)
{
    auto *info = new DubInfo; // the caller's of GetDubList()
    info->name = voice.value(QLatin1String("name")).toString();
    info->voiceParam = voice.value(QLatin1String("voiceParam")).toString();
    info->type = voice.value(QLatin1String("type")).toString();
    info->avatar = ConvertAvtUrlToClient(voice.value(QLatin1String("avatar")).toString());
    info->category = voice.value(QLatin1String("category")).toString();
    info->dubType = ConvertServerToClientDubType(info->category);
    info->scene = voice.value(QLatin1String("scene")).toString();
    info->audition_url = voice.value(QLatin1String("audition_url")).toString();
    const QString features = voice.value(QLatin1String("supportFeature")).toString();
    info->supportTTS = hasPart(features, shortSynthesis);
    info->supportLongTTS = hasPart(features, longSynthesis);
    return info;
}

DubType VoNetworker::ConvertServerToClientDubType(QString category)
{
    for (const auto &known : categories) {
        if (category == known.category)
            return known.type;
    }
    return DUB_TYPE_GENERAL;
}

QString VoNetworker::ConvertAvtUrlToClient(QString url)
{
    const QLatin1String scheme("https://");
    const QLatin1String host(BuildConstants::avatarStorageHost);
    const QStringView address(url);
    if (address.startsWith(scheme) && address.mid(scheme.size()).startsWith(host)) {
        const QStringView path = address.mid(scheme.size() + host.size());
        for (const auto &known : avatars) {
            if (path == known.path)
                return known.file.toString();
        }
    }
    return defaultPicture.toString();
}

QString VoNetworker::DownloadAvt(QString url, QString savePath)
{
    constexpr const char *tag = "VoNetworker::DownloadAvt";
    ServiceLog::beginDownload(tag, "url=", url, ",savePath=", savePath);
    const QPointer<VoNetworker> self(this);
    const FileFetch::Result picture = FileFetch::fetch(url, tag);
    // The signal of sign-in codes reports every picture that cannot be fetched, this one too.
    if (self && picture.error != QNetworkReply::NoError)
        Q_EMIT signalGetLoginQrCodeEnd(nullptr);
    return FileFetch::save(picture.body, savePath, tag, "open file error,") ? savePath : QString();
}
