#include "tests/support/patience.h"
#include "tests/system/localservice.h"
#include "tests/system/signinsteps.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QtTest>

#include <csignal>

namespace {

// Of a range that is nobody's.
QString phone() { return QStringLiteral("+447700900001"); }
QString otherPhone() { return QStringLiteral("+447700900002"); }

QString smsAddress()
{
    return SignInSteps::address(QStringLiteral("/ucenter/public/index.php/v1/verify/sms"));
}

// Seconds from now to what a sign-in says, which is in local time.
qint64 secondsTo(const QJsonObject &signedIn, const char *name)
{
    const QString text =
        signedIn.value(QLatin1String("token")).toObject().value(QLatin1String(name)).toString();
    const QDateTime time = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    return time.isValid() ? QDateTime::currentDateTime().secsTo(time) : -1;
}

qint64 userId(const QJsonObject &signedIn)
{
    return static_cast<qint64>(signedIn.value(QLatin1String("base"))
                                   .toObject()
                                   .value(QLatin1String("user_id"))
                                   .toDouble());
}

} // namespace

/// Signing in with a code that is sent to a phone, and what keeps it from being guessed.
class TestServiceSms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_service.reset(new LocalService); }

    void theCodeIsPrintedOnOneLine()
    {
        QVERIFY(begin());
        const auto reply = m_steps->askForCode(phone());
        QCOMPARE(reply.body, QByteArray(R"({"code":0,"data":{},"message":"ok"})"));
        const QRegularExpression line(QStringLiteral(
            "^vo-localservice: SMS to \\+447700900001: [0-9]{6} is your sign-in code$"));
        QVERIFY(line.match(QString::fromUtf8(m_service->takeLine("SMS"))).hasMatch());
    }

    void theRightCodeSignsIn()
    {
        QVERIFY(begin());
        const QJsonObject signedIn = m_steps->signIn(phone());
        const QJsonObject base = signedIn.value(QLatin1String("base")).toObject();
        QCOMPARE(signedIn.keys(), QStringList({QStringLiteral("base"), QStringLiteral("token")}));
        QCOMPARE(base.keys(), QStringList({QStringLiteral("header_url"), QStringLiteral("nickname"),
                                           QStringLiteral("user_id")}));
        QVERIFY(userId(signedIn) > 0);
        QCOMPARE(base.value(QLatin1String("nickname")).toString(), QStringLiteral("User 0001"));
        const auto picture =
            m_steps->client().get(base.value(QLatin1String("header_url")).toString());
        QVERIFY(picture.body.startsWith("\x89PNG"));
        QCOMPARE(m_steps->speak(SignInSteps::token(signedIn)), 0);
    }

    void theTokensSayWhenTheyExpire()
    {
        QVERIFY(begin({QStringLiteral("--token-lifetime"), QStringLiteral("1000"),
                       QStringLiteral("--refresh-lifetime"), QStringLiteral("5000")}));
        const QJsonObject signedIn = m_steps->signIn(phone());
        QVERIFY(qAbs(secondsTo(signedIn, "token_expire_time") - 1000) <= 60);
        QVERIFY(qAbs(secondsTo(signedIn, "refresh_expire_time") - 5000) <= 60);
    }

    void aNumberHasOneAccountAcrossRestarts()
    {
        QVERIFY(begin());
        const qint64 first = userId(m_steps->signIn(phone()));
        const qint64 other = userId(m_steps->signIn(otherPhone()));
        QVERIFY(restart());
        QCOMPARE(userId(m_steps->signIn(phone())), first);
        QVERIFY(other != first);
    }

    void aCodeIsUsedOnce()
    {
        QVERIFY(begin());
        const QString code = sentCode();
        QCOMPARE(m_steps->enterCode(phone(), code).code(), 0);
        QCOMPARE(m_steps->enterCode(phone(), code).code(), 403);
    }

    void aCodeIsForItsNumberOnly()
    {
        QVERIFY(begin());
        const QString code = sentCode();
        QVERIFY(m_steps->askForCode(otherPhone()).isSuccess());
        const QString otherCode = m_steps->takeCode(otherPhone());
        if (code != otherCode)
            QCOMPARE(m_steps->enterCode(otherPhone(), code).code(), 403);
        QCOMPARE(m_steps->enterCode(QStringLiteral("447700900001"), code).code(), 403);
        QCOMPARE(m_steps->enterCode(phone(), code).code(), 0);
    }

    void aCodeExpires()
    {
        QVERIFY(begin({QStringLiteral("--code-lifetime"), QStringLiteral("1")}));
        const QString code = sentCode();
        // Only its time tells that it has expired: every attempt to use it would change something.
        const QDateTime expired = QDateTime::currentDateTime().addSecs(2);
        TRY_VERIFY(QDateTime::currentDateTime() >= expired);
        QCOMPARE(m_steps->enterCode(phone(), code).code(), 403);
    }

    void aNewCodeReplacesTheOlderOne()
    {
        QVERIFY(begin());
        const QString older = sentCode();
        QString newer = sentCode();
        while (newer == older)
            newer = sentCode();
        QCOMPARE(m_steps->enterCode(phone(), older).code(), 403);
        QCOMPARE(m_steps->enterCode(phone(), newer).code(), 0);
    }

    void aCodeSurvivesARestart()
    {
        QVERIFY(begin());
        const QString code = sentCode();
        QVERIFY(restart());
        QCOMPARE(m_steps->enterCode(phone(), code).code(), 0);
    }

    void fourWrongGuessesLeaveACodeAlive()
    {
        QVERIFY(begin());
        const QString code = sentCode();
        QCOMPARE(guessWrongly(code, 4), QVector<int>(4, 403));
        QCOMPARE(m_steps->enterCode(phone(), code).code(), 0);
    }

    void afterFiveWrongGuessesTheRightCodeIsRefused()
    {
        QVERIFY(begin());
        const QString code = sentCode();
        QCOMPARE(guessWrongly(code, 5), QVector<int>(5, 403));
        QCOMPARE(m_steps->enterCode(phone(), code).code(), 403);
    }

    void tenWrongGuessesAreRefusedAlike()
    {
        QVERIFY(begin());
        const QString code = sentCode();
        const auto first = m_steps->enterCode(phone(), SignInSteps::otherThan(code));
        guessWrongly(code, 8);
        QCOMPARE(m_steps->enterCode(phone(), SignInSteps::otherThan(code)).body, first.body);
        QCOMPARE(m_steps->enterCode(phone(), code).body, first.body);
    }

    void aRestartForgivesNoWrongGuess()
    {
        QVERIFY(begin());
        const QString code = sentCode();
        guessWrongly(code, 3);
        QVERIFY(restart());
        guessWrongly(code, 2);
        QCOMPARE(m_steps->enterCode(phone(), code).code(), 403);
    }

    void whatIsNoCodeIsAWrongGuess_data()
    {
        QTest::addColumn<QString>("guess");
        QTest::newRow("empty") << QString();
        QTest::newRow("a word") << QStringLiteral("secret");
        QTest::newRow("too long") << QStringLiteral("0000000");
        QTest::newRow("SQL") << QStringLiteral("' OR '1'='1");
    }
    void whatIsNoCodeIsAWrongGuess()
    {
        QFETCH(const QString, guess);
        QVERIFY(begin());
        sentCode();
        QCOMPARE(m_steps->enterCode(phone(), guess).code(), 403);
    }

    void aNumberThatWasSentNoCodeCannotSignIn()
    {
        QVERIFY(begin());
        QCOMPARE(m_steps->enterCode(phone(), QStringLiteral("000000")).code(), 403);
    }

    void aNumberGetsFiveCodesAnHourWhateverIsRestarted()
    {
        QVERIFY(begin());
        for (int i = 0; i < 5; ++i)
            QCOMPARE(m_steps->askForCode(phone()).code(), 0);
        QCOMPARE(m_steps->askForCode(phone()).code(), 429);
        QVERIFY(restart());
        QCOMPARE(m_steps->askForCode(phone()).code(), 429);
        QCOMPARE(m_steps->askForCode(otherPhone()).code(), 0);
    }

    void aCodeThatWasUsedCountsAmongTheFive()
    {
        QVERIFY(begin());
        for (int i = 0; i < 5; ++i)
            QVERIFY(!m_steps->signIn(phone()).isEmpty());
        QCOMPARE(m_steps->askForCode(phone()).code(), 429);
    }

    void allNumbersTogetherGetAHundredCodesAnHour()
    {
        QVERIFY(begin());
        for (int i = 0; i < 100; ++i)
            QCOMPARE(m_steps->askForCode(QString::number(10000 + i)).code(), 0);
        QCOMPARE(m_steps->askForCode(phone()).code(), 429);
    }

    void aNumberHasFiveToFifteenDigits_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<int>("code");
        QTest::newRow("five digits") << QStringLiteral("12345") << 0;
        QTest::newRow("fifteen digits") << QStringLiteral("123456789012345") << 0;
        QTest::newRow("with a plus") << QStringLiteral("+12345") << 0;
        QTest::newRow("empty") << QString() << 422;
        QTest::newRow("a plus") << QStringLiteral("+") << 422;
        QTest::newRow("four digits") << QStringLiteral("1234") << 422;
        QTest::newRow("four digits with a plus") << QStringLiteral("+1234") << 422;
        QTest::newRow("sixteen digits") << QStringLiteral("1234567890123456") << 422;
        QTest::newRow("two pluses") << QStringLiteral("++12345") << 422;
        QTest::newRow("blanks") << QStringLiteral("123 456") << 422;
        QTest::newRow("other digits") << QStringLiteral("١٢٣٤٥٦") << 422;
        QTest::newRow("a line of its own") << QStringLiteral("12345\n12345") << 422;
    }
    void aNumberHasFiveToFifteenDigits()
    {
        QFETCH(const QString, number);
        QFETCH(const int, code);
        QVERIFY(begin());
        QCOMPARE(m_steps->askForCode(number).code(), code);
        QCOMPARE(m_steps->enterCode(number, QStringLiteral("000000")).code(),
                 code == 0 ? 403 : code);
    }

    void aRequestForACodeHasToBeWhole_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("code");
        QTest::newRow("no JSON") << QByteArray("{") << 400;
        QTest::newRow("no phone") << QByteArray(R"({"scene":1})") << 400;
        QTest::newRow("phone is a number") << QByteArray(R"({"phone":12345,"scene":1})") << 400;
        QTest::newRow("no scene") << QByteArray(R"({"phone":"12345"})") << 400;
        QTest::newRow("scene is a text") << QByteArray(R"({"phone":"12345","scene":"1"})") << 400;
        QTest::newRow("scene 0") << QByteArray(R"({"phone":"12345","scene":0})") << 422;
        QTest::newRow("scene 2") << QByteArray(R"({"phone":"12345","scene":2})") << 422;
    }
    void aRequestForACodeHasToBeWhole()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const int, code);
        QVERIFY(begin());
        const auto reply = m_steps->client().postTo(smsAddress(), body);
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.code(), code);
        QVERIFY(reply.isRefusal());
    }

private:
    bool begin(const QStringList &options = {})
    {
        const bool started = m_service->startWithoutDevelopmentToken(options);
        m_steps.reset(new SignInSteps(m_service.data()));
        return started;
    }

    bool restart() { return m_service->stop(SIGTERM) == 0 && begin(); }

    // Asks for a code and takes it.
    QString sentCode()
    {
        return m_steps->askForCode(phone()).isSuccess() ? m_steps->takeCode(phone()) : QString();
    }

    QVector<int> guessWrongly(const QString &code, int times)
    {
        QVector<int> codes;
        for (int i = 0; i < times; ++i)
            codes.append(m_steps->enterCode(phone(), SignInSteps::otherThan(code)).code());
        return codes;
    }

    QScopedPointer<LocalService> m_service;
    QScopedPointer<SignInSteps> m_steps;
};

QTEST_GUILESS_MAIN(TestServiceSms)
#include "tst_servicesms.moc"
