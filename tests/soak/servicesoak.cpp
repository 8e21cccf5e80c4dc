#include "tests/support/patience.h"
#include "tests/system/localservice.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

namespace {

constexpr int clientCount = 200;
constexpr int warmUp = 5000;    // ms
constexpr int quietCount = 101; // requests, of whose times the median is taken
// Freed memory stays in the allocator's arenas, of which there are several for each core, between
// what is still in use: 4 to 12 MiB of difference between two rests were seen. What is kept by
// mistake would grow with the time that the soak takes.
constexpr int memorySlack = 32 * 1024; // KiB
// A quiet request takes less than a millisecond, where the machine's own moods are as large.
constexpr double timeSlack = 1.0; // ms

const QByteArray operations = "/convert/public/index.php/v1/";
const QByteArray accounts = "/ucenter/public/index.php/v1/";

QByteArray request(const QByteArray &line, const QByteArray &headers = QByteArray(),
                   const QByteArray &body = QByteArray())
{
    return line + " HTTP/1.1\r\nHost: localhost\r\n" + headers
           + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

/// Reads one reply of many on a connection.
struct Reply
{
    QByteArray bytes;

    int status() const { return bytes.mid(9, 3).toInt(); }
    QByteArray body() const { return bytes.mid(bytes.indexOf("\r\n\r\n") + 4); }
    bool isComplete() const
    {
        const int end = bytes.indexOf("\r\n\r\n");
        const int at = bytes.indexOf("Content-Length: ");
        return end >= 0 && at >= 0 && at < end
               && body().size() >= bytes.mid(at + 16, bytes.indexOf('\r', at) - at - 16).toInt();
    }
};

/// A client that waits for each of its replies.
class QuietClient
{
public:
    explicit QuietClient(int port)
    {
        m_socket.connectToHostEncrypted(QStringLiteral("localhost"), static_cast<quint16>(port));
        m_socket.waitForEncrypted(patienceMs);
    }

    Reply ask(const QByteArray &request)
    {
        m_socket.write(request);
        Reply reply;
        while (!reply.isComplete() && m_socket.waitForReadyRead(patienceMs))
            reply.bytes += m_socket.readAll();
        return reply;
    }

private:
    QSslSocket m_socket;
};

/// One of many: it asks, idles and drops its connection as its random numbers say.
class BusyClient : public QObject
{
    Q_OBJECT

public:
    BusyClient(int port, quint32 seed, QObject *parent)
        : QObject(parent)
        , m_port(port)
        , m_random(seed)
    {
        const QJsonObject credential =
            QJsonDocument::fromJson(
                QuietClient(port).ask(request("GET " + operations + "upload/getsignsts")).body())
                .object()
                .value(QLatin1String("data"))
                .toObject();
        m_object = "/storage/speech/" + credential.value(QLatin1String("dir")).toString().toLatin1()
                   + "/a";
        m_token = "x-security-token: "
                  + credential.value(QLatin1String("SecurityToken")).toString().toLatin1() + "\r\n";
        connect(&m_socket, &QSslSocket::encrypted, this, &BusyClient::act);
        connect(&m_socket, &QSslSocket::readyRead, this, &BusyClient::read);
        connect(&m_socket, &QSslSocket::disconnected, this, &BusyClient::lose,
                Qt::QueuedConnection);
        reconnect();
    }

    /// How many replies had each status; 0: there was none.
    static QMap<int, int> &statuses()
    {
        static QMap<int, int> all;
        return all;
    }

private:
    int below(int end) { return static_cast<int>(m_random.bounded(end)); }

    void reconnect()
    {
        m_isAsking = false;
        m_reply = {};
        m_socket.connectToHostEncrypted(QStringLiteral("localhost"), static_cast<quint16>(m_port));
    }

    void act()
    {
        const int action = below(12);
        if (action == 0) { // idle
            QTimer::singleShot(below(2000), this, &BusyClient::act);
        } else if (action == 1) { // go in the middle of a request
            m_socket.write(next().left(below(200)));
            m_socket.flush();
            m_socket.abort();
        } else {
            m_isAsking = true;
            m_socket.write(next());
        }
    }

    QByteArray next()
    {
        const QByteArray text = R"({"feature":"voiceSynthesis","text":"Hello. Hello."})";
        switch (below(8)) {
        case 0:
            return request("GET " + operations + "asr/getVoice");
        case 1:
        case 2:
            return request("PUT " + m_object, m_token, QByteArray(below(1000000), 'a'));
        case 3:
            return request("GET " + m_object, m_token);
        case 4:
            return request("GET " + m_object,
                           m_token + "Range: bytes=" + QByteArray::number(below(1000)) + "-\r\n");
        case 5:
            return request("POST " + operations + "asr/freeProcess", {}, text);
        case 6:
            return request("GET " + accounts + "login/getMpQrCode");
        default:
            return request("POST " + accounts + "verify/sms", {},
                           R"({"phone":"12345678","scene":1})");
        }
    }

    void read()
    {
        m_reply.bytes += m_socket.readAll();
        if (!m_reply.isComplete())
            return;
        ++statuses()[m_reply.status()];
        m_isAsking = false;
        m_reply = {};
        if (below(4) == 0)
            m_socket.abort();
        else
            act();
    }

    void lose()
    {
        if (m_isAsking)
            ++statuses()[0];
        if (m_socket.state() == QAbstractSocket::UnconnectedState)
            reconnect();
    }

    const int m_port;
    QRandomGenerator m_random;
    QByteArray m_object;
    QByteArray m_token;
    QSslSocket m_socket;
    Reply m_reply;
    bool m_isAsking = false;
};

void putUnderLoad(int port, int milliseconds)
{
    QObject clients;
    for (int i = 0; i < clientCount; ++i)
        new BusyClient(port, static_cast<quint32>(i + 1), &clients); // owned by clients
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

int memoryOf(qint64 process) // KiB
{
    QFile file(QStringLiteral("/proc/%1/status").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray status = file.readAll();
    return status.mid(status.indexOf("VmRSS:") + 6).trimmed().split(' ').first().toInt();
}

double quietTime(int port) // ms
{
    QuietClient client(port);
    std::vector<double> times;
    for (int i = 0; i < quietCount; ++i) {
        QElapsedTimer elapsed;
        elapsed.start();
        client.ask(request("GET " + operations + "asr/getVoice"));
        times.push_back(static_cast<double>(elapsed.nsecsElapsed()) / 1e6);
    }
    std::nth_element(times.begin(), times.begin() + quietCount / 2, times.end());
    return times[quietCount / 2];
}

/// What the service costs when nothing is asked of it.
struct Rest
{
    int memory = 0;  ///< KiB.
    double time = 0; ///< Of a quiet request, in ms.
};

// Waits until no memory is given back any more, which may take some seconds.
Rest rest(qint64 process, int port)
{
    QElapsedTimer elapsed;
    elapsed.start();
    Rest last;
    Rest now{memoryOf(process), 0};
    do {
        QEventLoop loop;
        QTimer::singleShot(1000, &loop, &QEventLoop::quit);
        loop.exec();
        last = now;
        now = {memoryOf(process), quietTime(port)};
    } while (now.memory < last.memory && elapsed.elapsed() < patienceMs);
    std::printf("at rest: %d KiB, %.2f ms for a request\n", now.memory, now.time);
    return now;
}

int portOf(QProcess *service)
{
    QByteArray line;
    while (!line.contains('\n') && service->waitForReadyRead(patienceMs))
        line += service->readAllStandardOutput();
    return QUrl(QString::fromUtf8(line.split(' ').value(3).chopped(1))).port();
}

} // namespace

/// Puts vo-localservice under many clients, for as many seconds as the argument says, and fails
/// unless it comes back to the memory and the speed that it had before.
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const int seconds = application.arguments().value(1, QStringLiteral("60")).toInt();
    const QTemporaryDir folder;
    QProcess service;
    service.setStandardErrorFile(QProcess::nullDevice());
    service.start(LocalService::program(), {QStringLiteral("--port"), QStringLiteral("0"),
                                            QStringLiteral("--data"), folder.path()});
    const int port = portOf(&service);
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setCaCertificates(
        QSslCertificate::fromPath(folder.filePath(QStringLiteral("tls/authority.pem"))));
    QSslConfiguration::setDefaultConfiguration(tls);
    rest(service.processId(), port);

    // The first rest is one after a load: voices, threads and arenas are there from then on.
    putUnderLoad(port, warmUp);
    BusyClient::statuses().clear();
    const Rest before = rest(service.processId(), port);
    putUnderLoad(port, seconds * 1000);
    std::printf("under load: %d KiB\n", memoryOf(service.processId()));
    const Rest after = rest(service.processId(), port);

    const auto statuses = BusyClient::statuses();
    for (auto i = statuses.begin(); i != statuses.end(); ++i)
        std::printf("replies with status %d: %d\n", i.key(), i.value());
    service.terminate();
    const bool hasEnded = service.waitForFinished(patienceMs)
                          && service.exitStatus() == QProcess::NormalExit
                          && service.exitCode() == 0;
    const bool hasFailed = statuses.contains(500) || !statuses.contains(200);
    const bool isBack =
        after.memory <= before.memory + memorySlack && after.time <= before.time + timeSlack;
    return hasEnded && !hasFailed && isBack ? 0 : 1;
}

#include "servicesoak.moc"
