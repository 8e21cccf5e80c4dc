#include "tests/support/patience.h"
#include "tests/system/home.h"
#include "tests/system/localservice.h"
#include "tests/system/program.h"
#include "tests/system/serviceclient.h"
#include "tests/system/words.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QtTest>

#include <csignal>

namespace {

QString phone() { return QStringLiteral("+447700900123"); }

QString sentence() { return QStringLiteral("Go forward ten meters."); }

QByteArray signInAgain()
{
    return "sign in again: vospeak login --qr, or vospeak login --sms NUMBER\n";
}

// Of the blocks that vospeak draws, whether one is dark in its upper or its lower half.
bool isDark(QChar block, bool lower)
{
    return block == QChar(0x2588) || block == QChar(lower ? 0x2584 : 0x2580);
}

// The drawing as a picture, four pixels a module.
QImage pictureOf(const QStringList &drawing)
{
    QImage image(4 * drawing.value(0).size(), 8 * drawing.size(), QImage::Format_Grayscale8);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(
                x, y, isDark(drawing.at(y / 8).at(x / 4), y / 4 % 2) ? 0xff000000 : 0xffffffff);
    }
    return image;
}

// What a scanner reads in a picture.
QByteArray scanned(const QString &picture)
{
    QProcess scanner;
    scanner.start(QStringLiteral("zbarimg"), {QStringLiteral("--quiet"), QStringLiteral("--raw"),
                                              QStringLiteral("--nodbus"), picture});
    return scanner.waitForFinished(patienceMs) ? scanner.readAllStandardOutput().trimmed()
                                               : QByteArray();
}

} // namespace

