#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "http/promptbody.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"
#include "tests/support/logcapture.h"
#include "tests/support/scriptedserver.h"

#include <QAuthenticator>
#include <QBuffer>
#include <QEventLoop>
#include <QMetaMethod>
#include <QNetworkProxy>
#include <QPointer>
#include <QSslSocket>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>
#include <QtEndian>

#include <algorithm>
#include <memory>

using HttpTesting::waitUntilGone;
using Then = ScriptedServer::Then;

namespace {

constexpr bool isSwitchedOn = PROMPT_BODIES; // otherwise all is as Qt does it by itself
constexpr int largest = 16 * 1024;           // bytes, of the bodies that are handed over early

/// Stands between a client and a TLS server, and writes down what the client sends: how many bytes
/// are in each record of application data.
class RecordTap : public QTcpServer
{
    Q_OBJECT

public:
    explicit RecordTap(quint16 serverPort)
        : m_serverPort(serverPort)
    {
        listen(QHostAddress::LocalHost);
    }

    QString address() const { return "https://localhost:%1/"_s.arg(serverPort()); }

    QList<int> records;
    int connections = 0;

protected:
    void incomingConnection(qintptr handle) override
    {
        ++connections;
        auto *client = new QTcpSocket(this);
        auto *server = new QTcpSocket(client);
        client->setSocketDescriptor(handle);
        server->connectToHost(QHostAddress::LocalHost, m_serverPort);
        auto record = std::make_shared<QByteArray>();
        connect(client, &QIODevice::readyRead, server, [this, client, server, record] {
            const QByteArray bytes = client->readAll();
            note(*record += bytes);
            server->write(bytes);
        });
        connect(server, &QIODevice::readyRead, client,
                [client, server] { client->write(server->readAll()); });
        connect(server, &QAbstractSocket::disconnected, client,
                &QAbstractSocket::disconnectFromHost);
        connect(client, &QAbstractSocket::disconnected, client, &QObject::deleteLater);
    }

private:
    void note(QByteArray &bytes)
    {
        constexpr int headSize = 5; // type, version and length
        constexpr char applicationData = 23;
        while (bytes.size() >= headSize) {
            const int size = qFromBigEndian<quint16>(bytes.constData() + 3);
            if (bytes.size() < headSize + size)
                return;
            if (bytes.at(0) == applicationData)
                records.append(size);
            bytes.remove(0, headSize + size);
        }
    }

    const quint16 m_serverPort;
};

/// Answers as soon as it has the head of a request, most of whose body it has not read then.
class HastyServer : public QTcpServer
{
    Q_OBJECT

public:
    explicit HastyServer(bool closes)
        : m_closes(closes)
    {
        listen(QHostAddress::LocalHost);
    }

    QString address() const { return "https://localhost:%1/"_s.arg(serverPort()); }

    QByteArrayList bodies;

protected:
    void incomingConnection(qintptr handle) override
    {
        auto *socket = new QSslSocket(this);
        socket->setSocketDescriptor(handle);
        socket->setReadBufferSize(512);
        socket->setLocalCertificate(certificateOf(Identity::Localhost));
        socket->setPrivateKey(keyOf(Identity::Localhost));
        auto pending = std::make_shared<Pending>();
        connect(socket, &QIODevice::readyRead, socket,
                [this, socket, pending] { read(socket, *pending); });
        connect(socket, &QAbstractSocket::disconnected, socket, &QObject::deleteLater);
        socket->startServerEncryption();
    }

private:
    struct Pending
    {
        QByteArray bytes;
        int bodySize = -1; // where the head is not complete
    };

