#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"

#include <QTest>

#include <memory>

using HttpTesting::waitUntilGone;
using Then = ScriptedServer::Then;

namespace {

/// The moments at which a callback does something drastic.
enum Moment {
    Encrypted,
    SslErrors,
    UploadProgress,
    Redirected,
    MetaDataChanged,
    Head,
    ReadyRead,
    DownloadFileProgress,
    FinishedPlain,
    FinishedBytes,
    FinishedText,
    FinishedMap,
    ErrorPlain,
    ErrorCode,
    ErrorBytes,
    Retried,
    Repeated,
};

const QVector<const char *> &momentNames()
{
    static const QVector<const char *> names{"encrypted",       "sslErrors",
                                             "uploadProgress",  "redirected",
                                             "metaDataChanged", "head",
                                             "readyRead",       "downloadFileProgress",
                                             "finished()",      "finished(bytes)",
                                             "finished(text)",  "finished(map)",
                                             "error()",         "error(code)",
                                             "error(bytes)",    "retried",
                                             "repeated"};
    return names;
}

using Drastic = std::function<void()>;

void bindAt(Moment moment, HttpRequest &request, const Drastic &act)
{
    switch (moment) {
    case Encrypted:
        request.onEncrypted(act);
        break;
    case SslErrors:
        request.onSslErrors([act](const QList<QSslError> &) { act(); });
        break;
    case UploadProgress:
        request.onUploadProgress([act](qint64, qint64) { act(); });
        break;
    case Redirected:
        request.onRedirected([act](const QUrl &) { act(); });
        break;
    case MetaDataChanged:
        request.onMetaDataChanged(act);
        break;
    case Head:
        request.onHead([act](const QMap<QString, QString> &) { act(); });
        break;
    case ReadyRead:
        request.onReadyRead([act](QNetworkReply *) { act(); });
        break;
    case DownloadFileProgress:
        request.onDownloadFileProgress([act](qint64, qint64) { act(); });
        break;
    case FinishedPlain:
        request.onFinished(act);
        break;
    case FinishedBytes:
        request.onFinished([act](const QByteArray &) { act(); });
        break;
    case FinishedText:
        request.onFinished([act](const QString &) { act(); });
        break;
    case FinishedMap:
        request.onFinished([act](const QVariantMap &) { act(); });
        break;
    case ErrorPlain:
        request.onError(act);
        break;
    case ErrorCode:
        request.onError([act](QNetworkReply::NetworkError) { act(); });
        break;
    case ErrorBytes:
        request.onError([act](const QByteArray &) { act(); });
        break;
    case Retried:
        request.onRetried(act);
        break;
    case Repeated:
        request.onRepeated(act);
        break;
    }
}

bool needsTls(Moment moment) { return moment == Encrypted || moment == SslErrors; }

bool needsFailure(Moment moment)
{
    return moment == ErrorPlain || moment == ErrorCode || moment == ErrorBytes;
}

} // namespace

/// Callbacks that abort, delete or send while the toolkit and Qt are in the middle of an exchange:
/// no crash, no leak, never a second outcome.
class TestFaultsInCallbacks : public QObject
{
    Q_OBJECT

    struct Scene
    {
        std::unique_ptr<TrustTestAuthority> trust;
        std::unique_ptr<ScriptedServer> server;
    };

    /// A server whose answers bring the moment about.
    static Scene sceneFor(Moment moment)
    {
        Scene scene;
        if (needsTls(moment)) {
            scene.trust = std::make_unique<TrustTestAuthority>();
            scene.server = std::make_unique<ScriptedServer>(
                moment == SslErrors ? Identity::Elsewhere : Identity::Localhost);
        } else {
            scene.server = std::make_unique<ScriptedServer>();
        }
        if (!scene.server->start())
            qFatal("cannot listen");
        if (needsFailure(moment) || moment == Retried)
            scene.server->answer(ScriptedServer::reply("", "500 Broken"));
        if (moment == Redirected) {
            scene.server->answer(ScriptedServer::reply("", "302 Found", "Location: /new\r\n"));
        }
        if (!needsFailure(moment))
            scene.server->answer(ScriptedServer::reply(QByteArray(100000, 'x')));
        return scene;
    }