/// How vospeak and the local service sign a user in together.
class TestAccounts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home.reset(); // the service's folder must not be in the home that goes
        m_service.reset(new LocalService);
        m_home.reset(new Home);
    }

    void aCodeSentToAPhoneSignsInAndTheSessionSpeaksAndRecognises()
    {
        QVERIFY(m_service->start());
        const Outcome outcome = signInBySms();
        QVERIFY2(outcome.out.startsWith("signed in as "), outcome.out.constData());
        QCOMPARE(outcome.status, 0);
        theSessionSpeaksAndRecognises();
    }

    void aSessionOutlivesTheService()
    {
        QVERIFY(m_service->start());
        QCOMPARE(signInBySms().status, 0);
        QCOMPARE(m_service->stop(SIGTERM), 0);
        QVERIFY(m_service->start());
        theSessionSpeaksAndRecognises();
    }

    void aCodeThatWasScannedAndConfirmedSignsIn()
    {
        QVERIFY(m_service->start());
        Program program(withAuthority(arguments("login --qr")));
        const QByteArray page = pageAddress();
        QVERIFY(waitForDrawing(&program));
        QVERIFY(confirm(page));
        const Outcome outcome = program.outcome();
        QVERIFY2(outcome.out.startsWith("signed in as "), outcome.out.constData());
        QCOMPARE(outcome.status, 0);
        theSessionSpeaksAndRecognises();
    }

    void theDrawingHoldsThePagesAddress()
    {
        QVERIFY(m_service->start());
        Program program(withAuthority(arguments("login --qr")));
        const QByteArray page = pageAddress();
        QVERIFY(waitForDrawing(&program));
        QStringList lines = QString::fromUtf8(program.err()).split(QLatin1Char('\n'));
        lines = lines.mid(0, lines.indexOf(QRegularExpression(QStringLiteral("Open .*"))));
        const QString drawing = m_folder.filePath(QStringLiteral("drawing.png"));
        QVERIFY(pictureOf(lines).save(drawing));
        QCOMPARE(scanned(m_home->picture()), page);
        QCOMPARE(scanned(drawing), page);
    }

    void aCodeThatNobodyScansExpires()
    {
        QVERIFY(m_service->start({QStringLiteral("--code-lifetime"), QStringLiteral("2")}));
        const Outcome outcome = run(arguments("login --qr"));
        QCOMPARE(outcome.status, 1);
        QVERIFY2(outcome.err.endsWith("vospeak: the code has expired\n"), outcome.err.constData());
        QVERIFY(!QFile::exists(m_home->sessionFile()));
    }

    void aWrongCodeIsRefused()
    {
        QVERIFY(m_service->start());
        Program program(signIn());
        program.type(otherThan(sentCode()) + '\n');
        isRefused(program.outcome());
    }

    void aCodeThatWasUsedIsRefused()
    {
        QVERIFY(m_service->start());
        Program first(signIn());
        const QByteArray code = sentCode();
        first.type(code + '\n');
        QCOMPARE(first.outcome().status, 0);
        QCOMPARE(vospeak(arguments("logout")).status, 0);
        Program second(signIn());
        if (sentCode() == code)
            QSKIP("the service happened to send the same code again", );
        second.type(code + '\n');
        isRefused(second.outcome());
    }

    void afterTenWrongCodesTheRightOneIsRefused()
    {
        QVERIFY(m_service->start());
        Program program(signIn());
        const QByteArray code = sentCode();
        for (int i = 0; i < 10; ++i)
            QVERIFY(!postCode(otherThan(code)).contains("\"code\":0"));
        program.type(code + '\n');
        isRefused(program.outcome());
    }

    // The lifetime of a token is less than what vospeak wants to be left of it.
    void aTokenThatExpiresSoonIsRenewedAndKept()
    {
        QVERIFY(m_service->start({QStringLiteral("--token-lifetime"), QStringLiteral("30")}));
        QCOMPARE(signInBySms().status, 0);
        const QJsonObject before = m_home->session();
        const QDateTime later =
            QDateTime::currentDateTime().addSecs(2); // times are in whole seconds
        TRY_VERIFY(QDateTime::currentDateTime() >= later);
        QCOMPARE(run(say()).status, 0);
        const QJsonObject after = m_home->session();
        QVERIFY(after.value(QLatin1String("token")) != before.value(QLatin1String("token")));
        QVERIFY(expiry(after, "tokenExpires") > expiry(before, "tokenExpires"));
        for (const char *kept : {"refreshToken", "sessionExpires", "userId", "nickname"})
            QCOMPARE(after.value(QLatin1String(kept)), before.value(QLatin1String(kept)));
    }

    void aTokenThatTheServiceDoesNotRenewAsksToSignInAgain()
    {
        QVERIFY(m_service->start());
        QCOMPARE(signInBySms().status, 0);
        QJsonObject session = m_home->session();
        session.insert(QStringLiteral("refreshToken"), QStringLiteral("12345"));
        session.insert(QStringLiteral("tokenExpires"), QStringLiteral("2001-01-01T00:00:00Z"));
        m_home->writeSession(session);
        const Outcome outcome = run(say());
        QCOMPARE(outcome.status, 5);
        QCOMPARE(outcome.err, "vospeak: the session could not be renewed; " + signInAgain());
    }

    void anExpiredSessionAsksToSignInAgain()
    {
        QVERIFY(m_service->start({QStringLiteral("--token-lifetime"), QStringLiteral("1"),
                                  QStringLiteral("--refresh-lifetime"), QStringLiteral("2")}));
        QCOMPARE(signInBySms().status, 0);
        const QJsonObject session = m_home->session();
        TRY_VERIFY(hasPassed(session, "sessionExpires"));
        const Outcome outcome = run(say());
        QCOMPARE(outcome.status, 5);
        QCOMPARE(outcome.err, "vospeak: the session has expired; " + signInAgain());
    }

    void whatTheServiceOffersIsWhatVospeakPrints()
    {
        QVERIFY(m_service->start());
        ServiceClient client(m_service->authority());
        const QString base =
            QStringLiteral(SERVICE_BASE_ADDRESS "/convert/public/index.php/v1/asr/");
        const QJsonArray voices = listIn(client.get(base + QStringLiteral("getVoice")).data());
        QVERIFY(!voices.isEmpty());
        const QJsonArray printed = documentOf("voices").value(QLatin1String("voices")).toArray();
        QCOMPARE(textsIn(printed, "voice"), textsIn(voices, "voiceParam"));
        QCOMPARE(textsIn(printed, "name"), textsIn(voices, "name"));
        QCOMPARE(textsIn(printed, "sampleUrl"), textsIn(voices, "audition_url"));
        const QJsonArray music =
            QJsonDocument::fromJson(client.get(base + QStringLiteral("getBackgroundMusic")).body)
                .object()
                .value(QLatin1String("data"))
                .toArray();
        QVERIFY(!music.isEmpty());
        QCOMPARE(documentOf("music").value(QLatin1String("music")).toArray(), music);
        QCOMPARE(documentOf("update").value(QLatin1String("status")).toInt(-1), 0);
    }

    void everyVoiceThatIsOfferedSpeaks()
    {
        QVERIFY(m_service->start());
        QCOMPARE(signInBySms().status, 0);
        const QJsonArray voices = documentOf("voices").value(QLatin1String("voices")).toArray();
        for (const QString &voice : textsIn(voices, "voice"))
            QCOMPARE(run(say() + QStringList{QStringLiteral("--voice"), voice}).status, 0);
    }

