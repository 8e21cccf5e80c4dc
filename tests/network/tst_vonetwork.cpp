#include "network/buildconstants.h"
#include "network/vonetworker.h"
#include "tests/network/fakecommand.h"
#include "tests/network/operation.h"
#include "tests/network/servicetest.h"
#include "tests/support/patience.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>

#include <type_traits>

static_assert(std::is_base_of_v<QObject, VoNetwork>);
static_assert(std::is_default_constructible_v<VoNetwork>);
static_assert(!std::is_constructible_v<VoNetwork, QObject *>);
static_assert(std::is_same_v<decltype(&VoNetwork::CreateVoNetworkIntf), VoNetworkIntf *(*)()>);
static_assert(std::is_same_v<decltype(&VoNetwork::ReleaseVoNetwork), void (*)(VoNetworkIntf *)>);
static_assert(std::is_same_v<decltype(&VoNetwork::GetAppVersion), QString (*)()>);

namespace {

/// Translates every text into its context and itself.
class ContextTeller : public QTranslator
{
public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }

    QString translate(const char *context, const char *source, const char *, int) const override
    {
        return QLatin1String(context) + QLatin1Char('|') + QLatin1String(source);
    }
};

QByteArray shortSTTWith(const QByteArray &deviceId)
{
    const QByteArray request = Operations::shortSTT().request;
    const QByteArray body = request.mid(request.indexOf("\r\n\r\n") + 4);
    return Operations::post("/convert/public/index.php/v1/asr/process", "Bearer 12", body,
                            deviceId);
}

} // namespace

/// The factory.
class TestVoNetwork : public ServiceTest
{
    Q_OBJECT

private Q_SLOTS:
    void tellsTheVersionWithoutAnyServiceObject();
    void createsANetworkerWithoutAParent();
    void createsANewObjectWithEveryCall();
    void createsObjectsWithConnectionsOfTheirOwn();
    void createsObjectsWithDeviceIdentifiersOfTheirOwn();
    void releasesTheObjectInItsEventLoopOnly();
    void releasesOneObjectWithoutTheOther();
    void isAQtObjectWithoutMembersOfItsOwn();
    void translatesInTheContextOfEachClass();
};

void TestVoNetwork::tellsTheVersionWithoutAnyServiceObject()
{
    release();
    QCOMPARE(VoNetwork::GetAppVersion(), "1.1.1.26"_s);
    QCOMPARE(logged(), QStringList());
}

void TestVoNetwork::createsANetworkerWithoutAParent()
{
    QVERIFY(qobject_cast<VoNetworker *>(service));
    QVERIFY(!service->parent());
    QCOMPARE(service->thread(), QThread::currentThread());
    // Nothing is said about the command that is not there.
    QCOMPARE(logged(), QStringList());
}

void TestVoNetwork::createsANewObjectWithEveryCall()
{
    VoNetworkIntf *other = VoNetwork::CreateVoNetworkIntf();
    Answers others(other);
    QVERIFY(other != service);

    // Each answers its own requests.
    server->answer(ScriptedServer::reply(R"({"code":0,"data":{"text":"first"}})"));
    server->answer(ScriptedServer::reply(R"({"code":0,"data":{"text":"second"}})"));
    Operations::shortSTT().call(service);
    QVERIFY(answers->waitFor(1));
    Operations::shortSTT().call(other);
    QVERIFY(others.waitFor(1));
    QCOMPARE(answers->calls(), QStringList{R"(signalShortSTT(0, "first"))"_s});
    QCOMPARE(others.calls(), QStringList{R"(signalShortSTT(0, "second"))"_s});

    QSignalSpy gone(other, &QObject::destroyed);
    VoNetwork::ReleaseVoNetwork(other);
    QVERIFY(gone.wait(patienceMs));
}

void TestVoNetwork::createsObjectsWithConnectionsOfTheirOwn()
{
    QSignalSpy connections(server.get(), &QTcpServer::newConnection);
    server->answer(ScriptedServer::reply("{}"), ScriptedServer::Then::KeepOpen);
    for (int requests = 1; requests <= 3; ++requests) {
        Operations::shortSTT().call(service);
        QVERIFY(answers->waitFor(requests));
    }
    QCOMPARE(connections.size(), 1);

    VoNetworkIntf *other = VoNetwork::CreateVoNetworkIntf();
    Answers others(other);
    Operations::shortSTT().call(other);
    QVERIFY(others.waitFor(1));
    QCOMPARE(connections.size(), 2);
    QSignalSpy gone(other, &QObject::destroyed);
    VoNetwork::ReleaseVoNetwork(other);
    QVERIFY(gone.wait(patienceMs));
}

