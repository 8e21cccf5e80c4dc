#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/squidserver.h"
#include "tests/support/testfolder.h"
#include "tests/system/answers.h"
#include "tests/system/home.h"
#include "tests/system/program.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QtTest>

using Variables = QMap<QByteArray, QByteArray>;

Q_DECLARE_METATYPE(Variables)

namespace {

const QString file = QStringLiteral("file");

const QByteArrayList variableNames{"http_proxy", "HTTP_PROXY", "https_proxy", "HTTPS_PROXY",
                                   "all_proxy",  "ALL_PROXY",  "no_proxy",    "NO_PROXY"};

} // namespace

/// vospeak behind a proxy that wants credentials. Only the proxy knows where elsewhere.example is.
class TestProxies : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const quint16 port = SERVICE_PORT;
        QVERIFY2(m_squid.start(), qPrintable(m_squid.errorText()));
        QVERIFY(m_service.start(port));
        QVERIFY(m_server.start());
        QVERIFY(m_tlsServer.start());
        QVERIFY(QDir::setCurrent(m_folder.path()));
    }

    void init()
    {
        for (ScriptedServer *server : {&m_service, &m_server, &m_tlsServer})
            server->reset();
        QFile::remove(file);
        m_logged = m_squid.log().size();
    }

    void cleanup()
    {
        for (const QByteArray &name : variableNames)
            qunsetenv(name.constData());
    }

    void theProxyThatTheUserNamesIsAsked_data()
    {
        QTest::addColumn<bool>("tls");
        QTest::addColumn<QString>("credentials");
        QTest::addColumn<bool>("good");
        for (const bool tls : {false, true}) {
            const char *kind = tls ? "https" : "http";
            const auto row = [tls, kind](const char *name, const char *credentials, bool good) {
                QTest::addRow("%s, %s", kind, name)
                    << tls << QString::fromLatin1(credentials) << good;
            };
            row("right", "reader:secret@", true);
            row("right, encoded", "re%61der:secre%74@", true);
            row("wrong password", "reader:guess@", false);
            row("unknown user", "other:secret@", false);
            row("no password", "reader@", false);
            row("none", "", false);
        }
    }
    void theProxyThatTheUserNamesIsAsked()
    {
        QFETCH(const bool, tls);
        QFETCH(const QString, credentials);
        QFETCH(const bool, good);
        const Outcome outcome =
            fetch(tls, {QStringLiteral("--proxy"), proxy(QStringLiteral("http"), credentials)});
        if (good)
            verifyFetchedThroughProxy(outcome, tls);
        else
            verifyFailure(outcome, tls,
                          "the proxy wants a user and a password that it knows (see --proxy)");
    }

    void aProxyThatRefusesIsToldAsJson()
    {
        const QString wrong = proxy(QStringLiteral("http"), QStringLiteral("reader:guess@"));
        const Outcome outcome =
            fetch(true, {QStringLiteral("--json"), QStringLiteral("--proxy"), wrong});
        const QJsonObject error =
            QJsonDocument::fromJson(outcome.err).object().value(QStringLiteral("error")).toObject();
        QCOMPARE(error.value(QStringLiteral("kind")).toString(), QStringLiteral("proxy"));
        QCOMPARE(error.value(QStringLiteral("status")).toInt(), 3);
    }

    void theEnvironmentChoosesTheProxy_data()
    {
        QTest::addColumn<Variables>("variables"); // %1: the proxy
        QTest::addColumn<bool>("tls");
        QTest::addColumn<bool>("isUsed");
        const auto row = [](const Variables &variables, bool tls, bool isUsed) {
            QByteArrayList words;
            for (auto it = variables.cbegin(); it != variables.cend(); ++it)
                words.append(it.key() + '=' + it.value());
            QTest::addRow("%s, %s", tls ? "https" : "http", words.join(' ').constData())
                << variables << tls << isUsed;
        };
        for (const char *name : {"https_proxy", "HTTPS_PROXY"}) {
            row({{name, "%1"}}, true, true);
            row({{name, "%1"}}, false, false);
        }
        row({{"http_proxy", "%1"}}, false, true);
        row({{"http_proxy", "%1"}}, true, false);
        row({{"HTTP_PROXY", "%1"}}, false, false);
        for (const char *name : {"all_proxy", "ALL_PROXY"}) {
            row({{name, "%1"}}, true, true);
            row({{name, "%1"}}, false, true);
        }
        row({{"https_proxy", "%1"}, {"all_proxy", "h:1"}}, true, true);
        row({{"https_proxy", ""}, {"HTTPS_PROXY", "%1"}}, true, true);
        for (const char *exception : {"elsewhere.example", ".example", "example", "*",
                                      "a.test,.EXAMPLE", "a.test elsewhere.example"})
            row({{"https_proxy", "%1"}, {"no_proxy", exception}}, true, false);
        row({{"https_proxy", "%1"}, {"NO_PROXY", "example"}}, true, false);
        for (const char *exception :
             {"", "where.example", "elsewhere", "a.elsewhere.example", "10.0.0.0/8"})
            row({{"https_proxy", "%1"}, {"no_proxy", exception}}, true, true);
    }
    void theEnvironmentChoosesTheProxy()
    {
        QFETCH(const Variables, variables);
        QFETCH(const bool, tls);
        QFETCH(const bool, isUsed);
        for (auto it = variables.cbegin(); it != variables.cend(); ++it)
            qputenv(it.key().constData(), QByteArray(it.value()).replace("%1", proxy().toLatin1()));
        const Outcome outcome = fetch(tls);
        if (isUsed)
            verifyFetchedThroughProxy(outcome, tls);
        else
            verifyFailure(outcome, tls, "the host was not found");
    }

    void theOptionCountsMoreThanTheEnvironment()
    {
        qputenv("https_proxy", "http://localhost:1");
        qputenv("no_proxy", "*");
        verifyFetchedThroughProxy(fetch(true, {QStringLiteral("--proxy"), proxy()}), true);
        m_tlsServer.reset();
        qputenv("https_proxy", proxy().toLatin1());
        qunsetenv("no_proxy");
        verifyFailure(fetch(true, {QStringLiteral("--proxy"), QString()}), true,
                      "the host was not found");
    }

    void aProxyThatCannotBeReachedIsToldInOneLine_data()
    {
        QTest::addColumn<QString>("scheme");
        QTest::addColumn<QByteArray>("problem");
        QTest::newRow("http") << QStringLiteral("http") << QByteArray("Proxy connection refused");
        for (const char *scheme : {"socks5", "socks5h"})
            QTest::newRow(scheme) << QString::fromLatin1(scheme)
                                  << QByteArray("Connection to proxy refused");
    }
    void aProxyThatCannotBeReachedIsToldInOneLine()
    {
        QFETCH(const QString, scheme);
        QFETCH(const QByteArray, problem);
        // With socks5 the name is looked up here: a number is none.
        const QString address = QStringLiteral("https://192.0.2.1/f");
        const QString nobody = QStringLiteral("%1://localhost:%2")
                                   .arg(scheme, QString::number(ExternalServer::freePort()));
        const Outcome outcome = vospeak({QStringLiteral("fetch"), address, QStringLiteral("-o"),
                                         file, QStringLiteral("--proxy"), nobody});
        QCOMPARE(outcome.err, "vospeak: \"" + address.toLatin1()
                                  + "\" could not be downloaded: " + problem + '\n');
        QCOMPARE(outcome.status, 3);
    }

    void aProxyThatIsNoneIsNotRepeated()
    {
        const QStringList command =
            arguments("fetch https://elsewhere.example/f --proxy ftp://me:hidden@h:1");
        const QByteArray rest =
            " is no proxy: there are http://HOST:PORT, socks5://HOST:PORT and socks5h://HOST:PORT, "
            "with USER:PASSWORD@ before the host if need be\n";
        QCOMPARE(vospeak(command).err, "vospeak: the value of --proxy" + rest);
        qputenv("ALL_PROXY", "ftp://me:hidden@h:1");
        const Outcome outcome = vospeak(command.mid(0, 2));
        QCOMPARE(outcome.err, "vospeak: the value of ALL_PROXY" + rest);
        QCOMPARE(outcome.status, 2);
    }

    void aVariableThatIsNotNeededMayBeNonsense()
    {
        qputenv("http_proxy", "nonsense");
        qputenv("https_proxy", proxy().toLatin1());
        verifyFetchedThroughProxy(fetch(true), true);
        qputenv("https_proxy", "nonsense");
        QCOMPARE(vospeak(arguments("logout")).status, 0);
        qunsetenv("https_proxy");
        const Outcome outcome = fetch(false);
        QVERIFY2(isOneLine(outcome.err) && outcome.err.contains("the value of http_proxy"),
                 outcome.err.constData());
        QCOMPARE(outcome.status, 2);
    }

    void uploadsAndTheAudioOfATaskPassTheProxyAndThisMachineDoesNot()
    {
        qputenv("https_proxy", proxy().toLatin1());
        const QString address = serverAddress(true);
        TestFolder::write(QStringLiteral("speech.wav"), "RIFF");
        m_service.answer(Answers::credentials(address));
        m_service.answer(Answers::one("text", "heard"));
        m_tlsServer.answer(Answers::envelope());
        QCOMPARE(run(arguments("recognize speech.wav --token 1")).out, QByteArray("heard\n"));
        QVERIFY(m_tlsServer.requests().value(0).startsWith("PUT /f/speech/"));

        m_service.reset();
        m_service.answer(Answers::task());
        m_service.answer(Answers::finishedSpeech(address));
        m_tlsServer.reset();
        m_tlsServer.answer(ScriptedServer::reply("OggS1234"));
        QCOMPARE(run(arguments("say hello --token 1 --long -o file")).err, QByteArray());
        QCOMPARE(TestFolder::contents(file), QByteArray("OggS1234"));
        TRY_COMPARE(newLog().filter(QStringLiteral("200 CONNECT elsewhere.example:")).size(), 2);
        QCOMPARE(newLog().filter(QStringLiteral("localhost")), QStringList());
    }

