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

/// Work that is done in the background by a few threads. May be used by several threads.
class Tasks
{
public:
    /// Does the work and returns the members that its report then has besides "status". The what()
    /// of an exception says why it failed.
    using Work = std::function<nlohmann::json()>;

    static constexpr std::size_t longestQueue = 64; ///< Tasks that no thread is free for.

    /// Begins @p workers threads; std::system_error if that fails. Reports are kept for @p lifetime
    /// after the end of their task. Once @p stopping, which outlives this, is set, no further task
    /// is begun; the destructor waits for those that were.
    Tasks(int workers, std::chrono::seconds lifetime, const std::atomic<bool> &stopping);

    /// Puts @p work into the queue and returns the id of its task; Refusal if the queue is full.
    std::string add(const std::string &feature, Work work);

    /// An object whose "status" is "QUEUEING", "RUNNING", "SUCCESS" or, with "error_message",
    /// "FAILED". Refusal if there is no such task, or no longer, or it belongs to another feature.
    nlohmann::json report(const std::string &id, const std::string &feature) const;

    /// Forgets the tasks whose reports need not be kept any longer.
    void sweep();

private:
    using Clock = std::chrono::steady_clock;
    // Moving JSON never throws, although its checks of itself look as if they could.
    // NOLINTNEXTLINE(bugprone-exception-escape)
    struct Task
    {
        std::string feature;
        nlohmann::json report{{"status", "QUEUEING"}};        // guarded by m_mutex
        Clock::time_point expires = Clock::time_point::max(); // likewise
    };

    static bool hasExpired(const Task &task) { return task.expires <= Clock::now(); }
    void workOn(Task &task, const Work &work);
    void setReport(Task &task, const nlohmann::json &report, Clock::time_point expires);

    const std::chrono::seconds m_lifetime;
    const std::atomic<bool> &m_stopping;
    mutable std::mutex m_mutex;
    std::map<std::string, std::shared_ptr<Task>> m_tasks; // by id; guarded by m_mutex
    ThreadPool m_workers;                                 // waited for before the rest goes
};

} // namespace localservice
