#include "tests/support/testfolder.h"
#include "tests/system/home.h"
#include "tests/system/localservice.h"
#include "tests/system/program.h"
#include "tests/system/smalldisk.h"
#include "tests/system/terminal.h"
#include "tests/system/words.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <csignal>
#include <sndfile.hh>
#include <sys/resource.h>
#include <vector>

namespace {

constexpr int headSize = 44; // bytes before the samples of a plain WAV file

QString sentence() { return QStringLiteral("Go forward ten meters."); }

QByteArray samplesOf(const QByteArray &wav) { return wav.mid(headSize); }

/// Writes the samples of one channel at 16 kHz as a file of another format, with each sample twice
/// in each of two channels, at twice the rate.
void writeTwice(const QByteArray &samples, int format, const char *path)
{
    std::vector<float> values;
    for (int i = 0; i + 1 < samples.size(); i += 2)
        values.insert(values.end(), 4,
                      float(qFromLittleEndian<qint16>(samples.constData() + i)) / 32768);
    SndfileHandle file(path, SFM_WRITE, format, 2, 32000);
    const auto count = sf_count_t(values.size());
    QCOMPARE(file.write(values.data(), count), count);
}

void writeSilence(int seconds, const char *path)
{
    constexpr int rate = 44100;
    const std::vector<short> second(rate);
    SndfileHandle file(path, SFM_WRITE, SF_FORMAT_AU | SF_FORMAT_PCM_S8, 1, rate);
    for (int i = 0; i < seconds; ++i)
        QCOMPARE(file.write(second.data(), rate), sf_count_t(rate));
}

/// The most memory, in bytes, that any program took which this process has started and which has
/// ended.
qint64 mostMemoryOfPrograms()
{
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return qint64(usage.ru_maxrss) * 1024;
}

} // namespace

