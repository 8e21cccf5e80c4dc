#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/signalrecorder.h"

#include <QSslPreSharedKeyAuthenticator>
#include <QTest>

using HttpTesting::waitUntilGone;

/// What a response passes on or answers while the exchange is under way: credentials, redirects and
/// TLS.
class TestHttpPassThrough : public QObject
{
    Q_OBJECT

    static QAuthenticator credentials(const QString &user = "user"_s)
    {
        QAuthenticator authenticator;
        authenticator.setUser(user);
        authenticator.setPassword("pass:word"_s);
        return authenticator;
    }

    static QByteArray unauthorized()
    {
        return ScriptedServer::reply(
            "who?", "401 Unauthorized",
            "WWW-Authenticate: Basic realm=\"here\"\r\nConnection: close\r\n");
    }

    /// Binds what is told of authentication.
    static void bindAuthentication(HttpRequest &request, CallbackLog &log)
    {
        request.onAuthenticationRequireFailed([&log] { log.add("failed()"_s); })
            .onAuthenticationRequireFailed([&log](QNetworkReply *) { log.add("failed(reply)"_s); })
            .onFinished([&log](const QByteArray &body) {
                log.add("finished "_s + QString::fromLatin1(body));
            })
            .onError(
                [&log](QNetworkReply::NetworkError code) { log.add("error %1"_s.arg(int(code))); });
    }

    /// The Authorization header of each request that the server got.
    static QByteArrayList authorizations(const ScriptedServer &server)
    {
        QByteArrayList values;
        for (const QByteArray &request : server.requests())
            values.append(WireRequest(request).header("Authorization"));
        return values;
    }

private Q_SLOTS:
    void aServerIsGivenTheCredentials_data()
    {
        QTest::addColumn<int>("max");
        QTest::addColumn<int>("refusals"); // before the server is content
        QTest::addColumn<int>("requests"); // that reach the server
        QTest::addColumn<QStringList>("told");
        const QStringList good{"finished in"_s};
        const QStringList bad{"error 204"_s};
        const QStringList failed{"failed()"_s, "failed(reply)"_s};
        QTest::newRow("content at once") << 1 << 0 << 1 << good;
        QTest::newRow("default, asked once") << 1 << 1 << 2 << good;
        QTest::newRow("default, asked twice") << 1 << 2 << 2 << failed + bad;
        QTest::newRow("none allowed") << 0 << 1 << 1 << bad;
        // The same credentials a second time are none to Qt, which gives up.
        QTest::newRow("two allowed, asked twice") << 2 << 2 << 2 << failed + bad;
        QTest::newRow("no limit, asked twice") << -1 << 2 << 2 << failed + bad;
    }
    void aServerIsGivenTheCredentials()
    {
        QFETCH(int, max);
        QFETCH(int, refusals);
        QFETCH(int, requests);
        QFETCH(QStringList, told);
        ScriptedServer server;
        QVERIFY(server.start());
        for (int i = 0; i < refusals; ++i)
            server.answer(unauthorized());
        server.answer(ScriptedServer::reply("in"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s))
            .authenticator(credentials())
            .maxAuthenticationTimes(max)
            .onAuthenticationRequired([&log](QAuthenticator *) { log.add("required"_s); });
        bindAuthentication(request, log);
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(log.lines(), told);
        QByteArrayList expected{"<0 headers>"};
        while (expected.size() < requests)
            expected.append("Basic " + QByteArray("user:pass:word").toBase64());
        QCOMPARE(authorizations(server), expected);
    }

    void eachDemandIsAnsweredUpToTheLimit_data()
    {
        QTest::addColumn<int>("max");
        QTest::addColumn<bool>("given"); // the request brings credentials
        QTest::addColumn<QString>("answered");
        for (const bool given : {true, false}) {
            const char *name = given ? "credentials, %d" : "receiver, %d";
            QTest::addRow(name, -7) << -7 << given << "yes yes yes yes"_s;
            QTest::addRow(name, -1) << -1 << given << "yes yes yes yes"_s;
            QTest::addRow(name, 0) << 0 << given << "no no no no"_s;
            QTest::addRow(name, 1) << 1 << given << "yes no no no"_s;
            QTest::addRow(name, 2) << 2 << given << "yes yes no no"_s;
            QTest::addRow(name, 4) << 4 << given << "yes yes yes yes"_s;
        }
    }
    void eachDemandIsAnsweredUpToTheLimit()
    {
        QFETCH(int, max);
        QFETCH(bool, given);
        QFETCH(QString, answered);
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        if (given)
            request.authenticator(credentials());
        request.maxAuthenticationTimes(max).onAuthenticationRequired(
            [&log, given](QAuthenticator *authenticator) {
                if (given)
                    log.add("asked although there are credentials"_s);
                *authenticator = credentials();
            });
        bindAuthentication(request, log);
        request.send();
        QStringList answers;
        for (int i = 0; i < 4; ++i) {
            QAuthenticator authenticator;
            Q_EMIT client.authenticationRequired(client.replies.first(), &authenticator);
            const QString pair = authenticator.user() + "/"_s + authenticator.password();
            answers.append(pair == "user/pass:word"_s ? "yes"_s : pair == "/"_s ? "no"_s : pair);
        }
        QCOMPARE(answers.join(QLatin1Char(' ')), answered);
        const QStringList failed{"failed()"_s, "failed(reply)"_s};
        QCOMPARE(log.lines(), failed + failed + failed); // from the second demand on
    }

