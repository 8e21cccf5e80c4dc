#include "tests/network/networker.h"
#include "tests/network/servicetest.h"
#include "tests/support/patience.h"
#include "tests/support/squidserver.h"
#include "tests/support/testfolder.h"

#include <QHostInfo>
#include <QNetworkProxy>
#include <QTest>

/// A host that has set a proxy for all that it does: the library's requests go through it too. The
/// service is at elsewhere.example, which only the proxy knows.
class TestProxy : public ServiceTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void everyOperationGoesThroughTheProxy_data();
    void everyOperationGoesThroughTheProxy();
    void aDownloadGoesThroughTheProxy_data();
    void aDownloadGoesThroughTheProxy();
    void thePictureOfACodeGoesThroughTheProxy();
    void aPictureOfAVoiceGoesThroughTheProxy();
    void onlyLoopbackIsAskedPastTheProxy_data();
    void onlyLoopbackIsAskedPastTheProxy();

private:
    void useProxy(bool good);
    QStringList proxyLog() const;
    static QString elsewhere(const ScriptedServer &server, const QString &path);

    SquidServer m_squid;
    int m_logged = 0; // lines in the proxy's log before this test
};

namespace {

const QString tunnel = "200 CONNECT <service> reader"_s;
const QString noTunnel = "407 CONNECT <service> reader"_s;
const QString unnamed = "407 CONNECT <service> -"_s; // Qt names itself when it is asked to

QStringList tunnelLog(bool good) { return {unnamed, good ? tunnel : noTunnel}; }

} // namespace

void TestProxy::initTestCase() { QVERIFY2(m_squid.start(), qPrintable(m_squid.errorText())); }

void TestProxy::init()
{
    ServiceTest::init();
    server->close();
    server = std::make_unique<ScriptedServer>(Identity::Elsewhere);
    QVERIFY(server->start(SERVICE_PORT));
    m_logged = m_squid.log().size();
}

void TestProxy::cleanup()
{
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    ServiceTest::cleanup();
}

void TestProxy::useProxy(bool good)
{
    QNetworkProxy::setApplicationProxy(
        m_squid.proxy(SquidServer::user(), good ? SquidServer::password() : "guess"_s));
}

QStringList TestProxy::proxyLog() const
{
    QStringList lines = m_squid.log().mid(m_logged);
    return lines.replaceInStrings("elsewhere.example:%1"_s.arg(SERVICE_PORT), "<service>"_s);
}

QString TestProxy::elsewhere(const ScriptedServer &server, const QString &path)
{
    return server.address(path).replace("localhost"_s, "elsewhere.example"_s);
}

void TestProxy::everyOperationGoesThroughTheProxy_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<bool>("good");
    const QList<Operation> all = Operations::all() + Operations::synchronous();
    for (const Operation &operation : all) {
        const QByteArray name = operation.name.toLatin1();
        QTest::newRow((name + ", right credentials").constData()) << operation << true;
        QTest::newRow((name + ", wrong credentials").constData()) << operation << false;
    }
}

void TestProxy::everyOperationGoesThroughTheProxy()
{
    QFETCH(Operation, operation);
    QFETCH(bool, good);
    useProxy(good);
    server->answer(ScriptedServer::reply(Operations::envelope(operation.data)));
    QCOMPARE(outcomeOf(operation), QStringList{good ? operation.answer : operation.networkFailure});
    TRY_COMPARE(proxyLog(), tunnelLog(good)); // a tunnel when it has ended
    operation.request.replace("localhost", "elsewhere.example");
    QCOMPARE(server->requests(), good ? QList<QByteArray>{operation.request} : QList<QByteArray>());
}

void TestProxy::aDownloadGoesThroughTheProxy_data()
{
    QTest::addColumn<bool>("tls");
    QTest::addColumn<bool>("good");
    QTest::newRow("HTTP, right credentials") << false << true;
    QTest::newRow("HTTP, wrong credentials") << false << false;
    QTest::newRow("HTTPS, right credentials") << true << true;
    QTest::newRow("HTTPS, wrong credentials") << true << false;
}

void TestProxy::aDownloadGoesThroughTheProxy()
{
    QFETCH(bool, tls);
    QFETCH(bool, good);
    useProxy(good);
    ScriptedServer plain;
    QVERIFY(plain.start());
    ScriptedServer &files = tls ? *server : plain;
    files.answer(ScriptedServer::reply("audio"));
    const QString path = temporary->filePath("audio.mp3"_s);
    QCOMPARE(service->DownloadLongTTSRet(elsewhere(files, "/a"_s), path), good);
    QCOMPARE(TestFolder::contents(path), good ? QByteArray("audio") : QByteArray("<unreadable>"));
    QStringList log = tunnelLog(good);
    if (!tls)
        log.replaceInStrings("CONNECT <service>"_s, "GET "_s + elsewhere(plain, "/a"_s));
    TRY_COMPARE(proxyLog(), log);
    QCOMPARE(files.requests().size(), good ? 1 : 0);
}

void TestProxy::thePictureOfACodeGoesThroughTheProxy()
{
    useProxy(true);
    server->answer(ScriptedServer::reply(Operations::envelope(
        R"({"url":")" + elsewhere(*server, "/picture"_s).toLatin1() + R"(","expire_time":0})")));
    server->answer(ScriptedServer::reply("picture"));
    Operation operation = Operations::getLoginQrCode();
    QCOMPARE(outcomeOf(operation), QStringList{operation.emptyAnswers.last()});
    QCOMPARE(TestFolder::contents(answers->codes().first()->qrImagePath), QByteArray("picture"));
    TRY_COMPARE(proxyLog(), tunnelLog(true) + tunnelLog(true));
}

void TestProxy::aPictureOfAVoiceGoesThroughTheProxy()
{
    useProxy(true);
    server->answer(ScriptedServer::reply("picture"));
    const QString path = temporary->filePath("voice.png"_s);
    Networker networker;
    QCOMPARE(networker.DownloadAvt(elsewhere(*server, "/picture"_s), path), path);
    QCOMPARE(TestFolder::contents(path), QByteArray("picture"));
    TRY_COMPARE(proxyLog(), tunnelLog(true));
}

// Qt sees to it. It looks at the text of the address and asks for no name.
void TestProxy::onlyLoopbackIsAskedPastTheProxy_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("direct");
    QTest::newRow("localhost") << "localhost"_s << true;
    QTest::newRow("loopback address") << "127.0.0.1"_s << true;
    if (!QHostInfo::localHostName().startsWith("localhost"_s))
        QTest::newRow("name of this machine") << QHostInfo::localHostName() << false;
}

void TestProxy::onlyLoopbackIsAskedPastTheProxy()
{
    QFETCH(QString, host);
    QFETCH(bool, direct);
    useProxy(false);
    ScriptedServer files;
    QVERIFY(files.start());
    files.answer(ScriptedServer::reply("audio"));
    const QString path = temporary->filePath("audio.mp3"_s);
    const QString address = files.address("/a"_s).replace("localhost"_s, host);
    QCOMPARE(service->DownloadLongTTSRet(address, path), direct);
    QCOMPARE(TestFolder::contents(path), QByteArray(direct ? "audio" : "<unreadable>"));
    QStringList log = direct ? QStringList() : tunnelLog(false);
    log.replaceInStrings("CONNECT <service>"_s, "GET "_s + address);
    TRY_COMPARE(proxyLog(), log);
}

QTEST_GUILESS_MAIN(TestProxy)
#include "tst_proxy.moc"
