#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

using HttpTesting::waitUntilGone;

namespace {

using Act = std::function<void()>;

/// The moments of an exchange at which somebody interferes.
struct Moment
{
    const char *name;
    void (*bind)(HttpRequest &request, const Act &act);
    bool failing;
};

const Moment moments[] = {
    {"head", [](HttpRequest &r, const Act &a) { r.onHead([a](QMap<QString, QString>) { a(); }); },
     false},
    {"readyRead",
     [](HttpRequest &r, const Act &a) { r.onReadyRead([a](QNetworkReply *) { a(); }); }, false},
    {"progress",
     [](HttpRequest &r, const Act &a) { r.onDownloadFileProgress([a](qint64, qint64) { a(); }); },
     false},
    {"meta data", [](HttpRequest &r, const Act &a) { r.onMetaDataChanged(a); }, false},
    {"file finished", [](HttpRequest &r, const Act &a) { r.onDownloadFileFinished(a); }, false},
    {"finished", [](HttpRequest &r, const Act &a) { r.onFinished(a); }, false},
    {"repeated", [](HttpRequest &r, const Act &a) { r.onRepeated(a); }, false},
    {"file error", [](HttpRequest &r, const Act &a) { r.onDownloadFileError(a); }, true},
    {"error", [](HttpRequest &r, const Act &a) { r.onError(a); }, true},
    {"repeated after an error", [](HttpRequest &r, const Act &a) { r.onRepeated(a); }, true},
};

/// A server that answers once it has been asked and release() has been called: a turn of the event
/// loop later, so that what else is due comes first.
class HeldServer : public ScriptedServer
{
    Q_OBJECT

public:
    HeldServer()
    {
        answer("", Then::KeepOpen);
        connect(this, &ScriptedServer::requestReceived, this, [this] {
            m_asked = true;
            answerLater();
        });
    }

    void release()
    {
        m_released = true;
        answerLater();
    }

private:
    void answerLater()
    {
        if (m_asked && m_released)
            QTimer::singleShot(0, this, [this] { push(reply("late")); });
    }

    bool m_asked = false;
    bool m_released = false;
};

} // namespace

Q_DECLARE_METATYPE(Moment)

/// What happens when somebody deletes, aborts or waits in the middle of a request that waits or of
/// a download: no crash, no leak, never a second outcome, and send() returns.
class TestHttpBlockingFaults : public QObject
{
    Q_OBJECT

    TestFolder m_folder;

    static void addMoments()
    {
        QTest::addColumn<Moment>("moment");
        QTest::addColumn<bool>("download");
        QTest::addColumn<bool>("block");
        for (const Moment &moment : moments) {
            for (const bool download : {false, true}) {
                if (!download && QByteArray(moment.name).startsWith("file"))
                    continue;
                for (const bool block : {false, true})
                    QTest::addRow("%s%s%s", moment.name, download ? ", download" : "",
                                  block ? ", blocking" : "")
                        << moment << download << block;
            }
        }
    }

    /// A request that waits and a server that answers it.
    HttpRequest scene(ScriptedServer &server, HttpClient *client, const Moment &moment,
                      bool download)
    {
        if (!server.start())
            qFatal("cannot listen");
        server.answer(ScriptedServer::reply(QByteArray(100000, 'x'),
                                            moment.failing ? "404 Not Found" : "200 OK"));
        HttpRequest request(HttpMethod::Get, client);
        request.url(server.address("/"_s)).block(true);
        if (download)
            request.download(m_folder.path("target"_s));
        return request;
    }

private Q_SLOTS:
    void theClientMayGo_data() { addMoments(); }
    void theClientMayGo()
    {
        QFETCH(Moment, moment);
        QFETCH(bool, download);
        QFETCH(bool, block);
        ScriptedServer server;
        auto client = std::make_unique<HttpClient>();
        HttpRequest request = scene(server, client.get(), moment, download).block(block);
        moment.bind(request, [&client] { client.reset(); });
        CallbackLog log;
        const QPointer<HttpResponse> response = log.bindOutcomes(request).send();
        QVERIFY(block || waitUntilGone(response));
        QVERIFY(!client);
        QVERIFY(log.outcomes() <= 1);
        QVERIFY(!response);
    }

