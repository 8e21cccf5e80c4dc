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
    task->work = std::move(work);
    std::string id = randomId();
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_queue.size() >= longestQueue)
        throw Refusal(Code::Busy, "too many tasks are waiting, try again later");
    m_tasks[id] = task;
    m_queue.push_back(std::move(task));
    m_workers.enqueue([this] { workOnNext(); });
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
           && std::chrono::steady_clock::now() - task.ended >= m_lifetime;
}

void Tasks::workOnNext()
{
    const std::shared_ptr<Task> task = next();
    if (!task)
        return;
    try {
        end(*task, {TaskState::Success, task->work(), {}});
    } catch (const std::exception &error) {
        end(*task, {TaskState::Failed, {}, error.what()});
    }
}

// Null when the service is stopping.
std::shared_ptr<Tasks::Task> Tasks::next()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_stopping)
        return nullptr;
    std::shared_ptr<Task> task = std::move(m_queue.front());
    m_queue.pop_front();
    task->report.state = TaskState::Running;
    return task;
}

void Tasks::end(Task &task, const TaskReport &report)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    task.report = report;
    task.work = nullptr;
    task.ended = std::chrono::steady_clock::now();
}

} // namespace localservice