    static HttpRequest requestFor(Moment moment, HttpClient *client, const Scene &scene)
    {
        client->setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
        HttpRequest request(HttpMethod::Post, client);
        request.url(scene.server->address("/"_s)).rawBody(QByteArray(100000, 'y'));
        if (moment == Retried)
            request.retry(1);
        return request;
    }

    /// A whole exchange on a client of its own: whatever else was under way has been delivered.
    static bool anotherExchangeWorks()
    {
        ScriptedServer server;
        server.start();
        server.answer(ScriptedServer::reply("another"));
        HttpClient client;
        QByteArray body;
        HttpResponse *response = HttpRequest(HttpMethod::Get, &client)
                                     .url(server.address("/"_s))
                                     .onFinished([&body](const QByteArray &bytes) { body = bytes; })
                                     .send();
        return waitUntilGone(response) && body == "another";
    }

    static void addMoments()
    {
        QTest::addColumn<int>("moment");
        for (int i = 0; i < momentNames().size(); ++i)
            QTest::newRow(momentNames().at(i)) << i;
    }

    /// Sends a request whose callback at the row's moment does @p act to every reply of its client,
    /// and waits until there is none and nothing more can come.
    static void actOnReplies(void (QNetworkReply::*act)(), CallbackLog &log)
    {
        QFETCH(int, moment);
        const Scene scene = sceneFor(Moment(moment));
        HttpClient client;
        HttpRequest request = requestFor(Moment(moment), &client, scene);
        int acts = 0;
        bindAt(Moment(moment), request, [&] {
            ++acts;
            for (QNetworkReply *reply : client.findChildren<QNetworkReply *>())
                (reply->*act)();
        });
        log.bindOutcomes(request).send();
        TRY_VERIFY(client.findChildren<QNetworkReply *>().isEmpty());
        QVERIFY(acts >= 1);
        const QStringList before = log.lines();
        QVERIFY(anotherExchangeWorks());
        QCOMPARE(log.lines(), before);
    }

private Q_SLOTS:
    void aCallbackMayAbortTheReply_data() { addMoments(); }
    void aCallbackMayAbortTheReply()
    {
        CallbackLog log;
        actOnReplies(&QNetworkReply::abort, log);
        QCOMPARE(log.outcomes(), 1);
        QCOMPARE(log.lines().count("repeated()"_s), 1);
    }

    void aCallbackMayDeleteTheReplyLater_data() { addMoments(); }
    void aCallbackMayDeleteTheReplyLater()
    {
        CallbackLog log;
        actOnReplies(&QNetworkReply::deleteLater, log);
        QVERIFY(log.outcomes() <= 1);
    }

    void aCallbackMayDeleteTheClient_data() { addMoments(); }
    void aCallbackMayDeleteTheClient()
    {
        QFETCH(int, moment);
        const Scene scene = sceneFor(Moment(moment));
        auto client = std::make_unique<HttpClient>();
        HttpRequest request = requestFor(Moment(moment), client.get(), scene);
        CallbackLog log;
        int acts = 0;
        QStringList before;
        bindAt(Moment(moment), request, [&] {
            ++acts;
            client.reset();
            before = log.lines();
        });
        const QPointer<HttpResponse> response = log.bindOutcomes(request).send();
        TRY_COMPARE(acts, 1);
        QVERIFY(anotherExchangeWorks());
        QVERIFY(response.isNull());
        QCOMPARE(acts, 1);
        QCOMPARE(log.lines(), before); // nothing is called after the client has gone
    }

    void aCallbackThatAbortsAndThenDeletesTheClientInTheError()
    {
        const Scene scene = sceneFor(ReadyRead);
        auto client = std::make_unique<HttpClient>();
        HttpRequest request = requestFor(ReadyRead, client.get(), scene);
        CallbackLog log;
        bool gone = false;
        request.onReadyRead([](QNetworkReply *reply) { reply->abort(); })
            .onError([&](QNetworkReply::NetworkError) {
                client.reset();
                gone = true;
            });
        log.bindOutcomes(request).send();
        TRY_VERIFY(gone);
        QVERIFY(anotherExchangeWorks());
        QCOMPARE(log.lines(), QStringList{"error()"_s});
    }

