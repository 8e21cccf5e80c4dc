#pragma once

#include <QScopeGuard>

#include <openssl/ssl.h>

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>

namespace localservice {

/// The TLS connections of a server, which keeps each for a long time to wait for its next request.
/// They are known here so that they can be ended. May be used by several threads; each serves one
/// connection at a time.
class Connections
{
public:
    Connections() = default;
    Connections(const Connections &) = delete;
    Connections &operator=(const Connections &) = delete;

    /// Makes all connections of @p context known to this object, which outlives them. False if
    /// that fails.
    bool watch(SSL_CTX *context);

    /// The socket of the connection that this thread serves; -1: it serves none.
    static int ofThisThread();

    /// Whether the client of that connection has ended it; false if there is none.
    static bool clientHasGone();

    /// Whether that connection has ended in both directions: what it has brought before cannot be
    /// answered any more.
    static bool isOver();

    /// Counts what that connection has received as used. One is ended when it has received more
    /// than 256 KiB since, such as a header without an end.
    static void madeUse();

    /// Keeps makeRoom() from ending that connection for as long as what is returned lives.
    [[nodiscard]] auto work()
    {
        setRestsSince(Clock::time_point::max());
        return qScopeGuard([this] { setRestsSince(Clock::now()); });
    }

    /// Ends every connection, those to come included. Whoever reads from one sees its end.
    void end();

    /// Ends connections until @p count are ending: first those that have gone longest without an
    /// answer, none that has begun or was answered within the last second, none in work().
    void makeRoom(std::size_t count);

private:
    using Clock = std::chrono::steady_clock;
    struct State
    {
        Clock::time_point restsSince; // the end of time in work(), and while it is ending
        bool isEnding = false;
    };

    // What OpenSSL calls: when a handshake begins, for each record, when a connection is freed.
    static void onHandshake(const SSL *ssl, int where, int result);
    static void onRecord(int isWritten, int version, int type, const void *bytes,
                         std::size_t length, SSL *ssl, void *argument);
    static void onFreed(void *parent, void *value, CRYPTO_EX_DATA *data, int index, long argument,
                        void *pointer);
    static int connectionIndex();

    void add(SSL *ssl);
    void remove(int socket);
    void setRestsSince(Clock::time_point time);
    static void end(int socket, State &state);

    std::mutex m_mutex;
    std::map<int, State> m_states; // by socket; guarded by m_mutex
    bool m_ended = false;          // likewise
};

} // namespace localservice
