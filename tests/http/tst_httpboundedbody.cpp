#include "tests/http/boundedbody.h"

#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/httptesting.h"
#include "tests/support/nginxserver.h"
#include "tests/support/patience.h"
#include "tests/support/residentmemory.h"
#include "tests/support/trust.h"

#include <QFile>
#include <QTest>

#include <memory>

using HttpTesting::waitUntilGone;

static constexpr qint64 mebibyte = 1024LL * 1024;

/// The handbook's way to bound what a body takes of the memory.
class TestHttpBoundedBody : public QObject
{
    Q_OBJECT

    NginxServer m_server;
    const TrustTestAuthority m_trust;

    struct Outcome
    {
        QString text = "no end"_s;
        qint64 mostMemory = 0;
    };

    static Outcome outcomeOf(const QString &address, qint64 limit)
    {
        HttpClient client;
        client.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
        Outcome outcome;
        const auto body = std::make_shared<QByteArray>();
        HttpRequest request(HttpMethod::Get, &client);
        collectAtMost(limit, body, request.url(address).timeout(patienceMs))
            .onReadyRead([&outcome](QNetworkReply *) {
                outcome.mostMemory = qMax(outcome.mostMemory, residentMemory());
            })
            .onFinished([&outcome, body](const QByteArray &rest) {
                outcome.text = "finished %1+%2"_s.arg(body->size()).arg(rest.size());
            })
            .onError([&outcome](QNetworkReply::NetworkError code) {
                outcome.text = "error %1"_s.arg(int(code));
            })
            .onTimeout([&outcome] { outcome.text += ", timeout"_s; });
        waitUntilGone(request.send());
        outcome.mostMemory = qMax(outcome.mostMemory, residentMemory());
        return outcome;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(m_server.start(), qPrintable(m_server.errorText()));
        QFile file(m_server.file("long"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(400 * mebibyte)); // takes no room
        QFile small(m_server.file("small"_s));
        QVERIFY(small.open(QIODevice::WriteOnly) && small.resize(300000));
    }

    void aBodyThatIsLongerIsGivenUp_data()
    {
        QTest::addColumn<qint64>("limit");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("longer") << qint64(299999) << "error 5"_s;
        QTest::newRow("as long") << qint64(300000) << "finished 300000+0"_s;
        QTest::newRow("shorter") << qint64(300001) << "finished 300000+0"_s;
    }
    void aBodyThatIsLongerIsGivenUp()
    {
        QFETCH(qint64, limit);
        QFETCH(QString, outcome);
        for (const char *path : {"/small", "/gzip/small", "/moved/small"}) {
            QCOMPARE(outcomeOf(m_server.address(QLatin1String(path)), limit).text, outcome);
            QCOMPARE(outcomeOf(m_server.tlsAddress(QLatin1String(path)), limit).text, outcome);
        }
    }

    void aLongBodyNeedsLittleMemory_data()
    {
        QTest::addColumn<QString>("address");
        for (const char *path : {"/long", "/gzip/long", "/moved/long"}) {
            QTest::addRow("HTTP %s", path) << m_server.address(QLatin1String(path));
            QTest::addRow("HTTPS %s", path) << m_server.tlsAddress(QLatin1String(path));
        }
    }
    void aLongBodyNeedsLittleMemory()
    {
        QFETCH(QString, address);
#ifdef __SANITIZE_ADDRESS__
        QSKIP("the sanitiser keeps what was freed", );
#endif
        // One thread sets the bound for another: while other programs have the processors, much may
        // arrive in between.
        double growth = 0;
        for (int attempt = 0; attempt == 0 || (growth >= 8 && attempt < 3); ++attempt) {
            const qint64 before = residentMemory();
            const Outcome outcome = outcomeOf(address, mebibyte);
            QCOMPARE(outcome.text, "error 5"_s);
            growth = double(outcome.mostMemory - before) / mebibyte;
            qInfo("memory grew by %.1f MiB", growth);
        }
        QVERIFY(growth < 8);
    }
};

QTEST_GUILESS_MAIN(TestHttpBoundedBody)
#include "tst_httpboundedbody.moc"