/// Where texts come from, where audio goes, and what is recognised.
class TestSound : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_service.start());
        QVERIFY(QDir::setCurrent(m_folder.path()));
        QVERIFY(QDir().mkdir(QStringLiteral("bin")));
        m_path = qgetenv("PATH");
        QCOMPARE(say({sentence(), QStringLiteral("-o"), QStringLiteral("plain.wav")}).status, 0);
        m_plain = TestFolder::contents(QStringLiteral("plain.wav"));
        QVERIFY(m_plain.startsWith("RIFF"));
        TestFolder::write(QStringLiteral("text"), sentence().toUtf8() + '\n');
    }

    void init()
    {
        qputenv("PATH", QFile::encodeName(QDir::current().filePath(QStringLiteral("bin"))));
    }

    void cleanup()
    {
        qputenv("PATH", m_path);
        for (const char *name : {"paplay", "aplay", "play", "arecord", "parecord"})
            QFile::remove(QStringLiteral("bin/") + QLatin1String(name));
        for (const char *name : {"made.wav", "played", "made.pcm"})
            QFile::remove(QLatin1String(name));
    }

    void theTextComesFromAFile()
    {
        QCOMPARE(say(arguments("-f text -o made.wav")).status, 0);
        QVERIFY(TestFolder::contents(QStringLiteral("made.wav")) == m_plain); // too long to print
    }

    void theTextComesFromStandardInput_data()
    {
        QTest::addColumn<QStringList>("command");
        for (const char *command : {"-o made.wav", "- -o made.wav", "-f - -o made.wav"})
            QTest::newRow(command) << arguments(command);
    }
    void theTextComesFromStandardInput()
    {
        QFETCH(const QStringList, command);
        Program program(arguments("say") + command + m_service.access());
        program.type(sentence().toUtf8() + '\n');
        program.endInput();
        QCOMPARE(program.outcome().status, 0);
        QVERIFY(TestFolder::contents(QStringLiteral("made.wav")) == m_plain);
    }

    void nothingOnStandardInputIsWrongUse()
    {
        Program program(arguments("say -o made.wav") + m_service.access());
        program.endInput();
        const Outcome outcome = program.outcome();
        QCOMPARE(outcome.err, QByteArray("vospeak: there is nothing to say in the text\n"));
        QCOMPARE(outcome.status, 2);
    }

    void theAudioGoesToStandardOutput()
    {
        const Outcome outcome = say({sentence(), QStringLiteral("-o"), QStringLiteral("-")});
        QCOMPARE(outcome.status, 0);
        QVERIFY(outcome.out == m_plain);
    }

    void samplesCanComeWithoutTheirHead()
    {
        const Outcome outcome =
            say(QStringList{sentence()} + arguments("-o made.pcm --format pcm"));
        QCOMPARE(outcome.status, 0);
        QVERIFY(TestFolder::contents(QStringLiteral("made.pcm")) == samplesOf(m_plain));
    }

    void speedPitchAndVolumeChangeWhatIsHeard_data()
    {
        QTest::addColumn<QStringList>("options");
        for (const char *options : {"--speed -300", "--speed 300", "--volume 10", "--pitch 300"})
            QTest::newRow(options) << arguments(options);
    }
    void speedPitchAndVolumeChangeWhatIsHeard()
    {
        QFETCH(const QStringList, options);
        QCOMPARE(say(QStringList{sentence()} + arguments("-o made.wav") + options).status, 0);
        QVERIFY(TestFolder::contents(QStringLiteral("made.wav")) != m_plain);
    }

    void aLongTextIsATaskByItself()
    {
        TestFolder::write(QStringLiteral("long"), "hi. " + QByteArray(1000, '.'));
        QCOMPARE(say(arguments("-f long -o made.wav")).status, 0);
        QVERIFY(m_service.log().contains("longVoiceSynthesis"));
    }

    void theFirstPlayerFoundPlays_data()
    {
        QTest::addColumn<QStringList>("players");
        QTest::addColumn<QByteArray>("played");
        QTest::newRow("all") << arguments("paplay aplay play") << QByteArray("paplay");
        QTest::newRow("aplay and play") << arguments("aplay play") << QByteArray("aplay -q");
        QTest::newRow("play") << arguments("play") << QByteArray("play -q");
    }
    void theFirstPlayerFoundPlays()
    {
        QFETCH(const QStringList, players);
        QFETCH(const QByteArray, played);
        for (const QString &player : players)
            script(player, R"(for last; do :; done; { echo "${0##*/} $*"; cat "$last"; } >played)");
        QCOMPARE(say({sentence(), QStringLiteral("--play")}).status, 0);
        const QByteArray what = TestFolder::contents(QStringLiteral("played"));
        QVERIFY2(what.startsWith(played + " /"), what.left(200).constData());
        QVERIFY(what.endsWith(m_plain));
        QVERIFY(!QFile::exists(QStringLiteral("made.wav")));
    }

    void whatIsPlayedCanBeKept()
    {
        script(QStringLiteral("aplay"), "exit 0");
        QCOMPARE(say(QStringList{sentence()} + arguments("--play -o made.wav")).status, 0);
        QVERIFY(TestFolder::contents(QStringLiteral("made.wav")) == m_plain);
    }

    void aPlayerThatFailsIsAFailure()
    {
        script(QStringLiteral("aplay"), "exit 3");
        const Outcome outcome = say({sentence(), QStringLiteral("--play")});
        QCOMPARE(outcome.err, QByteArray("vospeak: aplay could not play the audio\n"));
        QCOMPARE(outcome.status, 1);
        QCOMPARE(say({sentence(), QStringLiteral("--play"), QStringLiteral("--json")}).err,
                 QByteArray(R"({"error":{"kind":"file","message":"aplay could not play the audio",)"
                            R"("status":1}})"
                            "\n"));
    }

    void withoutAPlayerTheServiceIsNotAsked()
    {
        const Outcome outcome = say({sentence(), QStringLiteral("--play")});
        QCOMPARE(outcome.err, QByteArray("vospeak: nothing here plays sound; install one of paplay "
                                         "(pulseaudio-utils), aplay (alsa-utils), play (sox)\n"));
        QCOMPARE(outcome.status, 2);
    }

    void theSampleOfAVoiceIsPlayed()
    {
        script(QStringLiteral("aplay"), "cp \"$2\" played");
        const Outcome outcome = vospeak(arguments("voices --play slt") + authority());
        QCOMPARE(outcome.out + outcome.err, QByteArray());
        QCOMPARE(outcome.status, 0);
        QVERIFY(TestFolder::contents(QStringLiteral("played")).startsWith("RIFF"));
        QCOMPARE(vospeak(arguments("voices --play nobody") + authority()).status, 2);
    }

    void onATerminalALineSaysWhatWasMade_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<bool>("isTold");
        QTest::newRow("by itself") << QStringList() << true;
        QTest::newRow("--quiet") << arguments("--quiet") << false;
    }
    void onATerminalALineSaysWhatWasMade()
    {
        QFETCH(const QStringList, options);
        QFETCH(const bool, isTold);
        Terminal terminal;
        Program program(arguments("say hello -o made.wav --rate 22050") + options
                            + m_service.access(),
                        terminal.name());
        QCOMPARE(program.outcome().status, 0);
        const double seconds =
            double(QFileInfo(QStringLiteral("made.wav")).size() - headSize) / 44100;
        const QByteArray line =
            "made.wav, " + QByteArray::number(seconds, 'f', 1) + " s, 22.05 kHz";
        QCOMPARE(Terminal::linesOf(terminal.read()),
                 (isTold ? QByteArrayList{line, QByteArray()} : QByteArrayList{QByteArray()}));
    }

    void severalRecordingsAreRecognisedInTheirOrder()
    {
        QCOMPARE(say(arguments("backward -o made.wav")).status, 0);
        const Outcome outcome =
            vospeak(arguments("recognize plain.wav made.wav plain.wav") + m_service.access());
        QCOMPARE(outcome.status, 0);
        const QByteArrayList lines = outcome.out.split('\n');
        QCOMPARE(lines.size(), 4);
        QVERIFY(lines.at(0).startsWith("plain.wav: "));
        QVERIFY(lines.at(1).startsWith("made.wav: "));
        QCOMPARE(words(QString::fromUtf8(lines.at(0).mid(11))), words(sentence()));
        QCOMPARE(lines.at(2), lines.at(0));
    }

    void severalRecordingsAreAnObjectEach()
    {
        const Outcome outcome =
            vospeak(arguments("recognize plain.wav plain.wav --output json") + m_service.access());
        const QByteArrayList lines = outcome.out.split('\n');
        QCOMPARE(lines.size(), 3);
        const QJsonObject first = QJsonDocument::fromJson(lines.at(0)).object();
        QCOMPARE(first.value(QStringLiteral("file")).toString(), QStringLiteral("plain.wav"));
        QCOMPARE(words(first.value(QStringLiteral("text")).toString()), words(sentence()));
    }

    void aRecordingComesFromStandardInput()
    {
        Program program(arguments("recognize -") + m_service.access());
        program.type(m_plain);
        program.endInput();
        const Outcome outcome = program.outcome();
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(words(QString::fromUtf8(outcome.out)), words(sentence()));
    }

    void aRecordingOfAnotherFormatIsConverted_data()
    {
        QTest::addColumn<int>("format");
        QTest::newRow("AU") << (SF_FORMAT_AU | SF_FORMAT_PCM_16);
        QTest::newRow("FLAC") << (SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
        QTest::newRow("Ogg") << (SF_FORMAT_OGG | SF_FORMAT_VORBIS);
        QTest::newRow("MP3") << (SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III);
        QTest::newRow("WAV of floats") << (SF_FORMAT_WAV | SF_FORMAT_FLOAT);
    }
    void aRecordingOfAnotherFormatIsConverted()
    {
        QFETCH(const int, format);
        writeTwice(samplesOf(m_plain), format, "other");
        const Outcome outcome = vospeak(arguments("recognize other") + m_service.access());
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(words(QString::fromUtf8(outcome.out)), words(sentence()));
    }

    void theLengthOfARecordingThatIsConvertedTakesNoMemory()
    {
#ifdef __SANITIZE_ADDRESS__
        QSKIP("the sanitiser keeps what was freed", );
#endif
        constexpr qint64 most = 100000000; // bytes
        QVERIFY(mostMemoryOfPrograms() < most);
        writeSilence(600, "long"); // 100 MB as numbers
        const Outcome outcome =
            vospeak(arguments("recognize long --token 1 --ca") << m_service.authority());
        QCOMPARE(outcome.status, 5); // the service does not know the token
        QVERIFY2(mostMemoryOfPrograms() < most,
                 QByteArray::number(mostMemoryOfPrograms()).constData());
    }

    void aRecordingThatFindsNoRoomWhenItIsConvertedIsAFailure()
    {
        const TestFolder temporary;
        const SmallDisk disk(temporary.path());
        if (!disk.isThere())
            QSKIP("this user may not mount anything", );
        writeSilence(10, "long");
        disk.fill(4096);
        qputenv("TMPDIR", QFile::encodeName(temporary.path()));
        const Outcome outcome = vospeak(arguments("recognize long") + m_service.access());
        qunsetenv("TMPDIR");
        QCOMPARE(outcome.err,
                 QByteArray("vospeak: the converted recording could not be written\n"));
        QCOMPARE(outcome.status, 1);
    }

    void whatTheMicrophoneHearsIsRecognised_data()
    {
        QTest::addColumn<QString>("recorder");
        for (const char *recorder : {"arecord", "parecord"})
            QTest::newRow(recorder) << QString::fromLatin1(recorder);
    }
    void whatTheMicrophoneHearsIsRecognised()
    {
        QFETCH(const QString, recorder);
        script(recorder, R"(for last; do :; done; trap 'cp plain.wav "$last"; exit 1' TERM; )"
                         "sleep 60 & wait");
        const Outcome outcome = vospeak(arguments("recognize --record 1") + m_service.access());
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(words(QString::fromUtf8(outcome.out)), words(sentence()));
        QCOMPARE(outcome.status, 0);
    }

    void aMicrophoneThatGivesNothingIsAFailure()
    {
        script(QStringLiteral("arecord"), "exit 1");
        const Outcome outcome = vospeak(arguments("recognize --record 1") + m_service.access());
        QCOMPARE(outcome.err, QByteArray("vospeak: nothing could be recorded\n"));
        QCOMPARE(outcome.status, 1);
    }

private:
    Outcome say(const QStringList &what) const
    {
        return vospeak(arguments("say") + what + m_service.access());
    }

    QStringList authority() const { return {QStringLiteral("--ca"), m_service.authority()}; }

    static void script(const QString &name, const QByteArray &commands)
    {
        const QString path = QStringLiteral("bin/") + name;
        TestFolder::write(path, "#!/bin/sh\nPATH=/bin:/usr/bin\n" + commands + '\n');
        QVERIFY(
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    LocalService m_service;
    const QTemporaryDir m_folder;
    const Home m_home;
    QByteArray m_path;
    QByteArray m_plain;
};

QTEST_GUILESS_MAIN(TestSound)
#include "tst_sound.moc"
