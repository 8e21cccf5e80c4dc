#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "http/httpresponsetimeout.h"
#include "tests/http/callbacklog.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <limits>
#include <memory>

using HttpTesting::waitUntilGone;

namespace {

const char chunkedHead[] = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";

int armed(const HttpResponse *response)
{
    return response->findChildren<HttpResponseTimeout *>().size();
}

/// Waits as long as a time-out of @p ms that is armed already may take.
bool waitFor(int ms)
{
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QSignalSpy over(&timer, &QTimer::timeout);
    timer.start(ms);
    return over.wait(patienceMs);
}

} // namespace

/// The limit of an exchange, as the clock brings it about.
class TestHttpTimeouts : public QObject
{
    Q_OBJECT

    const QStringList m_canceled{"error()"_s, "error(code 5)"_s, "error(text Operation canceled)"_s,
                                 "repeated()"_s, "timeout()"_s};

private Q_SLOTS:
    void onlyAPositiveLimitIsArmed_data()
    {
        QTest::addColumn<int>("ms");
        QTest::addColumn<int>("timeouts");
        QTest::newRow("most negative") << std::numeric_limits<int>::min() << 0;
        QTest::newRow("default") << -1 << 0;
        QTest::newRow("zero") << 0 << 0;
        QTest::newRow("one") << 1 << 1;
        QTest::newRow("longest") << std::numeric_limits<int>::max() << 1;
    }
    void onlyAPositiveLimitIsArmed()
    {
        QFETCH(int, ms);
        QFETCH(int, timeouts);
        ScriptedServer server;
        QVERIFY(server.start());
        HttpClient client;
        const HttpResponse *response =
            HttpRequest(HttpMethod::Get, &client).url(server.address("/"_s)).timeout(ms).send();
        QCOMPARE(armed(response), timeouts);
    }

