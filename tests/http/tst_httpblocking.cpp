#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"

#include <QElapsedTimer>
#include <QSemaphore>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <memory>
#include <thread>

using HttpTesting::waitUntilGone;

/// Requests that wait in an event loop of their own.
class TestHttpBlocking : public QObject
{
    Q_OBJECT

    const QStringList m_succeeded{"finished()"_s, "finished(bytes body)"_s, "finished(text body)"_s,
                                  "finished(map {})"_s, "repeated()"_s};

    static HttpRequest blocking(HttpClient *client, const QString &address)
    {
        return HttpRequest(HttpMethod::Get, client).url(address).block(true);
    }

private Q_SLOTS:
    void sendReturnsAfterTheCallbacks_data() { HttpTesting::addDownloadRows(); }
    void sendReturnsAfterTheCallbacks()
    {
        QFETCH(bool, download);
        const TestFolder folder;
        const QString name = folder.path("f"_s);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request = blocking(&client, server.address("/"_s));
        if (download)
            request.download(name);
        const QPointer<HttpResponse> response = log.bindFile(log.bindOutcomes(request)).send();
        log.add("send returned"_s);
        QVERIFY(response); // and is the caller's to look at
        QVERIFY(response->request().fields.reply->isFinished());
        QCOMPARE(response->request().fields.networkRequest.url().toString(), server.address("/"_s));
        if (download) {
            QCOMPARE(log.lines().mid(0, 2), (QStringList{"file()"_s, "file "_s + name}));
            QCOMPARE(TestFolder::contents(name), "body"_b);
            QCOMPARE(response->request().fields.downloadedBytes, Q_INT64_C(4));
        } else {
            QCOMPARE(log.lines(), m_succeeded + QStringList{"send returned"_s});
        }
        QCOMPARE(log.lines().last(), "send returned"_s);
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.outcomes(), 1);
    }

    void sendReturnsAfterAFailure_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<bool>("download");
        QTest::addColumn<int>("code");
        for (const bool download : {false, true}) {
            const QByteArray what = download ? "download, " : "body, ";
            QTest::newRow(what + "status 404")
                << ScriptedServer::reply("no", "404 Not Found") << download << 203;
            QTest::newRow(what + "status 500 without a body")
                << ScriptedServer::reply("", "500 Broken") << download << 401;
            QTest::newRow(what + "connection lost") << ""_b << download << 2;
            QTest::newRow(what + "no server") << QByteArray() << download << 1;
        }
    }
    void sendReturnsAfterAFailure()
    {
        QFETCH(QByteArray, answer);
        QFETCH(bool, download);
        QFETCH(int, code);
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        QString address = server.address("/"_s);
        if (answer.isNull())
            server.close();
        else
            server.answer(answer);
        HttpClient client;
        QStringList calls;
        HttpRequest request = blocking(&client, address);
        request.onError(
            [&](QNetworkReply::NetworkError error) { calls.append("error %1"_s.arg(error)); });
        request.onFinished([&] { calls.append("finished"_s); });
        if (download)
            request.download(folder.path("f"_s));
        const QPointer<HttpResponse> response = request.send();
        QCOMPARE(calls, QStringList{"error %1"_s.arg(code)});
        QVERIFY(response);
        QVERIFY(waitUntilGone(response));
    }

    void theLimitEndsTheWait_data()
    {
        QTest::addColumn<int>("retries");
        QTest::newRow("once") << 0;
        QTest::newRow("each time") << 1;
    }
    void theLimitEndsTheWait()
    {
        QFETCH(int, retries);
        ScriptedServer server;
        QVERIFY(server.start());
        HttpClient client;
        CallbackLog log;
        HttpRequest request = blocking(&client, server.address("/"_s)).timeout(100).retry(retries);
        QElapsedTimer clock;
        clock.start();
        const QPointer<HttpResponse> response = log.bindTimeout(log.bindOutcomes(request)).send();
        QVERIFY2(clock.elapsed() >= 100LL * (retries + 1),
                 qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(log.outcomes(), 1);
        QCOMPARE(log.lines().count("timeout()"_s), retries + 1);
        QCOMPARE(log.lines().last(), "timeout()"_s);
        QCOMPARE(server.requests().size(), retries + 1);
        QVERIFY(response);
        QVERIFY(waitUntilGone(response));
    }

    void everyAttemptIsAwaited()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("", "500 Broken"));
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request = blocking(&client, server.address("/"_s)).retry(1).repeat(3);
        log.bindOutcomes(request).send();
        QCOMPARE(log.outcomes(), 3);
        QCOMPARE(log.lines().last(), "repeated()"_s);
        QCOMPARE(server.requests().size(), 4);
    }

    void aRetriedDownloadIsAwaited()
    {
        const TestFolder folder;
        const QString name = folder.path("f"_s);
        const QByteArray whole =
            ScriptedServer::reply("body", "200 OK", "Accept-Ranges: bytes\r\n");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(whole);
        server.answer(whole.chopped(2));
        server.answer(whole);
        server.answer(ScriptedServer::reply("dy", "206 Partial Content"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request = blocking(&client, server.address("/"_s)).download(name).retry(1);
        const QPointer<HttpResponse> response = log.bindOutcomes(request).send();
        QCOMPARE(log.outcomes(), 1);
        QCOMPARE(log.lines().first(), "retried()"_s);
        QCOMPARE(TestFolder::contents(name), "body"_b);
        QVERIFY(response);
        QVERIFY(waitUntilGone(response));
    }

    void callbacksDuringTheWaitSeeTheRequestThatWasSent()
    {
        const TestFolder folder;
        TestFolder::write(folder.path("f"_s), "bo");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body", "200 OK", "Accept-Ranges: bytes\r\n"));
        server.answer(ScriptedServer::reply("dy", "206 Partial Content"));
        HttpClient client;
        HttpRequestFields seen;
        HttpRequest request = blocking(&client, server.address("/"_s)).download(folder.path("f"_s));
        QNetworkReply *served = nullptr;
        request.onReadyRead([&](QNetworkReply *reply) {
            served = reply;
            seen = reply->findChild<HttpResponse *>()->request().fields;
        });
        const HttpResponse *response = request.send();
        QVERIFY(served);
        QCOMPARE(seen.reply, served);
        QCOMPARE(seen.networkRequest.rawHeader("Range"), "bytes=2-"_b);
        QVERIFY(seen.supportsResume);
        QCOMPARE(seen.totalBytes, Q_INT64_C(4));
        QCOMPARE(response->request().fields.reply, served);
    }

    void otherEventsAreDeliveredDuringTheWait()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("", ScriptedServer::Then::KeepOpen);
        ScriptedServer other;
        QVERIFY(other.start());
        other.answer(ScriptedServer::reply("body"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindOutcomes(request.url(other.address("/"_s)).onRepeated([&server] {
            server.push(ScriptedServer::reply("late"));
        }));
        connect(&server, &ScriptedServer::requestReceived, &client, [&request] { request.send(); });
        CallbackLog blocked;
        HttpRequest waiting = blocking(&client, server.address("/"_s));
        blocked.bindOutcomes(waiting).send();
        QCOMPARE(log.lines(), m_succeeded);
        QCOMPARE(blocked.outcomes(), 1);
    }

    void aCallbackMayBlock_data()
    {
        QTest::addColumn<bool>("outerBlocks");
        QTest::newRow("of a request that goes on meanwhile") << false;
        QTest::newRow("of a request that is awaited itself") << true;
    }
    void aCallbackMayBlock()
    {
        QFETCH(bool, outerBlocks);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        CallbackLog log;
        CallbackLog inner;
        HttpRequest second = blocking(&client, server.address("/2"_s));
        inner.bindOutcomes(second);
        HttpRequest first(HttpMethod::Get, &client);
        first.url(server.address("/1"_s)).block(outerBlocks).onFinished([&](const QString &) {
            second.send();
            log.add("inner: %1"_s.arg(inner.outcomes()));
        });
        log.bindOutcomes(first);
        const QPointer<HttpResponse> response = first.send();
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines(),
                 m_succeeded.mid(0, 2) + QStringList{"inner: 1"_s} + m_succeeded.mid(2));
    }

    void theWaitThatBeganLastEndsFirst()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("", ScriptedServer::Then::KeepOpen);
        ScriptedServer slow;
        QVERIFY(slow.start());
        HttpClient client;
        CallbackLog log;
        connect(&slow, &ScriptedServer::requestReceived, &server,
                [&server] { server.push(ScriptedServer::reply("body")); });
        HttpRequest outer = blocking(&client, server.address("/"_s));
        HttpRequest inner = blocking(&client, slow.address("/"_s));
        outer.onRepeated([&log] { log.add("outer over"_s); });
        inner.onRepeated([&log] { log.add("inner over"_s); });
        outer.onRepeated([&slow] { slow.push(ScriptedServer::reply("late")); });
        slow.answer("", ScriptedServer::Then::KeepOpen);
        connect(&server, &ScriptedServer::requestReceived, &client, [&] {
            inner.send();
            log.add("inner returned"_s);
        });
        outer.send();
        log.add("outer returned"_s);
        QCOMPARE(log.lines(), (QStringList{"outer over"_s, "inner over"_s, "inner returned"_s,
                                           "outer returned"_s}));
    }

    void aLimitHoldsOnAThreadThatQtDidNotStart()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("", ScriptedServer::Then::KeepOpen);
        const QString address = server.address("/"_s);
        CallbackLog log;
        QSemaphore over;
        std::thread thread([&] {
            HttpClient client;
            HttpRequest request = blocking(&client, address).timeout(200);
            log.bindTimeout(log.bindOutcomes(request)).send();
            over.release();
        });
        TRY_COMPARE(over.available(), 1);
        thread.join();
        QCOMPARE(log.lines().last(), "timeout()"_s);
        QCOMPARE(log.outcomes(), 1);
    }

    void aThreadWithoutAnEventLoopMayBlock_data()
    {
        QTest::addColumn<bool>("download");
        QTest::addColumn<bool>("tls");
        QTest::newRow("body") << false << false;
        QTest::newRow("body over TLS") << false << true;
        QTest::newRow("download") << true << false;
        QTest::newRow("download over TLS") << true << true;
    }
    void aThreadWithoutAnEventLoopMayBlock()
    {
        QFETCH(bool, download);
        QFETCH(bool, tls);
        const TestFolder folder;
        const QString name = folder.path("f"_s);
        const TrustTestAuthority trust;
        const std::unique_ptr<ScriptedServer> server(tls ? new ScriptedServer(Identity::Localhost)
                                                         : new ScriptedServer);
        QVERIFY(server->start());
        server->answer(ScriptedServer::reply("body"));
        const QString address = server->address("/"_s);
        CallbackLog log;
        const std::unique_ptr<QThread> thread(QThread::create([&] {
            HttpClient client;
            HttpRequest request = blocking(&client, address);
            if (download)
                log.bindFile(request.download(name));
            for (int i = 0; i < 2; ++i) {
                const QPointer<HttpResponse> response = log.bindOutcomes(request).send();
                log.add(response ? "there"_s : "gone"_s);
                request = blocking(&client, address); // and no download
            }
        }));
        thread->start();
        TRY_VERIFY(thread->isFinished());
        QCOMPARE(log.outcomes(), 2);
        QCOMPARE(log.lines().count("there"_s), 2);
        QCOMPARE(log.lines().mid(log.lines().size() - 6), m_succeeded + QStringList{"there"_s});
        if (download)
            QCOMPARE(TestFolder::contents(name), "body"_b);
    }

    void anApplicationThatQuitsEndsTheWaitButNotTheExchange_data()
    {
        HttpTesting::addDownloadRows();
    }
    void anApplicationThatQuitsEndsTheWaitButNotTheExchange()
    {
        QFETCH(bool, download);
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("", ScriptedServer::Then::KeepOpen);
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        CallbackLog log;
        QPointer<HttpResponse> response;
        HttpRequest request = blocking(&client, server.address("/"_s));
        if (download)
            request.download(folder.path("f"_s));
        log.bindOutcomes(request);
        connect(&server, &ScriptedServer::requestReceived, this, QCoreApplication::quit);
        QTimer::singleShot(0, &client, [&] { response = request.send(); });
        QCoreApplication::exec();
        disconnect(&server, &ScriptedServer::requestReceived, this, nullptr);
        QVERIFY(response);
        QCOMPARE(log.lines(), QStringList());
        server.push(ScriptedServer::reply("body"));
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.outcomes(), 1);
    }

    // As a worker does that sends its last message.
    void aThreadThatWasToldToQuitMayBlock_data() { HttpTesting::addDownloadRows(); }
    void aThreadThatWasToldToQuitMayBlock()
    {
        QFETCH(bool, download);
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        const QString address = server.address("/"_s);
        CallbackLog log;
        const std::unique_ptr<QThread> thread(QThread::create([&] {
            QEventLoop().exec(); // until it is told
            HttpClient client;
            HttpRequest request = blocking(&client, address);
            if (download)
                request.download(folder.path("f"_s));
            log.bindOutcomes(request).send();
            log.add("returned"_s);
        }));
        thread->start();
        thread->quit();
        TRY_VERIFY(thread->isFinished());
        QCOMPARE(log.outcomes(), 1);
        QCOMPARE(log.lines().last(), "returned"_s);
    }

    void whatGoesWhileAThreadThatWasToldToQuitWaitsEndsTheWait_data()
    {
        QTest::addColumn<QString>("what");
        QTest::newRow("client") << "client"_s;
        QTest::newRow("response") << "response"_s;
        QTest::newRow("reply") << "reply"_s;
    }
    void whatGoesWhileAThreadThatWasToldToQuitWaitsEndsTheWait()
    {
        QFETCH(QString, what);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("", ScriptedServer::Then::KeepOpen);
        const QString address = server.address("/"_s);
        CallbackLog log;
        const std::unique_ptr<QThread> thread(QThread::create([&] {
            QEventLoop().exec(); // until it is told
            auto owner = std::make_unique<HttpClient>();
            QTimer::singleShot(0, owner.get(), [&] {
                if (what == "client"_s)
                    owner.reset();
                else if (what == "response"_s)
                    delete owner->findChild<HttpResponse *>();
                else
                    delete owner->findChild<QNetworkReply *>();
            });
            HttpRequest request = blocking(owner.get(), address);
            log.add(log.bindOutcomes(request).send() ? "a response"_s : "none"_s);
        }));
        thread->start();
        thread->quit();
        TRY_VERIFY(thread->isFinished());
        QCOMPARE(log.lines(), QStringList{"none"_s});
    }

    void aRequestThatCannotBeSentDoesNotWait_data() { HttpTesting::addDownloadRows(); }
    void aRequestThatCannotBeSentDoesNotWait()
    {
        QFETCH(bool, download);
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        CallbackLog log;
        HttpRequest request = blocking(nullptr, server.address("/"_s));
        if (download)
            request.download(folder.path("f"_s));
        const QPointer<HttpResponse> response = log.bindOutcomes(request.logLevel(0)).send();
        QCOMPARE(log.lines(), QStringList());
        QVERIFY(!response || waitUntilGone(response));
    }
};

QTEST_GUILESS_MAIN(TestHttpBlocking)
#include "tst_httpblocking.moc"
