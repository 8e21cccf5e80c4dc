#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/httptesting.h"
#include "tests/http/loggingreceiver.h"
#include "tests/support/logcapture.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"

#include <QBuffer>
#include <QHttpMultiPart>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

#include <memory>

using HttpTesting::waitUntilGone;
using Then = ScriptedServer::Then;

Q_DECLARE_METATYPE(Then)
Q_DECLARE_METATYPE(Identity)

namespace {

/// A device that fails when it is read.
class BrokenDevice : public QIODevice
{
    Q_OBJECT

public:
    qint64 size() const override { return 100; }
    qint64 bytesAvailable() const override { return 100; }

protected:
    qint64 readData(char *, qint64) override
    {
        setErrorString(QStringLiteral("broken"));
        return -1;
    }
    qint64 writeData(const char *, qint64) override { return -1; }
};

} // namespace

/// What goes wrong outside: addresses, connections, certificates, bodies. Whatever it is, there is
/// one outcome.
class TestFaults : public QObject
{
    Q_OBJECT

    /// Sends, waits for the end and gives back the outcome that was reported.
    QString outcomeOf(HttpRequest request)
    {
        CallbackLog log;
        QString outcome = "no outcome"_s;
        request.onError([&outcome](QNetworkReply::NetworkError code) {
            outcome = "error %1"_s.arg(int(code));
        });
        request.onFinished([&outcome](const QByteArray &body) {
            outcome = "finished with %1 bytes"_s.arg(body.size());
        });
        HttpResponse *response = log.bindOutcomes(request).send();
        if (!response)
            return "nothing sent"_s;
        if (!waitUntilGone(response))
            return "no end"_s;
        if (log.outcomes() != 1 || log.lines().count("repeated()"_s) != 1)
            return "%1 outcomes"_s.arg(log.outcomes());
        return outcome;
    }

private Q_SLOTS:
    void aBadAddressIsOneError_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("outcome");
        const QString unknownProtocol = "error 301"_s;
        const QString unknownHost = "error 3"_s;
        QTest::newRow("empty") << QString() << unknownProtocol;
        QTest::newRow("no scheme") << "localhost/path"_s << unknownProtocol;
        QTest::newRow("words") << "not an address"_s << unknownProtocol;
        QTest::newRow("unknown scheme") << "gopher-x://localhost/"_s << unknownProtocol;
        QTest::newRow("bad port") << "http://no-such-host.invalid:99999/"_s << unknownHost;
        QTest::newRow("open bracket") << "http://[/"_s << unknownHost;
        QTest::newRow("no host") << "http:///path"_s << unknownHost;
        QTest::newRow("unknown host") << "http://no-such-host.invalid/"_s
                                      << "error 3"_s;
        QTest::newRow("refused port")
            << "http://localhost:%1/"_s.arg(HttpTesting::deadPort()) << "error 1"_s;
        QTest::newRow("refused port, TLS")
            << "https://localhost:%1/"_s.arg(HttpTesting::deadPort()) << "error 1"_s;
    }
    void aBadAddressIsOneError()
    {
        QFETCH(QString, address);
        QFETCH(QString, outcome);
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        QCOMPARE(outcomeOf(request.url(address)), outcome);
    }

    void aCertificateThatDoesNotFitIsOneError_data()
    {
        QTest::addColumn<Identity>("identity");
        QTest::addColumn<bool>("trusted");
        QTest::newRow("no trust") << Identity::Localhost << false;
        QTest::newRow("signed by itself") << Identity::Stranger << true;
        QTest::newRow("another name") << Identity::Elsewhere << true;
    }
    void aCertificateThatDoesNotFitIsOneError()
    {
        QFETCH(Identity, identity);
        QFETCH(bool, trusted);
        std::unique_ptr<TrustTestAuthority> trust;
        if (trusted)
            trust = std::make_unique<TrustTestAuthority>();
        ScriptedServer server(identity);
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("secret"));
        HttpClient client;
        HttpRequest request(HttpMethod::Post, &client);
        QCOMPARE(outcomeOf(request.url(server.address("/"_s)).rawBody("password")), "error 6"_s);
        QCOMPARE(server.requests(), QList<QByteArray>());
    }

    void aCertificateMayBeAcceptedByItsCommonName()
    {
        const TrustTestAuthority trust;
        QCOMPARE(certificateOf(Identity::CommonName).subjectAlternativeNames().size(), 0);
        ScriptedServer server(Identity::CommonName);
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("there"));
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        QCOMPARE(outcomeOf(request.url(server.address("/"_s))), "finished with 5 bytes"_s);
    }

    void aConnectionThatBreaksFailsThoseThatWaitForOne()
    {
        // Qt makes six connections to a host.
        ScriptedServer server;
        QVERIFY(server.start());
        HttpClient client;
        QStringList failed;
        for (int i = 0; i < 8; ++i) {
            HttpRequest(HttpMethod::Get, &client)
                .url(server.address("/%1"_s.arg(i)))
                .onError([&failed, i](QNetworkReply::NetworkError code) {
                    failed.append("%1: %2"_s.arg(i).arg(int(code)));
                })
                .send();
        }
        TRY_COMPARE(server.requests().size(), 6);
        server.answer("", Then::Close); // to what Qt sends once more
        server.hangUp();
        TRY_COMPARE(failed.size(), 3);
        QVERIFY2(failed.contains("7: 2"_s), qPrintable(failed.join(QLatin1Char(' '))));
        for (const QByteArray &request : server.requests())
            QVERIFY2(!request.startsWith("GET /7"), request.constData());
    }

    void theConnectionCacheMustNotBeClearedUnderRepliesThatRun()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        const QPointer<HttpResponse> running =
            log.bindOutcomes(request.url(server.address("/"_s))).send();
        TRY_COMPARE(server.requests().size(), 1);
        client.clearConnectionCache();
        server.answer(ScriptedServer::reply("there"));
        QCOMPARE(outcomeOf(HttpRequest(HttpMethod::Get, &client).url(server.address("/"_s))),
                 "finished with 5 bytes"_s);
        // Its connection is gone, and nothing tells it.
        TRY_COMPARE(server.findChildren<QTcpSocket *>().size(), 0);
        QVERIFY(running && running->request().fields.reply->isRunning());
        QCOMPARE(log.lines(), QStringList());
    }

    void plainTextWhereTlsIsExpectedIsOneError()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("HTTP/1.1 200 OK\r\n\r\n");
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s).replace("http:"_s, "https:"_s));
        // The server waits for the end of a request that is none; it goes away instead.
        connect(&server, &QTcpServer::newConnection, this, [] {});
        CallbackLog log;
        const QPointer<HttpResponse> response = log.bindOutcomes(request).send();
        TRY_VERIFY(!server.findChildren<QTcpSocket *>().isEmpty());
        TRY_VERIFY(server.findChildren<QTcpSocket *>().first()->bytesAvailable() == 0);
        for (QTcpSocket *socket : server.findChildren<QTcpSocket *>())
            socket->abort();
        QVERIFY(!response || waitUntilGone(response));
        QCOMPARE(log.outcomes(), 1);
        QCOMPARE(log.lines().first(), "error()"_s);
    }

    void anAnswerThatIsNoneIsOneOutcome_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<Then>("then");
        QTest::addColumn<QString>("outcome"); // empty: Qt decides by what it has read
        const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n";
        QTest::newRow("closed before") << ""_b << Then::Close << "error 2"_s;
        QTest::newRow("reset before") << ""_b << Then::Reset << "error 2"_s;
        QTest::newRow("closed in the head") << head << Then::Close << QString();
        QTest::newRow("reset in the head") << head << Then::Reset << QString();
        QTest::newRow("closed after the head") << head + "\r\n" << Then::Close << QString();
        QTest::newRow("closed in the body") << head + "\r\nhalf" << Then::Close << QString();
        QTest::newRow("reset in the body") << head + "\r\nhalf" << Then::Reset << QString();
        QTest::newRow("chunk cut short")
            << "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nff\r\nhalf"_b << Then::Close
            << QString();
        QTest::newRow("chunk without a length")
            << "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\nhalf\r\n0\r\n\r\n"_b
            << Then::Close << QString();
        QTest::newRow("not HTTP") << "SSH-2.0-Server\r\n\r\n"_b << Then::Close << QString();
        QTest::newRow("broken compression")
            << ScriptedServer::reply("this is no gzip", "200 OK", "Content-Encoding: gzip\r\n")
            << Then::Close << QString();
        QTest::newRow("no length, closed")
            << "HTTP/1.1 200 OK\r\n\r\nall of it"_b << Then::Close << "finished with 9 bytes"_s;
        QTest::newRow("longer than announced")
            << "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nbody and more"_b << Then::Close
            << "finished with 4 bytes"_s;
    }
    void anAnswerThatIsNoneIsOneOutcome()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(Then, then);
        QFETCH(QString, outcome);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(bytes, then);
        HttpClient client;
        HttpRequest request(HttpMethod::Post, &client);
        const QString actual = outcomeOf(request.url(server.address("/"_s)).rawBody("x"));
        if (outcome.isEmpty()) {
            QVERIFY2(actual.startsWith("error "_s) || actual.startsWith("finished with "_s),
                     qPrintable(actual));
        } else {
            QCOMPARE(actual, outcome);
        }
    }

    void aReplyOf64MebibytesArrivesWhole()
    {
        QByteArray body(64 * 1024 * 1024, Qt::Uninitialized);
        for (int i = 0; i < body.size(); ++i)
            body[i] = char(uint(i) * 2654435761U >> 24);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body));
        HttpClient client;
        QByteArray got;
        int heads = 0;
        int outcomes = 0;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s))
            .onHead([&heads](const QMap<QString, QString> &) { ++heads; })
            .onError([&outcomes] { ++outcomes; })
            .onFinished([&](const QByteArray &bytes) {
                ++outcomes;
                got = bytes;
            });
        QVERIFY(waitUntilGone(request.send()));
        QVERIFY(got == body);
        QCOMPARE(heads, 1);
        QCOMPARE(outcomes, 1);
    }

    void aBodyThatQtCannotParseArrivesAsItIsAndAsAnEmptyMap_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("not UTF-8") << QByteArray("{\"a\":\"\xFF\xFE\0\xC3\"}", 12);
        QTest::newRow("nested 10000 deep")
            << QByteArray("{\"k\":").repeated(10000) + '1' + QByteArray(10000, '}');
    }
    void aBodyThatQtCannotParseArrivesAsItIsAndAsAnEmptyMap()
    {
        QFETCH(QByteArray, body);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body));
        HttpClient client;
        QByteArray bytes;
        QString text;
        QVariantMap map{{"unset"_s, 1}};
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s))
            .onFinished([&bytes](const QByteArray &body) { bytes = body; })
            .onFinished([&text](const QString &body) { text = body; })
            .onFinished([&map](const QVariantMap &object) { map = object; });
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(bytes, body);
        QCOMPARE(text, QString::fromUtf8(body));
        QCOMPARE(map, QVariantMap());
    }

    void aBodyDeviceThatFailsIsOneOutcome()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(""));
        HttpClient client;
        auto *multiPart = new QHttpMultiPart(QHttpMultiPart::FormDataType);
        auto *device = new BrokenDevice;
        device->setParent(multiPart);
        QVERIFY(device->open(QIODevice::ReadOnly));
        QHttpPart part;
        part.setBodyDevice(device);
        multiPart->append(part);
        HttpRequest request(HttpMethod::Post, &client);
        const QString actual =
            outcomeOf(request.url(server.address("/"_s)).multiPartBody(multiPart));
        QVERIFY2(actual.startsWith("error "_s), qPrintable(actual));
        QCOMPARE(server.requests(), QList<QByteArray>());
    }

    void aReceiverMayGoBeforeItsReply()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("late"));
        HttpClient client;
        CallbackLog log;
        auto receiver = std::make_unique<LoggingReceiver>(&log);
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s))
            .onFinished(receiver.get(), SLOT(done()))
            .onFinished(receiver.get(), &LoggingReceiver::done)
            .onError(receiver.get(), SLOT(done()));
        connect(&server, &ScriptedServer::requestReceived, this, [&receiver] { receiver.reset(); });
        QVERIFY(waitUntilGone(log.bindOutcomes(request).send()));
        QCOMPARE(log.lines().count("slot"_s), 0);
        QCOMPARE(log.outcomes(), 1);
    }

    void aClientThatGoesEndsItsRequestsWithoutAnAnswer_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::newRow("not answered") << QByteArray();
        QTest::newRow("half answered") << "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf"_b;
    }
    void aClientThatGoesEndsItsRequestsWithoutAnAnswer()
    {
        QFETCH(QByteArray, answer);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(answer, Then::KeepOpen);
        auto client = std::make_unique<HttpClient>();
        CallbackLog log;
        QVector<QPointer<HttpResponse>> responses;
        int reads = 0;
        for (int i = 0; i < 3; ++i) {
            HttpRequest request(HttpMethod::Post, client.get());
            request.url(server.address("/"_s))
                .retry(1)
                .repeat(2)
                .onReadyRead([&reads](QNetworkReply *) { ++reads; });
            responses.append(log.bindOutcomes(request).send());
        }
        TRY_COMPARE(server.requests().size(), 3);
        if (!answer.isEmpty())
            TRY_COMPARE(reads, 3);
        client.reset();
        QCOMPARE(responses.count(nullptr), 3);
        // Another exchange goes all the way, so whatever was to come of the three has come.
        server.reset();
        server.answer(ScriptedServer::reply(""));
        HttpClient next;
        QCOMPARE(outcomeOf(HttpRequest(HttpMethod::Get, &next).url(server.address("/"_s))),
                 "finished with 0 bytes"_s);
        QCOMPARE(log.lines(), QStringList());
        QCOMPARE(server.requests().size(), 1);
    }

    void aHeadWhoseServerStaysNeverEnds()
    {
        ScriptedServer staying;
        QVERIFY(staying.start());
        staying.answer("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n", Then::KeepOpen);
        ScriptedServer other;
        QVERIFY(other.start());
        other.answer(ScriptedServer::reply("other"));
        HttpClient client;
        CallbackLog log;
        HttpRequest head(HttpMethod::Head, &client);
        log.bindOutcomes(head.url(staying.address("/"_s)).onMetaDataChanged([&log] {
            log.add("metaDataChanged()"_s);
        }));
        const QPointer<HttpResponse> response = head.send();
        QNetworkReply *reply = response->request().fields.reply;
        TRY_COMPARE(log.lines(), QStringList{"metaDataChanged()"_s}); // all there is has arrived
        for (int i = 0; i < 5; ++i) {
            HttpClient another;
            QCOMPARE(outcomeOf(HttpRequest(HttpMethod::Get, &another).url(other.address("/"_s))),
                     "finished with 5 bytes"_s);
        }
        QVERIFY(reply->isRunning());
        QCOMPARE(log.outcomes(), 0);
        reply->abort();
        QCOMPARE(log.lines().mid(1, 2), (QStringList{"error()"_s, "error(code 5)"_s}));
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.outcomes(), 1);
    }

    void aHeadWhoseServerClosesFails()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n", Then::Close);
        HttpClient client;
        HttpRequest request(HttpMethod::Head, &client);
        QCOMPARE(outcomeOf(request.url(server.address("/"_s))), "error 2"_s);
    }
};

QTEST_GUILESS_MAIN(TestFaults)
#include "tst_faults.moc"
