#include "tests/support/patience.h"
#include "tests/system/localservice.h"
#include "tests/system/serviceaddress.h"
#include "tests/system/signinsteps.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonValue>
#include <QProcess>
#include <QRegularExpression>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>
#include <QXmlStreamReader>
#include <QtTest>

#include <csignal>

namespace {

// What getMpStatus says.
constexpr int waiting = 0;
constexpr int confirmed = 1;
constexpr int over = 2;

QString lastSegment(const QString &address)
{
    return address.section(QLatin1Char('/'), -1).section(QLatin1Char('.'), 0, 0);
}

// What an independent reader makes of a picture.
QString decoded(const QByteArray &picture)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("code.png")));
    if (!file.open(QIODevice::WriteOnly) || file.write(picture) != picture.size())
        return QStringLiteral("the picture cannot be written");
    file.close();
    QProcess reader;
    reader.start(QStringLiteral("zbarimg"), {QStringLiteral("--quiet"), QStringLiteral("--raw"),
                                             QStringLiteral("--nodbus"), file.fileName()});
    if (!reader.waitForFinished(patienceMs))
        return QStringLiteral("zbarimg: ") + reader.errorString();
    return QString::fromUtf8(reader.readAllStandardOutput()).trimmed();
}

} // namespace

/// Signing in with a code that is scanned, and the page that it leads to.
class TestServiceQr : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_service.reset(new LocalService); }

    void theCodeSaysWhenItExpires()
    {
        QVERIFY(begin({QStringLiteral("--code-lifetime"), QStringLiteral("1000")}));
        QVERIFY(m_data.value(QLatin1String("expire_time")).isDouble());
        const qint64 expires =
            static_cast<qint64>(m_data.value(QLatin1String("expire_time")).toDouble());
        QVERIFY(qAbs(expires - QDateTime::currentSecsSinceEpoch() - 1000) <= 60);
    }

    void thePictureHoldsTheAddressOfThePage()
    {
        QVERIFY(begin());
        const auto picture = m_steps->client().get(pictureAddress());
        QCOMPARE(picture.status, 200);
        QCOMPARE(picture.header("Content-Type"), QByteArray("image/png"));
        QCOMPARE(decoded(picture.body), m_page);
    }

    void theSecretsAreLongAndDifferentEachTime()
    {
        QVERIFY(begin());
        const QStringList first = secrets();
        QVERIFY(askAgain());
        QStringList all = first + secrets();
        QCOMPARE(all.removeDuplicates(), 0);
        const QRegularExpression hexadecimal(QStringLiteral("^[0-9a-f]{32,}$"));
        for (const QString &secret : qAsConst(all))
            QVERIFY2(hexadecimal.match(secret).hasMatch(), qPrintable(secret));
        QCOMPARE(m_page, SignInSteps::address(QStringLiteral("/signin/") + lastSegment(m_page)));
    }

    void whoPollsHearsOfTheConfirmationOnce()
    {
        QVERIFY(begin());
        QCOMPARE(m_steps->pollQr(businessCode()).body,
                 QByteArray(R"({"code":0,"data":{"status":0},"message":"ok"})"));
        QCOMPARE(m_steps->client().postTo(m_page).status, 200);
        const QJsonObject data = m_steps->pollQr(businessCode()).data();
        QCOMPARE(data.value(QLatin1String("status")), QJsonValue(confirmed));
        QCOMPARE(data.value(QLatin1String("user_info")).toObject().keys(),
                 QStringList({QStringLiteral("base"), QStringLiteral("token")}));
        QCOMPARE(m_steps->pollQr(businessCode()).body,
                 QByteArray(R"({"code":0,"data":{"status":2},"message":"ok"})"));
    }

    void theTokenOfAScannedCodeIsGood()
    {
        QVERIFY(begin());
        m_steps->client().postTo(m_page);
        QCOMPARE(m_steps->speak(SignInSteps::token(collected())), 0);
    }

    void everyScannedCodeSignsInTheAccountOfThisMachine()
    {
        QVERIFY(begin());
        m_steps->client().postTo(m_page);
        const QJsonValue first = collected().value(QLatin1String("base"));
        QCOMPARE(first.toObject().value(QLatin1String("nickname")),
                 QJsonValue(QStringLiteral("Local user")));
        QCOMPARE(m_service->stop(SIGTERM), 0);
        QVERIFY(begin());
        m_steps->client().postTo(m_page);
        QCOMPARE(collected().value(QLatin1String("base")), first);
    }

    void aPostWithoutABodyAndATypeConfirms()
    {
        QVERIFY(begin());
        QCOMPARE(posted(QByteArray()).status, 200);
        QCOMPARE(polled(), confirmed);
    }

    void thePagesOwnButtonConfirms_data()
    {
        QTest::addColumn<QByteArray>("header");
        // The page tells nobody its address, so browsers do not name its origin.
        QTest::newRow("kept secret")
            << QByteArray("Origin: null\r\nSec-Fetch-Site: same-origin\r\n");
        QTest::newRow("kept secret, an old browser") << QByteArray("Origin: null\r\n");
        QTest::newRow("named") << "Origin: " + SignInSteps::address(QString()).toLatin1() + "\r\n";
    }
    void thePagesOwnButtonConfirms()
    {
        QFETCH(const QByteArray, header);
        QVERIFY(begin());
        QCOMPARE(posted(header).status, 200);
        QCOMPARE(polled(), confirmed);
    }

    void anotherPageConfirmsNothing_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::newRow("another site") << QByteArray("Sec-Fetch-Site: cross-site\r\n");
        QTest::newRow("the same site") << QByteArray("Sec-Fetch-Site: same-site\r\n");
        QTest::newRow("another origin") << QByteArray("Origin: https://other.example\r\n");
        QTest::newRow("another port") << QByteArray("Origin: https://localhost\r\n");
        QTest::newRow("another scheme")
            << "Origin: http://" + SignInSteps::address(QString()).mid(8).toLatin1() + "\r\n";
        QTest::newRow("an origin that begins like it")
            << "Origin: " + SignInSteps::address(QString()).toLatin1() + ".example\r\n";
    }
    void anotherPageConfirmsNothing()
    {
        QFETCH(const QByteArray, header);
        QVERIFY(begin());
        QCOMPARE(posted(header).status, 403);
        QCOMPARE(polled(), waiting);
    }

    void lookingAtThePageConfirmsNothing()
    {
        QVERIFY(begin());
        QCOMPARE(m_steps->client().get(m_page).status, 200);
        QCOMPARE(m_steps->client().head(m_page).status, 200);
        QCOMPARE(m_steps->client().put(m_page, "x", QString()).status, 404);
        QCOMPARE(polled(), waiting);
    }

    void aCodeIsConfirmedOnce()
    {
        QVERIFY(begin());
        QCOMPARE(m_steps->client().postTo(m_page).status, 200);
        const auto second = m_steps->client().postTo(m_page);
        QCOMPARE(second.status, 410);
        QVERIFY2(second.body.contains("<h1>Code already used</h1>"), second.body.constData());
        QCOMPARE(m_steps->client().get(m_page).status, 410);
        QCOMPARE(m_steps->client().get(pictureAddress()).status, 404);
        QCOMPARE(polled(), confirmed);
        QCOMPARE(m_steps->client().postTo(m_page).status, 410);
        QCOMPARE(polled(), over);
    }

    void anExpiredCodeIsOfNoUse()
    {
        QVERIFY(begin({QStringLiteral("--code-lifetime"), QStringLiteral("2")}));
        TRY_COMPARE(polled(), over);
        const auto page = m_steps->client().get(m_page);
        QCOMPARE(page.status, 410);
        QVERIFY2(page.body.contains("<h1>Code expired</h1>"), page.body.constData());
        QVERIFY2(!page.body.contains("<button"), page.body.constData());
        QCOMPARE(titleOf(viewed("Accept-Language: zh\r\n")), QByteArray("二维码已过期"));
        QCOMPARE(m_steps->client().head(m_page).status, 410);
        QCOMPARE(m_steps->client().postTo(m_page).status, 410);
        QCOMPARE(m_steps->client().get(pictureAddress()).status, 404);
        QCOMPARE(polled(), over);
    }

    void anUnknownCodeIsOfNoUse()
    {
        QVERIFY(begin());
        const QString unknown =
            SignInSteps::address(QStringLiteral("/signin/") + QString(32, QLatin1Char('0')));
        const auto page = m_steps->client().get(unknown);
        QCOMPARE(page.status, 404);
        QVERIFY2(page.body.contains("<h1>Unknown code</h1>"), page.body.constData());
        QCOMPARE(m_steps->client().postTo(unknown).status, 404);
        QCOMPARE(m_steps->client().get(SignInSteps::address(QStringLiteral("/signin/"))).status,
                 404);
        QCOMPARE(polled(QString(32, QLatin1Char('0'))), over);
        QCOMPARE(polled(QString()), over);
    }

    void noSecretStandsForAnother()
    {
        QVERIFY(begin());
        const QString page = lastSegment(m_page);
        const QString picture = lastSegment(pictureAddress());
        for (const QString &wrong : {page, picture})
            QCOMPARE(polled(wrong), over);
        for (const QString &wrong : {businessCode(), picture})
            QCOMPARE(m_steps->client()
                         .postTo(SignInSteps::address(QStringLiteral("/signin/") + wrong))
                         .status,
                     404);
        for (const QString &wrong : {businessCode(), page})
            QCOMPARE(
                m_steps->client()
                    .get(SignInSteps::address(QStringLiteral("/signin-picture/%1.png").arg(wrong)))
                    .status,
                404);
        QCOMPARE(polled(), waiting);
    }

    void aRestartEndsWhatWasWaiting()
    {
        QVERIFY(begin());
        const QString page = m_page;
        const QString code = businessCode();
        QCOMPARE(m_service->stop(SIGTERM), 0);
        QVERIFY(begin());
        QCOMPARE(m_steps->client().postTo(page).status, 404);
        QCOMPARE(polled(code), over);
    }

    void aHundredCodesMayWait()
    {
        QVERIFY(begin());
        for (int i = 1; i < 100; ++i)
            QVERIFY(m_steps->beginQr().isSuccess());
        QCOMPARE(m_steps->beginQr().code(), 429);
        m_steps->client().postTo(m_page);
        QCOMPARE(m_steps->beginQr().code(), 429); // nobody has heard of the confirmation yet
        QCOMPARE(polled(), confirmed);
        QCOMPARE(m_steps->beginQr().code(), 0);
    }

    void thePageSaysWhatItIsFor()
    {
        QVERIFY(begin());
        const auto page = m_steps->client().get(m_page);
        const QString expires =
            QDateTime::fromSecsSinceEpoch(
                static_cast<qint64>(m_data.value(QLatin1String("expire_time")).toDouble()))
                .toString(QStringLiteral("HH:mm:ss"));
        const QString program = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
        QCOMPARE(page.header("Content-Type"), QByteArray("text/html;charset=utf-8"));
        for (const QByteArray &part :
             {QByteArray("<html lang=\"en\">"), QByteArray("<title>Sign in?</title>"),
              QByteArray("<meta name=\"viewport\" content=\"width=device-width"),
              "The application <strong>" + program.toUtf8() + "</strong> on this computer",
              QByteArray("<strong>Local user</strong>"), QByteArray("<button>Sign in</button>"),
              QByteArray("name=\"answer\" value=\"no\">Not me</button>"),
              QByteArray(">" + expires.toUtf8() + "</time>")})
            QVERIFY2(page.body.contains(part), part.constData());
        QCOMPARE(page.body.count("<h1>"), 1);
        QCOMPARE(page.body.count("<button"), 2);
    }

    void thePageNamesAnyProgramAsText()
    {
        QVERIFY(m_service->startWithoutDevelopmentToken());
        m_steps.reset(new SignInSteps(m_service.data()));
        const QTemporaryDir folder;
        const QString program = folder.filePath(QStringLiteral("<b>{account} & %1"));
        QVERIFY(QFile::copy(QStandardPaths::findExecutable(QStringLiteral("openssl")), program));
        QProcess client;
        client.start(program, {QStringLiteral("s_client"), QStringLiteral("-quiet"),
                               QStringLiteral("-connect"), QUrl(serviceAddress()).authority()});
        client.write("GET /ucenter/public/index.php/v1/login/getMpQrCode HTTP/1.0\r\n\r\n");
        QVERIFY(client.waitForBytesWritten(patienceMs));
        m_page = m_steps->takePage();
        client.closeWriteChannel();
        QVERIFY(client.waitForFinished(patienceMs));
        const QByteArray html = m_steps->client().get(m_page).body;
        QVERIFY2(html.contains("<strong>&lt;b&gt;{account} &amp; %1</strong>"), html.constData());
    }

    void thePageDoesWithoutTheNameOfAProgramThatIsGone()
    {
        QVERIFY(m_service->startWithoutDevelopmentToken());
        m_steps.reset(new SignInSteps(m_service.data()));
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates(QSslCertificate::fromPath(m_service->authority()));
        tls.setProtocol(QSsl::TlsV1_2); // closing TLS 1.3 with unread tickets would reset it
        QSslSocket client;
        client.setSslConfiguration(tls);
        const QUrl service(serviceAddress());
        client.connectToHostEncrypted(service.host(), static_cast<quint16>(service.port()));
        QVERIFY(client.waitForEncrypted(patienceMs));
        m_service->send(SIGSTOP); // it reads the request when nobody has the connection any more
        client.write("GET /ucenter/public/index.php/v1/login/getMpQrCode HTTP/1.0\r\n\r\n");
        QVERIFY(client.waitForBytesWritten(patienceMs));
        client.disconnectFromHost();
        QVERIFY(client.state() == QAbstractSocket::UnconnectedState
                || client.waitForDisconnected(patienceMs));
        m_service->send(SIGCONT);
        const QByteArray html = m_steps->client().get(m_steps->takePage()).body;
        QVERIFY2(html.contains("<p>An application on this computer asks"), html.constData());
    }

    void thePageIsInTheLanguageOfItsReader()
    {
        const QByteArray english = "en: Sign in?";
        const QByteArray chinese = "zh-CN: 要登录吗？";
        const QList<QPair<QByteArray, QByteArray>> readers{
            {"", english},
            {"en-GB,en;q=0.9", english},
            {"zh-CN,zh;q=0.9,en;q=0.8", chinese},
            {"ZH-hans", chinese},
            {"zh, en", chinese},
            {"en, zh", english},
            {"en;q=0.5, zh ; q=0.7", chinese},
            {"zh;q=0, de", english},
            {"de, *;q=0.5", english},
            {"de, zh;q=0.1", chinese},
            {";;,q=1,zhx", english},
        };
        QVERIFY(begin());
        for (const auto &reader : readers) {
            const auto page = viewed("Accept-Language: " + reader.first + "\r\n");
            QCOMPARE(reader.first + " -> " + partOf(page, "<html lang=\"", "\"") + ": "
                         + titleOf(page),
                     reader.first + " -> " + reader.second);
        }
    }

    void everyPageIsInChineseToo()
    {
        const QByteArray chinese = "Accept-Language: zh\r\n";
        QVERIFY(begin());
        QByteArrayList titles{titleOf(viewed(chinese)), titleOf(posted(chinese)),
                              titleOf(viewed(chinese))};
        QVERIFY(askAgain());
        titles << titleOf(posted(chinese, "answer=no"));
        m_page += QLatin1Char('0');
        titles << titleOf(viewed(chinese));
        QCOMPARE(titles,
                 QByteArrayList({"要登录吗？", "已登录", "二维码已使用", "未登录", "未知二维码"}));
    }

    void thePageAsksAgainWhenTheCodeHasExpired()
    {
        QVERIFY(begin({QStringLiteral("--code-lifetime"), QStringLiteral("1000")}));
        const QByteArray html = m_steps->client().get(m_page).body;
        const QRegularExpressionMatch refresh =
            QRegularExpression(QStringLiteral(R"x(<meta http-equiv="refresh" content="(\d+)">)x"))
                .match(QString::fromUtf8(html));
        const int seconds = refresh.captured(1).toInt();
        QVERIFY2(seconds > 1000 - patienceMs / 1000 && seconds <= 1000, html.constData());
        // The clock and the buttons end with it.
        const QByteArray end = QByteArray::number(seconds) + "s ";
        QVERIFY2(html.contains("animation:count " + end), html.constData());
        QVERIFY2(html.contains("form{animation:go 0s " + end), html.constData());
        const auto done = m_steps->client().postTo(m_page);
        QVERIFY2(!done.body.contains("refresh"), done.body.constData());
    }

    void aDeclinedCodeIsOfNoUse()
    {
        QVERIFY(begin());
        const auto page = posted(QByteArray(), "answer=no");
        QCOMPARE(page.status, 200);
        QCOMPARE(titleOf(page), QByteArray("Not signed in"));
        QCOMPARE(polled(), over);
        QCOMPARE(posted(QByteArray()).status, 410);
        QCOMPARE(titleOf(m_steps->client().get(m_page)), QByteArray("Not signed in"));
        QCOMPARE(m_steps->client().get(pictureAddress()).status, 404);
        QCOMPARE(polled(), over);
    }

    void aDeclinedCodeMakesRoomForAnother()
    {
        QVERIFY(begin());
        for (int i = 1; i < 100; ++i)
            QVERIFY(m_steps->beginQr().isSuccess());
        QCOMPARE(m_steps->beginQr().code(), 429);
        QCOMPARE(posted(QByteArray(), "answer=no").status, 200);
        QCOMPARE(m_steps->beginQr().code(), 0);
    }

    void aConfirmedCodeCannotBeDeclined()
    {
        QVERIFY(begin());
        QCOMPARE(posted(QByteArray()).status, 200);
        QCOMPARE(posted(QByteArray(), "answer=no").status, 410);
        QCOMPARE(polled(), confirmed);
    }

    void anAnswerThatIsNotUnderstoodConfirmsNothing()
    {
        QVERIFY(begin());
        for (const char *answer : {"answer=", "answer=maybe", "answer=no&answer=yes", "no", "{}"})
            QCOMPARE(posted(QByteArray(), answer).status, 400);
        QCOMPARE(polled(), waiting);
    }

    void theStartPageSaysWhatTheServiceIsAndHowToTrustIt()
    {
        QVERIFY(m_service->start());
        ServiceClient client(m_service->authority());
        const auto page = client.get(SignInSteps::address(QStringLiteral("/")));
        QCOMPARE(page.status, 200);
        QCOMPARE(page.header("Content-Type"), QByteArray("text/html;charset=utf-8"));
        QCOMPARE(titleOf(page), QByteArray("Speech service of this computer"));
        QVERIFY2(page.body.contains("<code>" + m_service->authority().toUtf8() + "</code>"),
                 page.body.constData());
        QCOMPARE(client.head(SignInSteps::address(QStringLiteral("/"))).status, 200);
        QCOMPARE(client.postTo(SignInSteps::address(QStringLiteral("/"))).status, 404);
        const auto chinese = client.verbatim("GET /", "Accept-Language: zh-CN\r\n");
        QCOMPARE(titleOf(chinese), QByteArray("本机语音服务"));
    }

    void thePagesHaveAnIcon()
    {
        QVERIFY(begin());
        const QByteArray html = m_steps->client().get(m_page).body;
        QVERIFY2(html.contains("<link rel=\"icon\" type=\"image/svg+xml\" href=\"/icon.svg\">"),
                 html.constData());
        const auto icon = m_steps->client().get(SignInSteps::address(QStringLiteral("/icon.svg")));
        QCOMPARE(icon.status, 200);
        QCOMPARE(icon.header("Content-Type"), QByteArray("image/svg+xml"));
        QVERIFY2(icon.body.startsWith("<svg xmlns=\"http://www.w3.org/2000/svg\""),
                 icon.body.constData());
        QXmlStreamReader reader(icon.body);
        while (!reader.atEnd())
            reader.readNext();
        QCOMPARE(reader.errorString(), QString());
    }

    void thePageLoadsAndSendsNothingElsewhere()
    {
        QVERIFY(begin());
        QByteArray html = m_steps->client().get(m_page).body;
        html.replace("http-equiv", "").replace("=\"/icon.svg\"", "");
        for (const char *part : {"<script", "src=", "href=", "url(", "@import", "http", "action="})
            QVERIFY2(!html.contains(part), part);
    }

    void everyPageIsGuardedByItsHeaders()
    {
        QVERIFY(begin());
        const auto question = m_steps->client().get(m_page);
        const auto done = m_steps->client().postTo(m_page);
        const auto used = m_steps->client().get(m_page);
        const auto start = m_steps->client().get(SignInSteps::address(QStringLiteral("/")));
        for (const auto &page : {question, done, used, start}) {
            QCOMPARE(page.header("Content-Security-Policy"),
                     "default-src 'none'; img-src 'self'; style-src '" + styleDigest(page.body)
                         + "'; form-action 'self'; base-uri 'none'; frame-ancestors 'none'");
            QCOMPARE(page.header("Referrer-Policy"), QByteArray("no-referrer"));
            QCOMPARE(page.header("Cache-Control"), QByteArray("no-store"));
            QCOMPARE(page.header("X-Content-Type-Options"), QByteArray("nosniff"));
        }
    }

    void theLogTellsNoSecret()
    {
        QVERIFY(begin());
        m_steps->client().get(pictureAddress());
        m_steps->client().get(m_page);
        m_steps->client().get(
            QString(m_page).replace(QLatin1String("/signin/"), QLatin1String("//signin//")));
        polled();
        // The first asked for the code.
        TRY_COMPARE(m_service->log().count('\n'), 5);
        const QByteArray log = m_service->log();
        const QStringList all = secrets();
        for (const QString &secret : all)
            QVERIFY2(!log.contains(secret.toUtf8()), log.constData());
    }

