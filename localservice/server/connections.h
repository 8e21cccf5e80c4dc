#pragma once

#include <openssl/ssl.h>

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>

namespace localservice {

/// The TLS connections of a server. They are known so that they can be ended: the server waits
/// for the next request of a kept connection for a long time. May be used by several threads.
class Connections
{
public:
    /// This thread works on the answer to a request of its connection, for as long as this lives.
    class Work
    {
    public:
        explicit Work(Connections &connections);
        ~Work();

        Work(const Work &) = delete;
        Work &operator=(const Work &) = delete;

    private:
        Connections &m_connections;
        const int m_socket;
    };

    Connections() = default;
    Connections(const Connections &) = delete;
    Connections &operator=(const Connections &) = delete;

    /// From now on all connections of @p context are known to this object, which has to outlive
    /// them. False if that fails.
    bool watch(SSL_CTX *context);

    /// The socket of the connection that this thread serves: a thread serves one at a time. -1: it
    /// serves none.
    static int ofThisThread();

    /// Whether the client of that connection has ended it; false if there is none.
    static bool clientHasGone();

    /// Whether that connection has ended in both directions: what it has brought before cannot be
    /// answered any more.
    static bool isOver();

    /// To be called when use was made of what this thread's connection has received. More than a
    /// quarter of a MiB of which none was made, such as a header without an end, ends it.
    static void madeUse();

    /// Ends every connection, those to come included. Whoever reads from one of them sees its
    /// end.
    void end();

    /// Ends connections until @p count are ending: first those that have gone longest without an
    /// answer, none that has begun or was answered within the last second, none that is worked for.
    void makeRoom(std::size_t count);

private:
    using Clock = std::chrono::steady_clock;
    struct State
    {
        Clock::time_point restsSince; ///< The end of time while an answer is worked on.
        bool isEnding = false;
    };

    static void onHandshake(const SSL *ssl, int where, int result);
    static void onRecord(int isWritten, int version, int type, const void *bytes,
                         std::size_t length, SSL *ssl, void *argument);
    static void onFreed(void *parent, void *value, CRYPTO_EX_DATA *data, int index, long argument,
                        void *pointer);
    static int connectionIndex();
    static int ownerIndex();

    void add(SSL *ssl);
    void remove(int socket);
    void setRestsSince(int socket, Clock::time_point time);
    static void end(int socket, State &state);

    std::mutex m_mutex;
    std::map<int, State> m_states; // by socket; guarded by m_mutex
    bool m_ended = false;          // likewise
};

} // namespace localservice
