#include "tests/network/networker.h"
#include "tests/network/operationtest.h"
#include "tests/network/records.h"
#include "tests/support/leaks.h"
#include "tests/support/patience.h"
#include "tests/support/testfolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSslSocket>
#include <QTest>

namespace {

const char nothing[] = "signalGetLoginQrCodeEnd(null)";
const char line[] = "VoNetworker::DownloadLoginQrCode";

/// The signal for the code @p business.
QString coded(const QString &business)
{
    return R"(signalGetLoginQrCodeEnd("<temporary>/VoTTS//login_qr_code.png", )"
           R"(2030-01-01T05:30:00, "%1"))"_s.arg(business);
}

} // namespace

/// GetLoginQrCode.
class TestSignInCode : public OperationTest
{
    Q_OBJECT

protected:
    QList<Operation> operations() const override { return {Operations::getLoginQrCode()}; }

private Q_SLOTS:
    void init();
    void cleanup();

    void fillsTheRecordFromTheData_data();
    void fillsTheRecordFromTheData();
    void writesThePictureToItsPathWithADoubledSlash();
    void asksForThePictureWithoutAnyHeaderOfItsOwn();
    void fetchesThePictureOverTls();
    void emitsTheRecordOnceThePictureCanBeRead();
    void emitsNullBeforeItReplacesThePicture();
    void replacesAPictureThatIsThere();
    void emitsNothingWhenTheFileCannotBeOpened_data();
    void emitsNothingWhenTheFileCannotBeOpened();
    void emitsNullAndThenTheRecordWhenThePictureCannotBeFetched_data();
    void emitsNullAndThenTheRecordWhenThePictureCannotBeFetched();
    void emitsNullAloneWhenBothFail();
    void emitsNullAndThenTheRecordWhenTheApplicationQuits();
    void deliversOtherAnswersWhileItFetchesThePicture();
    void keepsOneRecordPerCode();
    void emitsTheNewestCodeWhenTwoAreFetchedAtOnce();
    void storesThePathInTheRecordItFoundAndEmitsTheNewest();
    void storesThePathBeforeThePictureArrives();
    void emitsTheFirstCodeWhenASecondFails_data();
    void emitsTheFirstCodeWhenASecondFails();
    void staysSilentWhenTheObjectIsReleased_data();
    void staysSilentWhenTheObjectIsReleased();
    void survivesADeletionFromAHandlerOfItsNull();

private:
    QString picturePath() const { return temporary->filePath("VoTTS/login_qr_code.png"_s); }
    QByteArray picture() const { return TestFolder::contents(picturePath()); }
    QByteArray codeReply(const QString &business, const QString &path) const;
    QString fetchLine() const;
    void useNetworker();

    Networker *m_networker = nullptr;
    std::unique_ptr<ScriptedServer> m_files;
};

void TestSignInCode::init()
{
    ServiceTest::init();
    m_files = std::make_unique<ScriptedServer>();
    QVERIFY(m_files->start());
}

void TestSignInCode::cleanup()
{
    m_files.reset();
    ServiceTest::cleanup();
}

/// The service's reply about a code whose picture the file server has under @p path.
QByteArray TestSignInCode::codeReply(const QString &business, const QString &path) const
{
    return ScriptedServer::reply(
        Operations::envelope(R"({"url":"%1","expire_time":1893456000,"business_code":"%2"})"_s
                                 .arg(m_files->address(path), business)
                                 .toUtf8()));
}

QString TestSignInCode::fetchLine() const
{
    return R"(%1 qrUrl= "%2" ,saveDir= "<temporary>/VoTTS//login_qr_code.png")"_s.arg(
        QLatin1String(line), m_files->address("/qr"_s));
}

/// Makes the service object one whose protected operations the test can call.
void TestSignInCode::useNetworker()
{
    release();
    service = m_networker = new Networker;
    answers = std::make_unique<Answers>(service);
}