private:
    bool begin(const QStringList &options = {})
    {
        if (!m_service->startWithoutDevelopmentToken(options))
            return false;
        m_steps.reset(new SignInSteps(m_service.data()));
        return askAgain();
    }

    bool askAgain()
    {
        const auto reply = m_steps->beginQr();
        m_data = reply.data();
        m_page = m_steps->takePage();
        return reply.isSuccess() && !m_page.isEmpty();
    }

    QString businessCode() const { return m_data.value(QLatin1String("business_code")).toString(); }

    QString pictureAddress() const { return m_data.value(QLatin1String("url")).toString(); }

    QStringList secrets() const
    {
        return {businessCode(), lastSegment(pictureAddress()), lastSegment(m_page)};
    }

    QByteArray pathOfPage() const
    {
        return m_page.mid(SignInSteps::address(QString()).size()).toUtf8();
    }

    // The page as a browser with these headers sees it.
    SignInSteps::Reply viewed(const QByteArray &headers)
    {
        return m_steps->client().verbatim("GET " + pathOfPage(), headers);
    }

    // A POST to the page with nothing but @p headers and @p body.
    SignInSteps::Reply posted(const QByteArray &headers, const QByteArray &body = QByteArray())
    {
        return m_steps->client().verbatim("POST " + pathOfPage(), headers, body);
    }

    static QByteArray partOf(const SignInSteps::Reply &page, const QByteArray &before,
                             const QByteArray &after)
    {
        const int begin = page.body.indexOf(before) + before.size();
        return page.body.mid(begin, page.body.indexOf(after, begin) - begin);
    }

    static QByteArray titleOf(const SignInSteps::Reply &page)
    {
        return partOf(page, "<h1>", "</h1>");
    }

    int polled(const QString &code)
    {
        return m_steps->pollQr(code).data().value(QLatin1String("status")).toInt(-1);
    }

    int polled() { return polled(businessCode()); }

    // Who was signed in, to be asked for once.
    QJsonObject collected()
    {
        return m_steps->pollQr(businessCode()).data().value(QLatin1String("user_info")).toObject();
    }

    // As a policy names the style that stands in a page.
    static QByteArray styleDigest(const QByteArray &page)
    {
        const int begin = page.indexOf("<style>") + int(qstrlen("<style>"));
        const QByteArray style = page.mid(begin, page.indexOf("</style>") - begin);
        return "sha256-" + QCryptographicHash::hash(style, QCryptographicHash::Sha256).toBase64();
    }

    QScopedPointer<LocalService> m_service;
    QScopedPointer<SignInSteps> m_steps;
    QJsonObject m_data;
    QString m_page;
};

QTEST_GUILESS_MAIN(TestServiceQr)
#include "tst_serviceqr.moc"
