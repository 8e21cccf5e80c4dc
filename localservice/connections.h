#pragma once

#include <openssl/ssl.h>

#include <mutex>
#include <set>

namespace localservice {

/// The TLS connections of a server. They are known so that they can be ended: the server waits
/// for the next request of a kept connection for a long time. May be used by several threads.
class Connections
{
public:
    Connections() = default;
    Connections(const Connections &) = delete;
    Connections &operator=(const Connections &) = delete;

    /// From now on all connections of @p context are known to this object, which has to outlive
    /// them. False if that fails.
    bool watch(SSL_CTX *context);

    /// Ends every connection, those to come included. Whoever reads from one of them sees its
    /// end.
    void end();

private:
    static void onHandshake(const SSL *ssl, int where, int result);
    static void onFreed(void *parent, void *value, CRYPTO_EX_DATA *data, int index, long argument,
                        void *pointer);
    static int connectionIndex();
    static int ownerIndex();

    void add(SSL *ssl);
    void remove(int socket);

    std::mutex m_mutex;
    std::set<int> m_sockets; // guarded by m_mutex
    bool m_ended = false;    // likewise
};

} // namespace localservice
