#include "tests/network/faults.h"

#include <QTimer>

namespace {

using Server = std::unique_ptr<ScriptedServer>;
using Then = ScriptedServer::Then;
using Error = QNetworkReply;

const QByteArray start = "HTTP/1.1 200 OK\r\n";
const int bombSize = 10 * 1024 * 1024;

QByteArray whole(const QByteArray &body) { return body; }
QByteArray half(const QByteArray &body) { return body.left(body.size() / 2); }
QByteArray nothing(const QByteArray &) { return {}; }
QByteArray bomb(const QByteArray &) { return QByteArray(bombSize, '\0'); }

QByteArray announcing(int length)
{
    return start + "Content-Length: " + QByteArray::number(length) + "\r\n\r\n";
}

/// A right server that answers every request with @p bytes.
Server answering(const QByteArray &bytes, Then then = Then::Close)
{
    auto server = std::make_unique<ScriptedServer>(Identity::Localhost);
    server->answer(bytes, then);
    return server;
}

/// A server that would give the right answer, had it the right certificate.
Server posing(Identity identity, const QByteArray &body)
{
    auto server = std::make_unique<ScriptedServer>(identity);
    server->answer(ScriptedServer::reply(body));
    return server;
}

/// A server that says something else to every connection, before anything is asked.
Server greeting(const QByteArray &bytes, Then then)
{
    auto server = std::make_unique<ScriptedServer>();
    server->greet(bytes, then);
    return server;
}

// Each byte is a TLS record of its own; the next follows when the event loop has been round.
void drip(ScriptedServer *server, const QByteArray &bytes)
{
    server->push(bytes.left(1));
    if (bytes.size() > 1)
        QTimer::singleShot(0, server, [=] { drip(server, bytes.mid(1)); });
}

Server dripping(const QByteArray &bytes)
{
    auto server = std::make_unique<ScriptedServer>(Identity::Localhost);
    ScriptedServer *self = server.get();
    QObject::connect(self, &ScriptedServer::requestReceived, self, [=] { drip(self, bytes); });
    return server;
}

Server speakingOldTls(const QByteArray &body)
{
    Server server = posing(Identity::Localhost, body);
    server->speakOldTls();
    return server;
}

QByteArray manyHeaders()
{
    QByteArray lines;
    for (int i = 0; i < 1024; ++i)
        lines += "X-" + QByteArray::number(i) + ": " + QByteArray(1024, 'x') + "\r\n";
    return lines;
}

// A stream of zlib is what Qt takes for "deflate".
QByteArray compressedBomb()
{
    static const QByteArray stream = qCompress(bomb({}), 9).mid(4);
    return ScriptedServer::reply(stream, "200 OK", "Content-Encoding: deflate\r\n");
}

QList<Fault> connectionFaults()
{
    return {
        {"refused", false, Error::ConnectionRefusedError,
         [](const QByteArray &) { return nullptr; }},
        {"reset at once", false, Error::RemoteHostClosedError,
         [](const QByteArray &) { return greeting({}, Then::Reset); }},
        // Of a body with a length Qt notices that there is less of it.
        {"reset after the headers", true, Error::RemoteHostClosedError,
         [](const QByteArray &body) { return answering(announcing(body.size()), Then::Reset); }},
        {"reset in the body", true, Error::RemoteHostClosedError,
         [](const QByteArray &body) {
             return answering(announcing(body.size()) + half(body), Then::Reset);
         }},
        {"silence", true, Error::RemoteHostClosedError,
         [](const QByteArray &) { return std::make_unique<ScriptedServer>(Identity::Localhost); }},
        {"one byte at a time", true, Error::NoError,
         [](const QByteArray &body) { return dripping(ScriptedServer::reply(body)); }, whole},
    };
}

QList<Fault> messageFaults()
{
    return {
        {"length too short", true, Error::NoError,
         [](const QByteArray &body) { return answering(announcing(body.size() / 2) + body); },
         half},
        {"length too long", true, Error::RemoteHostClosedError,
         [](const QByteArray &body) { return answering(announcing(body.size() + 1) + body); }},
        // To Qt a chunk without a length is the last.
        {"broken chunks", true, Error::NoError,
         [](const QByteArray &body) {
             return answering(start + "Transfer-Encoding: chunked\r\n\r\nzz\r\n" + body
                              + "\r\n0\r\n\r\n");
         },
         nothing},
        {"headers of a megabyte", true, Error::NoError,
         [](const QByteArray &body) {
             return answering(ScriptedServer::reply(body, "200 OK", manyHeaders()));
         },
         whole},
        {"compressed bomb", true, Error::NoError,
         [](const QByteArray &) { return answering(compressedBomb()); }, bomb},
    };
}

QList<Fault> tlsFaults()
{
    return {
        {"wrong name", false, Error::SslHandshakeFailedError,
         [](const QByteArray &body) { return posing(Identity::Elsewhere, body); }},
        {"unknown authority", false, Error::SslHandshakeFailedError,
         [](const QByteArray &body) { return posing(Identity::Foreign, body); }},
        {"certificate signed by itself", false, Error::SslHandshakeFailedError,
         [](const QByteArray &body) { return posing(Identity::Stranger, body); }},
        {"expired certificate", false, Error::SslHandshakeFailedError,
         [](const QByteArray &body) { return posing(Identity::Expired, body); }},
        {"plain text", false, Error::SslHandshakeFailedError,
         [](const QByteArray &body) {
             return greeting(ScriptedServer::reply(body), Then::KeepOpen);
         }},
        {"TLS too old", false, Error::SslHandshakeFailedError, speakingOldTls},
    };
}

Fault refusal(const char *name, const QByteArray &status, const QByteArray &headers,
              QNetworkReply::NetworkError error)
{
    // Its body is a right answer, which must not be looked at.
    return {name, true, error, [=](const QByteArray &body) {
                return answering(ScriptedServer::reply(body, status, headers));
            }};
}

QList<Fault> statusFaults()
{
    return {
        // Nothing is followed: a redirect is a reply like any other.
        {"redirects in a loop", true, Error::NoError,
         [](const QByteArray &) {
             return answering(ScriptedServer::reply({}, "302 Found", "Location: /loop\r\n"));
         },
         nothing},
        refusal("401", "401 Unauthorized", "WWW-Authenticate: Basic realm=\"r\"\r\n",
                Error::AuthenticationRequiredError),
        refusal("407", "407 Proxy Authentication Required",
                "Proxy-Authenticate: Basic realm=\"r\"\r\n",
                Error::ProxyAuthenticationRequiredError),
        refusal("500", "500 Internal Server Error", {}, Error::InternalServerError),
        refusal("503", "503 Service Unavailable", {}, Error::ServiceUnavailableError),
    };
}

} // namespace

QList<Fault> faults()
{
    return connectionFaults() + messageFaults() + tlsFaults() + statusFaults();
}
