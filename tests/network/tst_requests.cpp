#include "network/buildconstants.h"
#include "tests/network/fakecommand.h"
#include "tests/network/localecodec.h"
#include "tests/network/operation.h"
#include "tests/network/servicetest.h"
#include "tests/network/timeoutwatch.h"
#include "tests/support/patience.h"

#include <QCoreApplication>
#include <QFile>
#include <QPointer>
#include <QSignalSpy>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray replyTo(const Operation &operation)
{
    return ScriptedServer::reply(Operations::envelope(operation.data));
}

/// The one of @p operations that makes @p request.
Operation operationOf(const QByteArray &request)
{
    const QList<Operation> all = Operations::all();
    for (const Operation &operation : all) {
        if (operation.request == request)
            return operation;
    }
    return Operation();
}

} // namespace

/// What the requests of one service object have to do with each other and with its life.
class TestRequests : public ServiceTest
{
    Q_OBJECT

private Q_SLOTS:
    void carryTheDeviceIdentifierExceptGetOssSign();
    void readTheWholeBodyHoweverItIsSent_data();
    void readTheWholeBodyHoweverItIsSent();
    void readABodyThatComesInPieces();
    void readTheReasonOfAFailureAsUtf8();
    void followNoRedirect();
    void keepNoCookies();
    void keepNoCredentials();
    void keepNoTokens();
    void areEachAnsweredByTheirOwnSignal();
    void areAnsweredInTheOrderOfTheReplies();
    void areAnsweredAlikeWhenTheyAreAlike();
    void waitForAServiceThatIsSlowToAnswer();
    void haveNoTimeOut();
    void canBeMadeFromAHandler();
    void canBeMadeFromAHandlerOfTheirOwnFailure();
    void goOnWhileAHandlerWaits();
    void areNotAnsweredOnceTheObjectIsReleased_data();
    void areNotAnsweredOnceTheObjectIsReleased();
    void areNotSentOnceTheObjectIsReleased();
    void surviveAReleaseFromAHandler_data();
    void surviveAReleaseFromAHandler();
    void surviveADeletionFromAHandler_data();
    void surviveADeletionFromAHandler();
    void leaveARecordToAHandlerThatIsQueued();
    void areAnsweredWithoutAnyReceiver();
};

void TestRequests::carryTheDeviceIdentifierExceptGetOssSign()
{
    release();
    const QString name =
        QString::fromLatin1(BuildConstants::deviceIdCommand).section(QLatin1Char(' '), 0, 0);
    const FakeCommand command(name, "UUID  \r\nF00D 1234  \r\n");
    service = VoNetwork::CreateVoNetworkIntf();
    answers = std::make_unique<Answers>(service);
    log->clear();
    server->answer(ScriptedServer::reply("{}"));
    QList<QByteArray> expected;
    const QList<Operation> all = Operations::all();
    for (const Operation &operation : all) {
        operation.call(service);
        QVERIFY(answers->waitFor(expected.size() + 1));
        expected.append(
            QByteArray(operation.request).replace("deviceid: \r\n", "deviceid: F00D 1234\r\n"));
    }
    const QList<Operation> waiting = Operations::synchronous();
    for (const Operation &operation : waiting) {
        operation.result(service);
        expected.append(
            QByteArray(operation.request).replace("deviceid: \r\n", "deviceid: F00D 1234\r\n"));
    }
    QCOMPARE(server->requests(), expected);
    QCOMPARE(expected.first(), Operations::getOssSign().request);
    QVERIFY(expected.last().contains("F00D"));
}

