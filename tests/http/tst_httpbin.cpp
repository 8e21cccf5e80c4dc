#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/httptesting.h"
#include "tests/support/httpbinserver.h"
#include "tests/support/testfolder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using HttpTesting::waitUntilGone;

/// What an independent server makes of the requests, and the toolkit of its answers.
class TestHttpbin : public QObject
{
    Q_OBJECT

    HttpbinServer m_server;
    HttpClient m_client;

    HttpRequest get(const QString &path)
    {
        return HttpRequest(HttpMethod::Get, &m_client).url(m_server.address(path));
    }

    /// Sends and gives the outcome: the body, or "error CODE".
    static QByteArray outcomeOf(HttpRequest request)
    {
        QByteArray outcome = "no outcome";
        request.onFinished([&outcome](const QByteArray &body) { outcome = body; });
        request.onError([&outcome](QNetworkReply::NetworkError code) {
            outcome = "error " + QByteArray::number(code);
        });
        HttpResponse *response = request.send();
        return waitUntilGone(response) ? outcome : "no end"_b;
    }

    static QJsonObject jsonOf(const HttpRequest &request)
    {
        return QJsonDocument::fromJson(outcomeOf(request)).object();
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_server.start(), qPrintable(m_server.errorText())); }

    void everyMethodArrivesWithItsBody_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<QString>("verb");
        QTest::newRow("GET") << int(HttpMethod::Get) << "GET"_s;
        QTest::newRow("PUT") << int(HttpMethod::Put) << "PUT"_s;
        QTest::newRow("POST") << int(HttpMethod::Post) << "POST"_s;
        QTest::newRow("DELETE") << int(HttpMethod::Delete) << "DELETE"_s;
    }
    void everyMethodArrivesWithItsBody()
    {
        QFETCH(int, method);
        QFETCH(QString, verb);
        HttpRequest request(HttpMethod(method), &m_client);
        request.url(m_server.address("/anything/p%20q?a=1&a=2&b=%26"_s))
            .headers({{"x-own"_s, "value"_s}})
            .jsonBody({{"text"_s, "ä"_s}});
        const QJsonObject seen = jsonOf(request);
        QCOMPARE(seen.value("method"_s).toString(), verb);
        QCOMPARE(seen.value("json"_s), QJsonValue(QJsonObject{{"text"_s, "ä"_s}}));
        QCOMPARE(seen.value("args"_s),
                 QJsonValue(QJsonObject{{"a"_s, QJsonArray{"1"_s, "2"_s}}, {"b"_s, "&"_s}}));
        const QJsonObject headers = seen.value("headers"_s).toObject();
        QCOMPARE(headers.value("X-Own"_s).toString(), "value"_s);
        QCOMPARE(headers.value("Content-Type"_s).toString(), "application/json"_s);
    }

    void formsArriveAsTheyWereMeant()
    {
        const TestFolder folder;
        TestFolder::write(folder.path("one.txt"_s), "first\r\nfile");
        TestFolder::write(folder.path("two.txt"_s), "");
        HttpRequest request(HttpMethod::Post, &m_client);
        request.url(m_server.address("/post"_s));
        const QJsonObject texts{{"a"_s, "1 & 2"_s}, {"b"_s, "ä\r\nö"_s}, {"c"_s, QString()}};

        QJsonObject seen = jsonOf(HttpRequest(request).formDataBody(texts.toVariantMap()));
        QCOMPARE(seen.value("form"_s), QJsonValue(texts));
        QCOMPARE(seen.value("files"_s), QJsonValue(QJsonObject()));

        seen = jsonOf(HttpRequest(request).formUrlEncodedBody(texts.toVariantMap()));
        QCOMPARE(seen.value("form"_s), QJsonValue(texts));

        seen = jsonOf(HttpRequest(request).fileMapBody(
            {{"x"_s, folder.path("one.txt"_s)}, {"y"_s, folder.path("two.txt"_s)}}));
        QCOMPARE(seen.value("files"_s),
                 QJsonValue(QJsonObject{{"x"_s, "first\r\nfile"_s}, {"y"_s, QString()}}));
        QCOMPARE(seen.value("form"_s), QJsonValue(QJsonObject()));
    }

    void credentialsAreGivenAsOftenAsAllowed_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("password");
        QTest::addColumn<int>("times");
        QTest::addColumn<int>("refusals");
        QTest::addColumn<bool>("succeeds");
        for (const QString &path :
             {"/basic-auth/user/secret"_s, "/digest-auth/auth/user/secret"_s}) {
            const QByteArray kind = path.section(QLatin1Char('-'), 0, 0).mid(1).toLatin1();
            QTest::newRow(kind + ", right") << path << "secret"_s << 1 << 0 << true;
            QTest::newRow(kind + ", none") << path << "secret"_s << 0 << 0 << false;
            QTest::newRow(kind + ", wrong") << path << "wrong"_s << 1 << 1 << false;
        }
    }
    void credentialsAreGivenAsOftenAsAllowed()
    {
        QFETCH(QString, path);
        QFETCH(QString, password);
        QFETCH(int, times);
        QFETCH(int, refusals);
        QFETCH(bool, succeeds);
        HttpClient client; // which keeps credentials that did
        QAuthenticator credentials;
        credentials.setUser("user"_s);
        credentials.setPassword(password);
        int refused = 0;
        int asked = 0;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(m_server.address(path))
            .authenticator(credentials)
            .maxAuthenticationTimes(times)
            .onAuthenticationRequired([&asked](QAuthenticator *) { ++asked; })
            .onAuthenticationRequireFailed([&refused] { ++refused; });
        const QByteArray outcome = outcomeOf(request);
        QCOMPARE(outcome.startsWith("error 204"), !succeeds);
        QCOMPARE(QJsonDocument::fromJson(outcome).object().value("authenticated"_s).toBool(),
                 succeeds);
        QCOMPARE(refused, refusals);
        QCOMPARE(asked, 0); // the request brought some
    }

    void aReceiverIsAskedForCredentialsThatTheRequestHasNot()
    {
        HttpClient client;
        int asked = 0;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(m_server.address("/basic-auth/user/secret"_s))
            .onAuthenticationRequired([&asked](QAuthenticator *credentials) {
                ++asked;
                credentials->setUser("user"_s);
                credentials->setPassword("secret"_s);
            });
        QCOMPARE(jsonOf(request).value("user"_s).toString(), "user"_s);
        QCOMPARE(asked, 1);
    }

    void redirectsAreFollowedWhenTheRequestAllowsIt()
    {
        int redirects = 0;
        HttpRequest request = get("/redirect/3"_s).onRedirected([&](const QUrl &) { ++redirects; });
        QVERIFY(outcomeOf(request).contains("Redirecting"));
        QCOMPARE(redirects, 0);
        request.fields.networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                                                   QNetworkRequest::NoLessSafeRedirectPolicy);
        QCOMPARE(jsonOf(request).value("url"_s).toString(), m_server.address("/get"_s));
        QCOMPARE(redirects, 3);
    }

    void theClientKeepsCookies()
    {
        outcomeOf(get("/cookies/set?taste=sweet"_s));
        QCOMPARE(jsonOf(get("/cookies"_s)),
                 (QJsonObject{{"cookies"_s, QJsonObject{{"taste"_s, "sweet"_s}}}}));
    }

    void aBodyInChunksArrivesWhole()
    {
        const QByteArrayList lines = outcomeOf(get("/stream/5"_s)).split('\n');
        QCOMPARE(lines.size(), 6); // an empty one after the last
        for (int i = 0; i < 5; ++i)
            QCOMPARE(QJsonDocument::fromJson(lines.at(i)).object().value("id"_s).toInt(-1), i);
    }

    void aBodyThatDripsArrivesWhole()
    {
        int parts = 0;
        HttpRequest request = get("/drip?duration=1&numbytes=10&delay=0"_s);
        request.onReadyRead([&parts](QNetworkReply *) { ++parts; });
        QCOMPARE(outcomeOf(request), QByteArray(10, '*'));
        QVERIFY2(parts > 1, qPrintable(QString::number(parts)));
    }

    void aSlowAnswerIsGivenUp_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("block");
        for (const bool block : {false, true}) {
            QTest::addRow("late%s", block ? ", blocking" : "") << "/delay/5"_s << block;
            QTest::addRow("dripping%s", block ? ", blocking" : "")
                << "/drip?duration=5&numbytes=100&delay=0"_s << block;
        }
    }
    void aSlowAnswerIsGivenUp()
    {
        QFETCH(QString, path);
        QFETCH(bool, block);
        int timeouts = 0;
        HttpRequest request = get(path).timeout(500).block(block);
        QCOMPARE(outcomeOf(request.onTimeout([&timeouts] { ++timeouts; })), "error 5"_b);
        QCOMPARE(timeouts, 1);
    }

    void compressedBodiesAreUnpacked_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("flag");
        QTest::newRow("gzip") << "/gzip"_s
                              << "gzipped"_s;
        QTest::newRow("deflate") << "/deflate"_s
                                 << "deflated"_s;
    }
    void compressedBodiesAreUnpacked()
    {
        QFETCH(QString, path);
        QFETCH(QString, flag);
        QCOMPARE(jsonOf(get(path)).value(flag), QJsonValue(true));
    }

    void statusesFrom400OnAreErrors_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("outcome");
        QTest::newRow("200") << 200 << ""_b;
        QTest::newRow("204") << 204 << ""_b;
        QTest::newRow("400") << 400 << "error 302"_b;
        QTest::newRow("403") << 403 << "error 201"_b;
        QTest::newRow("404") << 404 << "error 203"_b;
        QTest::newRow("410") << 410 << "error 207"_b;
        QTest::newRow("429") << 429 << "error 299"_b;
        QTest::newRow("500") << 500 << "error 401"_b;
        QTest::newRow("503") << 503 << "error 403"_b;
    }
    void statusesFrom400OnAreErrors()
    {
        QFETCH(int, status);
        QFETCH(QByteArray, outcome);
        QCOMPARE(outcomeOf(get("/status/%1"_s.arg(status))), outcome);
    }

    void aPartialFileIsContinued()
    {
        const TestFolder folder;
        const QString target = folder.path("f"_s);
        QByteArray whole;
        for (int i = 0; i < 10240; ++i)
            whole += char('a' + i % 26);
        TestFolder::write(target, whole.left(4000));
        CallbackLog log;
        HttpRequest request = get("/range/10240"_s).download(target);
        QVERIFY(waitUntilGone(log.bindFile(request).send()));
        QCOMPARE(log.lines(), (QStringList{"file()"_s, "file "_s + target}));
        QCOMPARE(TestFolder::contents(target), whole);
    }
};

QTEST_GUILESS_MAIN(TestHttpbin)
#include "tst_httpbin.moc"
