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

nlohmann::json Tasks::report(const std::string &id, const std::string &feature) const
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

void Tasks::workOn(Task &task, const Work &work)
{
    if (m_stopping)
        return;
    setReport(task, {{"status", "RUNNING"}}, Clock::time_point::max());
    nlohmann::json report{{"status", "SUCCESS"}};
    try {
        report.update(work());
    } catch (const std::exception &error) {
        report = {{"status", "FAILED"}, {"error_message", error.what()}};
    }
    setReport(task, report, Clock::now() + m_lifetime);
}

void Tasks::setReport(Task &task, const nlohmann::json &report, Clock::time_point expires)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    task.report = report;
    task.expires = expires;
}

} // namespace localservice
