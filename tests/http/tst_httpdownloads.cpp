#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"

#include <QFile>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

#include <memory>

using HttpTesting::waitUntilGone;
using Then = ScriptedServer::Then;

Q_DECLARE_METATYPE(Then)

/// Downloads from the probe to the outcome, and what is left when they are cut short.
class TestHttpDownloads : public QObject
{
    Q_OBJECT

    TestFolder m_folder;
    QString m_target = m_folder.path("target"_s);

    HttpRequest download(HttpClient *client, const ScriptedServer &server) const
    {
        return HttpRequest(HttpMethod::Get, client).url(server.address("/f"_s)).download(m_target);
    }

    /// Connections that the server still has.
    static int connections(const ScriptedServer &server)
    {
        return server.findChildren<QTcpSocket *>().size();
    }

private Q_SLOTS:
    void init() { QFile::remove(m_target); }

    void theBodyIsInTheFileAndNotInTheCallbacks_data()
    {
        QTest::addColumn<bool>("tls");
        QTest::addColumn<int>("size");
        QTest::newRow("one byte") << false << 1;
        QTest::newRow("more than the buffer") << false << 5000000;
        QTest::newRow("over TLS") << true << 5000000;
    }
    void theBodyIsInTheFileAndNotInTheCallbacks()
    {
        QFETCH(bool, tls);
        QFETCH(int, size);
        QByteArray body(size, 'x');
        for (int i = 0; i < size; i += 1000)
            body[i] = char(i / 1000);
        const TrustTestAuthority trust;
        const std::unique_ptr<ScriptedServer> server(tls ? new ScriptedServer(Identity::Localhost)
                                                         : new ScriptedServer);
        QVERIFY(server->start());
        server->answer(ScriptedServer::reply(body));
        HttpClient client;
        CallbackLog log;
        HttpRequest request = download(&client, *server);
        HttpResponse *response = log.bindOutcomes(log.bindFile(request)).send();
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines(), (QStringList{"file()"_s, "file "_s + m_target, "finished()"_s,
                                           "finished(bytes )"_s, "finished(text )"_s,
                                           "finished(map {})"_s, "repeated()"_s}));
        QVERIFY(TestFolder::contents(m_target) == body); // too long to print
        QCOMPARE(server->requests().size(), 2);
    }

    void aTransferThatIsCutOffFailsWhereThatCanBeKnown_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<Then>("then");
        QTest::addColumn<bool>("resumed");
        QTest::addColumn<bool>("fails");
        const struct
        {
            const char *name;
            QByteArray answer;
            bool fails;
        } bodies[] = {
            {"length announced", "Content-Length: 10\r\n\r\n01234", true},
            {"length announced in lower case", "content-length: 10\r\n\r\n01234", true},
            {"up to the connection's end", "\r\n01234", false},
            {"complete in chunks, whatever length is announced",
             "Content-Length: 123456\r\nTransfer-Encoding: chunked\r\n\r\n5\r\n01234\r\n0\r\n\r\n",
             false},
        };
        for (const bool resumed : {false, true}) {
            for (const auto &body : bodies) {
                QTest::addRow("%s%s", body.name, resumed ? ", resumed" : "")
                    << (resumed ? "HTTP/1.1 206 Partial Content\r\n" : "HTTP/1.1 200 OK\r\n")
                           + body.answer
                    << Then::Close << resumed << body.fails;
            }
        }
        QTest::newRow("connection reset") << "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n01234"_b
                                          << Then::Reset << false << true;
    }
    void aTransferThatIsCutOffFailsWhereThatCanBeKnown()
    {
        QFETCH(QByteArray, answer);
        QFETCH(Then, then);
        QFETCH(bool, resumed);
        QFETCH(bool, fails);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("abc0123456789", "200 OK", "Accept-Ranges: bytes\r\n"));
        server.answer(answer, then);
        if (resumed)
            TestFolder::write(m_target, "abc");
        HttpClient client;
        QStringList outcome;
        HttpRequest request = download(&client, server);
        request.onError([&outcome](QNetworkReply::NetworkError code) {
            outcome.append("error %1"_s.arg(int(code)));
        });
        request.onFinished([&outcome] { outcome.append("finished"_s); });
        CallbackLog log;
        QVERIFY(waitUntilGone(log.bindFile(request).send()));
        QCOMPARE(outcome, QStringList{fails ? "error 2"_s : "finished"_s});
        QCOMPARE(log.lines().first(), fails ? "fileError()"_s : "file()"_s);
        if (fails) {
            const QString expected =
                "fileError Url: %1 file: %2 error: "_s.arg(server.address("/f"_s), m_target);
            QVERIFY2(log.lines().at(1).startsWith(expected), qPrintable(log.lines().at(1)));
        }
        // A reset may overtake what was sent before it.
        if (then == Then::Close)
            QCOMPARE(TestFolder::contents(m_target), resumed ? "abc01234"_b : "01234"_b);
    }

    void theProbesOfAThreadComeFromOneClient()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(
            ScriptedServer::reply("body", "200 OK", "Set-Cookie: probe=1; Path=/own\r\n"));
        server.answer(ScriptedServer::reply("body"));
        for (int i = 0; i < 2; ++i) {
            HttpClient client;
            HttpRequest request = download(&client, server);
            QVERIFY(waitUntilGone(request.url(server.address("/own/f"_s)).send()));
        }
        QCOMPARE(server.requests().size(), 4);
        QVERIFY(!server.requests().at(1).contains("Cookie"));
        QCOMPARE(WireRequest(server.requests().at(2)).header("Cookie"), "probe=1"_b);
        QVERIFY(!server.requests().at(3).contains("Cookie"));
    }

    void aTransferInChunksThatIsCutOffHasOneOutcome_data()
    {
        QTest::addColumn<QByteArray>("chunks");
        QTest::newRow("between chunks") << "5\r\n01234\r\n"_b;
        QTest::newRow("within a chunk") << "9\r\n01234"_b;
    }
    void aTransferInChunksThatIsCutOffHasOneOutcome()
    {
        QFETCH(QByteArray, chunks);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + chunks);
        HttpClient client;
        CallbackLog log;
        HttpRequest request = download(&client, server);
        QVERIFY(waitUntilGone(log.bindOutcomes(request).send()));
        QCOMPARE(log.outcomes(), 1); // Qt calls it a success at times
        QCOMPARE(TestFolder::contents(m_target), "01234"_b);
    }

    void aCompressedBodyIsUnpackedIntoTheFile()
    {
        // "unpacked" as gzip writes it: longer than the body itself.
        const QByteArray packed =
            QByteArray::fromHex("1f8b08000000000002ff2bcd2b484cce4e4d010096622fca08000000");
        const QByteArray answer =
            ScriptedServer::reply(packed, "200 OK", "Content-Encoding: gzip\r\n");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(answer);
        HttpClient client;
        CallbackLog log;
        HttpRequest request = download(&client, server);
        QVERIFY(waitUntilGone(log.bindFile(request).send()));
        QCOMPARE(log.lines(), (QStringList{"file()"_s, "file "_s + m_target}));
        QCOMPARE(TestFolder::contents(m_target), "unpacked"_b);
    }

    void aProbeThatFailsLeadsToTheDownloadAllTheSame_data()
    {
        QTest::addColumn<QByteArray>("probe");
        QTest::newRow("status 404 without a body") << ScriptedServer::reply("", "404 Not Found");
        QTest::newRow("status 500 without a body") << ScriptedServer::reply("", "500 Broken");
        QTest::newRow("connection lost") << ""_b;
        QTest::newRow("no HTTP") << "nonsense\r\n\r\n"_b;
    }
    void aProbeThatFailsLeadsToTheDownloadAllTheSame()
    {
        QFETCH(QByteArray, probe);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(probe);
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request = download(&client, server);
        QVERIFY(waitUntilGone(log.bindFile(request).send()));
        QCOMPARE(log.lines(), (QStringList{"file()"_s, "file "_s + m_target}));
        QCOMPARE(TestFolder::contents(m_target), "body"_b);
    }

    void withoutAServerTheDownloadFails()
    {
        HttpClient client;
        CallbackLog log;
        const QString address = "http://localhost:%1/f"_s.arg(HttpTesting::deadPort());
        HttpRequest request(HttpMethod::Get, &client);
        log.bindFile(request.url(address).download(m_target));
        QVERIFY(waitUntilGone(log.bindOutcomes(request).send()));
        QCOMPARE(log.lines(),
                 (QStringList{"fileError()"_s,
                              "fileError Url: %1 file:  error: Connection refused"_s.arg(address),
                              "error()"_s, "error(code 1)"_s, "error(text Connection refused)"_s,
                              "repeated()"_s}));
        QVERIFY(!QFile::exists(m_target));
    }

    void thePageOfAFailureIsWrittenBeforeItIsReported()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("no such page", "404 Not Found"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request = download(&client, server);
        QVERIFY(waitUntilGone(log.bindFile(request).send()));
        QCOMPARE(log.lines().size(), 2);
        QCOMPARE(log.lines().first(), "fileError()"_s);
        QCOMPARE(TestFolder::contents(m_target), "no such page"_b);
    }

    void anEmptyResourceIsAwaitedUntilTheResponseIsDeleted()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(""));
        HttpClient client;
        CallbackLog log;
        HttpRequest request = download(&client, server);
        log.bindOutcomes(log.bindFile(request));
        const std::unique_ptr<HttpResponse> response(request.send());
        TRY_COMPARE(server.requests().size(), 1);
        TRY_COMPARE(connections(server), 0); // the probe is over
        // A whole exchange later there is still nothing.
        QVERIFY(
            waitUntilGone(HttpRequest(HttpMethod::Get, &client).url(server.address("/"_s)).send()));
        QCOMPARE(server.requests().size(), 2);
        QCOMPARE(log.lines(), QStringList());
        QVERIFY(!QFile::exists(m_target));
    }

    void theProbeCarriesNothingOfTheRequest()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        HttpRequest request(HttpMethod::Post, &client);
        request.url(server.address("/f"_s)).headers({{"x-secret"_s, "1"_s}}).rawBody("question");
        request.headers({{"Content-Type"_s, "a/b"_s}});
        QVERIFY(waitUntilGone(request.download(m_target).send()));
        QCOMPARE(server.requests().size(), 2);
        QCOMPARE(HttpTesting::withoutLanguage(server.requests().at(0)),
                 HttpTesting::wire("GET", "/f", server.serverPort()));
        QCOMPARE(HttpTesting::withoutLanguage(server.requests().at(1)),
                 HttpTesting::wire("POST", "/f", server.serverPort(),
                                   "x-secret: 1\r\nContent-Type: a/b\r\n", "question"));
    }

    void aDownloadThatIsDroppedDuringTheProbeLeavesNothing_data()
    {
        QTest::addColumn<bool>("byClient");
        QTest::newRow("response deleted") << false;
        QTest::newRow("client deleted") << true;
    }
    void aDownloadThatIsDroppedDuringTheProbeLeavesNothing()
    {
        QFETCH(bool, byClient);
        ScriptedServer server; // never answers
        QVERIFY(server.start());
        auto client = std::make_unique<HttpClient>();
        CallbackLog log;
        HttpRequest request = download(client.get(), server);
        const QPointer<HttpResponse> response = log.bindOutcomes(log.bindFile(request)).send();
        TRY_COMPARE(server.requests().size(), 1);
        if (byClient)
            client.reset();
        else
            delete response;
        QVERIFY(!response);
        TRY_COMPARE(connections(server), 0);
        QCOMPARE(log.lines(), QStringList());
        QVERIFY(!QFile::exists(m_target));
    }

    void aDownloadThatIsDroppedWritesNothingMore_data()
    {
        aDownloadThatIsDroppedDuringTheProbeLeavesNothing_data();
    }
    void aDownloadThatIsDroppedWritesNothingMore()
    {
        QFETCH(bool, byClient);
        if (!byClient && HttpTesting::isUnderWine())
            QSKIP("Wine does not always tell the server of the end", );
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("0123456789"));
        server.answer(ScriptedServer::reply("0123456789").chopped(5), Then::KeepOpen);
        auto client = std::make_unique<HttpClient>();
        CallbackLog log;
        HttpRequest request = download(client.get(), server);
        const QPointer<HttpResponse> response = log.bindOutcomes(log.bindFile(request)).send();
        TRY_COMPARE(TestFolder::contents(m_target), "01234"_b);
        if (byClient)
            client.reset();
        else
            delete response;
        QVERIFY(!response);
        server.push("56789");
        TRY_COMPARE(connections(server), 0);
        QCOMPARE(log.lines(), QStringList());
        QCOMPARE(TestFolder::contents(m_target), "01234"_b);
    }

    void aReceiverThatGoesDuringTheProbeIsLeftOut()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request = download(&client, server);
        auto receiver = std::make_unique<QObject>();
        request.onFinished(receiver.get(), SLOT(deleteLater()));
        HttpResponse *response = log.bindOutcomes(log.bindFile(request)).send();
        receiver.reset();
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.outcomes(), 1);
        QCOMPARE(TestFolder::contents(m_target), "body"_b);
    }

    void aHeadReceiverThatWaitsLeavesTheFileWhole()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request = download(&client, server);
        HttpResponse *response = nullptr;
        request.onHead([&](const QMap<QString, QString> &) {
            const QNetworkReply *reply = response->request().fields.reply;
            TRY_VERIFY(reply->isFinished());
        });
        response = log.bindOutcomes(log.bindFile(request)).send();
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines(), (QStringList{"file()"_s, "file "_s + m_target, "finished()"_s,
                                           "finished(bytes )"_s, "finished(text )"_s,
                                           "finished(map {})"_s, "repeated()"_s}));
        QCOMPARE(TestFolder::contents(m_target), "body"_b);
    }

    void aDownloadThatCannotBeSentEndsWithoutAnAnswer()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request = download(&client, server);
        request.fields.method = HttpMethod::Unknown;
        HttpResponse *response = log.bindOutcomes(request.logLevel(0)).send();
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines(), QStringList());
        QCOMPARE(server.requests().size(), 1); // the probe's
    }
};

QTEST_GUILESS_MAIN(TestHttpDownloads)
#include "tst_httpdownloads.moc"
