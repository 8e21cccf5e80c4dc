#include "commands/catalogue.h"

#include "audio/player.h"
#include "hostkit/cataloguejobs.h"
#include "hostkit/fetchjob.h"
#include "hostkit/serveraddress.h"
#include "terminal/console.h"
#include "terminal/progress.h"
#include "terminal/table.h"
#include "terminal/terminal.h"

#include <QJsonArray>

#include <algorithm>

namespace {

QString yesOrNo(bool yes) { return yes ? QStringLiteral("yes") : QStringLiteral("no"); }

QString voiceTable(const QVector<DubInfo> &voices)
{
    Table table({QStringLiteral("NAME"), QStringLiteral("VOICE"), QStringLiteral("CATEGORY"),
                 QStringLiteral("SCENE"), QStringLiteral("SHORT"), QStringLiteral("LONG")});
    for (const DubInfo &voice : voices)
        table.add({voice.name, voice.voiceParam, voice.category, voice.scene,
                   yesOrNo(voice.supportTTS), yesOrNo(voice.supportLongTTS)});
    return table.fitting(Terminal::columns(stdout));
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
    return table.fitting(Terminal::columns(stdout));
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

QString VoiceList::read(Options &options)
{
    const bool isNamed = !options.subjects.isEmpty() && !options.subjects.at(0).isEmpty();
    if (options.play && !isNamed)
        return QStringLiteral("--play needs the name of a voice");
    if (options.play && options.json)
        return QStringLiteral("--play prints nothing and does not go with --json");
    if (!options.play && !options.subjects.isEmpty())
        return QStringLiteral("voices takes an argument with --play only");
    return {};
}

QString VoiceList::prepare(Options &options)
{
    return options.play ? Player::problem() : QString();
}

void VoiceList::start()
{
    auto *job = new VoicesJob(kit(), this);
    connect(job, &VoicesJob::succeeded, this, [this](const QVector<DubInfo> &voices) {
        if (voices.isEmpty())
            Q_EMIT failed(refusedOrNone());
        else
            list(voices);
    });
    run(job);
}

void VoiceList::list(const QVector<DubInfo> &voices)
{
    if (!options().play)
        return finish(voiceTable(voices), voiceDocument(voices));
    const QString wanted = options().subjects.at(0);
    const auto voice = std::find_if(voices.begin(), voices.end(), [&wanted](const DubInfo &voice) {
        return voice.voiceParam == wanted || voice.name == wanted;
    });
    if (voice == voices.end() || !ServerAddress::isUsable(voice->audition_url))
        Q_EMIT failed({Reason::Kind::Unusable,
                       QStringLiteral("there is no voice \"%1\" with a sample").arg(wanted)});
    else
        fetch(voice->audition_url);
}

void VoiceList::fetch(const QString &sample)
{
    auto *job = new FetchJob(sample, m_folder.filePath(QStringLiteral("sample")), false, this);
    connect(job, &FetchJob::succeeded, this, &VoiceList::play);
    run(job);
}

void VoiceList::play(const QString &path)
{
    progress()->clear();
    auto *player = new Player(this);
    connect(player, &Player::ended, this, [this](const QString &problem) {
        if (problem.isEmpty())
            Q_EMIT ended(Success);
        else
            Q_EMIT failed({Reason::Kind::File, problem});
    });
    player->play(path);
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
