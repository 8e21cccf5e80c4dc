#include "http/httpclient.h"
#include "http/httprequest.h"
#include "http/httpresponse.h"
#include "tests/http/httptesting.h"
#include "tests/support/scriptedserver.h"

#include <QFile>
#include <QHttpMultiPart>
#include <QTemporaryDir>
#include <QTest>

using Headers = QVariantMap;

/// Texts from elsewhere that end up in the head of a request or of one of its parts: which of them
/// can add a line to it.
class TestHttpHeads : public QObject
{
    Q_OBJECT

    ScriptedServer m_server;

    /// Sends @p request to @p path and gives back the last of what the server got.
    QByteArray sent(HttpRequest request, const QString &path = "/"_s)
    {
        HttpClient client;
        request.fields.client = &client;
        HttpResponse *response = request.url(m_server.address(path)).send();
        if (!response || !HttpTesting::waitUntilGone(response) || m_server.requests().isEmpty())
            return "<not sent>";
        return HttpTesting::withoutLanguage(m_server.requests().last());
    }

    /// A whole form body whose parts follow "form-data; " with @p parts.
    static QByteArray form(const WireRequest &request, const QByteArrayList &parts)
    {
        const QByteArray boundary = request.header("Content-Type").split('=').last();
        QByteArray body;
        for (const QByteArray &part : parts)
            body += "--" + boundary + "\r\nContent-Disposition: form-data; " + part + "\r\n";
        return body + "--" + boundary + "--\r\n";
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_server.start()); }

    void init()
    {
        m_server.reset();
        m_server.answer(ScriptedServer::reply(""));
    }

    void headersEndAtALineBreak_data()
    {
        QTest::addColumn<Headers>("headers");
        QTest::addColumn<QByteArray>("lines");
        const auto value = [](const char *row, const QString &text, const QByteArray &line) {
            QTest::newRow(row) << Headers{{"X-Own"_s, text}} << line;
        };
        value("whole", "v w\tx"_s, "X-Own: v w\tx\r\n");
        value("CR LF", "v\r\nX-Evil: 1"_s, "X-Own: v\r\n");
        value("LF", "v\nX-Evil: 1"_s, "X-Own: v\r\n");
        value("CR", "v\rX-Evil: 1"_s, "X-Own: v\r\n");
        value("NUL", "v\0\r\nX-Evil: 1"_s, "X-Own: v\r\n");
        value("a request of its own", "v\r\n\r\nGET /evil HTTP/1.1\r\n\r\n"_s, "X-Own: v\r\n");
        value("folded", "v\r\n w"_s, "X-Own: v\r\n");
        value("nothing before", "\r\nX-Evil: 1"_s, "X-Own: \r\n");
        QTest::newRow("in a name")
            << Headers{{"X-Own: 1\r\nX-Evil"_s, "2"_s}} << "X-Own: 1: 2\r\n"_b;
        QTest::newRow("nothing before in a name") << Headers{{"\r\nX-Evil"_s, "2"_s}} << ""_b;
    }
    void headersEndAtALineBreak()
    {
        QFETCH(Headers, headers);
        QFETCH(QByteArray, lines);
        QCOMPARE(sent(HttpRequest(HttpMethod::Get, nullptr).headers(headers)),
                 HttpTesting::wire("GET", "/", m_server.serverPort(), lines));
    }

    void addressesAreEncoded_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("target");
        QTest::newRow("path") << "/a\r\nX-Evil: 1"_s
                              << "/a%0D%0AX-Evil:%201"_b;
        QTest::newRow("query") << "/?a=\r\nX-Evil: 1"_s
                               << "/?a=%0D%0AX-Evil:%201"_b;
        QTest::newRow("NUL") << "/a\0b"_s
                             << "/a%00b"_b;
        QTest::newRow("encoded already") << "/a%0D%0AX-Evil:%201"_s
                                         << "/a%0D%0AX-Evil:%201"_b;
    }
    void addressesAreEncoded()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, target);
        QCOMPARE(sent(HttpRequest(HttpMethod::Get, nullptr), path),
                 HttpTesting::wire("GET", target, m_server.serverPort()));
    }

    void lineBreaksInTheNamesOfATextFormAreEncoded()
    {
        const WireRequest request(sent(HttpRequest(HttpMethod::Post, nullptr)
                                           .formDataBody({{"a\r\nX-Evil: 1\r\n\r\nb"_s, "1"_s},
                                                          {"\"\n\r%1%0D"_s, "\r\n"_s}})));
        QCOMPARE(request.body, form(request, {"name=\"\"%0A%0D%1%0D\"\r\n\r\n\r\n",
                                              "name=\"a%0D%0AX-Evil: 1%0D%0A%0D%0Ab\"\r\n\r\n1"}));
    }

    void lineBreaksInTheNamesOfAFileFormAreEncoded()
    {
#ifdef Q_OS_WIN
        QSKIP("Windows stores no such name", );
#endif
        const QTemporaryDir folder;
        QFile file(folder.filePath("%2\r\nX-Evil: 1\r\n\r\n"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const WireRequest request(sent(
            HttpRequest(HttpMethod::Post, nullptr).fileMapBody({{"a\r\n"_s, file.fileName()}})));
        QCOMPARE(
            request.body,
            form(request, {"name=\"a%0D%0A\";filename=\"%2%0D%0AX-Evil: 1%0D%0A%0D%0A\"\r\n\r\n"}));
    }

    void headersThatAreSetPastTheBuilderAreSentAsTheyAre()
    {
        HttpRequest request(HttpMethod::Get, nullptr);
        request.fields.networkRequest.setRawHeader("X-Own", "v\r\nX-Evil: 1");
        QCOMPARE(sent(request),
                 HttpTesting::wire("GET", "/", m_server.serverPort(), "X-Own: v\r\nX-Evil: 1\r\n"));
    }

    void theBoundaryOfAMultiPartIsSentAsItIs()
    {
        auto *multiPart = new QHttpMultiPart(QHttpMultiPart::FormDataType);
        multiPart->setBoundary("b\r\nX-Evil: 1");
        const QByteArray got = sent(HttpRequest(HttpMethod::Get, nullptr).multiPartBody(multiPart));
        QCOMPARE(WireRequest(got).header("X-Evil"), "1"_b);
    }

    void theUserNameOfADigestIsSentAsItIs()
    {
        m_server.reset();
        m_server.answer(
            ScriptedServer::reply("", "401 Unauthorized",
                                  "WWW-Authenticate: Digest realm=\"r\", nonce=\"n\"\r\n"),
            ScriptedServer::Then::KeepOpen);
        m_server.answer(ScriptedServer::reply(""));
        QAuthenticator credentials;
        credentials.setUser("u\r\nX-Evil: 1\r\n"_s);
        credentials.setPassword("p"_s);
        const QByteArray got =
            sent(HttpRequest(HttpMethod::Get, nullptr).authenticator(credentials));
        QCOMPARE(WireRequest(got).header("X-Evil"), "1"_b);
    }
};

QTEST_GUILESS_MAIN(TestHttpHeads)
#include "tst_httpheads.moc"
