#include "http/httpclient.h"
#include "http/httpdump.h"
#include "http/httpresponse.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"
#include "tests/support/logcapture.h"
#include "tests/support/scriptedserver.h"

#include <QHttpMultiPart>
#include <QJsonObject>
#include <QTest>

using Build = std::function<void(HttpRequest &)>;
Q_DECLARE_METATYPE(Build)

/// The whole texts that diagnostics print, and when they print them.
class TestHttpDump : public QObject
{
    Q_OBJECT

    static QString requestDump(const QString &url, const QString &method, const QString &headers,
                               const QString &body)
    {
        return "General: \n    Request URL: "_s + url + " \n    Request Method: "_s + method
               + " \nRequest Headers: \n"_s + headers + " \nRequest Body: \n"_s + body;
    }

    static QString responseDump(const QString &url, const QString &method, const QString &status,
                                const QString &requestHeaders, const QString &responseHeaders,
                                const QString &body)
    {
        return "General: \n    Request URL: "_s + url + " \n    Request Method: "_s + method
               + " \n    Request Status: "_s + status + " \nRequest Headers: \n"_s + requestHeaders
               + " \nResponse Headers: \n"_s + responseHeaders + " \nRequest Body: \n"_s + body;
    }

private Q_SLOTS:
    void aRequestIsDumpedWhole_data()
    {
        QTest::addColumn<Build>("build");
        QTest::addColumn<QString>("headers");
        QTest::addColumn<QString>("body");
        const auto row = [](const char *name, const Build &build, const QString &headers,
                            const QString &body) {
            QTest::newRow(name) << build << headers << body;
        };
        const QString none = "    null"_s;
        row(
            "nothing", [](HttpRequest &) {}, none, "    Type: None\n    Data: \n    =>    null"_s);
        row(
            "headers in their own order",
            [](HttpRequest &r) {
                r.headers({{"b"_s, "2"_s}}).headers({{"a"_s, "1"_s}, {"ä"_s, "ü %1"_s}});
            },
            "    b: 2\n    a: 1\n    ä: ü %1"_s, "    Type: None\n    Data: \n    =>    null"_s);
        row(
            "empty header",
            [](HttpRequest &r) {
                r.headers({{"a"_s, QString()}});
            },
            "    a: "_s, "    Type: None\n    Data: \n    =>    null"_s);
        row(
            "None with bytes in it", [](HttpRequest &r) { r.fields.body = QByteArray("unseen"); },
            none, "    Type: None\n    Data: \n    =>    null"_s);
        row(
            "Raw", [](HttpRequest &r) { r.rawBody("one\ntwo ä"); }, none,
            "    Type: Raw\n    Data: \n    =>    one\n    =>    two ä"_s);
        row(
            "Raw, empty", [](HttpRequest &r) { r.rawBody({}); }, none,
            "    Type: Raw\n    Data: \n    =>    null"_s);
        row(
            "Raw, one trailing newline", [](HttpRequest &r) { r.rawBody("one\n"); }, none,
            "    Type: Raw\n    Data: \n    =>    one"_s);
        row(
            "Raw, empty lines", [](HttpRequest &r) { r.rawBody("\none\n\ntwo\n\n"); }, none,
            "    Type: Raw\n    Data: \n    =>    \n    =>    one\n    =>    \n    =>    two\n"
            "    =>    "_s);
        row(
            "Raw with a back reference", [](HttpRequest &r) { r.rawBody("\\1 %1 $1"); }, none,
            "    Type: Raw\n    Data: \n    =>    \\1 %1 $1"_s);
        row(
            "Raw, not UTF-8", [](HttpRequest &r) { r.rawBody("a\xFFz"); }, none,
            "    Type: Raw\n    Data: \n    =>    a\uFFFDz"_s);
        row(
            "RawJson",
            [](HttpRequest &r) {
                r.jsonBody({{"a"_s, "ä"_s}});
            },
            "    Content-Type: application/json"_s,
            "    Type: RawJson\n    Data: \n    =>    {\n    =>        \"a\": \"ä\"\n    =>    }"_s);
        row(
            "form", [](HttpRequest &r) { r.formUrlEncodedBody("a=%20&b="_b); },
            "    Content-Type: application/x-www-form-urlencoded"_s,
            "    Type: x_www_form_urlencoded\n    Data: \n    =>    a=%20&b="_s);
        row(
            "FileMap",
            [](HttpRequest &r) {
                r.fileMapBody({{"b"_s, "/tmp/2"_s}, {"a"_s, "/tmp/1 ä"_s}});
            },
            none, "    Type: FileMap\n    Data: \n    =>    a: /tmp/1 ä\n    =>    b: /tmp/2"_s);
        row(
            "FileMap, empty", [](HttpRequest &r) { r.fileMapBody({}); }, none,
            "    Type: FileMap\n    Data: \n    =>    null"_s);
        row(
            "FormData",
            [](HttpRequest &r) {
                r.formDataBody({{"b"_s, 2}, {"a"_s, "x\ny"_s}, {"c"_s, QVariant()}});
            },
            none,
            "    Type: FormData\n    Data: \n    =>    a: x\n    =>    y\n    =>    b: 2\n"
            "    =>    c: "_s);
        row(
            "FormData, empty", [](HttpRequest &r) { r.formDataBody({}); }, none,
            "    Type: FormData\n    Data: \n    =>    null"_s);
        row(
            "MultiPart without an object", [](HttpRequest &r) { r.multiPartBody(nullptr); }, none,
            "    Type: MultiPart\n    Data: \n    =>    QVariant(QHttpMultiPart*, QObject(0x0))"_s);
    }
    void aRequestIsDumpedWhole()
    {
        QFETCH(Build, build);
        QFETCH(QString, headers);
        QFETCH(QString, body);
        HttpRequest request(HttpMethod::Delete, nullptr);
        build(request.url("http://h:8/p%20q?a=%C3%A4#f"_s));
        QCOMPARE(HttpDump::request(request.fields),
                 requestDump("http://h:8/p q?a=ä#f"_s, "DELETE"_s, headers, body));
    }

