#include "http/httpclient.h"
#include "http/httprequest.h"
#include "http/httpresponse.h"
#include "tests/support/logcapture.h"
#include "tests/support/trust.h"

#include <QAuthenticator>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QNetworkReply>
#include <QPointer>
#include <QProcess>
#include <QSocketNotifier>
#include <QSslSocket>
#include <QTcpServer>
#include <QTimer>

#include <cstdio>
#include <memory>
#include <random>
#include <unistd.h>

namespace {

constexpr int mostRunning = 16;
constexpr int mostBytes = 20000; // of a body
constexpr int mostEarly = 16384; // bytes that the toolkit hands over before Qt asks for them
constexpr int timedCount = 100;
constexpr int standstillMs = 30000;

QByteArray bodyOf(int size) { return QByteArray(size, char('a' + size % 26)); }

/// Answers over TLS as the address of a request says, "spoilt" when its body is not what it is to
/// be.
class BodyServer : public QTcpServer
{
    Q_OBJECT

protected:
    void incomingConnection(qintptr handle) override
    {
        auto *socket = new QSslSocket(this);
        socket->setSocketDescriptor(handle);
        socket->setLocalCertificate(certificateOf(Identity::Localhost));
        socket->setPrivateKey(keyOf(Identity::Localhost));
        const auto pending = std::make_shared<QByteArray>();
        connect(socket, &QIODevice::readyRead, socket, [socket, pending] {
            *pending += socket->readAll();
            while (answer(*socket, *pending))
                ;
        });
        connect(socket, &QAbstractSocket::disconnected, socket, &QObject::deleteLater);
        socket->startServerEncryption();
    }

private:
    static bool answer(QSslSocket &socket, QByteArray &bytes)
    {
        const int headEnd = bytes.indexOf("\r\n\r\n") + 4;
        const QByteArray head = bytes.left(headEnd);
        const int at = head.indexOf("Content-Length: ") + 16;
        const int size = head.mid(at, head.indexOf('\r', at) - at).toInt();
        if (headEnd < 4 || bytes.size() < headEnd + size)
            return false;
        const bool isWhole = bytes.mid(headEnd, size) == bodyOf(size);
        bytes.remove(0, headEnd + size);
        const QByteArray path = head.split(' ').value(1);
        const bool asks = path == "/login" && !head.contains("\r\nAuthorization: ");
        give(socket, !isWhole ? "/" : asks ? "/ask" : path, isWhole ? "whole" : "spoilt");
        return socket.isOpen();
    }

