#include "tests/soak/pathserver.h"

#include <QTcpSocket>
#include <QTimer>

#include <memory>

PathServer::PathServer() = default;

const std::vector<PathServer::Path> &PathServer::paths()
{
    using Server = ScriptedServer;
    using Then = Server::Then;
    static const QByteArray chunks =
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nchunk\r\n";
    static const QByteArray partly = "HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n";
    static const std::vector<Path> all{
        {"/ok", {Server::reply("there"), Then::KeepOpen}},
        {"/long", {Server::reply(QByteArray(300000, 'x')), Then::KeepOpen}},
        {"/chunks", {chunks + "0\r\n\r\n", Then::KeepOpen}},
        {"/slow", {Server::reply("late"), Then::KeepOpen}, 30},
        {"/error", {Server::reply("no", "500 Broken"), Then::KeepOpen}},
        {"/redirect", {Server::reply("", "302 Found", "Location: /ok\r\n"), Then::KeepOpen}},
        {"/loop", {Server::reply("", "302 Found", "Location: /loop\r\n"), Then::KeepOpen}},
        {"/nonsense", {"nonsense\r\n\r\n", Then::Close}},
        {"/close", {Server::reply("last", "200 OK", "Connection: close\r\n"), Then::Close}},
        {"/drop", {"", Then::Close}},
        {"/cut", {partly + "part", Then::Close}},
        {"/cut-chunks", {chunks, Then::Close}},
        {"/reset", {"", Then::Reset}},
        {"/reset-late", {partly + "part", Then::Reset}, 10},
        {"/silent", {"", Then::KeepOpen}},
    };
    return all;
}

void PathServer::incomingConnection(qintptr handle)
{
    auto *socket = new QTcpSocket(this);
    socket->setSocketDescriptor(handle);
    const auto pending = std::make_shared<QByteArray>();
    connect(socket, &QIODevice::readyRead, socket, [socket, pending] { read(socket, *pending); });
    connect(socket, &QAbstractSocket::disconnected, socket, &QObject::deleteLater);
}

// No request has a body.
void PathServer::read(QTcpSocket *socket, QByteArray &pending)
{
    pending += socket->readAll();
    for (int end = 0; (end = pending.indexOf("\r\n\r\n")) >= 0; pending.remove(0, end + 4)) {
        const QByteArray name = pending.split(' ').value(1);
        for (const Path &path : paths()) {
            if (path.name != name)
                continue;
            if (path.delayMs > 0)
                QTimer::singleShot(path.delayMs, socket,
                                   [socket, &path] { ScriptedServer::give(socket, path.answer); });
            else
                ScriptedServer::give(socket, path.answer);
        }
    }
}
