#include "tests/network/operation.h"
#include "tests/network/servicetest.h"
#include "tests/network/timeoutwatch.h"
#include "tests/support/patience.h"
#include "tests/support/testfolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QSignalSpy>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace {

QByteArray everyByte(int repeats)
{
    QByteArray bytes;
    for (int i = 0; i < 256 * repeats; ++i)
        bytes.append(static_cast<char>(i));
    return bytes;
}

} // namespace

/// DownloadLongTTSRet.
class TestFileFetch : public ServiceTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_folder.isValid()); }
    void init();

    void sendsAPlainGet_data();
    void sendsAPlainGet();
    void writesTheWholeBody_data();
    void writesTheWholeBody();
    void replacesAnExistingFile();
    void fetchesOverTls();
    void doesNotFollowARedirect_data();
    void doesNotFollowARedirect();
    void leavesTheDiskAloneOnAnHttpError_data();
    void leavesTheDiskAloneOnAnHttpError();
    void leavesTheDiskAloneWhenTheTransferBreaks_data();
    void leavesTheDiskAloneWhenTheTransferBreaks();
    void refusesAnAddressThatLeadsNowhere_data();
    void refusesAnAddressThatLeadsNowhere();
    void failsWhenTheFileCannotBeOpened_data();
    void failsWhenTheFileCannotBeOpened();
    void doesNotNoticeAShortWrite();
    void hasNoTimeOut();
    void closesItsConnectionBeforeItReturns();
    void deliversOtherAnswersWhileItWaits();
    void outlivesTheServiceObject();
    void endsWithoutAFileWhenTheApplicationQuits_data();
    void endsWithoutAFileWhenTheApplicationQuits();
    void emitsNoSignal();

private:
    bool fetch(const QString &address) { return service->DownloadLongTTSRet(address, m_path); }
    bool fetch() { return fetch(m_files->address("/a.mp3"_s)); }
    QString start(const QString &address) const;
    QByteArray written() const { return TestFolder::contents(m_path); }

    QTemporaryDir m_folder;
    QString m_path;
    std::unique_ptr<ScriptedServer> m_files;
};

void TestFileFetch::init()
{
    ServiceTest::init();
    m_files = std::make_unique<ScriptedServer>();
    QVERIFY(m_files->start());
    m_path = m_folder.filePath("audio.mp3"_s);
    QFile::remove(m_path);
}

/// The line that is logged before anything else.
QString TestFileFetch::start(const QString &address) const
{
    return R"(VoNetworker::DownloadLongTTSRet fileUrl= "%1" ,saveDir= "%2")"_s.arg(address, m_path);
}

void TestFileFetch::sendsAPlainGet_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("plain") << "/a.mp3"_s << QByteArray("/a.mp3");
    QTest::newRow("blanks") << "/a b.mp3"_s << QByteArray("/a%20b.mp3");
    QTest::newRow("escapes") << "/a%20b%2Fc.mp3"_s << QByteArray("/a%20b%2Fc.mp3");
    QTest::newRow("a lone percent sign") << "/100%.mp3"_s << QByteArray("/100%25.mp3");
    QTest::newRow("another script") << "/é.mp3"_s << QByteArray("/%C3%A9.mp3");
    QTest::newRow("a query") << "/a.mp3?Expires=1&Signature=a%2Bb%3D"_s
                             << QByteArray("/a.mp3?Expires=1&Signature=a%2Bb%3D");
    QTest::newRow("a fragment") << "/a.mp3#b"_s << QByteArray("/a.mp3");
    QTest::newRow("no path") << QString() << QByteArray("/");
}

void TestFileFetch::sendsAPlainGet()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, sent);
    m_files->answer(ScriptedServer::reply("audio"));
    const QString address = m_files->address(path);
    QVERIFY(fetch(address));
    // None of the library's own headers.
    QCOMPARE(m_files->requests(),
             QList<QByteArray>{"GET " + sent + " HTTP/1.1\r\nHost: localhost:"
                               + QByteArray::number(m_files->serverPort())
                               + "\r\nConnection: Keep-Alive\r\nAccept-Encoding: gzip, deflate\r\n"
                                 "Accept-Language: "
                               + acceptLanguage() + "\r\nUser-Agent: Mozilla/5.0\r\n\r\n"});
    QCOMPARE(logged(), QStringList{start(address)});
}

void TestFileFetch::writesTheWholeBody_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one byte") << QByteArray(1, '\0');
    QTest::newRow("every byte") << everyByte(1);
    QTest::newRow("line ends") << QByteArray("a\r\nb\nc\r\x1a");
    QTest::newRow("megabytes") << everyByte(16384);
}

void TestFileFetch::writesTheWholeBody()
{
    QFETCH(QByteArray, body);
    m_files->answer(ScriptedServer::reply(body));
    QVERIFY(fetch());
    QVERIFY(QFile::exists(m_path));
    QVERIFY(written() == body); // megabytes are not to be printed
    QCOMPARE(logged(), QStringList{start(m_files->address("/a.mp3"_s))});
}