void TestSignInCode::fillsTheRecordFromTheData_data()
{
    addDataColumns();
    const auto row = [](const char *title, const QByteArray &data, const char *expires,
                        const char *business) {
        QTest::newRow(title) << "{\"url\":\"data:,picture\"" + data + '}'
                             << R"(signalGetLoginQrCodeEnd("<temporary>/VoTTS//)"
                                R"(login_qr_code.png", %1, "%2"))"_s.arg(
                                    QString::fromUtf8(expires), QString::fromUtf8(business));
    };
    const char epoch[] = "1970-01-01T05:30:00";
    row("nothing more", "", epoch, "");
    row("expire_time alone", R"(,"expire_time":1893456000)", "2030-01-01T05:30:00", "");
    row("the largest expire_time", R"(,"expire_time":2147483647)", "2038-01-19T08:44:07", "");
    row("expire_time beyond it", R"(,"expire_time":2147483648)", epoch, "");
    row("a negative expire_time", R"(,"expire_time":-1)", "1970-01-01T05:29:59", "");
    row("expire_time with a fraction", R"(,"expire_time":1.5)", epoch, "");
    row("expire_time far away", R"(,"expire_time":1e300)", epoch, "");
    row("expire_time a date", R"(,"expire_time":"2030-01-02 03:04:05")", epoch, "");
    row("expire_time true", R"(,"expire_time":true)", epoch, "");
    row("expire_time null", R"(,"expire_time":null)", epoch, "");
    row("business_code alone", R"(,"business_code":"x")", epoch, "x");
    row("business_code a number", R"(,"business_code":5)", epoch, "");
    row("business_code in another script", R"(,"business_code":"码 é%1")", epoch, "码 é%1");
    row("names in other letters", R"(,"expireTime":1893456000,"businessCode":"x")", epoch, "");
    row("a path of the service's", R"(,"qrImagePath":"/elsewhere")", epoch, "");
}

void TestSignInCode::fillsTheRecordFromTheData() { exchangeData(Operations::getLoginQrCode()); }

void TestSignInCode::writesThePictureToItsPathWithADoubledSlash()
{
    const QByteArray bytes("\x89PNG\r\n\x1a\n\0\xff", 10);
    server->answer(codeReply("b1"_s, "/qr"_s));
    m_files->answer(ScriptedServer::reply(bytes));
    service->GetLoginQrCode();
    QCOMPARE(outcome(), QStringList{coded("b1"_s)});
    QCOMPARE(answers->codes().first()->qrImagePath,
             QDir::tempPath() + "/VoTTS//login_qr_code.png"_s);
    QCOMPARE(answers->codes().first()->expire_time.timeSpec(), Qt::LocalTime);
    QCOMPARE(picture(), bytes);
    QCOMPARE(logged(), QStringList{fetchLine()});
}

void TestSignInCode::asksForThePictureWithoutAnyHeaderOfItsOwn()
{
    server->answer(codeReply("b1"_s, "/a b%20c?d=e"_s));
    m_files->answer(ScriptedServer::reply("picture"));
    service->GetLoginQrCode();
    QCOMPARE(outcome(), QStringList{coded("b1"_s)});
    QCOMPARE(m_files->requests(),
             QList<QByteArray>{"GET /a%20b%20c?d=e HTTP/1.1\r\nHost: localhost:"
                               + QByteArray::number(m_files->serverPort())
                               + "\r\nConnection: Keep-Alive\r\nAccept-Encoding: gzip, deflate\r\n"
                                 "Accept-Language: "
                               + acceptLanguage() + "\r\nUser-Agent: Mozilla/5.0\r\n\r\n"});
}

void TestSignInCode::fetchesThePictureOverTls()
{
    server->answer(ScriptedServer::reply(Operations::envelope(
        "{\"url\":\"" + server->address("/qr"_s).toUtf8() + "\",\"expire_time\":1893456000}")));
    server->answer(ScriptedServer::reply("over TLS"));
    service->GetLoginQrCode();
    QCOMPARE(outcome(), QStringList{coded(QString())});
    QCOMPARE(picture(), QByteArray("over TLS"));
}

void TestSignInCode::emitsTheRecordOnceThePictureCanBeRead()
{
    server->answer(codeReply("b1"_s, "/qr"_s));
    m_files->answer(ScriptedServer::reply("picture"));
    QByteArray inTheHandler;
    connect(service, &VoNetworkIntf::signalGetLoginQrCodeEnd, this,
            [&] { inTheHandler = picture(); });
    service->GetLoginQrCode();
    QCOMPARE(outcome(), QStringList{coded("b1"_s)});
    QCOMPARE(inTheHandler, QByteArray("picture"));
}