    static void give(QSslSocket &socket, const QByteArray &path, const QByteArray &body)
    {
        const bool closes = path == "/close";
        const QByteArray head = path == "/ask" ? "401 Who\r\nWWW-Authenticate: Basic realm=\"r\""
                                : path == "/redirect" ? "307 There\r\nLocation: /ok"
                                : closes              ? "200 OK\r\nConnection: close"
                                                      : "200 OK";
        socket.write("HTTP/1.1 " + head + "\r\nContent-Length: " + QByteArray::number(body.size())
                     + "\r\n\r\n" + body);
        if (closes)
            socket.disconnectFromHost();
    }
};

int serve()
{
    BodyServer server;
    if (!server.listen(QHostAddress::LocalHost))
        return 1;
    std::printf("%d\n", int(server.serverPort()));
    std::fflush(stdout);
    const QSocketNotifier end(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&end, &QSocketNotifier::activated, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    return QCoreApplication::exec();
}

/// Sends many POSTs, some of which it aborts or deletes under way.
class PostSoak : public QObject
{
    Q_OBJECT

public:
    PostSoak(QString server, int requests)
        : m_server(std::move(server))
        , m_left(requests)
    {
        m_client.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
        m_credentials.setUser(QStringLiteral("user"));
        m_credentials.setPassword(QStringLiteral("pass"));
    }

    /// False when it came to a standstill.
    bool run()
    {
        QTimer standstill;
        standstill.setInterval(standstillMs);
        connect(&standstill, &QTimer::timeout, &m_loop, [this] { m_loop.exit(1); });
        connect(this, &PostSoak::over, &standstill, QOverload<>::of(&QTimer::start));
        fill();
        standstill.start();
        return m_loop.exec() == 0;
    }

    int whole = 0;
    int givenUp = 0;
    int spoilt = 0;
    int failed = 0;

Q_SIGNALS:
    void over();

private:
    void fill()
    {
        while (m_left > 0 && m_running < mostRunning) {
            --m_left;
            ++m_running;
            send();
        }
        if (m_running == 0)
            m_loop.quit();
    }

    int below(int limit) { return int(m_chance() % unsigned(limit)); }

    void send()
    {
        static const QStringList paths{QStringLiteral("/ok"), QStringLiteral("/ok"),
                                       QStringLiteral("/login"), QStringLiteral("/close"),
                                       QStringLiteral("/redirect")};
        const int size = 1 + below(mostBytes);
        // Left to itself Qt now and then sends a redirected request twice, which then fails.
        const int kinds = size > mostEarly ? paths.size() - 1 : paths.size();
        HttpRequest request(HttpMethod::Post, &m_client);
        request.url(m_server + paths.at(below(kinds)))
            .rawBody(bodyOf(size))
            .authenticator(m_credentials)
            .onFinished([this](const QByteArray &body) { ++(body == "whole" ? whole : spoilt); })
            .onError([this, size](QNetworkReply *reply) {
                reply->deleteLater();
                if (reply->error() == QNetworkReply::OperationCanceledError) {
                    ++givenUp;
                    return;
                }
                ++failed;
                std::printf("%s, %d bytes: %s\n", qPrintable(reply->request().url().path()), size,
                            qPrintable(reply->errorString()));
            });
        request.fields.networkRequest.setHeader(QNetworkRequest::ContentTypeHeader,
                                                QByteArrayLiteral("a/b"));
        const QPointer<HttpResponse> response = request.send();
        connect(response, &QObject::destroyed, this, [this] {
            --m_running;
            Q_EMIT over();
            QMetaObject::invokeMethod(this, &PostSoak::fill, Qt::QueuedConnection);
        });
        if (below(20) == 0)
            QTimer::singleShot(below(10), this, [this, response] { giveUp(response); });
    }

    void giveUp(HttpResponse *response)
    {
        if (!response)
            return;
        if (below(2) == 0)
            return response->request().fields.reply->abort();
        ++givenUp;
        delete response;
    }

    const QString m_server;
    int m_left;
    int m_running = 0;
    std::mt19937 m_chance; // the same for each run
    QEventLoop m_loop;
    QAuthenticator m_credentials;
    HttpClient m_client;
};

/// What a POST of 300 bytes costs on a connection that is kept, in ms, one after the other.
double timeOf(const QString &server, bool bare)
{
    HttpClient client;
    HttpRequest request(HttpMethod::Post, &client);
    request.url(server + QStringLiteral("/ok")).rawBody(bodyOf(300));
    request.fields.networkRequest.setHeader(QNetworkRequest::ContentTypeHeader,
                                            QByteArrayLiteral("a/b"));
    QElapsedTimer elapsed;
    for (int i = 0; i <= timedCount; ++i) {
        if (i == 1) // the first has made the connection
            elapsed.start();
        QNetworkReply *reply =
            bare ? client.sendCustomRequest(request.fields.networkRequest, "POST", bodyOf(300))
                 : request.send()->request().fields.reply;
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        reply->deleteLater();
    }
    return double(elapsed.nsecsElapsed()) / 1e6 / timedCount;
}

} // namespace

/// POSTs as many bodies as the first argument says, 100,000 without one, over TLS to a server in a
/// process of its own, and fails unless each arrives whole and Qt has nothing to say about it.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QString mode = application.arguments().value(1, QStringLiteral("100000"));
    if (mode == QLatin1String("serve"))
        return serve();
    const TrustTestAuthority trust;
    QProcess server;
    server.start(QCoreApplication::applicationFilePath(), {QStringLiteral("serve")});
    if (!server.waitForReadyRead())
        return 1;
    const QString address =
        QStringLiteral("https://localhost:%1").arg(server.readLine().trimmed().toInt());
    std::printf("a POST of 300 bytes on a kept connection: bare manager %.2f ms, toolkit %.2f ms\n",
                timeOf(address, true), timeOf(address, false));
    const LogCapture log;
    PostSoak soak(address, mode.toInt());
    const bool isOver = soak.run();
    std::printf("%d whole, %d given up, %d spoilt, %d failed%s\n", soak.whole, soak.givenUp,
                soak.spoilt, soak.failed, isOver ? "" : "; then nothing more came");
    const QList<LogCapture::Line> said = log.lines();
    for (const LogCapture::Line &line : said)
        std::printf("%s\n", qPrintable(line.text));
    server.closeWriteChannel();
    server.waitForFinished();
    return isOver && soak.spoilt == 0 && soak.failed == 0 && said.isEmpty() ? 0 : 1;
}

#include "postsoak.moc"
