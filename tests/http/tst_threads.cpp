#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"

#include <QEventLoop>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr int threadCount = 4;
constexpr int rounds = 10;

/// Writes down what it is told, on the thread that made it.
class Receiver : public QObject
{
    Q_OBJECT

public:
    QStringList told;

public Q_SLOTS:
    void onFinished(QByteArray body) { told.append(QString::fromLatin1(body)); }
    void onError(QNetworkReply::NetworkError code) { told.append(QString::number(code)); }
};

HttpRequest get(HttpClient *client, const QString &address, Receiver *receiver)
{
    return HttpRequest(HttpMethod::Get, client)
        .url(address)
        .onFinished(receiver, SLOT(onFinished(QByteArray)))
        .onError(receiver, SLOT(onError(QNetworkReply::NetworkError)));
}

void run(const HttpRequest &request)
{
    QEventLoop loop;
    HttpRequest ended(request);
    ended.onFinished([&] { loop.quit(); }).onError([&] { loop.quit(); }).send();
    loop.exec();
}

} // namespace

/// Several threads at once, each with clients of its own. It is under ThreadSanitizer that this
/// tells most.
class TestThreads : public QObject
{
    Q_OBJECT

    /// Runs @p work, which is told its number, on as many threads and serves events meanwhile.
    static bool onThreads(const std::function<void(int)> &work)
    {
        std::vector<std::thread> threads;
        threads.reserve(threadCount);
        std::atomic<int> running(threadCount);
        for (int i = 0; i < threadCount; ++i) {
            threads.emplace_back([&running, &work, i] {
                work(i);
                --running;
            });
        }
        const bool ended = QTest::qWaitFor([&] { return running == 0; }, patienceMs);
        for (std::thread &thread : threads)
            thread.join();
        return ended;
    }

private Q_SLOTS:
    void threadsThatWaitForTheirRepliesDoNotDisturbEachOther_data()
    {
        QTest::addColumn<bool>("tls");
        QTest::newRow("in the clear") << false;
        QTest::newRow("over TLS") << true;
    }
    void threadsThatWaitForTheirRepliesDoNotDisturbEachOther()
    {
        QFETCH(bool, tls);
        const TrustTestAuthority trust;
        const std::unique_ptr<ScriptedServer> server(tls ? new ScriptedServer(Identity::Localhost)
                                                         : new ScriptedServer);
        QVERIFY(server->start());
        server->answer(ScriptedServer::reply("body"));
        const QString address = server->address("/"_s);
        std::vector<QStringList> told(threadCount);
        QVERIFY(onThreads([&](int thread) {
            HttpClient client;
            Receiver receiver;
            for (int i = 0; i < rounds; ++i)
                get(&client, address, &receiver).block(true).send();
            told[std::size_t(thread)] = receiver.told;
        }));
        QStringList expected;
        for (int i = 0; i < rounds; ++i)
            expected.append("body"_s);
        QCOMPARE(told, std::vector<QStringList>(threadCount, expected));
    }

    void threadsThatPostHaveTheirBodiesSent()
    {
        const TrustTestAuthority trust;
        ScriptedServer server(Identity::Localhost);
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("ok"), ScriptedServer::Then::KeepOpen);
        const QString address = server.address("/"_s);
        QVERIFY(onThreads([&](int thread) {
            HttpClient client;
            Receiver receiver;
            for (int i = 0; i < rounds; ++i) {
                HttpRequest request = get(&client, address, &receiver);
                request.fields.method = HttpMethod::Post;
                request.rawBody(QByteArray(1000, char('a' + thread)));
                if (i % 2 == 0)
                    run(request);
                else
                    request.block(true).send();
            }
        }));
        QByteArrayList expected;
        for (int i = 0; i < threadCount * rounds; ++i)
            expected.append(QByteArray(1000, char('a' + i / rounds)));
        QByteArrayList bodies;
        for (const QByteArray &request : server.requests())
            bodies.append(WireRequest(request).body);
        std::sort(bodies.begin(), bodies.end());
        QCOMPARE(bodies, expected);
    }

    void threadsThatDownloadHaveTheirFiles()
    {
        const TestFolder folder;
        const QByteArray body(300000, 'x');
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body));
        const QString address = server.address("/f"_s);
        QVERIFY(onThreads([&](int thread) {
            HttpClient client;
            Receiver receiver;
            const QString name = folder.path(QString::number(thread));
            // Once waiting for it, once in an event loop: the second replaces the first.
            get(&client, address, &receiver).download(name).block(true).send();
            run(get(&client, address, &receiver).download(name));
        }));
        for (int i = 0; i < threadCount; ++i)
            QCOMPARE(TestFolder::contents(folder.path(QString::number(i))), body);
    }

    void threadsWhoseRequestsFailAreToldOnTheirOwnThread()
    {
        const QString nobody = QStringLiteral("http://localhost:%1/").arg(HttpTesting::deadPort());
        std::vector<QStringList> told(threadCount);
        QVERIFY(onThreads([&](int thread) {
            HttpClient client;
            Receiver receiver;
            const QThread *const own = QThread::currentThread();
            bool isOwn = false;
            run(get(&client, nobody, &receiver).retry(2).onError([&] {
                isOwn = QThread::currentThread() == own;
            }));
            told[std::size_t(thread)] = receiver.told << (isOwn ? "own"_s : "foreign"_s);
        }));
        const QStringList refused{QString::number(QNetworkReply::ConnectionRefusedError), "own"_s};
        QCOMPARE(told, std::vector<QStringList>(threadCount, refused));
    }

    void threadsMayEndInTheMiddleOfTheirRequests()
    {
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("", ScriptedServer::Then::KeepOpen);
        const QString address = server.address("/"_s);
        std::atomic<int> outcomes(0);
        QVERIFY(onThreads([&](int thread) {
            for (int i = 0; i < rounds; ++i) {
                HttpClient client;
                const auto count = [&] { ++outcomes; };
                HttpRequest request = HttpRequest(HttpMethod::Get, &client).url(address);
                request.onFinished(count).onError(count);
                request.send();
                request.download(folder.path(QString::number(thread))).send();
                QCoreApplication::processEvents();
            }
        }));
        QCOMPARE(outcomes.load(), 0);
    }
};

QTEST_GUILESS_MAIN(TestThreads)

#include "tst_threads.moc"
