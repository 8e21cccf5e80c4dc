#include "localservice/server/server.h"

#include "localservice/base/refusal.h"
#include "localservice/server/envelope.h"
#include "localservice/server/requestbody.h"
#include "localservice/server/requestlog.h"
#include "localservice/server/threadpool.h"

#include <openssl/ssl.h>

#include <chrono>
#include <functional>
#include <stdexcept>
#include <sys/socket.h>
#include <utility>

namespace localservice {

namespace {

constexpr const char *loopback = "127.0.0.1";
constexpr std::size_t threads = 256;         // every kept connection has one
constexpr int keepAliveSeconds = 60;         // longer than clients wait between two questions
constexpr std::size_t keepAliveCount = 1000; // requests
constexpr int transferSeconds = 30;          // without a byte
constexpr std::size_t longestTarget = 2048;  // bytes

/// Gives every connection a thread, and ends others when one has to wait for it.
class ConnectionPool final : public httplib::TaskQueue
{
public:
    explicit ConnectionPool(Connections &connections)
        : m_connections(connections)
    {
    }

    void enqueue(std::function<void()> connection) override
    {
        m_threads.enqueue(std::move(connection));
        on_idle();
    }
    void shutdown() override { m_threads.shutdown(); }
    void on_idle() override { m_connections.makeRoom(m_threads.waiting()); }

private:
    Connections &m_connections;
    ThreadPool m_threads{threads};
};

bool setUpTls(SSL_CTX &context, const TlsFiles &files, Connections &connections)
{
    return SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION) == 1
           && SSL_CTX_use_certificate_chain_file(&context, files.certificate.c_str()) == 1
           && SSL_CTX_use_PrivateKey_file(&context, files.key.c_str(), SSL_FILETYPE_PEM) == 1
           && connections.watch(&context);
}

// The library's own choice would let two processes listen on the same port.
void setListeningOptions(socket_t socket)
{
    const int yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

bool mayHaveBody(const std::string &method)
{
    return method == "POST" || method == "PUT" || method == "PATCH" || method == "DELETE";
}

// The first thing that is done about a request. The library would answer any number of ranges of
// any reply, out of memory. It keeps them in the request, which is its own and not constant.
void begin(const httplib::Request &request)
{
    requestNotes() = RequestNotes();
    requestNotes().isLeftOver = Connections::isOver();
    Connections::madeUse();
    const_cast<httplib::Request &>(request).ranges.clear();
}

// The last thing that is done about a request; its reply has been sent.
void finish(const httplib::Request &request, const httplib::Response &response)
{
    if (!requestNotes().isLeftOver)
        logRequest(request, response);
    if (requestNotes().endsConnection)
        ::shutdown(Connections::ofThisThread(), SHUT_RDWR);
    requestNotes() = RequestNotes();
}

} // namespace

Server::Server(const TlsFiles &files)
    : m_http([this, files](SSL_CTX &context) { return setUpTls(context, files, m_connections); })
{
    if (!m_http.is_valid())
        throw std::runtime_error("the certificates cannot be used");
    m_http.set_address_family(AF_INET);
    m_http.set_tcp_nodelay(true);
    m_http.set_socket_options(setListeningOptions);
    m_http.set_keep_alive_timeout(keepAliveSeconds);
    m_http.set_keep_alive_max_count(keepAliveCount);
    m_http.set_read_timeout(transferSeconds);
    m_http.set_write_timeout(transferSeconds);
    m_http.set_idle_interval(1); // to look for connections that wait
    m_http.new_task_queue = [this] { return m_pool.release(); };
    // Replies hold tokens, and another run of the service may have other files.
    m_http.set_default_headers({{"Cache-Control", "no-store"}});
    setHandlers();
}

Server::~Server() { stop(); }

int Server::bind(int port)
{
    const int bound = port == 0                             ? m_http.bind_to_any_port(loopback)
                      : m_http.bind_to_port(loopback, port) ? port
                                                            : -1;
    if (bound < 0)
        throw std::runtime_error("cannot listen on port " + std::to_string(port));
    return bound;
}

void Server::start(const Router &router)
{
    m_router = &router;
    // A failure to begin threads can be told here, and not where the library asks for the pool.
    m_pool = std::make_unique<ConnectionPool>(m_connections);
    m_thread = std::thread([this] { m_http.listen_after_bind(); });
    // The library cannot be stopped before it runs.
    while (!m_http.is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void Server::stop()
{
    m_connections.end();
    if (!m_thread.joinable())
        return;
    m_http.stop();
    m_thread.join();
}

// The library routes by regular expressions and the decoded path, so that is left to the router. A
// handler that is given a reader is the only one that can limit the body that it reads.
void Server::setHandlers()
{
    m_http.set_pre_routing_handler(
        [this](const auto &request, auto &response) { return receive(request, response); });
    const httplib::Server::HandlerWithContentReader withBody =
        [this](const auto &request, auto &response, const auto &reader) {
            try {
                respond(request, response, readBody(request, reader, Router::largestBody(request)));
            } catch (const std::exception &error) {
                setRefusal(response, error);
            }
        };
    const std::string anyPath = "[^]*";
    m_http.Post(anyPath, withBody);
    m_http.Put(anyPath, withBody);
    m_http.Patch(anyPath, withBody);
    m_http.Delete(anyPath, withBody);
    m_http.set_error_handler(httplib::Server::Handler(
        [this](const auto &request, auto &response) { respondUnrouted(request, response); }));
    m_http.set_logger(finish);
}

// Answers whatever has no body; the rest goes on to the handlers.
httplib::Server::HandlerResponse Server::receive(const httplib::Request &request,
                                                 httplib::Response &response)
{
    begin(request);
    if (requestNotes().isLeftOver)
        return httplib::Server::HandlerResponse::Handled;
    if (request.target.size() > longestTarget) {
        requestNotes().endsConnection = true;
        setRefusal(response, Refusal(Code::AddressTooLong, "the address is too long"));
    } else if (mayHaveBody(request.method)) {
        return httplib::Server::HandlerResponse::Unhandled;
    } else {
        // A body that nobody reads would be taken for the next request.
        requestNotes().endsConnection = request.has_header("Transfer-Encoding")
                                        || (request.has_header("Content-Length")
                                            && request.get_header_value("Content-Length") != "0");
        respond(request, response, {});
    }
    return httplib::Server::HandlerResponse::Handled;
}

void Server::respond(const httplib::Request &request, httplib::Response &response,
                     const std::string &body)
{
    const auto work = m_connections.work();
    m_router->respond(request, response, body);
}

// What the library refused itself: a Range that it does not understand, which is to be ignored, or
// a request of which it has understood too little to route it.
void Server::respondUnrouted(const httplib::Request &request, httplib::Response &response)
{
    if (!response.body.empty())
        return;
    begin(request);
    if (response.status == 416 && !mayHaveBody(request.method)) {
        respond(request, response, {});
        return;
    }
    requestNotes().endsConnection = true;
    setRefusal(response,
               Refusal(static_cast<Code>(response.status), "the request is not understood"));
}

} // namespace localservice