void TestFileFetch::replacesAnExistingFile()
{
    QFile old(m_path);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("longer than what comes after it");
    old.close();
    m_files->answer(ScriptedServer::reply("new"));
    QVERIFY(fetch());
    QCOMPARE(written(), QByteArray("new"));
}

void TestFileFetch::fetchesOverTls()
{
    server->answer(ScriptedServer::reply("over TLS"));
    QVERIFY(fetch(server->address("/a.mp3"_s)));
    QCOMPARE(written(), QByteArray("over TLS"));
}

void TestFileFetch::doesNotFollowARedirect_data()
{
    QTest::addColumn<QByteArray>("status");
    for (const char *status : {"301 Moved Permanently", "302 Found", "303 See Other",
                               "307 Temporary Redirect", "308 Permanent Redirect"})
        QTest::newRow(status) << QByteArray(status);
}

void TestFileFetch::doesNotFollowARedirect()
{
    QFETCH(QByteArray, status);
    m_files->answer(ScriptedServer::reply("elsewhere", status, "Location: /b.mp3\r\n"));
    m_files->answer(ScriptedServer::reply("the other file"));
    QVERIFY(fetch());
    QCOMPARE(m_files->requests().size(), 1);
    QCOMPARE(written(), QByteArray("elsewhere"));
}

void TestFileFetch::leavesTheDiskAloneOnAnHttpError_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QString>("error");
    QTest::newRow("404") << QByteArray("404 Not Found") << "ContentNotFoundError"_s;
    QTest::newRow("401") << QByteArray("401 Unauthorized") << "AuthenticationRequiredError"_s;
    QTest::newRow("403") << QByteArray("403 Forbidden") << "ContentAccessDenied"_s;
    QTest::newRow("410") << QByteArray("410 Gone") << "ContentGoneError"_s;
    QTest::newRow("418") << QByteArray("418 Teapot") << "ProtocolInvalidOperationError"_s;
    QTest::newRow("500") << QByteArray("500 Oops") << "InternalServerError"_s;
    QTest::newRow("503") << QByteArray("503 Busy") << "ServiceUnavailableError"_s;
}

void TestFileFetch::leavesTheDiskAloneOnAnHttpError()
{
    QFETCH(QByteArray, status);
    QFETCH(QString, error);
    m_files->answer(ScriptedServer::reply("an error page", status));
    QVERIFY(!fetch());
    QCOMPARE(written(), QByteArray("<unreadable>"));
    QCOMPARE(logged(), (QStringList{start(m_files->address("/a.mp3"_s)),
                                    "[error] VoNetworker::DownloadLongTTSRet %1"_s.arg(error)}));

    QFile old(m_path);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    QVERIFY(!fetch());
    QCOMPARE(written(), QByteArray("old"));
}

void TestFileFetch::leavesTheDiskAloneWhenTheTransferBreaks_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("reset");
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n";
    QTest::newRow("ended before the body") << head << false;
    QTest::newRow("cut off before the body") << head << true;
    QTest::newRow("ended in the body") << head + "ten bytes." << false;
    QTest::newRow("cut off in the body") << head + "ten bytes." << true;
    QTest::newRow("ended before the head") << QByteArray() << false;
}

void TestFileFetch::leavesTheDiskAloneWhenTheTransferBreaks()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, reset);
    m_files->answer(bytes, reset ? ScriptedServer::Then::Reset : ScriptedServer::Then::Close);
    QVERIFY(!fetch());
    QCOMPARE(written(), QByteArray("<unreadable>"));
    QCOMPARE(logged(), (QStringList{start(m_files->address("/a.mp3"_s)),
                                    "[error] VoNetworker::DownloadLongTTSRet "
                                    "RemoteHostClosedError"_s}));
}

void TestFileFetch::refusesAnAddressThatLeadsNowhere_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("error");
    QTest::newRow("empty") << QString() << "ProtocolUnknownError"_s;
    QTest::newRow("no address at all") << "not an address"_s
                                       << "ProtocolUnknownError"_s;
    QTest::newRow("relative") << "a/b.mp3"_s
                              << "ProtocolUnknownError"_s;
    QTest::newRow("colons") << "::::"_s
                            << "ProtocolUnknownError"_s;
    QTest::newRow("an unknown scheme") << "foo://localhost/a"_s
                                       << "ProtocolUnknownError"_s;
    QTest::newRow("no host") << "http://"_s
                             << "HostNotFoundError"_s;
    QTest::newRow("half a host") << "http://[::1/a"_s
                                 << "HostNotFoundError"_s;
}

void TestFileFetch::refusesAnAddressThatLeadsNowhere()
{
    QFETCH(QString, address);
    QFETCH(QString, error);
    QVERIFY(!fetch(address));
    QCOMPARE(written(), QByteArray("<unreadable>"));
    QCOMPARE(logged(), (QStringList{start(address),
                                    "[error] VoNetworker::DownloadLongTTSRet %1"_s.arg(error)}));
}

void TestFileFetch::failsWhenTheFileCannotBeOpened_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("a missing folder") << m_folder.filePath("missing/audio.mp3"_s);
    QTest::newRow("a folder") << m_folder.path();
    QTest::newRow("no name") << QString();
}