void TestRequests::readTheWholeBodyHoweverItIsSent_data()
{
    QTest::addColumn<QByteArray>("reply");
    const QByteArray body = R"({"code":0,"data":{"text":"said"}})";
    QTest::newRow("with a length") << ScriptedServer::reply(body);
    QTest::newRow("to the end of the connection") << "HTTP/1.1 200 OK\r\n\r\n" + body;
    QTest::newRow("HTTP 1.0") << "HTTP/1.0 200 OK\r\n\r\n" + body;
    QTest::newRow("in chunks") << "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\n"
                                      + body.left(5) + "\r\n"
                                      + QByteArray::number(body.size() - 5, 16) + "\r\n"
                                      + body.mid(5) + "\r\n0\r\n\r\n";
    QTest::newRow("as another type")
        << ScriptedServer::reply(body, "200 OK", "Content-Type: text/html; charset=latin1\r\n");
    QTest::newRow("as created") << ScriptedServer::reply(body, "201 Created");
    QTest::newRow("after an interim reply")
        << "HTTP/1.1 100 Continue\r\n\r\n" + ScriptedServer::reply(body);
}

void TestRequests::readTheWholeBodyHoweverItIsSent()
{
    QFETCH(QByteArray, reply);
    server->answer(reply);
    Operations::shortSTT().call(service);
    QCOMPARE(outcome(), QStringList{Operations::shortSTT().answer});
    QCOMPARE(logged(), Operations::shortSTT().start);
}

void TestRequests::readABodyThatComesInPieces()
{
    Operations::shortSTT().call(service);
    TRY_VERIFY(!server->requests().isEmpty());
    auto *socket = server->findChild<QSslSocket *>();
    const QByteArray reply = replyTo(Operations::shortSTT());
    for (const char byte : reply) {
        QCOMPARE(answers->calls(), QStringList());
        socket->write(&byte, 1);
        socket->flush();
        QCoreApplication::processEvents();
    }
    QCOMPARE(outcome(), QStringList{Operations::shortSTT().answer});
}

void TestRequests::readTheReasonOfAFailureAsUtf8()
{
    const LocaleCodec western("windows-1252");
    server->answer(ScriptedServer::reply("", "418 Caf\xe9"));
    Operations::shortSTT().call(service);
    QCOMPARE(outcome(), QStringList{Operations::shortSTT().failure});
    const QString address = server->address("/convert/public/index.php/v1/asr/process"_s);
    QCOMPARE(logged(), Operations::shortSTT().start
                           + QStringList{R"([error] VoNetworker::slotShortSTTFail )"
                                         R"("Error transferring %1 - server replied: Caf%2")"_s.arg(
                                             address, QChar(QChar::ReplacementCharacter))});
}

void TestRequests::followNoRedirect()
{
    server->answer(ScriptedServer::reply(R"({"code":0,"data":{"text":"here"}})", "302 Found",
                                         "Location: /elsewhere\r\n"));
    server->answer(ScriptedServer::reply(R"({"code":0,"data":{"text":"elsewhere"}})"));
    Operations::shortSTT().call(service);
    QCOMPARE(outcome(), QStringList{R"(signalShortSTT(0, "here"))"_s});
    QCOMPARE(server->requests(), QList<QByteArray>{Operations::shortSTT().request});
}

void TestRequests::keepNoCookies()
{
    server->answer(ScriptedServer::reply("{}", "200 OK",
                                         "Set-Cookie: session=1; Path=/; Max-Age=9999\r\n"
                                         "Set-Cookie: other=2; Path=/\r\n"));
    for (const Operation &operation : {Operations::shortSTT(), Operations::getOssSign()}) {
        operation.call(service);
        QVERIFY(answers->waitFor(server->requests().size() + 1));
    }
    Operations::shortSTT().call(service);
    QVERIFY(answers->waitFor(3));
    QCOMPARE(server->requests(),
             (QList<QByteArray>{Operations::shortSTT().request, Operations::getOssSign().request,
                                Operations::shortSTT().request}));
}

void TestRequests::keepNoCredentials()
{
    server->answer(
        ScriptedServer::reply("{}", "401 Unauthorized", "WWW-Authenticate: Basic realm=\"r\"\r\n"));
    for (int i = 1; i <= 2; ++i) {
        Operations::getOssSign().call(service);
        QVERIFY(answers->waitFor(i));
    }
    QCOMPARE(server->requests(), (QList<QByteArray>{Operations::getOssSign().request,
                                                    Operations::getOssSign().request}));
}

