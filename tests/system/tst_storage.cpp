#include "tests/system/localservice.h"
#include "tests/system/serviceaddress.h"
#include "tests/system/serviceclient.h"

#include <QElapsedTimer>
#include <QtTest>

#include <csignal>

namespace {

QByteArray recording() { return QByteArray("RIFF") + QByteArray(100, 'x'); }

QString tokenOf(const QJsonObject &credentials)
{
    return credentials.value(QLatin1String("SecurityToken")).toString();
}

QString addressUnder(const QJsonObject &credentials, const char *name)
{
    return QStringLiteral("%1/%2/%3/%4")
        .arg(credentials.value(QLatin1String("endpoint")).toString(),
             credentials.value(QLatin1String("bucketName")).toString(),
             credentials.value(QLatin1String("dir")).toString(), QString::fromLatin1(name));
}

} // namespace

/// Who may put what where in the storage.
class TestStorage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_service.start());
        m_client.reset(new ServiceClient(m_service.authority()));
        m_own = m_client->credentials();
        m_others = m_client->credentials();
        QVERIFY(!tokenOf(m_own).isEmpty());
    }

    void everyCredentialsHaveATokenAndADirectoryOfTheirOwn()
    {
        QVERIFY(tokenOf(m_own) != tokenOf(m_others));
        QVERIFY(addressUnder(m_own, "") != addressUnder(m_others, ""));
    }

    void whatIsPutIsThere()
    {
        const QString address = addressUnder(m_own, "a.wav");
        QVERIFY(m_client->put(address, recording(), tokenOf(m_own)).isSuccess());
        const auto got = m_client->get(address, tokenOf(m_own));
        QCOMPARE(got.status, 200);
        QCOMPARE(got.body, recording());
    }

    void aTokenThatDoesNotFitIsForbidden_data()
    {
        QTest::addColumn<QString>("token");
        QTest::newRow("none") << QString();
        QTest::newRow("made up") << QStringLiteral("made up");
        QTest::newRow("another directory's") << tokenOf(m_others);
        QTest::newRow("the signing-in token") << QString::number(LocalService::token());
    }
    void aTokenThatDoesNotFitIsForbidden()
    {
        QFETCH(const QString, token);
        const QString stored = addressUnder(m_own, "b.wav");
        QVERIFY(m_client->put(stored, recording(), tokenOf(m_own)).isSuccess());
        QCOMPARE(m_client->get(stored, token).status, 403);
        QCOMPARE(m_client->put(stored, "changed", token).status, 403);
        QCOMPARE(m_client->put(addressUnder(m_own, "new.wav"), recording(), token).status, 403);
        QCOMPARE(m_client->get(stored, tokenOf(m_own)).body, recording());
    }

    void aPathThatLeavesTheDirectoryIsRefused_data()
    {
        QTest::addColumn<QByteArray>("tail");
        for (const char *tail :
             {"../c.wav", "../../../../tls/c.wav", "%2e%2e/c.wav", "..%2fc.wav", "%2e%2e%2fc.wav",
              "sub/../../c.wav", "..", ".", "", "..%5cc.wav", "c%00.wav"})
            QTest::newRow(tail) << QByteArray(tail);
    }
    // Sent as it is: a client library would tidy the path first.
    void aPathThatLeavesTheDirectoryIsRefused()
    {
        QFETCH(const QByteArray, tail);
        const QByteArray path =
            addressUnder(m_own, "").mid(serviceAddress().size()).toLatin1() + tail;
        const QByteArray headers = "x-security-token: " + tokenOf(m_own).toLatin1() + "\r\n";
        const auto put = m_client->verbatim("PUT " + path, headers, recording());
        QVERIFY2(put.status >= 400 && put.status < 500, QByteArray::number(put.status) + put.body);
        const auto get = m_client->verbatim("GET " + path, headers);
        QVERIFY2(get.status >= 400 && get.status < 500, QByteArray::number(get.status) + get.body);
    }

    void credentialsExpire()
    {
        LocalService shortLived;
        m_service.stop(SIGTERM);
        QVERIFY(shortLived.start({QStringLiteral("--credential-lifetime"), QStringLiteral("2")}));
        ServiceClient client(shortLived.authority());
        const QJsonObject credentials = client.credentials();
        const QString address = addressUnder(credentials, "a.wav");
        QElapsedTimer elapsed;
        elapsed.start();
        QVERIFY(client.put(address, recording(), tokenOf(credentials)).isSuccess());
        QTRY_COMPARE_WITH_TIMEOUT(client.put(address, recording(), tokenOf(credentials)).status,
                                  403, 20000);
        QVERIFY(elapsed.elapsed() > 1000);
        QCOMPARE(client.get(address, tokenOf(credentials)).status, 403);
        QVERIFY(
            client
                .put(addressUnder(client.credentials(), "a.wav"), recording(), tokenOf(credentials))
                .status
            == 403);
    }

private:
    LocalService m_service;
    QScopedPointer<ServiceClient> m_client;
    QJsonObject m_own;
    QJsonObject m_others;
};

QTEST_GUILESS_MAIN(TestStorage)
#include "tst_storage.moc"
