#include "localservice/server/server.h"

#include "localservice/base/refusal.h"
#include "localservice/server/byterange.h"
#include "localservice/server/envelope.h"
#include "localservice/server/headervalue.h"
#include "localservice/server/requestbody.h"
#include "localservice/server/requestlog.h"

#include <openssl/ssl.h>

#include <algorithm>
#include <chrono>
#include <istream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <sys/socket.h>

namespace localservice {

namespace {

constexpr const char *loopback = "127.0.0.1";
constexpr std::size_t threads = 256;         // every kept connection has one
constexpr int keepAliveSeconds = 60;         // longer than clients wait between two questions
constexpr std::size_t keepAliveCount = 1000; // requests
constexpr int transferSeconds = 30;          // without a byte
constexpr std::size_t longestTarget = 2048;
constexpr std::size_t largestOperation = 512UL * 1024; // bytes of its body
constexpr std::size_t pieceSize = 64UL * 1024;         // of an object on its way to a client

// With a parameter the type is not one that the server compresses: clients see how much there is
// to come.
constexpr const char *envelopeType = "application/json;charset=utf-8";

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

// Without the query, and repeated slashes as one: clients put one at either side of a joint.
std::string normalPath(const std::string &target)
{
    std::string path = target.substr(0, target.find('?'));
    path.erase(
        std::unique(path.begin(), path.end(), [](char a, char b) { return a == '/' && b == '/'; }),
        path.end());
    return path;
}

// What an upload may have, only an upload may have.
std::size_t largestBody(const httplib::Request &request)
{
    const bool isUpload =
        request.method == "PUT" && StorageApi::isResponsible(normalPath(request.target));
    return isUpload ? Storage::largestObject : largestOperation;
}

bool mayHaveBody(const std::string &method)
{
    return method == "POST" || method == "PUT" || method == "PATCH" || method == "DELETE";
}

std::string storageToken(const httplib::Request &request)
{
    if (request.method == "PUT" || request.has_header("x-security-token"))
        return headerValue(request, "x-security-token");
    return request.get_param_value("security-token");
}

const char *fileType(const std::string &path)
{
    const auto endsWith = [&](const std::string &suffix) {
        return path.size() > suffix.size()
               && path.compare(path.size() - suffix.size(), suffix.size(), suffix) == 0;
    };
    if (endsWith(".wav"))
        return "audio/wav";
    return endsWith(".png") ? "image/png" : "application/octet-stream";
}

// Whether a browser says that a page which is not this service's own made the request.
bool isFromElsewhere(const httplib::Request &request)
{
    const std::string site = request.get_header_value("Sec-Fetch-Site");
    return site == "cross-site" || site == "same-site";
}

// Browsers name the page that a request comes from. The operations are for applications; a page of
// somebody else's is not to use up codes or to ask for new ones.
bool isFromAPage(const httplib::Request &request)
{
    return request.has_header("Origin") || isFromElsewhere(request);
}

// A page's own form names no origin, "null", when the page keeps its address to itself.
bool hasOtherOrigin(const httplib::Request &request)
{
    const std::string origin = request.get_header_value("Origin");
    return request.has_header("Origin") && origin != "null"
           && origin != "https://" + request.get_header_value("Host");
}

bool isReading(const httplib::Request &request)
{
    return request.method == "GET" || request.method == "HEAD";
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

// Clients of an operation look for a refusal in the envelope, all others in the status.
void setRefusal(httplib::Response &response, const Refusal &refusal, bool isOfOperation = false)
{
    requestNotes().code = refusal.code();
    response.status = isOfOperation ? 200 : static_cast<int>(refusal.code());
    if (requestNotes().endsConnection)
        response.set_header("Connection", "close");
    response.set_content(refusalEnvelope(refusal.code(), refusal.what()), envelopeType);
}

class UnknownOperation : public Refusal
{
public:
    UnknownOperation()
        : Refusal(Code::NotFound, "there is no such operation")
    {
    }
};

OpenObject inMemory(const std::string &bytes)
{
    return {std::make_shared<std::istringstream>(bytes), bytes.size()};
}

// The library would answer any number of ranges of whatever it is given, out of memory. It keeps
// them in the request, which is its own and not constant.
void forgetRanges(const httplib::Request &request)
{
    const_cast<httplib::Request &>(request).ranges.clear();
}

// The first thing that is done about a request.
void begin(const httplib::Request &request)
{
    requestNotes() = RequestNotes();
    Connections::madeUse();
    forgetRanges(request);
}

// The part of a file that is sent. Only a GET can ask for one. A range with If-Range is ignored:
// no reply has a mark of its version that a client could name there.
ByteRange partOf(const OpenObject &file, const httplib::Request &request,
                 httplib::Response &response)
{
    std::optional<ByteRange> range;
    if (request.method == "GET" && !request.has_header("If-Range"))
        range = requestedRange(request.get_header_value("Range"), file.size);
    if (!range)
        return {0, file.size};
    const std::string size = std::to_string(file.size);
    if (range->length == 0) {
        response.set_header("Content-Range", "bytes */" + size);
        throw Refusal(Code::OutOfRange, "the file has no such part");
    }
    const std::size_t last = range->begin + range->length - 1;
    response.status = 206;
    response.set_header("Content-Range", "bytes " + std::to_string(range->begin) + '-'
                                             + std::to_string(last) + '/' + size);
    return *range;
}

// Sent in pieces: a file may be large, and there may be many clients.
void setFile(const OpenObject &file, const std::string &type, const httplib::Request &request,
             httplib::Response &response)
{
    const ByteRange part = partOf(file, request, response);
    if (part.length == 0) {
        response.set_content(std::string(), type);
        return;
    }
    response.set_content_provider(
        part.length, type, [=](std::size_t offset, std::size_t length, httplib::DataSink &sink) {
            std::string piece(std::min(length, pieceSize), '\0');
            file.stream->seekg(static_cast<std::streamoff>(part.begin + offset));
            return file.stream->read(piece.data(), static_cast<std::streamsize>(piece.size()))
                   && sink.write(piece.data(), piece.size());
        });
}

void refuseException(const httplib::Request &, httplib::Response &response,
                     const std::exception_ptr &)
{
    requestNotes().endsConnection = true;
    setRefusal(response, Refusal(Code::Failed, "the service failed"));
}

} // namespace

struct Server::Answer
{
    std::string body;
    std::string type = envelopeType;
    int status = 200;
    std::map<std::string, std::string> headers{};
    std::optional<OpenObject> file{}; // in place of the body: clients can ask for a part of it
};

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
    // There are tokens in replies, and files are made anew with the service.
    m_http.set_default_headers({{"Cache-Control", "no-store"}});
    m_http.set_logger(finish);
    m_http.set_exception_handler(refuseException);
    m_http.set_error_handler(httplib::Server::Handler(
        [this](const auto &request, auto &response) { respondUnrouted(request, response); }));
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

void Server::start(const ServedParts &parts)
{
    m_parts.emplace(parts);
    m_pool = std::make_unique<ConnectionPool>(threads, m_connections); // here, where it may fail
    m_thread = std::thread([this] { m_http.listen_after_bind(); });
    // Before it runs it cannot be stopped.
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

// Routing is done here, by the path as it was sent: the library's matches regular expressions
// with the decoded one. A body can only be read, within limits, by a handler of the second kind.
void Server::setHandlers()
{
    m_http.set_pre_routing_handler([this](const auto &request, auto &response) {
        begin(request);
        requestNotes().isLeftOver = Connections::isOver();
        if (requestNotes().isLeftOver)
            return httplib::Server::HandlerResponse::Handled;
        if (request.target.size() > longestTarget) {
            requestNotes().endsConnection = true;
            setRefusal(response, Refusal(Code::AddressTooLong, "the address is too long"));
            return httplib::Server::HandlerResponse::Handled;
        }
        if (mayHaveBody(request.method))
            return httplib::Server::HandlerResponse::Unhandled;
        // A body that nobody reads would be taken for the next request.
        requestNotes().endsConnection = request.has_header("Transfer-Encoding")
                                        || (request.has_header("Content-Length")
                                            && request.get_header_value("Content-Length") != "0");
        respond(request, response, {});
        return httplib::Server::HandlerResponse::Handled;
    });
    const httplib::Server::HandlerWithContentReader withBody =
        [this](const auto &request, auto &response, const auto &reader) {
            try {
                respond(request, response, readBody(request, reader, largestBody(request)));
            } catch (const Refusal &refusal) {
                setRefusal(response, refusal);
            }
        };
    const std::string anyPath = "[^]*";
    m_http.Post(anyPath, withBody);
    m_http.Put(anyPath, withBody);
    m_http.Patch(anyPath, withBody);
    m_http.Delete(anyPath, withBody);
}

// What the library refused itself. It does that to a Range it does not understand, which is to be
// ignored; otherwise it has understood too little of the request to route it.
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

void Server::respond(const httplib::Request &request, httplib::Response &response,
                     const std::string &body)
{
    const std::string path = normalPath(request.target);
    const bool isOperation = Operations::isResponsible(path);
    try {
        const Answer served = answer(request, path, body);
        response.status = served.status;
        for (const auto &[name, value] : served.headers)
            response.set_header(name, value);
        if (served.file)
            setFile(*served.file, served.type, request, response);
        else
            response.set_content(served.body, served.type);
    } catch (const UnknownOperation &refusal) {
        setRefusal(response, refusal);
    } catch (const Refusal &refusal) {
        setRefusal(response, refusal, isOperation);
    } catch (const std::exception &) {
        setRefusal(response, Refusal(Code::Failed, "the service failed"), isOperation);
    }
}

Server::Answer Server::fileAnswer(const std::string &path, OpenObject file)
{
    Answer answer;
    answer.type = fileType(path);
    answer.file = std::move(file);
    return answer;
}

Server::Answer Server::answer(const httplib::Request &request, const std::string &path,
                              const std::string &body)
{
    const Connections::Work work(m_connections);
    if (StorageApi::isResponsible(path))
        return answerStorage(request, path, body);
    if (SignInPage::isPage(path))
        return answerPage(request, path);
    if (SignInPage::isPicture(path) && isReading(request))
        return fileAnswer(path, inMemory(m_parts->signInPage.picture(path)));
    if (Catalogue::isResponsible(path) && isReading(request))
        return fileAnswer(path, inMemory(m_parts->catalogue.file(path)));
    if (Operations::isResponsible(path) && isFromAPage(request))
        throw Refusal(Code::Forbidden, "the operations are not for pages");
    if (const auto data = m_parts->operations.call(path, request, body))
        return {successEnvelope(*data)};
    throw UnknownOperation();
}

Server::Answer Server::answerStorage(const httplib::Request &request, const std::string &path,
                                     const std::string &body)
{
    const std::string token = storageToken(request);
    if (request.method == "PUT")
        return {successEnvelope(m_parts->storage.put(path, token, body))};
    if (isReading(request))
        return fileAnswer(path, m_parts->storage.get(path, token));
    throw UnknownOperation();
}

Server::Answer Server::answerPage(const httplib::Request &request, const std::string &path)
{
    if (!isReading(request) && request.method != "POST")
        throw UnknownOperation();
    if (!isReading(request) && (isFromElsewhere(request) || hasOtherOrigin(request)))
        throw Refusal(Code::Forbidden, "only the page itself can confirm");
    SignInPage &page = m_parts->signInPage;
    const SignInPage::Reply reply = isReading(request) ? page.show(path) : page.confirm(path);
    requestNotes().code = reply.status == 200 ? Code::Ok : static_cast<Code>(reply.status);
    return {reply.html, "text/html;charset=utf-8", reply.status, SignInPage::headers()};
}

} // namespace localservice
