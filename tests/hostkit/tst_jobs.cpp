#include "hostkit/cataloguejobs.h"
#include "hostkit/failurereasons.h"
#include "hostkit/hostkit.h"
#include "hostkit/recognizejob.h"
#include "hostkit/signinjobs.h"
#include "tests/hostkit/jobkinds.h"
#include "tests/hostkit/jobwatch.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/trust.h"
#include "tests/system/answers.h"
#include "tests/system/home.h"

#include <QLoggingCategory>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <optional>

namespace {

using Kind = Reason::Kind;

} // namespace

Q_DECLARE_METATYPE(Reason::Kind)

/// What all kinds of jobs promise.
class TestJobs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // A host that has silenced the library knows the reasons, too.
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        Reason::setHint(Kind::Unreachable, QStringLiteral("; is it running?"));
    }
    void init()
    {
        m_reasons.emplace();
        m_home.emplace();
        m_folder.emplace();
        m_server.emplace(Identity::Localhost);
        QVERIFY(m_server->start(SERVICE_PORT));
        connect(&*m_server, &ScriptedServer::requestReceived, this, &TestJobs::pass);
        m_moments = 0;
        signIn();
        writeRecording(m_folder->filePath(QStringLiteral("recording.wav")));
        m_kit.emplace(QStringLiteral("test"));
    }
    void cleanup()
    {
        m_kit.reset();
        m_server.reset();
        m_folder.reset();
        m_home.reset();
        m_reasons.reset();
    }

    void aJobSucceedsOnce_data() { kinds(); }
    void aJobSucceedsOnce()
    {
        const std::unique_ptr<Job> job = makeJob();
        JobWatch watch(job.get());
        job->start();
        job->start();
        QCOMPARE(watch.ends() + watch.progress.count(), 0);
        TRY_VERIFY(watch.ends() > 0);
        QCOMPARE(watch.reason().line(), QString());
        QCOMPARE(watch.successes.count(), 1);
        QVERIFY(!job->isUnderWay());
        job->cancel();
        everythingIsOver();
        QCOMPARE(watch.ends(), 1);
        QCOMPARE(m_server->requests().size(), kind().answers.size());
    }

    void aServiceThatRefusesEndsAJobWithItsWords_data() { kinds(); }
    void aServiceThatRefusesEndsAJobWithItsWords()
    {
        const std::unique_ptr<Job> job = makeJob();
        m_server->reset();
        const bool fetches = isKind("fetch");
        m_server->answer(fetches ? ScriptedServer::reply("", "403 no \"never\"")
                                 : Answers::refusal(5, "no \"never\""));
        const Reason reason = reasonOf(job.get());
        QCOMPARE(reason.kind, isKind("renewal") ? Kind::SignIn : Kind::Refused);
        if (reason.kind == Kind::Refused)
            QVERIFY2(reason.text.contains(QLatin1String("no \"never\"")), qPrintable(reason.text));
    }

    void aServerThatIsNotTrustedEndsAJob_data() { kinds(); }
    void aServerThatIsNotTrustedEndsAJob()
    {
        m_server.emplace(Identity::Stranger);
        QVERIFY(m_server->start(SERVICE_PORT));
        const std::unique_ptr<Job> job = makeJob();
        QCOMPARE(reasonOf(job.get()).kind, Kind::Tls);
    }

    void nobodyWhoAnswersEndsAJob_data() { kinds(); }
    void nobodyWhoAnswersEndsAJob()
    {
        m_server->close();
        const std::unique_ptr<Job> job = makeJob();
        const Reason reason = reasonOf(job.get());
        if (isKind("fetch"))
            QCOMPARE(reason.kind, Kind::Network);
        else
            QCOMPARE(reason.line(), QLatin1String("cannot reach " SERVICE_BASE_ADDRESS
                                                  ": connection refused; is it running?"));
    }

    void aJobTakesNoLongerThanItMay_data() { kinds(); }
    void aJobTakesNoLongerThanItMay()
    {
        const std::unique_ptr<Job> job = makeJob();
        m_server->reset(); // it answers nothing
        job->setTimeout(150);
        QCOMPARE(reasonOf(job.get()).kind, Kind::TimedOut);
        m_kit.reset(); // others may wait for a renewal, which goes on until then
        everythingIsOver();
    }

    void aJobEndsWhenNothingIsHeard_data() { kinds(); }
    void aJobEndsWhenNothingIsHeard()
    {
        const std::unique_ptr<Job> job = makeJob();
        m_server->reset();
        job->setPatience(150);
        QCOMPARE(reasonOf(job.get()).text, QStringLiteral("nothing was heard for 0.15 s"));
        m_kit.reset();
        everythingIsOver();
    }

    void aUserMayTakeLongerThanTheService()
    {
        constexpr int patience = 300; // ms
        m_server->answer(Answers::envelope());
        SmsSignInJob job(&*m_kit, QStringLiteral("12345"));
        job.setPatience(patience);
        QSignalSpy sent(&job, &SmsSignInJob::codeSent);
        job.start();
        TRY_COMPARE(sent.count(), 1);
        QTest::qWait(2 * patience);
        QVERIFY(job.isUnderWay());
        m_server->reset();
        JobWatch watch(&job);
        job.enter(QStringLiteral("1"));
        TRY_COMPARE(watch.reason().kind, Kind::TimedOut);
    }

    void aJobIsCancelledAtOnce_data() { kinds(); }
    void aJobIsCancelledAtOnce()
    {
        const std::unique_ptr<Job> job = makeJob();
        m_server->reset();
        JobWatch watch(job.get());
        job->start();
        TRY_COMPARE(m_server->requests().size(), 1);
        job->cancel();
        QCOMPARE(watch.reason().kind, Kind::Cancelled);
        m_kit.reset();
        everythingIsOver();
        QCOMPARE(watch.ends(), 1);
    }

    void aJobMayBeDeletedAtAnyMoment_data() { kinds(); }
    void aJobMayBeDeletedAtAnyMoment()
    {
        // The moments are counted: each request that arrives, and each signal. There is a job for
        // each moment.
        do {
            ++m_moments;
            m_server->reset();
            m_left = m_moments;
            m_doomed = makeJob();
            JobWatch watch(m_doomed.get());
            for (const QMetaMethod &signal : watch.ownSignals())
                connect(m_doomed.get(), signal, this, slot("pass()"));
            m_doomed->start();
            TRY_VERIFY(!m_doomed || watch.ends() > 0);
            everythingIsOver();
            QVERIFY(watch.ends() <= 1);
        } while (!m_doomed);
        m_doomed.reset();
        QVERIFY(m_moments > 1);
    }

    void aTaskIsAskedAfterLessAndLessOften()
    {
        const QVector<QByteArray> answers{Answers::task(), Answers::status("RUNNING"),
                                          Answers::status("RUNNING"),
                                          Answers::finishedRecognition()};
        for (const QByteArray &answer : answers)
            m_server->answer(answer);
        QVector<qint64> pauses; // ms before each request
        QElapsedTimer pause;
        pause.start();
        connect(&*m_server, &ScriptedServer::requestReceived, this,
                [&] { pauses.append(pause.restart()); });
        RecognizeJob job(&*m_kit, QStringLiteral("https://a/b.wav"));
        const JobWatch watch(&job);
        job.start();
        TRY_COMPARE(watch.successes.count(), 1);
        disconnect(&*m_server, nullptr, this, nullptr);
        QCOMPARE(pauses.size(), 4);
        QVERIFY2(pauses.at(1) >= 200 && pauses.at(2) >= 300 && pauses.at(3) >= 450,
                 QByteArray::number(pauses.at(3)).constData());
    }

    void aCodeThatNobodyCouldAskAboutHasNotJustExpired_data()
    {
        QTest::addColumn<QByteArray>("answer"); // to the question; null: nobody is there
        QTest::addColumn<Kind>("kind");
        QTest::newRow("not confirmed") << Answers::envelope() << Kind::Expired;
        QTest::newRow("refused") << Answers::refusal(5, "gone") << Kind::Expired;
        QTest::newRow("nobody there") << QByteArray() << Kind::Unreachable;
    }
    void aCodeThatNobodyCouldAskAboutHasNotJustExpired()
    {
        QFETCH(const QByteArray, answer);
        QFETCH(const Kind, kind);
        m_server->answer(signInCode(0));
        m_server->answer(ScriptedServer::reply("picture"));
        m_server->answer(answer);
        CodeSignInJob job(&*m_kit);
        connect(&job, &CodeSignInJob::codeReady, this, [&] {
            if (answer.isNull())
                m_server->close();
        });
        QCOMPARE(reasonOf(&job).kind, kind);
    }

    void requestsAtOnceHaveTheirOwnAnswers()
    {
        m_server->answer(kindNamed("voices").answers.first());
        VoicesJob first(&*m_kit);
        VoicesJob second(&*m_kit);
        JobWatch one(&first);
        JobWatch other(&second);
        first.start();
        second.start();
        TRY_VERIFY(one.ends() + other.ends() == 2);
        for (const JobWatch *watch : {&one, &other}) {
            const auto voices = watch->successes.first().first().value<QVector<DubInfo>>();
            QCOMPARE(voices.size(), 1);
            QCOMPARE(voices.first().name, QStringLiteral("Rose"));
        }
    }

    void pass()
    {
        if (m_doomed && --m_left == 0)
            m_doomed.reset();
    }