    void withoutALimitASlowAnswerIsAwaited()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("slow").chopped(4), ScriptedServer::Then::KeepOpen);
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        HttpResponse *response =
            log.bindOutcomes(log.bindTimeout(request.url(server.address("/"_s)).timeout(0))).send();
        QVERIFY(waitFor(100));
        server.push("slow");
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines(),
                 (QStringList{"finished()"_s, "finished(bytes slow)"_s, "finished(text slow)"_s,
                              "finished(map {})"_s, "repeated()"_s}));
    }

    void aServerThatNeverAnswersIsGivenUp()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindTimeout(request.url(server.address("/"_s)).timeout(150));
        QElapsedTimer clock;
        clock.start();
        QVERIFY(waitUntilGone(log.bindOutcomes(request).send()));
        QVERIFY2(clock.elapsed() >= 150, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(log.lines(), m_canceled);
        QCOMPARE(server.requests().size(), 1);
    }

    void progressDoesNotProlongTheLimit()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(chunkedHead, ScriptedServer::Then::KeepOpen);
        QTimer drip;
        connect(&drip, &QTimer::timeout, &server, [&server] { server.push("1\r\nx\r\n"); });
        HttpClient client;
        CallbackLog log;
        int parts = 0;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindTimeout(request.url(server.address("/"_s)).timeout(2000));
        request.onReadyRead([&parts](QNetworkReply *) { ++parts; });
        HttpResponse *response = log.bindOutcomes(request).send();
        drip.start(20);
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines(), m_canceled);
        QVERIFY2(parts > 1, qPrintable(QString::number(parts)));
    }

    void aLimitThatIsNotNeededLeavesNoTimer_data() { HttpTesting::addDownloadRows(); }
    void aLimitThatIsNotNeededLeavesNoTimer()
    {
        QFETCH(bool, download);
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        // Timers without an object of their own belong to the dispatcher.
        const QObject *dispatcher = QAbstractEventDispatcher::instance();
        const int before = dispatcher->children().size();
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s)).timeout(3600000);
        if (download)
            request.download(folder.path("f"_s));
        const HttpResponse *response = request.send();
        QCOMPARE(response->findChildren<QTimer *>().size(), 1);
        QVERIFY(waitUntilGone(response));
        QCOMPARE(dispatcher->children().size(), before);
    }

    void theLimitHoldsAcrossARedirect()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("", "302 Found", "Location: /next\r\n"));
        server.answer(chunkedHead, ScriptedServer::Then::KeepOpen);
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindTimeout(request.url(server.address("/"_s)).timeout(300));
        request.fields.networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                                                   QNetworkRequest::NoLessSafeRedirectPolicy);
        QVERIFY(waitUntilGone(log.bindOutcomes(request).send()));
        QCOMPARE(log.lines(), m_canceled);
        QCOMPARE(server.requests().size(), 2);
    }

    void aRetryHasALimitOfItsOwn()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindTimeout(request.url(server.address("/"_s)).timeout(150).retry(1));
        QElapsedTimer clock;
        clock.start();
        log.bindOutcomes(request).send();
        TRY_COMPARE(log.lines(), QStringList({"timeout()"_s, "retried()"_s}) + m_canceled);
        QVERIFY2(clock.elapsed() >= 300, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(server.requests().size(), 2);
    }

    void theReceiverOfBothRepliesOwnsOne()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        HttpClient client;
        QPointer<QNetworkReply> failed;
        QPointer<QNetworkReply> late;
        HttpRequest(HttpMethod::Get, &client)
            .url(server.address("/"_s))
            .timeout(50)
            .onError([&failed](QNetworkReply *reply) { failed = reply; })
            .onTimeout([&late](QNetworkReply *reply) { late = reply; })
            .send();
        TRY_VERIFY(late);
        QCOMPARE(late.data(), failed.data());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(late); // whoever was given it deletes it
        QCOMPARE(late->error(), QNetworkReply::OperationCanceledError);
        late->deleteLater();
        QVERIFY(waitUntilGone(late));
    }

    void aLimitThatExpiresAfterTheEndIsNothing()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("in time"));
        HttpClient client;
        CallbackLog log;
        QPointer<QNetworkReply> kept;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindTimeout(request.url(server.address("/"_s)).timeout(1500));
        request.onFinished([&kept](QNetworkReply *reply) { kept = reply; });
        log.bindOutcomes(request).send();
        TRY_VERIFY(kept);
        QVERIFY(waitFor(1500));
        QVERIFY(kept); // and so the response, and so its timer
        QCOMPARE(log.outcomes(), 1);
        QVERIFY(!log.lines().contains("timeout()"_s));
    }

    void aDownloadIsArmedWhenItStartsAndWhenItIsSent_data()
    {
        QTest::addColumn<int>("ms");
        QTest::addColumn<int>("started");
        QTest::addColumn<int>("sent");
        QTest::newRow("with a limit") << 60000 << 1 << 2;
        QTest::newRow("without one") << -1 << 0 << 0;
    }
    void aDownloadIsArmedWhenItStartsAndWhenItIsSent()
    {
        QFETCH(int, ms);
        QFETCH(int, started);
        QFETCH(int, sent);
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        const HttpResponse *response = HttpRequest(HttpMethod::Get, &client)
                                           .url(server.address("/"_s))
                                           .download(folder.path("f"_s))
                                           .timeout(ms)
                                           .send();
        QCOMPARE(armed(response), started);
        QSignalSpy changed(response, &HttpResponse::replyChanged);
        QVERIFY(changed.wait(patienceMs));
        QCOMPARE(armed(response), sent);
    }

    void aLimitThatExpiresDuringTheProbeEndsNothing()
    {
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("", ScriptedServer::Then::KeepOpen);
        server.answer(ScriptedServer::reply("body"));
        QSignalSpy asked(&server, &ScriptedServer::requestReceived);
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindTimeout(request.url(server.address("/"_s)).download(folder.path("f"_s)));
        HttpResponse *response = log.bindOutcomes(log.bindFile(request.timeout(1000))).send();
        QVERIFY(asked.wait(patienceMs));
        QVERIFY(waitFor(1000)); // the one that began with the probe is over
        QCOMPARE(log.lines(), QStringList());
        server.push(ScriptedServer::reply("body"));
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines().first(), "file()"_s);
        QCOMPARE(log.outcomes(), 1);
        QVERIFY(!log.lines().contains("timeout()"_s));
        QCOMPARE(TestFolder::contents(folder.path("f"_s)), "body"_b);
    }

    void aLimitThatExpiresDuringAnAwaitedProbeEndsNothing()
    {
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("", ScriptedServer::Then::KeepOpen);
        server.answer(ScriptedServer::reply("body"));
        QTimer late;
        late.setSingleShot(true);
        connect(&late, &QTimer::timeout, &server,
                [&server] { server.push(ScriptedServer::reply("body")); });
        late.start(1200); // later than the limit
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindTimeout(request.url(server.address("/"_s)).download(folder.path("f"_s)));
        log.bindOutcomes(log.bindFile(request.timeout(1000).block(true))).send();
        QVERIFY(!late.isActive());
        QCOMPARE(log.lines().first(), "file()"_s);
        QCOMPARE(log.outcomes(), 1);
        QVERIFY(!log.lines().contains("timeout()"_s));
    }

    void theClientMayGoWhenTheLimitExpires_data()
    {
        QTest::addColumn<bool>("afterTheError");
        QTest::addColumn<bool>("block");
        QTest::addColumn<bool>("download");
        for (const bool afterTheError : {false, true}) {
            for (const bool block : {false, true}) {
                for (const bool download : {false, true})
                    QTest::addRow("%s%s%s", afterTheError ? "timeout" : "error",
                                  block ? ", blocking" : "", download ? ", download" : "")
                        << afterTheError << block << download;
            }
        }
    }
    void theClientMayGoWhenTheLimitExpires()
    {
        QFETCH(bool, afterTheError);
        QFETCH(bool, block);
        QFETCH(bool, download);
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        if (download)
            server.answer(ScriptedServer::reply("body"));
        server.answer(chunkedHead, ScriptedServer::Then::KeepOpen);
        auto client = std::make_unique<HttpClient>();
        HttpRequest request(HttpMethod::Get, client.get());
        request.url(server.address("/"_s)).timeout(200).block(block);
        if (download)
            request.download(folder.path("f"_s));
        CallbackLog log;
        log.bindTimeout(request);
        const auto leave = [&client] { client.reset(); };
        if (afterTheError)
            request.onTimeout(leave);
        else
            request.onError(leave);
        const QPointer<HttpResponse> response = request.send();
        TRY_VERIFY(!client);
        QVERIFY(!response);
        QCOMPARE(log.lines(), afterTheError ? QStringList{"timeout()"_s} : QStringList());
    }

    void theEarlierOfTwoLimitsEndsADownload()
    {
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("", ScriptedServer::Then::KeepOpen);
        server.answer(chunkedHead, ScriptedServer::Then::KeepOpen);
        QSignalSpy asked(&server, &ScriptedServer::requestReceived);
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindTimeout(request.url(server.address("/"_s)).download(folder.path("f"_s)));
        HttpResponse *response = log.bindOutcomes(request.timeout(2000)).send();
        QVERIFY(asked.wait(patienceMs));
        QVERIFY(waitFor(1000)); // the probe takes half of the first limit
        server.push(ScriptedServer::reply("body"));
        QSignalSpy sent(response, &HttpResponse::replyChanged);
        QVERIFY(sent.wait(patienceMs));
        QElapsedTimer clock;
        clock.start();
        QVERIFY(waitUntilGone(response));
        QVERIFY2(clock.elapsed() < 2000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(log.lines(), m_canceled);
    }
};

QTEST_GUILESS_MAIN(TestHttpTimeouts)
#include "tst_httptimeouts.moc"
