#include "tests/soak/pathserver.h"

#include <QTcpSocket>
#include <QTimer>

#include <memory>

#include <sys/socket.h>

namespace {

QByteArray reply(const QByteArray &body, const QByteArray &status = "200 OK",
                 const QByteArray &headers = QByteArray())
{
    return "HTTP/1.1 " + status + "\r\n" + headers
           + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

} // namespace

PathServer::PathServer() = default;

const std::vector<PathServer::Path> &PathServer::paths()
{
    static const QByteArray chunks =
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nchunk\r\n";
    static const QByteArray partly = "HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n";
    static const std::vector<Path> all{
        {"/ok", reply("there"), Then::KeepOpen, 0},
        {"/long", reply(QByteArray(300000, 'x')), Then::KeepOpen, 0},
        {"/chunks", chunks + "0\r\n\r\n", Then::KeepOpen, 0},
        {"/slow", reply("late"), Then::KeepOpen, 30},
        {"/error", reply("no", "500 Broken"), Then::KeepOpen, 0},
        {"/redirect", reply("", "302 Found", "Location: /ok\r\n"), Then::KeepOpen, 0},
        {"/loop", reply("", "302 Found", "Location: /loop\r\n"), Then::KeepOpen, 0},
        {"/nonsense", "nonsense\r\n\r\n", Then::Close, 0},
        {"/close", reply("last", "200 OK", "Connection: close\r\n"), Then::Close, 0},
        {"/drop", "", Then::Close, 0},
        {"/cut", partly + "part", Then::Close, 0},
        {"/cut-chunks", chunks, Then::Close, 0},
        {"/reset", "", Then::Reset, 0},
        {"/reset-late", partly + "part", Then::Reset, 10},
        {"/silent", "", Then::KeepOpen, 0},
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
                QTimer::singleShot(path.delayMs, socket, [socket, &path] { give(socket, path); });
            else
                give(socket, path);
        }
    }
}

void PathServer::give(QTcpSocket *socket, const Path &path)
{
    socket->write(path.answer);
    if (path.then == Then::Close) {
        socket->disconnectFromHost(); // once the bytes are out
    } else if (path.then == Then::Reset) {
        socket->flush();
        // A socket that lingers for no time at all sends a reset when it is closed.
        const linger none{1, 0};
        ::setsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &none, sizeof none);
        socket->abort();
    }
}