    void theClientMayGoInACallbackOfAnAwaitedRetry()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("", "503 Busy"));
        server.answer(ScriptedServer::reply("body"));
        auto client = std::make_unique<HttpClient>();
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, client.get());
        QVector<QPointer<QNetworkReply>> replies; // both are awaited
        bool areThere = false;
        request.url(server.address("/"_s)).block(true).retry(1).onFinished([&] {
            const auto children = client->findChildren<QNetworkReply *>();
            for (QNetworkReply *reply : children)
                replies.append(reply);
            client.reset();
            areThere = !replies.contains(nullptr);
        });
        const QPointer<HttpResponse> response = log.bindOutcomes(request).send();
        QVERIFY(areThere);
        QCOMPARE(replies.size(), 2);
        TRY_COMPARE(replies, (QVector<QPointer<QNetworkReply>>(2)));
        QVERIFY(response.isNull());
        QCOMPARE(log.lines(), QStringList{"retried()"_s});
    }

    void theClientMayGoWhileNothingIsReceived_data()
    {
        QTest::addColumn<bool>("download");
        QTest::newRow("body") << false;
        QTest::newRow("download, during the probe") << true;
    }
    void theClientMayGoWhileNothingIsReceived()
    {
        QFETCH(bool, download);
        ScriptedServer server;
        QVERIFY(server.start());
        auto client = std::make_unique<HttpClient>();
        connect(&server, &ScriptedServer::requestReceived, this, [&client] { client.reset(); });
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, client.get());
        request.url(server.address("/"_s)).block(true);
        if (download)
            request.download(m_folder.path("target"_s));
        // The probe's own client is another one: its wait is over all the same.
        server.answer(download ? ScriptedServer::reply("body") : QByteArray());
        QCOMPARE(log.bindOutcomes(request).send(), nullptr);
        QCOMPARE(log.lines(), QStringList());
    }

    void theClientMayGoWhileTheProbeIsNotAnswered()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("", ScriptedServer::Then::KeepOpen);
        auto client = std::make_unique<HttpClient>();
        connect(&server, &ScriptedServer::requestReceived, this, [&client] { client.reset(); });
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, client.get());
        request.url(server.address("/"_s)).download(m_folder.path("target"_s)).block(true);
        QElapsedTimer since;
        since.start();
        QCOMPARE(log.bindOutcomes(request).send(), nullptr);
        QVERIFY(since.elapsed() < 15000); // half of what the probe would wait by itself
        QCOMPARE(log.lines(), QStringList());
    }

    void theReplyMayBeAbortedOrDeletedLater_data() { addMoments(); }
    void theReplyMayBeAbortedOrDeletedLater()
    {
        QFETCH(Moment, moment);
        QFETCH(bool, download);
        QFETCH(bool, block);
        ScriptedServer server;
        HttpClient client;
        HttpRequest request = scene(server, &client, moment, download).block(block);
        moment.bind(request, [&client] {
            const auto replies = client.findChildren<QNetworkReply *>();
            for (QNetworkReply *reply : replies) {
                reply->abort();
                reply->deleteLater();
            }
        });
        CallbackLog log;
        const QPointer<HttpResponse> response = log.bindOutcomes(request).send();
        QVERIFY(!block || log.outcomes() == 1);
        QVERIFY(!response || waitUntilGone(response));
        QCOMPARE(log.outcomes(), 1);
    }

    void theResponseMayBeDeleted_data() { addMoments(); }
    void theResponseMayBeDeleted()
    {
        QFETCH(Moment, moment);
        QFETCH(bool, download);
        QFETCH(bool, block);
        ScriptedServer server;
        HttpClient client;
        HttpRequest request = scene(server, &client, moment, download).block(block);
        QPointer<QNetworkReply> reply;
        moment.bind(request, [&] {
            reply = client.findChild<QNetworkReply *>();
            delete client.findChild<HttpResponse *>();
        });
        CallbackLog log;
        const QPointer<HttpResponse> response = log.bindOutcomes(request).send();
        QVERIFY(block || waitUntilGone(response));
        QVERIFY(reply);
        QVERIFY(!response);
        QVERIFY(log.outcomes() <= 1);
        QVERIFY(waitUntilGone(reply));
    }

    void whoeverTakesTheFailedReplyMayDeleteItLaterDuringTheWait_data()
    {
        QTest::addColumn<bool>("download");
        QTest::addColumn<int>("retries");
        QTest::newRow("body") << false << 0;
        QTest::newRow("body, with a retry") << false << 1;
        QTest::newRow("download") << true << 0;
        QTest::newRow("download, with a retry") << true << 1;
    }
    void whoeverTakesTheFailedReplyMayDeleteItLaterDuringTheWait()
    {
        QFETCH(bool, download);
        QFETCH(int, retries);
        ScriptedServer server;
        HttpClient client;
        HttpRequest request = scene(server, &client, moments[8], download);
        QPointer<QNetworkReply> reply;
        request.retry(retries).onError([&](QNetworkReply *failed) {
            reply = failed;
            failed->deleteLater();
        });
        const QPointer<HttpResponse> response = request.send();
        QVERIFY(reply); // for as long as the caller has the response
        QVERIFY(response);
        QVERIFY(waitUntilGone(reply));
    }

    void anAwaitedRequestThatFailsWhileAnotherIsAwaitedIsStillThere_data()
    {
        HttpTesting::addDownloadRows();
    }
    void anAwaitedRequestThatFailsWhileAnotherIsAwaitedIsStillThere()
    {
        QFETCH(bool, download);
        ScriptedServer failing;
        HeldServer slow;
        QVERIFY(slow.start());
        HttpClient client;
        HttpRequest outer = scene(failing, &client, moments[8], download);
        HttpRequest inner(HttpMethod::Get, &client);
        inner.url(slow.address("/"_s)).block(true);
        CallbackLog log;
        CallbackLog innerLog;
        log.bindOutcomes(outer);
        innerLog.bindOutcomes(inner);
        outer.onRepeated([&slow] { slow.release(); });
        QTimer::singleShot(0, &client, [&inner] { inner.send(); });
        const QPointer<HttpResponse> response = outer.send();
        QCOMPARE(innerLog.outcomes(), 1);
        QCOMPARE(log.outcomes(), 1);
        QVERIFY(response);
        QCOMPARE(response->request().fields.reply->error(), QNetworkReply::ContentNotFoundError);
        QVERIFY(waitUntilGone(response));
    }

    void aRequestThatEndsWhileItsCallbackWaitsForAnotherIsStillThere_data()
    {
        QTest::addColumn<Moment>("moment");
        QTest::addColumn<bool>("download");
        addRowsOfUnended(false);
        addRowsOfUnended(true);
    }
    void aRequestThatEndsWhileItsCallbackWaitsForAnotherIsStillThere()
    {
        QFETCH(Moment, moment);
        QFETCH(bool, download);
        HeldServer slow;
        QVERIFY(slow.start());
        ScriptedServer server;
        HttpClient client;
        HttpRequest request = scene(server, &client, moment, download).block(false);
        const QByteArray whole = ScriptedServer::reply(QByteArray(100000, 'x'));
        server.reset();
        if (download)
            server.answer(whole);
        server.answer(whole.left(50000), ScriptedServer::Then::KeepOpen);
        connect(&slow, &ScriptedServer::requestReceived, &server,
                [&] { server.push(whole.mid(50000)); });
        HttpRequest inner(HttpMethod::Get, &client);
        inner.url(slow.address("/"_s)).block(true);
        bool sent = false;
        bool alive = false;
        QPointer<HttpResponse> response;
        moment.bind(request, [&] {
            if (std::exchange(sent, true))
                return;
            inner.send();
            alive = response;
        });
        request.onRepeated([&slow] { slow.release(); });
        CallbackLog log;
        response = log.bindOutcomes(request).send();
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.outcomes(), 1);
        QVERIFY(alive); // its own callback had not returned
    }

private:
    static void addRowsOfUnended(bool download)
    {
        for (const Moment &moment : {moments[0], moments[1], moments[3]})
            QTest::addRow("%s%s", moment.name, download ? ", download" : "") << moment << download;
    }
};

QTEST_GUILESS_MAIN(TestHttpBlockingFaults)
#include "tst_httpblockingfaults.moc"
