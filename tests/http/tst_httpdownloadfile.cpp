#include "http/httpclient.h"
#include "http/httpdispatch.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/signalrecorder.h"
#include "tests/support/testfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

using HttpTesting::waitUntilGone;

/// The file side of a response to a download, and the end that a time-out makes.
class TestHttpDownloadFile : public QObject
{
    Q_OBJECT

    TestFolder m_folder;

    QString path(const QString &name) const { return m_folder.path(name); }

    static QStringList outcome(const QByteArray &body)
    {
        const QString text = QString::fromLatin1(body);
        return {"finished()"_s, "finished(bytes "_s + text + ")"_s,
                "finished(text "_s + text + ")"_s, "finished(map {})"_s, "repeated()"_s};
    }

    static void expireTimeout(HttpResponse *response)
    {
        QVERIFY(QMetaObject::invokeMethod(response, "onTimeout"));
    }

    /// Whether this process has the file open.
    static bool isOpen(const QString &name)
    {
#ifdef Q_OS_WIN
        const QString other =
            name + "-moved"_s; // which Windows does not let happen to an open file
        return !QFile::rename(name, other) || !QFile::rename(other, name);
#else
        const QFileInfoList open =
            QDir("/proc/self/fd"_s).entryInfoList(QDir::System | QDir::Files);
        return std::any_of(open.cbegin(), open.cend(),
                           [&name](const QFileInfo &file) { return file.symLinkTarget() == name; });
#endif
    }

private Q_SLOTS:
    void theBodyGoesIntoTheFile_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<bool>("supports");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("new file") << QByteArray() << false << true << "body"_b;
        QTest::newRow("new file, resume possible") << QByteArray() << true << true << "body"_b;
        QTest::newRow("old file is replaced") << "a longer one"_b << false << true << "body"_b;
        QTest::newRow("old file, resume switched off")
            << "a longer one"_b << true << false << "body"_b;
        QTest::newRow("old file is continued") << "some"_b << true << true << "somebody"_b;
    }
    void theBodyGoesIntoTheFile()
    {
        QFETCH(QByteArray, before);
        QFETCH(bool, supports);
        QFETCH(bool, enabled);
        QFETCH(QByteArray, after);
        const QString name = path("target"_s);
        QFile::remove(name);
        if (!before.isEmpty())
            TestFolder::write(name, before);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/"_s)).download(name).enableResume(enabled);
        request.fields.supportsResume = supports;
        log.bindFile(request);
        log.bindOutcomes(request);
        QVERIFY(waitUntilGone(HttpDispatch::dispatch(request, nullptr)));
        QCOMPARE(log.lines(), QStringList({"file()"_s, "file "_s + name}) + outcome(""));
        QCOMPARE(TestFolder::contents(name), after);
    }

    void everyPartIsWrittenBeforeItIsAnnounced()
    {
        const QString name = path("parts"_s);
        ControlledClient client;
        HttpRequest request(HttpMethod::Get, &client);
        HttpResponse *response = HttpDispatch::dispatch(request.download(name), nullptr);
        CallbackLog log;
        connect(response, &HttpResponse::readyRead, this, [&](QNetworkReply *reply) {
            log.add("%1 written, %2 unread"_s.arg(response->request().fields.downloadedBytes)
                        .arg(reply->bytesAvailable()));
        });
        connect(response, QOverload<>::of(&HttpResponse::downloadFileFinished), this,
                [&] { log.add("file()"_s); });
        client.replies.first()->receive("one");
        client.replies.first()->receive("three");
        client.replies.first()->succeed();
        QCOMPARE(log.lines(),
                 (QStringList{"3 written, 0 unread"_s, "8 written, 0 unread"_s, "file()"_s}));
        QCOMPARE(TestFolder::contents(name), "onethree"_b);
    }

    void anEmptyBodyMakesNoFile()
    {
        const QString name = path("none"_s);
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindFile(request.download(name));
        HttpDispatch::dispatch(log.bindOutcomes(request), nullptr);
        client.replies.first()->succeed();
        QCOMPARE(log.lines(), outcome(""));
        QVERIFY(!QFile::exists(name));
    }

    void aFileThatCannotBeWrittenIsReportedAndTheBodyDelivered()
    {
        const QString name = path("missing/folder/file"_s);
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindFile(request.url("http://h/a%20b"_s).download(name));
        HttpDispatch::dispatch(log.bindOutcomes(request), nullptr);
        client.replies.first()->receive("bo");
        client.replies.first()->receive("dy");
        client.replies.first()->succeed();
        QCOMPARE(log.lines(), QStringList({"fileError()"_s, "fileError Url: http://h/a b "_s + name
                                                                + " Non-Writable"_s})
                                  + outcome("body"));
    }

    void aWriteThatFailsIsReportedForEachPart()
    {
        // A file that takes nothing: every write to it fails for want of room.
        const QString name = "/dev/full"_s;
#ifdef Q_OS_WIN
        QSKIP("Windows has no such file", );
#endif
        QVERIFY2(QFile::exists(name), "this machine has no such file");
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindFile(request.url("http://h/"_s).download(name));
        request.onReadyRead([&log](QNetworkReply *) { log.add("readyRead"_s); });
        HttpDispatch::dispatch(log.bindOutcomes(request), nullptr);
        const QByteArray more(100000, 'x'); // than a buffer holds
        client.replies.first()->receive(more);
        const QStringList failed{"fileError()"_s,
                                 "fileError Url: http://h/ /dev/full Write "
                                 "failed!"_s,
                                 "readyRead"_s};
        QCOMPARE(log.lines(), failed);
        client.replies.first()->receive(more);
        QCOMPARE(log.lines(), failed + failed);
        client.replies.first()->succeed(); // the transfer goes on in spite of it
        QCOMPARE(log.outcomes(), 1);
    }

    void aFailureComesWithAFileError_data()
    {
        QTest::addColumn<bool>("begun");
        QTest::newRow("before the body") << false;
        QTest::newRow("in the body") << true;
    }
    void aFailureComesWithAFileError()
    {
        QFETCH(bool, begun);
        const QString name = path("failing"_s);
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindFile(request.url("http://h/a%20b"_s).download(name));
        HttpDispatch::dispatch(log.bindOutcomes(request), nullptr);
        if (begun)
            client.replies.first()->receive("begun");
        client.replies.first()->fail(QNetworkReply::TimeoutError, "too %1 late"_s);
        QCOMPARE(log.lines(),
                 (QStringList{"fileError()"_s,
                              "fileError Url: http://h/a b file: "_s + (begun ? name : QString())
                                  + " error: too %1 late"_s,
                              "error()"_s, "error(code 4)"_s, "error(text too %1 late)"_s,
                              "repeated()"_s}));
        if (begun)
            QCOMPARE(TestFolder::contents(name), "begun"_b);
    }

    void aBodyThatIsShorterThanAnnouncedIsAFailureWhateverQtSays_data()
    {
        QTest::addColumn<QByteArray>("announced");
        QTest::addColumn<bool>("fails");
        QTest::newRow("longer") << "5"_b << true;
        QTest::newRow("as long") << "4"_b << false;
        QTest::newRow("nothing") << QByteArray() << false;
    }
    void aBodyThatIsShorterThanAnnouncedIsAFailureWhateverQtSays()
    {
        QFETCH(QByteArray, announced);
        QFETCH(bool, fails);
        const QString name = path("cut"_s);
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindFile(request.url("http://h/"_s).download(name));
        HttpDispatch::dispatch(log.bindOutcomes(request), nullptr);
        if (!announced.isNull())
            client.replies.first()->setHeader("Content-Length", announced);
        client.replies.first()->receive("bo");
        client.replies.first()->receive("dy");
        client.replies.first()->succeed();
        const QString text =
            "fileError Url: http://h/ file: "_s + name + " error: RemoteHostClosedError"_s;
        QCOMPARE(log.lines(),
                 fails ? (QStringList{"fileError()"_s, text, "error()"_s, "error(code 2)"_s,
                                      "error(text RemoteHostClosedError)"_s, "repeated()"_s})
                       : QStringList({"file()"_s, "file "_s + name}) + outcome(""));
        QCOMPARE(TestFolder::contents(name), "body"_b);
    }

    void aRequestThatIsNoDownloadWritesNoFile()
    {
        const QString name = path("unmarked"_s);
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.fields.downloadFilePath = name;
        log.bindFile(request);
        log.bindOutcomes(request).send();
        client.replies.first()->receive("body");
        client.replies.first()->succeed();
        QCOMPARE(log.lines(), outcome("body"));
        QVERIFY(!QFile::exists(name));
    }

    void theFileIsClosedAfterItsSignals()
    {
        const QString name = path("closed"_s);
        ControlledClient client;
        QVector<bool> open;
        HttpRequest request(HttpMethod::Get, &client);
        request.download(name)
            .onDownloadFileFinished([&open, name] { open.append(isOpen(name)); })
            .onDownloadFileFinished([&open, name](const QString &) { open.append(isOpen(name)); })
            .onFinished([&open, name] { open.append(isOpen(name)); });
        HttpDispatch::dispatch(request, nullptr);
        client.replies.first()->receive("body");
        client.replies.first()->succeed();
        QCOMPARE(open, (QVector<bool>{true, true, false}));
    }

    void theLengthThatCountsIsTheLastAnswers_data()
    {
        using Headers = QList<QNetworkReply::RawHeaderPair>;
        QTest::addColumn<Headers>("redirecting");
        QTest::addColumn<Headers>("joined"); // with those of the redirect
        QTest::addColumn<bool>("complete");
        const Headers length{{"Content-Length", "145"}};
        const Headers chunks{{"Transfer-Encoding", "chunked"}};
        const Headers both = length + chunks;
        QTest::newRow("reached") << length << Headers{{"Content-Length", "145, 4"}} << true;
        QTest::newRow("not reached") << length << Headers{{"Content-Length", "145, 5"}} << false;
        QTest::newRow("not reached, in lower case")
            << length << Headers{{"content-length", "145, 5"}} << false;
        QTest::newRow("the redirect's alone") << length << length << true;
        QTest::newRow("in chunks, whose end counts")
            << length << Headers{{"Content-Length", "145, 5"}, {"transfer-encoding", "chunked"}}
            << true;
        QTest::newRow("only the redirect in chunks")
            << chunks << chunks + Headers{{"Content-Length", "5"}} << false;
        QTest::newRow("both in chunks")
            << both
            << Headers{{"Content-Length", "145, 5"}, {"Transfer-Encoding", "chunked, chunked"}}
            << true;
    }
    void theLengthThatCountsIsTheLastAnswers()
    {
        using Headers = QList<QNetworkReply::RawHeaderPair>;
        QFETCH(Headers, redirecting);
        QFETCH(Headers, joined);
        QFETCH(bool, complete);
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.download(path("redirected"_s));
        HttpDispatch::dispatch(log.bindFile(request), nullptr);
        ControlledReply *reply = client.replies.first();
        Q_EMIT reply->redirected(QUrl("http://h/"_s));
        reply->begin(302, redirecting);
        reply->begin(200, joined);
        reply->receive("body");
        reply->succeed();
        QCOMPARE(log.lines().value(0), complete ? "file()"_s : "fileError()"_s);
    }

    // Qt drops what it has of a redirect by the time that it announces it; all that counts then is
    // the last answer's, even if it is the same, and even if it is a redirect that is not followed.
    void theLengthOfARedirectThatQtHasDroppedDoesNotMatter_data()
    {
        QTest::addColumn<QStringList>("events");
        QTest::newRow("announced at once") << QStringList{"302"_s, "redirected"_s, "200"_s};
        QTest::newRow("announced twice")
            << QStringList{"redirected"_s, "302"_s, "redirected"_s, "200"_s};
        QTest::newRow("allowed") << QStringList{"redirected"_s, "302"_s, "allowed"_s, "200"_s};
        QTest::newRow("not followed") << QStringList{"redirected"_s, "302"_s, "302"_s};
    }
    void theLengthOfARedirectThatQtHasDroppedDoesNotMatter()
    {
        QFETCH(QStringList, events);
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.download(path("dropped"_s));
        HttpDispatch::dispatch(log.bindFile(request), nullptr);
        ControlledReply *reply = client.replies.first();
        for (const QString &event : qAsConst(events)) {
            if (event == "redirected"_s)
                Q_EMIT reply->redirected(QUrl("http://h/"_s));
            else if (event == "allowed"_s)
                Q_EMIT reply->redirectAllowed();
            else
                reply->begin(event.toInt(), {{"Content-Length", "145"}});
        }
        reply->receive("body");
        reply->succeed();
        QCOMPARE(log.lines().value(0), "fileError()"_s);
    }

    void aTimeoutAbortsAndIsReportedAfterTheError()
    {
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindOutcomes(request.onTimeout([&log] { log.add("timeout()"_s); }));
        HttpResponse *response = request.send();
        const QPointer<ControlledReply> reply = client.replies.first();
        expireTimeout(response);
        QCOMPARE(log.lines(), (QStringList{"error()"_s, "error(code 5)"_s, "error(text aborted)"_s,
                                           "repeated()"_s, "timeout()"_s}));
        QVERIFY(waitUntilGone(reply));
    }

    void aTimeoutOfARealExchangeIsOneOutcome()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        QSignalSpy arrived(&server, &ScriptedServer::requestReceived); // and is never answered
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindOutcomes(
            request.url(server.address("/"_s)).onTimeout([&log] { log.add("timeout()"_s); }));
        const QPointer<HttpResponse> response = request.send();
        QVERIFY(arrived.wait(patienceMs));
        expireTimeout(response);
        QCOMPARE(log.lines(),
                 (QStringList{"error()"_s, "error(code 5)"_s, "error(text Operation canceled)"_s,
                              "repeated()"_s, "timeout()"_s}));
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.outcomes(), 1);
    }

    void aReceiverOfTheTimedOutReplyKeepsItUnlessTheErrorLetItGo()
    {
        ControlledClient client;
        QNetworkReply *timedOut = nullptr;
        HttpRequest request(HttpMethod::Get, &client);
        HttpResponse *response =
            request
                .onError([](QNetworkReply *) {}) // else the error lets it go
                .onTimeout([&timedOut](QNetworkReply *reply) { timedOut = reply; })
                .send();
        expireTimeout(response);
        QCOMPARE(timedOut, client.replies.first().data());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!client.replies.first().isNull());
    }

    void theTimedOutReplyComesBeforeThePlainTimeout()
    {
        ControlledClient client;
        HttpResponse *response = HttpRequest(HttpMethod::Get, &client).send();
        const SignalRecorder recorder(response,
                                      {"timeout()"_s, "timeout(QNetworkReply*)"_s, "error()"_s});
        expireTimeout(response);
        QCOMPARE(recorder.calls(),
                 (QStringList{"error()"_s,
                              "timeout("_s
                                  + HttpTesting::recorded(
                                      QVariant::fromValue<QNetworkReply *>(client.replies.first()))
                                  + ")"_s,
                              "timeout()"_s}));
    }

    void aTimeoutOfAFinishedExchangeIsNothing()
    {
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindOutcomes(request.onTimeout([&log] { log.add("timeout()"_s); }));
        HttpResponse *response = request.send();
        client.replies.first()->succeed();
        expireTimeout(response);
        QCOMPARE(log.lines(), outcome(""));
    }

    void aTimeoutWithoutAReplyIsNothing()
    {
        HttpResponse response(HttpRequest(HttpMethod::Get, nullptr), nullptr);
        const SignalRecorder recorder(&response, {"timeout()"_s, "error()"_s});
        expireTimeout(&response);
        QCOMPARE(recorder.calls(), QStringList());
    }

    void aTimeoutIsRetriedLikeAnyFailure()
    {
        ControlledClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindOutcomes(request.retry(1).onTimeout([&log] { log.add("timeout()"_s); }));
        expireTimeout(request.send());
        QCOMPARE(log.lines(), QStringList{"timeout()"_s});
        QCOMPARE(client.replies.size(), 2);
        client.replies.at(1)->succeed();
        QCOMPARE(log.lines(), QStringList({"timeout()"_s, "retried()"_s}) + outcome(""));
    }
};

QTEST_GUILESS_MAIN(TestHttpDownloadFile)
#include "tst_httpdownloadfile.moc"
