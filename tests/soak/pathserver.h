#pragma once

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
    /// What follows the bytes of an answer.
    enum class Then {
        KeepOpen, ///< The connection waits for the next request.
        Close,    ///< The connection ends in order.
        Reset,    ///< The connection is cut off.
    };

    struct Path
    {
        QByteArray name;
        QByteArray answer;
        Then then;
        int delayMs;
    };

    PathServer();

    /// The paths; those that leave the connection in order come first.
    static const std::vector<Path> &paths();
    static constexpr int wellBehaved = 6;

protected:
    void incomingConnection(qintptr handle) override;

private:
    static void read(QTcpSocket *socket, QByteArray &pending);
    static void give(QTcpSocket *socket, const Path &path);
};
