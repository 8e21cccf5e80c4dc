#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/http/callbacklog.h"
#include "tests/http/httptesting.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"

#include <QDir>
#include <QDirIterator>
#include <QTest>

using HttpTesting::waitUntilGone;

/// The name of the file that a download without a path makes.
class TestHttpFileNames : public QObject
{
    Q_OBJECT

    const QString m_before = QDir::currentPath();

    /// Every file below @p folder, relative to it.
    static QStringList filesBelow(const QString &folder)
    {
        QStringList files;
        QDirIterator walk(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (walk.hasNext())
            files.append(QDir(folder).relativeFilePath(walk.next()));
        return files;
    }

    /// Downloads to @p target in a working folder of its own; gives what was reported.
    static QStringList download(const QString &path, const QByteArray &header,
                                const QString &target)
    {
        ScriptedServer server;
        if (!server.start())
            return {"no server"_s};
        server.answer(ScriptedServer::reply("body", "200 OK", header));
        HttpClient client;
        CallbackLog log;
        HttpRequest request(HttpMethod::Get, &client);
        request.url(server.address(path)).download(target);
        request.onDownloadFileNameChanged([&log](const QString &name) { log.add(name); });
        if (!waitUntilGone(log.bindFile(request).send()))
            log.add("no end"_s);
        return log.lines();
    }

private Q_SLOTS:
    void cleanup() { QDir::setCurrent(m_before); }

    void theNameComesFromTheServerOrTheAddress_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<QString>("name");
        const auto row = [](const char *what, const QString &path, const QByteArray &header,
                            const QString &name) {
            QTest::newRow(what) << path << (header.isEmpty() ? header : header + "\r\n") << name;
        };
        row("last segment", "/a/b.bin?c=d/e#f"_s, "", "b.bin"_s);
        row("decoded", "/a%20b.bin"_s, "", "a b.bin"_s);
        row("decoded beyond ASCII", "/%C3%A4.bin"_s, "", "ä.bin"_s);
        row("no path", QString(), "", "localhost"_s);
        row("no segment", "/a/"_s, "", "localhost"_s);
        row("attachment", "/a"_s, "Content-Disposition: attachment; filename=x.zip", "x.zip"_s);
        row("without a blank", "/a"_s, "Content-Disposition: attachment;filename=x", "x"_s);
        row("with many blanks", "/a"_s, "Content-Disposition: attachment; \t filename=x", "x"_s);
#ifndef Q_OS_WIN
        row("quoted", "/a"_s, "Content-Disposition: attachment; filename=\"x.zip\"", "\"x.zip\""_s);
#endif
        row("quoted with a blank", "/a"_s, "Content-Disposition: attachment; filename=\"x y\"",
            "a"_s);
        row("inline", "/a"_s, "Content-Disposition: inline; filename=x.zip", "a"_s);
        row("another parameter", "/a"_s, "Content-Disposition: attachment; filename=x; size=4",
            "a"_s);
        row("only a part matches", "/a"_s, "Content-Disposition: an attachment; filename=x", "a"_s);
        row("another case", "/a"_s, "Content-Disposition: Attachment; filename=x", "a"_s);
        row("header's name in lower case", "/a"_s,
            "content-disposition: attachment; filename=x.zip", "x.zip"_s);
        row("header's name in upper case", "/a"_s,
            "CONTENT-DISPOSITION: attachment; filename=x.zip", "x.zip"_s);
        row("within a longer name", "/a"_s, "X-Content-Disposition: attachment; filename=x.zip",
            "x.zip"_s);
        row("an empty file name", "/a"_s, "Content-Disposition: attachment; filename=", "a"_s);
    }
    void theNameComesFromTheServerOrTheAddress()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, header);
        QFETCH(QString, name);
        const TestFolder folder;
        QVERIFY(QDir::setCurrent(folder.path()));
        // The change of name itself reaches nobody.
        QCOMPARE(download(path, header, QString()), (QStringList{"file()"_s, "file "_s + name}));
        QCOMPARE(filesBelow(folder.path()), QStringList{name});
        QCOMPARE(TestFolder::contents(folder.path(name)), "body"_b);
    }

    void aNameThatWindowsCannotStoreIsReportedInPlainWords()
    {
#ifndef Q_OS_WIN
        QSKIP("Other systems store such a name", );
#endif
        const TestFolder folder;
        QVERIFY(QDir::setCurrent(folder.path()));
        const QStringList lines =
            download("/a"_s, "Content-Disposition: attachment; filename=\"x.zip\"\r\n", {});
        QCOMPARE(lines.size(), 2);
        const QString end = " \"x.zip\" Non-Writable: Windows takes no \" in a file name"_s;
        QVERIFY2(lines.at(1).endsWith(end), qPrintable(lines.at(1)));
        QCOMPARE(filesBelow(folder.path()), QStringList());
    }

    void aPathThatIsGivenWins()
    {
        const TestFolder folder;
        const QString name = folder.path("mine"_s);
        QVERIFY(QDir::setCurrent(folder.path()));
        QCOMPARE(download("/a"_s, "Content-Disposition: attachment; filename=theirs\r\n", name),
                 (QStringList{"file()"_s, "file "_s + name}));
        QCOMPARE(filesBelow(folder.path()), QStringList{"mine"_s});
    }

    void foldersInTheServersNameAreFollowed()
    {
        const TestFolder folder;
        QVERIFY(QDir(folder.path()).mkpath("inner/sub"_s));
        QVERIFY(QDir::setCurrent(folder.path("inner"_s)));
        QCOMPARE(download("/a"_s, "Content-Disposition: attachment; filename=sub/x\r\n", {}),
                 (QStringList{"file()"_s, "file sub/x"_s}));
        QCOMPARE(download("/a"_s, "Content-Disposition: attachment; filename=../y\r\n", {}),
                 (QStringList{"file()"_s, "file ../y"_s}));
        QStringList files = filesBelow(folder.path());
        files.sort();
        QCOMPARE(files, (QStringList{"inner/sub/x"_s, "y"_s}));
    }

    void aFolderThatIsNotThereIsNotMade()
    {
        const TestFolder folder;
        QVERIFY(QDir::setCurrent(folder.path()));
        const QStringList lines =
            download("/a"_s, "Content-Disposition: attachment; filename=none/x\r\n", {});
        QCOMPARE(lines.size(), 2);
        QVERIFY2(lines.at(1).endsWith(" none/x Non-Writable"_s), qPrintable(lines.at(1)));
        QCOMPARE(filesBelow(folder.path()), QStringList());
    }

    void theNameOfARedirectedAddressIsTheFirstOnes()
    {
        const TestFolder folder;
        QVERIFY(QDir::setCurrent(folder.path()));
        ScriptedServer server;
        QVERIFY(server.start());
        const QByteArray redirect =
            ScriptedServer::reply("", "302 Found", "Location: /second.bin\r\n");
        server.answer(redirect);
        server.answer(ScriptedServer::reply("body"));
        server.answer(redirect);
        server.answer(ScriptedServer::reply("body"));
        HttpClient client;
        client.setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
        HttpRequest request(HttpMethod::Get, &client);
        QVERIFY(waitUntilGone(request.url(server.address("/first.bin"_s)).download({}).send()));
        QCOMPARE(filesBelow(folder.path()), QStringList{"first.bin"_s});
        QCOMPARE(TestFolder::contents(folder.path("first.bin"_s)), "body"_b);
        QCOMPARE(server.requests().size(), 4); // the probe follows too
    }
};

QTEST_GUILESS_MAIN(TestHttpFileNames)
#include "tst_httpfilenames.moc"
