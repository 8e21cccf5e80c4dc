#include "tests/network/servicetest.h"

#include "tests/support/patience.h"

#include <QCoreApplication>
#include <QDir>
#include <QSignalSpy>
#include <QSslSocket>
#include <QTest>

void ServiceTest::initMain()
{
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "TST-5:30");
}

void ServiceTest::init()
{
    temporary = std::make_unique<TemporaryFolder>();
    QVERIFY(QDir().mkdir(temporary->filePath("VoTTS"_s)));
    trust = std::make_unique<TrustTestAuthority>();
    server = std::make_unique<ScriptedServer>(Identity::Localhost);
    QVERIFY(server->start(SERVICE_PORT));
    log = std::make_unique<LogCapture>();
    service = VoNetwork::CreateVoNetworkIntf();
    answers = std::make_unique<Answers>(service);
}

void ServiceTest::cleanup()
{
    release();
    answers.reset();
    log.reset();
    server.reset();
    trust.reset();
    temporary.reset();
}

QStringList ServiceTest::outcome(int count)
{
    answers->waitFor(count);
    release();
    return answers->calls();
}

QStringList ServiceTest::outcomeOf(const Operation &operation, int count)
{
    if (operation.result) {
        const QString returned = operation.result(service);
        release();
        return QStringList{returned} + answers->calls();
    }
    operation.call(service);
    if (!answers->calls().isEmpty())
        return {"answered before it returned"_s};
    return outcome(count);
}

void ServiceTest::release()
{
    if (!service)
        return;
    QSignalSpy gone(service, &QObject::destroyed);
    VoNetwork::ReleaseVoNetwork(service);
    service = nullptr;
    QVERIFY(gone.wait(patienceMs));
    QCoreApplication::processEvents(); // the access manager goes after its owner
}

QStringList ServiceTest::logged() const
{
    static const QStringList kinds{QString(), "warning: "_s, "critical: "_s, "fatal: "_s,
                                   "info: "_s};
    QStringList texts;
    const QList<LogCapture::Line> lines = log->lines();
    for (const LogCapture::Line &line : lines)
        texts.append(kinds.at(line.type)
                     + QString(line.text).replace(QDir::tempPath(), "<temporary>"_s));
    return texts;
}

QList<QSslSocket *> ServiceTest::connections() const
{
    QList<QSslSocket *> open;
    const auto sockets = server->findChildren<QSslSocket *>();
    for (QSslSocket *socket : sockets) {
        if (socket->state() == QAbstractSocket::ConnectedState)
            open.append(socket);
    }
    return open;
}

void ServiceTest::answerLate(int index, const QByteArray &bytes)
{
    QSslSocket *socket = connections().at(index);
    socket->write(bytes);
    socket->disconnectFromHost();
}

void ServiceTest::addFailedFetches()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QByteArray>("instead");
    QTest::addColumn<QString>("error");
    QTest::newRow("not found") << ScriptedServer::reply("", "404 Not Found") << QByteArray()
                               << "ContentNotFoundError"_s;
    QTest::newRow("not found, with a page") << ScriptedServer::reply("a page", "404 Not Found")
                                            << QByteArray("a page") << "ContentNotFoundError"_s;
    QTest::newRow("server error") << ScriptedServer::reply("", "500 Oops") << QByteArray()
                                  << "InternalServerError"_s;
    QTest::newRow("connection ended") << QByteArray() << QByteArray() << "RemoteHostClosedError"_s;
}
