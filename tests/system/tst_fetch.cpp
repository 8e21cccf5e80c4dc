#include "tests/support/nginxserver.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"
#include "tests/system/filesizelimit.h"
#include "tests/system/home.h"
#include "tests/system/program.h"
#include "tests/system/terminal.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QtTest>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

namespace {

using Then = ScriptedServer::Then;
using Script = QList<ScriptedServer::Answer>;

const QString file = QStringLiteral("file");
const QString part = QStringLiteral("file.part");

/// Bytes in which every place is recognised.
QByteArray numbered(int size)
{
    QByteArray bytes;
    for (int place = 0; bytes.size() < size; place += 16)
        bytes += QByteArray::number(place).rightJustified(15, '.') + '\n';
    return bytes.left(size);
}

/// The rest of "abcdefghij", which the servers below have.
QByteArray restOf(const QByteArray &rest, const QByteArray &range)
{
    return ScriptedServer::reply(rest, "206 Partial Content", "Content-Range: " + range + "\r\n");
}

QByteArray letters(const QByteArray &headers = "Accept-Ranges: bytes\r\n")
{
    return ScriptedServer::reply("abcdefghij", "200 OK", headers);
}

QByteArray pageAbout(const QByteArray &status)
{
    return ScriptedServer::reply("<h1>a page</h1>", status);
}

QByteArray withoutLength(const QByteArray &body, const QByteArray &headers = QByteArray())
{
    return "HTTP/1.1 200 OK\r\nConnection: close\r\n" + headers + "\r\n" + body;
}

QByteArray chunk(const QByteArray &bytes)
{
    return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n";
}

QByteArray inChunks(const QByteArray &chunks)
{
    return withoutLength(chunks, "Transfer-Encoding: chunked\r\n");
}

} // namespace

Q_DECLARE_METATYPE(Then)
Q_DECLARE_METATYPE(Script)

