#include "tests/support/scriptedserver.h"

#include "tests/support/patience.h"

#include <QDir>
#include <QRegularExpression>
#include <QSslSocket>
#include <QTimer>

#include <vector>

#ifdef Q_OS_WIN
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#endif

namespace {

/// The length of the first complete request in @p bytes; -1 while it is not complete.
int completeLength(const QByteArray &bytes)
{
    const int headEnd = bytes.indexOf("\r\n\r\n");
    if (headEnd < 0)
        return -1;
    static const QRegularExpression lengthHeader(QStringLiteral("\r\ncontent-length: *(\\d+)"),
                                                 QRegularExpression::CaseInsensitiveOption);
    const auto match = lengthHeader.match(QString::fromLatin1(bytes.left(headEnd)));
    const int length = headEnd + 4 + match.captured(1).toInt();
    return bytes.size() >= length ? length : -1;
}

#ifdef Q_OS_WIN
using Socket = SOCKET;
using Count = u_long;

// A socket is a handle, and those are small multiples of 4 in a program that has opened little.
std::vector<Socket> possibleSockets()
{
    std::vector<Socket> sockets;
    for (Socket handle = 4; handle < 2048; handle += 4)
        sockets.push_back(handle);
    return sockets;
}

bool countUnread(Socket socket, Count *count)
{
    return ::ioctlsocket(socket, FIONREAD, count) == 0;
}
#else
using Socket = int;
using Count = int;

std::vector<Socket> possibleSockets()
{
    std::vector<Socket> sockets;
    const QStringList descriptors = QDir(QStringLiteral("/proc/self/fd")).entryList();
    for (const QString &name : descriptors)
        sockets.push_back(name.toInt());
    return sockets;
}

bool countUnread(Socket socket, Count *count) { return ::ioctl(socket, FIONREAD, count) == 0; }
#endif

/// How many bytes the socket of this process whose own port is @p port has not read yet.
Count unreadAt(quint16 port)
{
    for (const Socket socket : possibleSockets()) {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        Count waiting = 0;
        if (::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size) == 0
            && address.sin_family == AF_INET && ntohs(address.sin_port) == port
            && countUnread(socket, &waiting))
            return waiting;
    }
    return 0;
}

} // namespace

ScriptedServer::ScriptedServer(QObject *parent)
    : QTcpServer(parent)
{
}

ScriptedServer::ScriptedServer(Identity identity, QObject *parent)
    : QTcpServer(parent)
    , m_tls(true)
    , m_configuration(QSslConfiguration::defaultConfiguration())
{
    m_configuration.setLocalCertificate(certificateOf(identity));
    m_configuration.setPrivateKey(keyOf(identity));
}

bool ScriptedServer::start(quint16 port) { return listen(QHostAddress::LocalHost, port); }

QString ScriptedServer::address(const QString &path) const
{
    return QStringLiteral("%1://localhost:%2%3")
        .arg(m_tls ? QStringLiteral("https") : QStringLiteral("http"),
             QString::number(serverPort()), path);
}

void ScriptedServer::answer(const QByteArray &bytes, Then then) { m_answers.append({bytes, then}); }

void ScriptedServer::greet(const QByteArray &bytes, Then then) { m_greeting = {bytes, then}; }

void ScriptedServer::speakOldTls()
{
    // OpenSSL speaks old versions only when its level of security is lowered.
    m_configuration.setProtocol(QSsl::TlsV1_0OrLater);
    m_configuration.setBackendConfigurationOption("CipherString", QByteArray("DEFAULT@SECLEVEL=0"));
    m_configuration.setBackendConfigurationOption("MaxProtocol", QByteArray("TLSv1.1"));
}

void ScriptedServer::push(const QByteArray &bytes)
{
    if (m_lastAsked)
        give(m_lastAsked, {bytes, Then::KeepOpen});
}

void ScriptedServer::hangUp(Then then)
{
    if (m_lastAsked)
        end(m_lastAsked, then);
}

void ScriptedServer::reset()
{
    m_answers.clear();
    m_requests.clear();
}

QList<QByteArray> ScriptedServer::requests() const { return m_requests; }

QByteArray ScriptedServer::reply(const QByteArray &body, const QByteArray &status,
                                 const QByteArray &headers)
{
    return "HTTP/1.1 " + status + "\r\n" + headers
           + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

void ScriptedServer::incomingConnection(qintptr handle)
{
    auto *socket = new QSslSocket(this);
    socket->setSocketDescriptor(handle);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    if (!m_greeting)
        connect(socket, &QIODevice::readyRead, this, [this, socket] { read(socket); });
    connect(socket, &QAbstractSocket::disconnected, this, [this, socket] {
        m_pending.remove(socket);
        socket->deleteLater();
    });
    if (m_greeting) {
        give(socket, *m_greeting);
        return;
    }
    if (m_tls) {
        socket->setSslConfiguration(m_configuration);
        socket->startServerEncryption();
    }
}

void ScriptedServer::read(QTcpSocket *socket)
{
    QByteArray &bytes = m_pending[socket];
    bytes += socket->readAll();
    const int length = completeLength(bytes);
    if (length < 0)
        return;
    const QByteArray request = bytes.left(length);
    bytes.remove(0, length);
    m_requests.append(request);
    m_lastAsked = socket;
    Q_EMIT requestReceived(request);
    if (!m_answers.isEmpty())
        give(socket, nextAnswer());
}

ScriptedServer::Answer ScriptedServer::nextAnswer()
{
    return m_answers.size() > 1 ? m_answers.takeFirst() : m_answers.first();
}

void ScriptedServer::give(QTcpSocket *socket, const Answer &answer)
{
    socket->write(answer.bytes);
    end(socket, answer.then);
}

void ScriptedServer::closeOnceRead(QTcpSocket *socket)
{
    if (socket->bytesToWrite() == 0 && unreadAt(socket->peerPort()) == 0)
        return socket->disconnectFromHost();
    QTimer::singleShot(1, socket, [socket] { closeOnceRead(socket); });
}

void ScriptedServer::end(QTcpSocket *socket, Then then)
{
    if (then == Then::Close) {
        socket->disconnectFromHost(); // once the bytes are out
    } else if (then == Then::CloseOnceRead) {
        socket->flush();
        closeOnceRead(socket);
    } else if (then == Then::Reset) {
        while (socket->bytesToWrite() > 0 && socket->waitForBytesWritten(patienceMs))
            ;
        // A socket whose linger time is 0 sends a reset when it is closed.
        const linger none{1, 0};
        ::setsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER,
                     reinterpret_cast<const char *>(&none), sizeof none);
        socket->abort();
    } else {
        socket->flush();
    }
}
