#include "tests/network/operation.h"
#include "tests/network/servicetest.h"
#include "tests/support/patience.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSslSocket>
#include <QTest>
#include <QTimer>

namespace {

QByteArray replyTo(const Operation &operation)
{
    return ScriptedServer::reply(Operations::envelope(operation.data));
}

QString lineOf(const Operation &operation) { return operation.start.first(); }

} // namespace

/// What happens while GetBgmList, GetDubList or GetUpdateInfo waits.
class TestSynchronousWait : public ServiceTest
{
    Q_OBJECT

private Q_SLOTS:
    void endsWithTheReplyAloneHoweverLateItComes_data() { addRows(); }
    void endsWithTheReplyAloneHoweverLateItComes();
    void deliversOtherAnswersInTheOrderOfTheirReplies_data() { addRows(); }
    void deliversOtherAnswersInTheOrderOfTheirReplies();
    void leavesRequestsThatAreUnderWayAlone_data() { addRows(); }
    void leavesRequestsThatAreUnderWayAlone();
    void canFollowAnotherWait_data() { addRows(); }
    void canFollowAnotherWait();
    void canHappenInAHandlerOfAnotherSignal_data() { addRows(); }
    void canHappenInAHandlerOfAnotherSignal();
    void canAskForOtherThingsFromAHandler_data() { addRows(); }
    void canAskForOtherThingsFromAHandler();
    void returnsNothingWhenTheObjectIsReleased_data() { addRows(); }
    void returnsNothingWhenTheObjectIsReleased();
    void returnsNothingWhenTheObjectIsDeletedFromAHandler_data() { addRows(); }
    void returnsNothingWhenTheObjectIsDeletedFromAHandler();
    void returnsNothingWhenTheApplicationQuits_data();
    void returnsNothingWhenTheApplicationQuits();
    void doesNotEndWithItsReplyWhenAnotherWaitWasNestedInIt_data();
    void doesNotEndWithItsReplyWhenAnotherWaitWasNestedInIt();
    void ofAnotherObjectIsApart();

private:
    static void addRows();
};

void TestSynchronousWait::addRows()
{
    QTest::addColumn<Operation>("operation");
    const QList<Operation> all = Operations::synchronous();
    for (const Operation &operation : all)
        QTest::newRow(operation.name.toLatin1().constData()) << operation;
}

void TestSynchronousWait::endsWithTheReplyAloneHoweverLateItComes()
{
    QFETCH(Operation, operation);
    // Much else is asked and answered before.
    connect(service, &VoNetworkIntf::signalShortSTT, this, [&] {
        if (answers->calls().size() < 20)
            return Operations::shortSTT().call(service);
        answerLate(0, replyTo(operation));
    });
    connect(server.get(), &ScriptedServer::requestReceived, this, [&](const QByteArray &request) {
        if (request == operation.request)
            return Operations::shortSTT().call(service);
        server->reset();
        answerLate(connections().size() - 1, replyTo(Operations::shortSTT()));
    });
    QCOMPARE(operation.result(service), operation.answer);
    QCOMPARE(answers->calls().size(), 20);
}

void TestSynchronousWait::deliversOtherAnswersInTheOrderOfTheirReplies()
{
    QFETCH(Operation, operation);
    const QList<Operation> order{Operations::shortSTT(), Operations::tts(),
                                 Operations::smsVerifyCodeLogin()};
    QStringList expected;
    for (int i = 0; i < order.size(); ++i) {
        order.at(i).call(service);
        TRY_VERIFY(server->requests().size() == i + 1);
        expected.prepend(order.at(i).answer);
    }
    const QList<QSslSocket *> open = connections();
    const auto answerTo = [&](const Operation &other) {
        open.at(order.size() - 1 - expected.indexOf(other.answer))->write(replyTo(other));
    };
    // The last is answered first; each answer brings the next reply, and the last one the awaited.
    connect(server.get(), &ScriptedServer::requestReceived, this,
            [&] { answerTo(Operations::smsVerifyCodeLogin()); });
    connect(service, &VoNetworkIntf::signalSmsLoginEnd, this, [&] { answerTo(Operations::tts()); });
    connect(service, &VoNetworkIntf::signalTTSRet, this, [&] { answerTo(Operations::shortSTT()); });
    connect(service, &VoNetworkIntf::signalShortSTT, this,
            [&] { answerLate(order.size(), replyTo(operation)); });
    QCOMPARE(operation.result(service), operation.answer);
    QCOMPARE(answers->calls(), expected);
}

