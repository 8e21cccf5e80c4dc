#include "localservice/speech/tasks.h"

#include "localservice/base/refusal.h"
#include "localservice/base/secrets.h"

namespace localservice {

Tasks::Tasks(int workers, std::chrono::seconds lifetime, const std::atomic<bool> &stopping)
    : m_lifetime(lifetime)
    , m_stopping(stopping)
    , m_workers(static_cast<std::size_t>(workers))
{
}

std::string Tasks::add(const std::string &feature, Work work)
{
    auto task = std::make_shared<Task>();
    task->feature = feature;
    std::string id = randomId();
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_workers.waiting() >= longestQueue)
        throw Refusal(Code::Busy, "too many tasks are waiting, try again later");
    m_workers.enqueue([this, task, work = std::move(work)] { workOn(*task, work); });
    m_tasks[id] = std::move(task);
    return id;
}

TaskReport Tasks::report(const std::string &id, const std::string &feature) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_tasks.find(id);
    if (found == m_tasks.end() || found->second->feature != feature || hasExpired(*found->second))
        throw Refusal(Code::NotFound, "there is no such task, or no longer");
    return found->second->report;
}

void Tasks::sweep()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (auto i = m_tasks.begin(); i != m_tasks.end();)
        i = hasExpired(*i->second) ? m_tasks.erase(i) : std::next(i);
}

bool Tasks::hasExpired(const Task &task) const
{
    const TaskState state = task.report.state;
    return (state == TaskState::Success || state == TaskState::Failed)
           && std::chrono::steady_clock::now() - task.changed >= m_lifetime;
}

void Tasks::workOn(Task &task, const Work &work)
{
    if (m_stopping)
        return;
    setReport(task, {TaskState::Running, {}, {}});
    try {
        setReport(task, {TaskState::Success, work(), {}});
    } catch (const std::exception &error) {
        setReport(task, {TaskState::Failed, {}, error.what()});
    }
}

void Tasks::setReport(Task &task, const TaskReport &report)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    task.report = report;
    task.changed = std::chrono::steady_clock::now();
}

} // namespace localservice
