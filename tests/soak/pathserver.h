#pragma once

#include <QByteArray>
#include <QTcpServer>

#include <vector>

class QTcpSocket;

/// A server on loopback whose paths each misbehave in a way of their own. It keeps nothing of what
/// it was asked.
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

    /// Those that leave the connection as it should be come first.
    static const std::vector<Path> &paths();
    static constexpr int wellBehaved = 6;

protected:
    void incomingConnection(qintptr handle) override;

private:
    static void read(QTcpSocket *socket, QByteArray &pending);
    static void give(QTcpSocket *socket, const Path &path);
};