private:
    QString proxy(const QString &scheme = QStringLiteral("http"),
                  const QString &credentials = QStringLiteral("reader:secret@")) const
    {
        return m_squid.address().replace(QStringLiteral("http://"),
                                         QStringLiteral("%1://%2").arg(scheme, credentials));
    }

    QString serverAddress(bool tls) const
    {
        return (tls ? m_tlsServer : m_server)
            .address(QStringLiteral("/f"))
            .replace(QStringLiteral("localhost"), QStringLiteral("elsewhere.example"));
    }

    static Outcome run(const QStringList &command)
    {
        return vospeak(command
                       + QStringList{QStringLiteral("--ca"), QStringLiteral(TEST_AUTHORITY)});
    }

    Outcome fetch(bool tls, const QStringList &further = {})
    {
        (tls ? m_tlsServer : m_server).answer(ScriptedServer::reply("abcdefghij"));
        return run(
            QStringList{QStringLiteral("fetch"), serverAddress(tls), QStringLiteral("-o"), file}
            + further);
    }

    void verifyFetchedThroughProxy(const Outcome &outcome, bool tls)
    {
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(outcome.status, 0);
        QCOMPARE(TestFolder::contents(file), QByteArray("abcdefghij"));
        const QString method = tls ? QStringLiteral("200 CONNECT ") : QStringLiteral("200 GET ");
        TRY_VERIFY(!newLog().filter(method).isEmpty());
    }

    void verifyFailure(const Outcome &outcome, bool tls, const QByteArray &problem)
    {
        QCOMPARE(outcome.err, "vospeak: \"" + serverAddress(tls).toLatin1()
                                  + "\" could not be downloaded: " + problem + '\n');
        QCOMPARE(outcome.status, 3);
        QCOMPARE((tls ? m_tlsServer : m_server).requests(), QList<QByteArray>());
    }

    QStringList newLog() const { return m_squid.log().mid(m_logged); }

    SquidServer m_squid;
    ScriptedServer m_service{Identity::Localhost};
    ScriptedServer m_server;
    ScriptedServer m_tlsServer{Identity::Elsewhere};
    int m_logged = 0; // lines in the proxy's log before this test
    const TestFolder m_folder;
    const Home m_home;
};

QTEST_GUILESS_MAIN(TestProxies)
#include "tst_proxies.moc"
