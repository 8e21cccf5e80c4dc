#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace localservice {

/// A few threads that work on a queue.
class ThreadPool
{
public:
    /// std::system_error if there cannot be @p count threads; there is none then.
    explicit ThreadPool(std::size_t count);
    ~ThreadPool();

    ThreadPool(const ThreadPool &) = delete;
    ThreadPool &operator=(const ThreadPool &) = delete;

    /// @p job must not throw.
    void enqueue(std::function<void()> job);

    /// Waits until the whole queue has been worked on.
    void shutdown();

    /// The jobs that no thread is free for.
    std::size_t waiting();

private:
    void work();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_queue; // guarded by m_mutex
    std::size_t m_idle = 0;                    // threads; likewise
    bool m_ending = false;                     // likewise
    std::vector<std::thread> m_threads;
};

} // namespace localservice
