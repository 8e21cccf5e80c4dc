#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"
#include "tests/system/answers.h"
#include "tests/system/home.h"
#include "tests/system/localservice.h"
#include "tests/system/program.h"
#include "tests/system/terminal.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/stat.h>

namespace {

const QByteArray silence; // the connection stays open, and that is all

QStringList withToken(const char *command)
{
    return arguments(command) + arguments("--token 1 --ca")
           + QStringList{QStringLiteral(TEST_AUTHORITY)};
}

} // namespace

/// What makes vospeak easy to use: what it trusts, what it waits for, how to go on.
class TestConveniences : public QObject
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
        QFile::remove(settings());
        QFile::remove(m_home.sessionFile());
    }

    void anAuthorityIsNamedByTheEnvironment()
    {
        answerWithVersion();
        QCOMPARE(vospeak(arguments("update")).status, 4);
        qputenv("VOSPEAK_CA", TEST_AUTHORITY);
        const int status = vospeak(arguments("update")).status;
        qunsetenv("VOSPEAK_CA");
        QCOMPARE(status, 0);
    }

    void anAuthorityIsNamedByTheSettings_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("absolute") << QByteArray("ca=" TEST_AUTHORITY "\n");
        QTest::newRow("beside the settings") << QByteArray("ca=authority.pem\n");
        QTest::newRow("with carriage returns") << QByteArray("\r\nca=authority.pem\r\n");
        QTest::newRow("without a line break") << QByteArray("ca=authority.pem");
        QTest::newRow("with blanks") << QByteArray(" ca = authority.pem \n");
        QTest::newRow("among other lines")
            << QByteArray("# ca=none\nnonsense\n[more]\nx=y\nca=authority.pem\nca2=none\nca\n=\n");
        QTest::newRow("the last one counts") << QByteArray("ca=none\nca=authority.pem\n");
        QTest::newRow("a name with signs") << QByteArray("ca=my, \\a \"\xc3\xa4\".pem\n");
    }
    void anAuthorityIsNamedByTheSettings()
    {
        QFETCH(const QByteArray, line);
        answerWithVersion();
        QDir().mkpath(m_home.settings());
        for (const char *name : {"authority.pem", "my, \\a \"\xc3\xa4\".pem"})
            QFile::copy(QStringLiteral(TEST_AUTHORITY),
                        m_home.settings() + QLatin1Char('/') + QString::fromUtf8(name));
        TestFolder::write(settings(), line);
        QCOMPARE(vospeak(arguments("update")).status, 0);
    }

    void settingsThatCannotBeReadAreTold_data()
    {
        QTest::addColumn<bool>("isFolder");
        QTest::newRow("folder") << true;
        QTest::newRow("pipe") << false;
    }
    void settingsThatCannotBeReadAreTold()
    {
        QFETCH(const bool, isFolder);
        QVERIFY(QDir().mkpath(isFolder ? settings() : m_home.settings()));
        if (!isFolder)
            QCOMPARE(mkfifo(QFile::encodeName(settings()).constData(), 0600), 0);
        const Outcome outcome = vospeak(arguments("update"));
        const Outcome named = vospeak(arguments("update --timeout 9 --ca nothing.pem"));
        const Outcome offline = vospeak(arguments("logout"));
        QVERIFY(isFolder ? QDir().rmdir(settings()) : QFile::remove(settings()));
        QCOMPARE(QString::fromUtf8(outcome.err),
                 QStringLiteral("vospeak: \"%1\" is %2\n")
                     .arg(settings(), isFolder ? QStringLiteral("a folder")
                                               : QStringLiteral("no ordinary file")));
        QCOMPARE(outcome.status, 2);
        QVERIFY2(named.err.contains("nothing.pem"), named.err.constData());
        QCOMPARE(offline.status, 0);
    }

    void anAuthorityThatIsMissingMattersOnlyToWhatAsksAServer()
    {
        QVERIFY(QDir().mkpath(m_home.settings()));
        TestFolder::write(settings(), "ca=missing.pem\n");
        QCOMPARE(vospeak(arguments("update")).status, 2);
        QCOMPARE(vospeak(arguments("logout")).status, 0);
        QCOMPARE(vospeak(arguments("whoami")).status, 5);
    }

    void whatTakesTooLongIsGivenUp()
    {
        m_server.answer(silence, ScriptedServer::Then::KeepOpen);
        const Outcome outcome = vospeak(withToken("say hello -o a.wav --timeout 0.5"));
        QCOMPARE(outcome.err, QByteArray("vospeak: it took longer than 0.5 s (see --timeout)\n"));
        QCOMPARE(outcome.status, 3);
    }

    void aTerminalIsToldWhatIsWaitedFor()
    {
        m_server.answer(silence, ScriptedServer::Then::KeepOpen);
        Terminal terminal;
        QElapsedTimer elapsed;
        elapsed.start();
        Program program(withToken("say hello -o a.wav"), terminal.name());
        QByteArray shown;
        TRY_VERIFY((shown += terminal.read()).contains("waiting for " SERVICE_BASE_ADDRESS));
        QVERIFY(elapsed.elapsed() >= 2000); // nothing is shown of what is quick
        program.signal(SIGINT);
        QCOMPARE(program.outcome().status, 130);
    }

    void whatTheUserWishesReachesTheService()
    {
        m_server.answer(Answers::one("audio", "T2dnUw=="));
        const QStringList command =
            withToken("say hello --voice slt --rate 8000 --speed -20 --pitch 30 --volume 7 "
                      "--format pcm -o a.pcm");
        QCOMPARE(vospeak(command).status, 0);
        const QByteArray request = m_server.requests().value(0);
        QJsonObject body =
            QJsonDocument::fromJson(request.mid(request.indexOf("\r\n\r\n") + 4)).object();
        body.remove(QStringLiteral("pageFeature"));
        QCOMPARE(body, (QJsonObject{{QStringLiteral("feature"), QStringLiteral("voiceSynthesis")},
                                    {QStringLiteral("text"), QStringLiteral("hello")},
                                    {QStringLiteral("format"), QStringLiteral("pcm")},
                                    {QStringLiteral("sample_rate"), 8000},
                                    {QStringLiteral("voice"), QStringLiteral("slt")},
                                    {QStringLiteral("volume"), 7},
                                    {QStringLiteral("speech_rate"), -20},
                                    {QStringLiteral("pitch_rate"), 30}}));
    }

    void aFailureAsJsonSaysItsKind_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QByteArray>("error");
        const auto row = [](const QStringList &command, const QByteArray &answer,
                            QByteArray error) {
            QTest::newRow(error.constData())
                << command + arguments("--json") << answer << error.replace('\'', '"');
        };
        const QStringList say = withToken("say hello -o a.wav");
        row(say, silence,
            "'kind':'network','message':'no answer from " SERVICE_BASE_ADDRESS
            ": the connection was closed','status':3");
        row(say + arguments("--timeout 0.5"), silence,
            "'kind':'timedOut','message':'it took longer than 0.5 s (see --timeout)','status':3");
        row(arguments("update"), silence,
            "'kind':'tls','message':'the authority of the server is not trusted, or it does not "
            "speak TLS; use --ca','status':4");
        row(say, Answers::refusal(9, "no"),
            "'code':9,'kind':'refused','message':'the service refused: no','status':5");
        row(say, ScriptedServer::reply("<html>"),
            "'kind':'badAnswer','message':'the service sent no usable answer','status':1");
        row(arguments("whoami"), silence,
            "'kind':'signIn','message':'sign in first: vospeak login --qr, or vospeak login --sms "
            "NUMBER','status':5");
    }
    void aFailureAsJsonSaysItsKind()
    {
        QFETCH(const QStringList, command);
        QFETCH(const QByteArray, answer);
        QFETCH(const QByteArray, error);
        const bool isWaiting = command.contains(QStringLiteral("--timeout"));
        m_server.answer(answer,
                        isWaiting ? ScriptedServer::Then::KeepOpen : ScriptedServer::Then::Close);
        const Outcome outcome = vospeak(command);
        QCOMPARE(outcome.err, "{\"error\":{" + error + "}}\n");
        QCOMPARE(outcome.out, QByteArray());
    }

    void anInterruptedTaskSaysHowToGoOn_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<QByteArray>("id");
        QTest::addColumn<QByteArray>("line");
        const auto row = [](const char *name, const char *command, const QByteArray &id,
                            const QByteArray &line) {
            QTest::newRow(name) << withToken(command) << id << "the service goes on; " + line;
        };
        const char *say = "say hello -o a.wav --long";
        const char *recognize = "recognize https://a/b.wav --long";
        row("say", say, "t", "vospeak task t -o FILE gets the audio");
        row("recognize", recognize, "t", "vospeak task t gets the text");
        row("say, controls in the ID", say, "t\x1b[2J",
            "vospeak task t [2J -o FILE gets the audio");
        row("recognize, controls in the ID", recognize, "t\x1b[2J",
            "vospeak task t [2J gets the text");
    }
    void anInterruptedTaskSaysHowToGoOn()
    {
        QFETCH(const QStringList, command);
        QFETCH(const QByteArray, id);
        QFETCH(const QByteArray, line);
        m_server.answer(Answers::one("task_id", id.constData()), ScriptedServer::Then::KeepOpen);
        m_server.answer(Answers::status("RUNNING"), ScriptedServer::Then::KeepOpen);
        Terminal terminal;
        Program program(command, terminal.name());
        TRY_VERIFY(m_server.requests().size() >= 2);
        program.signal(SIGINT);
        QCOMPARE(program.outcome().status, 130);
        const QByteArrayList lines = Terminal::linesOf(terminal.read());
        QVERIFY2(lines.join('\n').endsWith(line + '\n'), lines.join('\n').constData());
    }

    void aTaskThatTookTooLongSaysHowToGoOn()
    {
        m_server.answer(Answers::task(), ScriptedServer::Then::KeepOpen);
        m_server.answer(silence, ScriptedServer::Then::KeepOpen);
        Terminal terminal;
        Program program(withToken("recognize https://a/b.wav --long --timeout 1"), terminal.name());
        QCOMPARE(program.outcome().status, 3);
        QVERIFY2(terminal.read().endsWith("vospeak: it took longer than 1 s (see --timeout)\n"
                                          "the service goes on; vospeak task t gets the text\n"),
                 "it does not");
    }

    void aTaskIsTakenUpAgain()
    {
        m_server.answer(Answers::status("RUNNING"));
        m_server.answer(Answers::finishedRecognition());
        const Outcome outcome = vospeak(withToken("task t"));
        QCOMPARE(outcome.out, QByteArray("one two\n"));
        QCOMPARE(outcome.status, 0);
        QVERIFY(m_server.requests().at(0).contains("\"task_id\""));
    }

    void theAudioOfATaskIsFetched()
    {
        m_server.answer(Answers::finishedSpeech());
        m_server.answer(ScriptedServer::reply("audio"));
        QCOMPARE(vospeak(withToken("task t -o t.wav")).status, 0);
        QFile file(QStringLiteral("t.wav"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("audio"));
    }

    void theStatusOfATaskIsNotWaitedFor()
    {
        m_server.answer(Answers::status("RUNNING"));
        QCOMPARE(vospeak(withToken("task t --status")).out, QByteArray("queued or running\n"));
        QCOMPARE(vospeak(withToken("task t --status --json")).out,
                 QByteArray("{\"done\":false}\n"));
        m_server.reset();
        m_server.answer(Answers::finishedRecognition());
        QCOMPARE(vospeak(withToken("task t --status --json")).out,
                 QByteArray("{\"done\":true,\"text\":\"one two\"}\n"));
    }

    void whoAmIKnowsWhoIsSignedIn()
    {
        const Outcome nobody = vospeak(arguments("whoami"));
        QCOMPARE(nobody.err, QByteArray("vospeak: sign in first: vospeak login --qr, or vospeak "
                                        "login --sms NUMBER\n"));
        QCOMPARE(nobody.status, 5);
    }

    void aStartedServiceIsTrustedUntilItIsEnded()
    {
        m_server.close();
        const QString data = m_folder.filePath(QStringLiteral("data"));
        qputenv("XDG_DATA_HOME", QFile::encodeName(data));
        QVERIFY(QDir().mkpath(m_home.settings()));
        TestFolder::write(settings(), "# mine");
        const QByteArray authority = data.toUtf8() + "/vo-localservice/tls/authority.pem\n";
        {
            Program service(arguments("start"));
            TRY_VERIFY(service.err().contains("Ctrl-C ends the service.\n"));
            QCOMPARE(TestFolder::contents(settings()), "# mine\nca=" + authority);
            QCOMPARE(vospeak(arguments("say hello --anonymous -o a.wav")).status, 0);
            service.signal(SIGINT);
            QCOMPARE(service.outcome().status, 130);
        }
        QCOMPARE(vospeak(arguments("voices")).status, 3);

        TestFolder::write(settings(), "ca=" TEST_AUTHORITY "\n");
        Program service(arguments("start"));
        TRY_VERIFY(service.err().contains("Ctrl-C ends the service.\n"));
        QCOMPARE(TestFolder::contents(settings()), QByteArray("ca=" TEST_AUTHORITY "\n"));
        QVERIFY(service.err().contains("vospeak trusts this service with --ca " + authority));
        service.signal(SIGINT);
        QCOMPARE(service.outcome().status, 130);
        qunsetenv("XDG_DATA_HOME");
        const quint16 port = SERVICE_PORT;
        QVERIFY(m_server.start(port));
    }

    void aStartedServiceEndsWithAVospeakThatIsKilled()
    {
        m_server.close();
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder.filePath(QStringLiteral("data"))));
        Program service(arguments("start"));
        TRY_VERIFY(service.err().contains("Ctrl-C ends the service.\n"));
        service.signal(SIGKILL);
        service.outcome();
        qunsetenv("XDG_DATA_HOME");
        const quint16 port = SERVICE_PORT;
        TRY_VERIFY(m_server.start(port)); // which the service had
    }

private:
    QString settings() const { return m_home.settings() + QStringLiteral("/vospeak.conf"); }

    void answerWithVersion()
    {
        m_server.answer(Answers::envelope({{QStringLiteral("upgradeStatus"), 0}}));
    }

    ScriptedServer m_server{Identity::Localhost};
    const QTemporaryDir m_folder;
    const Home m_home;
};

QTEST_GUILESS_MAIN(TestConveniences)
#include "tst_conveniences.moc"
