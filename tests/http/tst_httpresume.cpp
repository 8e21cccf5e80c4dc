#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/signalrecorder.h"
#include "tests/support/testfolder.h"

#include <QFile>
#include <QTest>

using HttpTesting::waitUntilGone;
using HttpTesting::wire;
using HttpTesting::withoutLanguage;

namespace {

const QByteArray body = "0123456789"_b;
const QByteArray noHeader = "<0 headers>"_b;

QByteArray rest(int from)
{
    return ScriptedServer::reply(body.mid(from), "206 Partial Content",
                                 "Content-Range: bytes " + QByteArray::number(from) + "-9/10\r\n");
}

} // namespace

/// What a download does with a file that is there already.
class TestHttpResume : public QObject
{
    Q_OBJECT

    TestFolder m_folder;
    QString m_target = m_folder.path("target"_s);

    /// The Range header of each request.
    static QByteArrayList ranges(const ScriptedServer &server)
    {
        QByteArrayList values;
        const QList<QByteArray> requests = server.requests();
        for (const QByteArray &request : requests)
            values.append(WireRequest(request).header("Range"));
        return values;
    }

private Q_SLOTS:
    void init() { QFile::remove(m_target); }

    void theFileAndTheServerDecideWhatIsAskedAndWritten_data()
    {
        QTest::addColumn<QByteArray>("before"); // null: no file
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<QByteArray>("range");
        QTest::addColumn<QByteArray>("after");
        const struct
        {
            const char *name;
            QByteArray before, range, after;
        } files[] = {
            {"no file", QByteArray(), noHeader, body},
            {"empty", "", "bytes=0-", body},
            {"shorter", "0123", "bytes=4-", body},
            {"equal", "abcdefghij", noHeader, "abcdefghij" + body},
            {"longer", "abcdefghijk", noHeader, "abcdefghijk" + body},
        };
        for (const auto &file : files) {
            for (const char *value : {"bytes", "none", ""}) {
                const QByteArray header =
                    *value ? QByteArray("Accept-Ranges: ") + value + "\r\n" : QByteArray();
                const bool serves = *value; // whatever it says
                QTest::addRow("%s, ranges \"%s\"", file.name, value)
                    << file.before << header << true << (serves ? file.range : noHeader)
                    << (serves ? file.after : body);
                QTest::addRow("%s, ranges \"%s\", resume off", file.name, value)
                    << file.before << header << false << noHeader << body;
            }
        }
    }
    void theFileAndTheServerDecideWhatIsAskedAndWritten()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, header);
        QFETCH(bool, enabled);
        QFETCH(QByteArray, range);
        QFETCH(QByteArray, after);
        if (!before.isNull())
            TestFolder::write(m_target, before);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body, "200 OK", header));
        server.answer(range == noHeader ? ScriptedServer::reply(body, "200 OK", header)
                                        : rest(before.size()));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/f"_s)).headers({{"x-own"_s, "1"_s}}).download(m_target);
        request.enableResume(enabled);
        HttpResponse *response = log.bindFile(request).send();
        const SignalRecorder replies(response, {"replyChanged(QNetworkReply*)"_s});
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines(), (QStringList{"file()"_s, "file "_s + m_target}));
        QCOMPARE(TestFolder::contents(m_target), after);
        QCOMPARE(server.requests().size(), 2);
        QCOMPARE(withoutLanguage(server.requests().at(0)), wire("GET", "/f", server.serverPort()));
        QCOMPARE(withoutLanguage(server.requests().at(1)),
                 expectedDownload(server.serverPort(), range));
    }

    void headersThatNameRangesDoInAnyCase_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::newRow("lower case") << "accept-ranges: bytes\r\n"_b;
        QTest::newRow("upper case") << "ACCEPT-RANGES: bytes\r\n"_b;
        QTest::newRow("within a longer name") << "X-Accept-Ranges-Too: no\r\n"_b;
        QTest::newRow("Content-Range") << "Content-Range: whatever\r\n"_b;
        QTest::newRow("Content-Range within a longer name") << "x-content-range-too: no\r\n"_b;
    }
    void headersThatNameRangesDoInAnyCase()
    {
        QFETCH(QByteArray, header);
        TestFolder::write(m_target, "0123");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body, "200 OK", header));
        server.answer(rest(4));
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        QVERIFY(waitUntilGone(request.url(server.address("/"_s)).download(m_target).send()));
        QCOMPARE(ranges(server), (QByteArrayList{noHeader, "bytes=4-"}));
        QCOMPARE(TestFolder::contents(m_target), body);
    }

    void theLastHeaderByNameThatNamesALengthCounts_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<QByteArray>("range"); // for a file of 12 bytes
        QTest::newRow("its own") << ""_b << noHeader;
        QTest::newRow("a longer name") << "X-Content-Length-Too: 250\r\n"_b
                                       << "bytes=12-"_b;
        QTest::newRow("another case") << "x-content-length: 250\r\n"_b
                                      << "bytes=12-"_b;
        QTest::newRow("an earlier name") << "A-Content-Length: 250\r\n"_b << noHeader;
        QTest::newRow("joined with a redirect's") << "X-Content-Length: 145, 250\r\n"_b
                                                  << "bytes=12-"_b;
        QTest::newRow("no number") << "X-Content-Length: many\r\n"_b << noHeader;
    }
    void theLastHeaderByNameThatNamesALengthCounts()
    {
        QFETCH(QByteArray, header);
        QFETCH(QByteArray, range);
        TestFolder::write(m_target, "abcdefghijkl");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body, "200 OK", "Accept-Ranges: bytes\r\n" + header));
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        QVERIFY(waitUntilGone(request.url(server.address("/"_s)).download(m_target).send()));
        QCOMPARE(ranges(server), (QByteArrayList{noHeader, range}));
    }

    void anUnannouncedLengthCountsAsNone()
    {
        TestFolder::write(m_target, "0123");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("HTTP/1.1 200 OK\r\nAccept-Ranges: bytes\r\n"
                      "Transfer-Encoding: chunked\r\n\r\na\r\n"
                      + body + "\r\n0\r\n\r\n");
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        QVERIFY(waitUntilGone(request.url(server.address("/"_s)).download(m_target).send()));
        QCOMPARE(ranges(server), (QByteArrayList{noHeader, noHeader}));
        QCOMPARE(TestFolder::contents(m_target), "0123" + body); // longer than nothing
    }

    void aServerThatSendsEverythingAllTheSameIsAppended()
    {
        TestFolder::write(m_target, "0123");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body, "200 OK", "Accept-Ranges: bytes\r\n"));
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        QVERIFY(waitUntilGone(request.url(server.address("/"_s)).download(m_target).send()));
        QCOMPARE(ranges(server), (QByteArrayList{noHeader, "bytes=4-"}));
        QCOMPARE(TestFolder::contents(m_target), "0123" + body);
    }

    void theProgressCountsThisTransferOnly()
    {
        TestFolder::write(m_target, "0123");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body, "200 OK", "Accept-Ranges: bytes\r\n"));
        server.answer(rest(4));
        HttpClient client;
        QString last;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s))
            .download(m_target)
            .onDownloadFileProgress([&last](qint64 received, qint64 total) {
                last = "%1 of %2"_s.arg(received).arg(total);
            });
        HttpResponse *response = request.send();
        HttpRequestFields fields;
        connect(response, QOverload<>::of(&HttpResponse::downloadFileFinished), this,
                [&] { fields = response->request().fields; });
        QVERIFY(waitUntilGone(response));
        QCOMPARE(last, "6 of 6"_s);
        QCOMPARE(fields.downloadedBytes, Q_INT64_C(10)); // what was there and what came
        QCOMPARE(fields.totalBytes, Q_INT64_C(10));
        QVERIFY(fields.supportsResume);
    }

    void aCompleteFileIsNotAnnouncedToTheCaller()
    {
        TestFolder::write(m_target, "abcdefghij");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body, "200 OK", "Accept-Ranges: bytes\r\n"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindFile(request.url(server.address("/"_s)).download(m_target));
        request.onHead([&log](const QMap<QString, QString> &) { log.add("head"_s); })
            .onDownloadFileNameChanged([&log](const QString &) { log.add("name"_s); });
        HttpResponse *response = log.bindOutcomes(request).send();
        const SignalRecorder heard(response, {"downloadFileFinished()"_s, "finished()"_s});
        QVERIFY(waitUntilGone(response));
        // Once each, and all from the real request.
        QCOMPARE(heard.calls(), (QStringList{"downloadFileFinished()"_s, "finished()"_s}));
        QCOMPARE(log.lines(),
                 (QStringList{"head"_s, "file()"_s, "file "_s + m_target, "finished()"_s,
                              "finished(bytes )"_s, "finished(text )"_s, "finished(map {})"_s,
                              "repeated()"_s}));
    }

    void aRetryAsksAnewWhereToGoOn()
    {
        TestFolder::write(m_target, "0123");
        const QByteArray whole = ScriptedServer::reply(body, "200 OK", "Accept-Ranges: bytes\r\n");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(whole);
        server.answer(rest(4).chopped(4)); // breaks off after two bytes
        server.answer(whole);
        server.answer(rest(6));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindFile(request.url(server.address("/"_s)).download(m_target).retry(1));
        log.bindOutcomes(request).send();
        TRY_COMPARE(log.outcomes(), 1);
        QCOMPARE(log.lines().mid(0, 3),
                 (QStringList{"retried()"_s, "file()"_s, "file "_s + m_target}));
        QCOMPARE(ranges(server), (QByteArrayList{noHeader, "bytes=4-", noHeader, "bytes=6-"}));
        QCOMPARE(TestFolder::contents(m_target), body);
    }

    void aRetryFromAServerWithoutRangesStartsOver()
    {
        TestFolder::write(m_target, "0123");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body, "200 OK", "Accept-Ranges: bytes\r\n"));
        server.answer(rest(4).chopped(4));
        server.answer(ScriptedServer::reply("another"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s)).download(m_target).retry(1);
        log.bindOutcomes(request).send();
        TRY_COMPARE(log.outcomes(), 1);
        QCOMPARE(log.lines().first(), "retried()"_s);
        QCOMPARE(ranges(server), (QByteArrayList{noHeader, "bytes=4-", noHeader, noHeader}));
        QCOMPARE(TestFolder::contents(m_target), "another"_b);
    }

    void aRetryKeepsARangeOfTheCallers_data()
    {
        QTest::addColumn<QByteArray>("range");
        QTest::addColumn<bool>("resume");
        QTest::newRow("with an end") << "bytes=2-3"_b << true;
        QTest::newRow("without an end") << "bytes=2-"_b << true;
        QTest::newRow("with an end, resume off") << "bytes=2-3"_b << false;
        QTest::newRow("without an end, resume off") << "bytes=2-"_b << false;
    }
    void aRetryKeepsARangeOfTheCallers()
    {
        QFETCH(QByteArray, range);
        QFETCH(bool, resume);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body, "200 OK", "Accept-Ranges: bytes\r\n"));
        server.answer(ScriptedServer::reply("", "503 Busy"));
        server.answer(ScriptedServer::reply(body, "200 OK", "Accept-Ranges: bytes\r\n"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s)).download(m_target).enableResume(resume).retry(1);
        request.headers({{"Range"_s, QString::fromLatin1(range)}});
        log.bindOutcomes(request).send();
        TRY_COMPARE(log.outcomes(), 1);
        QCOMPARE(ranges(server), (QByteArrayList{noHeader, range, noHeader, range}));
    }

    void aRangeInWhosePlaceTheToolkitsWasComesBack()
    {
        TestFolder::write(m_target, "0123");
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body, "200 OK", "Accept-Ranges: bytes\r\n"));
        server.answer(ScriptedServer::reply("", "503 Busy"));
        server.answer(ScriptedServer::reply(body)); // serves no ranges any more
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s)).download(m_target).retry(1);
        request.headers({{"Range"_s, "bytes=2-"_s}});
        log.bindOutcomes(request).send();
        TRY_COMPARE(log.outcomes(), 1);
        QCOMPARE(ranges(server), (QByteArrayList{noHeader, "bytes=4-", noHeader, "bytes=2-"}));
    }

    void aRepeatCountsAnew()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body));
        server.answer(ScriptedServer::reply(body));
        server.answer(ScriptedServer::reply("", "503 Busy")); // to the second probe
        server.answer(ScriptedServer::reply(body));
        HttpClient client;
        QVector<QPair<qint64, qint64>> counts;
        connect(&client, &QNetworkAccessManager::finished, this, [&counts](QNetworkReply *reply) {
            const auto &fields = reply->findChild<HttpResponse *>()->request().fields;
            counts.append({fields.downloadedBytes, fields.totalBytes});
        });
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s)).download(m_target).repeat(2);
        log.bindOutcomes(request).send();
        TRY_COMPARE(log.lines().count("repeated()"_s), 1);
        QCOMPARE(counts, (QVector<QPair<qint64, qint64>>{{10, 10}, {10, 0}}));
    }

    void aRepeatAppendsToTheCompleteFile()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body, "200 OK", "Accept-Ranges: bytes\r\n"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s)).download(m_target).repeat(2);
        log.bindOutcomes(request).send();
        TRY_COMPARE(log.lines().count("repeated()"_s), 1);
        QCOMPARE(ranges(server), (QByteArrayList{noHeader, noHeader, noHeader, noHeader}));
        QCOMPARE(TestFolder::contents(m_target), body + body);
    }

private:
    static QByteArray expectedDownload(quint16 port, const QByteArray &range)
    {
        return wire("GET", "/f", port,
                    "x-own: 1\r\n"
                        + (range == noHeader ? QByteArray() : "Range: " + range + "\r\n"));
    }
};

QTEST_GUILESS_MAIN(TestHttpResume)
#include "tst_httpresume.moc"