    void aTimeoutWhoseErrorDeletesTheClient()
    {
        ScriptedServer server;
        QVERIFY(server.start()); // never answers
        auto client = std::make_unique<HttpClient>();
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, client.get());
        request.url(server.address("/"_s))
            .onTimeout([&log] { log.add("timeout()"_s); })
            .onError([&client](QNetworkReply::NetworkError) { client.reset(); });
        const QPointer<HttpResponse> response = log.bindOutcomes(request).send();
        TRY_COMPARE(server.requests().size(), 1);
        QVERIFY(QMetaObject::invokeMethod(response, "onTimeout"));
        QVERIFY(response.isNull());
        QVERIFY(anotherExchangeWorks());
        QCOMPARE(log.lines(), QStringList{"error()"_s});
    }

    void aCallbackMaySendAgain_data() { addMoments(); }
    void aCallbackMaySendAgain()
    {
        QFETCH(int, moment);
        const Scene scene = sceneFor(Moment(moment));
        ScriptedServer other;
        QVERIFY(other.start());
        other.answer(ScriptedServer::reply("again"));
        HttpClient client;
        HttpRequest request = requestFor(Moment(moment), &client, scene);
        CallbackLog log;
        CallbackLog again;
        HttpRequest second(HttpMethod::Get, &client);
        again.bindOutcomes(second.url(other.address("/"_s)));
        int sent = 0;
        bindAt(Moment(moment), request, [&] {
            second.send();
            ++sent;
        });
        log.bindOutcomes(request).send();
        TRY_VERIFY(client.findChildren<QNetworkReply *>().isEmpty());
        QVERIFY(sent >= 1);
        QCOMPARE(log.outcomes(), 1);
        QCOMPARE(again.outcomes(), sent);
        QCOMPARE(again.lines().count("finished(bytes again)"_s), sent);
    }

    void aCallbackMaySendItsOwnRequestAgain()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("x"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindOutcomes(request.url(server.address("/"_s)).onFinished([&] {
            if (log.outcomes() < 4) // this one is not in the log yet
                request.send();
        }));
        request.send();
        TRY_COMPARE(log.lines().count("repeated()"_s), 5);
        TRY_VERIFY(client.findChildren<QNetworkReply *>().isEmpty());
        QCOMPARE(log.outcomes(), 5);
        QCOMPARE(server.requests().size(), 5);
    }

    void theReplyStaysWhileACallbackRunsAnEventLoopInWhichItsOwnerGoes_data()
    {
        QTest::addColumn<int>("moment");
        QTest::addColumn<bool>("client");
        for (int moment = 0; moment < momentNames().size(); ++moment) {
            if (needsTls(Moment(moment)))
                continue; // Qt's network thread waits for the callback, and Qt for the thread
            QTest::addRow("%s, response", momentNames().at(moment)) << moment << false;
            QTest::addRow("%s, client", momentNames().at(moment)) << moment << true;
        }
    }
    void theReplyStaysWhileACallbackRunsAnEventLoopInWhichItsOwnerGoes()
    {
        QFETCH(int, moment);
        QFETCH(bool, client);
        const Scene scene = sceneFor(Moment(moment));
        auto owner = std::make_unique<HttpClient>();
        HttpRequest request = requestFor(Moment(moment), owner.get(), scene);
        QPointer<QNetworkReply> reply;
        bool isThere = false;
        int acts = 0;
        bindAt(Moment(moment), request, [&] {
            if (++acts > 1)
                return; // not the first data, or another attempt
            reply = owner->findChild<QNetworkReply *>();
            const QPointer<HttpResponse> response = reply->findChild<HttpResponse *>();
            QMetaObject::invokeMethod(
                this,
                [&owner, response, client] {
                    if (client)
                        owner.reset();
                    else
                        delete response.data();
                },
                Qt::QueuedConnection);
            isThere = anotherExchangeWorks() && reply; // runs the event loop
        });
        request.send();
        TRY_VERIFY(acts > 0);
        QVERIFY(isThere);
        TRY_VERIFY(reply.isNull());
    }

    void theReplyStaysWhileACallbackRunsAnEventLoopInWhichItIsDeletedLater_data()
    {
        QTest::addColumn<bool>("taken");
        QTest::newRow("by the callback itself") << false;
        QTest::newRow("by who takes it in the end") << true;
    }
    void theReplyStaysWhileACallbackRunsAnEventLoopInWhichItIsDeletedLater()
    {
        QFETCH(bool, taken);
        const Scene scene = sceneFor(ReadyRead);
        HttpClient client;
        HttpRequest request = requestFor(ReadyRead, &client, scene);
        QPointer<QNetworkReply> first;
        bool isThere = false;
        bool isOver = false;
        request.onReadyRead([&](QNetworkReply *reply) {
            if (first)
                return;
            first = reply;
            if (!taken)
                reply->deleteLater();
            TRY_VERIFY(isOver || !taken); // runs the event loop
            isThere = anotherExchangeWorks() && first;
        });
        if (taken)
            request.onFinished([&isOver](QNetworkReply *reply) {
                reply->deleteLater();
                isOver = true;
            });
        request.send();
        TRY_VERIFY(first || isThere);
        QVERIFY(isThere);
        TRY_VERIFY(first.isNull());
    }

    void aReplyThatWasTakenStaysWhileItsTakerRunsAnEventLoop()
    {
        const Scene scene = sceneFor(FinishedPlain);
        auto client = std::make_unique<HttpClient>();
        HttpRequest request = requestFor(FinishedPlain, client.get(), scene);
        QPointer<QNetworkReply> taken;
        bool isThere = false;
        request.onFinished([&](QNetworkReply *reply) {
            taken = reply;
            QMetaObject::invokeMethod(
                this, [&client] { client.reset(); }, Qt::QueuedConnection);
            isThere = anotherExchangeWorks() && taken;
        });
        request.send();
        TRY_VERIFY(taken || isThere);
        QVERIFY(isThere);
        TRY_VERIFY(taken.isNull()); // it was the client's as well
    }

    void theReplyStaysWhileTheErrorOfATimeoutRunsAnEventLoop_data()
    {
        QTest::addColumn<bool>("client");
        QTest::newRow("response goes") << false;
        QTest::newRow("client goes") << true;
    }
    void theReplyStaysWhileTheErrorOfATimeoutRunsAnEventLoop()
    {
        QFETCH(bool, client);
        ScriptedServer server;
        QVERIFY(server.start()); // never answers
        auto owner = std::make_unique<HttpClient>();
        QPointer<HttpResponse> response;
        bool isThere = false;
        HttpRequest request(HttpMethod::Get, owner.get());
        request.url(server.address("/"_s)).onError([&] {
            const QPointer<QNetworkReply> reply = response->request().fields.reply;
            const auto go = [&] {
                if (client)
                    owner.reset();
                else
                    delete response.data();
            };
            QMetaObject::invokeMethod(this, go, Qt::QueuedConnection);
            isThere = anotherExchangeWorks() && reply;
        });
        response = request.send();
        TRY_COMPARE(server.requests().size(), 1);
        QVERIFY(QMetaObject::invokeMethod(response, "onTimeout"));
        QVERIFY(isThere);
    }

    void aCallbackMayRunAnEventLoopInWhichTheClientGoes()
    {
        const Scene scene = sceneFor(FinishedPlain);
        auto client = std::make_unique<HttpClient>();
        HttpRequest request = requestFor(FinishedPlain, client.get(), scene);
        CallbackLog log;
        bool done = false;
        request.onFinished([&] {
            const bool works = anotherExchangeWorks(); // runs the event loop
            client.reset();
            done = works;
        });
        log.bindOutcomes(request).send();
        TRY_VERIFY(done);
        QVERIFY(anotherExchangeWorks());
        QCOMPARE(log.lines(), QStringList());
    }

    void aCallbackMayDeleteWhatItTakes_data()
    {
        QTest::addColumn<bool>("success");
        QTest::newRow("success") << true;
        QTest::newRow("failure") << false;
    }
    void aCallbackMayDeleteWhatItTakes()
    {
        QFETCH(bool, success);
        const Scene scene = sceneFor(success ? FinishedPlain : ErrorPlain);
        HttpClient client;
        HttpRequest request = requestFor(FinishedPlain, &client, scene);
        CallbackLog log;
        const auto take = [](QNetworkReply *reply) { reply->deleteLater(); };
        request.onFinished(take).onError(take);
        const QPointer<HttpResponse> response = log.bindOutcomes(request).send();
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.outcomes(), 1);
        QCOMPARE(log.lines().last(), "repeated()"_s);
    }
};

QTEST_GUILESS_MAIN(TestFaultsInCallbacks)
#include "tst_faultsincallbacks.moc"
