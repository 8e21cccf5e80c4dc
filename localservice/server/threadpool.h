#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace localservice {

/// A few threads that work on a queue of jobs. May be used by several threads.
class ThreadPool
{
public:
    /// Begins the threads; std::system_error if there cannot be @p count.
    explicit ThreadPool(std::size_t count);

    /// Calls shutdown().
    ~ThreadPool();

    ThreadPool(const ThreadPool &) = delete;
    ThreadPool &operator=(const ThreadPool &) = delete;

    /// Puts @p job, which must not throw, at the end of the queue.
    void enqueue(std::function<void()> job);

    /// Waits until all jobs are done, and ends the threads.
    void shutdown();

    /// The number of jobs that no thread is free for.
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
