#pragma once

#include "localservice/data/certificate.h"
#include "localservice/server/connections.h"
#include "localservice/server/router.h"

#include <httplib.h>

#include <memory>
#include <string>
#include <thread>

namespace localservice {

/// Speaks HTTPS with the clients on 127.0.0.1 and has a router answer their requests. Used by the
/// thread that made it.
class Server
{
public:
    /// std::runtime_error if the files cannot be used.
    explicit Server(const TlsFiles &files);

    /// Calls stop().
    ~Server();

    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    /// Takes @p port, or any free one for 0, and returns it; std::runtime_error if that fails.
    int bind(int port);

    /// Begins to serve, in threads of its own; std::system_error if they cannot be had. @p router
    /// outlives stop().
    void start(const Router &router);

    /// Ends all connections and waits for the requests that are being worked on.
    void stop();

private:
    void setHandlers();
    httplib::Server::HandlerResponse receive(const httplib::Request &request,
                                             httplib::Response &response);
    void respond(const httplib::Request &request, httplib::Response &response,
                 const std::string &body);
    void respondUnrouted(const httplib::Request &request, httplib::Response &response);

    Connections m_connections;
    httplib::SSLServer m_http;
    const Router *m_router = nullptr;           // from start() on
    std::unique_ptr<httplib::TaskQueue> m_pool; // until the library takes it
    std::thread m_thread;
};

} // namespace localservice
