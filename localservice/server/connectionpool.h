#pragma once

#include "localservice/server/connections.h"
#include "localservice/server/threadpool.h"

#include <httplib.h>

#include <cstddef>
#include <functional>
#include <utility>

namespace localservice {

/// Gives every connection a thread. When there are more connections than threads, those that have
/// gone longest without a request that was served are ended.
class ConnectionPool final : public httplib::TaskQueue
{
public:
    /// std::system_error if there cannot be @p threads. @p connections outlives this.
    ConnectionPool(std::size_t threads, Connections &connections)
        : m_connections(connections)
        , m_threads(threads)
    {
    }

    void enqueue(std::function<void()> connection) override
    {
        m_threads.enqueue(std::move(connection));
        on_idle();
    }

    void shutdown() override { m_threads.shutdown(); }

    /// To be called now and then while connections may be waiting.
    void on_idle() override { m_connections.makeRoom(m_threads.waiting()); }

private:
    Connections &m_connections;
    ThreadPool m_threads;
};

} // namespace localservice
