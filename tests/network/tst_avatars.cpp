#include "tests/network/networker.h"
#include "tests/network/servicetest.h"
#include "tests/support/patience.h"
#include "tests/support/testfolder.h"

#include <QFile>
#include <QSslSocket>
#include <QTest>

/// What becomes of a voice's category and picture.
class TestAvatars : public ServiceTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void mapsACategoryToTheLetter_data();
    void mapsACategoryToTheLetter();
    void namesThePictureOfAStockAddressToTheLetter_data();
    void namesThePictureOfAStockAddressToTheLetter();
    void fetchesAPictureIntoAFile_data();
    void fetchesAPictureIntoAFile();
    void fetchesAPictureOverTls();
    void replacesAnExistingPicture();
    void leavesWhatCameInsteadAndEmitsNullOnANetworkError_data();
    void leavesWhatCameInsteadAndEmitsNullOnANetworkError();
    void emitsNullBeforeItReplacesThePicture();
    void returnsNothingWhenTheFileCannotBeOpened_data();
    void returnsNothingWhenTheFileCannotBeOpened();
    void emitsNullAndReturnsNothingWhenBothFail();
    void deliversOtherAnswersWhileItWaits();
    void outlivesTheObject_data();
    void outlivesTheObject();

private:
    QString start(const QString &path) const;
    QByteArray written() const { return TestFolder::contents(m_path); }

    Networker *m_networker = nullptr;
    std::unique_ptr<ScriptedServer> m_files;
    QString m_address;
    QString m_path;
};

void TestAvatars::init()
{
    ServiceTest::init();
    release();
    service = m_networker = new Networker;
    answers = std::make_unique<Answers>(service);
    m_files = std::make_unique<ScriptedServer>();
    QVERIFY(m_files->start());
    m_address = m_files->address("/a.png"_s);
    m_path = temporary->filePath("a.png"_s);
}

void TestAvatars::cleanup()
{
    m_files.reset();
    ServiceTest::cleanup();
}

/// The line that is logged before anything else.
QString TestAvatars::start(const QString &path) const
{
    return R"(VoNetworker::DownloadAvt url= "%1" ,savePath= "%2")"_s.arg(m_address, path);
}

void TestAvatars::mapsACategoryToTheLetter_data()
{
    QTest::addColumn<QString>("category");
    QTest::addColumn<int>("type");
    const auto row = [](const char *category, DubType type) {
        QTest::newRow(category) << QString::fromUtf8(category) << int(type);
    };
    row("超高清", DUB_TYPE_ULTRA_HD);
    row("文学", DUB_TYPE_LITERATURE);
    row("通用", DUB_TYPE_GENERAL);
    row("英文", DUB_TYPE_FOREIGN_LANGUAGE);
    row("美式英语", DUB_TYPE_FOREIGN_LANGUAGE);
    row("多语种", DUB_TYPE_FOREIGN_LANGUAGE);
    row("方言", DUB_TYPE_DIALECT);
    row("客服", DUB_TYPE_CUSTOMER_SERVICE);
    row("直播", DUB_TYPE_LIVE_STREAMING);
    row("童声", DUB_TYPE_CHILD);
    row("多情感", DUB_TYPE_EMOTIONAL);
    for (const char *other : {"", " ", "超高清 ", " 超高清", "超高", "超 高清", "英语", "英文英文",
                              "多", "情感", "English", "dialect", "GENERAL", "5"})
        row(other, DUB_TYPE_GENERAL);
}

void TestAvatars::mapsACategoryToTheLetter()
{
    QFETCH(QString, category);
    QFETCH(int, type);
    QCOMPARE(int(m_networker->ConvertServerToClientDubType(category)), type);
    QCOMPARE(logged(), QStringList());
}

