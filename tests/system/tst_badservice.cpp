#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"
#include "tests/system/answers.h"
#include "tests/system/home.h"
#include "tests/system/program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// 8000 samples of 16 bits a second, as somebody who streams them would write. The disk has the head
// only.
void writeRecording(const QString &path, int seconds)
{
    const QByteArray head("RIFF\xff\xff\xff\xffWAVEfmt \x10\0\0\0\1\0\1\0\x40\x1f\0\0"
                          "\x80\x3e\0\0\2\0\x10\0data\xff\xff\xff\xff",
                          44);
    TestFolder::write(path, head);
    QVERIFY(QFile::resize(path, head.size() + qint64(seconds) * 16000));
}

// The head of a WAV file that announces ten times as many bytes as there are.
QByteArray cutShort() { return QByteArray("RIFF\xa0\0\0\0WAVE", 12) + QByteArray(8, ' '); }

} // namespace

Q_DECLARE_METATYPE(QList<QByteArray>)

/// How vospeak ends when the service answers, but not as it should.
class TestBadService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const quint16 port = SERVICE_PORT;
        QVERIFY(m_server.start(port));
        QVERIFY(QDir::setCurrent(m_folder.path()));
    }
    void init()
    {
        m_server.reset();
        QFile speech(QStringLiteral("speech.wav"));
        QVERIFY(speech.open(QIODevice::WriteOnly));
        QVERIFY(speech.write("older") > 0);
    }

    void anAnswerThatCannotBeUsedIsAFailure_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<QList<QByteArray>>("answers");
        QTest::addColumn<int>("status");
        speechRows();
        longSpeechRows();
        recognitionRows();
    }
    void anAnswerThatCannotBeUsedIsAFailure()
    {
        QFETCH(const QStringList, command);
        QFETCH(const QList<QByteArray>, answers);
        QFETCH(const int, status);
        for (const QByteArray &answer : answers)
            m_server.answer(answer);
        const Outcome outcome = run(command);
        QCOMPARE(outcome.status, status);
        QCOMPARE(outcome.out, QByteArray());
        QVERIFY2(isOneLine(outcome.err), outcome.err.constData());
        QCOMPARE(m_server.requests().size(), answers.size());
        onlyTheOlderFileIsThere();
    }

    void anAddressOfTheServicesThatIsNotHttpsIsNotUsed_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<QList<QByteArray>>("answers");
        QTest::addColumn<QByteArray>("problem");
        const QStringList say = arguments("say hello -o speech.wav --token 1 --long");
        const QStringList recognize = arguments("recognize speech.wav --token 1");
        const QByteArray noAudio = "the service sent no usable address of the audio";
        const QByteArray noStorage = "the service sent no usable address for the recording";
        const QString file = QStringLiteral(TEST_AUTHORITY); // any that is there
        for (const QString &address :
             {QLatin1String("file://") + file, QLatin1String("FILE://") + file,
              QLatin1String("File:") + file, QLatin1String(" file://") + file,
              QLatin1String("\t\nfile://") + file, QLatin1String("%20file://") + file, file,
              QLatin1String("//localhost") + file, QStringLiteral("qrc:/a.wav"),
              QStringLiteral("data:audio/wav,OggS1234"), QStringLiteral("ftp://localhost/a.wav"),
              QStringLiteral("http://localhost/a.wav"), QStringLiteral("HTTP://localhost/a.wav"),
              QStringLiteral("https:///a.wav"), QStringLiteral("https:a.wav"),
              QStringLiteral("http:\\\\localhost\\a.wav"), QStringLiteral("a.wav"),
              QStringLiteral(" "), QStringLiteral("")}) {
            QTest::addRow("audio at %s", qPrintable(address))
                << say << QList<QByteArray>{Answers::task(), Answers::finishedSpeech(address)}
                << noAudio;
            QTest::addRow("storage at %s", qPrintable(address))
                << recognize << QList<QByteArray>{Answers::credentials(address)} << noStorage;
        }
    }
    void anAddressOfTheServicesThatIsNotHttpsIsNotUsed()
    {
        QFETCH(const QStringList, command);
        QFETCH(const QList<QByteArray>, answers);
        QFETCH(const QByteArray, problem);
        for (const QByteArray &answer : answers)
            m_server.answer(answer);
        const Outcome outcome = run(command);
        QCOMPARE(outcome.err, "vospeak: " + problem + '\n');
        QCOMPARE(outcome.status, 1);
        QCOMPARE(m_server.requests().size(), answers.size());
        onlyTheOlderFileIsThere();
    }

    void theSchemeOfAnAddressMayBeInCapitals()
    {
        const QString address =
            QStringLiteral("HTTPS") + QStringLiteral(SERVICE_BASE_ADDRESS "/a.wav").mid(5);
        m_server.answer(Answers::task());
        m_server.answer(Answers::finishedSpeech(address));
        m_server.answer(ScriptedServer::reply("OggS1234"));
        const Outcome outcome = run(arguments("say hello -o speech.wav --token 1 --long"));
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(TestFolder::contents(QStringLiteral("speech.wav")), QByteArray("OggS1234"));
    }

    void aShortFileOfAnotherKindIsNotCutShort_data()
    {
        QTest::addColumn<QByteArray>("audio");
        QTest::addColumn<bool>("isCutShort");
        for (const char *audio : {"x", "OggS", "OggS123", "RIFX", "RIx", "riff"})
            QTest::newRow(audio) << QByteArray(audio) << false;
        for (const char *audio : {"", "R", "RIF", "RIFF", "RIFF\1\1\1"})
            QTest::addRow("\"%s\"", audio) << QByteArray(audio) << true;
    }
    void aShortFileOfAnotherKindIsNotCutShort()
    {
        QFETCH(const QByteArray, audio);
        QFETCH(const bool, isCutShort);
        m_server.answer(Answers::task());
        m_server.answer(Answers::finishedSpeech());
        m_server.answer(ScriptedServer::reply(audio));
        const Outcome outcome = run(arguments("say hello -o speech.wav --token 1 --long"));
        QCOMPARE(outcome.status, isCutShort ? 1 : 0);
        QCOMPARE(TestFolder::contents(QStringLiteral("speech.wav")),
                 isCutShort ? QByteArray("older") : audio);
    }

    void whyTheServiceCouldNotBeReachedIsTold_data()
    {
        QTest::addColumn<QStringList>("command");
        for (const char *command :
             {"say hello -o speech.wav --token 1", "say hello -o speech.wav --token 1 --long",
              "say hello -o speech.wav --anonymous", "recognize speech.wav --token 1",
              "recognize https://a/b.wav --token 1", "recognize https://a/b.wav --token 1 --long",
              "voices", "music", "update", "login --qr", "login --sms 1"})
            QTest::newRow(command) << arguments(command);
    }
    void whyTheServiceCouldNotBeReachedIsTold()
    {
        QFETCH(const QStringList, command);
        const QByteArray problem =
            "vospeak: the authority of the server is not trusted, or it does "
            "not speak TLS; use --ca\n";
        const Outcome outcome = vospeak(command);
        QCOMPARE(outcome.err, problem);
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(outcome.status, 4);
        QVERIFY(vospeak(command + arguments("--verbose")).err.endsWith(problem));
        QCOMPARE(m_server.requests(), QList<QByteArray>());
    }

    void aServiceThatAnswersIsNotCalledOutOfReach_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QByteArray>("problem");
        QTest::addColumn<int>("status");
        const auto row = [](const char *name, const QByteArray &answer, const QByteArray &problem,
                            int status) { QTest::newRow(name) << answer << problem << status; };
        row("refusal", Answers::refusal(5, "Connection refused"),
            "the service refused: Connection refused", 5);
        row("no JSON", ScriptedServer::reply("<html>"), "the service sent no usable answer", 1);
        row("no code", ScriptedServer::reply("{}"), "the service refused or sent no usable answer",
            1);
        row("status 401", ScriptedServer::reply("", "401 Unauthorized"),
            "the server answered: Host requires authentication", 5);
        row("status 407", ScriptedServer::reply("", "407 Who"),
            "the server wants a user and a password for a proxy", 5);
        row("status 503", ScriptedServer::reply("", "503 Busy"), "the server answered: Busy", 5);
    }
    void aServiceThatAnswersIsNotCalledOutOfReach()
    {
        QFETCH(const QByteArray, answer);
        QFETCH(const QByteArray, problem);
        QFETCH(const int, status);
        m_server.answer(answer);
        const Outcome outcome = run(arguments("say hello -o speech.wav --token 1"));
        QCOMPARE(outcome.err, "vospeak: " + problem + '\n');
        QCOMPARE(outcome.status, status);
    }

    void aRecordingThatFailsIsNamedAndTheOthersGoOn_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("out");
        QTest::addColumn<QByteArray>("err");
        QTest::newRow("text") << QStringList()
                              << QByteArray("speech.wav: heard\nhttps://a/c.wav: more\n")
                              << QByteArray(
                                     "vospeak: hour.wav: the recording is too long (3600 s)\n"
                                     "vospeak: https://a/b.wav: the service refused: no\n"
                                     "vospeak: missing.wav: there is no file \"missing.wav\"\n");
        QTest::newRow("JSON")
            << arguments("--json")
            << QByteArray("{\"file\":\"speech.wav\",\"text\":\"heard\"}\n"
                          "{\"file\":\"https://a/c.wav\",\"text\":\"more\"}\n")
            << QByteArray(
                   "{\"error\":{\"file\":\"hour.wav\",\"kind\":\"unusable\",\"message\":\"the "
                   "recording is too long (3600 s)\",\"status\":2}}\n"
                   "{\"error\":{\"code\":9,\"file\":\"https://a/b.wav\",\"kind\":\"refused\","
                   "\"message\":\"the service refused: no\",\"status\":5}}\n"
                   "{\"error\":{\"file\":\"missing.wav\",\"kind\":\"unusable\",\"message\":"
                   "\"there is no file \\\"missing.wav\\\"\",\"status\":2}}\n");
    }
    void aRecordingThatFailsIsNamedAndTheOthersGoOn()
    {
        QFETCH(const QStringList, options);
        QFETCH(const QByteArray, out);
        QFETCH(const QByteArray, err);
        writeRecording(QStringLiteral("hour.wav"), 3601);
        for (const QByteArray &answer :
             {Answers::credentials(), Answers::envelope(), Answers::one("text", "heard"),
              Answers::refusal(9, "no"), Answers::one("text", "more")})
            m_server.answer(answer);
        const Outcome outcome = run(arguments("recognize --token 1 hour.wav speech.wav "
                                              "https://a/b.wav https://a/c.wav missing.wav")
                                    + options);
        QFile::remove(QStringLiteral("hour.wav"));
        QCOMPARE(outcome.out, out);
        QCOMPARE(outcome.err, err);
        QCOMPARE(outcome.status, 2); // the first failure's
    }

    void theStatusOfSeveralRecordingsIsThatOfTheFirstFailure()
    {
        m_server.answer(Answers::refusal(9, "no"));
        const QStringList command = arguments("recognize --token 1 https://a/b.wav");
        QCOMPARE(run(command + arguments("missing.wav")).status, 5);
        m_server.reset();
        m_server.answer(Answers::refusal(9, "no"));
        m_server.answer(Answers::one("text", "heard"));
        const Outcome outcome = run(command + arguments("https://a/c.wav"));
        QCOMPARE(outcome.out, QByteArray("https://a/c.wav: heard\n"));
        QCOMPARE(outcome.status, 5);
    }

    void theStoragesOwnWordsAreShown()
    {
        m_server.answer(Answers::credentials());
        m_server.answer(Answers::refusal(7, "the shelf is full"));
        const Outcome outcome = run(arguments("recognize speech.wav --token 1"));
        QVERIFY2(outcome.err.contains("the shelf is full"), outcome.err.constData());
    }

    void aStorageThatSaysNothingIsToldSo()
    {
        m_server.answer(Answers::credentials());
        m_server.answer(ScriptedServer::reply("", "302 Found", "Location: /elsewhere\r\n"));
        const Outcome outcome = run(arguments("recognize speech.wav --token 1"));
        QCOMPARE(outcome.err, QByteArray("vospeak: the storage refused the recording or sent no "
                                         "usable answer\n"));
        QCOMPARE(outcome.status, 1);
    }

    void theRecordingIsPutUnderTheCredentialsDirectoryWithTheirToken()
    {
        m_server.answer(Answers::credentials());
        m_server.answer(Answers::envelope());
        m_server.answer(Answers::one("text", "heard"));
        const Outcome outcome = run(arguments("recognize speech.wav --token 1"));
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.out, QByteArray("heard\n"));
        QCOMPARE(m_server.requests().size(), 3);
        const QByteArray put = m_server.requests().at(1);
        const QByteArray path = put.split(' ').value(1);
        QVERIFY2(put.startsWith("PUT /storage/speech/uploads/x/"), put.constData());
        QVERIFY2(path.endsWith(".wav") && !path.contains('?'), path.constData());
        QVERIFY2(put.toLower().contains("\r\nx-security-token: top secret\r\n"), put.constData());
        QVERIFY2(put.toLower().contains("\r\ncontent-type: audio/wav\r\n"), put.constData());
        QVERIFY2(put.endsWith("\r\n\r\nolder"), put.constData());
        QVERIFY2(
            m_server.requests().at(2).contains('"' + QByteArray(SERVICE_BASE_ADDRESS) + path + '"'),
            m_server.requests().at(2).constData());
    }

    void everyUploadHasANameOfItsOwn()
    {
        QByteArrayList paths;
        for (int i = 0; i < 2; ++i) {
            m_server.reset();
            m_server.answer(Answers::credentials());
            m_server.answer(Answers::envelope());
            m_server.answer(Answers::one("text", "heard"));
            QCOMPARE(run(arguments("recognize speech.wav --token 1")).status, 0);
            paths.append(m_server.requests().value(1).split(' ').value(1));
        }
        QVERIFY2(paths.at(0) != paths.at(1), paths.at(0).constData());
    }

    void anAddressIsHandedOnAsItIs()
    {
        const QString odd = QStringLiteral("https://a.example/%41 b/../c.wav?x=1&y=#z");
        m_server.answer(Answers::one("text", "heard"));
        const Outcome outcome = run(arguments("recognize --token 1") << odd);
        QCOMPARE(outcome.out, QByteArray("heard\n"));
        QCOMPARE(m_server.requests().size(), 1);
        QVERIFY2(m_server.requests().at(0).contains('"' + odd.toLatin1() + '"'),
                 m_server.requests().at(0).constData());
    }

    void aTaskIsAskedAfterUntilItIsDone()
    {
        m_server.answer(Answers::task());
        for (const char *status : {"QUEUEING", "QUEUEING", "RUNNING"})
            m_server.answer(Answers::status(status));
        m_server.answer(Answers::finishedRecognition());
        const Outcome outcome =
            run(arguments("recognize https://a.example/b.wav --token 1 --long"));
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.out, QByteArray("one two\n"));
        QCOMPARE(outcome.err, QByteArray()); // no terminal, no progress
        QCOMPARE(m_server.requests().size(), 5);
    }

    void theTextIsPrintedInUtf8WhateverTheLocale()
    {
        qputenv("LC_ALL", "C");
        m_server.answer(Answers::one("text", "\xe4\xbd\xa0\xe5\xa5\xbd"));
        const Outcome outcome = run(arguments("recognize https://a.example/b.wav --token 1"));
        qunsetenv("LC_ALL");
        QCOMPARE(outcome.out, QByteArray("\xe4\xbd\xa0\xe5\xa5\xbd\n"));
    }

