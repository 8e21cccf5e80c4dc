#include "hostkit/hostkit.h"
#include "hostkit/inputfile.h"
#include "hostkit/limits.h"
#include "hostkit/outputfile.h"
#include "hostkit/privatefiles.h"
#include "hostkit/proxies.h"
#include "hostkit/recognizejob.h"
#include "hostkit/speakjob.h"
#include "hostkit/stockpictures.h"
#include "hostkit/wavfile.h"
#include "tests/hostkit/jobkinds.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

namespace {

using Form = Job::Form;
using Kind = Reason::Kind;

/// Translates every text into its context.
class ContextTeller : public QTranslator
{
public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }

    QString translate(const char *context, const char *, const char *, int) const override
    {
        return QLatin1String(context) + QStringLiteral(" %1");
    }
};

} // namespace

Q_DECLARE_METATYPE(Job::Form)
Q_DECLARE_METATYPE(Reason::Kind)

/// What is checked before the service is asked.
class TestLimits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_folder.isValid()); }

    void aTextIsNoLongerThanItMayBe_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<Form>("form");
        QTest::addColumn<bool>("isAnonymous");
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QString>("problem");
        const auto row = [](int characters, Form form, bool isAnonymous, Kind kind,
                            const char *problem) {
            // Each is two UTF-16 units and one character.
            QTest::addRow("%d %d %d", characters, int(form), int(isAnonymous))
                << QString::fromUtf8("\xf0\x9f\x98\x80").repeated(characters) << form << isAnonymous
                << kind << QString::fromLatin1(problem);
        };
        row(0, Form::ByLength, false, Kind::Unusable, "there is nothing to say in the text");
        row(300, Form::ByLength, true, Kind::None, "");
        row(301, Form::ByLength, true, Kind::Unusable,
            "the text is too long without signing in (300 characters)");
        row(1, Form::Long, true, Kind::SignIn, "long texts are spoken for users only; sign in");
        row(1000, Form::Short, false, Kind::None, "");
        row(1001, Form::Short, false, Kind::TooLong,
            "the text is too long for one answer (1000 characters)");
        row(1001, Form::ByLength, false, Kind::None, "");
        row(20000, Form::Long, false, Kind::None, "");
        row(20001, Form::ByLength, false, Kind::Unusable,
            "the text is too long (20000 characters)");
    }
    void aTextIsNoLongerThanItMayBe()
    {
        QFETCH(const QString, text);
        QFETCH(const Form, form);
        QFETCH(const bool, isAnonymous);
        QFETCH(const Kind, kind);
        QFETCH(const QString, problem);
        Speech speech;
        speech.text = text;
        speech.form = form;
        speech.isAnonymous = isAnonymous;
        QCOMPARE(SpeakJob::problem(speech).text, problem);
        QCOMPARE(SpeakJob::problem(speech).kind, kind);
    }

    void aRecordingIsNoLongerThanItMayBe_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<Form>("form");
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QString>("problem");
        QTest::newRow("60 s") << 60.0 << Form::Short << Kind::None << QString();
        QTest::newRow("60.1 s") << 60.1 << Form::Short << Kind::TooLong
                                << QStringLiteral(
                                       "the recording is too long for one answer (60 s)");
        QTest::newRow("60.1 s, by length") << 60.1 << Form::ByLength << Kind::None << QString();
        QTest::newRow("1 h") << 3600.0 << Form::Long << Kind::None << QString();
        QTest::newRow("longer") << 3600.1 << Form::Long << Kind::Unusable
                                << QStringLiteral("the recording is too long (3600 s)");
    }
    void aRecordingIsNoLongerThanItMayBe()
    {
        QFETCH(const double, seconds);
        QFETCH(const Form, form);
        QFETCH(const Kind, kind);
        QFETCH(const QString, problem);
        const QString path = m_folder.filePath(QStringLiteral("r.wav"));
        writeRecording(path, seconds);
        QCOMPARE(WavFile::duration(path), seconds);
        QCOMPARE(RecognizeJob::problem(path, form).text, problem);
        QCOMPARE(RecognizeJob::problem(path, form).kind, kind);
    }

    void aRecordingIsNoLargerThanItMayBe()
    {
        QFile file(m_folder.filePath(QStringLiteral("large")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(Limits::recordingSize));
        QVERIFY(RecognizeJob::problem(file.fileName()).isNone());
        QVERIFY(file.resize(Limits::recordingSize + 1));
        QCOMPARE(RecognizeJob::problem(file.fileName()).text,
                 QStringLiteral("the recording is too large (64 MiB)"));
    }

    void whatIsWrongWithAFileOrAProxyIsTranslated()
    {
        ContextTeller words;
        QCoreApplication::installTranslator(&words);
        const QString folder = m_folder.path();
        const QString device = QStringLiteral("/dev/null");
        const QString nowhere = folder + QStringLiteral("/nowhere");
        QCOMPARE(InputFile::problem(folder), QStringLiteral("InputFile ") + folder);
        QCOMPARE(OutputFile(folder).problem(), QStringLiteral("OutputFile ") + folder);
        QCOMPARE(OutputFile(device).problem(), QStringLiteral("OutputFile ") + device);
        QCOMPARE(OutputFile(nowhere + QStringLiteral("/a")).problem(),
                 QStringLiteral("OutputFile ") + nowhere);
        QCOMPARE(PrivateFiles::claimFolder(device), QStringLiteral("PrivateFiles ") + device);
        QCOMPARE(Proxies::use(QStringLiteral("ftp://h:1"), {}),
                 QStringLiteral("Proxies Proxies %1"));
        QCoreApplication::removeTranslator(&words);
    }

    void everyStockPictureIsThere()
    {
        for (const QString &name : StockPictures::names()) {
            QFile picture(StockPictures::path(name));
            QVERIFY(picture.open(QIODevice::ReadOnly));
            QVERIFY(picture.fileName().endsWith(name));
            QVERIFY(picture.readAll().startsWith("\x89PNG"));
        }
        QCOMPARE(StockPictures::path(QStringLiteral("../etc/passwd")),
                 QStringLiteral(":/hostkit/women_01.png"));
    }

private:
    const QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestLimits)
#include "tst_limits.moc"