    void read(QSslSocket *socket, Pending &pending)
    {
        pending.bytes += socket->readAll();
        const int end = pending.bytes.indexOf("\r\n\r\n");
        if (pending.bodySize < 0 && end >= 0) {
            pending.bodySize = WireRequest(pending.bytes).header("Content-Length").toInt();
            pending.bytes.remove(0, end + 4);
            socket->write(ScriptedServer::reply("hasty", m_closes ? "413 Too Large" : "200 OK"));
            if (m_closes)
                socket->disconnectFromHost();
        }
        if (pending.bodySize < 0 || pending.bytes.size() < pending.bodySize)
            return;
        bodies.append(pending.bytes.left(pending.bodySize));
        pending.bytes.remove(0, pending.bodySize);
        pending.bodySize = -1;
    }

    const bool m_closes;
};

/// What one way of sending led to.
struct Exchange
{
    QByteArrayList requests; ///< As they came over the wire, without what depends on the machine.
    QStringList progress;
    QString outcome;
};

/// A request with a body, by one of two ways that are to have the same effect.
class Sender
{
public:
    explicit Sender(bool bare)
        : m_bare(bare)
    {
    }

    /// Returns when it is over, with what the caller was told.
    Exchange send(HttpMethod method, const QString &address, const QByteArray &body)
    {
        HttpRequest request(method, &m_client);
        request.url(address).headers({{"Content-Type"_s, "a/b"_s}}).rawBody(body);
        request.fields.networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                                                   QNetworkRequest::NoLessSafeRedirectPolicy);
        return m_bare ? sendBare(request) : sendByToolkit(request);
    }

private:
    static QString sent(qint64 bytes, qint64 total)
    {
        return "%1 of %2"_s.arg(QString::number(bytes), QString::number(total));
    }

    Exchange sendBare(const HttpRequest &request)
    {
        Exchange told;
        QEventLoop loop;
        const QObject context;
        QObject::connect(&m_client, &QNetworkAccessManager::authenticationRequired, &context,
                         [](QNetworkReply *, QAuthenticator *credentials) {
                             credentials->setUser("user"_s);
                             credentials->setPassword("pass"_s);
                         });
        QNetworkReply *reply = m_client.sendCustomRequest(request.fields.networkRequest,
                                                          httpVerb(request.fields.method),
                                                          request.fields.body.toByteArray());
        QObject::connect(
            reply, &QNetworkReply::uploadProgress, &context,
            [&](qint64 bytes, qint64 total) { told.progress.append(sent(bytes, total)); });
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        told.outcome =
            (reply->error() == QNetworkReply::NoError ? QString::fromLatin1(reply->readAll())
                                                      : "error %1"_s.arg(reply->error()));
        delete reply;
        return told;
    }

    static Exchange sendByToolkit(HttpRequest request)
    {
        Exchange told;
        QAuthenticator credentials;
        credentials.setUser("user"_s);
        credentials.setPassword("pass"_s);
        HttpResponse *response = request.authenticator(credentials)
                                     .onUploadProgress([&](qint64 bytes, qint64 total) {
                                         told.progress.append(sent(bytes, total));
                                     })
                                     .onFinished([&](const QByteArray &body) {
                                         told.outcome += QString::fromLatin1(body);
                                     })
                                     .onError([&](QNetworkReply::NetworkError code) {
                                         told.outcome += "error %1"_s.arg(code);
                                     })
                                     .send();
        waitUntilGone(response);
        return told;
    }

    const bool m_bare;
    HttpClient m_client;
};

/// A client that puts a body of its own in the place of what it is given.
class TranslatingClient : public HttpClient
{
    Q_OBJECT

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *outgoing) override
    {
        auto *own = new QBuffer(outgoing); // the one that it replaces goes with the reply
        own->setData("its own, which is longer");
        own->open(QIODevice::ReadOnly);
        return HttpClient::createRequest(operation, request, own);
    }
};

QByteArray bodyOf(int size)
{
    QByteArray body;
    for (int i = 0; body.size() < size; ++i)
        body += QByteArray::number(i) + ' ';
    return body.left(size);
}

/// Whether something is there that sends the request of @p reply as soon as Qt begins.
bool begins(const QNetworkReply *reply)
{
    struct Access : QObject
    {
        using QObject::isSignalConnected;
    };
    const QMetaObject *type = reply->metaObject();
    const QMetaMethod begin = type->method(type->indexOfSignal("startHttpRequest()"));
    return (reply->*&Access::isSignalConnected)(begin);
}

