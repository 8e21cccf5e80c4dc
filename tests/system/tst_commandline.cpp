#include "tests/support/patience.h"
#include "tests/system/home.h"
#include "tests/system/localservice.h"
#include "tests/system/program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

/// What is decided before the service is asked. None is running here.
class TestCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QDir::setCurrent(m_folder.path()));
        write("empty.wav", QByteArray());
        write("some.wav", "RIFF");
        write("latin1", "caf\xe9");
        write("long", QByteArray(20001, 'a'));
        write("nonsense.pem", "-----BEGIN CERTIFICATE-----\nnonsense\n");
        QVERIFY(QDir().mkdir(QStringLiteral("folder")));
        QVERIFY(QDir().mkdir(QStringLiteral("blocked.part")));
        QVERIFY(QFile::link(QStringLiteral("some.wav"), QStringLiteral("linked.part")));
        QVERIFY(QFile::link(QStringLiteral("nowhere"), QStringLiteral("dangling.part")));
        QCOMPARE(::link("some.wav", "shared.part"), 0);
        QCOMPARE(mkfifo("piped.part", 0600), 0);
    }

    void wrongUseIsToldInOneLine_data()
    {
        QTest::addColumn<QStringList>("command");
        textRows();
        outputRows();
        numberRows();
        recordingRows();
        signInRows();
        downloadRows();
        strayRows();
        authorityRows();
        proxyRows();
    }
    void wrongUseIsToldInOneLine()
    {
        QFETCH(const QStringList, command);
        const QStringList before = entries();
        const Outcome outcome = vospeak(command);
        QCOMPARE(outcome.status, 2);
        QCOMPARE(outcome.out, QByteArray());
        QVERIFY2(isOneLine(outcome.err), outcome.err.constData());
        QCOMPARE(entries(), before);
    }

    void theAddressOfARecordingHasToBeginWithHttps_data()
    {
        QTest::addColumn<QString>("address");
        for (const char *address : {"http://me:secret@a/b.wav", "HTTP://a/b.wav"})
            QTest::newRow(address) << QString::fromLatin1(address);
    }
    void theAddressOfARecordingHasToBeginWithHttps()
    {
        QFETCH(const QString, address);
        const Outcome outcome = vospeak(arguments("recognize --token 1") << address);
        QCOMPARE(outcome.err,
                 QByteArray("vospeak: the address of a recording must begin with https://\n"));
        QCOMPARE(outcome.status, 2);
    }

    void anAddressThatCannotBeFetchedIsNotRepeated()
    {
        const Outcome outcome = vospeak(arguments("fetch ftp://me:secret@a/b"));
        QCOMPARE(outcome.err,
                 QByteArray("vospeak: fetch needs an address that begins with https:// or http:// "
                            "(see vospeak help fetch)\n"));
        QCOMPARE(outcome.status, 2);
    }

    void aFolderThatMayNotBeWrittenIsWrongUse()
    {
        if (geteuid() == 0)
            QSKIP("the superuser may write everywhere", );
        QVERIFY(QDir().mkdir(QStringLiteral("locked")));
        QVERIFY(
            QFile::setPermissions(QStringLiteral("locked"), QFile::ReadOwner | QFile::ExeOwner));
        const Outcome outcome = vospeak(arguments("say hello -o locked/a.wav --token 1"));
        QCOMPARE(outcome.status, 2);
        QVERIFY2(isOneLine(outcome.err), outcome.err.constData());
    }

    void anyNumberOf64BitsIsAToken_data()
    {
        QTest::addColumn<QString>("token");
        for (const char *token : {"0", "-1", "9223372036854775807", "-9223372036854775808"})
            QTest::newRow(token) << QString::fromLatin1(token);
    }
    // The token is right when the only thing wrong is that nobody answers.
    void anyNumberOf64BitsIsAToken()
    {
        QFETCH(const QString, token);
        const Outcome outcome = vospeak(arguments("say hello -o a.wav --token") << token);
        QCOMPARE(outcome.status, 3);
        QVERIFY2(isOneLine(outcome.err), outcome.err.constData());
    }

    void aServiceThatIsNotRunningIsAFailure_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::newRow("say") << arguments("say hello -o a.wav --token 1");
        QTest::newRow("say long") << arguments("say hello -o a.wav --token 1 --long");
        QTest::newRow("say anonymously") << arguments("say hello -o a.wav --anonymous");
        QTest::newRow("recognize") << arguments("recognize some.wav --token 1");
        QTest::newRow("recognize long") << arguments("recognize some.wav --token 1 --long");
        QTest::newRow("recognize address") << arguments("recognize https://a/b.wav --token 1");
        for (const char *command : {"voices", "music", "update", "login --qr", "login --sms 1"})
            QTest::newRow(command) << arguments(command);
    }
    void aServiceThatIsNotRunningIsAFailure()
    {
        QFETCH(const QStringList, command);
        const QStringList before = entries();
        const Outcome outcome = vospeak(command);
        QCOMPARE(outcome.status, 3);
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(outcome.err, QByteArray("vospeak: cannot reach " SERVICE_BASE_ADDRESS
                                         ": connection refused; is vo-localservice running?\n"));
        QCOMPARE(entries(), before);
    }

    void theReasonIsKnownWhateverTheEnvironmentSaysAboutLogs()
    {
        qputenv("QT_LOGGING_RULES", "*.debug=false");
        const Outcome outcome = vospeak(arguments("voices"));
        qunsetenv("QT_LOGGING_RULES");
        QCOMPARE(outcome.err, QByteArray("vospeak: cannot reach " SERVICE_BASE_ADDRESS
                                         ": connection refused; is vo-localservice running?\n"));
    }

    void verboseShowsWhyAnOperationFailed()
    {
        const Outcome outcome = vospeak(arguments("say hello -o a.wav --token 1 --verbose"));
        QCOMPARE(outcome.status, 3);
        QVERIFY2(outcome.err.contains("refused"), outcome.err.constData());
        QVERIFY2(outcome.err.count('\n') > 1, outcome.err.constData());
    }

    void helpAndVersionGoToStandardOutput_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<QString>("contents");
        const struct
        {
            const char *command;
            QList<const char *> promises;
        } rows[] = {
            {"--help",
             {"say", "recognize", "task", "voices", "music", "fetch", "update", "login", "logout",
              "whoami",
              ("Exit status: 0 done, 1 failed, 2 wrong use, 3 no network, 4 not trusted (TLS), "
               "5 refused, 130 or 143 interrupted.")}},
            {"-h", {"vospeak COMMAND [OPTIONS]"}},
            {"help", {"vospeak COMMAND [OPTIONS]"}},
            {"say --help",
             {"vospeak say [TEXT] [OPTIONS]", "--voice",
              "in UTF-8 and ended by a line feed: file, bytes"}},
            {"help say", {"--token"}},
            {"help fetch", {"--resume", "file, bytes"}},
            {"help recognize", {"text"}},
            {"help voices",
             {"voices: [name, voice, type, category, scene, avatar, sampleUrl, "
              "shortSynthesis, longSynthesis]"}},
            {"help music", {"music: [name, url]"}},
            {"help update",
             {"status (0 newest, 1 newer there, 2 newer needed), currentVersion, version, changes: "
              "[line], url"}},
            {"help login", {"--sms", "userId, nickname, pictureUrl, tokenExpires, sessionExpires"}},
            {"help logout", {"its tokens stay valid at the service until they run out."}},
            {"help options",
             {"--ca", "A proxy is written http://[USER:PASSWORD@]HOST:PORT",
              "localhost and loopback addresses are asked directly.",
              "Every user of this machine can read --token"}},
        };
        for (const auto &row : rows) {
            for (const char *promise : row.promises)
                QTest::addRow("%s: %s", row.command, promise)
                    << arguments(row.command) << QString::fromLatin1(promise);
        }
        QTest::newRow("--version") << arguments("--version") << QStringLiteral("vospeak 1.");
    }
    void helpAndVersionGoToStandardOutput()
    {
        QFETCH(const QStringList, command);
        QFETCH(const QString, contents);
        const Outcome outcome = vospeak(command);
        QCOMPARE(outcome.status, 0);
        const QString out = QString::fromUtf8(outcome.out).simplified();
        QVERIFY2(out.contains(contents), qPrintable(out));
        QCOMPARE(outcome.err, QByteArray());
    }

    void everyPageOfHelpFitsATerminal_data()
    {
        QTest::addColumn<QString>("page");
        for (const char *page :
             {"", "options", "say", "recognize", "task", "voices", "music", "fetch", "update",
              "login", "logout", "whoami", "doctor", "start", "help"})
            QTest::newRow(page) << QString::fromLatin1(page);
    }
    void everyPageOfHelpFitsATerminal()
    {
        QFETCH(const QString, page);
        const QByteArray out = vospeak({QStringLiteral("help"), page}).out;
        const QByteArrayList lines = out.split('\n');
        QVERIFY2(lines.size() > 2 && lines.size() <= 24, out.constData()); // the last one is empty
        for (const QByteArray &line : lines)
            QVERIFY2(line.size() <= 80, line.constData());
    }

    void aSlipIsAnsweredByWhatMayBeMeant_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<QByteArray>("answer");
        const auto row = [](const char *command, const char *answer) {
            QTest::newRow(command) << arguments(command) << QByteArray(answer);
        };
        row("sya hello -o a.wav",
            "unknown command \"sya\"; did you mean say? (see vospeak --help)");
        row("recognise a.wav",
            "unknown command \"recognise\"; did you mean recognize? (see vospeak --help)");
        row("help voice",
            "unknown command \"voice\"; did you mean voices? (see vospeak help help)");
        row("sing la", "unknown command \"sing\" (see vospeak --help)");
        row("say hello --ouput a.wav",
            "unknown option \"--ouput\"; did you mean --output? (see vospeak help say)");
        row("fetch http://a/b --resum",
            "unknown option \"--resum\"; did you mean --resume? (see vospeak help fetch)");
        row("voices -x", "unknown option \"-x\" (see vospeak help voices)");
    }
    void aSlipIsAnsweredByWhatMayBeMeant()
    {
        QFETCH(const QStringList, command);
        QFETCH(const QByteArray, answer);
        const Outcome outcome = vospeak(command);
        QCOMPARE(outcome.err, QByteArray("vospeak: " + answer + '\n'));
        QCOMPARE(outcome.status, 2);
    }

    void aTextBehindTwoDashesMayBeginWithOne()
    {
        const Outcome outcome = vospeak(arguments("say --token 1 -o a.wav -- --hello"));
        QCOMPARE(outcome.status, 3); // nothing is wrong but that nobody answers
    }

    void wrongUseIsToldAsJsonToWhoWantsThat()
    {
        const Outcome outcome = vospeak(arguments("fetch --json"));
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(outcome.err,
                 QByteArray(R"x({"error":{"kind":"use","message":"fetch needs ADDRESS )x"
                            R"x((see vospeak help fetch)","status":2}})x"
                            "\n"));
        QCOMPARE(outcome.status, 2);
    }

    void aSlipIsToldAsJsonToWhoWantsThat()
    {
        QCOMPARE(vospeak(arguments("fetch --resum --json")).err,
                 QByteArray("{\"error\":{\"kind\":\"use\",\"message\":\"unknown option "
                            "\\\"--resum\\\"; did you mean --resume? (see vospeak help fetch)\","
                            "\"status\":2}}\n"));
    }

    void aFailureIsToldAsJsonToWhoWantsThat()
    {
        const Outcome outcome = vospeak(arguments("voices --json"));
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(
            outcome.err,
            QByteArray(
                R"({"error":{"kind":"unreachable","message":"cannot reach )" SERVICE_BASE_ADDRESS
                R"(: connection refused; is vo-localservice running?",)"
                R"("status":3}})"
                "\n"));
    }

    void anotherServerThanThatOfTheBuildIsRefusedClearly()
    {
        const Outcome outcome = vospeak(arguments("voices --server https://other.example"));
        QCOMPARE(outcome.err,
                 QByteArray("vospeak: this build asks " SERVICE_BASE_ADDRESS
                            " only: the address is compiled in (VONETWORK_SERVICE_BASE_ADDRESS) "
                            "(see vospeak help voices)\n"));
        QCOMPARE(outcome.status, 2);
        QCOMPARE(vospeak(arguments("voices --server " SERVICE_BASE_ADDRESS)).status, 3);
    }

    void anArgumentThatIsNoTextIsRefused()
    {
        QProcess shell; // Qt starts no program with such an argument
        shell.start(QStringLiteral("/bin/sh"),
                    {QStringLiteral("-c"),
                     QStringLiteral(R"x("$0" say hello --token 1 -o "$(printf '\377\376.wav')")x"),
                     Program::path()});
        QVERIFY(shell.waitForFinished(patienceMs));
        QCOMPARE(shell.readAllStandardError(),
                 QByteArray("vospeak: an argument is no text in the encoding of the locale\n"));
        QCOMPARE(shell.exitCode(), 2);
    }

    void theServiceRefusesWrongUseInOneLine_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::newRow("unknown option")
            << arguments("--port 1 --data d --development-token 1 --loud");
        QTest::newRow("port is a word") << arguments("--port x --data d --development-token 1");
        QTest::newRow("port is too large")
            << arguments("--port 65536 --data d --development-token 1");
        QTest::newRow("development token is a word")
            << arguments("--port 1 --data d --development-token x");
        QTest::newRow("workers is zero")
            << arguments("--port 1 --data d --development-token 1 --workers 0");
    }
    void theServiceRefusesWrongUseInOneLine()
    {
        QFETCH(const QStringList, command);
        QProcess service;
        service.start(LocalService::program(), command);
        QVERIFY(service.waitForFinished(patienceMs));
        QCOMPARE(service.exitStatus(), QProcess::NormalExit);
        QCOMPARE(service.exitCode(), 2);
        QCOMPARE(service.readAllStandardOutput(), QByteArray());
        const QByteArray err = service.readAllStandardError();
        QVERIFY2(err.startsWith("vo-localservice: ") && err.count('\n') == 1, err.constData());
    }

    void aDataFolderThatCannotBeMadeIsToldInOneLine()
    {
        QProcess service;
        service.start(LocalService::program(),
                      arguments("--port 1 --data some.wav --development-token 1"));
        QVERIFY(service.waitForFinished(patienceMs));
        QCOMPARE(service.exitStatus(), QProcess::NormalExit);
        QCOMPARE(service.exitCode(), 1);
        const QByteArray err = service.readAllStandardError();
        QVERIFY2(err.startsWith("vo-localservice: ") && err.count('\n') == 1, err.constData());
    }

    void theServiceHasHelp()
    {
        QProcess service;
        service.start(LocalService::program(), arguments("--help"));
        QVERIFY(service.waitForFinished(patienceMs));
        QCOMPARE(service.exitCode(), 0);
        const QByteArray out = service.readAllStandardOutput();
        for (const char *option : {"--port", "--data", "--development-token", "--workers"})
            QVERIFY2(out.contains(option), option);
    }

