#include "tests/support/testfolder.h"
#include "tests/system/home.h"
#include "tests/system/localservice.h"
#include "tests/system/program.h"
#include "tests/system/serviceclient.h"
#include "tests/system/words.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QUrl>
#include <QtEndian>
#include <QtTest>

namespace {

QString sentence() { return QStringLiteral("Go forward ten meters."); }

// The sampling rate stands at a fixed place in the head of a WAV file.
int rateOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray head = file.read(28);
    return head.size() == 28 && head.startsWith("RIFF") && head.mid(8, 4) == "WAVE"
               ? int(qFromLittleEndian<quint32>(head.constData() + 24))
               : 0;
}

} // namespace

/// What is spoken and then recognised is what was to be said.
class TestSpeech : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_service.start()); }

    void aSentenceComesBack_data()
    {
        QTest::addColumn<QStringList>("speaking");
        QTest::addColumn<QStringList>("recognizing");
        const QStringList plain;
        const QStringList asTask = arguments("--long");
        QTest::newRow("short and short") << plain << plain;
        QTest::newRow("short and long") << plain << asTask;
        QTest::newRow("long and short") << asTask << plain;
        QTest::newRow("long and long") << asTask << asTask;
        QTest::newRow("voice kal16") << arguments("--voice kal16") << plain;
        for (const int rate : {8000, 11025, 16000, 22050, 44100})
            QTest::addRow("%d Hz", rate)
                << QStringList{QStringLiteral("--rate"), QString::number(rate)} << plain;
    }
    void aSentenceComesBack()
    {
        QFETCH(const QStringList, speaking);
        QFETCH(const QStringList, recognizing);
        const Outcome said = vospeak(say() + m_service.access() + speaking);
        QCOMPARE(said.status, 0);
        QCOMPARE(said.out, QByteArray());
        QCOMPARE(said.err, QByteArray());
        const Outcome heard = vospeak(recognize() + m_service.access() + recognizing);
        QCOMPARE(heard.status, 0);
        QCOMPARE(words(QString::fromUtf8(heard.out)), words(sentence()));
        QCOMPARE(heard.err, QByteArray());
    }

    void aSentenceIsSpokenWithoutSigningIn()
    {
        const Outcome said = vospeak(say()
                                     + QStringList{QStringLiteral("--anonymous"),
                                                   QStringLiteral("--ca"), m_service.authority()});
        QCOMPARE(said.status, 0);
        const Outcome heard = vospeak(recognize() + m_service.access());
        QCOMPARE(words(QString::fromUtf8(heard.out)), words(sentence()));
    }

    void theDefaultsAreThoseOfTheHelp()
    {
        const QString help = QString::fromUtf8(vospeak(arguments("help say")).out).simplified();
        static const QRegularExpression defaults(QStringLiteral(
            "--voice VOICE see vospeak voices; (\\w+) by default.* per second; (\\d+) by default"));
        const QRegularExpressionMatch told = defaults.match(help);
        QVERIFY2(told.hasMatch(), qPrintable(help));
        QCOMPARE(vospeak(say() + m_service.access()).status, 0);
        const QByteArray unasked = TestFolder::contents(m_audio);
        QCOMPARE(vospeak(say() + m_service.access()
                         + QStringList{QStringLiteral("--voice"), told.captured(1),
                                       QStringLiteral("--rate"), told.captured(2)})
                     .status,
                 0);
        QVERIFY(TestFolder::contents(m_audio) == unasked); // too long to print
    }

    void everyVoiceSpeaks_data()
    {
        QTest::addColumn<QString>("voice");
        for (const char *voice : {"rms", "kal16", "slt", "awb"})
            QTest::newRow(voice) << QString::fromLatin1(voice);
    }
    void everyVoiceSpeaks()
    {
        QFETCH(const QString, voice);
        QCOMPARE(vospeak(say() + m_service.access() + QStringList{QStringLiteral("--voice"), voice})
                     .status,
                 0);
        QCOMPARE(rateOf(m_audio), 16000);
    }

    void theAudioHasTheRateAskedFor_data()
    {
        QTest::addColumn<int>("rate");
        QTest::addColumn<bool>("isLong");
        for (const int rate : {8000, 16000, 22050, 44100, 48000}) {
            QTest::addRow("short, %d Hz", rate) << rate << false;
            QTest::addRow("long, %d Hz", rate) << rate << true;
        }
    }
    void theAudioHasTheRateAskedFor()
    {
        QFETCH(const int, rate);
        QFETCH(const bool, isLong);
        QStringList arguments = say() + m_service.access()
                                + QStringList{QStringLiteral("--rate"), QString::number(rate)};
        if (isLong)
            arguments.append(QStringLiteral("--long"));
        QCOMPARE(vospeak(arguments).status, 0);
        QCOMPARE(rateOf(m_audio), rate);
    }

    void standardOutputHoldsTheTextAndOneNewline_data()
    {
        QTest::addColumn<QStringList>("further");
        QTest::newRow("short") << QStringList();
        QTest::newRow("long") << arguments("--long");
        QTest::newRow("verbose") << arguments("--verbose");
    }
    void standardOutputHoldsTheTextAndOneNewline()
    {
        QFETCH(const QStringList, further);
        QCOMPARE(vospeak(say() + m_service.access()).status, 0);
        const QByteArray out = vospeak(recognize() + m_service.access() + further).out;
        QCOMPARE(out.count('\n'), 1);
        QVERIFY(out.endsWith('\n'));
        QCOMPARE(words(QString::fromUtf8(out)), words(sentence()));
    }

    void aRecordingThatTheServiceHasAlreadyIsRecognisedByItsAddress_data()
    {
        QTest::addColumn<QString>("scheme");
        QTest::newRow("small") << QStringLiteral("https");
        QTest::newRow("capital") << QStringLiteral("HTTPS");
    }
    void aRecordingThatTheServiceHasAlreadyIsRecognisedByItsAddress()
    {
        QFETCH(const QString, scheme);
        QCOMPARE(vospeak(say() + m_service.access()).status, 0);
        QFile file(m_audio);
        QVERIFY(file.open(QIODevice::ReadOnly));
        ServiceClient client(m_service.authority());
        const QJsonObject credentials = client.credentials();
        const auto uploaded = client.put(
            QStringLiteral("%1/speech/%2/a.wav")
                .arg(credentials.value(QLatin1String("endpoint")).toString(),
                     credentials.value(QLatin1String("dir")).toString()),
            file.readAll(), credentials.value(QLatin1String("SecurityToken")).toString());
        const QString address = uploaded.data().value(QLatin1String("address")).toString();
        const QString recording = scheme + address.mid(address.indexOf(QLatin1Char(':')));
        const Outcome heard =
            vospeak(QStringList{QStringLiteral("recognize"), recording} + m_service.access());
        QCOMPARE(words(QString::fromUtf8(heard.out)), words(sentence()));
    }

    void anOlderFileIsReplaced_data()
    {
        QTest::addColumn<QStringList>("further");
        QTest::newRow("short") << QStringList();
        QTest::newRow("long") << arguments("--long");
    }
    void anOlderFileIsReplaced()
    {
        QFETCH(const QStringList, further);
        QFile older(m_audio);
        QVERIFY(older.open(QIODevice::WriteOnly));
        older.write("older");
        older.close();
        QCOMPARE(vospeak(say() + m_service.access() + further).status, 0);
        QCOMPARE(rateOf(m_audio), 16000);
        QCOMPARE(
            QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList{QStringLiteral("audio.wav")});
    }

private:
    QStringList say() const
    {
        return {QStringLiteral("say"), sentence(), QStringLiteral("-o"), m_audio};
    }
    QStringList recognize() const { return {QStringLiteral("recognize"), m_audio}; }

    LocalService m_service;
    const QTemporaryDir m_folder;
    const Home m_home;
    const QString m_audio = m_folder.filePath(QStringLiteral("audio.wav"));
};

QTEST_GUILESS_MAIN(TestSpeech)
#include "tst_speech.moc"