QByteArrayList bodiesOf(const QList<QByteArray> &requests)
{
    QByteArrayList bodies;
    for (const QByteArray &request : requests)
        bodies.append(WireRequest(request).body);
    return bodies;
}

} // namespace

/// Bodies that are handed over before Qt asks for them, over TLS and against what the access
/// manager does by itself.
class TestHttpPromptBody : public QObject
{
    Q_OBJECT

    const TrustTestAuthority m_trust;
    ScriptedServer m_server{Identity::Localhost};
    QString m_address;

    /// Sends @p body by each way of sending. @p script is the server's part of it. With @p kept
    /// there is a connection already.
    Exchange exchange(bool bare, bool kept, HttpMethod method, const QByteArray &body,
                      const QByteArrayList &script)
    {
        m_server.reset();
        if (kept)
            m_server.answer(ScriptedServer::reply("first"), Then::KeepOpen);
        for (const QByteArray &answer : script)
            m_server.answer(answer, answer.contains("close") ? Then::Close : Then::KeepOpen);
        Sender sender(bare);
        if (kept)
            sender.send(HttpMethod::Post, m_address, "first");
        Exchange result = sender.send(method, m_address, body);
        const QList<QByteArray> requests = m_server.requests().mid(kept ? 1 : 0);
        for (const QByteArray &request : requests)
            result.requests.append(HttpTesting::withoutLanguage(request));
        return result;
    }

    /// Whether the last of @p count requests came as one record, head and body.
    bool isOneRecord(HttpClient &client, HttpMethod method, int count)
    {
        m_server.reset();
        m_server.answer(ScriptedServer::reply("ok"), Then::KeepOpen);
        RecordTap tap(m_server.serverPort());
        const QByteArray body = bodyOf(300);
        for (int i = 0; i < count; ++i) {
            HttpRequest request(method, &client);
            waitUntilGone(request.url(tap.address()).rawBody(body).send());
        }
        if (tap.connections != 1 || bodiesOf(m_server.requests()).count(body) != count)
            qFatal("the requests did not come over one connection");
        const int leastHead = 150; // bytes; what TLS adds to a record is much less
        return tap.records.last() > leastHead + body.size();
    }

    /// What is done to an exchange that is under way.
    enum class Deed { Abort, DeleteReply, DeleteReplyLater, DeleteResponse, DeleteClient, Count };
    /// When. The first are so many milliseconds after the request was sent.
    enum class Moment { Times = 8, Encrypted = Times, Received, Progress, Head, Finished, Count };

    // Qt forbids to delete a reply inside its signals, and a client in this one lasts 5 s.
    static bool isAllowed(Deed deed, Moment moment)
    {
        const bool inReply = moment >= Moment::Times && moment != Moment::Received;
        return !(deed == Deed::DeleteReply && inReply)
               && !(deed == Deed::DeleteClient && moment == Moment::Encrypted);
    }

    static void act(Deed deed, std::unique_ptr<HttpClient> &client,
                    const QPointer<HttpResponse> &response)
    {
        if (!response)
            return;
        QNetworkReply *reply = response->request().fields.reply;
        switch (deed) {
        case Deed::Abort:
            return reply->abort();
        case Deed::DeleteReply:
            delete reply;
            return;
        case Deed::DeleteReplyLater:
            return reply->deleteLater();
        case Deed::DeleteResponse:
            delete response;
            return;
        case Deed::DeleteClient:
            return client.reset();
        case Deed::Count:
            break;
        }
    }