void TestRequests::keepNoTokens()
{
    server->answer(ScriptedServer::reply("{}"), ScriptedServer::Then::KeepOpen);
    const QList<Operation> order{Operations::tts(), Operations::anonymousTTS(),
                                 Operations::getOssSign()};
    QList<QByteArray> expected;
    for (const Operation &operation : order) {
        operation.call(service);
        expected.append(operation.request);
        QVERIFY(answers->waitFor(expected.size()));
    }
    QCOMPARE(server->requests(), expected);
}

void TestRequests::areEachAnsweredByTheirOwnSignal()
{
    connect(server.get(), &ScriptedServer::requestReceived, this,
            [this](const QByteArray &request) {
                server->reset();
                server->answer(replyTo(operationOf(request)));
            });
    // More at once than there are connections to one host.
    QStringList expected;
    const QList<Operation> all = Operations::all();
    for (const Operation &operation : all) {
        operation.call(service);
        expected.append(operation.answer);
    }
    QStringList calls = outcome(expected.size());
    calls.sort();
    expected.sort();
    QCOMPARE(calls, expected);
}

void TestRequests::areAnsweredInTheOrderOfTheReplies()
{
    const QList<Operation> order{Operations::shortSTT(), Operations::tts(),
                                 Operations::getOssSign()};
    for (int i = 0; i < order.size(); ++i) {
        order.at(i).call(service);
        TRY_VERIFY(server->requests().size() == i + 1);
    }
    QStringList expected;
    for (int i = order.size() - 1; i >= 0; --i) {
        answerLate(i, replyTo(order.at(i)));
        expected.append(order.at(i).answer);
        QVERIFY(answers->waitFor(expected.size()));
        QCOMPARE(answers->calls(), expected);
    }
    QCOMPARE(outcome(3), expected);
}

void TestRequests::areAnsweredAlikeWhenTheyAreAlike()
{
    for (int i = 1; i <= 3; ++i) {
        Operations::shortSTT().call(service);
        TRY_VERIFY(server->requests().size() == i);
    }
    answerLate(1, ScriptedServer::reply(R"({"code":0,"data":{"text":"b"}})"));
    QVERIFY(answers->waitFor(1));
    answerLate(0, ScriptedServer::reply(R"({"code":5,"message":"a"})"));
    QVERIFY(answers->waitFor(2));
    answerLate(0, ScriptedServer::reply("", "500 Oops"));
    QCOMPARE(outcome(3), (QStringList{R"(signalShortSTT(0, "b"))"_s, R"(signalShortSTT(1, ""))"_s,
                                      R"(signalShortSTT(1, ""))"_s}));
}

void TestRequests::waitForAServiceThatIsSlowToAnswer()
{
    Operations::shortSTT().call(service);
    TRY_VERIFY(server->requests().size() == 1);
    // Much happens meanwhile; this one stays as it is.
    connect(server.get(), &ScriptedServer::requestReceived, this,
            [this] { answerLate(connections().size() - 1, replyTo(Operations::getOssSign())); });
    for (int i = 1; i <= 20; ++i) {
        Operations::getOssSign().call(service);
        QVERIFY(answers->waitFor(i));
    }
    QVERIFY(!answers->calls().contains(Operations::shortSTT().answer));
    QVERIFY(!answers->calls().contains(Operations::shortSTT().failure));
    answerLate(0, replyTo(Operations::shortSTT()));
    const QStringList calls = outcome(21);
    QCOMPARE(calls.size(), 21);
    QCOMPARE(calls.last(), Operations::shortSTT().answer);
}

void TestRequests::haveNoTimeOut()
{
    const TimeoutWatch watch;
    server->answer(ScriptedServer::reply("{}"));
    const QList<Operation> all{Operations::getOssSign(), Operations::shortSTT()};
    for (const Operation &operation : all)
        operation.call(service);
    QVERIFY(answers->waitFor(all.size()));
    QCOMPARE(watch.replies(), all.size());
    QCOMPARE(watch.timeouts(), QSet<QString>());
}

