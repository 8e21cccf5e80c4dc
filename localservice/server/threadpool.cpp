#include "localservice/server/threadpool.h"

#include <algorithm>

namespace localservice {

ThreadPool::ThreadPool(std::size_t count)
{
    try {
        while (m_threads.size() < count)
            m_threads.emplace_back(&ThreadPool::work, this);
    } catch (...) {
        shutdown();
        throw;
    }
}

ThreadPool::~ThreadPool() { shutdown(); }

void ThreadPool::enqueue(std::function<void()> job)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_queue.push_back(std::move(job));
    m_changed.notify_one();
}

void ThreadPool::shutdown()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    for (std::thread &thread : m_threads)
        thread.join();
    m_threads.clear();
}

std::size_t ThreadPool::waiting()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_queue.size() - std::min(m_queue.size(), m_idle);
}

void ThreadPool::work()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        ++m_idle;
        m_changed.wait(lock, [this] { return m_ending || !m_queue.empty(); });
        --m_idle;
        if (m_queue.empty())
            return;
        const std::function<void()> job = std::move(m_queue.front());
        m_queue.pop_front();
        lock.unlock();
        job();
        lock.lock();
    }
}

} // namespace localservice