private:
    Outcome signInBySms()
    {
        Program program(signIn());
        program.type(sentCode() + '\n');
        return program.outcome();
    }

    QStringList signIn() const
    {
        return withAuthority({QStringLiteral("login"), QStringLiteral("--sms"), phone()});
    }

    void isRefused(const Outcome &outcome) const
    {
        QCOMPARE(outcome.status, 5);
        QCOMPARE(outcome.out, QByteArray());
        QVERIFY2(outcome.err.contains("vospeak: the service refused"), outcome.err.constData());
        QVERIFY(!QFile::exists(m_home->sessionFile()));
    }

    void theSessionSpeaksAndRecognises() const
    {
        const Outcome said = run(say());
        QCOMPARE(said.err, QByteArray());
        QCOMPARE(said.status, 0);
        const Outcome heard = run({QStringLiteral("recognize"), audio()});
        QCOMPARE(words(QString::fromUtf8(heard.out)), words(sentence()));
    }

    QString audio() const { return m_folder.filePath(QStringLiteral("audio.wav")); }
    QStringList say() const
    {
        return {QStringLiteral("say"), sentence(), QStringLiteral("-o"), audio()};
    }

    // After the drawing there is one line of text.
    static bool waitForDrawing(Program *program)
    {
        return QTest::qWaitFor([program] { return program->err().endsWith("login_qr_code.png\n"); },
                               patienceMs);
    }

    // Another code of the same length.
    static QByteArray otherThan(QByteArray code)
    {
        code[0] = code.at(0) == '1' ? '2' : '1';
        return code;
    }

    QByteArray postCode(const QByteArray &code) const
    {
        const QJsonObject body{{QStringLiteral("phone"), phone()},
                               {QStringLiteral("verify"), QString::fromLatin1(code)}};
        return post(QByteArray(SERVICE_BASE_ADDRESS) + "/ucenter/public/index.php/v1/login/sms",
                    "application/json", QJsonDocument(body).toJson());
    }

    // As the browser of the user's phone does.
    bool confirm(const QByteArray &page) const
    {
        return !post(page, "application/x-www-form-urlencoded", "").isEmpty();
    }

    // The reply's body; empty: it failed.
    QByteArray post(const QByteArray &address, const char *type, const QByteArray &body) const
    {
        QNetworkRequest request{QUrl(QString::fromLatin1(address))};
        QSslConfiguration tls = request.sslConfiguration();
        tls.setCaCertificates(QSslCertificate::fromPath(m_service->authority()));
        request.setSslConfiguration(tls);
        request.setHeader(QNetworkRequest::ContentTypeHeader, QString::fromLatin1(type));
        QNetworkAccessManager manager;
        QNetworkReply *reply = manager.post(request, body);
        QSignalSpy finished(reply, &QNetworkReply::finished);
        finished.wait(patienceMs);
        return reply->error() == QNetworkReply::NoError ? reply->readAll() : QByteArray();
    }

    static QDateTime expiry(const QJsonObject &session, const char *key)
    {
        return QDateTime::fromString(session.value(QLatin1String(key)).toString(), Qt::ISODate);
    }
    static bool hasPassed(const QJsonObject &session, const char *key)
    {
        return expiry(session, key) <= QDateTime::currentDateTime();
    }

    QJsonObject documentOf(const char *command) const
    {
        return QJsonDocument::fromJson(
                   run({QString::fromLatin1(command), QStringLiteral("--json")}).out)
            .object();
    }

    static QJsonArray listIn(const QJsonObject &data)
    {
        return data.value(QLatin1String("list")).toArray();
    }
    static QStringList textsIn(const QJsonArray &objects, const char *key)
    {
        QStringList texts;
        for (const QJsonValue &object : objects)
            texts.append(object.toObject().value(QLatin1String(key)).toString());
        return texts;
    }

    QByteArray sentCode()
    {
        const QByteArray mark = "SMS to " + phone().toLatin1() + ": ";
        const QByteArray line = m_service->takeLine(mark);
        return line.mid(line.indexOf(mark) + mark.size()).split(' ').value(0);
    }

    QByteArray pageAddress() { return m_service->takeLine("sign-in page ").split(' ').last(); }

    QStringList withAuthority(const QStringList &command) const
    {
        return command + QStringList{QStringLiteral("--ca"), m_service->authority()};
    }
    Outcome run(const QStringList &command) const { return vospeak(withAuthority(command)); }

    QScopedPointer<LocalService> m_service;
    QScopedPointer<Home> m_home;
    const QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TestAccounts)
#include "tst_accounts.moc"