void TestRequests::canBeMadeFromAHandler()
{
    server->answer(replyTo(Operations::createSTTTask()));
    server->answer(ScriptedServer::reply(
        R"({"code":0,"data":{"status":"RUNNING","task_id":"t1","request_id":"r1"}})"));
    server->answer(replyTo(Operations::getSTTTaskResult()));
    connect(service, &VoNetworkIntf::signalCreateSTTTask, service,
            [this] { Operations::getSTTTaskResult().call(service); });
    connect(service, &VoNetworkIntf::signalGetSTTResult, service, [this](STT_STATUS status) {
        if (status == STT_PROCESSING)
            Operations::getSTTTaskResult().call(service);
    });
    Operations::createSTTTask().call(service);
    QCOMPARE(outcome(3), (QStringList{Operations::createSTTTask().answer,
                                      R"(signalGetSTTResult(1, "t1", "r1", ""))"_s,
                                      Operations::getSTTTaskResult().answer}));
    QCOMPARE(server->requests(), (QList<QByteArray>{Operations::createSTTTask().request,
                                                    Operations::getSTTTaskResult().request,
                                                    Operations::getSTTTaskResult().request}));
}

void TestRequests::canBeMadeFromAHandlerOfTheirOwnFailure()
{
    server->answer(ScriptedServer::reply("{}", "500 Oops"));
    server->answer(replyTo(Operations::shortSTT()));
    connect(service, &VoNetworkIntf::signalShortSTT, service, [this](SHORT_STT_STATUS status) {
        if (status == SHORT_STT_FAILED)
            Operations::shortSTT().call(service);
    });
    Operations::shortSTT().call(service);
    QCOMPARE(outcome(2),
             (QStringList{Operations::shortSTT().failure, Operations::shortSTT().answer}));
}

void TestRequests::goOnWhileAHandlerWaits()
{
    QTemporaryDir folder;
    const QString path = folder.filePath("a.mp3"_s);
    Operations::tts().call(service);
    TRY_VERIFY(server->requests().size() == 1);
    Operations::shortSTT().call(service);
    TRY_VERIFY(server->requests().size() == 2);

    // The handler of the second waits for a file, which comes once the first is answered.
    ScriptedServer files;
    QVERIFY(files.start());
    connect(&files, &ScriptedServer::requestReceived, this,
            [this] { answerLate(0, replyTo(Operations::tts())); });
    connect(service, &VoNetworkIntf::signalTTSRet, this, [&files] {
        auto *socket = files.findChild<QSslSocket *>();
        socket->write(ScriptedServer::reply("audio"));
        socket->disconnectFromHost();
    });
    bool fetched = false;
    connect(service, &VoNetworkIntf::signalShortSTT, this,
            [&] { fetched = service->DownloadLongTTSRet(files.address("/a"_s), path); });
    answerLate(1, replyTo(Operations::shortSTT()));
    QCOMPARE(outcome(2), (QStringList{Operations::shortSTT().answer, Operations::tts().answer}));
    TRY_VERIFY(fetched);
    QVERIFY(QFile::exists(path));
}

void TestRequests::areNotAnsweredOnceTheObjectIsReleased_data()
{
    QTest::addColumn<bool>("replied");
    QTest::newRow("before a reply") << false;
    QTest::newRow("with a reply on its way") << true;
}

void TestRequests::areNotAnsweredOnceTheObjectIsReleased()
{
    QFETCH(bool, replied);
    QStringList starts;
    const QList<Operation> all{Operations::getOssSign(), Operations::shortSTT(), Operations::tts()};
    for (const Operation &operation : all) {
        operation.call(service);
        starts += operation.start;
    }
    TRY_VERIFY(server->requests().size() == all.size());
    const QList<QSslSocket *> open = connections();
    for (QSslSocket *socket : open) {
        if (replied)
            socket->write(ScriptedServer::reply("{}"));
    }
    release();
    // Its connections end with it, nothing is said and nothing is answered.
    TRY_VERIFY(server->findChildren<QSslSocket *>().isEmpty());
    QCOMPARE(answers->calls(), QStringList());
    QCOMPARE(logged(), starts);
}

