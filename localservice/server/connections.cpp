#include "localservice/server/connections.h"

#include <algorithm>
#include <poll.h>
#include <sys/socket.h>

namespace localservice {

namespace {

// A connection has at least so long for a request, and for another one after an answer.
constexpr std::chrono::seconds patience(1);
constexpr std::size_t mostUnused = 256UL * 1024; // bytes

thread_local int socketOfThisThread = -1;
thread_local std::size_t unused = 0; // bytes received on that socket

} // namespace

bool Connections::watch(SSL_CTX *context)
{
    if (connectionIndex() < 0 || SSL_CTX_set_app_data(context, this) != 1)
        return false;
    SSL_CTX_set_info_callback(context, onHandshake);
    SSL_CTX_set_msg_callback(context, onRecord);
    return true;
}

int Connections::ofThisThread() { return socketOfThisThread; }

void Connections::madeUse() { unused = 0; }

bool Connections::isOver()
{
    pollfd connection{socketOfThisThread, 0, 0};
    return ::poll(&connection, 1, 0) == 1 && (connection.revents & POLLHUP) != 0;
}

bool Connections::clientHasGone()
{
    pollfd connection{socketOfThisThread, POLLRDHUP, 0};
    return ::poll(&connection, 1, 0) == 1;
}

void Connections::end()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_ended = true;
    for (auto &[socket, state] : m_states)
        end(socket, state);
}

void Connections::makeRoom(std::size_t count)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto ending = static_cast<std::size_t>(
        std::count_if(m_states.begin(), m_states.end(),
                      [](const auto &connection) { return connection.second.isEnding; }));
    const auto latest = Clock::now() - patience;
    for (std::size_t i = ending; i < count; ++i) {
        const auto longest = std::min_element(
            m_states.begin(), m_states.end(), [](const auto &one, const auto &other) {
                return one.second.restsSince < other.second.restsSince;
            });
        if (longest == m_states.end() || longest->second.restsSince > latest)
            return;
        end(longest->first, longest->second);
    }
}

// Runs in the thread that serves the connection from then on.
void Connections::onHandshake(const SSL *ssl, int where, int)
{
    if ((where & SSL_CB_HANDSHAKE_START) == 0)
        return;
    auto *const owner = static_cast<Connections *>(SSL_CTX_get_app_data(SSL_get_SSL_CTX(ssl)));
    // OpenSSL has it constant here, yet it is the connection that the handshake will change.
    owner->add(const_cast<SSL *>(ssl));
}

// The header of a record has five bytes; the last two are the length of what follows.
void Connections::onRecord(int isWritten, int, int type, const void *bytes, std::size_t length,
                           SSL *, void *)
{
    if (isWritten != 0 || type != SSL3_RT_HEADER || length != SSL3_RT_HEADER_LENGTH)
        return;
    const auto *const head = static_cast<const unsigned char *>(bytes);
    unused += head[3] * 256U + head[4];
    if (unused > mostUnused)
        ::shutdown(socketOfThisThread, SHUT_RDWR);
}

// The HTTP library frees a connection before it closes the socket, so the number of a socket that
// is known here never stands for a later connection.
void Connections::onFreed(void *parent, void *value, CRYPTO_EX_DATA *, int, long, void *)
{
    if (value)
        static_cast<Connections *>(value)->remove(SSL_get_fd(static_cast<SSL *>(parent)));
}

// The place of a connection for the object that knows it.
int Connections::connectionIndex()
{
    static const int index = SSL_get_ex_new_index(0, nullptr, nullptr, nullptr, onFreed);
    return index;
}

void Connections::add(SSL *ssl)
{
    const int socket = SSL_get_fd(ssl);
    if (socket < 0 || SSL_set_ex_data(ssl, connectionIndex(), this) != 1)
        return;
    socketOfThisThread = socket;
    madeUse();
    const std::lock_guard<std::mutex> lock(m_mutex);
    State &state = m_states[socket];
    state = {Clock::now()};
    if (m_ended)
        end(socket, state);
}

void Connections::remove(int socket)
{
    socketOfThisThread = -1;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_states.erase(socket);
}

void Connections::setRestsSince(Clock::time_point time)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_states.find(socketOfThisThread);
    if (found != m_states.end() && !found->second.isEnding)
        found->second.restsSince = time;
}

void Connections::end(int socket, State &state)
{
    ::shutdown(socket, SHUT_RDWR);
    state = {Clock::time_point::max(), true};
}

} // namespace localservice
