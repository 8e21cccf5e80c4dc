#include "tests/network/faults.h"
#include "tests/network/operation.h"
#include "tests/network/servicetest.h"
#include "tests/support/patience.h"
#include "tests/support/testfolder.h"

#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QSslSocket>
#include <QTest>

/// Every operation against every fault: it ends, once, with what it promises.
class TestFaults : public ServiceTest
{
    Q_OBJECT

private Q_SLOTS:
    void isWhatQtMakesOfIt_data();
    void isWhatQtMakesOfIt();
    void isNotForWantOfOldTls();
    void endsEveryOperationAsPromised_data();
    void endsEveryOperationAsPromised();
    void endsADownloadAsPromised_data();
    void endsADownloadAsPromised();

private:
    void suffer(const Fault &fault, const QByteArray &body);
    void endTheSilence();

    QStringList m_early;         // what was answered in the silence
    bool m_othersServed = false; // others were served in the silence
};

namespace {

using Error = QNetworkReply;

bool isSilence(const Fault &fault) { return qstrcmp(fault.name, "silence") == 0; }

void addFaultRows()
{
    QTest::addColumn<int>("fault");
    const QList<Fault> all = faults();
    for (int i = 0; i < all.size(); ++i)
        QTest::newRow(all.at(i).name) << i;
}

/// What @p operation promises where the service would answer with @p body.
QString promised(const Operation &operation, const Fault &fault, const QByteArray &body)
{
    if (fault.error != Error::NoError)
        return operation.networkFailure;
    return fault.received(body) == body ? operation.answer : operation.failure;
}

} // namespace

/// Has the service suffer from @p fault, which would answer with @p body.
void TestFaults::suffer(const Fault &fault, const QByteArray &body)
{
    m_early.clear();
    m_othersServed = false;
    server.reset();
    server = fault.server(body);
    if (!server)
        return;
    QVERIFY(server->start(SERVICE_PORT));
    if (isSilence(fault))
        connect(server.get(), &ScriptedServer::requestReceived, this, &TestFaults::endTheSilence);
}

/// Ends the connection, and those that Qt makes instead, when another request to somebody else has
/// been answered.
void TestFaults::endTheSilence()
{
    server->disconnect(this);
    auto *other = new ScriptedServer(server.get());
    auto *manager = new QNetworkAccessManager(server.get());
    other->start();
    other->answer(ScriptedServer::reply("served"));
    QNetworkReply *reply = manager->get(QNetworkRequest(QUrl(other->address("/"_s))));
    connect(reply, &QNetworkReply::finished, this, [=] {
        m_othersServed = reply->readAll() == "served";
        m_early = answers->calls();
        server->answer({});
        server->hangUp();
    });
}

void TestFaults::isWhatQtMakesOfIt_data() { addFaultRows(); }

void TestFaults::isWhatQtMakesOfIt()
{
    QFETCH(int, fault);
    const Fault it = faults().at(fault);
    const QByteArray body = Operations::envelope("{}");
    suffer(it, body);
    QNetworkAccessManager manager;
    QNetworkReply *reply =
        manager.get(QNetworkRequest(QUrl("https://localhost:%1/a"_s.arg(SERVICE_PORT))));
    QSignalSpy finished(reply, &QNetworkReply::finished);
    QVERIFY(finished.wait(patienceMs));
    QCOMPARE(reply->error(), it.error);
    if (it.error == Error::NoError)
        QVERIFY(reply->readAll() == it.received(body)); // too long to print
    if (server)
        QCOMPARE(!server->requests().isEmpty(), it.asked);
}

// The server that is too old for Qt serves whoever does not mind.
void TestFaults::isNotForWantOfOldTls()
{
    server.reset();
    ScriptedServer old(Identity::Localhost);
    old.speakOldTls();
    QVERIFY(old.start());
    QSslConfiguration undemanding = QSslConfiguration::defaultConfiguration();
    undemanding.setProtocol(QSsl::TlsV1_0OrLater);
    undemanding.setBackendConfigurationOption("CipherString", QByteArray("DEFAULT@SECLEVEL=0"));
    QSslSocket socket;
    socket.setSslConfiguration(undemanding);
    socket.connectToHostEncrypted("localhost"_s, old.serverPort());
    QSignalSpy encrypted(&socket, &QSslSocket::encrypted);
    QVERIFY(encrypted.wait(patienceMs));
    QCOMPARE(socket.sessionProtocol(), QSsl::TlsV1_1);
}

void TestFaults::endsEveryOperationAsPromised_data()
{
    QTest::addColumn<int>("fault");
    QTest::addColumn<Operation>("operation");
    const QList<Fault> all = faults();
    const QList<Operation> operations = Operations::all() + Operations::synchronous();
    for (int i = 0; i < all.size(); ++i) {
        for (const Operation &operation : operations)
            QTest::addRow("%s: %s", all.at(i).name, qPrintable(operation.name)) << i << operation;
    }
}

void TestFaults::endsEveryOperationAsPromised()
{
    QFETCH(int, fault);
    QFETCH(Operation, operation);
    const Fault it = faults().at(fault);
    const QByteArray body = Operations::envelope(operation.data);
    suffer(it, body);
    QCOMPARE(outcomeOf(operation), QStringList{promised(operation, it, body)});
    QCOMPARE(m_othersServed, isSilence(it));
    QCOMPARE(m_early, QStringList());
    if (!server)
        return;
    const QList<QByteArray> requests = server->requests();
    QCOMPARE(!requests.isEmpty(), it.asked);
    for (const QByteArray &request : requests) // Qt repeats one that ends before its answer begins
        QCOMPARE(request, operation.request);
}

void TestFaults::endsADownloadAsPromised_data() { addFaultRows(); }

void TestFaults::endsADownloadAsPromised()
{
    QFETCH(int, fault);
    const Fault it = faults().at(fault);
    const QByteArray body = "audio, or what is taken for it";
    suffer(it, body);
    const QString path = temporary->filePath("audio.mp3"_s);
    const bool done =
        service->DownloadLongTTSRet("https://localhost:%1/a"_s.arg(SERVICE_PORT), path);
    release();
    QCOMPARE(done, it.error == Error::NoError);
    QVERIFY(TestFolder::contents(path) == (done ? it.received(body) : QByteArray("<unreadable>")));
    QCOMPARE(m_othersServed, isSilence(it));
    QCOMPARE(answers->calls(), QStringList());
}

QTEST_GUILESS_MAIN(TestFaults)
#include "tst_faults.moc"
