#include "hostkit/taskjob.h"

#include "network/vonetworkintf.h"

#include <QPointer>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int firstInterval = 200;    // ms
constexpr int longestInterval = 5000; // ms

static_assert(int(STT_SUCCESS) == int(LONG_TTS_SUCCESS)
              && int(STT_PROCESSING) == int(LONG_TTS_PROCESSING));

} // namespace

QString TaskJob::task() const { return m_id; }

void TaskJob::takeUp(const QString &id) { m_id = id; }

void TaskJob::begin()
{
    if (m_id.isEmpty())
        beginAnew();
    else
        follow();
}

void TaskJob::onCreated(int status, const QString &id)
{
    if (status != STT_SUCCESS || id.isEmpty())
        return failAsTold();
    m_id = id;
    const QPointer<QObject> here(work());
    Q_EMIT named(id);
    if (here)
        follow();
}

void TaskJob::follow()
{
    m_elapsed.start();
    m_interval = firstInterval;
    wait();
}

void TaskJob::wait()
{
    QTimer::singleShot(m_interval, work(),
                       [this] { withToken([this](qint64 token) { askAfter(m_id, token); }); });
    m_interval = std::min(m_interval * 3 / 2, longestInterval);
    Q_EMIT progressed(Stage::Working, m_elapsed.elapsed() / 1000, 0);
}

void TaskJob::onProcessing()
{
    const QPointer<QObject> here(work());
    Q_EMIT processing();
    if (here)
        wait();
}

// A task that has failed comes with its identifier; a question that has failed comes with none.
void TaskJob::onStatus(int status, const QString &id, const QString &result)
{
    if (status == STT_PROCESSING)
        onProcessing();
    else if (status == STT_SUCCESS)
        onResult(result);
    else if (id.isEmpty())
        failAsTold();
    else
        fail({Reason::Kind::Refused, tr("the service could not carry out the task")});
}
