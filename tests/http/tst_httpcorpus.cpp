#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/httptesting.h"
#include "tests/support/corpus.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTest>

using HttpTesting::waitUntilGone;

namespace {

QString written(const QList<QNetworkReply::RawHeaderPair> &headers)
{
    QStringList lines;
    for (const QNetworkReply::RawHeaderPair &header : headers)
        lines.append(QString::fromLatin1(header.first + ": " + header.second));
    return lines.join(QLatin1Char('\n'));
}

/// All that a host can learn of a reply, as texts.
struct Learned
{
    QString outcome; ///< "finished", or "error" with its code.
    QString status;  ///< With its reason.
    QString headers;
    QByteArray body; ///< Of a reply without an error.

    void takeStatus(const QNetworkReply *reply)
    {
        status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toString()
                 + QLatin1Char(' ')
                 + reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
    }
};

} // namespace

/// Replies that servers send or could send, through the toolkit and through the access manager
/// below it.
class TestHttpCorpus : public QObject
{
    Q_OBJECT

    ScriptedServer m_server;

    Learned byManager() const
    {
        QNetworkAccessManager manager;
        QNetworkReply *reply = manager.sendCustomRequest(
            QNetworkRequest(QUrl(m_server.address("/"_s))), "GET", QByteArray());
        QSignalSpy finished(reply, &QNetworkReply::finished);
        if (!finished.wait(patienceMs))
            return {"no end"_s, {}, {}, {}};
        const bool good = reply->error() == QNetworkReply::NoError;
        Learned learned;
        learned.outcome = good ? "finished"_s : "error %1"_s.arg(reply->error());
        learned.takeStatus(reply);
        learned.headers = written(reply->rawHeaderPairs());
        learned.body = good ? reply->readAll() : QByteArray();
        return learned;
    }

    Learned byToolkit() const
    {
        HttpClient client;
        Learned learned;
        const QNetworkReply *reply = nullptr;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(m_server.address("/"_s));
        request.onFinished([&](const QByteArray &body) {
            learned.outcome += "finished"_s;
            learned.body += body;
            learned.takeStatus(reply);
        });
        request.onError([&](QNetworkReply::NetworkError code) {
            learned.outcome += "error %1"_s.arg(code);
            learned.takeStatus(reply);
        });
        request.onHead([&](const QList<QNetworkReply::RawHeaderPair> &headers) {
            learned.headers += written(headers);
        });
        HttpResponse *response = request.send();
        reply = qobject_cast<QNetworkReply *>(response->parent());
        if (!waitUntilGone(response))
            learned.outcome += "no end"_s;
        return learned;
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_server.start()); }

    void teachesNoMoreAndNoLess_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("early");
        const QList<CorpusCase> replies = readCorpus("http.txt");
        QVERIFY(replies.size() > 400);
        for (const CorpusCase &reply : replies)
            QTest::newRow(reply.name.constData()) << reply.bytes << (reply.kind == "early");
    }
    void teachesNoMoreAndNoLess()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, early);
#ifdef Q_OS_WIN
        if (QByteArray(QTest::currentDataTag()).startsWith("chunks, no line end"))
            QSKIP("Qt takes lines of chunks byte by byte and misses an end that comes meanwhile", );
#endif
        m_server.reset();
        m_server.answer(bytes, ScriptedServer::Then::CloseOnceRead);
        const Learned actual = byToolkit();
        Learned expected = byManager();
        // A body that ends early Qt reports or takes for whole, by the turns of its threads: it is
        // asked until it has said what the toolkit was told.
        for (int i = 0; early && i < 1000 && expected.outcome != actual.outcome; ++i)
            expected = byManager();
        QCOMPARE(actual.outcome, expected.outcome);
        QCOMPARE(actual.status, expected.status);
        QCOMPARE(actual.headers, expected.headers);
        QCOMPARE(actual.body, expected.body);
    }
};

QTEST_GUILESS_MAIN(TestHttpCorpus)
#include "tst_httpcorpus.moc"
