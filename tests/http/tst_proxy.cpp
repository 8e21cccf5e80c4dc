#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/squidserver.h"
#include "tests/support/testfolder.h"

#include <QTest>

using HttpTesting::waitUntilGone;

namespace {

const QStringList served{"finished()"_s, "finished(bytes ok)"_s, "finished(text ok)"_s,
                         "finished(map {})"_s, "repeated()"_s};
const QStringList refused{"error()"_s, "error(code 105)"_s,
                          "error(text Proxy requires authentication)"_s, "repeated()"_s};

} // namespace

/// Requests through a proxy that wants credentials.
class TestProxy : public QObject
{
    Q_OBJECT

    SquidServer m_squid;
    const TrustTestAuthority m_trust;
    ScriptedServer m_plain;
    ScriptedServer m_tls{Identity::Localhost};
    ScriptedServer *m_server = nullptr; // one of them
    int m_logged = 0;                   // lines in the proxy's log before this test

    void use(bool tls)
    {
        m_server = tls ? &m_tls : &m_plain;
        m_server->answer(ScriptedServer::reply("ok"));
    }

    /// The proxy's log of this test, with <server> for where the server is.
    QStringList proxyLog() const
    {
        QStringList lines = m_squid.log().mid(m_logged);
        return lines.replaceInStrings("localhost:%1"_s.arg(m_server->serverPort()), "<server>"_s);
    }

    static void addKinds()
    {
        QTest::addColumn<bool>("tls");
        QTest::newRow("HTTP") << false;
        QTest::newRow("HTTPS") << true;
    }

    /// Adds columns for a request in the clear or over TLS with credentials for the proxy.
    static void addCredentials()
    {
        QTest::addColumn<bool>("tls");
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("good");
        for (const bool tls : {false, true}) {
            const char *name = tls ? "HTTPS, %s" : "HTTP, %s";
            QTest::addRow(name, "right")
                << tls << SquidServer::user() << SquidServer::password() << true;
            QTest::addRow(name, "wrong password")
                << tls << SquidServer::user() << "guess"_s << false;
            QTest::addRow(name, "unknown user")
                << tls << "other"_s << SquidServer::password() << false;
            QTest::addRow(name, "none") << tls << QString() << QString() << false;
        }
    }

    /// What the proxy writes of a request with @p status on behalf of @p user.
    static QString logLine(int status, bool tls, const QString &user)
    {
        const QString what = tls ? "CONNECT <server>"_s : "GET http://<server>/"_s;
        return "%1 %2 %3"_s.arg(QString::number(status), what, user);
    }

    /// What it writes of a request that comes without credentials, and again with those of
    /// @p user, if any.
    static QStringList logOf(bool tls, const QString &user, bool good)
    {
        QStringList lines{logLine(407, tls, "-"_s)};
        if (!user.isEmpty())
            lines.append(logLine(good ? 200 : 407, tls, user));
        return lines;
    }

    /// Compares what the request was told, what the proxy has logged (a tunnel when it has ended)
    /// and whether the server was reached.
    void compare(const CallbackLog &calls, const QStringList &told, const QStringList &log,
                 int requests)
    {
        QCOMPARE(calls.lines(), told);
        TRY_COMPARE(proxyLog(), log);
        QCOMPARE(m_server->requests().size(), requests);
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(m_squid.start(), qPrintable(m_squid.errorText()));
        QVERIFY(m_plain.start());
        QVERIFY(m_tls.start());
    }

    void init()
    {
        m_plain.reset();
        m_tls.reset();
        m_logged = m_squid.log().size();
    }

    void theProxyIsGivenItsOwnCredentials_data() { addCredentials(); }
    void theProxyIsGivenItsOwnCredentials()
    {
        QFETCH(bool, tls);
        QFETCH(QString, user);
        QFETCH(QString, password);
        QFETCH(bool, good);
        use(tls);
        CallbackLog calls;
        {
            HttpClient client;
            client.setProxy(m_squid.proxy(user, password));
            HttpRequest request(HttpMethod::Get, &client);
            request.url(m_server->address("/"_s)).onAuthenticationRequired([&](QAuthenticator *) {
                calls.add("asked for those of the server"_s);
            });
            QVERIFY(waitUntilGone(calls.bindOutcomes(request).send()));
        }
        compare(calls, good ? served : refused, logOf(tls, user, good), good ? 1 : 0);
    }

    void aBodyIsSentOnceTheProxyHasItsCredentials_data() { addKinds(); }
    void aBodyIsSentOnceTheProxyHasItsCredentials()
    {
        QFETCH(bool, tls);
        use(tls);
        HttpClient client;
        client.setProxy(m_squid.proxy(SquidServer::user(), SquidServer::password()));
        HttpRequest request(HttpMethod::Post, &client);
        CallbackLog calls;
        request.url(m_server->address("/"_s)).rawBody("body");
        QVERIFY(waitUntilGone(calls.bindOutcomes(request).send()));
        QCOMPARE(calls.lines(), served);
        QCOMPARE(m_server->requests().size(), 1);
        QCOMPARE(WireRequest(m_server->requests().first()).body, "body"_b);
    }