void TestRequests::areNotSentOnceTheObjectIsReleased()
{
    Operations::shortSTT().call(service);
    release();
    QCOMPARE(server->requests(), QList<QByteArray>());
    QCOMPARE(answers->calls(), QStringList());
    QCOMPARE(logged(), Operations::shortSTT().start);
}

void TestRequests::surviveAReleaseFromAHandler_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("answer");
    const Operation operation = Operations::shortSTT();
    QTest::newRow("of a success") << replyTo(operation) << operation.answer;
    QTest::newRow("of a refusal") << ScriptedServer::reply(R"({"code":1})") << operation.failure;
    QTest::newRow("of a malformed reply") << ScriptedServer::reply("") << operation.failure;
    QTest::newRow("of an HTTP error") << ScriptedServer::reply("", "500 Oops") << operation.failure;
    QTest::newRow("of a broken connection") << QByteArray("HTTP/1.1 ") << operation.failure;
}

void TestRequests::surviveAReleaseFromAHandler()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, answer);
    Operations::tts().call(service); // never answered
    TRY_VERIFY(server->requests().size() == 1);
    server->answer(reply);
    QPointer<VoNetworkIntf> object = service;
    bool alive = false;
    connect(service, &VoNetworkIntf::signalShortSTT, this, [&object, &alive] {
        VoNetwork::ReleaseVoNetwork(object);
        alive = !object.isNull();
    });
    Operations::shortSTT().call(service);
    service = nullptr;
    TRY_VERIFY(object.isNull());
    TRY_VERIFY(server->findChildren<QSslSocket *>().isEmpty());
    QVERIFY(alive);
    QCOMPARE(answers->calls(), QStringList{answer});
}

void TestRequests::surviveADeletionFromAHandler_data() { surviveAReleaseFromAHandler_data(); }

void TestRequests::surviveADeletionFromAHandler()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, answer);
    Operations::tts().call(service); // never answered
    TRY_VERIFY(server->requests().size() == 1);
    server->answer(reply);
    VoNetworkIntf *object = service;
    connect(service, &VoNetworkIntf::signalShortSTT, this, [object] { delete object; });
    Operations::shortSTT().call(service);
    service = nullptr;
    QVERIFY(answers->waitFor(1));
    TRY_VERIFY(server->findChildren<QSslSocket *>().isEmpty());
    QCOMPARE(answers->calls(), QStringList{answer});
}

void TestRequests::leaveARecordToAHandlerThatIsQueued()
{
    answers.reset(); // the record is this test's
    OSS_SIGN_INFO *record = nullptr;
    connect(
        service, &VoNetworkIntf::signalGetOssSign, this,
        [&record](OSS_SIGN_INFO *info) { record = info; }, Qt::QueuedConnection);
    // The object goes before the handler comes.
    VoNetworkIntf *object = service;
    connect(service, &VoNetworkIntf::signalGetOssSign, this, [object] { delete object; });
    server->answer(replyTo(Operations::getOssSign()));
    Operations::getOssSign().call(service);
    service = nullptr;
    TRY_VERIFY(record != nullptr);
    QCOMPARE(record->bucketName, "bucket"_s);
    QCOMPARE(record->bucketRegion, "region"_s);
    delete record;
}

void TestRequests::areAnsweredWithoutAnyReceiver()
{
    answers.reset();
    server->answer(replyTo(Operations::shortSTT()), ScriptedServer::Then::KeepOpen);
    Operations::shortSTT().call(service);
    TRY_VERIFY(server->requests().size() == 1);
    // A second one comes through as well, on the same object.
    QSignalSpy answered(service, &VoNetworkIntf::signalShortSTT);
    Operations::shortSTT().call(service);
    QVERIFY(answered.wait(patienceMs));
    QCOMPARE(logged(), Operations::shortSTT().start + Operations::shortSTT().start);
}

QTEST_GUILESS_MAIN(TestRequests)
#include "tst_requests.moc"