private:
    static void row(const char *name, int status, const QStringList &command,
                    const QList<QByteArray> &answers)
    {
        QTest::newRow(name) << command << answers << status;
    }

    static void speechRows()
    {
        const QStringList say = arguments("say hello -o speech.wav --token 1");
        row("audio is empty", 1, say, {Answers::one("audio", "")});
        row("audio is missing", 1, say, {Answers::envelope()});
        row("audio is no base64", 1, say, {Answers::one("audio", "UklGR*==")});
        row("audio has a line break", 1, say, {Answers::one("audio", "UklG\nRgAA")});
        row("audio breaks off", 1, say, {Answers::one("audio", "UklGR")});
        row("no JSON", 1, say, {ScriptedServer::reply("<html>")});
        row("HTTP error", 5, say, {ScriptedServer::reply("", "503 Busy")});
    }

    static void longSpeechRows()
    {
        const QStringList say = arguments("say hello -o speech.wav --token 1 --long");
        row("task without identifier", 1, say, {Answers::one("task_id", "")});
        row("task fails", 5, say, {Answers::task(), Answers::status("FAILED")});
        row("task in an unknown state", 5, say, {Answers::task(), Answers::status("DREAMING")});
        row("audio without address", 1, say, {Answers::task(), Answers::status("SUCCESS")});
        const auto fetched = [](const QByteArray &audio) {
            return QList<QByteArray>{Answers::task(), Answers::finishedSpeech(), audio};
        };
        row("audio is gone", 5, say, fetched(ScriptedServer::reply("", "404 Not Found")));
        row("audio file is empty", 1, say, fetched(ScriptedServer::reply("")));
        row("connection ends within the audio", 3, say,
            fetched("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\nRIFF"));
        row("audio file is cut short", 1, say, fetched(ScriptedServer::reply(cutShort())));
    }

    static void recognitionRows()
    {
        const QStringList recognize = arguments("recognize speech.wav --token 1");
        const QByteArray credentials = Answers::credentials();
        row("no credentials", 5, recognize, {Answers::refusal(5, "no")});
        row("upload forbidden", 5, recognize,
            {credentials, ScriptedServer::reply("", "403 Forbidden")});
        row("upload refused", 5, recognize, {credentials, Answers::refusal(7, "full")});
        row("upload answered with nonsense", 1, recognize,
            {credentials, ScriptedServer::reply("<html>")});
        row("recognition refused", 5, recognize,
            {credentials, Answers::envelope(), Answers::refusal(9, "no")});
        row("recognition task fails", 5, recognize + arguments("--long"),
            {credentials, Answers::envelope(), Answers::task(), Answers::status("FAILED")});
    }

    static Outcome run(const QStringList &command)
    {
        return vospeak(command
                       + QStringList{QStringLiteral("--ca"), QStringLiteral(TEST_AUTHORITY)});
    }

    static void onlyTheOlderFileIsThere()
    {
        QCOMPARE(QDir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{QStringLiteral("speech.wav")});
        QCOMPARE(TestFolder::contents(QStringLiteral("speech.wav")), QByteArray("older"));
    }

    ScriptedServer m_server{Identity::Localhost};
    const QTemporaryDir m_folder;
    const Home m_home;
};

QTEST_GUILESS_MAIN(TestBadService)
#include "tst_badservice.moc"
