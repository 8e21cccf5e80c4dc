#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace localservice {

/// Calls a function every second in a thread of its own, for as long as it lives. What the
/// function throws is ignored: it is called again anyway.
class Sweeper
{
public:
    explicit Sweeper(std::function<void()> sweep);
    ~Sweeper();

    Sweeper(const Sweeper &) = delete;
    Sweeper &operator=(const Sweeper &) = delete;

private:
    void run();

    std::function<void()> m_sweep;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_ending = false; // guarded by m_mutex
    std::thread m_thread;
};

} // namespace localservice
