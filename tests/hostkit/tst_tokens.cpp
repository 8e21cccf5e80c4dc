#include "hostkit/failurereasons.h"
#include "hostkit/hostkit.h"
#include "hostkit/sessionfile.h"
#include "hostkit/speakjob.h"
#include "hostkit/tokenkeeper.h"
#include "tests/hostkit/jobkinds.h"
#include "tests/hostkit/jobwatch.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/trust.h"
#include "tests/system/answers.h"
#include "tests/system/home.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

namespace {

QByteArray renewal(int token)
{
    return Answers::envelope(
        {{QStringLiteral("token"), token},
         {QStringLiteral("expire_time"), QDateTime::currentDateTime().addSecs(3600).toString(
                                             QStringLiteral("yyyy-MM-dd hh:mm:ss"))}});
}

QByteArray audio() { return Answers::one("audio", "c291bmQ="); }

} // namespace

/// When a token is renewed.
class TestTokens : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_reasons.emplace();
        m_home.emplace();
        m_server.emplace(Identity::Localhost);
        QVERIFY(m_server->start(SERVICE_PORT));
        m_kit.emplace(QStringLiteral("test"));
    }
    void cleanup()
    {
        m_kit.reset();
        m_server.reset();
        m_home.reset();
        m_reasons.reset();
    }

    void allWhoWaitHaveOneRenewal()
    {
        signIn(30); // less than what is left for a request
        m_server->answer(renewal(18));
        m_server->answer(audio());
        std::vector<std::unique_ptr<SpeakJob>> jobs;
        std::vector<std::unique_ptr<JobWatch>> watches;
        for (int i = 0; i < 5; ++i) {
            jobs.push_back(makeJob());
            watches.push_back(std::make_unique<JobWatch>(jobs.back().get()));
            jobs.back()->start();
        }
        for (const auto &watch : watches) {
            TRY_VERIFY(watch->ends() > 0);
            QCOMPARE(watch->reason().line(), QString());
        }
        QCOMPARE(asked("token/refresh?refresh_token=19"), 1);
        QCOMPARE(asked("Bearer 18"), 5);
        QCOMPARE(SessionFile::load().token, 18);
    }

    void aTokenThatIsRefusedIsRenewedOnce_data()
    {
        QTest::addColumn<QList<QByteArray>>("answers");
        QTest::addColumn<QString>("reason");
        const QByteArray refusal = Answers::refusal(Reason::unauthorized, "not valid");
        QTest::newRow("renewed") << QList<QByteArray>{refusal, renewal(18), audio()} << QString();
        QTest::newRow("refused again") << QList<QByteArray>{refusal, renewal(18), refusal}
                                       << QStringLiteral("the service refused: not valid");
        QTest::newRow("not renewed")
            << QList<QByteArray>{refusal, refusal}
            << QStringLiteral("the session could not be renewed; sign in again");
    }
    void aTokenThatIsRefusedIsRenewedOnce()
    {
        QFETCH(const QList<QByteArray>, answers);
        QFETCH(const QString, reason);
        signIn();
        for (const QByteArray &answer : answers)
            m_server->answer(answer);
        const auto job = makeJob();
        JobWatch watch(job.get());
        job->start();
        TRY_VERIFY(watch.ends() > 0);
        QCOMPARE(watch.reason().text, reason);
        QCOMPARE(m_server->requests().size(), answers.size());
    }

    void aTokenThatTheHostNamesIsNotRenewed()
    {
        m_kit->tokens()->setToken(5);
        m_server->answer(Answers::refusal(Reason::unauthorized, "not valid"));
        const auto job = makeJob();
        JobWatch watch(job.get());
        job->start();
        TRY_VERIFY(watch.ends() > 0);
        QCOMPARE(watch.reason().text, QStringLiteral("the service refused: not valid"));
        QCOMPARE(m_server->requests().size(), 1);
    }

    void aTokenThatAnotherHostHasRenewedIsUsed()
    {
        signIn(30);
        TokenKeeper *tokens = m_kit->tokens();
        QCOMPARE(tokens->session().token, 17);
        Session renewed = tokens->session();
        renewed.token = 99;
        renewed.tokenExpiry = renewed.tokenExpiry.addSecs(3600);
        QCOMPARE(SessionFile::save(renewed), QString());
        qint64 given = 0;
        tokens->give(
            this, [&](qint64 token) { given = token; }, [](const Reason &) {});
        QCOMPARE(given, 99);
    }

    void whoHasGoneIsNotGivenAToken()
    {
        signIn(30);
        m_server->answer(renewal(18));
        const auto none = [](const Reason &) { QFAIL("refused"); };
        auto context = std::make_unique<QObject>();
        qint64 given = 0;
        m_kit->tokens()->give(
            context.get(), [](qint64) { QFAIL("given"); }, none);
        m_kit->tokens()->give(
            this, [&](qint64 token) { given = token; }, none);
        context.reset();
        TRY_COMPARE(given, 18);
    }

    void nobodyIsSignedInOnceTheSessionIsRemoved()
    {
        signIn();
        QVERIFY(m_kit->tokens()->problem().isNone());
        QSignalSpy changes(m_kit->tokens(), &TokenKeeper::changed);
        QVERIFY(m_kit->tokens()->signOut());
        QCOMPARE(changes.count(), 1);
        QCOMPARE(m_kit->tokens()->problem().kind, Reason::Kind::SignIn);
        QVERIFY(!QFile::exists(SessionFile::path()));
    }

private:
    std::unique_ptr<SpeakJob> makeJob()
    {
        Speech speech;
        speech.text = QStringLiteral("hello");
        return std::make_unique<SpeakJob>(&*m_kit, speech,
                                          m_folder.filePath(QStringLiteral("out.wav")));
    }

    // How many requests have had @p part in them.
    int asked(const QByteArray &part) const
    {
        const QList<QByteArray> requests = m_server->requests();
        return int(std::count_if(requests.begin(), requests.end(), [&](const QByteArray &request) {
            return request.contains(part);
        }));
    }

    const TrustTestAuthority m_trust;
    const QTemporaryDir m_folder;
    std::optional<FailureReasons> m_reasons;
    std::optional<Home> m_home;
    std::optional<ScriptedServer> m_server;
    std::optional<HostKit> m_kit;
};

QTEST_GUILESS_MAIN(TestTokens)
#include "tst_tokens.moc"
