#include "tests/network/operation.h"
#include "tests/network/servicetest.h"

#include <QFile>
#include <QTest>

/// A service whose certificate does not prove that it is the service.
class TestServiceTls : public ServiceTest
{
    Q_OBJECT

private Q_SLOTS:
    void refusesAServiceWithoutItsCertificate_data();
    void refusesAServiceWithoutItsCertificate();
    void refusesAServiceWhoseAuthorityIsNotTrusted();
    void refusesAServiceThatSpeaksNoTls();
    void refusesAFileServerWithoutItsCertificate_data();
    void refusesAFileServerWithoutItsCertificate();

private:
    void expectFailure(const Operation &operation, const QString &text);
};

/// Nothing may reach a server that is not the service: least of all the token.
void TestServiceTls::expectFailure(const Operation &operation, const QString &text)
{
    server->answer(ScriptedServer::reply(Operations::envelope(operation.data)));
    if (operation.call) {
        operation.call(service);
        QCOMPARE(outcome(), QStringList{operation.networkFailure});
    } else {
        QCOMPARE(operation.result(service), operation.networkFailure);
    }
    QCOMPARE(server->requests(), QList<QByteArray>());
    QCOMPARE(logged(),
             (operation.start
              + QStringList{"[error] VoNetworker::%1 \"%2\""_s.arg(operation.failureSlot, text)}));
}

void TestServiceTls::refusesAServiceWithoutItsCertificate_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<int>("identity");
    const QList<Operation> all = Operations::all() + Operations::synchronous();
    for (const Operation &operation : all) {
        const QByteArray name = operation.name.toLatin1();
        QTest::newRow((name + ": another name").constData())
            << operation << int(Identity::Elsewhere);
        QTest::newRow((name + ": signed by itself").constData())
            << operation << int(Identity::Stranger);
    }
}

void TestServiceTls::refusesAServiceWithoutItsCertificate()
{
    QFETCH(Operation, operation);
    QFETCH(int, identity);
    server->close();
    server = std::make_unique<ScriptedServer>(static_cast<Identity>(identity));
    QVERIFY(server->start(SERVICE_PORT));
    expectFailure(operation, "SSL handshake failed"_s);
}

void TestServiceTls::refusesAServiceWhoseAuthorityIsNotTrusted()
{
    trust.reset();
    expectFailure(Operations::shortSTT(), "SSL handshake failed"_s);
}

void TestServiceTls::refusesAServiceThatSpeaksNoTls()
{
    // It takes the handshake for the beginning of a request and ends the connection.
    server = nullptr;
    QTcpServer plain;
    QVERIFY(plain.listen(QHostAddress::LocalHost, SERVICE_PORT));
    QByteArray received;
    connect(&plain, &QTcpServer::newConnection, this, [&plain, &received] {
        QTcpSocket *socket = plain.nextPendingConnection();
        connect(socket, &QIODevice::readyRead, socket, [socket, &received] {
            received += socket->readAll();
            socket->write("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n{\"code\":0}");
            socket->disconnectFromHost();
        });
    });
    const Operation operation = Operations::tts();
    operation.call(service);
    QCOMPARE(outcome(), QStringList{operation.failure});
    QVERIFY(!received.isEmpty());
    QVERIFY(!received.contains("Bearer"));
}

void TestServiceTls::refusesAFileServerWithoutItsCertificate_data()
{
    QTest::addColumn<int>("identity");
    QTest::newRow("another name") << int(Identity::Elsewhere);
    QTest::newRow("signed by itself") << int(Identity::Stranger);
}

void TestServiceTls::refusesAFileServerWithoutItsCertificate()
{
    QFETCH(int, identity);
    const QString path = temporary->filePath("audio.mp3"_s);
    ScriptedServer files(static_cast<Identity>(identity));
    QVERIFY(files.start());
    files.answer(ScriptedServer::reply("audio"));
    QVERIFY(!service->DownloadLongTTSRet(files.address("/a"_s), path));
    QVERIFY(!QFile::exists(path));
    QCOMPARE(files.requests(), QList<QByteArray>());
    QCOMPARE(logged(),
             (QStringList{R"(VoNetworker::DownloadLongTTSRet fileUrl= "%1" ,saveDir= "%2")"_s.arg(
                              files.address("/a"_s), "<temporary>/audio.mp3"_s),
                          "[error] VoNetworker::DownloadLongTTSRet SslHandshakeFailedError"_s}));
}

QTEST_GUILESS_MAIN(TestServiceTls)
#include "tst_servicetls.moc"
