#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"
#include "tests/support/logcapture.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/signalrecorder.h"

#include <QCoreApplication>
#include <QMetaMethod>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTextCodec>
#include <QTranslator>

using HttpTesting::waitUntilGone;

namespace {

/// Translates every text to an empty one.
class NoText : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *, const char *, int) const override
    {
        return QStringLiteral("");
    }
};

/// Gives its body in pieces, and need not tell how much there is.
class SlowReader : public ControlledReply
{
public:
    SlowReader(qint64 told, qint64 piece)
        : ControlledReply(QNetworkAccessManager::GetOperation, QNetworkRequest(), nullptr)
        , m_told(told)
        , m_piece(piece)
    {
    }

    qint64 bytesAvailable() const override
    {
        return m_told < 0 ? ControlledReply::bytesAvailable() : m_told;
    }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        return ControlledReply::readData(data, qMin(maxSize, m_piece));
    }

private:
    const qint64 m_told;  ///< Bytes; negative: as many as there are.
    const qint64 m_piece; ///< Bytes.
};

/// Every signal but those that take the reply over, in the order of the meta-object.
QStringList watchedSignals()
{
    QStringList signatures;
    const QMetaObject &meta = HttpResponse::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QString signature = QString::fromLatin1(meta.method(i).methodSignature());
        if (meta.method(i).methodType() == QMetaMethod::Signal
            && signature != "finished(QNetworkReply*)"_s && signature != "error(QNetworkReply*)"_s
            && signature != "timeout(QNetworkReply*)"_s)
            signatures.append(signature);
    }
    return signatures;
}

} // namespace

