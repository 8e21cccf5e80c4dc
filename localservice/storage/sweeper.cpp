#include "localservice/storage/sweeper.h"

#include <chrono>
#include <exception>

namespace localservice {

namespace {

constexpr std::chrono::seconds interval(1);

} // namespace

Sweeper::Sweeper(std::function<void()> sweep)
    : m_sweep(std::move(sweep))
    , m_thread(&Sweeper::run, this)
{
}

Sweeper::~Sweeper()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void Sweeper::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_changed.wait_for(lock, interval, [this] { return m_ending; })) {
        lock.unlock();
        try {
            m_sweep();
        } catch (const std::exception &) { // NOLINT(bugprone-empty-catch)
            // Such as a lack of memory; there is more of it next time, or there is not.
        }
        lock.lock();
    }
}

} // namespace localservice
