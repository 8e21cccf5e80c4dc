#pragma once

#include "localservice/server/threadpool.h"

#include <nlohmann/json.hpp>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace localservice {

enum class TaskState {
    Queueing, ///< No worker has begun it.
    Running,
    Success, ///< It has ended and there is a result.
    Failed,  ///< It has ended and there is a message.
};

/// How far a task has come.
// Moving JSON never throws, although its checks of itself look as if they could.
// NOLINTNEXTLINE(bugprone-exception-escape)
struct TaskReport
{
    TaskState state = TaskState::Queueing;
    nlohmann::json result;    ///< Of a success: the members that its reply has besides the usual.
    std::string errorMessage; ///< Of a failure.
};

/// Work that is done in the background by a few threads. May be used by several threads.
class Tasks
{
public:
    /// Returns the result; an exception is a failure and its what() the message.
    using Work = std::function<nlohmann::json()>;

    static constexpr std::size_t longestQueue = 64;

    /// Results are kept for @p lifetime after their end. Once @p stopping is set, no further task
    /// is begun; the end of this object waits for those that were. std::system_error if there
    /// cannot be as many @p workers.
    Tasks(int workers, std::chrono::seconds lifetime, const std::atomic<bool> &stopping);

    /// Puts @p work into the queue and returns the id of its task; Refusal if the queue is full.
    std::string add(const std::string &feature, Work work);

    /// Refusal if there is no such task, or no longer, or it belongs to another feature.
    TaskReport report(const std::string &id, const std::string &feature) const;

    /// Forgets the tasks whose lifetime is over.
    void sweep();

private:
    struct Task
    {
        std::string feature;
        TaskReport report;                             // guarded by m_mutex
        std::chrono::steady_clock::time_point changed; // when the report did; likewise
    };

    bool hasExpired(const Task &task) const;
    void workOn(Task &task, const Work &work);
    void setReport(Task &task, const TaskReport &report);

    const std::chrono::seconds m_lifetime;
    const std::atomic<bool> &m_stopping;
    mutable std::mutex m_mutex;
    std::map<std::string, std::shared_ptr<Task>> m_tasks; // by id; guarded by m_mutex
    ThreadPool m_workers;                                 // waited for before the rest goes
};

} // namespace localservice
