#include "gallery/catalogue.h"

#include "common/desk.h"
#include "hostkit/cataloguejobs.h"
#include "hostkit/fetchjob.h"

#include <QCryptographicHash>
#include <QFileInfo>

namespace {

constexpr int patience = 30000; // ms

} // namespace

Catalogue::Catalogue(Desk *desk)
    : QObject(desk)
    , m_desk(desk)
{
}

void Catalogue::load()
{
    if (m_pending > 0)
        return;
    m_pending = 2;
    const auto end = [this] {
        if (--m_pending == 0)
            Q_EMIT loaded();
    };
    const auto fail = [this, end](const Reason &reason) {
        Q_EMIT failed(reason.line());
        end();
    };
    auto *voices = new VoicesJob(m_desk->kit(), this);
    connect(voices, &VoicesJob::succeeded, this, [=](const QVector<DubInfo> &list) {
        m_voices.setVoices(list);
        m_hasVoices = true;
        end();
    });
    auto *music = new MusicJob(m_desk->kit(), this);
    connect(music, &MusicJob::succeeded, this, [=](const QVector<BgmInfo> &list) {
        m_music = list;
        QStringList names;
        for (const BgmInfo &track : list)
            names.append(track.name);
        m_musicNames.setStringList(names);
        end();
    });
    for (Job *job : {static_cast<Job *>(voices), static_cast<Job *>(music)}) {
        connect(job, &Job::failed, this, fail);
        job->setTimeout(patience);
    }
    m_desk->run(voices, tr("List of voices"));
    m_desk->run(music, tr("List of music"));
}

VoiceModel *Catalogue::voices() { return &m_voices; }

bool Catalogue::hasVoices() const { return m_hasVoices; }

QAbstractItemModel *Catalogue::music() { return &m_musicNames; }

QString Catalogue::musicAddress(int row) const { return m_music.value(row).url; }

void Catalogue::fetch(const QString &address, QObject *context, const Done &done)
{
    const QByteArray name =
        QCryptographicHash::hash(address.toUtf8(), QCryptographicHash::Sha1).toHex();
    const QString path = m_folder.filePath(QString::fromLatin1(name));
    if (QFileInfo::exists(path))
        return done(path, {});
    QVector<Waiting> &waiting = m_fetches[address];
    waiting.append({context, done});
    if (waiting.size() > 1)
        return;
    auto *job = new FetchJob(address, path, false, this);
    job->setTimeout(patience);
    connect(job, &FetchJob::succeeded, this, [=] { endFetch(address, path, {}); });
    connect(job, &Job::failed, this,
            [=](const Reason &reason) { endFetch(address, {}, reason.line()); });
    m_desk->run(job, tr("Recording of the catalogue"));
}

void Catalogue::endFetch(const QString &address, const QString &path, const QString &problem)
{
    const QVector<Waiting> all = m_fetches.take(address);
    for (const Waiting &waiting : all) {
        if (waiting.context)
            waiting.done(path, problem);
    }
}