    void theProxyIsGivenTheCredentialsOfAReceiver_data() { addCredentials(); }
    void theProxyIsGivenTheCredentialsOfAReceiver()
    {
        QFETCH(bool, tls);
        QFETCH(QString, user);
        QFETCH(QString, password);
        QFETCH(bool, good);
        use(tls);
        CallbackLog calls;
        {
            HttpClient client;
            client.setProxy(m_squid.proxy());
            // It answers once: to a receiver that gives wrong ones each time Qt comes back for
            // ever.
            connect(&client, &HttpClient::proxyAuthenticationRequired, this,
                    [&](const QNetworkProxy &, QAuthenticator *authenticator) {
                        calls.add("asked"_s);
                        if (user.isEmpty() || calls.lines().size() > 1)
                            return;
                        authenticator->setUser(user);
                        authenticator->setPassword(password);
                    });
            HttpRequest request(HttpMethod::Get, &client);
            request.url(m_server->address("/"_s)).authenticator(QAuthenticator());
            QVERIFY(waitUntilGone(calls.bindOutcomes(request).send()));
        }
        QStringList told{"asked"_s};
        if (!good && !user.isEmpty())
            told.append("asked"_s);
        compare(calls, told + (good ? served : refused), logOf(tls, user, good), good ? 1 : 0);
    }

    void theCredentialsOfTheRequestAreNotTheProxys_data() { addKinds(); }
    void theCredentialsOfTheRequestAreNotTheProxys()
    {
        QFETCH(bool, tls);
        use(tls);
        QAuthenticator authenticator;
        authenticator.setUser(SquidServer::user());
        authenticator.setPassword(SquidServer::password());
        CallbackLog calls;
        {
            HttpClient client;
            client.setProxy(m_squid.proxy());
            HttpRequest request(HttpMethod::Get, &client);
            request.url(m_server->address("/"_s)).authenticator(authenticator);
            QVERIFY(waitUntilGone(calls.bindOutcomes(request).send()));
        }
        compare(calls, refused, logOf(tls, QString(), false), 0);
    }

    void aRefusalByTheProxyIsRetried_data() { addKinds(); }
    void aRefusalByTheProxyIsRetried()
    {
        QFETCH(bool, tls);
        use(tls);
        CallbackLog calls;
        {
            HttpClient client;
            client.setProxy(m_squid.proxy());
            HttpRequest request(HttpMethod::Get, &client);
            bool told = false;
            request.url(m_server->address("/"_s)).retry(2).onRepeated([&told] { told = true; });
            calls.bindOutcomes(request).send();
            TRY_VERIFY(told);
        }
        const QString denied = logLine(407, tls, "-"_s);
        compare(calls, QStringList{"retried()"_s} + refused, {denied, denied, denied}, 0);
    }

    void aBlockingRequestGoesThroughTheProxy_data()
    {
        QTest::addColumn<bool>("tls");
        QTest::addColumn<bool>("good");
        QTest::newRow("HTTP, right") << false << true;
        QTest::newRow("HTTP, wrong") << false << false;
        QTest::newRow("HTTPS, right") << true << true;
        QTest::newRow("HTTPS, wrong") << true << false;
    }
    void aBlockingRequestGoesThroughTheProxy()
    {
        QFETCH(bool, tls);
        QFETCH(bool, good);
        use(tls);
        CallbackLog calls;
        {
            HttpClient client;
            client.setProxy(
                m_squid.proxy(SquidServer::user(), good ? SquidServer::password() : "guess"_s));
            HttpRequest request(HttpMethod::Get, &client);
            calls.bindOutcomes(request.url(m_server->address("/"_s)).block(true)).send();
            QCOMPARE(calls.lines(), good ? served : refused); // before send() returns
        }
        compare(calls, good ? served : refused, logOf(tls, SquidServer::user(), good),
                good ? 1 : 0);
    }

    void aDownloadGoesThroughTheProxy_data()
    {
        QTest::addColumn<bool>("tls");
        QTest::addColumn<bool>("good");
        QTest::addColumn<QStringList>("told"); // <file>: its name, <url>: the address
        QTest::addColumn<QByteArray>("contents");
        const QStringList written{"file()"_s, "file <file>"_s};
        const QString error =
            "fileError Url: <url> file: %1 error: Proxy requires authentication"_s;
        QTest::newRow("HTTP, right") << false << true << written << "ok"_b;
        // A refusal has a body, as any other reply with an error, and that is in the file.
        QTest::newRow("HTTP, wrong")
            << false << false << QStringList{"fileError()"_s, error.arg("<file>"_s)}
            << "ERR_CACHE_ACCESS_DENIED"_b;
        QTest::newRow("HTTPS, right") << true << true << written << "ok"_b;
        QTest::newRow("HTTPS, wrong")
            << true << false << QStringList{"fileError()"_s, error.arg(QString())}
            << "<unreadable>"_b;
    }
    void aDownloadGoesThroughTheProxy()
    {
        QFETCH(bool, tls);
        QFETCH(bool, good);
        QFETCH(QStringList, told);
        QFETCH(QByteArray, contents);
        use(tls);
        const TestFolder folder;
        const QString file = folder.path("file"_s);
        HttpClient client;
        client.setProxy(
            m_squid.proxy(SquidServer::user(), good ? SquidServer::password() : "guess"_s));
        CallbackLog calls;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(m_server->address("/"_s)).download(file);
        QVERIFY(waitUntilGone(calls.bindFile(request).send()));
        told.replaceInStrings("<file>"_s, file);
        told.replaceInStrings("<url>"_s, m_server->address("/"_s));
        QCOMPARE(calls.lines(), told);
        const QByteArray found = TestFolder::contents(file);
        QCOMPARE(found.contains("ERR_CACHE_ACCESS_DENIED") ? "ERR_CACHE_ACCESS_DENIED"_b : found,
                 contents);
    }
};

QTEST_GUILESS_MAIN(TestProxy)
#include "tst_proxy.moc"
