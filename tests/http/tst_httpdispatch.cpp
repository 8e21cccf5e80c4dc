#include "http/httpclient.h"
#include "http/httpdispatch.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"
#include "tests/support/logcapture.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/signalrecorder.h"

#include <QHttpMultiPart>
#include <QSignalSpy>
#include <QTest>

using HttpTesting::waitUntilGone;
using HttpTesting::wire;
using HttpTesting::withoutLanguage;

/// What one send puts on the wire, and what it does with reply, response and options.
class TestHttpDispatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyMethodGoesOutWithItsVerbAndItsBytes_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<QByteArray>("verb");
        QTest::addColumn<QByteArray>("body");
        const struct
        {
            HttpMethod method;
            QByteArray verb;
        } methods[] = {{HttpMethod::Head, "HEAD"},
                       {HttpMethod::Get, "GET"},
                       {HttpMethod::Put, "PUT"},
                       {HttpMethod::Post, "POST"},
                       {HttpMethod::Delete, "DELETE"}};
        for (const auto &each : methods) {
            QTest::addRow("%s", each.verb.constData()) << int(each.method) << each.verb << ""_b;
            QTest::addRow("%s with a body", each.verb.constData())
                << int(each.method) << each.verb << QByteArray("b\0\r\n\xFF", 5);
        }
    }
    void everyMethodGoesOutWithItsVerbAndItsBytes()
    {
        QFETCH(int, method);
        QFETCH(QByteArray, verb);
        QFETCH(QByteArray, body);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(""));
        HttpClient client;
        HttpRequest request(HttpMethod(method), &client);
        request.url(server.address("/p%20q/?a=1&b=%26#fragment"_s))
            .headers({{"x-one"_s, "1"_s}, {"x-two"_s, "ä"_s}, {"x-three"_s, QString()}});
        if (!body.isEmpty())
            request.rawBody(body).headers({{"Content-Type"_s, "a/b"_s}});
        CallbackLog log;
        HttpResponse *response = log.bindOutcomes(request).send();
        QVERIFY(waitUntilGone(response));
        const QByteArray own = QByteArray("x-one: 1\r\nx-three: \r\nx-two: \xC3\xA4\r\n")
                               + (body.isEmpty() ? "" : "Content-Type: a/b\r\n");
        QCOMPARE(server.requests().size(), 1);
        QCOMPARE(withoutLanguage(server.requests().first()),
                 wire(verb, "/p%20q/?a=1&b=%26", server.serverPort(), own, body));
        QCOMPARE(log.lines(),
                 (QStringList{"finished()"_s, "finished(bytes )"_s, "finished(text )"_s,
                              "finished(map {})"_s, "repeated()"_s}));
    }

    void everyMethodGoesThroughTheCustomVerb_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<QByteArray>("verb");
        QTest::newRow("HEAD") << 1 << "HEAD"_b;
        QTest::newRow("GET") << 2 << "GET"_b;
        QTest::newRow("PUT") << 3 << "PUT"_b;
        QTest::newRow("POST") << 4 << "POST"_b;
        QTest::newRow("DELETE") << 5 << "DELETE"_b;
    }
    void everyMethodGoesThroughTheCustomVerb()
    {
        QFETCH(int, method);
        QFETCH(QByteArray, verb);
        ControlledClient client;
        HttpResponse *response = HttpRequest(HttpMethod(method), &client).send();
        const QNetworkReply *reply = response->request().fields.reply;
        QCOMPARE(client.replies.size(), 1);
        QCOMPARE(reply, client.replies.first().data());
        QCOMPARE(reply->operation(), QNetworkAccessManager::CustomOperation);
        QCOMPARE(reply->request().attribute(QNetworkRequest::CustomVerbAttribute).toByteArray(),
                 verb);
    }

    void anUnknownMethodIsNotSent_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<int>("level");
        QTest::addColumn<bool>("reported");
        for (const int method : {0, 6, -1, 4711}) {
            for (const int level : {-1, 1, 2, 3, 5})
                QTest::addRow("%d at level %d", method, level) << method << level << (level >= 2);
        }
    }
    void anUnknownMethodIsNotSent()
    {
        QFETCH(int, method);
        QFETCH(int, level);
        QFETCH(bool, reported);
        ControlledClient client;
        CallbackLog callbacks;
        HttpRequest request(HttpMethod(method), &client);
        request.url("http://h/a%20b?%41=%2525"_s).logLevel(level).bind(CallbackKind(99), {}, {});
        LogCapture log;
        HttpResponse *response = callbacks.bindOutcomes(request).send();
        QCOMPARE(response, nullptr);
        QCOMPARE(log.texts(QtCriticalMsg),
                 reported ? QStringList{"Url: ["_s + QUrl("http://h/a%20b?%41=%2525"_s).toString()
                                        + "]; Method: [] not support!"_s}
                          : QStringList());
        QCOMPARE(log.lines().size(), int(reported));
        QCOMPARE(client.replies.size(), 0);
        QCOMPARE(callbacks.lines(), QStringList());
    }

    void theMessageOfAnUnknownMethodIsExact()
    {
        LogCapture log;
        HttpRequest(HttpMethod::Unknown, nullptr).url("http://h:8/a%20b?q=%C3%A4"_s).send();
        HttpRequest(HttpMethod::Unknown, nullptr).send();
        QCOMPARE(log.texts(QtCriticalMsg),
                 (QStringList{"Url: [http://h:8/a b?q=ä]; Method: [] not support!"_s,
                              "Url: []; Method: [] not support!"_s}));
    }

    void withoutAClientNothingIsSent_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("level");
        for (int type = int(BodyType::None); type <= int(BodyType::FormData); ++type) {
            for (const int level : {1, 2, 4})
                QTest::addRow("%s at level %d", bodyTypeName(BodyType(type)), level)
                    << type << level;
        }
    }
    void withoutAClientNothingIsSent()
    {
        QFETCH(int, type);
        QFETCH(int, level);
        QHttpMultiPart multiPart;
        HttpRequest request(HttpMethod::Post, nullptr);
        request.url("http://localhost/"_s).logLevel(level);
        request.fields.bodyType = BodyType(type);
        if (BodyType(type) == BodyType::MultiPart)
            request.multiPartBody(&multiPart);
        else if (BodyType(type) == BodyType::FileMap)
            request.fileMapBody({{"a"_s, QStringLiteral(__FILE__)}});
        else if (BodyType(type) == BodyType::FormData)
            request.formDataBody({{"a"_s, "b"_s}});
        CallbackLog callbacks;
        LogCapture log;
        HttpResponse *response = callbacks.bindOutcomes(request).send();
        QCOMPARE(response, nullptr);
        QCOMPARE(log.texts(QtCriticalMsg),
                 level >= 2 ? QStringList{"Http reply invalid"_s} : QStringList());
        QCOMPARE(log.lines().size(), int(level >= 2));
        QCOMPARE(callbacks.lines(), QStringList());
        QCOMPARE(multiPart.parent(), nullptr);
    }

    void theRequestThatWasSentStaysAsItWas()
    {
        ControlledClient client;
        HttpRequest request(HttpMethod::Post, &client);
        request.url("http://h/"_s).formDataBody({{"a"_s, "b"_s}});
        HttpResponse *response = request.send();
        QCOMPARE(request.fields.reply, nullptr);
        QCOMPARE(request.fields.networkRequest.rawHeaderList(), QList<QByteArray>());
        QCOMPARE(response->request().fields.reply, client.replies.first().data());
        QCOMPARE(response->request().fields.networkRequest.rawHeaderList(),
                 QList<QByteArray>{"Content-Type"});
    }

    void aRequestMayBeSentTwice()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("1"));
        server.answer(ScriptedServer::reply("2"));
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        QByteArrayList bodies;
        request.url(server.address("/"_s)).onFinished([&bodies](const QByteArray &body) {
            bodies.append(body);
        });
        for (int i = 0; i < 2; ++i)
            QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(bodies, (QByteArrayList{"1", "2"}));
        QCOMPARE(server.requests().at(0), server.requests().at(1));
    }

    void sendReturnsBeforeAnyCallbackRuns()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("x"));
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s));
        CallbackLog log;
        HttpResponse *response = log.bindOutcomes(request).send();
        log.add("send returned"_s);
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines().first(), "send returned"_s);
        QCOMPARE(log.outcomes(), 1);
    }

    void theResponseIsAChildOfItsReply()
    {
        ControlledClient client;
        HttpResponse *response = HttpRequest(HttpMethod::Get, &client).send();
        const QPointer<HttpResponse> alive(response);
        QCOMPARE(response->parent(), client.replies.first().data());
        delete client.replies.first();
        QVERIFY(alive.isNull());
    }

    void aResponseThatIsPassedInServesTheReply()
    {
        ControlledClient client;
        HttpRequest request(HttpMethod::Get, &client);
        CallbackLog log;
        log.bindOutcomes(request.url("http://h/x"_s));
        auto *response = new HttpResponse(HttpRequest(HttpMethod::Get, nullptr), nullptr);
        SignalRecorder recorder(response, {"replyChanged(QNetworkReply*)"_s});
        QCOMPARE(HttpDispatch::dispatch(request, response), response);
        ControlledReply *reply = client.replies.first();
        QCOMPARE(response->parent(), reply);
        QCOMPARE(response->request().fields.reply, reply);
        QCOMPARE(response->request().fields.networkRequest.url(), QUrl("http://h/x"_s));
        QCOMPARE(recorder.calls(),
                 QStringList{"replyChanged("_s
                             + HttpTesting::recorded(QVariant::fromValue<QNetworkReply *>(reply))
                             + ")"_s});
        QCOMPARE(reply->findChildren<HttpResponse *>().size(), 1);
        reply->receive("{}");
        reply->succeed();
        QCOMPARE(log.outcomes(), 1);
    }

    void theReadBufferSizeIsApplied_data()
    {
        QTest::addColumn<qint64>("asked");
        QTest::addColumn<qint64>("applied");
        QTest::newRow("default") << qint64(-1) << qint64(0);
        QTest::newRow("any negative one") << qint64(-5000) << qint64(0);
        QTest::newRow("no limit") << qint64(0) << qint64(0);
        QTest::newRow("one byte") << qint64(1) << qint64(1);
        QTest::newRow("more than 32 bits") << Q_INT64_C(5000000000) << Q_INT64_C(5000000000);
    }
    void theReadBufferSizeIsApplied()
    {
        QFETCH(qint64, asked);
        QFETCH(qint64, applied);
        ControlledClient client;
        HttpRequest(HttpMethod::Get, &client).readBufferSize(asked).send();
        QCOMPARE(client.replies.first()->readBufferSize(), applied);
    }

    void onlyTheTlsErrorsThatWereNamedAreIgnored_data()
    {
        QTest::addColumn<QList<QSslError>>("ignored");
        QTest::addColumn<bool>("answered");
        const QSslCertificate certificate = certificateOf(Identity::Stranger);
        QTest::newRow("none") << QList<QSslError>() << false;
        QTest::newRow("the right one")
            << QList<QSslError>{QSslError(QSslError::SelfSignedCertificate, certificate)} << true;
        QTest::newRow("the right one among others")
            << QList<QSslError>{QSslError(QSslError::HostNameMismatch, certificate),
                                QSslError(QSslError::SelfSignedCertificate, certificate)}
            << true;
        QTest::newRow("another error")
            << QList<QSslError>{QSslError(QSslError::HostNameMismatch, certificate)} << false;
        QTest::newRow("of another certificate") << QList<QSslError>{QSslError(
            QSslError::SelfSignedCertificate, certificateOf(Identity::Elsewhere))}
                                                << false;
    }
    void onlyTheTlsErrorsThatWereNamedAreIgnored()
    {
        QFETCH(QList<QSslError>, ignored);
        QFETCH(bool, answered);
        const TrustTestAuthority trust;
        ScriptedServer server(Identity::Stranger);
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("secret"));
        HttpClient client;
        QByteArray body;
        QNetworkReply::NetworkError code = QNetworkReply::NoError;
        HttpResponse *response =
            HttpRequest(HttpMethod::Get, &client)
                .url(server.address("/"_s))
                .ignoreSslErrors(ignored)
                .onFinished([&body](const QByteArray &bytes) { body = bytes; })
                .onError([&code](QNetworkReply::NetworkError error) { code = error; })
                .send();
        QVERIFY(waitUntilGone(response));
        QCOMPARE(body, answered ? "secret"_b : QByteArray());
        QCOMPARE(code, answered ? QNetworkReply::NoError : QNetworkReply::SslHandshakeFailedError);
        QCOMPARE(server.requests().size(), int(answered));
    }

    void theRequestDumpIsPrintedFromLevelFourOn_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<int>("lines");
        QTest::newRow("2") << 2 << 0;
        QTest::newRow("3") << 3 << 0;
        QTest::newRow("4") << 4 << 1;
        QTest::newRow("5") << 5 << 1;
    }
    void theRequestDumpIsPrintedFromLevelFourOn()
    {
        QFETCH(int, level);
        QFETCH(int, lines);
        ControlledClient client;
        LogCapture log;
        HttpRequest(HttpMethod::Get, &client).url("http://h/a%20b"_s).logLevel(level).send();
        QCOMPARE(log.lines().size(), lines);
        if (lines == 1) {
            QCOMPARE(log.texts(QtDebugMsg),
                     QStringList{"General: \n    Request URL: http://h/a b \n"
                                 "    Request Method: GET \nRequest Headers: \n    null \n"
                                 "Request Body: \n    Type: None\n    Data: \n    =>    null"_s});
        }
    }
};

QTEST_GUILESS_MAIN(TestHttpDispatch)
#include "tst_httpdispatch.moc"
