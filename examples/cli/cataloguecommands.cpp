#include "cataloguecommands.h"

#include "console.h"
#include "hostkit/cataloguejobs.h"
#include "table.h"

#include <QJsonArray>

namespace {

QString yesOrNo(bool yes) { return yes ? QStringLiteral("yes") : QStringLiteral("no"); }

QString voiceTable(const QVector<DubInfo> &voices)
{
    Table table({QStringLiteral("NAME"), QStringLiteral("VOICE"), QStringLiteral("CATEGORY"),
                 QStringLiteral("SCENE"), QStringLiteral("SHORT"), QStringLiteral("LONG")});
    for (const DubInfo &voice : voices)
        table.add({voice.name, voice.voiceParam, voice.category, voice.scene,
                   yesOrNo(voice.supportTTS), yesOrNo(voice.supportLongTTS)});
    return table.text();
}

QJsonObject voiceDocument(const QVector<DubInfo> &voices)
{
    QJsonArray list;
    for (const DubInfo &voice : voices)
        list.append(QJsonObject{{QStringLiteral("name"), voice.name},
                                {QStringLiteral("voice"), voice.voiceParam},
                                {QStringLiteral("type"), voice.type},
                                {QStringLiteral("category"), voice.category},
                                {QStringLiteral("scene"), voice.scene},
                                {QStringLiteral("avatar"), voice.avatar},
                                {QStringLiteral("sampleUrl"), voice.audition_url},
                                {QStringLiteral("shortSynthesis"), voice.supportTTS},
                                {QStringLiteral("longSynthesis"), voice.supportLongTTS}});
    return {{QStringLiteral("voices"), list}};
}

QString musicTable(const QVector<BgmInfo> &tracks)
{
    Table table({QStringLiteral("NAME"), QStringLiteral("ADDRESS")});
    for (const BgmInfo &track : tracks)
        table.add({track.name, track.url});
    return table.text();
}

QJsonObject musicDocument(const QVector<BgmInfo> &tracks)
{
    QJsonArray list;
    for (const BgmInfo &track : tracks)
        list.append(
            QJsonObject{{QStringLiteral("name"), track.name}, {QStringLiteral("url"), track.url}});
    return {{QStringLiteral("music"), list}};
}

QString updateText(const Update &update)
{
    if (update.state == Update::State::UpToDate)
        return QStringLiteral("%1 is the newest version\n").arg(update.currentVersion);
    QString text = update.state == Update::State::NewerIsNeeded
                       ? QStringLiteral("%1 is needed in place of %2\n")
                       : QStringLiteral("%1 is there, newer than %2\n");
    text = text.arg(Console::onOneLine(update.version), update.currentVersion);
    for (const QString &change : update.changes)
        text += QStringLiteral("  %1\n").arg(Console::onOneLine(change));
    return text + Console::onOneLine(update.address) + QLatin1Char('\n');
}

QJsonObject updateDocument(const Update &update)
{
    QJsonArray changes;
    for (const QString &change : update.changes)
        changes.append(Console::onOneLine(change));
    return {{QStringLiteral("status"), qint32(update.state)},
            {QStringLiteral("currentVersion"), update.currentVersion},
            {QStringLiteral("version"), update.version},
            {QStringLiteral("changes"), changes},
            {QStringLiteral("url"), update.address}};
}

// A list that is empty may have been refused without a reason.
Reason refusedOrNone()
{
    return {Reason::Kind::BadAnswer,
            QStringLiteral("the service refused or has none (run with --verbose to see why)")};
}

} // namespace

void VoiceList::start()
{
    auto *job = new VoicesJob(kit(), this);
    connect(job, &VoicesJob::succeeded, this, [this](const QVector<DubInfo> &voices) {
        if (voices.isEmpty())
            Q_EMIT failed(refusedOrNone());
        else
            finish(voiceTable(voices), voiceDocument(voices));
    });
    run(job);
}

void MusicList::start()
{
    auto *job = new MusicJob(kit(), this);
    connect(job, &MusicJob::succeeded, this, [this](const QVector<BgmInfo> &tracks) {
        if (tracks.isEmpty())
            Q_EMIT failed(refusedOrNone());
        else
            finish(musicTable(tracks), musicDocument(tracks));
    });
    run(job);
}

void UpdateCheck::start()
{
    auto *job = new UpdateJob(kit(), this);
    connect(job, &UpdateJob::succeeded, this,
            [this](const Update &update) { finish(updateText(update), updateDocument(update)); });
    run(job);
}
