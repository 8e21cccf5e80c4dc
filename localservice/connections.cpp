#include "connections.h"

#include <sys/socket.h>

namespace localservice {

bool Connections::watch(SSL_CTX *context)
{
    if (connectionIndex() < 0 || ownerIndex() < 0
        || SSL_CTX_set_ex_data(context, ownerIndex(), this) != 1)
        return false;
    SSL_CTX_set_info_callback(context, onHandshake);
    return true;
}

void Connections::end()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_ended = true;
    for (const int socket : m_sockets)
        ::shutdown(socket, SHUT_RDWR);
}

void Connections::onHandshake(const SSL *ssl, int where, int)
{
    if ((where & SSL_CB_HANDSHAKE_START) == 0)
        return;
    auto *const owner =
        static_cast<Connections *>(SSL_CTX_get_ex_data(SSL_get_SSL_CTX(ssl), ownerIndex()));
    // The callback has it const, yet it is the connection that the handshake is about to change.
    owner->add(const_cast<SSL *>(ssl));
}

// The server closes a socket only after it has freed the connection on it, so a number in the set
// always means that connection.
void Connections::onFreed(void *parent, void *value, CRYPTO_EX_DATA *, int, long, void *)
{
    if (value)
        static_cast<Connections *>(value)->remove(SSL_get_fd(static_cast<SSL *>(parent)));
}

int Connections::connectionIndex()
{
    static const int index = SSL_get_ex_new_index(0, nullptr, nullptr, nullptr, onFreed);
    return index;
}

int Connections::ownerIndex()
{
    static const int index = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
    return index;
}

void Connections::add(SSL *ssl)
{
    const int socket = SSL_get_fd(ssl);
    if (socket < 0 || SSL_set_ex_data(ssl, connectionIndex(), this) != 1)
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_sockets.insert(socket);
    if (m_ended)
        ::shutdown(socket, SHUT_RDWR);
}

void Connections::remove(int socket)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_sockets.erase(socket);
}

} // namespace localservice