    void aMultiPartBodyIsDumpedAsItsPointer()
    {
        QHttpMultiPart multiPart;
        HttpRequest request(HttpMethod::Post, nullptr);
        request.multiPartBody(&multiPart);
        const QString pointer = QString::number(quintptr(&multiPart), 16);
        QCOMPARE(HttpDump::request(request.fields),
                 requestDump(QString(), "POST"_s, "    null"_s,
                             "    Type: MultiPart\n    Data: \n    =>    QVariant(QHttpMultiPart*, "
                             "QHttpMultiPart(0x%1))"_s.arg(pointer)));
    }

    void anUnknownMethodIsDumpedWithoutAVerb()
    {
        HttpRequest request(HttpMethod(4711), nullptr);
        QCOMPARE(HttpDump::request(request.url("http://h"_s).fields),
                 requestDump("http://h"_s, QString(), "    null"_s,
                             "    Type: None\n    Data: \n    =>    null"_s));
    }

    void aPlaceholderThatAHeaderBringsIsFilledByWhatComesLater()
    {
        HttpRequest request(HttpMethod::Put, nullptr);
        request.url("http://h/"_s)
            .headers({{"a"_s, "%{url} %{method} %{requestHeaders} %{REQUESTBODY}"_s},
                      {"b"_s, "<%{requestBody}>"_s}})
            .rawBody("%{url} %{method} %{requestHeaders} %{requestBody}");
        const QString body = "    Type: Raw\n    Data: \n    =>    %{url} %{method} "
                             "%{requestHeaders} %{requestBody}"_s;
        QCOMPARE(HttpDump::request(request.fields),
                 requestDump("http://h/"_s, "PUT"_s,
                             "    a: %{url} %{method} %{requestHeaders} %{REQUESTBODY}\n    b: <"_s
                                 + body + ">"_s,
                             body));
    }

    void aResponseIsDumpedWhole()
    {
        ControlledClient client;
        HttpResponse *response = HttpRequest(HttpMethod::Post, &client)
                                     .url("http://h/a%20b"_s)
                                     .headers({{"x"_s, "1"_s}, {"y"_s, "2"_s}})
                                     .rawBody("one\ntwo\n")
                                     .send();
        ControlledReply *reply = client.replies.first();
        reply->setHeader("Server", "ä\xC3\xA4 <%{requestBody}>");
        reply->setHeader("Empty", "");
        reply->setErrorOnly(QNetworkReply::ContentNotFoundError, "not %1 <%{requestBody}>"_s);
        const QString body = "    Type: Raw\n    Data: \n    =>    one\n    =>    two"_s;
        QCOMPARE(HttpDump::response(response->request().fields),
                 responseDump("http://h/a b"_s, "POST"_s, "203(not %1 <"_s + body + ">)"_s,
                              "    x: 1\n    y: 2"_s,
                              "    Server: ää <"_s + body + ">\n    Empty: "_s, body));
    }

    void aResponseWithoutHeadersIsDumpedWithNull()
    {
        ControlledClient client;
        HttpResponse *response = HttpRequest(HttpMethod::Get, &client).send();
        QCOMPARE(HttpDump::response(response->request().fields),
                 responseDump(QString(), "GET"_s, "0(Unknown error)"_s, "    null"_s, "    null"_s,
                              "    Type: None\n    Data: \n    =>    null"_s));
    }