void TestSynchronousWait::leavesRequestsThatAreUnderWayAlone()
{
    QFETCH(Operation, operation);
    Operations::shortSTT().call(service);
    TRY_VERIFY(server->requests().size() == 1);
    server->answer(replyTo(operation));
    QCOMPARE(operation.result(service), operation.answer);
    QCOMPARE(answers->calls(), QStringList());
    answerLate(0, replyTo(Operations::shortSTT()));
    QCOMPARE(outcome(), QStringList{Operations::shortSTT().answer});
}

void TestSynchronousWait::canFollowAnotherWait()
{
    QFETCH(Operation, operation);
    QList<QByteArray> requests;
    const QList<Operation> all = Operations::synchronous();
    for (const Operation &other : all) {
        server->reset();
        server->answer(replyTo(other));
        server->answer(replyTo(operation));
        QCOMPARE(other.result(service), other.answer);
        QCOMPARE(operation.result(service), operation.answer);
        QCOMPARE(server->requests(), (QList<QByteArray>{other.request, operation.request}));
    }
    QCOMPARE(answers->calls(), QStringList());
}

void TestSynchronousWait::canHappenInAHandlerOfAnotherSignal()
{
    QFETCH(Operation, operation);
    server->answer(replyTo(Operations::sendSmsVerifyCode()));
    server->answer(replyTo(operation));
    QString result;
    connect(service, &VoNetworkIntf::signalSendSmsEnd, this,
            [&] { result = operation.result(service); });
    Operations::sendSmsVerifyCode().call(service);
    TRY_VERIFY(!result.isEmpty());
    QCOMPARE(result, operation.answer);
    QCOMPARE(outcome(), QStringList{Operations::sendSmsVerifyCode().answer});
}

void TestSynchronousWait::canAskForOtherThingsFromAHandler()
{
    QFETCH(Operation, operation);
    // The handler of an answer during the wait asks for something else, whose answer ends it all.
    connect(server.get(), &ScriptedServer::requestReceived, this, [&](const QByteArray &request) {
        if (request == operation.request)
            answerLate(0, replyTo(Operations::createSTTTask()));
        else if (request == Operations::getSTTTaskResult().request)
            server->answer(replyTo(Operations::getSTTTaskResult()));
    });
    connect(service, &VoNetworkIntf::signalCreateSTTTask, this,
            [this] { Operations::getSTTTaskResult().call(service); });
    connect(service, &VoNetworkIntf::signalGetSTTResult, this,
            [&] { connections().first()->write(replyTo(operation)); });
    Operations::createSTTTask().call(service);
    TRY_VERIFY(server->requests().size() == 1);
    QCOMPARE(operation.result(service), operation.answer);
    QCOMPARE(answers->calls(), (QStringList{Operations::createSTTTask().answer,
                                            Operations::getSTTTaskResult().answer}));
}

void TestSynchronousWait::returnsNothingWhenTheObjectIsReleased()
{
    QFETCH(Operation, operation);
    // A result of an earlier call is not what the second returns.
    server->answer(replyTo(operation));
    QCOMPARE(operation.result(service), operation.answer);
    server->reset();
    const QPointer<VoNetworkIntf> object = service;
    service = nullptr;
    connect(server.get(), &ScriptedServer::requestReceived, this, [&object] {
        object->disconnect(); // as a host may that wants to hear no more
        VoNetwork::ReleaseVoNetwork(object);
    });
    QCOMPARE(operation.result(object), operation.failure);
    QVERIFY(!object);
    // Its connection ends with it, and nothing is said.
    TRY_VERIFY(server->findChildren<QSslSocket *>().isEmpty());
    QCOMPARE(logged(), operation.start + operation.start);
}

void TestSynchronousWait::returnsNothingWhenTheObjectIsDeletedFromAHandler()
{
    QFETCH(Operation, operation);
    Operations::shortSTT().call(service);
    TRY_VERIFY(server->requests().size() == 1);
    connect(server.get(), &ScriptedServer::requestReceived, this,
            [this] { answerLate(0, replyTo(Operations::shortSTT())); });
    VoNetworkIntf *object = service;
    service = nullptr;
    connect(object, &VoNetworkIntf::signalShortSTT, this, [object] { delete object; });
    QCOMPARE(operation.result(object), operation.failure);
    TRY_VERIFY(server->findChildren<QSslSocket *>().isEmpty());
    QCOMPARE(answers->calls(), QStringList{Operations::shortSTT().answer});
}

void TestSynchronousWait::returnsNothingWhenTheApplicationQuits_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<bool>("already");
    const QList<Operation> all = Operations::synchronous();
    for (const Operation &operation : all) {
        QTest::newRow(("while it waits: "_s + operation.name).toLatin1().constData())
            << operation << false;
        QTest::newRow(("before it is called: "_s + operation.name).toLatin1().constData())
            << operation << true;
    }
}

