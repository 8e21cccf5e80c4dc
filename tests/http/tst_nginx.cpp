#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/httptesting.h"
#include "tests/support/nginxserver.h"
#include "tests/support/patience.h"
#include "tests/support/testfolder.h"
#include "tests/support/trust.h"

#include <QCryptographicHash>
#include <QEventLoop>
#include <QFile>
#include <QTest>
#include <QTimer>

using HttpTesting::waitUntilGone;

namespace {

constexpr int mebibyte = 1024 * 1024;

/// Bytes in which every place is recognised.
QByteArray numbered(int size, qint64 from = 0)
{
    QByteArray bytes;
    bytes.reserve(size + 16);
    for (qint64 place = from; bytes.size() < size; place += 16)
        bytes += QByteArray::number(place).rightJustified(15, '.') + '\n';
    return bytes.left(size);
}

QByteArray sumOf(const QString &fileName)
{
    QFile file(fileName);
    QCryptographicHash hash(QCryptographicHash::Md5);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result().toHex()
                                                                 : "<unreadable>"_b;
}

} // namespace

/// Downloads from a server that is in wide use.
class TestNginx : public QObject
{
    Q_OBJECT

    NginxServer m_server;
    TestFolder m_folder;
    QString m_target = m_folder.path("target"_s);
    const TrustTestAuthority m_trust;

    QString address(bool tls, const QString &path) const
    {
        return tls ? m_server.tlsAddress(path) : m_server.address(path);
    }

    /// Downloads into the target, following redirects; gives what was reported of the file.
    QStringList download(const QString &address)
    {
        HttpClient client;
        client.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(address).download(m_target);
        if (!waitUntilGone(log.bindFile(request).send()))
            log.add("no end"_s);
        return log.lines();
    }