    void withoutCredentialsAReceiverIsAsked()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(unauthorized());
        server.answer(unauthorized());
        server.answer(ScriptedServer::reply("in"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s))
            .maxAuthenticationTimes(2)
            .onAuthenticationRequired([&log](QAuthenticator *authenticator) {
                log.add("required "_s + authenticator->realm());
                *authenticator = credentials(log.lines().size() == 1 ? "one"_s : "two"_s);
            });
        bindAuthentication(request, log);
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(log.lines(), (QStringList{"required here"_s, "failed()"_s, "failed(reply)"_s,
                                           "required here"_s, "finished in"_s}));
        QCOMPARE(authorizations(server),
                 (QByteArrayList{"<0 headers>", "Basic " + QByteArray("one:pass:word").toBase64(),
                                 "Basic " + QByteArray("two:pass:word").toBase64()}));
    }

    void aReceiverIsNotAskedMoreOftenThanAllowed()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(unauthorized());
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s))
            .onAuthenticationRequired([&log](QAuthenticator *authenticator) {
                log.add("required"_s);
                *authenticator = credentials();
            });
        bindAuthentication(request, log);
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(log.lines(),
                 (QStringList{"required"_s, "failed()"_s, "failed(reply)"_s, "error 204"_s}));
    }

    void aResponseAnswersForItsOwnReplyOnly()
    {
        ControlledClient client;
        CallbackLog log;
        QVector<HttpResponse *> responses;
        for (const QString &name : {"a"_s, "b"_s}) {
            responses.append(
                HttpRequest(HttpMethod::Get, &client)
                    .maxAuthenticationTimes(-1)
                    .onAuthenticationRequired([&log, name](QAuthenticator *authenticator) {
                        log.add(name + " required"_s);
                        authenticator->setUser(name);
                    })
                    .onAuthenticationRequireFailed([&log, name] { log.add(name + " failed"_s); })
                    .onAuthenticationRequireFailed([&log, name, &client](QNetworkReply *reply) {
                        log.add(name
                                + " failed, reply %1"_s.arg(
                                    client.replies.indexOf(static_cast<ControlledReply *>(reply))));
                    })
                    .send());
        }
        QStringList users;
        const auto ask = [&](int index) {
            QAuthenticator authenticator;
            Q_EMIT client.authenticationRequired(client.replies.at(index), &authenticator);
            users.append(authenticator.user());
        };
        ask(1);
        ask(0);
        ask(1);
        QCOMPARE(log.lines(), (QStringList{"b required"_s, "a required"_s, "b failed"_s,
                                           "b failed, reply 1"_s, "b required"_s}));
        QCOMPARE(users, (QStringList{"b"_s, "a"_s, "b"_s}));
    }

    void twoRequestsInFlightAreEachGivenTheirOwnCredentials()
    {
        ScriptedServer first;
        ScriptedServer second;
        HttpClient client;
        CallbackLog log;
        QVector<HttpResponse *> responses;
        for (ScriptedServer *server : {&first, &second}) {
            QVERIFY(server->start());
            server->answer(unauthorized());
            server->answer(ScriptedServer::reply("in"));
            HttpRequest request(HttpMethod::Get, &client);
            request.url(server->address("/"_s))
                .authenticator(credentials(server == &first ? "first"_s : "second"_s));
            bindAuthentication(request, log);
            responses.append(request.send());
        }
        QPointer<HttpResponse> last = responses.at(1);
        QVERIFY(waitUntilGone(responses.at(0)));
        if (last)
            QVERIFY(waitUntilGone(last));
        QCOMPARE(log.lines(), (QStringList{"finished in"_s, "finished in"_s}));
        QCOMPARE(authorizations(first).last(), "Basic " + QByteArray("first:pass:word").toBase64());
        QCOMPARE(authorizations(second).last(),
                 "Basic " + QByteArray("second:pass:word").toBase64());
    }

    void aFollowedRedirectIsPassedOn()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        const QString target = server.address("/new?a=%20"_s);
        server.answer(
            ScriptedServer::reply("", "302 Found", "Location: " + target.toLatin1() + "\r\n"));
        server.answer(ScriptedServer::reply("there"));
        HttpClient client;
        client.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/old"_s)).onRedirected([&log](const QUrl &url) {
            log.add("redirected "_s + QString::fromLatin1(url.toEncoded()));
        });
        log.bindOutcomes(request);
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(log.lines(),
                 (QStringList{"redirected "_s + target, "finished()"_s, "finished(bytes there)"_s,
                              "finished(text there)"_s, "finished(map {})"_s, "repeated()"_s}));
        QCOMPARE(WireRequest(server.requests().last()).line, "GET /new?a=%20 HTTP/1.1"_b);
    }

    void aFollowedRedirectCarriesTheHeadersToTheOtherHost_data()
    {
        QTest::addColumn<QNetworkRequest::RedirectPolicy>("policy");
        QTest::addColumn<QString>("outcome");
        QTest::addColumn<QByteArrayList>("requests"); // that the other host has got
        QTest::newRow("no less safe")
            << QNetworkRequest::NoLessSafeRedirectPolicy << "finished"_s
            << QByteArrayList{"GET / HTTP/1.1\r\nHost: OTHER\r\nAuthorization: Bearer secret\r\n"
                              "X-Own: 1\r\nConnection: Keep-Alive\r\n"
                              "Accept-Encoding: gzip, deflate\r\nUser-Agent: Mozilla/5.0\r\n\r\n"};
        QTest::newRow("same origin")
            << QNetworkRequest::SameOriginRedirectPolicy << "error 11"_s << QByteArrayList();
    }
    void aFollowedRedirectCarriesTheHeadersToTheOtherHost()
    {
        QFETCH(QNetworkRequest::RedirectPolicy, policy);
        QFETCH(QString, outcome);
        QFETCH(QByteArrayList, requests);
        ScriptedServer first;
        ScriptedServer other;
        QVERIFY(first.start() && other.start());
        const QByteArray host = "127.0.0.1:" + QByteArray::number(other.serverPort());
        first.answer(ScriptedServer::reply("", "302 Found", "Location: http://" + host + "/\r\n"));
        other.answer(ScriptedServer::reply(""));
        HttpClient client;
        client.setRedirectPolicy(policy);
        QStringList outcomes;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(first.address("/"_s))
            .headers({{"Authorization"_s, "Bearer secret"_s}, {"X-Own"_s, "1"_s}})
            .onFinished([&outcomes] { outcomes.append("finished"_s); })
            .onError([&outcomes](QNetworkReply::NetworkError code) {
                outcomes.append("error %1"_s.arg(int(code)));
            });
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(outcomes, QStringList{outcome});
        QByteArrayList got;
        for (const QByteArray &bytes : other.requests())
            got.append(HttpTesting::withoutLanguage(bytes).replace(host, "OTHER"));
        QCOMPARE(got, requests);
    }

    void theOtherHostOfARedirectIsGivenTheCredentialsWhenItAsks()
    {
        ScriptedServer first;
        ScriptedServer other;
        QVERIFY(first.start() && other.start());
        first.answer(ScriptedServer::reply(
            "", "302 Found",
            "Location: http://127.0.0.1:" + QByteArray::number(other.serverPort()) + "/\r\n"));
        other.answer(ScriptedServer::reply("", "401 Unauthorized",
                                           "WWW-Authenticate: Basic realm=\"other\"\r\n"),
                     ScriptedServer::Then::KeepOpen);
        other.answer(ScriptedServer::reply(""));
        HttpClient client;
        client.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
        QAuthenticator credentials;
        credentials.setUser("user"_s);
        credentials.setPassword("pass"_s);
        HttpRequest request(HttpMethod::Get, &client);
        request.url(first.address("/"_s)).authenticator(credentials);
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(authorizations(other).last(), "Basic " + QByteArray("user:pass").toBase64());
    }

    void aRedirectThatIsNotFollowedIsASuccess()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("moved", "302 Found", "Location: /new\r\n"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/old"_s)).onRedirected([&log](const QUrl &) {
            log.add("redirected"_s);
        });
        log.bindOutcomes(request);
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(log.lines().mid(0, 2), (QStringList{"finished()"_s, "finished(bytes moved)"_s}));
        QCOMPARE(server.requests().size(), 1);
    }

    void aRedirectThatTheCallerVerifiesIsFollowedOnceAllowed()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("", "301 Moved", "Location: /new\r\n"));
        server.answer(ScriptedServer::reply("there"));
        HttpClient client;
        client.setRedirectPolicy(QNetworkRequest::UserVerifiedRedirectPolicy);
        CallbackLog log;
        QNetworkReply *reply = nullptr;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/old"_s))
            .onRedirected([&](const QUrl &) {
                log.add("redirected"_s);
                Q_EMIT reply->redirectAllowed();
            })
            .onRedirectAllowed([&log] { log.add("allowed"_s); })
            .onFinished([&log](const QByteArray &body) { log.add(QString::fromLatin1(body)); });
        HttpResponse *response = request.send();
        reply = response->request().fields.reply;
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines(), (QStringList{"redirected"_s, "allowed"_s, "there"_s}));
    }

    void aHandshakeIsPassedOnBeforeTheOutcome()
    {
        const TrustTestAuthority trust;
        ScriptedServer server(Identity::Localhost);
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("secret"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s))
            .onEncrypted([&log] { log.add("encrypted"_s); })
            .onMetaDataChanged([&log] { log.add("metaDataChanged"_s); })
            .onSslErrors([&log](const QList<QSslError> &) { log.add("sslErrors"_s); })
            .onFinished([&log](const QByteArray &body) { log.add(QString::fromLatin1(body)); });
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(log.lines(), (QStringList{"encrypted"_s, "metaDataChanged"_s, "secret"_s}));
    }

    void tlsErrorsArePassedOnAndNotIgnored()
    {
        const TrustTestAuthority trust;
        ScriptedServer server(Identity::Elsewhere);
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("secret"));
        HttpClient client;
        CallbackLog log;
        QList<QSslError> errors;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s)).onSslErrors([&](const QList<QSslError> &list) {
            log.add("sslErrors"_s);
            errors = list;
        });
        bindAuthentication(request, log);
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(log.lines(), (QStringList{"sslErrors"_s, "error 6"_s}));
        QCOMPARE(errors, (QList<QSslError>{QSslError(QSslError::HostNameMismatch,
                                                     certificateOf(Identity::Elsewhere))}));
        QCOMPARE(server.requests().size(), 0);
    }

    void aReceiverOfTheTlsErrorsMayIgnoreThem()
    {
        const TrustTestAuthority trust;
        ScriptedServer server(Identity::Elsewhere);
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("secret"));
        HttpClient client;
        CallbackLog log;
        QNetworkReply *reply = nullptr;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s)).onSslErrors([&reply](const QList<QSslError> &) {
            reply->ignoreSslErrors();
        });
        bindAuthentication(request, log);
        HttpResponse *response = request.send();
        reply = response->request().fields.reply;
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines(), QStringList{"finished secret"_s});
    }

    void whatAReplyReportsIsPassedOnWithItsValue()
    {
        ControlledClient client;
        HttpResponse *response = HttpRequest(HttpMethod::Get, &client).send();
        const SignalRecorder recorder(response, {"encrypted()"_s, "metaDataChanged()"_s,
                                                 "redirectAllowed()"_s, "redirected(QUrl)"_s,
                                                 "readyRead(QNetworkReply*)"_s});
        QSslPreSharedKeyAuthenticator *passed = nullptr;
        QList<QSslError> errors;
        connect(response, &HttpResponse::preSharedKeyAuthenticationRequired, this,
                [&passed](QSslPreSharedKeyAuthenticator *key) { passed = key; });
        connect(response, &HttpResponse::sslErrors, this,
                [&errors](const QList<QSslError> &list) { errors = list; });
        ControlledReply *reply = client.replies.first();
        QSslPreSharedKeyAuthenticator key;
        const QList<QSslError> sent{QSslError(QSslError::CertificateExpired)};
        Q_EMIT reply->preSharedKeyAuthenticationRequired(&key);
        QCOMPARE(passed, &key);
        Q_EMIT reply->sslErrors(sent);
        QCOMPARE(errors, sent);
        Q_EMIT reply->encrypted();
        Q_EMIT reply->metaDataChanged();
        Q_EMIT reply->redirected(QUrl("http://h/%20"_s));
        Q_EMIT reply->redirectAllowed();
        Q_EMIT reply->readyRead();
        QCOMPARE(
            recorder.calls(),
            (QStringList{
                "encrypted()"_s, "metaDataChanged()"_s,
                "redirected("_s + QUrl("http://h/%20"_s).toString() + ")"_s, "redirectAllowed()"_s,
                "readyRead("_s + HttpTesting::recorded(QVariant::fromValue<QNetworkReply *>(reply))
                    + ")"_s}));
    }
};

QTEST_GUILESS_MAIN(TestHttpPassThrough)
#include "tst_httppassthrough.moc"