void TestSynchronousWait::returnsNothingWhenTheApplicationQuits()
{
    QFETCH(Operation, operation);
    QFETCH(bool, already);
    connect(server.get(), &ScriptedServer::requestReceived, this, &QCoreApplication::quit);
    QString result;
    QTimer::singleShot(0, this, [&] {
        if (already)
            QCoreApplication::quit();
        result = operation.result(service);
    });
    QCoreApplication::exec();
    QCOMPARE(result, operation.failure);
    QCOMPARE(answers->calls(), QStringList());
    QCOMPARE(logged(), operation.start);
}

void TestSynchronousWait::doesNotEndWithItsReplyWhenAnotherWaitWasNestedInIt_data()
{
    QTest::addColumn<Operation>("outer");
    QTest::addColumn<Operation>("inner");
    QTest::addColumn<bool>("quits");
    const QList<Operation> all = Operations::synchronous();
    for (const Operation &outer : all) {
        for (const Operation &inner : all) {
            if (inner.name == outer.name)
                continue; // both would return the same records
            const QString pair = inner.name + " in "_s + outer.name;
            QTest::newRow((pair + ", released"_s).toLatin1().constData())
                << outer << inner << false;
            QTest::newRow((pair + ", quitting"_s).toLatin1().constData()) << outer << inner << true;
        }
    }
}

/// Hosts must not do this.
void TestSynchronousWait::doesNotEndWithItsReplyWhenAnotherWaitWasNestedInIt()
{
    QFETCH(Operation, outer);
    QFETCH(Operation, inner);
    QFETCH(bool, quits);
    QStringList order;
    VoNetworkIntf *object = service;

    // Once the outer one's request is there, an answer is delivered whose handler makes the inner
    // call; then the outer one's reply, a refusal, comes, and behind it another answer. Only its
    // handler ends the outer wait.
    Operations::shortSTT().call(object);
    TRY_VERIFY(server->requests().size() == 1);
    Operations::tts().call(object);
    TRY_VERIFY(server->requests().size() == 2);
    QList<QSslSocket *> open = connections();
    connect(server.get(), &ScriptedServer::requestReceived, this, [&] {
        if (server->requests().size() > 3)
            return server->answer(replyTo(inner));
        open = connections();
        open.at(0)->write(replyTo(Operations::shortSTT()));
    });
    connect(object, &VoNetworkIntf::signalShortSTT, this, [&] {
        order.append("inner: "_s + inner.result(object));
        open.at(2)->write(ScriptedServer::reply(R"({"code":7})"));
    });
    const auto outerRefused = [&] {
        return logged().contains(
            QString(outer.refusal).replace("%1"_s, "7"_s).replace("%2"_s, R"("")"_s));
    };
    QTimer poll; // a log line is no signal
    connect(&poll, &QTimer::timeout, this, [&] {
        if (!outerRefused())
            return;
        poll.stop();
        open.at(1)->write(replyTo(Operations::tts()));
    });
    poll.start();
    connect(object, &VoNetworkIntf::signalTTSRet, this, [&] {
        order.append("its reply was read"_s);
        if (quits)
            return QCoreApplication::quit();
        service = nullptr;
        VoNetwork::ReleaseVoNetwork(object);
    });
    QTimer::singleShot(0, this, [&] {
        order.append("outer: "_s + outer.result(object));
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
    QCOMPARE(order, (QStringList{"inner: "_s + inner.answer, "its reply was read"_s,
                                 "outer: "_s + outer.failure}));
}

void TestSynchronousWait::ofAnotherObjectIsApart()
{
    // Two objects wait inside of each other: each has a wait of its own.
    VoNetworkIntf *other = VoNetwork::CreateVoNetworkIntf();
    const Operation outer = Operations::getDubList();
    const Operation inner = Operations::getBgmList();
    QString innerResult;
    Operations::shortSTT().call(service);
    TRY_VERIFY(server->requests().size() == 1);
    connect(server.get(), &ScriptedServer::requestReceived, this, [&](const QByteArray &request) {
        if (request == outer.request)
            answerLate(0, replyTo(Operations::shortSTT()));
        else
            server->answer(replyTo(inner));
    });
    connect(service, &VoNetworkIntf::signalShortSTT, this, [&] {
        innerResult = inner.result(other);
        connections().first()->write(replyTo(outer));
    });
    QCOMPARE(outer.result(service), outer.answer);
    QCOMPARE(innerResult, inner.answer);
    QVERIFY(logged().contains(lineOf(inner)));
    delete other;
}

QTEST_GUILESS_MAIN(TestSynchronousWait)
#include "tst_synchronouswait.moc"
