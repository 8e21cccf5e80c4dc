#include "task.h"

#include "command.h"
#include "network/vonetworkintf.h"
#include "progress.h"
#include "tokenkeeper.h"

#include <algorithm>

namespace {

constexpr int firstInterval = 200;    // ms
constexpr int longestInterval = 5000; // ms

static_assert(int(STT_SUCCESS) == int(LONG_TTS_SUCCESS)
              && int(STT_PROCESSING) == int(LONG_TTS_PROCESSING));

} // namespace

Task::Task(const Tools &tools)
    : m_tools(tools)
    , m_interval(firstInterval)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this,
            [this] { m_tools.tokens->give([this](qint64 token) { Q_EMIT due(m_id, token); }); });
    m_elapsed.start();
}

void Task::onCreated(int status, const QString &id)
{
    if (status != STT_SUCCESS || id.isEmpty()) {
        Q_EMIT failed(Command::refusedByService());
        return;
    }
    m_id = id;
    m_tools.progress->show(QStringLiteral("queued"));
    wait();
}

void Task::onStatus(int status, const QString &, const QString &, const QString &result)
{
    if (status == STT_PROCESSING) {
        m_tools.progress->show(
            QStringLiteral("queued or running, %1 s").arg(m_elapsed.elapsed() / 1000));
        wait();
    } else if (status == STT_SUCCESS) {
        Q_EMIT succeeded(result);
    } else {
        Q_EMIT failed(Command::refusedByService());
    }
}

void Task::wait()
{
    m_timer.start(m_interval);
    m_interval = std::min(m_interval * 3 / 2, longestInterval);
}