void TestSignInCode::emitsNullBeforeItReplacesThePicture()
{
    server->answer(codeReply("b1"_s, "/qr"_s));
    server->answer(codeReply("b2"_s, "/qr"_s));
    m_files->answer(ScriptedServer::reply("old"));
    m_files->answer(ScriptedServer::reply("a page", "404 Not Found"));
    QList<QByteArray> inTheHandler;
    connect(service, &VoNetworkIntf::signalGetLoginQrCodeEnd, this,
            [&] { inTheHandler.append(picture()); });
    service->GetLoginQrCode();
    QVERIFY(answers->waitFor(1));
    service->GetLoginQrCode();
    QCOMPARE(outcome(3), (QStringList{coded("b1"_s), QLatin1String(nothing), coded("b2"_s)}));
    QCOMPARE(inTheHandler, (QList<QByteArray>{"old", "old", "a page"}));
}

void TestSignInCode::replacesAPictureThatIsThere()
{
    server->answer(codeReply("b1"_s, "/qr"_s));
    server->answer(codeReply("b2"_s, "/qr"_s));
    m_files->answer(ScriptedServer::reply("longer than what comes after it"));
    m_files->answer(ScriptedServer::reply("new"));
    service->GetLoginQrCode();
    QVERIFY(answers->waitFor(1));
    QCOMPARE(picture(), QByteArray("longer than what comes after it"));
    service->GetLoginQrCode();
    QCOMPARE(outcome(2), (QStringList{coded("b1"_s), coded("b2"_s)}));
    QCOMPARE(picture(), QByteArray("new"));
}

void TestSignInCode::emitsNothingWhenTheFileCannotBeOpened_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("the folder is missing") << "nothing"_s;
    QTest::newRow("the folder is a file") << "file"_s;
    QTest::newRow("the file is a folder") << "folder"_s;
}

void TestSignInCode::emitsNothingWhenTheFileCannotBeOpened()
{
    QFETCH(QString, obstacle);
    const QString folder = temporary->filePath("VoTTS"_s);
    useNetworker();
    if (obstacle == "folder"_s) {
        QVERIFY(QDir().mkdir(picturePath()));
    } else {
        QVERIFY(QDir().rmdir(folder));
        QFile file(folder);
        QVERIFY(obstacle == "nothing"_s || file.open(QIODevice::WriteOnly));
    }
    log->clear();
    server->answer(codeReply("b1"_s, "/qr"_s));
    m_files->answer(ScriptedServer::reply("picture"));
    service->GetLoginQrCode();
    const QStringList lines{fetchLine(),
                            R"(%1 ,open file error, "<temporary>/VoTTS//login_qr_code.png")"_s.arg(
                                QLatin1String(line))};
    TRY_VERIFY(logged().size() >= lines.size());
    QCOMPARE(logged(), lines);
    QCOMPARE(answers->calls(), QStringList());
    QCOMPARE(QFile::exists(folder), obstacle != "nothing"_s); // it makes no folder

    // The record is there: the next picture that can be written brings it to the host.
    const QString elsewhere = temporary->filePath("elsewhere.png"_s);
    m_networker->DownloadLoginQrCode(m_files->address("/qr"_s), elsewhere);
    QCOMPARE(outcome(),
             QStringList{coded("b1"_s).replace("VoTTS//login_qr_code.png"_s, "elsewhere.png"_s)});
}

void TestSignInCode::emitsNullAndThenTheRecordWhenThePictureCannotBeFetched_data()
{
    addFailedFetches();
}

void TestSignInCode::emitsNullAndThenTheRecordWhenThePictureCannotBeFetched()
{
    QFETCH(QByteArray, reply);
    QFETCH(QByteArray, instead);
    QFETCH(QString, error);
    QFile old(picturePath());
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("the code before") > 0);
    old.close();
    server->answer(codeReply("b1"_s, "/qr"_s));
    m_files->answer(reply);
    service->GetLoginQrCode();
    QCOMPARE(outcome(2), (QStringList{QLatin1String(nothing), coded("b1"_s)}));
    QCOMPARE(picture(), instead);
    QCOMPARE(logged(),
             (QStringList{fetchLine(), "[error] %1 %2"_s.arg(QLatin1String(line), error)}));
}

