#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"
#include "tests/system/answers.h"
#include "tests/system/home.h"
#include "tests/system/program.h"

#include <QFile>
#include <QJsonArray>
#include <QtTest>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int smallestPipe = 4096; // bytes that it holds

/// vospeak, writing into a pipe that takes no more than it holds, and says so instead of letting it
/// wait.
class PipedProgram
{
    Q_DISABLE_COPY(PipedProgram)

public:
    explicit PipedProgram(const QStringList &arguments, bool isRead = true)
    {
        std::array<int, 2> ends = {};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            return;
        m_end = ends[0];
        if (!isRead)
            close();
        fcntl(ends[1], F_SETPIPE_SZ, smallestPipe);
        fcntl(ends[1], F_SETFL, O_WRONLY | O_NONBLOCK);
        start(arguments, ends[1]);
        ::close(ends[1]);
    }
    ~PipedProgram()
    {
        close();
        if (m_process > 0 && !m_hasEnded)
            kill(m_process, SIGKILL);
    }

    /// What waits in the pipe.
    int waiting() const
    {
        int bytes = 0;
        return ioctl(m_end, FIONREAD, &bytes) == 0 ? bytes : -1;
    }

    /// Up to the end.
    QByteArray readAll() const
    {
        QByteArray all;
        std::array<char, 100> some = {};
        for (ssize_t size = 1; size > 0;) {
            size = ::read(m_end, some.data(), some.size());
            all.append(some.data(), int(qMax<ssize_t>(size, 0)));
        }
        return all;
    }

    void signal(int number) const { kill(m_process, number); }

    bool hasEnded() const
    {
        siginfo_t info = {};
        return waitid(P_PID, id_t(m_process), &info, WEXITED | WNOHANG | WNOWAIT) == 0
               && info.si_pid == m_process;
    }

    /// What it has written to standard error.
    QByteArray err() const { return TestFolder::contents(m_err); }

    /// Waits for the end; as wait() tells it.
    int end()
    {
        int status = -1;
        waitpid(m_process, &status, 0);
        m_hasEnded = true;
        return status;
    }

private:
    void close()
    {
        if (m_end >= 0)
            ::close(m_end);
        m_end = -1;
    }

    void start(const QStringList &words, int output)
    {
        QByteArrayList texts{Program::path().toLocal8Bit()};
        for (const QString &word : words)
            texts.append(word.toLocal8Bit());
        std::vector<char *> arguments;
        for (QByteArray &text : texts)
            arguments.push_back(text.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO,
                                         QFile::encodeName(m_err).constData(), O_WRONLY | O_CREAT,
                                         0600);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        sigset_t usual; // Qt ignores this one here
        sigemptyset(&usual);
        sigaddset(&usual, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes, &usual);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
        posix_spawn(&m_process, arguments.front(), &actions, &attributes, arguments.data(),
                    environ);
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }

    const TestFolder m_folder;
    const QString m_err = m_folder.path(QStringLiteral("err"));
    int m_end = -1;
    pid_t m_process = -1;
    bool m_hasEnded = false;
};

} // namespace

/// What becomes of what vospeak prints.
class TestOutput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const quint16 port = SERVICE_PORT;
        QVERIFY(m_server.start(port));
        QJsonArray voices;
        for (int i = 0; i < 300; ++i)
            voices.append(QJsonObject{{QStringLiteral("name"), QStringLiteral("voice %1").arg(i)}});
        m_server.answer(Answers::envelope({{QStringLiteral("list"), voices}}));
    }

    void aSlowReaderGetsEverything()
    {
        const QStringList command =
            arguments("voices --ca") + QStringList{QStringLiteral(TEST_AUTHORITY)};
        PipedProgram program(command);
        TRY_COMPARE(program.waiting(), smallestPipe);
        const QByteArray all = program.readAll();
        QVERIFY(all.size() > 2 * smallestPipe);
        QCOMPARE(all, vospeak(command).out);
        QCOMPARE(program.end(), 0);
    }

    void aSignalEndsItWhileAReaderIsWaitedFor_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("Ctrl-C") << SIGINT;
        QTest::newRow("terminated") << SIGTERM;
    }
    void aSignalEndsItWhileAReaderIsWaitedFor()
    {
        QFETCH(const int, number);
        PipedProgram program(arguments("voices --ca")
                             + QStringList{QStringLiteral(TEST_AUTHORITY)});
        TRY_COMPARE(program.waiting(), smallestPipe);
        program.signal(number);
        TRY_VERIFY(program.hasEnded());
        const int status = program.end();
        QVERIFY(WIFSIGNALED(status));
        QCOMPARE(WTERMSIG(status), number);
    }

    void aReaderThatHasGoneEndsItQuietly_data()
    {
        QTest::addColumn<QStringList>("command");
        for (const char *command : {"--help", "logout", "voices"})
            QTest::newRow(command) << arguments(command);
    }
    void aReaderThatHasGoneEndsItQuietly()
    {
        QFETCH(const QStringList, command);
        qputenv("VOSPEAK_CA", TEST_AUTHORITY);
        PipedProgram program(command, false);
        TRY_VERIFY(program.hasEnded());
        const int status = program.end();
        qunsetenv("VOSPEAK_CA");
        QVERIFY(WIFEXITED(status));
        QCOMPARE(WEXITSTATUS(status), 128 + SIGPIPE);
        QCOMPARE(program.err(), QByteArray());
    }

    void aServiceWhoseLinesNobodyReadsIsEnded()
    {
        m_server.close();
        const TestFolder folder;
        qputenv("XDG_DATA_HOME", QFile::encodeName(folder.path()));
        PipedProgram service(arguments("start"), false);
        TRY_VERIFY(service.hasEnded());
        const int status = service.end();
        qunsetenv("XDG_DATA_HOME");
        QVERIFY(WIFEXITED(status));
        QCOMPARE(WEXITSTATUS(status), 128 + SIGPIPE);
        QCOMPARE(vospeak(arguments("voices")).status, 3); // nobody is there
        const quint16 port = SERVICE_PORT;
        QVERIFY(m_server.start(port));
    }

    void whatCannotBePrintedIsAFailure_data()
    {
        QTest::addColumn<QStringList>("command");
        for (const char *command : {"--help", "--version", "logout"})
            QTest::newRow(command) << arguments(command);
    }
    void whatCannotBePrintedIsAFailure()
    {
        QFETCH(const QStringList, command);
        Program program(command, QString(), QStringLiteral("/dev/full"));
        const Outcome outcome = program.outcome();
        QCOMPARE(outcome.err,
                 QByteArray("vospeak: the result could not be written to standard output\n"));
        QCOMPARE(outcome.status, 1);
    }

private:
    ScriptedServer m_server{Identity::Localhost};
    const Home m_home;
};

QTEST_GUILESS_MAIN(TestOutput)
#include "tst_output.moc"
