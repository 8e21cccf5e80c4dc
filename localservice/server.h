#pragma once

#include "certificate.h"
#include "connections.h"
#include "speechapi.h"
#include "storageapi.h"

#include <httplib.h>

#include <string>
#include <thread>

namespace localservice {

/// Speaks HTTPS with the clients on 127.0.0.1 and hands their requests to the operations. Every
/// reply but an object of the storage is an envelope.
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

    /// Begins to serve, in threads of its own. Both have to outlive the server's work.
    void start(SpeechApi &speech, StorageApi &storage);

    /// Ends all connections and waits for the requests that are being worked on.
    void stop();

private:
    struct Answer;

    void setHandlers();
    void respond(const httplib::Request &request, httplib::Response &response,
                 const std::string &body);
    Answer answer(const httplib::Request &request, const std::string &path,
                  const std::string &body);
    Answer answerStorage(const httplib::Request &request, const std::string &path,
                         const std::string &body);
    nlohmann::json operation(const httplib::Request &request, const std::string &path,
                             const std::string &body);

    Connections m_connections;
    httplib::SSLServer m_http;
    SpeechApi *m_speech = nullptr;
    StorageApi *m_storage = nullptr;
    std::thread m_thread;
};

} // namespace localservice