/// vospeak fetch: what gets into which file.
class TestFetch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(m_nginx.start(), qPrintable(m_nginx.errorText()));
        QVERIFY(m_server.start());
        QVERIFY(m_tlsServer.start());
        TestFolder::write(m_nginx.file(QStringLiteral("f")), numbered(3000000));
        TestFolder::write(m_nginx.file(QStringLiteral("empty")), QByteArray());
    }

    void init()
    {
        m_folder.emplace();
        QVERIFY(QDir::setCurrent(m_folder->path()));
        m_server.reset();
        m_tlsServer.reset();
    }

    void whatIsThereDecidesWhatTheFileGets_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("before"); // of the part; null: there is none
        QTest::addColumn<bool>("resume");
        QTest::addColumn<QByteArray>("after");
        const QByteArray whole = numbered(3000000);
        const QByteArray begun(1000001, 'o');
        const QByteArray continued = begun + whole.mid(begun.size());
        const struct
        {
            const char *name;
            const char *path;
            QByteArray before;
            QByteArray afterResuming;
        } rows[] = {
            {"no part", "/f", {}, whole},
            {"empty part", "/f", "", whole},
            {"begun", "/f", begun, continued},
            {"all but a byte", "/f", whole.chopped(1), whole},
            {"complete part", "/f", QByteArray(3000000, 'o'), QByteArray(3000000, 'o')},
            {"part too long", "/f", QByteArray(3000001, 'o'), whole},
            {"no ranges", "/noranges/f", {}, whole},
            {"no ranges, begun", "/noranges/f", begun, whole},
            {"redirected", "/moved/f", {}, whole},
            {"redirected, begun", "/moved/f", begun, continued},
            {"compressed", "/gzip/f", {}, whole},
            {"compressed, begun", "/gzip/f", begun, whole},
            {"nothing", "/empty", {}, ""},
            {"nothing, but begun", "/empty", begun, ""},
        };
        for (const auto &row : rows) {
            const QString path = QString::fromLatin1(row.path);
            const bool isEmpty = path == QLatin1String("/empty");
            QTest::addRow("%s", row.name)
                << path << row.before << false << (isEmpty ? QByteArray("") : whole);
            QTest::addRow("%s, --resume", row.name)
                << path << row.before << true << row.afterResuming;
        }
    }
    void whatIsThereDecidesWhatTheFileGets()
    {
        QFETCH(const QString, path);
        QFETCH(const QByteArray, before);
        QFETCH(const bool, resume);
        QFETCH(const QByteArray, after);
        for (const QString &address : {m_nginx.address(path), m_nginx.tlsAddress(path)}) {
            TestFolder::write(file, "older");
            if (!before.isNull())
                TestFolder::write(part, before);
            verifyQuietSuccess(fetch(address, resume ? QStringLiteral("--resume") : QString()));
            const QByteArray now = TestFolder::contents(file);
            QCOMPARE(now.size(), after.size());
            QVERIFY(now == after); // too long to print
            QCOMPARE(entries(), QStringList{file});
        }
    }

    void jsonNamesTheFileAndItsLength()
    {
        const Outcome outcome =
            fetch(m_nginx.address(QStringLiteral("/f")), QStringLiteral("--json"));
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.out, QByteArray("{\"bytes\":3000000,\"file\":\"file\"}\n"));
        QCOMPARE(outcome.err, QByteArray());
    }

    void theAddressNamesTheFileAndNotTheServer_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << QStringLiteral("/a/song.wav") << QStringLiteral("song.wav");
        QTest::newRow("query") << QStringLiteral("/song.wav?a=b/c") << QStringLiteral("song.wav");
        QTest::newRow("encoded folders")
            << QStringLiteral("/..%2F..%2Fsong") << QStringLiteral("song");
        QTest::newRow("encoded") << QStringLiteral("/my%20song") << QStringLiteral("my song");
    }
    void theAddressNamesTheFileAndNotTheServer()
    {
        QFETCH(const QString, path);
        QFETCH(const QString, name);
        m_server.answer(letters("Content-Disposition: attachment; filename=../evil\r\n"));
        verifyQuietSuccess(vospeak({QStringLiteral("fetch"), m_server.address(path)}));
        QCOMPARE(entries(), QStringList{name});
        QCOMPARE(TestFolder::contents(name), QByteArray("abcdefghij"));
    }

    void anOddServerIsUnderstood_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<QByteArray>("after");
        const QByteArray rest = restOf("efghij", "bytes 4-9/10");
        const QByteArray big(200000, 'b');
        // A part "ABCD" is there.
        row("continues", {letters(), letters(), rest}, "ABCDefghij");
        row("does not tell the whole length in a range",
            {letters(), letters(), restOf("efghij", "bytes 4-9/*")}, "ABCDefghij");
        row("ignores the range", {letters()}, "abcdefghij");
        row("says that it has no ranges", {letters("Accept-Ranges: none\r\n")}, "abcdefghij");
        row("sends another range",
            {letters(), letters(), restOf("cdefghij", "bytes 2-9/10"), letters()}, "abcdefghij");
        row("sends a range without saying which",
            {letters(), letters(), ScriptedServer::reply("efghij", "206 Partial Content"),
             letters()},
            "abcdefghij");
        row("has another file by now",
            {letters(), letters(), restOf("efghijkl", "bytes 4-11/12"),
             ScriptedServer::reply("abcdefghijkl")},
            "abcdefghijkl");
        row("has less by now", {letters("")}, "abcdefghij");
        row("has a growing file",
            {ScriptedServer::reply("abc"), ScriptedServer::reply("abcd"),
             ScriptedServer::reply("abcde")},
            "abcde");
        row("fails the second time only",
            {letters(), ScriptedServer::reply({}, "503 Service Unavailable"), letters()},
            "abcdefghij");
        row("announces no length", {withoutLength("abc")}, "abc");
        row("announces no length, but ranges", {withoutLength("abc", "Accept-Ranges: bytes\r\n")},
            "abc");
        row("sends chunks", {inChunks(chunk("ab") + chunk("c") + chunk({}))}, "abc");
        row("sends chunks and a length",
            {withoutLength(chunk("abc") + chunk({}),
                           "Content-Length: 123456\r\nTransfer-Encoding: chunked\r\n")},
            "abc");
        row("sends one large chunk", {inChunks(chunk(big) + chunk({}))}, big);
        row("has nothing and announces it", {ScriptedServer::reply({})}, "");
        row("has nothing and does not announce it", {withoutLength({})}, "");
        row("has nothing, in chunks", {inChunks(chunk({}))}, "");
        const QByteArray moved =
            ScriptedServer::reply("<h1>a page</h1>", "302 Found", "Location: /there\r\n");
        row("redirects with a page", {moved, letters(), letters(), rest}, "ABCDefghij");
        row("redirects each time", {moved, letters(), moved, letters()}, "abcdefghij");
    }
    void anOddServerIsUnderstood()
    {
        QFETCH(const Script, script);
        QFETCH(const QByteArray, after);
        play(script);
        TestFolder::write(part, "ABCD");
        verifyQuietSuccess(
            fetch(m_server.address(QStringLiteral("/f")), QStringLiteral("--resume")));
        QCOMPARE(TestFolder::contents(file), after);
        QCOMPARE(entries(), QStringList{file});
    }

    void whereARedirectLeadsIsRemembered()
    {
        const QByteArray moved =
            ScriptedServer::reply("<h1>a page</h1>", "302 Found", "Location: /there\r\n");
        play({{moved}, {letters()}});
        verifyQuietSuccess(fetch(m_server.address(QStringLiteral("/f"))));
        QList<QByteArray> paths;
        for (const QByteArray &request : m_server.requests())
            paths.append(request.split(' ').value(1));
        QCOMPARE(paths, (QList<QByteArray>{"/f", "/there", "/there", "/there"}));
    }

    void aRefusalIsToldAndTouchesNoFile_data()
    {
        QTest::addColumn<Script>("script");
        QTest::addColumn<QByteArray>("answer");
        const QByteArray bare = ScriptedServer::reply({}, "500 Internal Server Error");
        const QByteArray rest = restOf("efghij", "bytes 4-9/10");
        row("a page", {pageAbout("404 Not Found")}, "404 Not Found");
        row("no page", {bare}, "500 Internal Server Error");
        row("no reason", {pageAbout("404 ")}, "404");
        row("credentials", {pageAbout("401 Unauthorized")}, "401 Unauthorized");
        row("credentials for a proxy that is none",
            {pageAbout("407 Proxy Authentication Required")}, "407 Proxy Authentication Required");
        row("several to choose from", {pageAbout("300 Multiple Choices")}, "300 Multiple Choices");
        row("a range that nobody asked for", {rest}, "206 Partial Content");
        row("no page, after the first question", {letters(), bare}, "500 Internal Server Error");
        row("a page in place of the rest",
            {letters(), letters(), pageAbout("503 Service Unavailable")},
            "503 Service Unavailable");
        row("no page in place of the rest", {letters(), letters(), bare},
            "500 Internal Server Error");
        row("a range of a file without ranges", {letters(""), letters(""), rest},
            "206 Partial Content");
    }
    void aRefusalIsToldAndTouchesNoFile()
    {
        QFETCH(const Script, script);
        QFETCH(const QByteArray, answer);
        play(script);
        TestFolder::write(file, "older");
        TestFolder::write(part, "ABCD");
        const QString address = m_server.address(QStringLiteral("/f"));
        verifyFailure(fetch(address, QStringLiteral("--resume")), 5, address,
                      "the server answered " + answer);
        QCOMPARE(TestFolder::contents(file), QByteArray("older"));
        QCOMPARE(TestFolder::contents(part), QByteArray("ABCD"));
    }

    void aRestThatIsTooShortIsAFailure()
    {
        play({{letters()},
              {letters()},
              {"HTTP/1.1 206 Partial Content\r\nContent-Range: bytes 4-9/10\r\n"
               "Connection: close\r\n\r\nefg"}});
        TestFolder::write(part, "ABCD");
        const QString address = m_server.address(QStringLiteral("/f"));
        verifyFailure(fetch(address, QStringLiteral("--resume")), 3, address, "7 bytes came of 10");
        QCOMPARE(entries(), QStringList{part});
        QCOMPARE(TestFolder::contents(part), QByteArray("ABCDefg"));
    }

    // Qt takes that for the end or for a failure, depending on what it has read by then.
    void chunksThatAreCutOffAreNotWaitedFor()
    {
        play({{inChunks(chunk(QByteArray(200000, 'b')))}});
        const Outcome outcome = fetch(m_server.address(QStringLiteral("/f")));
        QVERIFY2(outcome.status == 0 || outcome.status == 3, outcome.err.constData());
    }

    void aFileThatIsNotOnTheServerLeavesNothing()
    {
        const QString address = m_nginx.address(QStringLiteral("/missing"));
        verifyFailure(fetch(address), 5, address, "the server answered 404 Not Found");
        QCOMPARE(entries(), QStringList());
    }

    void aBrokenTransferIsContinuedByTheNextRun_data()
    {
        QTest::addColumn<Then>("then");
        QTest::newRow("ended") << Then::Close;
        QTest::newRow("cut off") << Then::Reset;
    }
    void aBrokenTransferIsContinuedByTheNextRun()
    {
        QFETCH(const Then, then);
        const QByteArray begun = letters().chopped(6);
        play({{letters()}, {letters()}, {begun, then}});
        TestFolder::write(file, "older");
        const QString address = m_server.address(QStringLiteral("/f"));
        const Outcome outcome = fetch(address);
        QCOMPARE(outcome.status, 3);
        QCOMPARE(outcome.out, QByteArray());
        QVERIFY2(isOneLine(outcome.err), outcome.err.constData());
        QCOMPARE(TestFolder::contents(file), QByteArray("older"));

        const QByteArray kept = TestFolder::contents(part); // a reset may overtake bytes
        QVERIFY2(QByteArray("abcd").startsWith(kept), kept.constData());
        TestFolder::write(part, "abcd");
        m_server.reset();
        play({{letters()}, {letters()}, {restOf("EFGHIJ", "bytes 4-9/10")}});
        verifyQuietSuccess(fetch(address, QStringLiteral("--resume")));
        QCOMPARE(TestFolder::contents(file), QByteArray("abcdEFGHIJ"));
        QVERIFY(m_server.requests().last().contains("\r\nRange: bytes=4-\r\n"));
        QVERIFY(m_server.requests().last().contains("\r\nAccept-Encoding: identity\r\n"));
    }

    void aSignalKeepsWhatCame_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("Ctrl-C") << SIGINT;
        QTest::newRow("terminated") << SIGTERM;
    }
    void aSignalKeepsWhatCame()
    {
        QFETCH(const int, number);
        play({{letters()}, {letters()}, {letters().chopped(6), Then::KeepOpen}});
        TestFolder::write(file, "older");
        Program program({QStringLiteral("fetch"), m_server.address(QStringLiteral("/f")),
                         QStringLiteral("-o"), file});
        TRY_COMPARE(TestFolder::contents(part), QByteArray("abcd"));
        program.signal(number);
        const Outcome outcome = program.outcome();
        QCOMPARE(outcome.status, 128 + number);
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(TestFolder::contents(file), QByteArray("older"));
        QCOMPARE(TestFolder::contents(part), QByteArray("abcd"));
    }

    void aTerminalIsToldHowToGoOnWithAPart()
    {
        play({{letters()}, {letters()}, {letters().chopped(6), Then::KeepOpen}});
        Terminal terminal;
        Program program({QStringLiteral("fetch"), m_server.address(QStringLiteral("/f")),
                         QStringLiteral("-o"), file},
                        terminal.name());
        TRY_COMPARE(TestFolder::contents(part), QByteArray("abcd"));
        program.signal(SIGINT);
        QCOMPARE(program.outcome().status, 130);
        QCOMPARE(Terminal::linesOf(terminal.read()),
                 (QByteArrayList{"what came is kept; the same command with --resume goes on", ""}));
    }

    void aFullDiskIsToldAndThePartKept()
    {
        TestFolder::write(file, "older");
        const QString address = m_nginx.address(QStringLiteral("/f"));
        Outcome outcome;
        {
            const FileSizeLimit limit(1000000);
            outcome = fetch(address);
        }
        verifyFailure(outcome, 1, address,
                      "\"" + QFileInfo(file).absolutePath().toUtf8()
                          + "/file.part\" could not be written");
        QCOMPARE(TestFolder::contents(file), QByteArray("older"));
        QCOMPARE(QFileInfo(part).size(), 1000000);
        verifyQuietSuccess(fetch(address, QStringLiteral("--resume")));
        QVERIFY(TestFolder::contents(file) == numbered(3000000));
    }

    void aFullDiskIsNoticedWhateverTheLength_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::newRow("announced") << letters();
        QTest::newRow("not announced") << withoutLength("abcdefghij");
        QTest::newRow("in chunks") << inChunks(chunk("abcdefghij") + chunk({}));
    }
    void aFullDiskIsNoticedWhateverTheLength()
    {
        QFETCH(const QByteArray, reply);
        play({{reply}});
        const QString address = m_server.address(QStringLiteral("/f"));
        Outcome outcome;
        {
            const FileSizeLimit limit(4);
            outcome = fetch(address);
        }
        QCOMPARE(outcome.status, 1);
        QVERIFY2(isOneLine(outcome.err) && outcome.err.endsWith("could not be written\n"),
                 outcome.err.constData());
        QCOMPARE(entries(), QStringList{part});
        QCOMPARE(TestFolder::contents(part), QByteArray("abcd"));
    }

    void aLinkStaysALink()
    {
        QVERIFY(QDir().mkdir(QStringLiteral("elsewhere")));
        const QString target = QStringLiteral("elsewhere/target");
        TestFolder::write(target, "older");
        TestFolder::write(target + QStringLiteral(".part"), "ABCD");
        QVERIFY(QFile::link(target, file));
        play({{letters()}, {letters()}, {restOf("efghij", "bytes 4-9/10")}});
        verifyQuietSuccess(
            fetch(m_server.address(QStringLiteral("/f")), QStringLiteral("--resume")));
        QVERIFY(QFileInfo(file).isSymLink());
        QCOMPARE(TestFolder::contents(target), QByteArray("ABCDefghij"));
        QCOMPARE(QDir(QStringLiteral("elsewhere")).entryList(QDir::Files),
                 QStringList{QStringLiteral("target")});
    }

    void aPartThatIsALinkIsReplaced_data()
    {
        QTest::addColumn<bool>("isSymbolic");
        QTest::newRow("symbolic") << true;
        QTest::newRow("hard") << false;
    }
    void aPartThatIsALinkIsReplaced()
    {
        QFETCH(const bool, isSymbolic);
        TestFolder::write(QStringLiteral("other"), "OTHER");
        QCOMPARE(isSymbolic ? ::symlink("other", "file.part") : ::link("other", "file.part"), 0);
        play({{letters()}});
        verifyQuietSuccess(fetch(m_server.address(QStringLiteral("/f"))));
        QCOMPARE(TestFolder::contents(file), QByteArray("abcdefghij"));
        QCOMPARE(TestFolder::contents(QStringLiteral("other")), QByteArray("OTHER"));
        QVERIFY(!QFileInfo(file).isSymLink());
    }

    void aPartThatIsALinkIsNotGoneOnWith()
    {
        TestFolder::write(QStringLiteral("other"), "OTHER");
        QVERIFY(QFile::link(QStringLiteral("other"), part));
        play({{letters()}, {letters()}, {restOf("fghij", "bytes 5-9/10")}});
        const Outcome outcome =
            fetch(m_server.address(QStringLiteral("/f")), QStringLiteral("--resume"));
        QCOMPARE(outcome.err,
                 QByteArray("vospeak: \"file.part\" is a link and cannot be gone on with\n"));
        QCOMPARE(outcome.status, 2);
        QCOMPARE(TestFolder::contents(QStringLiteral("other")), QByteArray("OTHER"));
        QCOMPARE(m_server.requests(), QList<QByteArray>());
    }

    void aServerIsTrustedOnlyWithItsAuthority()
    {
        const QString address = m_nginx.tlsAddress(QStringLiteral("/f"));
        const Outcome outcome =
            vospeak({QStringLiteral("fetch"), address, QStringLiteral("-o"), file});
        QCOMPARE(outcome.status, 4);
        QVERIFY2(isOneLine(outcome.err) && outcome.err.contains("not trusted"),
                 outcome.err.constData());
        QCOMPARE(entries(), QStringList());
    }

    void aRedirectToALessSafeSchemeIsNotFollowed()
    {
        const QByteArray there = m_server.address(QStringLiteral("/f")).toLatin1();
        m_tlsServer.answer(ScriptedServer::reply({}, "302 Found", "Location: " + there + "\r\n"));
        m_server.answer(letters());
        const Outcome outcome = fetch(m_tlsServer.address(QStringLiteral("/f")));
        QCOMPARE(outcome.status, 3);
        QVERIFY2(isOneLine(outcome.err), outcome.err.constData());
        QCOMPARE(m_server.requests(), QList<QByteArray>());
        QCOMPARE(entries(), QStringList());
    }

    void nobodyWhoAnswersIsAFailure()
    {
        const QString address =
            QStringLiteral("http://localhost:%1/f").arg(ExternalServer::freePort());
        verifyFailure(fetch(address), 3, address, "connection refused");
        QCOMPARE(entries(), QStringList());
    }

    void credentialsInTheAddressAreUsed()
    {
        const QByteArray question = ScriptedServer::reply(
            "who?", "401 Unauthorized", "WWW-Authenticate: Basic realm=\"r\"\r\n");
        // Two access managers ask, and each keeps what it was told.
        play({{question}, {letters()}, {question}, {letters()}, {letters()}});
        QString address = m_server.address(QStringLiteral("/f"));
        address.replace(QStringLiteral("//"), QStringLiteral("//me:secret@"));
        verifyQuietSuccess(fetch(address));
        QCOMPARE(TestFolder::contents(file), QByteArray("abcdefghij"));
    }

    void aPasswordInTheAddressIsNotPrinted()
    {
        play({{pageAbout("404 Not Found")}});
        const QString address = m_server.address(QStringLiteral("/f"));
        const auto as = [address](const QString &user) {
            return QString(address).replace(QStringLiteral("//"),
                                            QStringLiteral("//%1@").arg(user));
        };
        verifyFailure(fetch(as(QStringLiteral("me:secret"))), 5, as(QStringLiteral("me")),
                      "the server answered 404 Not Found");
    }

    void aTerminalSeesHowFarItIs()
    {
        const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
        QVERIFY(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
        TestFolder::write(part, numbered(1500000));
        Program program(
            withAuthority({QStringLiteral("fetch"), m_nginx.address(QStringLiteral("/f")),
                           QStringLiteral("-o"), file, QStringLiteral("--resume")}),
            QString::fromLocal8Bit(ptsname(terminal)));
        QCOMPARE(program.outcome().status, 0);
        QByteArray shown(65536, '\0');
        shown.truncate(int(::read(terminal, shown.data(), size_t(shown.size()))));
        ::close(terminal);
        const QList<QByteArray> lines = shown.split('\r');
        QCOMPARE(lines.value(1), QByteArray("asking for the file"));
        static const QRegularExpression expected(
            QStringLiteral(R"(^100 % \[#{20}\] \d+(\.\d)? [KMG]?i?B/s, 0:00 left$)"));
        QVERIFY2(lines.size() >= 5, shown.constData());
        const QByteArray last = lines.at(lines.size() - 3).trimmed();
        QVERIFY2(expected.match(QString::fromLatin1(last)).hasMatch(), shown.constData());
        QCOMPARE(lines.at(lines.size() - 2).trimmed(), QByteArray()); // gone in the end
        QCOMPARE(lines.last(), QByteArray());
    }

private:
    static void row(const char *name, const QList<QByteArray> &replies, const QByteArray &result)
    {
        Script script;
        for (const QByteArray &reply : replies)
            script.append({reply, Then::Close});
        QTest::newRow(name) << script << result;
    }

    void play(const Script &script)
    {
        for (const ScriptedServer::Answer &answer : script)
            m_server.answer(answer.bytes, answer.then);
    }

    static QStringList withAuthority(const QStringList &command)
    {
        return command + QStringList{QStringLiteral("--ca"), QStringLiteral(TEST_AUTHORITY)};
    }

    static Outcome fetch(const QString &address, const QString &option = QString())
    {
        QStringList command{QStringLiteral("fetch"), address, QStringLiteral("-o"), file};
        if (!option.isEmpty())
            command << option;
        return Program(withAuthority(command)).outcome();
    }

    static void verifyQuietSuccess(const Outcome &outcome)
    {
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(outcome.status, 0);
    }

    static void verifyFailure(const Outcome &outcome, int status, const QString &address,
                              const QByteArray &problem)
    {
        QCOMPARE(outcome.err, "vospeak: \"" + address.toUtf8()
                                  + "\" could not be downloaded: " + problem + '\n');
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(outcome.status, status);
    }

    static QStringList entries()
    {
        return QDir().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    NginxServer m_nginx;
    ScriptedServer m_server;
    ScriptedServer m_tlsServer{Identity::Localhost};
    std::optional<TestFolder> m_folder; // a new one for each test
    const Home m_home;
};

QTEST_GUILESS_MAIN(TestFetch)
#include "tst_fetch.moc"
