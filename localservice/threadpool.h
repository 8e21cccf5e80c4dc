#pragma once

#include <httplib.h>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace localservice {

/// A few threads that work on a queue. Unlike the library's own, it can fail to be made, and it may
/// be destroyed without having been shut down.
class ThreadPool final : public httplib::TaskQueue
{
public:
    /// std::system_error if there cannot be @p count threads; there is none then.
    explicit ThreadPool(std::size_t count);
    ~ThreadPool() override;

    ThreadPool(const ThreadPool &) = delete;
    ThreadPool &operator=(const ThreadPool &) = delete;

    /// @p job must not throw.
    void enqueue(std::function<void()> job) override;

    /// Waits until the whole queue has been worked on.
    void shutdown() override;

private:
    void work();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_queue; // guarded by m_mutex
    bool m_ending = false;                     // likewise
    std::vector<std::thread> m_threads;
};

} // namespace localservice