void TestSignInCode::emitsNullAloneWhenBothFail()
{
    useNetworker();
    QVERIFY(QDir().rmdir(temporary->filePath("VoTTS"_s)));
    log->clear();
    server->answer(codeReply("b1"_s, "/qr"_s));
    m_files->answer(ScriptedServer::reply("", "404 Not Found"));
    service->GetLoginQrCode();
    TRY_VERIFY(logged().size() >= 3);
    QCOMPARE(logged(),
             (QStringList{fetchLine(), "[error] %1 ContentNotFoundError"_s.arg(QLatin1String(line)),
                          R"(%1 ,open file error, "<temporary>/VoTTS//login_qr_code.png")"_s.arg(
                              QLatin1String(line))}));
    QCOMPARE(answers->calls(), QStringList{QLatin1String(nothing)});

    // Brings the record to the host, which deletes it.
    m_networker->DownloadLoginQrCode("data:,"_s, temporary->filePath("elsewhere.png"_s));
    QCOMPARE(answers->codes().size(), 1);
}

void TestSignInCode::emitsNullAndThenTheRecordWhenTheApplicationQuits()
{
    server->answer(codeReply("b1"_s, "/qr"_s));
    connect(m_files.get(), &ScriptedServer::requestReceived, this, &QCoreApplication::quit);
    service->GetLoginQrCode();
    QCoreApplication::exec();
    QCOMPARE(answers->calls(), (QStringList{QLatin1String(nothing), coded("b1"_s)}));
    QCOMPARE(picture(), QByteArray());
    QCOMPARE(
        logged(),
        (QStringList{fetchLine(), "[error] %1 OperationCanceledError"_s.arg(QLatin1String(line))}));
}

void TestSignInCode::deliversOtherAnswersWhileItFetchesThePicture()
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
    server->answer(codeReply("b1"_s, "/qr"_s));
    service->GetLoginQrCode();
    QCOMPARE(outcome(2), (QStringList{R"(signalShortSTT(1, ""))"_s, coded("b1"_s)}));
}

void TestSignInCode::keepsOneRecordPerCode()
{
    server->answer(codeReply("b1"_s, "/qr"_s));
    server->answer(codeReply("b2"_s, "/qr"_s));
    m_files->answer(ScriptedServer::reply("picture"));
    service->GetLoginQrCode();
    QVERIFY(answers->waitFor(1));
    service->GetLoginQrCode();
    QCOMPARE(outcome(2), (QStringList{coded("b1"_s), coded("b2"_s)}));
    // Both are still there, though the service object is gone.
    QCOMPARE(answers->codes().size(), 2);
    QCOMPARE(answers->codes().at(0)->business_code, "b1"_s);
    QCOMPARE(answers->codes().at(1)->business_code, "b2"_s);
}

void TestSignInCode::emitsTheNewestCodeWhenTwoAreFetchedAtOnce()
{
    const LeaksAllowed replaced; // the first record never reaches anyone
    connect(m_files.get(), &ScriptedServer::requestReceived, this,
            [this](const QByteArray &request) {
                // The second picture comes at once, and the first behind it.
                if (request.startsWith("GET /first "))
                    return service->GetLoginQrCode();
                m_files->answer(ScriptedServer::reply("second"));
                m_files->findChild<QSslSocket *>()->write(ScriptedServer::reply("first"));
            });
    server->answer(codeReply("b1"_s, "/first"_s));
    server->answer(codeReply("b2"_s, "/second"_s));
    service->GetLoginQrCode();
    QCOMPARE(outcome(2), (QStringList{coded("b2"_s), coded("b2"_s)}));
    QCOMPARE(answers->codes().size(), 1);
    // The wait for the first picture ended last, whichever arrived first.
    QCOMPARE(picture(), QByteArray("first"));
}

void TestSignInCode::storesThePathInTheRecordItFoundAndEmitsTheNewest()
{
    useNetworker();
    server->answer(codeReply("b1"_s, "/qr"_s));
    server->answer(codeReply("b2"_s, "/qr"_s));
    m_files->answer(ScriptedServer::reply("picture"));
    service->GetLoginQrCode();
    QVERIFY(answers->waitFor(1));

    // While another picture for the first code is on its way, the second code arrives.
    ScriptedServer slow;
    QVERIFY(slow.start());
    connect(&slow, &ScriptedServer::requestReceived, this, [this] { service->GetLoginQrCode(); });
    connect(service, &VoNetworkIntf::signalGetLoginQrCodeEnd, this, [this, &slow] {
        if (answers->calls().size() == 2)
            slow.findChild<QSslSocket *>()->write(ScriptedServer::reply("slow"));
    });
    const QString other = temporary->filePath("other.png"_s);
    m_networker->DownloadLoginQrCode(slow.address("/qr"_s), other);
    QCOMPARE(answers->calls(), (QStringList{coded("b1"_s), coded("b2"_s), coded("b2"_s)}));
    QCOMPARE(answers->codes().size(), 2);
    QCOMPARE(answers->codes().first()->qrImagePath, other);
    QCOMPARE(picture(), QByteArray("picture"));
}

