#include "localservice/server/connectionpool.h"

namespace localservice {

ConnectionPool::ConnectionPool(std::size_t threads, Connections &connections)
    : m_connections(connections)
    , m_threads(threads)
{
}

void ConnectionPool::enqueue(std::function<void()> connection)
{
    m_threads.enqueue(std::move(connection));
    on_idle();
}

void ConnectionPool::shutdown() { m_threads.shutdown(); }

void ConnectionPool::on_idle() { m_connections.makeRoom(m_threads.waiting()); }

} // namespace localservice
