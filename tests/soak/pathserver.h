#pragma once

#include "tests/support/scriptedserver.h"

#include <QByteArray>
#include <QTcpServer>

#include <vector>

class QTcpSocket;

/// A server on loopback each of whose paths misbehaves in a way of its own. It keeps no requests,
/// so its memory does not grow.
class PathServer : public QTcpServer
{
    Q_OBJECT
    Q_DISABLE_COPY(PathServer)

public:
    struct Path
    {
        QByteArray name;
        ScriptedServer::Answer answer;
        int delayMs = 0;
    };

    PathServer();

    /// The paths; those that leave the connection in order come first.
    static const std::vector<Path> &paths();
    static constexpr int wellBehaved = 6;

protected:
    void incomingConnection(qintptr handle) override;

private:
    static void read(QTcpSocket *socket, QByteArray &pending);
};