private:
    static void kinds()
    {
        QTest::addColumn<int>("index");
        const QVector<JobKind> all = jobKinds();
        for (int i = 0; i < all.size(); ++i)
            QTest::newRow(all.at(i).name) << i;
    }

    static JobKind kind()
    {
        QFETCH(const int, index);
        return jobKinds().at(index);
    }

    static bool isKind(const char *name) { return kind().name == QByteArray(name); }

    static JobKind kindNamed(const char *name)
    {
        const QVector<JobKind> all = jobKinds();
        for (const JobKind &kind : all) {
            if (kind.name == QByteArray(name))
                return kind;
        }
        qFatal("there is no kind %s", name);
    }

    QMetaMethod slot(const char *signature) const
    {
        return metaObject()->method(metaObject()->indexOfSlot(signature));
    }

    // Of the kind of the row; the server's answers are those of a success.
    std::unique_ptr<Job> makeJob()
    {
        const JobKind made = kind();
        for (const QByteArray &answer : made.answers)
            m_server->answer(answer);
        return made.make(&*m_kit, QDir(m_folder->path()));
    }

    // How @p job fails, which has not been started.
    static Reason reasonOf(Job *job)
    {
        JobWatch watch(job);
        job->start();
        [&] { TRY_VERIFY(watch.ends() > 0); }();
        return watch.reason();
    }

    // Waits until nothing is under way but connections that are kept for the next request.
    void everythingIsOver()
    {
        const auto busy = [this] {
            const auto sockets = m_server->findChildren<QSslSocket *>();
            return std::any_of(sockets.begin(), sockets.end(), [](const QSslSocket *socket) {
                return socket->state() == QAbstractSocket::ConnectedState;
            });
        };
        TRY_VERIFY(!busy());
    }

    const TrustTestAuthority m_trust;
    std::optional<FailureReasons> m_reasons;
    std::optional<Home> m_home;
    std::optional<QTemporaryDir> m_folder;
    std::optional<ScriptedServer> m_server;
    std::optional<HostKit> m_kit;
    std::unique_ptr<Job> m_doomed; ///< Is deleted when no moment is left.
    int m_left = 0;
    int m_moments = 0;
};

QTEST_GUILESS_MAIN(TestJobs)
#include "tst_jobs.moc"
