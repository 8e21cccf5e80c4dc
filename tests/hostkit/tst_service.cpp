#include "hostkit/cataloguejobs.h"
#include "hostkit/failurereasons.h"
#include "hostkit/fetchjob.h"
#include "hostkit/hostkit.h"
#include "hostkit/recognizejob.h"
#include "hostkit/sessionfile.h"
#include "hostkit/signinjobs.h"
#include "hostkit/speakjob.h"
#include "hostkit/stockpictures.h"
#include "hostkit/tokenkeeper.h"
#include "hostkit/trust.h"
#include "hostkit/wavfile.h"
#include "tests/hostkit/jobwatch.h"
#include "tests/support/patience.h"
#include "tests/system/home.h"
#include "tests/system/localservice.h"
#include "tests/system/signinsteps.h"
#include "tests/system/words.h"

#include <QLoggingCategory>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <optional>

namespace {

using Form = Job::Form;

QString sentence() { return QStringLiteral("Go forward ten meters."); }

} // namespace

Q_DECLARE_METATYPE(Job::Form)

/// The jobs with the local service.
class TestService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        QVERIFY(m_service.start());
        QCOMPARE(Trust::add(m_service.authority()), QString());
        m_reasons.emplace();
        m_kit.emplace(QStringLiteral("test"));
        m_steps.emplace(&m_service);
    }
    void cleanupTestCase() { m_kit.reset(); }
    void init() { m_kit->tokens()->setToken(LocalService::token()); }

    void aSentenceComesBack_data()
    {
        QTest::addColumn<Form>("speaking");
        QTest::addColumn<Form>("recognizing");
        QTest::newRow("by length") << Form::ByLength << Form::ByLength;
        QTest::newRow("as tasks") << Form::Long << Form::Long;
    }
    void aSentenceComesBack()
    {
        QFETCH(const Form, speaking);
        QFETCH(const Form, recognizing);
        speak(sentence(), speaking);
        RecognizeJob job(&*m_kit, audio(), recognizing);
        const QList<QVariant> result = resultOf(&job);
        QCOMPARE(words(result.value(0).toString()), words(sentence()));
        QCOMPARE(job.task().isEmpty(), recognizing != Form::Long);
    }

    void aTextThatIsTooLongForOneAnswerIsATask()
    {
        SpeakJob job(&*m_kit, speech(QStringLiteral("go ").repeated(334)), audio());
        QSignalSpy names(&job, &TaskJob::named);
        resultOf(&job);
        QCOMPARE(names.count(), 1);
        QVERIFY(WavFile::duration(audio()) > 60);
    }

    void aTaskIsLeftAndTakenUpAgain()
    {
        QString task;
        {
            Speech long_ = speech(sentence());
            long_.form = Form::Long;
            SpeakJob job(&*m_kit, long_, audio());
            JobWatch watch(&job);
            connect(&job, &TaskJob::named, &job, [&](const QString &id) {
                task = id;
                job.cancel();
            });
            job.start();
            TRY_VERIFY(watch.ends() > 0);
            QCOMPARE(watch.reason().kind, Reason::Kind::Cancelled);
        }
        QVERIFY(!task.isEmpty());
        QFile::remove(audio());
        SpeakJob again(&*m_kit, {}, audio());
        again.takeUp(task);
        resultOf(&again);
        QVERIFY(WavFile::duration(audio()) > 0.5);
    }

    void aTaskThatIsNotThereIsRefused()
    {
        SpeakJob job(&*m_kit, {}, audio());
        job.takeUp(QStringLiteral("nothing"));
        JobWatch watch(&job);
        job.start();
        TRY_VERIFY(watch.ends() > 0);
        QCOMPARE(watch.reason().line(),
                 QStringLiteral("the service refused: there is no such task, or no longer"));
    }

    void everyVoiceHasAPictureAndASample()
    {
        VoicesJob job(&*m_kit);
        const auto voices = resultOf(&job).value(0).value<QVector<DubInfo>>();
        QVERIFY(voices.size() >= 4);
        for (const DubInfo &voice : voices)
            QVERIFY(QFile::exists(StockPictures::path(voice.avatar)));
        FetchJob sample(voices.first().audition_url, audio());
        resultOf(&sample);
        QVERIFY(WavFile::duration(audio()) > 0.5);
    }

    void thereIsMusicAndAnUpdate()
    {
        MusicJob music(&*m_kit);
        QVERIFY(!resultOf(&music).value(0).value<QVector<BgmInfo>>().isEmpty());
        UpdateJob update(&*m_kit);
        QVERIFY(!resultOf(&update).value(0).value<Update>().currentVersion.isEmpty());
    }

    void whoSignsInByACodeCanHaveTheTokenRenewed()
    {
        SmsSignInJob job(&*m_kit, QStringLiteral("12345678"));
        connect(&job, &SmsSignInJob::codeSent, &job,
                [&] { job.enter(m_steps->takeCode(QStringLiteral("12345678"))); });
        resultOf(&job);
        HostKit other(QStringLiteral("test"));
        const qint64 before = other.tokens()->session().token;
        QVERIFY(before > 0);
        RenewJob renewal(&other);
        resultOf(&renewal);
        QVERIFY(other.tokens()->session().token != before);
    }

    void theExamplesDoWhatTheySay()
    {
        speak(sentence(), Form::Short);
        QProcess recognizing;
        recognizing.start(QStringLiteral(RECOGNIZE_HOST),
                          {m_service.authority(), audio(), QString::number(LocalService::token())});
        QVERIFY(recognizing.waitForFinished(patienceMs));
        QCOMPARE(words(QString::fromUtf8(recognizing.readAllStandardOutput())), words(sentence()));

        const QString phone = QStringLiteral("87654321");
        QProcess signingIn;
        signingIn.start(QStringLiteral(SIGNIN_HOST), {m_service.authority(), phone});
        QVERIFY(signingIn.waitForReadyRead(patienceMs));
        signingIn.write(m_steps->takeCode(phone).toUtf8() + '\n');
        QVERIFY(signingIn.waitForFinished(patienceMs));
        QCOMPARE(signingIn.exitCode(), 0);
        QVERIFY(signingIn.readAllStandardOutput().contains("\nsigned in as "));
        QVERIFY(SessionFile::load().isValid());
    }

private:
    QString audio() const { return m_folder.filePath(QStringLiteral("audio.wav")); }

    static Speech speech(const QString &text)
    {
        Speech speech;
        speech.text = text;
        speech.voice = QStringLiteral("rms");
        return speech;
    }

    void speak(const QString &text, Form form)
    {
        Speech said = speech(text);
        said.form = form;
        SpeakJob job(&*m_kit, said, audio());
        resultOf(&job);
        QVERIFY(WavFile::duration(audio()) > 0.5);
    }

    // What @p job, which has not been started, succeeds with.
    static QList<QVariant> resultOf(Job *job)
    {
        JobWatch watch(job);
        job->start();
        (void)QTest::qWaitFor([&] { return watch.ends() > 0; }, patienceMs);
        [&] { QCOMPARE(watch.reason().line(), QString()); }();
        return watch.successes.value(0);
    }

    const Home m_home;
    const QTemporaryDir m_folder;
    LocalService m_service;
    std::optional<FailureReasons> m_reasons;
    std::optional<HostKit> m_kit;
    std::optional<SignInSteps> m_steps;
};

QTEST_GUILESS_MAIN(TestService)
#include "tst_service.moc"