void TestVoNetwork::createsObjectsWithDeviceIdentifiersOfTheirOwn()
{
    const QString command =
        QString::fromLatin1(BuildConstants::deviceIdCommand).section(QLatin1Char(' '), 0, 0);
    server->answer(ScriptedServer::reply("{}"));
    FakeCommand first(command, "first");
    VoNetworkIntf *one = VoNetwork::CreateVoNetworkIntf();
    FakeCommand second(command, "second");
    VoNetworkIntf *two = VoNetwork::CreateVoNetworkIntf();
    Answers ones(one);
    Answers twos(two);

    // The identifier stays what it was when the object was made.
    Operations::shortSTT().call(one);
    QVERIFY(ones.waitFor(1));
    Operations::shortSTT().call(two);
    QVERIFY(twos.waitFor(1));
    Operations::shortSTT().call(one);
    QVERIFY(ones.waitFor(2));
    QCOMPARE(server->requests(), (QList<QByteArray>{shortSTTWith("first"), shortSTTWith("second"),
                                                    shortSTTWith("first")}));

    QSignalSpy gone(two, &QObject::destroyed);
    VoNetwork::ReleaseVoNetwork(one);
    VoNetwork::ReleaseVoNetwork(two);
    QVERIFY(gone.wait(patienceMs));
}

void TestVoNetwork::releasesTheObjectInItsEventLoopOnly()
{
    const QPointer<VoNetworkIntf> object = service;
    VoNetwork::ReleaseVoNetwork(service);
    QVERIFY(object);
    QCOMPARE(service->metaObject()->className(), "VoNetworker");
    QSignalSpy gone(service, &QObject::destroyed);
    service = nullptr;
    QVERIFY(gone.wait(patienceMs));
    QVERIFY(!object);
}

void TestVoNetwork::releasesOneObjectWithoutTheOther()
{
    VoNetworkIntf *other = VoNetwork::CreateVoNetworkIntf();
    Answers others(other);
    Operations::shortSTT().call(service);
    Operations::shortSTT().call(other);
    TRY_VERIFY(server->requests().size() == 2);
    release();
    QCOMPARE(answers->calls(), QStringList());

    server->answer(ScriptedServer::reply(Operations::envelope(Operations::shortSTT().data)));
    Operations::shortSTT().call(other);
    QVERIFY(others.waitFor(1));
    QCOMPARE(others.calls(), QStringList{Operations::shortSTT().answer});
    QSignalSpy gone(other, &QObject::destroyed);
    VoNetwork::ReleaseVoNetwork(other);
    QVERIFY(gone.wait(patienceMs));
}

void TestVoNetwork::isAQtObjectWithoutMembersOfItsOwn()
{
    const VoNetwork object;
    QVERIFY(!object.parent());
    const QMetaObject *meta = object.metaObject();
    QCOMPARE(meta->className(), "VoNetwork");
    QCOMPARE(meta->superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta->methodCount(), meta->methodOffset());
    QCOMPARE(meta->propertyCount(), meta->propertyOffset());
    QCOMPARE(meta->enumeratorCount(), 0);
    QCOMPARE(meta->classInfoCount(), 0);
    QCOMPARE(meta->constructorCount(), 0);
}

void TestVoNetwork::translatesInTheContextOfEachClass()
{
    ContextTeller teller;
    QVERIFY(QCoreApplication::installTranslator(&teller));
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QCOMPARE(VoNetwork::tr("text"), "VoNetwork|text"_s);
    QCOMPARE(VoNetwork::trUtf8("text"), "VoNetwork|text"_s);
    QCOMPARE(VoNetworkIntf::tr("text"), "VoNetworkIntf|text"_s);
    QCOMPARE(VoNetworkIntf::trUtf8("text"), "VoNetworkIntf|text"_s);
    QCOMPARE(VoNetworker::tr("text"), "VoNetworker|text"_s);
    QCOMPARE(VoNetworker::trUtf8("text"), "VoNetworker|text"_s);
    QT_WARNING_POP
    QCoreApplication::removeTranslator(&teller);
}

QTEST_GUILESS_MAIN(TestVoNetwork)
#include "tst_vonetwork.moc"
