#pragma once

#include "tests/support/trust.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QPointer>
#include <QSslConfiguration>
#include <QTcpServer>

#include <optional>

class QSslSocket;
class QTcpSocket;

/// A server on loopback that answers each request with scripted bytes, over TLS or in the clear.
/// Answers are used in order; the last one serves every further request.
class ScriptedServer : public QTcpServer
{
    Q_OBJECT
    Q_DISABLE_COPY(ScriptedServer)

public:
    /// What follows the bytes of an answer.
    enum class Then {
        Close,         ///< The connection ends in order.
        CloseOnceRead, ///< The same once the client, of this process, has read all that came.
        KeepOpen,      ///< The connection waits for the next request.
        Reset,         ///< The connection is cut off, once the bytes are out.
    };

    struct Answer
    {
        QByteArray bytes;
        Then then = Then::Close;
    };

    /// In the clear.
    explicit ScriptedServer(QObject *parent = nullptr);

    /// Over TLS, as @p identity.
    explicit ScriptedServer(Identity identity, QObject *parent = nullptr);

    /// Listens on 127.0.0.1; port 0: any free one. False when it cannot.
    bool start(quint16 port = 0);

    /// The scheme, "localhost", the port and @p path.
    QString address(const QString &path) const;

    /// Adds an answer to the script.
    void answer(const QByteArray &bytes, Then then = Then::Close);

    /// Sends these bytes to every connection as soon as it is made, in the clear, and reads nothing
    /// from it.
    void greet(const QByteArray &bytes, Then then);

    /// Speaks TLS 1.1 and older only, which clients of today refuse.
    void speakOldTls();

    /// Sends more bytes to the client that asked last, if its connection is still there.
    void push(const QByteArray &bytes);

    /// Ends the connection of the client that asked last.
    void hangUp(Then then = Then::Close);

    /// Forgets the script and the requests.
    void reset();

    /// The bytes of each complete request, in order.
    QList<QByteArray> requests() const;

    /// A whole HTTP/1.1 reply with a Content-Length. @p headers: whole lines, each with its CRLF.
    static QByteArray reply(const QByteArray &body, const QByteArray &status = "200 OK",
                            const QByteArray &headers = QByteArray());

    /// Writes @p answer to a connection and does what follows its bytes.
    static void give(QTcpSocket *socket, const Answer &answer);

Q_SIGNALS:
    /// A request is complete; its answer follows when the receivers have returned.
    void requestReceived(const QByteArray &request);

protected:
    void incomingConnection(qintptr handle) override;

private:
    void read(QTcpSocket *socket);
    Answer nextAnswer();
    static void end(QTcpSocket *socket, Then then);
    static void closeOnceRead(QTcpSocket *socket);

    bool m_tls = false;
    QSslConfiguration m_configuration;
    std::optional<Answer> m_greeting;
    QList<Answer> m_answers;
    QList<QByteArray> m_requests;
    QHash<QTcpSocket *, QByteArray> m_pending;
    QPointer<QTcpSocket> m_lastAsked;
};
