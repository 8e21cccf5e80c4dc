#include "http/httpclient.h"
#include "http/httprequest.h"
#include "http/httpresponse.h"
#include "tests/http/httptesting.h"
#include "tests/support/nginxserver.h"
#include "tests/support/patience.h"
#include "tests/support/residentmemory.h"
#include "tests/support/trust.h"

#include <QFile>
#include <QPointer>
#include <QTest>

using HttpTesting::waitUntilGone;

static constexpr qint64 mebibyte = 1024LL * 1024;

/// Bodies that leave the reply as they arrive, and receivers that drop them.
class TestHttpGatheredBody : public QObject
{
    Q_OBJECT

    NginxServer m_server;
    const TrustTestAuthority m_trust;
    QByteArray m_text;

    static HttpRequest gathering(HttpClient *client, const QString &address)
    {
        client->setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
        HttpRequest request(HttpMethod::Get, client);
        request.url(address).timeout(patienceMs);
        request.fields.gathersBody = true;
        return request;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(m_server.start(), qPrintable(m_server.errorText()));
        QFile file(m_server.file("long"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(20 * mebibyte)); // takes no room
        for (int number = 0; number < 200000; ++number)
            m_text += QByteArray::number(number);
        QFile text(m_server.file("text"_s));
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write(m_text) == m_text.size());
        QFile empty(m_server.file("empty"_s));
        QVERIFY(empty.open(QIODevice::WriteOnly));
    }

    void arriveWhole_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QByteArray>("body");
        for (const char *path : {"/text", "/gzip/text", "/moved/text"}) {
            QTest::addRow("HTTP %s", path) << m_server.address(QLatin1String(path)) << m_text;
            QTest::addRow("HTTPS %s", path) << m_server.tlsAddress(QLatin1String(path)) << m_text;
        }
        QTest::newRow("empty") << m_server.address("/empty"_s) << QByteArray();
    }
    void arriveWhole()
    {
        QFETCH(QString, address);
        QFETCH(QByteArray, body);
        HttpClient client;
        QList<QByteArray> bodies;
        QStringList texts;
        waitUntilGone(gathering(&client, address)
                          .onFinished([&](const QByteArray &bytes) { bodies += bytes; })
                          .onFinished([&](const QString &text) { texts += text; })
                          .send());
        QVERIFY(bodies == QList<QByteArray>{body});
        QVERIFY(texts == QStringList{QString::fromLatin1(body)});
    }

    void leaveTheReplyAsTheyArrive()
    {
        HttpClient client;
        HttpResponse *response = gathering(&client, m_server.address("/long"_s)).send();
        auto *reply = qobject_cast<QNetworkReply *>(response->parent());
        QList<qint64> left;
        connect(reply, &QNetworkReply::readyRead, this, [&] { left += reply->bytesAvailable(); });
        waitUntilGone(response);
        QVERIFY(!left.isEmpty());
        QCOMPARE(left.count(0), left.size());
    }

    void areEmptyForWhoIsCalledAfterTheyAreDropped()
    {
        HttpClient client;
        QPointer<HttpResponse> response;
        QList<QByteArray> bodies;
        QStringList texts;
        int plain = 0;
        HttpRequest request = gathering(&client, m_server.address("/text"_s));
        request
            .onFinished([&] {
                ++plain;
                response->dropBody(); // too early
            })
            .onFinished([&](const QByteArray &bytes) {
                const QByteArray own = bytes; // NOLINT(performance-unnecessary-copy-initialization)
                response->dropBody();
                bodies += own;
            })
            .onFinished([&](const QByteArray &bytes) { bodies += bytes; })
            .onFinished([&](const QString &text) { texts += text; });
        response = request.send();
        waitUntilGone(response);
        QCOMPARE(plain, 1);
        QVERIFY((bodies == QList<QByteArray>{m_text, QByteArray()}));
        QCOMPARE(texts, QStringList{QString()});
    }

    void leaveTheMemoryWhenTheyAreDropped()
    {
#ifdef __SANITIZE_ADDRESS__
        QSKIP("the sanitiser keeps what was freed", );
#endif
        HttpClient client;
        qint64 with = 0;
        qint64 without = 0;
        HttpResponse *response = gathering(&client, m_server.address("/long"_s)).send();
        // A receiver with no copy of its own.
        connect(response, QOverload<QByteArray>::of(&HttpResponse::finished), this,
                [&](const QByteArray &) {
                    with = residentMemory();
                    response->dropBody();
                    without = residentMemory();
                });
        waitUntilGone(response);
        QVERIFY(with - without > 15 * mebibyte);
    }
};

QTEST_GUILESS_MAIN(TestHttpGatheredBody)
#include "tst_httpgatheredbody.moc"
