#include "tests/support/patience.h"
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

QByteArray pathOf(const QString &address)
{
    return address.mid(serviceAddress().size()).toLatin1();
}

} // namespace

/// Who may put what where in the storage, and get which part of it.
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

    void aRangeIsAPartOfTheObject_data()
    {
        QTest::addColumn<QByteArray>("range");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("contentRange");
        QTest::addColumn<QByteArray>("body");
        const auto part = [](const char *range, const char *contentRange, const char *body) {
            QTest::newRow(range) << QByteArray(range) << 206 << QByteArray(contentRange)
                                 << QByteArray(body);
        };
        part("bytes=0-0", "bytes 0-0/10", "0");
        part("bytes=2-4", "bytes 2-4/10", "234");
        part("bytes=5-", "bytes 5-9/10", "56789");
        part("bytes=9-", "bytes 9-9/10", "9");
        part("bytes=-3", "bytes 7-9/10", "789");
        part("bytes=-11", "bytes 0-9/10", "0123456789");
        part("bytes=0-10", "bytes 0-9/10", "0123456789");
        part("bytes=3-18446744073709551615", "bytes 3-9/10", "3456789");
        part("bytes=3-99999999999999999999999999", "bytes 3-9/10", "3456789");
        const auto none = [](const char *range) {
            QTest::newRow(range) << QByteArray(range) << 416 << QByteArray("bytes */10")
                                 << QByteArray("{\"code\":416,\"message\":"
                                               "\"the file has no such part\"}");
        };
        for (const char *range :
             {"bytes=10-", "bytes=10-10", "bytes=-0", "bytes=18446744073709551615-",
              "bytes=99999999999999999999999999-"})
            none(range);
        const auto ignored = [](const char *name, const QByteArray &range) {
            QTest::newRow(name) << range << 200 << QByteArray() << QByteArray("0123456789");
        };
        for (const char *range :
             {"bytes=5-2", "bytes=-", "bytes=", "bytes", "", "lines=0-1", "bytes=0-1,4-5",
              "bytes=1-2-3", "bytes=a-b", "bytes=--5", "bytes=0x1-2", "bytes= 0-1"})
            ignored(range, range);
        ignored("2700 parts", "bytes=0-" + QByteArray(",0-").repeated(2700));
        ignored("digits", "bytes=0-" + QByteArray(8000, '9') + 'x');
        ignored("if it has not changed", "bytes=0-1\r\nIf-Range: \"tag\"");
    }
    void aRangeIsAPartOfTheObject()
    {
        QFETCH(const QByteArray, range);
        const QString address = addressUnder(m_own, "digits");
        QVERIFY(m_client->put(address, "0123456789", tokenOf(m_own)).isSuccess());
        const auto got = m_client->verbatim("GET " + pathOf(address),
                                            tokenHeader() + "Range: " + range + "\r\n");
        QTEST(got.status, "status");
        QTEST(got.header("Content-Range"), "contentRange");
        QTEST(got.body, "body");
        QCOMPARE(got.header("Content-Length"), QByteArray::number(got.body.size()));
    }

    void anEmptyObjectHasNoParts()
    {
        const QString address = addressUnder(m_own, "empty");
        QVERIFY(m_client->put(address, QByteArray(), tokenOf(m_own)).isSuccess());
        const auto whole = m_client->get(address, tokenOf(m_own));
        QCOMPARE(whole.status, 200);
        QCOMPARE(whole.header("Content-Length"), QByteArray("0"));
        const auto part =
            m_client->verbatim("GET " + pathOf(address), tokenHeader() + "Range: bytes=0-\r\n");
        QCOMPARE(part.status, 416);
        QCOMPARE(part.header("Content-Range"), QByteArray("bytes */0"));
    }

    void aRangeIsIgnoredByWhateverIsNoGetOfAFile_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        const QByteArray path = pathOf(addressUnder(m_own, "digits"));
        QTest::newRow("HEAD") << "HEAD " + path << QByteArray() << 200;
        QTest::newRow("PUT") << "PUT " + path << QByteArray("0123456789") << 200;
        QTest::newRow("an operation")
            << QByteArray("GET /convert/public/index.php/v1/asr/getVoice") << QByteArray() << 200;
        QTest::newRow("an operation with a body")
            << QByteArray("POST /convert/public/index.php/v1/asr/freeProcess") << QByteArray("{}")
            << 200;
        QTest::newRow("a refusal") << "GET " + path + 'x' << QByteArray() << 404;
    }
    void aRangeIsIgnoredByWhateverIsNoGetOfAFile()
    {
        QFETCH(const QByteArray, request);
        QFETCH(const QByteArray, body);
        const QString address = addressUnder(m_own, "digits");
        QVERIFY(m_client->put(address, "0123456789", tokenOf(m_own)).isSuccess());
        const auto whole = m_client->verbatim(request, tokenHeader(), body);
        const auto part = m_client->verbatim(request, tokenHeader() + "Range: bytes=1-2\r\n", body);
        QTEST(part.status, "status");
        QCOMPARE(part.body, whole.body);
        QCOMPARE(part.header("Content-Length"), whole.header("Content-Length"));
        QCOMPARE(part.header("Content-Range"), QByteArray());
    }

    void aLargeObjectIsReadInParts()
    {
        const QString address = addressUnder(m_own, "large");
        QByteArray large(3 * 1024 * 1024 + 1, '\0');
        for (int i = 0; i < large.size(); ++i)
            large[i] = static_cast<char>(i % 251);
        QVERIFY(m_client->put(address, large, tokenOf(m_own)).isSuccess());
        QCOMPARE(m_client->get(address, tokenOf(m_own)).body, large);
        const auto part = m_client->verbatim("GET " + pathOf(address),
                                             tokenHeader() + "Range: bytes=65537-2000000\r\n");
        QCOMPARE(part.status, 206);
        QCOMPARE(part.body, large.mid(65537, 2000000 - 65537 + 1));
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
        const QByteArray path = pathOf(addressUnder(m_own, "")) + tail;
        const auto put = m_client->verbatim("PUT " + path, tokenHeader(), recording());
        QVERIFY2(put.status >= 400 && put.status < 500, QByteArray::number(put.status) + put.body);
        const auto get = m_client->verbatim("GET " + path, tokenHeader());
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
        TRY_COMPARE(client.put(address, recording(), tokenOf(credentials)).status, 403);
        QVERIFY(elapsed.elapsed() > 1000);
        QCOMPARE(client.get(address, tokenOf(credentials)).status, 403);
        QVERIFY(
            client
                .put(addressUnder(client.credentials(), "a.wav"), recording(), tokenOf(credentials))
                .status
            == 403);
    }

private:
    QByteArray tokenHeader() const
    {
        return "x-security-token: " + tokenOf(m_own).toLatin1() + "\r\n";
    }

    LocalService m_service;
    QScopedPointer<ServiceClient> m_client;
    QJsonObject m_own;
    QJsonObject m_others;
};

QTEST_GUILESS_MAIN(TestStorage)
#include "tst_storage.moc"
