#include "terminal/jobprogress.h"

#include "hostkit/hostkit.h"
#include "terminal/progress.h"

namespace {

constexpr int mostSilence = 2000; // ms

QString lineOf(Job::Stage stage, qint64 done, qint64 total, const QString &asking)
{
    switch (stage) {
    case Job::Stage::Uploading:
        return QStringLiteral("uploading %1 %").arg(100 * done / total);
    case Job::Stage::Working:
        return done == 0 ? QStringLiteral("queued")
                         : QStringLiteral("queued or running, %1 s").arg(done);
    case Job::Stage::WaitingForUser:
        return QStringLiteral("waiting, %1 s left").arg(qMax<qint64>(total - done, 0));
    case Job::Stage::Asking:
    case Job::Stage::Fetching:
        break;
    }
    return asking;
}

} // namespace

JobProgress::JobProgress(Progress *progress, const QString &asking, QObject *parent)
    : QObject(parent)
    , m_progress(progress)
    , m_asking(asking)
{
    m_silence.setSingleShot(true);
    connect(&m_silence, &QTimer::timeout, this, &JobProgress::showWaiting);
    m_silence.start(mostSilence);
}

void JobProgress::showWaiting()
{
    m_progress->show(
        QStringLiteral("waiting for %1 (Ctrl-C ends this)").arg(HostKit::serviceAddress()));
}

void JobProgress::show(Job::Stage stage, qint64 done, qint64 total)
{
    if (stage == Job::Stage::WaitingForUser && total == 0)
        return m_silence.stop(); // the command has a question of its own
    if (stage != Job::Stage::Fetching) {
        const QString line = lineOf(stage, done, total, m_asking);
        if (!line.isEmpty()) {
            m_silence.stop();
            m_progress->show(line);
        } else if (!m_silence.isActive()) {
            m_progress->clear();
            m_silence.start(mostSilence);
        }
        return;
    }
    m_silence.stop();
    if (!m_transfer || done < m_transferBegan) {
        m_transferBegan = done;
        m_transfer.emplace(done, total);
    }
    m_progress->show(m_transfer->line(done - m_transferBegan));
}