void TestAvatars::namesThePictureOfAStockAddressToTheLetter_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("name");
    const QString folder = "https://" AVATAR_STORAGE_HOST "/speechdesk/voice_avatar/"_s;
    const auto row = [](const QString &address, const QString &name) {
        QTest::newRow(address.toUtf8().constData()) << address << name;
    };
    row(folder + "%E5%A5%B301.png"_s, "women_01.png"_s);
    row(folder + "%E5%A5%B302.png"_s, "women_02.png"_s);
    row(folder + "avatar_girl.png"_s, "avatar_girl.png"_s);
    row(folder + "%E7%94%B701.png"_s, "man_01.png"_s);
    row(folder + "%E7%94%B702.png"_s, "man_02.png"_s);
    row(folder + "avatar_children.png"_s, "avatar_children.png"_s);
    for (const QString &other :
         {QString(), "man_01.png"_s, "/speechdesk/voice_avatar/avatar_girl.png"_s,
          folder + "%e7%94%b701.png"_s, folder + "男01.png"_s, folder + "%E7%94%B703.png"_s,
          folder + "Avatar_girl.png"_s, folder + "avatar_girl.png "_s,
          " "_s + folder + "avatar_girl.png"_s, folder + "avatar_girl.png?v=1"_s,
          folder + "avatar_girl.jpg"_s, folder,
          QString(folder + "avatar_girl.png"_s).replace("https"_s, "http"_s),
          QString(folder + "avatar_girl.png"_s).replace("https"_s, "HTTPS"_s),
          "https://elsewhere.example/speechdesk/voice_avatar/avatar_girl.png"_s})
        row(other, "women_01.png"_s);
}

void TestAvatars::namesThePictureOfAStockAddressToTheLetter()
{
    QFETCH(QString, address);
    QFETCH(QString, name);
    QCOMPARE(m_networker->ConvertAvtUrlToClient(address), name);
    QCOMPARE(logged(), QStringList());
    QCOMPARE(server->requests(), QList<QByteArray>());
}

void TestAvatars::fetchesAPictureIntoAFile_data()
{
    QTest::addColumn<QByteArray>("picture");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("a few bytes") << QByteArray("\x89PNG\r\n\x1a\n\0\xff", 10);
    QTest::newRow("a megabyte") << QByteArray(1 << 20, 'x');
}

void TestAvatars::fetchesAPictureIntoAFile()
{
    QFETCH(QByteArray, picture);
    m_files->answer(ScriptedServer::reply(picture));
    QCOMPARE(m_networker->DownloadAvt(m_address, m_path), m_path);
    QVERIFY(written() == picture);
    // None of the library's own headers.
    QCOMPARE(m_files->requests(),
             QList<QByteArray>{"GET /a.png HTTP/1.1\r\nHost: localhost:"
                               + QByteArray::number(m_files->serverPort())
                               + "\r\nConnection: Keep-Alive\r\nAccept-Encoding: gzip, deflate\r\n"
                                 "Accept-Language: "
                               + acceptLanguage() + "\r\nUser-Agent: Mozilla/5.0\r\n\r\n"});
    release();
    QCOMPARE(logged(), QStringList{start("<temporary>/a.png"_s)});
    QCOMPARE(answers->calls(), QStringList());
}

void TestAvatars::fetchesAPictureOverTls()
{
    server->answer(ScriptedServer::reply("over TLS"));
    QCOMPARE(m_networker->DownloadAvt(server->address("/a.png"_s), m_path), m_path);
    QCOMPARE(written(), QByteArray("over TLS"));
}

void TestAvatars::replacesAnExistingPicture()
{
    m_files->answer(ScriptedServer::reply("longer than what comes after it"));
    m_files->answer(ScriptedServer::reply("new"));
    m_networker->DownloadAvt(m_address, m_path);
    QCOMPARE(m_networker->DownloadAvt(m_address, m_path), m_path);
    QCOMPARE(written(), QByteArray("new"));
}

void TestAvatars::leavesWhatCameInsteadAndEmitsNullOnANetworkError_data() { addFailedFetches(); }

void TestAvatars::leavesWhatCameInsteadAndEmitsNullOnANetworkError()
{
    QFETCH(QByteArray, reply);
    QFETCH(QByteArray, instead);
    QFETCH(QString, error);
    m_files->answer(reply);
    QCOMPARE(m_networker->DownloadAvt(m_address, m_path), m_path);
    QCOMPARE(written(), instead);
    QCOMPARE(outcome(), QStringList{"signalGetLoginQrCodeEnd(null)"_s});
    QCOMPARE(logged(), (QStringList{start("<temporary>/a.png"_s),
                                    "[error] VoNetworker::DownloadAvt %1"_s.arg(error)}));
}