    void aRealExchangeIsDumpedBothWaysAtLevelFour_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<bool>("dumped");
        QTest::newRow("3") << 3 << false;
        QTest::newRow("4") << 4 << true;
        QTest::newRow("5") << 5 << true;
    }
    void aRealExchangeIsDumpedBothWaysAtLevelFour()
    {
        QFETCH(int, level);
        QFETCH(bool, dumped);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("hello", "200 OK", "X-Answer: yes\r\n"));
        HttpClient client;
        LogCapture log;
        HttpResponse *response = HttpRequest(HttpMethod::Get, &client)
                                     .url(server.address("/x"_s))
                                     .headers({{"own"_s, "1"_s}})
                                     .logLevel(level)
                                     .send();
        QVERIFY(HttpTesting::waitUntilGone(response));
        const QString body = "    Type: None\n    Data: \n    =>    null"_s;
        // An empty GET goes out with a length, which the request as described does not have.
        QCOMPARE(WireRequest(server.requests().first()).header("Content-Length"), "0"_b);
        const QStringList dumps{requestDump(server.address("/x"_s), "GET"_s, "    own: 1"_s, body),
                                responseDump(server.address("/x"_s), "GET"_s, "0(Unknown error)"_s,
                                             "    own: 1\n    Content-Length: 0"_s,
                                             "    X-Answer: yes\n    Content-Length: 5"_s, body)};
        QCOMPARE(log.texts(QtDebugMsg), dumped ? dumps : QStringList());
        QCOMPARE(log.lines().size(), dumped ? 2 : 0);
    }

    void aFormIsDumpedWithTheHeaderItGotOnTheWayOut()
    {
        ControlledClient client;
        LogCapture log;
        HttpResponse *response = HttpRequest(HttpMethod::Post, &client)
                                     .url("http://h"_s)
                                     .formDataBody({{"a"_s, "1"_s}})
                                     .logLevel(4)
                                     .send();
        const QString type = QString::fromLatin1(
            response->request().fields.networkRequest.rawHeader("Content-Type"));
        QVERIFY2(type.startsWith("multipart/form-data;boundary=boundary_"_s), qPrintable(type));
        QCOMPARE(log.texts(QtDebugMsg),
                 QStringList{requestDump("http://h"_s, "POST"_s, "    Content-Type: "_s + type,
                                         "    Type: FormData\n    Data: \n    =>    a: 1"_s)});
    }

    void everyResponseOfAReplyIsDumped()
    {
        ControlledClient client;
        LogCapture log;
        HttpRequest request(HttpMethod::Get, &client);
        HttpResponse *response = request.url("http://h/1"_s).logLevel(4).send();
        HttpRequest second(response->request());
        second.url("http://h/2"_s).logLevel(3);
        new HttpResponse(second, client.replies.first()); // another one on the same reply
        log.clear();
        client.replies.first()->succeed();
        const QString none = "    null"_s;
        const QString body = "    Type: None\n    Data: \n    =>    null"_s;
        const QString status = "0(Unknown error)"_s;
        QCOMPARE(log.texts(QtDebugMsg),
                 (QStringList{responseDump("http://h/1"_s, "GET"_s, status, none, none, body),
                              responseDump("http://h/2"_s, "GET"_s, status, none, none, body)}));
    }

    void aFailedExchangeHasNoResponseDump()
    {
        ControlledClient client;
        LogCapture log;
        HttpRequest(HttpMethod::Get, &client).url("http://h/1"_s).logLevel(4).send();
        log.clear();
        client.replies.first()->fail(QNetworkReply::TimeoutError, "late"_s);
        QCOMPARE(log.lines().size(), 0);
    }

    void anErrorIsOneDebugLineFromLevelFiveOn_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("4") << 4 << QStringList();
        QTest::newRow("5") << 5 << QStringList{"http://h/a b error: 4"_s};
        QTest::newRow("6") << 6 << QStringList{"http://h/a b error: 4"_s};
    }
    void anErrorIsOneDebugLineFromLevelFiveOn()
    {
        QFETCH(int, level);
        QFETCH(QStringList, lines);
        ControlledClient client;
        LogCapture log;
        HttpRequest(HttpMethod::Get, &client).url("http://h/a%20b"_s).logLevel(level).send();
        log.clear();
        client.replies.first()->fail(QNetworkReply::TimeoutError, "late"_s);
        QCOMPARE(log.texts(QtDebugMsg), lines);
        QCOMPARE(log.lines().size(), lines.size());
    }
};

QTEST_GUILESS_MAIN(TestHttpDump)
#include "tst_httpdump.moc"