void TestSignInCode::storesThePathBeforeThePictureArrives()
{
    useNetworker();
    server->answer(codeReply("b1"_s, "/qr"_s));
    m_files->answer(ScriptedServer::reply("picture"));
    service->GetLoginQrCode();
    QVERIFY(answers->waitFor(1));

    QString path;
    connect(m_files.get(), &ScriptedServer::requestReceived, this,
            [&] { path = answers->codes().first()->qrImagePath; });
    const QString other = temporary->filePath("other.png"_s);
    m_networker->DownloadLoginQrCode(m_files->address("/qr"_s), other);
    QCOMPARE(path, other);
}

void TestSignInCode::emitsTheFirstCodeWhenASecondFails_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("refused") << ScriptedServer::reply(R"({"code":7,"data":{}})");
    QTest::newRow("HTTP error") << ScriptedServer::reply("", "500 Oops");
}

void TestSignInCode::emitsTheFirstCodeWhenASecondFails()
{
    QFETCH(QByteArray, reply);
    // The first picture comes only after the second code has failed.
    connect(m_files.get(), &ScriptedServer::requestReceived, this,
            [this] { service->GetLoginQrCode(); });
    connect(service, &VoNetworkIntf::signalGetLoginQrCodeEnd, this, [this](LoginQrCode *code) {
        if (!code)
            m_files->findChild<QSslSocket *>()->write(ScriptedServer::reply("first"));
    });
    server->answer(codeReply("b1"_s, "/qr"_s));
    server->answer(reply);
    service->GetLoginQrCode();
    QCOMPARE(outcome(2), (QStringList{QLatin1String(nothing), coded("b1"_s)}));
    QCOMPARE(picture(), QByteArray("first"));
}

void TestSignInCode::staysSilentWhenTheObjectIsReleased_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("picture") << ScriptedServer::reply("picture");
    QTest::newRow("error") << ScriptedServer::reply("", "404 Not Found");
}

void TestSignInCode::staysSilentWhenTheObjectIsReleased()
{
    const LeaksAllowed unseen; // the record never reaches anyone
    QFETCH(QByteArray, reply);
    server->answer(codeReply("b1"_s, "/qr"_s));
    VoNetworkIntf *object = service;
    connect(m_files.get(), &ScriptedServer::requestReceived, this,
            [object] { VoNetwork::ReleaseVoNetwork(object); });
    bool gone = false;
    connect(service, &QObject::destroyed, this, [&] {
        auto *socket = m_files->findChild<QSslSocket *>();
        socket->write(reply);
        socket->disconnectFromHost();
        gone = true;
    });
    service->GetLoginQrCode();
    service = nullptr;
    TRY_VERIFY(gone && m_files->findChildren<QSslSocket *>().isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(answers->calls(), QStringList());
    QCOMPARE(picture(), QByteArray("<unreadable>"));
}

void TestSignInCode::survivesADeletionFromAHandlerOfItsNull()
{
    const LeaksAllowed unseen; // the record never reaches anyone
    server->answer(codeReply("b1"_s, "/qr"_s));
    m_files->answer(ScriptedServer::reply("", "404 Not Found"));
    VoNetworkIntf *object = service;
    connect(service, &VoNetworkIntf::signalGetLoginQrCodeEnd, this, [object] { delete object; });
    service->GetLoginQrCode();
    service = nullptr;
    QVERIFY(answers->waitFor(1));
    QCoreApplication::processEvents();
    QCOMPARE(answers->calls(), QStringList{QLatin1String(nothing)});
    QCOMPARE(picture(), QByteArray("<unreadable>"));
}

QTEST_GUILESS_MAIN(TestSignInCode)
#include "tst_signincode.moc"