void TestFileFetch::failsWhenTheFileCannotBeOpened()
{
    QFETCH(QString, path);
    m_path = path;
    m_files->answer(ScriptedServer::reply("audio"));
    log->clear();
    QVERIFY(!fetch());
    QStringList lines = logged();
    // Qt itself warns when a file has no name.
    lines.removeAll("warning: QFSFileEngine::open: No file name specified"_s);
    QCOMPARE(lines,
             (QStringList{start(m_files->address("/a.mp3"_s)),
                          "VoNetworker::DownloadLongTTSRet open file error, "_s + quoted(m_path)}));
    QVERIFY(!QFile::exists(m_folder.filePath("missing"_s)));
}

void TestFileFetch::doesNotNoticeAShortWrite()
{
    m_path = "/dev/full"_s;
    if (!QFile::exists(m_path)) {
        QTest::qSkip("There is no device that takes no bytes.", __FILE__, __LINE__);
        return;
    }
    m_files->answer(ScriptedServer::reply(everyByte(1024)));
    QVERIFY(fetch());
    QCOMPARE(logged(), QStringList{start(m_files->address("/a.mp3"_s))});
}

void TestFileFetch::hasNoTimeOut()
{
    const TimeoutWatch watch;
    m_files->answer(ScriptedServer::reply("audio"));
    QVERIFY(fetch());
    QCOMPARE(watch.replies(), 1);
    QCOMPARE(watch.timeouts(), QSet<QString>());
}

void TestFileFetch::closesItsConnectionBeforeItReturns()
{
    m_files->answer(ScriptedServer::reply("audio"), ScriptedServer::Then::KeepOpen);
    QVERIFY(fetch());
    TRY_VERIFY(m_files->findChildren<QSslSocket *>().isEmpty());
}

void TestFileFetch::deliversOtherAnswersWhileItWaits()
{
    // The file comes only after the answer to the other operation was handled.
    QStringList order;
    connect(service, &VoNetworkIntf::signalShortSTT, this, [this, &order] {
        order.append("answered"_s);
        auto *socket = m_files->findChild<QSslSocket *>();
        socket->write(ScriptedServer::reply("audio"));
        socket->disconnectFromHost();
    });
    connect(m_files.get(), &ScriptedServer::requestReceived, this, [this, &order] {
        order.append("asked for the file"_s);
        answerLate(0, ScriptedServer::reply(R"({"code":0,"data":{"text":"said"}})"));
    });
    service->ShortSTT("link"_s, 5, "page"_s);
    TRY_VERIFY(!server->requests().isEmpty());
    QVERIFY(fetch());
    order.append("returned"_s);
    QCOMPARE(order, (QStringList{"asked for the file"_s, "answered"_s, "returned"_s}));
    QCOMPARE(answers->calls(), QStringList{R"(signalShortSTT(0, "said"))"_s});
    QCOMPARE(written(), QByteArray("audio"));
}

void TestFileFetch::outlivesTheServiceObject()
{
    // The host gives the object back from a handler while its download waits.
    VoNetworkIntf *waiting = service;
    connect(m_files.get(), &ScriptedServer::requestReceived, this,
            [waiting] { VoNetwork::ReleaseVoNetwork(waiting); });
    connect(service, &QObject::destroyed, this, [this] {
        auto *socket = m_files->findChild<QSslSocket *>();
        socket->write(ScriptedServer::reply("audio"));
        socket->disconnectFromHost();
    });
    service = nullptr;
    QVERIFY(waiting->DownloadLongTTSRet(m_files->address("/a.mp3"_s), m_path));
    QCOMPARE(written(), QByteArray("audio"));
}

void TestFileFetch::endsWithoutAFileWhenTheApplicationQuits_data()
{
    QTest::addColumn<bool>("already");
    QTest::newRow("while it waits") << false;
    QTest::newRow("before it is called") << true;
}

void TestFileFetch::endsWithoutAFileWhenTheApplicationQuits()
{
    QFETCH(bool, already);
    connect(m_files.get(), &ScriptedServer::requestReceived, this, &QCoreApplication::quit);
    bool returned = false;
    bool fetched = true;
    QTimer::singleShot(0, this, [&] {
        if (already)
            QCoreApplication::quit();
        fetched = fetch();
        returned = true;
    });
    QCoreApplication::exec();
    QVERIFY(returned);
    QVERIFY(!fetched);
    QCOMPARE(written(), QByteArray("<unreadable>"));
    QCOMPARE(logged(), (QStringList{start(m_files->address("/a.mp3"_s)),
                                    "[error] VoNetworker::DownloadLongTTSRet "
                                    "OperationCanceledError"_s}));
}

void TestFileFetch::emitsNoSignal()
{
    m_files->answer(ScriptedServer::reply("audio"));
    m_files->answer(ScriptedServer::reply("none", "404 Not Found"));
    QVERIFY(fetch());
    QVERIFY(!fetch());
    release();
    QCOMPARE(answers->calls(), QStringList());
    QCOMPARE(server->requests(), QList<QByteArray>());
}

QTEST_GUILESS_MAIN(TestFileFetch)
#include "tst_filefetch.moc"
