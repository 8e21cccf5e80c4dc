#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"

#include <QElapsedTimer>
#include <QTest>

/// How long a download waits for what it asks beforehand, as the clock has it.
class TestHttpProbeLimit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aProbeWithoutAnAnswerIsGivenUpAfterHalfAMinute()
    {
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer("", ScriptedServer::Then::KeepOpen);
        server.answer(ScriptedServer::reply("body"));
        const TestFolder folder;
        const QString target = folder.path("f"_s);
        HttpClient client;
        QElapsedTimer clock;
        qint64 asked = 0; // in the end, of the download itself
        connect(&server, &ScriptedServer::requestReceived, this, [&] { asked = clock.elapsed(); });
        clock.start();
        HttpRequest request(HttpMethod::Get, &client);
        const QPointer<HttpResponse> response =
            request.url(server.address("/"_s)).download(target).send();
        TRY_VERIFY(response.isNull());
        QCOMPARE(server.requests().size(), 2);
        QCOMPARE(TestFolder::contents(target), "body"_b);
        qInfo("the download was sent after %lld ms", asked);
        QVERIFY(asked > 28000 && asked < 40000); // 30 s within 5 %, on a machine that may be busy
    }
};

QTEST_GUILESS_MAIN(TestHttpProbeLimit)
#include "tst_httpprobelimit.moc"
