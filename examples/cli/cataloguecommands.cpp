#include "cataloguecommands.h"

#include "console.h"
#include "hostkit/failurereason.h"
#include "network/vonetworkintf.h"
#include "table.h"

#include <QJsonArray>
#include <QtAlgorithms>

namespace {

QString yesOrNo(bool yes) { return yes ? QStringLiteral("yes") : QStringLiteral("no"); }

QString voiceTable(const QList<DubInfo *> &voices)
{
    Table table({QStringLiteral("NAME"), QStringLiteral("VOICE"), QStringLiteral("CATEGORY"),
                 QStringLiteral("SCENE"), QStringLiteral("SHORT"), QStringLiteral("LONG")});
    for (const DubInfo *voice : voices)
        table.add({voice->name, voice->voiceParam, voice->category, voice->scene,
                   yesOrNo(voice->supportTTS), yesOrNo(voice->supportLongTTS)});
    return table.text();
}

QJsonObject voiceDocument(const QList<DubInfo *> &voices)
{
    QJsonArray list;
    for (const DubInfo *voice : voices)
        list.append(QJsonObject{{QStringLiteral("name"), voice->name},
                                {QStringLiteral("voice"), voice->voiceParam},
                                {QStringLiteral("type"), voice->type},
                                {QStringLiteral("category"), voice->category},
                                {QStringLiteral("scene"), voice->scene},
                                {QStringLiteral("avatar"), voice->avatar},
                                {QStringLiteral("sampleUrl"), voice->audition_url},
                                {QStringLiteral("shortSynthesis"), voice->supportTTS},
                                {QStringLiteral("longSynthesis"), voice->supportLongTTS}});
    return {{QStringLiteral("voices"), list}};
}

QString musicTable(const QList<BgmInfo *> &tracks)
{
    Table table({QStringLiteral("NAME"), QStringLiteral("ADDRESS")});
    for (const BgmInfo *track : tracks)
        table.add({track->name, track->url});
    return table.text();
}

QJsonObject musicDocument(const QList<BgmInfo *> &tracks)
{
    QJsonArray list;
    for (const BgmInfo *track : tracks)
        list.append(QJsonObject{{QStringLiteral("name"), track->name},
                                {QStringLiteral("url"), track->url}});
    return {{QStringLiteral("music"), list}};
}

// The values on which the service and its hosts have agreed.
enum UpgradeStatus : qint32 { UpToDate = 0, NewerIsThere = 1, NewerIsNeeded = 2 };

// The library indents the changes and puts each on a line of its own.
QStringList changesIn(const UpdateInfo &info)
{
    QStringList changes = info.external_update_log.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (QString &change : changes)
        change = Console::onOneLine(change);
    return changes;
}

QString updateText(const UpdateInfo &info)
{
    if (info.upgradeStatus == UpToDate)
        return QStringLiteral("%1 is the newest version\n").arg(info.currentVersion);
    QString text = info.upgradeStatus == NewerIsNeeded
                       ? QStringLiteral("%1 is needed in place of %2\n")
                       : QStringLiteral("%1 is there, newer than %2\n");
    text = text.arg(Console::onOneLine(info.version_code), info.currentVersion);
    const QStringList changes = changesIn(info);
    for (const QString &change : changes)
        text += QStringLiteral("  %1\n").arg(change);
    return text + Console::onOneLine(info.url) + QLatin1Char('\n');
}

QJsonObject updateDocument(const UpdateInfo &info)
{
    return {{QStringLiteral("status"), info.upgradeStatus},
            {QStringLiteral("currentVersion"), info.currentVersion},
            {QStringLiteral("version"), info.version_code},
            {QStringLiteral("changes"), QJsonArray::fromStringList(changesIn(info))},
            {QStringLiteral("url"), info.url}};
}

// A list that is empty may have been refused; the service object does not say.
QString refusedOrNone()
{
    return FailureReason::orElse(
        QStringLiteral("the service refused or has none (run with --verbose to see why)"));
}

} // namespace

void VoiceList::start()
{
    const QList<DubInfo *> voices = service()->GetDubList();
    if (voices.isEmpty())
        Q_EMIT failed(refusedOrNone());
    else
        finish(voiceTable(voices), voiceDocument(voices));
    qDeleteAll(voices);
}

void MusicList::start()
{
    const QList<BgmInfo *> tracks = service()->GetBgmList();
    if (tracks.isEmpty())
        Q_EMIT failed(refusedOrNone());
    else
        finish(musicTable(tracks), musicDocument(tracks));
    qDeleteAll(tracks);
}

void UpdateCheck::start()
{
    // The library never frees the last record. A leak checker overlooks what a static points to.
    static const UpdateInfo *info;
    info = service()->GetUpdateInfo();
    if (!info)
        Q_EMIT failed(refusedOrNone());
    else if (info->upgradeStatus < UpToDate || info->upgradeStatus > NewerIsNeeded)
        Q_EMIT failed(QStringLiteral("the service sent no usable answer"));
    else
        finish(updateText(*info), updateDocument(*info));
}