    QStringList written() const { return {"file()"_s, "file "_s + m_target}; }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_server.start(), qPrintable(m_server.errorText())); }

    void init() { QFile::remove(m_target); }

    void whatIsInTheFileDecidesWhatComes_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("before"); // null: no file
        QTest::addColumn<QByteArray>("after");
        const QByteArray whole = numbered(3000000);
        const QByteArray part = whole.left(1000001);
        QTest::newRow("no file") << "/f"_s << QByteArray() << whole;
        QTest::newRow("empty file") << "/f"_s
                                    << ""_b << whole;
        QTest::newRow("part of the file") << "/f"_s << part << whole;
        QTest::newRow("all but a byte") << "/f"_s << whole.chopped(1) << whole;
        QTest::newRow("complete file") << "/f"_s << whole << whole + whole;
        QTest::newRow("longer file") << "/f"_s << whole + "x" << whole + "x" + whole;
        QTest::newRow("no ranges") << "/noranges/f"_s << part << whole;
        QTest::newRow("redirected") << "/moved/f"_s << QByteArray() << whole;
        QTest::newRow("redirected, part of the file") << "/moved/f"_s << part << whole;
        QTest::newRow("compressed") << "/gzip/f"_s << QByteArray() << whole;
        QTest::newRow("compressed, part of the file") << "/gzip/f"_s << part << whole;
    }
    void whatIsInTheFileDecidesWhatComes()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, after);
        TestFolder::write(m_server.file("f"_s), numbered(3000000));
        for (const bool tls : {false, true}) {
            QFile::remove(m_target);
            if (!before.isNull())
                TestFolder::write(m_target, before);
            QCOMPARE(download(address(tls, path)), written());
            const QByteArray now = TestFolder::contents(m_target);
            QCOMPARE(now.size(), after.size());
            QVERIFY(now == after); // too long to print
        }
    }

    void theBufferOfADownloadIsThatOfWhereTheFileComesFrom_data()
    {
        QTest::addColumn<bool>("tls");
        QTest::addColumn<QString>("path");
        QTest::addColumn<qint64>("asked");
        QTest::addColumn<qint64>("applied");
        QTest::newRow("HTTP") << false << "/f"_s << qint64(-1) << qint64(524288);
        QTest::newRow("HTTPS") << true << "/f"_s << qint64(-1) << qint64(65536);
        QTest::newRow("HTTP, redirected") << false << "/moved/f"_s << qint64(-1) << qint64(524288);
        QTest::newRow("HTTPS, redirected") << true << "/moved/f"_s << qint64(-1) << qint64(65536);
        QTest::newRow("HTTP to HTTPS") << false << "/secured/f"_s << qint64(-1) << qint64(65536);
        QTest::newRow("its own") << false << "/secured/f"_s << qint64(5000) << qint64(5000);
        QTest::newRow("none") << true << "/f"_s << qint64(0) << qint64(0);
    }
    void theBufferOfADownloadIsThatOfWhereTheFileComesFrom()
    {
        QFETCH(bool, tls);
        QFETCH(QString, path);
        QFETCH(qint64, asked);
        QFETCH(qint64, applied);
        TestFolder::write(m_server.file("f"_s), numbered(3000));
        HttpClient client;
        client.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
        qint64 bound = -1;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(address(tls, path)).download(m_target).readBufferSize(asked);
        request.onReadyRead([&bound](QNetworkReply *reply) { bound = reply->readBufferSize(); });
        QVERIFY(waitUntilGone(request.send()));
        QCOMPARE(bound, applied);
    }

    void theHeadersAfterARedirectEndWithTheFilesOwn()
    {
        TestFolder::write(m_server.file("f"_s), numbered(3000));
        for (int i = 0; i < 200; ++i) { // what Qt reports of a redirect depends on timing
            HttpClient client;
            client.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
            QMap<QString, QString> head;
            HttpRequest request(HttpMethod::Get, &client);
            request.url(m_server.address("/moved/f"_s));
            request.onHead([&head](const QMap<QString, QString> &headers) { head = headers; });
            QVERIFY(waitUntilGone(request.send()));
            const auto last = [&head](const QString &name) {
                return head.value(name).section(", "_s, -1);
            };
            QCOMPARE(last("Content-Length"_s), "3000"_s);
            QCOMPARE(last("Content-Type"_s), "application/octet-stream"_s);
        }
    }

    void theRestOfAFileThatWasReplacedIsAppended()
    {
        TestFolder::write(m_target, QByteArray(10, 'o')); // of an earlier attempt
        TestFolder::write(m_server.file("replaced"_s), QByteArray(25, 'n'));
        QCOMPARE(download(m_server.address("/replaced"_s)), written());
        QCOMPARE(TestFolder::contents(m_target), QByteArray(10, 'o') + QByteArray(15, 'n'));
    }

    void aFileThatIsNotThereIsReported()
    {
        const QStringList lines = download(m_server.address("/missing"_s));
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines.first(), "fileError()"_s);
        const QString expected =
            "fileError Url: %1 file: %2 error: "_s.arg(m_server.address("/missing"_s), m_target);
        QVERIFY2(lines.at(1).startsWith(expected), qPrintable(lines.at(1)));
        QVERIFY(TestFolder::contents(m_target).contains("404 Not Found"));
    }

    void aServerWithoutATrustedNameIsRefused()
    {
        // The certificate names localhost and 127.0.0.1 only; trust is not the test authority's.
        QSslConfiguration stranger = QSslConfiguration::defaultConfiguration();
        stranger.setCaCertificates({certificateOf(Identity::Stranger)});
        const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
        QSslConfiguration::setDefaultConfiguration(stranger);
        TestFolder::write(m_server.file("f"_s), "secret");
        const QStringList lines = download(m_server.tlsAddress("/f"_s));
        QSslConfiguration::setDefaultConfiguration(before);
        QCOMPARE(lines.value(0), "fileError()"_s);
        QVERIFY2(lines.value(1).contains("SSL handshake failed"_s), qPrintable(lines.value(1)));
        QVERIFY(!QFile::exists(m_target));
    }

    void aServerThatIsKilledInTheMiddleIsAskedForTheRest_data()
    {
        QTest::addColumn<bool>("tls");
        QTest::addColumn<bool>("block");
        QTest::newRow("HTTP") << false << false;
        QTest::newRow("HTTP, blocking") << false << true;
        QTest::newRow("HTTPS") << true << false;
    }
    void aServerThatIsKilledInTheMiddleIsAskedForTheRest()
    {
        QFETCH(bool, tls);
        QFETCH(bool, block);
        const QString source = m_server.file("long"_s);
        if (!QFile::exists(source)) {
            QFile file(source);
            QVERIFY(file.open(QIODevice::WriteOnly));
            for (qint64 block = 0; block < 200; ++block)
                QCOMPARE(file.write(numbered(mebibyte, block * mebibyte)), qint64(mebibyte));
        }
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindFile(request.url(address(tls, "/long"_s)).download(m_target).retry(3).block(block));
        int kills = 0;
        request.onReadyRead([&](QNetworkReply *) {
            if (kills < 2 && QFile(m_target).size() > (kills + 1) * 50LL * mebibyte) {
                ++kills;
                m_server.kill();
                log.add(m_server.start() ? "restarted"_s : m_server.errorText());
            }
        });
        request.onDownloadFileProgress([&log](qint64 received, qint64 total) {
            const QString end = received < 101LL * mebibyte ? "the rest"_s : "too much"_s;
            if (received == total && !log.lines().endsWith(end)) // Qt may say it twice
                log.add(end);
        });
        request.onRetried([&log] { log.add("retried"_s); });
        request.onError([&log] { log.add("error"_s); });
        QEventLoop loop;
        bool over = false;
        request.onRepeated([&] {
            over = true;
            loop.quit();
        });
        QTimer::singleShot(patienceMs, &loop, &QEventLoop::quit);
        request.send();
        if (!over)
            loop.exec(); // TRY_VERIFY would sleep between the parts
        const QStringList expected = {"restarted"_s, "restarted"_s, "the rest"_s, "retried"_s};
        QCOMPARE(log.lines().join(QLatin1Char('\n')),
                 (expected + written()).join(QLatin1Char('\n')));
        QCOMPARE(sumOf(m_target), sumOf(source));
    }
};

QTEST_GUILESS_MAIN(TestNginx)
#include "tst_nginx.moc"