void TestAvatars::emitsNullBeforeItReplacesThePicture()
{
    m_files->answer(ScriptedServer::reply("old"));
    m_files->answer(ScriptedServer::reply("a page", "404 Not Found"));
    m_networker->DownloadAvt(m_address, m_path);
    QByteArray inTheHandler;
    connect(service, &VoNetworkIntf::signalGetLoginQrCodeEnd, this,
            [&] { inTheHandler = written(); });
    m_networker->DownloadAvt(m_address, m_path);
    QCOMPARE(inTheHandler, QByteArray("old"));
    QCOMPARE(written(), QByteArray("a page"));
}

void TestAvatars::returnsNothingWhenTheFileCannotBeOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a missing folder") << "missing/a.png"_s;
    QTest::newRow("a folder") << "VoTTS"_s;
    QTest::newRow("a file's child") << "file/a.png"_s;
}

void TestAvatars::returnsNothingWhenTheFileCannotBeOpened()
{
    QFETCH(QString, name);
    QFile file(temporary->filePath("file"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    m_files->answer(ScriptedServer::reply("picture"));
    QCOMPARE(m_networker->DownloadAvt(m_address, temporary->filePath(name)), QString());
    release();
    QCOMPARE(answers->calls(), QStringList());
    QCOMPARE(
        logged(),
        (QStringList{start("<temporary>/"_s + name),
                     R"(VoNetworker::DownloadAvt open file error, "<temporary>/%1")"_s.arg(name)}));
    QVERIFY(!QFile::exists(temporary->filePath("missing"_s)));
}

void TestAvatars::emitsNullAndReturnsNothingWhenBothFail()
{
    m_address = QString();
    QCOMPARE(m_networker->DownloadAvt(m_address, temporary->filePath("VoTTS"_s)), QString());
    QCOMPARE(outcome(), QStringList{"signalGetLoginQrCodeEnd(null)"_s});
    QCOMPARE(logged(),
             (QStringList{start("<temporary>/VoTTS"_s),
                          "[error] VoNetworker::DownloadAvt ProtocolUnknownError"_s,
                          R"(VoNetworker::DownloadAvt open file error, "<temporary>/VoTTS")"_s}));
}

void TestAvatars::deliversOtherAnswersWhileItWaits()
{
    // The picture comes only after the answer to the other operation was handled.
    connect(service, &VoNetworkIntf::signalShortSTT, this, [this] {
        auto *socket = m_files->findChild<QSslSocket *>();
        socket->write(ScriptedServer::reply("picture"));
        socket->disconnectFromHost();
    });
    connect(m_files.get(), &ScriptedServer::requestReceived, this,
            [this] { answerLate(0, ScriptedServer::reply(R"({"code":1})")); });
    service->ShortSTT("link"_s, 5, "page"_s);
    TRY_VERIFY(!server->requests().isEmpty());
    QCOMPARE(m_networker->DownloadAvt(m_address, m_path), m_path);
    QCOMPARE(answers->calls(), QStringList{R"(signalShortSTT(1, ""))"_s});
    QCOMPARE(written(), QByteArray("picture"));
}

void TestAvatars::outlivesTheObject_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("picture") << ScriptedServer::reply("picture") << QByteArray("picture");
    QTest::newRow("error") << ScriptedServer::reply("", "404 Not Found") << QByteArray();
}

void TestAvatars::outlivesTheObject()
{
    QFETCH(QByteArray, reply);
    QFETCH(QByteArray, content);
    connect(m_files.get(), &ScriptedServer::requestReceived, this,
            [this] { VoNetwork::ReleaseVoNetwork(m_networker); });
    connect(service, &QObject::destroyed, this, [&] {
        auto *socket = m_files->findChild<QSslSocket *>();
        socket->write(reply);
        socket->disconnectFromHost();
    });
    service = nullptr;
    QCOMPARE(m_networker->DownloadAvt(m_address, m_path), m_path);
    QCOMPARE(written(), content);
    QCOMPARE(answers->calls(), QStringList());
}

QTEST_GUILESS_MAIN(TestAvatars)
#include "tst_avatars.moc"
