#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/httptesting.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTest>

#ifndef Q_OS_WIN
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>
#endif

using HttpTesting::waitUntilGone;

namespace {

#ifdef Q_OS_WIN

constexpr bool isUnix = false;

/// Nothing: what needs more is skipped.
struct AsOrdinaryUser
{
    AsOrdinaryUser() {
    } // NOLINT(modernize-use-equals-default): not trivial, so it is no unused variable
};

/// The same.
struct FileSizeLimit
{
    explicit FileSizeLimit(int /*bytes*/) {}
};

#else

constexpr bool isUnix = true;

/// Root may write everywhere; while this lives the process may do what a user may.
class AsOrdinaryUser
{
    Q_DISABLE_COPY(AsOrdinaryUser)

public:
    AsOrdinaryUser()
    {
        if (m_before == 0 && seteuid(65534) != 0)
            qFatal("cannot become an ordinary user");
    }
    ~AsOrdinaryUser()
    {
        if (seteuid(m_before) != 0)
            qFatal("cannot become root again");
    }

private:
    const uid_t m_before = geteuid();
};

/// While this lives no file grows beyond @p bytes, as on a disk that is full.
class FileSizeLimit
{
    Q_DISABLE_COPY(FileSizeLimit)

public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN)) // a failed write is enough
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            qFatal("cannot limit the size of files");
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    void (*m_handler)(int);
    rlimit m_before{};
};

#endif

} // namespace

/// Targets that take nothing or not everything: reported with exact texts, while the transfer goes
/// on to its end.
class TestHttpDownloadTargets : public QObject
{
    Q_OBJECT

    QByteArray m_body;

    /// Downloads to @p target; @p before runs when the download itself is asked for.
    QStringList download(
        const QString &target, bool resume = true, const std::function<void()> &before = [] {})
    {
        ScriptedServer server;
        if (!server.start())
            return {"no server"_s};
        m_address = server.address("/f"_s);
        m_asked.clear();
        server.answer(ScriptedServer::reply(m_body, "200 OK", "Accept-Ranges: bytes\r\n"));
        connect(&server, &ScriptedServer::requestReceived, this, [&](const QByteArray &) {
            m_asked = server.requests().last();
            if (server.requests().size() == 2)
                before();
        });
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        log.bindFile(request.url(m_address).download(target).enableResume(resume));
        request.onFinished([&log](const QByteArray &body) {
            log.add("finished with %1 bytes"_s.arg(body.size()));
        });
        request.onError([&log] { log.add("error"_s); });
        if (!waitUntilGone(request.send()))
            log.add("no end"_s);
        return log.lines();
    }

    QStringList unwritable(const QString &target) const
    {
        return {"fileError()"_s, "fileError Url: %1 %2 Non-Writable"_s.arg(m_address, target),
                "finished with 1000000 bytes"_s};
    }

    QString m_address;
    QByteArray m_asked; ///< The last request.

private Q_SLOTS:
    void init() { m_body = QByteArray(1000000, 'x'); } // many times what a reply buffers

