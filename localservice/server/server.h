#pragma once

#include "localservice/accounts/signinpage.h"
#include "localservice/catalogue/catalogue.h"
#include "localservice/data/certificate.h"
#include "localservice/server/connectionpool.h"
#include "localservice/server/connections.h"
#include "localservice/server/operations.h"
#include "localservice/storage/storageapi.h"

#include <httplib.h>

#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace localservice {

/// What the server hands requests to; everything outlives its work.
struct ServedParts
{
    const Operations &operations;
    StorageApi &storage;
    SignInPage &signInPage;
    Catalogue &catalogue;
};

/// Speaks HTTPS with the clients on 127.0.0.1 and hands their requests on. Every reply but a file
/// and a page is an envelope.
class Server
{
public:
    /// std::runtime_error if the files cannot be used.
    explicit Server(const TlsFiles &files);

    /// Stops if that has not been done.
    ~Server();

    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    /// Takes @p port, or any free one for 0, and returns it; std::runtime_error if that fails.
    int bind(int port);

    /// Begins to serve, in threads of its own; std::system_error if they cannot be had.
    void start(const ServedParts &parts);

    /// Ends all connections and waits for the requests that are being worked on.
    void stop();

private:
    struct Answer;

    void setHandlers();
    void respondUnrouted(const httplib::Request &request, httplib::Response &response);
    void respond(const httplib::Request &request, httplib::Response &response,
                 const std::string &body);
    static Answer fileAnswer(const std::string &path, OpenObject file);
    Answer answer(const httplib::Request &request, const std::string &path,
                  const std::string &body);
    Answer answerStorage(const httplib::Request &request, const std::string &path,
                         const std::string &body);
    Answer answerPage(const httplib::Request &request, const std::string &path);

    Connections m_connections;
    httplib::SSLServer m_http;
    std::optional<ServedParts> m_parts;
    std::unique_ptr<ConnectionPool> m_pool; // until the library takes it
    std::thread m_thread;
};

} // namespace localservice
