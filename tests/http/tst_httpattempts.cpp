#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"
#include "tests/http/loggingreceiver.h"
#include "tests/support/logcapture.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"

#include <QTest>

#include <limits>
#include <memory>

/// How often a request goes out, and what is reported of it: retries and repeats.
class TestHttpAttempts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRequestIsSentAsItsCountsSay_data()
    {
        QTest::addColumn<int>("retry");
        QTest::addColumn<int>("repeat");
        QTest::addColumn<QString>("answers"); // '+' success, '-' failure
        QTest::addColumn<QString>("reported");
        const auto row = [](int retry, int repeat, const char *answers, const char *reported) {
            QTest::addRow("retry %d, repeat %d, answers %s", retry, repeat, answers)
                << retry << repeat << QString::fromLatin1(answers) << QString::fromLatin1(reported);
        };
        // Each "R" is retried(), "+" a success, "-" a failure, "." repeated().
        row(0, 1, "+", "+.");
        row(0, 1, "-", "-.");
        row(1, 1, "+", "+.");
        row(1, 1, "-+", "R+.");
        row(1, 1, "--", "R-.");
        row(2, 1, "---", "R-.");
        row(2, 1, "--+", "R+.");
        row(5, 1, "---+", "R+.");
        row(-1, 1, "-", "-.");
        row(0, 2, "++", "++.");
        row(0, 2, "--", "--.");
        row(0, 3, "+-+", "+-+.");
        row(0, 0, "+", "+.");
        row(0, -5, "-", "-.");
        constexpr int least = std::numeric_limits<int>::min();
        row(least, least, "+", "+.");
        row(least, least, "-", "-.");
        row(1, 2, "+-+", "+R+.");
        row(1, 2, "+--", "+R-.");
        // What is left of the retries is shared by the repeats, which are retries from then on.
        row(1, 2, "-++", "R+R+.");
        row(1, 2, "-+-", "R+R-.");
        row(2, 2, "-+-+", "R+R+.");
        row(1, 3, "-+++", "R+R+R+.");
        row(1, 2, "---", "R-R-.");
    }
    void aRequestIsSentAsItsCountsSay()
    {
        QFETCH(int, retry);
        QFETCH(int, repeat);
        QFETCH(QString, answers);
        QFETCH(QString, reported);
        ScriptedServer server;
        QVERIFY(server.start());
        for (const QChar answer : answers) {
            server.answer(answer == QLatin1Char('+') ? ScriptedServer::reply("{}")
                                                     : ScriptedServer::reply("", "500 Broken"));
        }
        // One more than expected would be answered and so be seen.
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Put, &client);
        log.bindOutcomes(
            request.url(server.address("/"_s)).rawBody("body").retry(retry).repeat(repeat));
        QVERIFY(request.send());
        QStringList expected;
        for (const QChar event : reported) {
            if (event == QLatin1Char('R'))
                expected.append("retried()"_s);
            else if (event == QLatin1Char('+'))
                expected += QStringList{"finished()"_s, "finished(bytes {})"_s,
                                        "finished(text {})"_s, "finished(map {})"_s};
            else if (event == QLatin1Char('-'))
                expected += QStringList{"error()"_s, "error(code 401)"_s,
                                        "error(text Error transferring "_s + server.address("/"_s)
                                            + " - server replied: Broken)"_s};
            else
                expected.append("repeated()"_s);
        }
        TRY_VERIFY(log.lines().contains("repeated()"_s));
        TRY_COMPARE(client.findChildren<QNetworkReply *>().size(), 0);
        QCOMPARE(log.lines(), expected);
        QCOMPARE(server.requests().size(), answers.size());
        for (const QByteArray &bytes : server.requests()) {
            QCOMPARE(HttpTesting::withoutLanguage(bytes),
                     HttpTesting::wire("PUT", "/", server.serverPort(), QByteArray(), "body"));
        }
    }

    void aRetryCarriesWhatIsLeft()
    {
        ControlledClient client;
        HttpRequest(HttpMethod::Get, &client).retry(2).repeat(3).send();
        const auto state = [&client](int index) {
            const auto *response = client.replies.at(index)->findChild<HttpResponse *>();
            const HttpRequestFields &fields = response->request().fields;
            return QVector<int>{fields.retryCount, int(fields.isRetry), fields.repeatCount};
        };
        QCOMPARE(state(0), (QVector<int>{2, 0, 3}));
        client.replies.at(0)->fail(QNetworkReply::TimeoutError, "1"_s);
        QCOMPARE(client.replies.size(), 2);
        QCOMPARE(state(1), (QVector<int>{1, 1, 3}));
        client.replies.at(1)->succeed();
        QCOMPARE(client.replies.size(), 3);
        QCOMPARE(state(2), (QVector<int>{1, 1, 2}));
        client.replies.at(2)->fail(QNetworkReply::TimeoutError, "2"_s);
        QCOMPARE(state(3), (QVector<int>{0, 1, 2}));
        client.replies.at(3)->fail(QNetworkReply::TimeoutError, "3"_s);
        QCOMPARE(state(4), (QVector<int>{0, 1, 1}));
        client.replies.at(4)->succeed();
        QCOMPARE(client.replies.size(), 5);
    }

    void aFailureThatIsRetriedReportsNothingAndGoes()
    {
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        int errors = 0;
        log.bindOutcomes(request.retry(1))
            .onError([&errors](QNetworkReply *) { ++errors; })
            .onDownloadFileError([&log] { log.add("file error"_s); })
            .send();
        const QPointer<ControlledReply> first = client.replies.at(0);
        first->fail(QNetworkReply::TimeoutError, "late"_s);
        QCOMPARE(log.lines(), QStringList());
        QCOMPARE(errors, 0);
        QVERIFY(HttpTesting::waitUntilGone(first)); // although the reply is asked for
        QCOMPARE(client.replies.size(), 2);
    }

    void aRepeatedRequestWhoseReplyIsTakenKeepsEveryReply()
    {
        ControlledClient client;
        QVector<QNetworkReply *> taken;
        HttpRequest(HttpMethod::Get, &client)
            .repeat(2)
            .onFinished([&taken](QNetworkReply *reply) { taken.append(reply); })
            .send();
        client.replies.at(0)->succeed();
        client.replies.at(1)->succeed();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(taken, (QVector<QNetworkReply *>{client.replies.at(0), client.replies.at(1)}));
    }

    void theNextAttemptIsSentBeforeTheLastReplyGoes()
    {
        ControlledClient client;
        HttpRequest(HttpMethod::Get, &client).repeat(2).send();
        client.replies.at(0)->succeed();
        QCOMPARE(client.replies.size(), 2);
        QVERIFY(!client.replies.at(0).isNull());
        QVERIFY(HttpTesting::waitUntilGone(client.replies.at(0)));
        QVERIFY(!client.replies.at(1).isNull());
    }

    void aSlotIsAttachedAnewForEveryAttempt()
    {
        ControlledClient client;
        CallbackLog log;
        LoggingReceiver receiver(&log);
        HttpRequest(HttpMethod::Get, &client)
            .repeat(3)
            .onFinished(&receiver, SLOT(bytes(QByteArray)))
            .send();
        for (int i = 0; i < 3; ++i) {
            client.replies.at(i)->receive("body %1"_s.arg(i).toLatin1());
            client.replies.at(i)->succeed();
        }
        QCOMPARE(log.lines(), (QStringList{"slot body 0"_s, "slot body 1"_s, "slot body 2"_s}));
    }

    void aReceiverThatGoesBeforeTheNextAttemptIsLeftOut_data()
    {
        QTest::addColumn<bool>("retry");
        QTest::addColumn<bool>("typed"); // the variant holds a pointer to the receiver's own class
        QTest::newRow("retry") << true << false;
        QTest::newRow("repeat") << false << false;
        QTest::newRow("retry, typed pointer") << true << true;
        QTest::newRow("repeat, typed pointer") << false << true;
    }
    void aReceiverThatGoesBeforeTheNextAttemptIsLeftOut()
    {
        QFETCH(bool, retry);
        QFETCH(bool, typed);
        ControlledClient client;
        CallbackLog log;
        auto receiver = std::make_unique<LoggingReceiver>(&log);
        LoggingReceiver other(&log);
        const QVariant target = typed ? QVariant::fromValue(receiver.get())
                                      : QVariant::fromValue<QObject *>(receiver.get());
        HttpRequest(HttpMethod::Get, &client)
            .retry(retry ? 1 : 0)
            .repeat(retry ? 1 : 2)
            .bind(CallbackKind::Repeated, "1done()"_s, target)
            .bind(CallbackKind::Finished, "1bytes(QByteArray)"_s, target)
            .onRepeated([&log] { log.add("function"_s); })
            .bind(CallbackKind::Repeated, "1done()"_s, QVariant::fromValue<QObject *>(&other))
            .send();
        receiver.reset();
        LogCapture messages;
        if (retry)
            client.replies.at(0)->fail(QNetworkReply::TimeoutError, "late"_s);
        else
            client.replies.at(0)->succeed();
        QCOMPARE(client.replies.size(), 2);
        client.replies.at(1)->succeed();
        QCOMPARE(log.lines(), (QStringList{"function"_s, "slot"_s}));
        QCOMPARE(messages.lines().size(), 0);
    }

    void aReceiverMayGoInsideTheCallbackThatPrecedesTheRepeat()
    {
        ControlledClient client;
        CallbackLog log;
        auto *receiver = new LoggingReceiver(&log);
        HttpRequest(HttpMethod::Get, &client)
            .repeat(2)
            .onFinished(receiver, SLOT(bytes(QByteArray)))
            .onFinished([&receiver](const QByteArray &) {
                delete receiver;
                receiver = nullptr;
            })
            .send();
        client.replies.at(0)->receive("1");
        client.replies.at(0)->succeed();
        client.replies.at(1)->receive("2");
        client.replies.at(1)->succeed();
        QCOMPARE(log.lines(), QStringList{"slot 1"_s});
    }

    void anotherObjectInThePlaceOfAReceiverIsNotCalled()
    {
        // What is remembered of a receiver must not be its address alone.
        ControlledClient client;
        CallbackLog log;
        alignas(LoggingReceiver) unsigned char place[sizeof(LoggingReceiver)];
        auto *first = new (place) LoggingReceiver(&log);
        HttpRequest(HttpMethod::Get, &client)
            .repeat(2)
            .bind(CallbackKind::Repeated, "1done()"_s, QVariant::fromValue<QObject *>(first))
            .send();
        first->~LoggingReceiver();
        auto *second = new (place) LoggingReceiver(&log);
        client.replies.at(0)->succeed();
        client.replies.at(1)->succeed();
        QCOMPARE(log.lines(), QStringList());
        second->~LoggingReceiver();
    }

    void aWatchedReceiverReadsAsAnObjectAndAsNullOnceItIsGone()
    {
        ControlledClient client;
        CallbackLog log;
        auto receiver = std::make_unique<LoggingReceiver>(&log);
        const HttpResponse *response = HttpRequest(HttpMethod::Get, &client)
                                           .repeat(2)
                                           .onRepeated(receiver.get(), SLOT(done()))
                                           .send();
        const QVariant target = response->request().fields.callbacks.first().first().second;
        QCOMPARE(target.value<QObject *>(), receiver.get());
        receiver.reset();
        QCOMPARE(target.value<QObject *>(), nullptr);
    }

    void aWatchedReceiverWithoutTheSlotIsReportedEachTime()
    {
        LogCapture messages;
        ControlledClient client;
        CallbackLog log;
        LoggingReceiver receiver(&log);
        HttpRequest(HttpMethod::Get, &client)
            .repeat(2)
            .bind(CallbackKind::Repeated, "1missing()"_s, QVariant::fromValue<QObject *>(&receiver))
            .send();
        client.replies.at(0)->succeed();
        const QString warning = "15 method[missing()] is invalid"_s;
        QCOMPARE(messages.texts(QtWarningMsg), (QStringList{warning, warning}));
    }

    void theSameReceiverUnderTwoKindsIsLeftOutOfBoth()
    {
        ControlledClient client;
        CallbackLog log;
        auto receiver = std::make_unique<LoggingReceiver>(&log);
        HttpRequest(HttpMethod::Get, &client)
            .retry(1)
            .repeat(2)
            .onError(receiver.get(), SLOT(done()))
            .onRetried(receiver.get(), SLOT(done()))
            .onFinished(receiver.get(), &LoggingReceiver::bytes)
            .send();
        client.replies.at(0)->fail(QNetworkReply::TimeoutError, "late"_s);
        receiver.reset();
        client.replies.at(1)->succeed();
        client.replies.at(2)->succeed();
        QCOMPARE(client.replies.size(), 3);
        QCOMPARE(log.lines(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestHttpAttempts)
#include "tst_httpattempts.moc"
