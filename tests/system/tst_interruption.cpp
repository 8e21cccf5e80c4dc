#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/system/answers.h"
#include "tests/system/home.h"
#include "tests/system/program.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

namespace {

// the connection stays open, and that is all
QByteArray silence() { return {}; }
QByteArray halfTheAudio() { return "HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\nRIFF"; }

constexpr int atOnce = 5000; // ms; generous for slow machines, nothing here waits that long

} // namespace

Q_DECLARE_METATYPE(QList<QByteArray>)

/// Ctrl-C and a request to terminate end vospeak wherever it is.
class TestInterruption : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const quint16 port = SERVICE_PORT;
        QVERIFY(m_server.start(port));
        QFile recording(m_folder.filePath(QStringLiteral("recording.wav")));
        QVERIFY(recording.open(QIODevice::WriteOnly));
        QVERIFY(recording.write("RIFF") > 0);
    }

    void aSignalEndsItAtOnceAndLeavesNoFile_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<QList<QByteArray>>("answers");
        QTest::addColumn<int>("number");
        for (const int number : {SIGINT, SIGTERM}) {
            const auto say = arguments("say hello -o audio.wav");
            const auto recognize = arguments("recognize recording.wav");
            row("the reply to a short text", number, say, {silence()});
            row("the reply about a new task", number, say + arguments("--long"), {silence()});
            row("a task", number, say + arguments("--long"),
                {Answers::task(), Answers::status("QUEUEING"), Answers::status("RUNNING")});
            row("the audio of a task", number, say + arguments("--long"),
                {Answers::task(), Answers::finishedSpeech(), silence()});
            row("the rest of the audio", number, say + arguments("--long"),
                {Answers::task(), Answers::finishedSpeech(), halfTheAudio()});
            row("credentials", number, recognize, {silence()});
            row("the end of an upload", number, recognize, {Answers::credentials(), silence()});
            row("a text", number, recognize,
                {Answers::credentials(), Answers::envelope(), silence()});
        }
    }
    void aSignalEndsItAtOnceAndLeavesNoFile()
    {
        QFETCH(const QStringList, command);
        QFETCH(const QList<QByteArray>, answers);
        QFETCH(const int, number);
        m_server.reset();
        for (const QByteArray &answer : answers)
            m_server.answer(answer, ScriptedServer::Then::KeepOpen);
        QVERIFY(QDir::setCurrent(m_folder.path()));

        Program program(command
                        + QStringList{QStringLiteral("--token"), QStringLiteral("1"),
                                      QStringLiteral("--ca"), QStringLiteral(TEST_AUTHORITY)});
        TRY_COMPARE(m_server.requests().size(), answers.size());
        QElapsedTimer elapsed;
        elapsed.start();
        program.signal(number);
        const Outcome outcome = program.outcome();
        QVERIFY2(elapsed.elapsed() < atOnce, QByteArray::number(elapsed.elapsed()).constData());
        QCOMPARE(outcome.status, 128 + number);
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(QDir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{QStringLiteral("recording.wav")});
    }

private:
    static void row(const char *waitingFor, int number, const QStringList &command,
                    const QList<QByteArray> &answers)
    {
        QTest::addRow("%s, waiting for %s", number == SIGINT ? "Ctrl-C" : "terminated", waitingFor)
            << command << answers << number;
    }

    ScriptedServer m_server{Identity::Localhost};
    const QTemporaryDir m_folder;
    const Home m_home;
};

QTEST_GUILESS_MAIN(TestInterruption)
#include "tst_interruption.moc"