    void aTargetThatCannotBeOpenedIsReportedAndTheBodyDelivered_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("resume");
        for (const bool resume : {false, true}) {
            const char *how = resume ? ", resume" : "";
            QTest::addRow("folder in its place%s", how) << "folder"_s << resume;
            QTest::addRow("missing folder%s", how) << "missing/f"_s << resume;
            QTest::addRow("file as a folder%s", how) << "readonly/f"_s << resume;
            QTest::addRow("read-only file%s", how) << "readonly"_s << resume;
            QTest::addRow("read-only folder%s", how) << "closed/f"_s << resume;
            QTest::addRow("name too long%s", how) << QString(300, QLatin1Char('n')) << resume;
        }
    }
    void aTargetThatCannotBeOpenedIsReportedAndTheBodyDelivered()
    {
        QFETCH(QString, name);
        QFETCH(bool, resume);
        if (name == "readonly"_s && HttpTesting::isUnderWine())
            QSKIP("Wine lets root write a read-only file", );
        if (!isUnix && name == "closed/f"_s)
            QSKIP("Qt cannot take from a folder on Windows that files are made in it", );
        const TestFolder folder;
        QVERIFY(QDir(folder.path()).mkdir("folder"_s));
        QVERIFY(QDir(folder.path()).mkdir("closed"_s));
        TestFolder::write(folder.path("readonly"_s), "old");
        const auto reading = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
        const auto entering = QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
        QVERIFY(QFile::setPermissions(folder.path("readonly"_s), reading));
        QVERIFY(QFile::setPermissions(folder.path("closed"_s), reading | entering));
        QVERIFY(QFile::setPermissions(folder.path(), reading | entering | QFile::WriteOwner));
        const QString target = folder.path(name);
        {
            const AsOrdinaryUser user;
            const QStringList lines = download(target, resume);
            QCOMPARE(lines, unwritable(target));
        }
        QCOMPARE(TestFolder::contents(folder.path("readonly"_s)), "old"_b);
    }

    void theReaderGetsTheBodyOfATargetThatCannotBeOpened()
    {
        const TestFolder folder;
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply(m_body));
        HttpClient client;
        QByteArray body;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address("/f"_s)).download(folder.path());
        request.onReadyRead([&body](QNetworkReply *reply) { body += reply->readAll(); });
        QVERIFY(waitUntilGone(request.send()));
        QVERIFY(body == m_body); // too long to print
    }

    void aTargetThatCannotBeReadIsNotContinued_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("folder") << "folder"_s;
        QTest::newRow("file to write only") << "secret"_s;
    }
    void aTargetThatCannotBeReadIsNotContinued()
    {
        QFETCH(QString, name);
        if (!isUnix && name == "secret"_s)
            QSKIP("Qt cannot take from a file on Windows that it is read", );
        const TestFolder folder;
        QVERIFY(QDir(folder.path()).mkdir("folder"_s));
        TestFolder::write(folder.path("secret"_s), "old");
        const auto writing = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
        QVERIFY(QFile::setPermissions(folder.path("secret"_s), writing));
        const auto entering = QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
        QVERIFY(QFile::setPermissions(folder.path(), entering | QFile::WriteOwner));
        const auto reset = qScopeGuard([&folder] { // so that it can be removed
            QFile::setPermissions(folder.path(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        });
        {
            const AsOrdinaryUser user;
            download(folder.path(name));
        }
        QVERIFY(!m_asked.isEmpty());
        QVERIFY2(!m_asked.contains("Range:"), m_asked);
    }

    void aFolderThatVanishesBeforeTheBodyComesIsReported()
    {
        const TestFolder folder;
        const QString inner = folder.path("inner"_s);
        QVERIFY(QDir(folder.path()).mkdir("inner"_s));
        const QStringList lines =
            download(inner + "/f"_s, true, [&inner] { QVERIFY(QDir(inner).removeRecursively()); });
        QCOMPARE(lines, unwritable(inner + "/f"_s));
    }

    void aFileThatVanishesMeanwhileIsNotNoticed()
    {
        if (!isUnix)
            QSKIP("Windows does not let an open file vanish", );
        const TestFolder folder;
        const QString target = folder.path("f"_s);
        ScriptedServer server;
        QVERIFY(server.start());
        server.answer(ScriptedServer::reply("body"));
        server.answer(ScriptedServer::reply("body").chopped(2), ScriptedServer::Then::KeepOpen);
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        HttpResponse *response =
            log.bindFile(request.url(server.address("/"_s)).download(target)).send();
        TRY_COMPARE(TestFolder::contents(target), "bo"_b);
        QVERIFY(QFile::remove(target));
        server.push("dy");
        QVERIFY(waitUntilGone(response));
        QCOMPARE(log.lines(), (QStringList{"file()"_s, "file "_s + target}));
        QVERIFY(!QFile::exists(target));
    }

    void aFullDiskIsReportedHoweverLittleIsWritten()
    {
        if (!isUnix)
            QSKIP("Windows has no file that takes nothing", );
        m_body = "little";
        const QStringList lines = download("/dev/full"_s, false);
        QCOMPARE(lines, (QStringList{"fileError()"_s,
                                     "fileError Url: %1 /dev/full Write failed!"_s.arg(m_address),
                                     "file()"_s, "file /dev/full"_s, "finished with 0 bytes"_s}));
    }

    void aFullDiskIsReportedForEachPartAndTheTransferGoesOn_data()
    {
        QTest::addColumn<bool>("device");
        QTest::newRow("takes nothing") << true;
        QTest::newRow("takes a part") << false;
    }
    void aFullDiskIsReportedForEachPartAndTheTransferGoesOn()
    {
        QFETCH(bool, device);
        if (!isUnix)
            QSKIP("Windows has no file that takes nothing, and no limit of the size of files", );
        const TestFolder folder;
        const QString target = device ? "/dev/full"_s : folder.path("f"_s);
        QVERIFY(!device || QFile::exists(target));
        QStringList lines;
        {
            const FileSizeLimit limit(100000);
            lines = download(target);
        }
        const QStringList end{"file()"_s, "file "_s + target, "finished with 0 bytes"_s};
        QCOMPARE(lines.mid(lines.size() - 3), end);
        lines = lines.mid(0, lines.size() - 3);
        QVERIFY(!lines.isEmpty());
        const QString problem = "fileError Url: %1 %2 Write failed!"_s.arg(m_address, target);
        for (int i = 0; i < lines.size(); i += 2)
            QCOMPARE(lines.mid(i, 2), (QStringList{"fileError()"_s, problem}));
        if (!device)
            QCOMPARE(TestFolder::contents(target), m_body.left(100000));
    }
};

QTEST_GUILESS_MAIN(TestHttpDownloadTargets)
#include "tst_httpdownloadtargets.moc"