/// What a response makes of its reply: its interface, the order and values of its signals, who owns
/// the reply.
class TestHttpResponse : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theClientDeclaresNothingOfItsOwn()
    {
        const QMetaObject &meta = HttpClient::staticMetaObject;
        QCOMPARE(meta.superClass(), &QNetworkAccessManager::staticMetaObject);
        QCOMPARE(meta.methodCount(), meta.methodOffset());
        QCOMPARE(meta.propertyCount(), meta.propertyOffset());
        QCOMPARE(meta.enumeratorCount(), meta.enumeratorOffset());
    }

    void theMetaObjectHasItsSignalsAndSlotsInOrder()
    {
        const QStringList expected{
            "signal replyChanged(QNetworkReply* reply)"_s,
            "signal finished(QNetworkReply* reply)"_s,
            "signal finished()"_s,
            "signal finished(QByteArray result)"_s,
            "signal finished(QVariantMap resultMap)"_s,
            "signal finished(QString result)"_s,
            "signal downloadProgress(qlonglong ,qlonglong )"_s,
            "signal uploadProgress(qlonglong ,qlonglong )"_s,
            "signal error(QByteArray error)"_s,
            "signal error()"_s,
            "signal error(QNetworkReply::NetworkError error)"_s,
            "signal error(QNetworkReply* reply)"_s,
            "signal timeout()"_s,
            "signal timeout(QNetworkReply* reply)"_s,
            "signal readyRead(QNetworkReply* reply)"_s,
            "signal downloadFileNameChanged(QString fileName)"_s,
            "signal downloadFileFinished()"_s,
            "signal downloadFileFinished(QString file)"_s,
            "signal downloadFileError()"_s,
            "signal downloadFileError(QString errorString)"_s,
            "signal encrypted()"_s,
            "signal metaDataChanged()"_s,
            "signal preSharedKeyAuthenticationRequired(QSslPreSharedKeyAuthenticator* "
            "authenticator)"_s,
            "signal redirectAllowed()"_s,
            "signal redirected(QUrl url)"_s,
            "signal sslErrors(QList<QSslError> errors)"_s,
            "signal retried()"_s,
            "signal repeated()"_s,
            "signal authenticationRequired(QAuthenticator* authentication)"_s,
            "signal authenticationRequireFailed()"_s,
            "signal authenticationRequireFailed(QNetworkReply* )"_s,
            "signal head(QList<QNetworkReply::RawHeaderPair> )"_s,
            "signal head(QMap<QString,QString> )"_s,
            "signal downloadFileProgress(qlonglong bytesReceived,qlonglong bytesTotal)"_s,
            "private slot onFinished()"_s,
            "private slot onError(QNetworkReply::NetworkError error)"_s,
            "private slot onDownloadProgress(qlonglong bytesReceived,qlonglong bytesTotal)"_s,
            "private slot onUploadProgress(qlonglong bytesSent,qlonglong bytesTotal)"_s,
            "private slot onTimeout()"_s,
            "private slot onReadyRead()"_s,
            "private slot onReadOnceReplyHeader()"_s,
            "private slot onEncrypted()"_s,
            "private slot onMetaDataChanged()"_s,
            "private slot onPreSharedKeyAuthenticationRequired(QSslPreSharedKeyAuthenticator* "
            "authenticator)"_s,
            "private slot onRedirectAllowed()"_s,
            "private slot onRedirected(QUrl url)"_s,
            "private slot onSslErrors(QList<QSslError> errors)"_s,
            "private slot onAuthenticationRequired(QNetworkReply* reply,QAuthenticator* "
            "authenticator)"_s,
            "private slot onHandleHead()"_s,
        };
        QStringList actual;
        const QMetaObject &meta = HttpResponse::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QMetaMethod method = meta.method(i);
            QStringList parameters;
            for (int p = 0; p < method.parameterCount(); ++p) {
                parameters.append(QString::fromLatin1(method.parameterTypes().at(p)) + " "_s
                                  + QString::fromLatin1(method.parameterNames().at(p)));
            }
            const bool isSignal = method.methodType() == QMetaMethod::Signal;
            const bool isPrivateSlot =
                method.methodType() == QMetaMethod::Slot && method.access() == QMetaMethod::Private;
            actual.append((isSignal        ? "signal "_s
                           : isPrivateSlot ? "private slot "_s
                                           : "other "_s)
                          + QString::fromLatin1(method.name()) + "("_s
                          + parameters.join(QLatin1Char(',')) + ")"_s);
        }
        QCOMPARE(actual, expected);
        QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    }

    void aSuccessIsReportedInOrder_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("map");
        QTest::newRow("object") << "{\"a\": [1, \"\xC3\xA4\"]}"_b
                                << "{\"a\": [1, \"ä\"]}"_s
                                << "{\"a\":[1,\"ä\"]}"_s;
        QTest::newRow("array") << "[1,2]"_b
                               << "[1,2]"_s
                               << "{}"_s;
        QTest::newRow("array of objects") << "[{\"a\":1}]"_b
                                          << "[{\"a\":1}]"_s
                                          << "{}"_s;
        QTest::newRow("empty") << ""_b
                               << ""_s
                               << "{}"_s;
        QTest::newRow("plain text") << "hello"_b
                                    << "hello"_s
                                    << "{}"_s;
        QTest::newRow("number") << "42"_b
                                << "42"_s
                                << "{}"_s;
        QTest::newRow("broken object") << "{\"a\":1"_b
                                       << "{\"a\":1"_s
                                       << "{}"_s;
        QTest::newRow("object and more") << "{\"a\":1} x"_b
                                         << "{\"a\":1} x"_s
                                         << "{}"_s;
        QTest::newRow("blanks around an object") << " {\"a\":1}\n"_b
                                                 << " {\"a\":1}\n"_s
                                                 << "{\"a\":1}"_s;
    }
    void aSuccessIsReportedInOrder()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, text);
        QFETCH(QString, map);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(body));
        HttpClient client;
        QVariantMap gotMap;
        QByteArray gotBody;
        HttpRequest request(HttpMethod::Get, &client);
        CallbackLog log;
        log.bindOutcomes(request.url(server.address("/"_s)));
        request.onFinished([&gotBody](const QByteArray &bytes) { gotBody = bytes; });
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(gotBody, body);
        QCOMPARE(log.lines(), (QStringList{"finished()"_s,
                                           "finished(bytes "_s + QString::fromLatin1(body) + ")"_s,
                                           "finished(text "_s + text + ")"_s,
                                           "finished(map "_s + map + ")"_s, "repeated()"_s}));
    }

    void theBodyIsWholeHoweverItIsRead_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<qint64>("told");
        QTest::addColumn<qint64>("piece");
        constexpr qint64 all = 1 << 20;
        for (const int size : {0, 1, 16383, 16384, 16385, 100000}) {
            for (const qint64 told : {-1, 0, 1, 5000, 50000}) {
                for (const qint64 piece : {qint64(5000), all})
                    QTest::addRow("%d told as %lld in %lld", size, told, piece)
                        << size << told << piece;
            }
        }
    }
    void theBodyIsWholeHoweverItIsRead()
    {
        QFETCH(int, size);
        QFETCH(qint64, told);
        QFETCH(qint64, piece);
        QByteArray sent(size, 'x');
        for (int i = 0; i < size; ++i)
            sent[i] = char('a' + i % 23);
        HttpRequest request(HttpMethod::Get, nullptr);
        QByteArray got;
        request.onFinished([&got](const QByteArray &body) { got = body; });
        auto *reply = new SlowReader(told, piece); // deleted by its response
        request.fields.reply = reply;
        new HttpResponse(request, reply); // the reply's child
        reply->receive(sent);
        reply->succeed();
        QCOMPARE(got, sent);
        QCOMPARE(got.isNull(), size == 0);
        QVERIFY(waitUntilGone(reply));
    }

    void aBodyThatIsKeptTakesLittleMoreThanItsSize()
    {
        ControlledClient client;
        QByteArrayList kept;
        const QList<int> sizes{16384, 100, 1100, 9000, 1024, 1025, 3};
        for (const int size : sizes) {
            for (const bool keeps : {false, true}) { // one that is not kept serves the next
                HttpRequest(HttpMethod::Get, &client)
                    .onFinished([&kept, keeps](const QByteArray &body) {
                        if (keeps)
                            kept.append(body);
                    })
                    .send();
                client.replies.last()->receive(QByteArray(size, char('a' + kept.size())));
                client.replies.last()->succeed();
            }
        }
        QCOMPARE(kept.size(), sizes.size());
        for (int i = 0; i < sizes.size(); ++i) {
            QCOMPARE(kept.at(i), QByteArray(sizes.at(i), char('a' + i)));
            QVERIFY(kept.at(i).capacity() <= 2 * sizes.at(i) + 1024);
        }
    }

    void theMapHoldsTheWholeObject()
    {
        ControlledClient client;
        QVariantMap map;
        HttpRequest(HttpMethod::Get, &client)
            .onFinished([&map](const QVariantMap &object) { map = object; })
            .send();
        client.replies.first()->receive(
            "{\"n\":null,\"t\":true,\"i\":12345678901,\"l\":[1],\"o\":{\"k\":\"v\"}}");
        client.replies.first()->succeed();
        const QVariantMap expected{{"n"_s, QVariant::fromValue(nullptr)},
                                   {"t"_s, true},
                                   {"i"_s, Q_INT64_C(12345678901)},
                                   {"l"_s, QVariantList{1}},
                                   {"o"_s, QVariantMap{{"k"_s, "v"_s}}}};
        QCOMPARE(map, expected);
    }

    void theWholeOfASuccessfulExchangeIsInOrder()
    {
        ControlledClient client;
        HttpResponse *response = HttpRequest(HttpMethod::Get, &client).send();
        const SignalRecorder recorder(response, watchedSignals());
        ControlledReply *reply = client.replies.first();
        const QString replyText =
            HttpTesting::recorded(QVariant::fromValue<QNetworkReply *>(reply));
        reply->setHeader("A", "1");
        Q_EMIT reply->metaDataChanged();
        reply->receive("{\"k\":");
        Q_EMIT reply->downloadProgress(5, -1);
        reply->receive("1}");
        Q_EMIT reply->downloadProgress(7, 7);
        reply->succeed();
        const QString list =
            HttpTesting::recorded(QVariant::fromValue(QList<QNetworkReply::RawHeaderPair>()));
        QCOMPARE(recorder.calls(),
                 (QStringList{"metaDataChanged()"_s, "head("_s + list + ")"_s,
                              "head(QVariant(QMap<QString,QString>, ))"_s,
                              "readyRead("_s + replyText + ")"_s, "downloadFileProgress(5, -1)"_s,
                              "readyRead("_s + replyText + ")"_s, "downloadFileProgress(7, 7)"_s,
                              "finished()"_s, "finished({\"k\":1})"_s, "finished({\"k\":1})"_s,
                              "finished(QVariant(QVariantMap, QMap((\"k\", QVariant(qlonglong, "
                              "1)))))"_s,
                              "repeated()"_s}));
    }

    void aFailureIsReportedInOrder()
    {
        ControlledClient client;
        HttpResponse *response = HttpRequest(HttpMethod::Get, &client).send();
        const SignalRecorder recorder(response, watchedSignals());
        client.replies.first()->fail(QNetworkReply::ContentNotFoundError, "not there"_s);
        const QVariant code = QVariant::fromValue(QNetworkReply::ContentNotFoundError);
        const QVariant pairs = QVariant::fromValue(QList<QNetworkReply::RawHeaderPair>());
        QCOMPARE(recorder.calls(),
                 (QStringList{"error()"_s, "error("_s + HttpTesting::recorded(code) + ")"_s,
                              "error(not there)"_s, "repeated()"_s,
                              "head("_s + HttpTesting::recorded(pairs) + ")"_s,
                              "head(QVariant(QMap<QString,QString>, ))"_s}));
    }

    void theHeadOfAFailureIsToldThoughTheReplyGoesBeforeItIsFinished()
    {
        ControlledClient client;
        QStringList told;
        HttpRequest(HttpMethod::Get, &client)
            .onError([&told](const QByteArray &text) { told.append(QString::fromUtf8(text)); })
            .onHead([&told](const QMap<QString, QString> &head) { told.append(head.value("A"_s)); })
            .send();
        const QPointer<ControlledReply> reply = client.replies.first();
        reply->setHeader("A", "1");
        reply->setErrorOnly(QNetworkReply::ContentNotFoundError, "not there"_s);
        Q_EMIT reply->errorOccurred(QNetworkReply::ContentNotFoundError);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!reply);
        QCOMPARE(told, (QStringList{"not there"_s, "1"_s}));
    }

    void anHttpErrorStatusIsAFailureWithoutABody_data()
    {
        QTest::addColumn<QByteArray>("status");
        QTest::addColumn<int>("code");
        QTest::newRow("400") << "400 Bad Request"_b << 302;
        QTest::newRow("403") << "403 Forbidden"_b << 201;
        QTest::newRow("404") << "404 Not Found"_b << 203;
        QTest::newRow("429") << "429 Too Many Requests"_b << 299;
        QTest::newRow("500") << "500 Internal Server Error"_b << 401;
        QTest::newRow("503") << "503 Service Unavailable"_b << 403;
    }
    void anHttpErrorStatusIsAFailureWithoutABody()
    {
        QFETCH(QByteArray, status);
        QFETCH(int, code);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("{\"code\":0}", status));
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        CallbackLog log;
        log.bindOutcomes(request.url(server.address("/p"_s)));
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(log.lines(), (QStringList{"error()"_s, "error(code %1)"_s.arg(code),
                                           "error(text Error transferring "_s
                                               + server.address("/p"_s) + " - server replied: "_s
                                               + QString::fromLatin1(status.mid(4)) + ")"_s,
                                           "repeated()"_s}));
    }

    void anErrorWithoutATextIsNamedByItsCode_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("cancelled") << 5 << "OperationCanceledError"_b;
        QTest::newRow("unknown server") << 499 << "UnknownServerError"_b;
    }
    void anErrorWithoutATextIsNamedByItsCode()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, text);
        // Qt has a text for every error, if only "Unknown error"; a translation may leave it out.
        NoText translation;
        QVERIFY(QCoreApplication::installTranslator(&translation));
        ControlledClient client;
        QByteArray got = "nothing";
        HttpRequest(HttpMethod::Get, &client)
            .onError([&got](const QByteArray &bytes) { got = bytes; })
            .send();
        client.replies.first()->fail(QNetworkReply::NetworkError(code), QString());
        QCOMPARE(got, text);
    }

    void theErrorTextIsInTheLocalEncoding()
    {
        QTextCodec *const before = QTextCodec::codecForLocale();
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-15"));
        ControlledClient client;
        QByteArray got;
        HttpRequest(HttpMethod::Get, &client)
            .onError([&got](const QByteArray &bytes) { got = bytes; })
            .send();
        client.replies.first()->fail(QNetworkReply::TimeoutError, "zu spät, 5 €"_s);
        QTextCodec::setCodecForLocale(before);
        QCOMPARE(got, "zu sp\xE4t, 5 \xA4"_b);
    }

    void theReplyGoesAfterTheSignals_data()
    {
        QTest::addColumn<bool>("success");
        QTest::newRow("success") << true;
        QTest::newRow("failure") << false;
    }
    void theReplyGoesAfterTheSignals()
    {
        QFETCH(bool, success);
        ControlledClient client;
        const QPointer<HttpResponse> response = HttpRequest(HttpMethod::Get, &client).send();
        const QPointer<ControlledReply> reply = client.replies.first();
        bool alive = false;
        connect(response, &HttpResponse::repeated, this, [&] { alive = bool(reply); });
        end(reply, success);
        QVERIFY(alive);
        QVERIFY(!reply.isNull()); // until control is back in the event loop
        QVERIFY(waitUntilGone(reply));
        QVERIFY(response.isNull());
    }

    void aReceiverOfTheReplyKeepsIt_data()
    {
        QTest::addColumn<bool>("success");
        QTest::addColumn<bool>("otherwise"); // a receiver of the other outcome's reply
        QTest::newRow("success") << true << false;
        QTest::newRow("failure") << false << false;
        QTest::newRow("success, only errors taken") << true << true;
        QTest::newRow("failure, only successes taken") << false << true;
    }
    void aReceiverOfTheReplyKeepsIt()
    {
        QFETCH(bool, success);
        QFETCH(bool, otherwise);
        ControlledClient client;
        HttpResponse *response = HttpRequest(HttpMethod::Get, &client).send();
        const SignalRecorder recorder(response, {success != otherwise ? "finished(QNetworkReply*)"_s
                                                                      : "error(QNetworkReply*)"_s,
                                                 "finished()"_s, "error()"_s, "repeated()"_s});
        const QPointer<ControlledReply> reply = client.replies.first();
        end(reply, success);
        const QString name = success ? "finished("_s : "error("_s;
        QStringList expected{name + ")"_s, "repeated()"_s};
        if (!otherwise)
            expected.prepend(
                name + HttpTesting::recorded(QVariant::fromValue<QNetworkReply *>(reply)) + ")"_s);
        QCOMPARE(recorder.calls(), expected);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(reply.isNull(), otherwise);
    }

    void aReceiverOfTheReplyMayReadItFirst()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        QStringList order;
        QPointer<QNetworkReply> kept;
        HttpRequest(HttpMethod::Get, &client)
            .url(server.address("/"_s))
            .onFinished([&order](const QByteArray &body) {
                order.append("bytes "_s + QString::fromLatin1(body));
            })
            .onFinished([&](QNetworkReply *reply) {
                kept = reply;
                order.append("reply "_s + QString::fromLatin1(reply->readAll()));
            })
            .onRepeated([&order] { order.append("repeated"_s); })
            .send();
        TRY_COMPARE(order, (QStringList{"reply body"_s, "bytes "_s, "repeated"_s}));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!kept.isNull());
        delete kept;
    }

    void withoutAReceiverOfTheBodyItIsLeftUnread()
    {
        ControlledClient client;
        HttpRequest(HttpMethod::Get, &client).onFinished([](QNetworkReply *) {}).send();
        client.replies.first()->receive("body");
        client.replies.first()->succeed();
        QCOMPARE(client.replies.first()->readAll(), "body"_b);
    }

    // What Qt reports of a redirect depends on timing. These are orders of its signals that were
    // seen, and headers as it joins them.
    void theHeadIsWhatTheReplyHas_data()
    {
        using Headers = QList<QNetworkReply::RawHeaderPair>;
        QTest::addColumn<QStringList>("events");
        QTest::addColumn<Headers>("last");
        const QStringList kept{"302"_s, "redirected"_s, "302"_s, "end"_s};
        const Headers own{{"Content-Length", "3000"}, {"X", "1"}};
        QTest::newRow("no redirect") << QStringList{"end"_s} << own;
        QTest::newRow("dropped") << QStringList{"302"_s, "redirected"_s, "end"_s} << own;
        QTest::newRow("joined") << kept
                                << Headers{{"Location", "/f"},
                                           {"Content-Length", "145, 3000"},
                                           {"Server", "s, s"},
                                           {"X", "1"}};
        QTest::newRow("not in the last answer")
            << kept << Headers{{"Content-Length", "145"}, {"X", "1"}};
        QTest::newRow("cookies") << kept << Headers{{"Set-Cookie", "a=1\nb=2"}};
        QTest::newRow("told again when it is allowed")
            << QStringList{"302"_s, "redirected"_s, "allowed"_s, "302"_s, "end"_s}
            << Headers{{"Location", "/f"}, {"Content-Length", "145, 3000"}};
        QTest::newRow("not modified") << QStringList{"302"_s, "redirected"_s, "302"_s, "304"_s}
                                      << Headers{{"Location", "/f"}, {"Server", "s, s"}};
        QTest::newRow("the redirect is the last answer")
            << QStringList{"302"_s, "redirected"_s, "302"_s}
            << Headers{{"Content-Length", "145"}, {"Location", "/f"}};
    }
    void theHeadIsWhatTheReplyHas()
    {
        using Headers = QList<QNetworkReply::RawHeaderPair>;
        QFETCH(QStringList, events);
        QFETCH(Headers, last);
        ControlledClient client;
        Headers seen;
        HttpRequest(HttpMethod::Get, &client)
            .onHead([&seen](const Headers &headers) { seen = headers; })
            .send();
        ControlledReply *reply = client.replies.first();
        for (const QString &event : qAsConst(events)) {
            if (event == "302"_s)
                reply->begin(302, {{"Content-Length", "145"}, {"Location", "/f"}});
            else if (event == "redirected"_s)
                Q_EMIT reply->redirected(QUrl("http://localhost/f"_s));
            else if (event == "allowed"_s)
                Q_EMIT reply->redirectAllowed();
            else
                reply->begin(event == "304"_s ? 304 : 200, last);
        }
        reply->succeed();
        QCOMPARE(seen, last);
    }

    void theHeadComesOnceBeforeTheBody()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(QByteArray(3000000, 'x'), "200 OK",
                                            "X-B: 2\r\nx-a: 1\r\nX-B: 3\r\n"));
        HttpClient client;
        QList<QNetworkReply::RawHeaderPair> pairs;
        QMap<QString, QString> map;
        QStringList order;
        int reads = 0;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s))
            .onReadyRead([&](QNetworkReply *) { ++reads; })
            .onHead([&](const QMap<QString, QString> &headers) {
                order.append("map after %1 reads"_s.arg(reads));
                map = headers;
            })
            .onHead([&](const QList<QNetworkReply::RawHeaderPair> &headers) {
                order.append("pairs after %1 reads"_s.arg(reads));
                pairs = headers;
            })
            .onFinished([&order] { order.append("finished"_s); });
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(order,
                 (QStringList{"pairs after 0 reads"_s, "map after 0 reads"_s, "finished"_s}));
        const QList<QNetworkReply::RawHeaderPair> expectedPairs{
            {"x-a", "1"}, {"X-B", "2, 3"}, {"Content-Length", "3000000"}};
        QCOMPARE(pairs, expectedPairs);
        const QMap<QString, QString> expectedMap{
            {"X-B"_s, "2, 3"_s}, {"x-a"_s, "1"_s}, {"Content-Length"_s, "3000000"_s}};
        QCOMPARE(map, expectedMap);
    }

    void theHeadOfAnEmptyBodyComesAfterTheOutcome()
    {
        ControlledClient client;
        HttpResponse *response = HttpRequest(HttpMethod::Get, &client).send();
        const SignalRecorder recorder(
            response, {"head(QMap<QString,QString>)"_s, "finished()"_s, "repeated()"_s});
        client.replies.first()->succeed();
        QCOMPARE(recorder.calls(), (QStringList{"finished()"_s, "repeated()"_s,
                                                "head(QVariant(QMap<QString,QString>, ))"_s}));
    }

    void progressGoesToTheirSignalsAndNeverToDownloadProgress()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(QByteArray(100000, 'd')));
        HttpClient client;
        QVector<QPair<qint64, qint64>> received;
        QVector<QPair<qint64, qint64>> sent;
        int never = 0;
        HttpRequest request(HttpMethod::Post, &client);
        request.url(server.address("/"_s))
            .rawBody(QByteArray(200000, 'u'))
            .onDownloadProgress([&never](qint64, qint64) { ++never; })
            .onDownloadFileProgress([&](qint64 n, qint64 all) {
                received.append({n, all});
            })
            .onUploadProgress([&](qint64 n, qint64 all) {
                sent.append({n, all});
            });
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(never, 0);
        QVERIFY(std::is_sorted(received.cbegin(), received.cend()));
        QCOMPARE(received.last(), qMakePair(Q_INT64_C(100000), Q_INT64_C(100000)));
        QVERIFY(sent.contains(qMakePair(Q_INT64_C(200000), Q_INT64_C(200000))));
    }

    void progressNumbersArePassedOnAsTheyAre()
    {
        ControlledClient client;
        HttpResponse *response = HttpRequest(HttpMethod::Get, &client).send();
        const SignalRecorder recorder(response, watchedSignals());
        Q_EMIT client.replies.first()->downloadProgress(Q_INT64_C(5000000000), -1);
        Q_EMIT client.replies.first()->uploadProgress(-1, Q_INT64_C(6000000000));
        QCOMPARE(recorder.calls(), (QStringList{"downloadFileProgress(5000000000, -1)"_s,
                                                "uploadProgress(-1, 6000000000)"_s}));
    }

    void aSecondEndOfTheReplyIsNotReported_data()
    {
        QTest::addColumn<bool>("first");
        QTest::addColumn<bool>("second");
        QTest::newRow("success, success") << true << true;
        QTest::newRow("success, failure") << true << false;
        QTest::newRow("failure, failure") << false << false;
        QTest::newRow("failure, success") << false << true;
    }
    void aSecondEndOfTheReplyIsNotReported()
    {
        QFETCH(bool, first);
        QFETCH(bool, second);
        ControlledClient client;
        HttpRequest request(HttpMethod::Get, &client);
        CallbackLog log;
        log.bindOutcomes(request).send();
        end(client.replies.first(), first);
        const QStringList once = log.lines();
        QCOMPARE(log.outcomes(), 1);
        end(client.replies.first(), second);
        QCOMPARE(log.lines(), once);
    }

    void aResponseMadeByHandServesTheReplyOfItsRequest()
    {
        ControlledClient client;
        HttpRequest request(HttpMethod::Get, &client);
        request.retry(3).fields.reply = client.get(QNetworkRequest(QUrl("http://h/"_s)));
        CallbackLog log;
        log.bindOutcomes(request);
        auto *response = new HttpResponse(request, client.replies.first());
        QCOMPARE(response->request().fields.retryCount, 3);
        QCOMPARE(response->parent(), client.replies.first().data());
        client.replies.first()->succeed();
        QCOMPARE(log.outcomes(), 1);
    }

    void anotherReplyOfTheRequestIsAnnounced()
    {
        ControlledClient client;
        HttpRequest request(HttpMethod::Get, &client);
        request.fields.reply = client.get(QNetworkRequest());
        auto *response = new HttpResponse(request, client.replies.first());
        const SignalRecorder recorder(response, {"replyChanged(QNetworkReply*)"_s});
        response->setRequest(request);
        QCOMPARE(recorder.calls(), QStringList());
        request.fields.reply = client.get(QNetworkRequest());
        response->setRequest(request);
        QCOMPARE(recorder.calls(),
                 QStringList{"replyChanged("_s
                             + HttpTesting::recorded(QVariant::fromValue(request.fields.reply))
                             + ")"_s});
        request.fields.reply = nullptr;
        response->setRequest(request);
        QCOMPARE(recorder.calls().last(),
                 "replyChanged("_s
                     + HttpTesting::recorded(QVariant::fromValue<QNetworkReply *>(nullptr))
                     + ")"_s);
    }

private:
    static void end(ControlledReply *reply, bool success)
    {
        if (success)
            reply->succeed();
        else
            reply->fail(QNetworkReply::TimeoutError, "late"_s);
    }
};

QTEST_GUILESS_MAIN(TestHttpResponse)
#include "tst_httpresponse.moc"