    /// Sends a body of the largest size, and returns when that has ended by @p deed.
    void endAt(Moment moment, Deed deed, bool kept)
    {
        m_server.reset();
        m_server.answer(ScriptedServer::reply("ok"), Then::KeepOpen);
        auto client = std::make_unique<HttpClient>();
        HttpRequest request(HttpMethod::Post, client.get());
        request.url(m_address).rawBody(bodyOf(largest));
        if (kept)
            waitUntilGone(HttpRequest(request).send());
        QPointer<HttpResponse> response;
        bool done = false;
        const auto at = [&](Moment reached) {
            return [&, reached] {
                if (reached != moment || done)
                    return;
                done = true;
                act(deed, client, response);
            };
        };
        const auto received =
            connect(&m_server, &ScriptedServer::requestReceived, this, at(Moment::Received));
        const auto progress = at(Moment::Progress);
        response = request.onEncrypted(at(Moment::Encrypted))
                       .onUploadProgress([progress](qint64, qint64) { progress(); })
                       .onMetaDataChanged(at(Moment::Head))
                       .onFinished(at(Moment::Finished))
                       .send();
        for (int time = 0; time < int(Moment::Times) && !done; ++time) {
            at(Moment(time))();
            QEventLoop loop;
            QTimer::singleShot(1, &loop, &QEventLoop::quit);
            loop.exec();
        }
        if (response)
            waitUntilGone(response);
        disconnect(received);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_server.start());
        m_address = m_server.address("/"_s);
    }

    void headAndBodyComeTogether_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<int>("count");
        for (const HttpMethod method : {HttpMethod::Post, HttpMethod::Put, HttpMethod::Delete}) {
            const QByteArray verb = httpVerb(method);
            QTest::addRow("%s, new connection", verb.constData()) << int(method) << 1;
            QTest::addRow("%s, kept connection", verb.constData()) << int(method) << 3;
        }
    }
    void headAndBodyComeTogether()
    {
        QFETCH(int, method);
        QFETCH(int, count);
        HttpClient client;
        QCOMPARE(isOneRecord(client, HttpMethod(method), count), isSwitchedOn);
    }

    void bodiesOfMoreThan16KiBAreLeftToQt_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("handedOver");
        QTest::newRow("0 bytes") << 0 << false;
        QTest::newRow("1 byte") << 1 << isSwitchedOn;
        QTest::newRow("16 KiB") << largest << isSwitchedOn;
        QTest::newRow("16 KiB + 1") << largest + 1 << false;
    }
    void bodiesOfMoreThan16KiBAreLeftToQt()
    {
        QFETCH(int, size);
        QFETCH(bool, handedOver);
        HttpClient client;
        HttpRequest request(HttpMethod::Post, &client);
        const HttpResponse *response = request.url(m_address).rawBody(bodyOf(size)).send();
        const QNetworkReply *reply = response->request().fields.reply;
        QCOMPARE(reply->findChildren<PromptBody *>().size(), handedOver ? 1 : 0);
    }

    void theServerAndTheCallerSeeWhatTheyDidWithTheBareManager_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("kept");
        QTest::addColumn<QByteArrayList>("script");
        QTest::addColumn<int>("bodies");  // how many of the requests come with the body
        QTest::addColumn<QString>("end"); // what the caller is told last
        const QByteArray ok = ScriptedServer::reply("ok");
        const QByteArray challenge = "WWW-Authenticate: Basic realm=\"r\"\r\n";
        const QByteArray away = "Location: /next\r\n";
        const QByteArray closing = "Connection: close\r\n";
        const auto status = [](const QByteArray &line, const QByteArray &headers) {
            return ScriptedServer::reply("page", line, headers);
        };
        const struct
        {
            const char *name;
            QByteArrayList script;
            int bodies;
            QString end;
        } cases[] = {
            {"answered", {ok}, 1, "ok"_s},
            {"answered and closed", {status("200 OK", closing)}, 1, "page"_s},
            {"refused", {status("500 Broken", "")}, 1, "error 401"_s},
            {"credentials", {status("401 Who", challenge), ok}, 2, "ok"_s},
            {"credentials, closed", {status("401 Who", challenge + closing), ok}, 2, "ok"_s},
            {"307", {status("307 There", away), ok}, 2, "ok"_s},
            {"307, closed", {status("307 There", away + closing), ok}, 2, "ok"_s},
            {"308", {status("308 There", away), ok}, 2, "ok"_s},
            {"307 and credentials",
             {status("307 There", away), status("401 Who", challenge), ok},
             3,
             "ok"_s},
        };
        for (const auto &each : cases) {
            for (const int size : {300, largest}) {
                for (const bool kept : {false, true})
                    QTest::addRow("%s, %d bytes, %s connection", each.name, size,
                                  kept ? "kept" : "new")
                        << int(HttpMethod::Post) << size << kept << each.script << each.bodies
                        << each.end;
            }
        }
        for (const HttpMethod method : {HttpMethod::Post, HttpMethod::Put, HttpMethod::Delete}) {
            for (const int size : {0, 1, 300, largest, largest + 1})
                QTest::addRow("%s of %d bytes", httpVerb(method).constData(), size)
                    << int(method) << size << true << QByteArrayList{ok} << 1 << "ok"_s;
        }
    }
    void theServerAndTheCallerSeeWhatTheyDidWithTheBareManager()
    {
        QFETCH(int, method);
        QFETCH(int, size);
        QFETCH(bool, kept);
        QFETCH(QByteArrayList, script);
        QFETCH(int, bodies);
        QFETCH(QString, end);
        const QByteArray body = bodyOf(size);
        const LogCapture log;
        Exchange bare; // which now and then fails where a redirect comes at once
        for (int i = 0; i < 5 && bare.outcome != end; ++i)
            bare = exchange(true, kept, HttpMethod(method), body, script);
        const Exchange ours = exchange(false, kept, HttpMethod(method), body, script);
        QCOMPARE(ours.requests, bare.requests);
        QCOMPARE(bodiesOf(ours.requests).count(body), bodies);
        QCOMPARE(ours.outcome, end);
        QCOMPARE(bare.outcome, end);
        QCOMPARE(log.lines().size(), 0);
        // How Qt tells of a body that it sends in parts depends on when it comes to it; after an
        // error the manager's caller is told of more.
        if (size <= largest && !end.startsWith("error"_s))
            QCOMPARE(ours.progress, bare.progress);
    }

    void theProgressOfASmallBodyIsOneStep()
    {
        const Exchange ours =
            exchange(false, true, HttpMethod::Post, bodyOf(300), {ScriptedServer::reply("ok")});
        QCOMPARE(ours.progress, (QStringList{"300 of 300"_s, "0 of 0"_s})); // the last is Qt's
    }

    void aRedirectToGetLeavesTheBodyBehind()
    {
        const QByteArray away = ScriptedServer::reply("", "303 There", "Location: /next\r\n");
        const Exchange bare = exchange(true, true, HttpMethod::Post, bodyOf(300),
                                       {away, ScriptedServer::reply("ok")});
        const Exchange ours = exchange(false, true, HttpMethod::Post, bodyOf(300),
                                       {away, ScriptedServer::reply("ok")});
        QCOMPARE(ours.requests, bare.requests);
        QCOMPARE(ours.outcome, bare.outcome);
    }

    // What has sent the request would send it once more if it were still there when Qt begins anew,
    // which it is once in a hundred times.
    void aFollowedRedirectHasEachRequestSentOnce_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("isForm");
        QTest::addColumn<bool>("isPolicyOfClient");
        QTest::newRow("GET") << 0 << false << false;
        QTest::newRow("GET, the client's policy") << 0 << false << true;
        QTest::newRow("POST, more than 16 KiB") << largest + 1 << false << false;
        QTest::newRow("form") << 0 << true << false;
    }
    void aFollowedRedirectHasEachRequestSentOnce()
    {
        QFETCH(int, size);
        QFETCH(bool, isForm);
        QFETCH(bool, isPolicyOfClient);
        m_server.reset();
        m_server.answer(ScriptedServer::reply("", "307 There", "Location: /next\r\n"),
                        Then::KeepOpen);
        m_server.answer(ScriptedServer::reply("ok"), Then::KeepOpen);
        HttpClient client;
        HttpRequest request(size > 0 || isForm ? HttpMethod::Post : HttpMethod::Get, &client);
        request.url(m_address).rawBody(bodyOf(size));
        if (isForm)
            request.formDataBody({{"name"_s, "value"_s}});
        const auto policy = QNetworkRequest::NoLessSafeRedirectPolicy;
        if (isPolicyOfClient)
            client.setRedirectPolicy(policy);
        else
            request.fields.networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                                                       policy);
        QPointer<QNetworkReply> reply;
        QList<bool> sends; // with the first request, with its redirect
        const QObject context;
        connect(&m_server, &ScriptedServer::requestReceived, &context, [&] {
            if (sends.isEmpty())
                sends.append(begins(reply));
        });
        request.onRedirected([&](const QUrl &) { sends.append(begins(reply)); });
        const HttpResponse *response = request.send();
        reply = response->request().fields.reply;
        QVERIFY(waitUntilGone(response));
        QCOMPARE(sends, (QList<bool>{true, !isSwitchedOn}));
        QCOMPARE(m_server.requests().size(), 2);
    }

    void moreRequestsThanConnectionsHaveTheirOwnBodies()
    {
        m_server.reset();
        m_server.answer(ScriptedServer::reply("ok"), Then::KeepOpen);
        HttpClient client;
        QByteArrayList bodies;
        int served = 0;
        for (int i = 0; i < 40; ++i) {
            bodies.append(bodyOf(i * 450)); // up to 17,550 bytes
            HttpRequest request(HttpMethod::Post, &client);
            request.url(m_address).rawBody(bodies.last()).onFinished([&] { ++served; }).send();
        }
        QTRY_COMPARE(served, bodies.size());
        QByteArrayList got = bodiesOf(m_server.requests());
        std::sort(got.begin(), got.end());
        std::sort(bodies.begin(), bodies.end());
        QCOMPARE(got, bodies);
    }

    void aProxyThatAsksForCredentialsIsSentTheBodyAgain()
    {
        ScriptedServer proxy; // a request in the clear is sent to it as a whole
        QVERIFY(proxy.start());
        proxy.answer(
            ScriptedServer::reply("", "407 Who", "Proxy-Authenticate: Basic realm=\"r\"\r\n"),
            Then::KeepOpen);
        proxy.answer(ScriptedServer::reply("ok"), Then::KeepOpen);
        HttpClient client;
        client.setProxy(
            {QNetworkProxy::HttpProxy, "localhost"_s, proxy.serverPort(), "user"_s, "pass"_s});
        QByteArray answer;
        const QByteArray body = bodyOf(300);
        HttpRequest request(HttpMethod::Post, &client);
        request.url("http://server.example/"_s)
            .rawBody(body)
            .onFinished([&](const QByteArray &got) { answer = got; });
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(bodiesOf(proxy.requests()), (QByteArrayList{body, body}));
        QCOMPARE(answer, "ok"_b);
    }

    void anAnswerMayComeBeforeTheBody()
    {
        HastyServer server(false);
        HttpClient client;
        QByteArrayList bodies;
        for (const int size : {600, largest, 300000, 5000}) {
            bodies.append(bodyOf(size));
            QByteArray answer;
            HttpRequest request(HttpMethod::Post, &client);
            request.url(server.address())
                .rawBody(bodies.last())
                .onFinished([&](const QByteArray &got) { answer = got; });
            QVERIFY(waitUntilGone(request.send()));
            QCOMPARE(answer, "hasty"_b);
            QTRY_COMPARE(server.bodies, bodies);
        }
    }

    void aRefusalMayComeBeforeTheBody()
    {
        HastyServer server(true);
        HttpClient client;
        for (int i = 0; i < 20; ++i) {
            int outcomes = 0;
            HttpRequest request(HttpMethod::Post, &client);
            request.url(server.address())
                .rawBody(bodyOf(largest))
                .onFinished([&] { ++outcomes; })
                .onError([&] { ++outcomes; });
            QVERIFY(waitUntilGone(request.send()));
            QCOMPARE(outcomes, 1);
        }
    }

    void everyAttemptCarriesTheBody_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : {0, 300, largest, largest + 1})
            QTest::addRow("%d bytes", size) << size;
    }
    void everyAttemptCarriesTheBody()
    {
        QFETCH(int, size);
        const QByteArray body = bodyOf(size);
        m_server.reset();
        m_server.answer(ScriptedServer::reply("", "500 Broken"), Then::KeepOpen);
        m_server.answer("", Then::Close);
        m_server.answer(ScriptedServer::reply("ok"), Then::KeepOpen);
        HttpClient client;
        int finished = 0;
        HttpRequest request(HttpMethod::Post, &client);
        request.url(m_address)
            .rawBody(body)
            .retry(2)
            .repeat(3)
            .onFinished([&] { ++finished; })
            .send();
        QTRY_COMPARE(finished, 3);
        QCOMPARE(bodiesOf(m_server.requests()), (QByteArrayList{body, body, body, body, body}));
    }

    void anExchangeMayEndAtAnyMoment_data()
    {
        QTest::addColumn<int>("deed");
        QTest::addColumn<int>("moment");
        QTest::addColumn<bool>("kept");
        for (int moment = 0; moment < int(Moment::Count); ++moment) {
            for (int deed = 0; deed < int(Deed::Count); ++deed) {
                if (!isAllowed(Deed(deed), Moment(moment)))
                    continue;
                for (const bool kept : {false, true})
                    QTest::addRow("deed %d at moment %d, %s connection", deed, moment,
                                  kept ? "kept" : "new")
                        << deed << moment << kept;
            }
        }
    }
    void anExchangeMayEndAtAnyMoment()
    {
        QFETCH(int, deed);
        QFETCH(int, moment);
        QFETCH(bool, kept);
        const LogCapture log;
        endAt(Moment(moment), Deed(deed), kept);
        HttpClient client;
        HttpRequest request(HttpMethod::Post, &client);
        QVERIFY(waitUntilGone(request.url(m_address).rawBody(bodyOf(largest)).send()));
        const QByteArrayList bodies = bodiesOf(m_server.requests());
        QCOMPARE(bodies.last(), bodyOf(largest));
        QCOMPARE(bodies.count(bodyOf(largest)), bodies.size());
        // Qt says so of each reply that is aborted before its request has begun.
        QStringList warnings = log.texts(QtWarningMsg);
        warnings.removeAll(
            "QNetworkReplyImplPrivate::error: Internal problem, this method must only "
            "be called once."_s);
        QCOMPARE(warnings.join(QLatin1Char('\n')), QString());
    }

    void aClientThatSendsAnotherBodyIsObeyed()
    {
        m_server.reset();
        m_server.answer(ScriptedServer::reply("ok"));
        TranslatingClient client;
        HttpRequest request(HttpMethod::Post, &client);
        QVERIFY(waitUntilGone(request.url(m_address).rawBody("the caller's").send()));
        QCOMPARE(bodiesOf(m_server.requests()), QByteArrayList{"its own, which is longer"});
    }

    void repliesOfAnotherClassAreLeftAlone()
    {
        HttpClient client;
        ControlledClient controlled;
        const LogCapture log;
        for (int i = 0; i < 2; ++i) { // each class is met after the other
            HttpRequest(HttpMethod::Post, &controlled).rawBody("body").send();
            QCOMPARE(controlled.replies.last()->findChildren<PromptBody *>().size(), 0);
            QCOMPARE(isOneRecord(client, HttpMethod::Post, 1), isSwitchedOn);
        }
        QCOMPARE(log.lines().size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestHttpPromptBody)

#include "tst_httppromptbody.moc"