private:
    // Rows of wrongUseIsToldInOneLine().
    static void textRows()
    {
        QTest::newRow("nothing") << QStringList();
        QTest::newRow("unknown command") << arguments("sing la --token 1");
        QTest::newRow("unknown option") << arguments("say hello -o a.wav --token 1 --loud");
        QTest::newRow("option without value") << arguments("say hello -o a.wav --token");
        QTest::newRow("text twice") << arguments("say hello -f some.wav -o a.wav --token 1");
        QTest::newRow("text file is missing") << arguments("say -f missing -o a.wav --token 1");
        QTest::newRow("text file is empty") << arguments("say -f empty.wav -o a.wav --token 1");
        QTest::newRow("text file is a folder") << arguments("say -f folder -o a.wav --token 1");
        QTest::newRow("text file is not UTF-8") << arguments("say -f latin1 -o a.wav --token 1");
        QTest::newRow("more text than is spoken") << arguments("say -f long -o a.wav --token 1");
        QTest::newRow("two texts") << arguments("say one two -o a.wav --token 1");
        QTest::newRow("empty text") << arguments("say  -o a.wav --token 1");
        QTest::newRow("text of blanks")
            << QStringList{QStringLiteral("say"), QStringLiteral(" \t\n ")}
                   + arguments("-o a.wav --token 1");
        QTest::newRow("anonymous with a token")
            << arguments("say hello -o a.wav --anonymous --token 5");
        QTest::newRow("long and anonymous") << arguments("say hello -o a.wav --long --anonymous");
    }

    static void outputRows()
    {
        QTest::newRow("no output") << arguments("say hello --token 1");
        QTest::newRow("output in no folder") << arguments("say hello -o nowhere/a.wav --token 1");
        QTest::newRow("output in a file") << arguments("say hello -o some.wav/a.wav --token 1");
        QTest::newRow("output is a folder") << arguments("say hello -o folder --token 1");
        QTest::newRow("output ends in a slash") << arguments("say hello -o other/ --token 1");
        for (const char *name : {"a.mp3", "a.OGG", "a.flac", "a.pcm", "a.wav --format pcm"})
            QTest::addRow("output is %s", name)
                << arguments("say hello --token 1 -o") + arguments(name);
        QTest::newRow("output twice") << arguments("say hello --token 1 -o - --json");
        QTest::newRow("output is a device") << arguments("say hello -o /dev/null --token 1");
    }

    static void numberRows()
    {
        QTest::newRow("token is a word") << arguments("say hello -o a.wav --token secret");
        QTest::newRow("token is empty") << arguments("say hello -o a.wav --token ");
        QTest::newRow("token is too large")
            << arguments("say hello -o a.wav --token 9223372036854775808");
        QTest::newRow("anonymous with a bad token")
            << arguments("say hello -o a.wav --anonymous --token x");
        for (const char *level :
             {"--speed 501", "--speed -501", "--speed x", "--pitch 501", "--pitch -501",
              "--volume 101", "--volume -1", "--volume 1.5", "--format mp3", "--timeout 0",
              "--timeout -1", "--timeout nan", "--timeout 3000000", "--color blue"})
            QTest::newRow(level) << arguments("say hello -o a.wav --token 1") + arguments(level);
        QTest::newRow("rate is a word") << arguments("say hello -o a.wav --token 1 --rate fast");
        QTest::newRow("rate is zero") << arguments("say hello -o a.wav --token 1 --rate 0");
        QTest::newRow("rate is negative") << arguments("say hello -o a.wav --token 1 --rate -8000");
    }

    static void recordingRows()
    {
        QTest::newRow("no recording") << arguments("recognize --token 1");
        QTest::newRow("missing recording") << arguments("recognize missing.wav --token 1");
        QTest::newRow("folder as recording") << arguments("recognize folder --token 1");
        QTest::newRow("empty recording") << arguments("recognize empty.wav --token 1");
        QTest::newRow("device as recording") << arguments("recognize /dev/zero --token 1");
        QTest::newRow("newline in a name")
            << QStringList{QStringLiteral("recognize"), QStringLiteral("two\nlines.wav")}
                   + arguments("--token 1");
    }

    static void signInRows()
    {
        QTest::newRow("login in no way") << arguments("login");
        QTest::newRow("login in two ways") << arguments("login --qr --sms 1");
        QTest::newRow("login without number") << arguments("login --sms");
        QTest::newRow("login with an empty number") << arguments("login --sms ");
        QTest::newRow("login with an argument") << arguments("login me --qr");
        QTest::newRow("logout with an argument") << arguments("logout me");
    }

    static void downloadRows()
    {
        QTest::newRow("no address") << arguments("fetch");
        QTest::newRow("empty address") << arguments("fetch  -o f");
        QTest::newRow("two addresses") << arguments("fetch http://a/b http://a/c");
        QTest::newRow("address without scheme") << arguments("fetch example.org/f");
        QTest::newRow("address of another scheme") << arguments("fetch ftp://example.org/f");
        QTest::newRow("address of a file") << arguments("fetch file:///etc/hostname");
        QTest::newRow("address without host") << arguments("fetch https:///f");
        QTest::newRow("address without name") << arguments("fetch https://example.org/");
        QTest::newRow("address that ends in an encoded folder")
            << arguments("fetch https://example.org/a%2F..");
        QTest::newRow("address that ends in a folder") << arguments("fetch https://example.org/..");
        QTest::newRow("control character in the name") << arguments("fetch http://a/f%07");
        QTest::newRow("NUL in the name") << arguments("fetch https://example.org/f%00");
        QTest::newRow("empty name") << arguments("fetch http://a/b -o ");
        QTest::newRow("download into no folder") << arguments("fetch http://a/b -o nowhere/f");
        QTest::newRow("download into a folder") << arguments("fetch http://a/b -o folder");
        QTest::newRow("direction override in the name") << arguments("fetch http://a/f%E2%80%AEv");
        QTest::newRow("invisible tag in the name") << arguments("fetch http://a/f%F3%A0%80%81");
        QTest::newRow("isolate in the name") << arguments("fetch http://a/f%E2%81%A6v");
        QTest::newRow("line separator in the name") << arguments("fetch http://a/f%E2%80%A8v");
        QTest::newRow("part is a folder") << arguments("fetch http://a/b -o blocked");
        for (const char *part : {"linked", "dangling", "shared", "piped", "blocked"})
            QTest::addRow("part to go on with is %s", part)
                << arguments("fetch http://a/b --resume -o") + arguments(part);
        QTest::newRow("part is a pipe") << arguments("fetch http://a/b -o piped");
    }

    // Options that belong to other commands.
    static void strayRows()
    {
        const struct
        {
            const char *command;
            QList<const char *> options;
        } rows[] = {
            {"say hello -o a.wav", {"--qr", "--sms 1", "--resume", "--status", "--open"}},
            {"fetch http://a/b",
             {"--qr", "--sms 1", "--anonymous", "--voice rms", "--rate 8000", "--long",
              "--token 1"}},
            {"recognize some.wav",
             {"--qr", "--sms 1", "--anonymous", "--voice rms", "--rate 8000", "-o text.txt",
              "--resume", "--play", "-f text"}},
            {"task 1", {"--long", "--play", "--status -o a.wav", "2"}},
            {"whoami", {"--token 1", "me"}},
            {"voices",
             {"--qr", "--sms 1", "--anonymous", "--voice rms", "--rate 8000", "-o a.wav", "--long",
              "--token 1", "more"}},
            {"music", {"--long", "--token 1", "more"}},
            {"update", {"--long", "--token 1", "more"}},
            {"login --qr", {"--anonymous", "--voice rms", "-o a.wav", "--long", "--token 1"}},
            {"logout", {"--qr", "--sms 1", "--json", "--token 1"}},
        };
        for (const auto &row : rows) {
            for (const char *option : row.options)
                QTest::addRow("%s %s", row.command, option)
                    << arguments(row.command) + arguments(option);
        }
    }

    static void authorityRows()
    {
        QTest::newRow("missing authority")
            << arguments("recognize some.wav --token 1 --ca missing.pem");
        QTest::newRow("authority is no certificate")
            << arguments("recognize some.wav --token 1 --ca some.wav");
        QTest::newRow("authority is a broken certificate")
            << arguments("recognize some.wav --token 1 --ca nonsense.pem");
        QTest::newRow("authority is a folder")
            << arguments("recognize some.wav --token 1 --ca folder");
    }

    static void proxyRows()
    {
        for (const char *proxy : {"h", "http://h", "http://h:0", "http://h:65536", "http://:1",
                                  "http://", "ftp://h:1", "https://h:1", "socks4://h:1", "h:x"})
            QTest::addRow("proxy %s", proxy) << arguments("voices --proxy") + arguments(proxy);
    }

    static void write(const char *name, const QByteArray &bytes)
    {
        QFile file(QString::fromLatin1(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    static QStringList entries()
    {
        return QDir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    const QTemporaryDir m_folder;
    const Home m_home;
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
