#include "tests/support/patience.h"
#include "tests/system/localservice.h"
#include "tests/system/program.h"
#include "tests/system/signinsteps.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonValue>
#include <QProcess>
#include <QSet>
#include <QtTest>

#include <SQLiteCpp/SQLiteCpp.h>

#include <cmath>
#include <csignal>

namespace {

QString phone() { return QStringLiteral("+447700900001"); }

// What the first version made of its database, and a sign-in whose access token is 12345: its
// digest is what sha256sum says.
constexpr const char *firstVersion = R"(
    CREATE TABLE account (
        id INTEGER PRIMARY KEY AUTOINCREMENT,
        phone TEXT UNIQUE,
        nickname TEXT NOT NULL);
    INSERT INTO account (nickname) VALUES ('Local user');
    CREATE TABLE token (
        digest TEXT PRIMARY KEY,
        account INTEGER NOT NULL REFERENCES account (id),
        kind INTEGER NOT NULL,
        expires INTEGER NOT NULL) WITHOUT ROWID;
    CREATE TABLE sms_code (
        id INTEGER PRIMARY KEY AUTOINCREMENT,
        phone TEXT NOT NULL,
        code TEXT NOT NULL,
        sent INTEGER NOT NULL,
        expires INTEGER NOT NULL,
        wrong_guesses INTEGER NOT NULL DEFAULT 0,
        used INTEGER NOT NULL DEFAULT 0);
    PRAGMA user_version = 1;
    INSERT INTO account (id, phone, nickname) VALUES (7, '+447700900001', 'User of old');
    INSERT INTO token (digest, account, kind, expires)
        VALUES ('5994471abb01112afcc18159f6cc74b4f511b99806da59b3caf5a9c173cacfc5', 7, 0, 9999999999);
)";

} // namespace

/// The tokens that signing in gives out: what they are good for, for how long, and where they are
/// kept.
class TestServiceTokens : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_service.reset(new LocalService); }

    void tokensAreWholeNumbersThatADoubleHolds()
    {
        QVERIFY(begin());
        QSet<double> seen;
        for (int i = 0; i < 5; ++i) {
            const QJsonObject tokens =
                m_steps->signIn(phone()).value(QLatin1String("token")).toObject();
            for (const char *name : {"token", "refresh_token"}) {
                const double token = tokens.value(QLatin1String(name)).toDouble();
                QVERIFY(token > 1 && token < 9007199254740992.0 && token == std::floor(token));
                seen.insert(token);
            }
        }
        QCOMPARE(seen.size(), 10);
    }

    void anUnknownTokenIsRefused_data()
    {
        QTest::addColumn<QByteArray>("authorization");
        QTest::newRow("none") << QByteArray();
        QTest::newRow("empty") << QByteArray("Bearer ");
        QTest::newRow("0") << QByteArray("Bearer 0");
        QTest::newRow("1") << QByteArray("Bearer 1");
        QTest::newRow("-1") << QByteArray("Bearer -1");
        QTest::newRow("the development token, which is off")
            << "Bearer " + QByteArray::number(LocalService::token());
        QTest::newRow("SQL") << QByteArray("Bearer ' OR '1'='1");
    }
    void anUnknownTokenIsRefused()
    {
        QFETCH(const QByteArray, authorization);
        QVERIFY(begin());
        QCOMPARE(speechCodes(authorization), QVector<int>(2, 401));
    }

    void aTokenIsTakenInItsOwnFormOnly()
    {
        QVERIFY(begin());
        const QByteArray token = SignInSteps::token(m_steps->signIn(phone())).toUtf8();
        for (const QByteArray &form :
             {token, "Bearer 0" + token, "Bearer +" + token, "Bearer " + token + "0",
              "Basic " + token, "Bearer " + token + '\0'})
            QCOMPARE(speechCodes(form), QVector<int>(2, 401));
        // The task is not known; the token is.
        QCOMPARE(speechCodes("Bearer " + token), QVector<int>({422, 404}));
    }

    void aRefreshTokenIsNoAccessTokenNorTheOtherWayRound()
    {
        QVERIFY(begin());
        const QJsonObject signedIn = m_steps->signIn(phone());
        QCOMPARE(m_steps->speak(SignInSteps::token(signedIn, "refresh_token")), 401);
        QCOMPARE(m_steps->renew(SignInSteps::token(signedIn, "token")).code(), 401);
    }

    void aRenewalGivesANewTokenAndLeavesTheOthersGood()
    {
        QVERIFY(begin());
        const QJsonObject signedIn = m_steps->signIn(phone());
        const QString refresh = SignInSteps::token(signedIn, "refresh_token");
        QStringList tokens{SignInSteps::token(signedIn)};
        for (int i = 0; i < 2; ++i) {
            const auto reply = m_steps->renew(refresh);
            QVERIFY2(reply.isSuccess(), reply.body.constData());
            QCOMPARE(reply.data().keys(),
                     QStringList({QStringLiteral("expire_time"), QStringLiteral("token")}));
            tokens.append(QString::number(
                static_cast<qint64>(reply.data().value(QLatin1String("token")).toDouble())));
        }
        QCOMPARE(QSet<QString>(tokens.begin(), tokens.end()).size(), 3);
        for (const QString &token : qAsConst(tokens))
            QCOMPARE(m_steps->speak(token), 0);
    }

    void aRenewalSaysInLocalTimeWhenTheTokenExpires()
    {
        QVERIFY(begin({QStringLiteral("--token-lifetime"), QStringLiteral("1000")}));
        const QString refresh = SignInSteps::token(m_steps->signIn(phone()), "refresh_token");
        const QDateTime expires = QDateTime::fromString(
            m_steps->renew(refresh).data().value(QLatin1String("expire_time")).toString(),
            QStringLiteral("yyyy-MM-dd hh:mm:ss"));
        QVERIFY(qAbs(QDateTime::currentDateTime().secsTo(expires) - 1000) <= 60);
    }

    void anUnknownRefreshTokenIsRefused_data()
    {
        QTest::addColumn<QString>("token");
        for (const char *token : {"", "0", "1", "-1", "9007199254740993", "secret"})
            QTest::newRow(*token ? token : "empty") << QString::fromLatin1(token);
    }
    void anUnknownRefreshTokenIsRefused()
    {
        QFETCH(const QString, token);
        QVERIFY(begin());
        const auto reply = m_steps->renew(token);
        QCOMPARE(reply.code(), 401);
        QVERIFY(reply.isRefusal());
    }

    void anAccessTokenExpiresAndIsRenewed()
    {
        QVERIFY(begin({QStringLiteral("--token-lifetime"), QStringLiteral("3")}));
        const QJsonObject signedIn = m_steps->signIn(phone());
        keepExpiredTokens();
        QCOMPARE(m_steps->speak(SignInSteps::token(signedIn)), 0);
        TRY_COMPARE(m_steps->speak(SignInSteps::token(signedIn)), 401);
        const auto renewed = m_steps->renew(SignInSteps::token(signedIn, "refresh_token"));
        const double token = renewed.data().value(QLatin1String("token")).toDouble();
        QCOMPARE(m_steps->speak(QString::number(static_cast<qint64>(token))), 0);
    }

    void aRefreshTokenExpires()
    {
        QVERIFY(begin({QStringLiteral("--refresh-lifetime"), QStringLiteral("3")}));
        const QJsonObject signedIn = m_steps->signIn(phone());
        keepExpiredTokens();
        const QString refresh = SignInSteps::token(signedIn, "refresh_token");
        QCOMPARE(m_steps->renew(refresh).code(), 0);
        TRY_COMPARE(m_steps->renew(refresh).code(), 401);
        QCOMPARE(m_steps->speak(SignInSteps::token(signedIn)), 0);
    }

    void anAccountWithTooManyTokensLosesTheOneThatWouldExpireFirst()
    {
        QVERIFY(begin());
        const QJsonObject signedIn = m_steps->signIn(phone());
        const QString first = SignInSteps::token(signedIn);
        const QString refresh = SignInSteps::token(signedIn, "refresh_token");
        makeTokens(998);
        QVERIFY(m_steps->renew(refresh).isSuccess()); // the thousandth
        QCOMPARE(m_steps->speak(first), 0);
        const auto renewed = m_steps->renew(refresh);
        QCOMPARE(m_steps->speak(first), 401);
        const double last = renewed.data().value(QLatin1String("token")).toDouble();
        QCOMPARE(m_steps->speak(QString::number(static_cast<qint64>(last))), 0);
        SQLite::Database database(databaseFile().toStdString(), SQLite::OPEN_READONLY, patienceMs);
        QCOMPARE(database.execAndGet("SELECT COUNT(*) FROM token WHERE kind = 0").getInt(), 1000);
    }

    void aSignInOutlivesARestart()
    {
        QVERIFY(begin());
        const QJsonObject signedIn = m_steps->signIn(phone());
        QCOMPARE(m_service->stop(SIGTERM), 0);
        QVERIFY(begin());
        QCOMPARE(m_steps->speak(SignInSteps::token(signedIn)), 0);
        QCOMPARE(m_steps->renew(SignInSteps::token(signedIn, "refresh_token")).code(), 0);
    }

    void aSignInOutlivesACrash()
    {
        QVERIFY(begin());
        const QJsonObject signedIn = m_steps->signIn(phone());
        QCOMPARE(m_service->stop(SIGKILL), -1);
        QVERIFY(begin());
        QCOMPARE(m_steps->speak(SignInSteps::token(signedIn)), 0);
    }

    void aFolderOfTheFirstVersionKeepsItsAccountsAndTokens()
    {
        QVERIFY(QFileInfo(databaseFile()).dir().mkpath(QStringLiteral(".")));
        SQLite::Database(databaseFile().toStdString(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
            .exec(firstVersion);
        QVERIFY(begin());
        QCOMPARE(m_steps->speak(QStringLiteral("12345")), 0);
        const QJsonObject base = m_steps->signIn(phone()).value(QLatin1String("base")).toObject();
        QCOMPARE(base.value(QLatin1String("user_id")), QJsonValue(7));
        QCOMPARE(base.value(QLatin1String("nickname")), QJsonValue(QStringLiteral("User of old")));
    }

    void expiredTokensAreSwept()
    {
        QVERIFY(begin({QStringLiteral("--token-lifetime"), QStringLiteral("1"),
                       QStringLiteral("--refresh-lifetime"), QStringLiteral("1")}));
        QVERIFY(!m_steps->signIn(phone()).isEmpty());
        SQLite::Database database(databaseFile().toStdString(), SQLite::OPEN_READONLY, patienceMs);
        TRY_COMPARE(database.execAndGet("SELECT COUNT(*) FROM token").getInt(), 0);
    }

    void onlyTheUserCanReadTheDatabase()
    {
        QVERIFY(begin());
        m_steps->signIn(phone());
        const auto owner = QFile::ReadOwner | QFile::WriteOwner;
        const auto user = QFile::ReadUser | QFile::WriteUser; // the same, said of who asks
        QCOMPARE(QFileInfo(databaseFile()).permissions(), owner | user);
        QCOMPARE(m_service->stop(SIGTERM), 0);
        QVERIFY(QFile::setPermissions(databaseFile(), owner | QFile::ReadGroup | QFile::ReadOther));
        QVERIFY(begin());
        QCOMPARE(QFileInfo(databaseFile()).permissions(), owner | user);
    }

    void theDatabaseHoldsNoToken()
    {
        QVERIFY(begin());
        const QJsonObject signedIn = m_steps->signIn(phone());
        SQLite::Database database(databaseFile().toStdString(), SQLite::OPEN_READONLY, patienceMs);
        SQLite::Statement query(database, "SELECT digest FROM token");
        int rows = 0;
        for (; query.executeStep(); ++rows) {
            const QString digest = QString::fromStdString(query.getColumn(0).getString());
            for (const char *name : {"token", "refresh_token"})
                QVERIFY(!digest.contains(SignInSteps::token(signedIn, name)));
            QCOMPARE(digest.size(), 64);
        }
        QCOMPARE(rows, 2);
    }

    void aDatabaseThatCannotBeUsedIsToldInOneLine_data()
    {
        QTest::addColumn<bool>("isDatabase");
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("of a later version")
            << true << QByteArray("it was made by a later version of the service");
        QTest::newRow("no database") << false << QByteArray("file is not a database");
    }
    void aDatabaseThatCannotBeUsedIsToldInOneLine()
    {
        QFETCH(const bool, isDatabase);
        QFETCH(const QByteArray, reason);
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("accounts.sqlite"));
        if (isDatabase) {
            SQLite::Database(path.toStdString(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
                .exec("PRAGMA user_version = 1000");
        } else {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            QVERIFY(file.write(QByteArray(4096, 'x')) == 4096);
        }
        QProcess service;
        service.start(LocalService::program(), {QStringLiteral("--port"), QStringLiteral("0"),
                                                QStringLiteral("--data"), folder.path()});
        QVERIFY(service.waitForFinished(patienceMs));
        QCOMPARE(service.exitStatus(), QProcess::NormalExit);
        QCOMPARE(service.exitCode(), 1);
        QCOMPARE(service.readAllStandardError(),
                 "vo-localservice: cannot use \"" + path.toUtf8() + "\": " + reason + '\n');
    }

    void theDevelopmentTokenIsAcceptedAndToldOf()
    {
        QVERIFY(m_service->start());
        m_steps.reset(new SignInSteps(m_service.data()));
        QCOMPARE(m_service->log(), QByteArray("vo-localservice: sign-in is bypassed for whoever "
                                              "has the development token\n"));
        QCOMPARE(m_steps->speak(QString::number(LocalService::token())), 0);
        QCOMPARE(m_steps->speak(QString::number(LocalService::token() - 1)), 401);
        QCOMPARE(m_steps->speak(SignInSteps::token(m_steps->signIn(phone()))), 0);
    }

    void withoutADevelopmentTokenNothingIsBypassed()
    {
        QVERIFY(m_service->startWithoutDevelopmentToken());
        QCOMPARE(m_service->log(), QByteArray());
    }

    void thereIsNoOptionForAnAccessToken()
    {
        QProcess service;
        service.start(LocalService::program(), arguments("--port 0 --token 1 --data none"));
        QVERIFY(service.waitForFinished(patienceMs));
        QCOMPARE(service.exitCode(), 2);
    }

private:
    bool begin(const QStringList &options = {})
    {
        const bool started = m_service->startWithoutDevelopmentToken(options);
        m_steps.reset(new SignInSteps(m_service.data()));
        return started;
    }

    QString databaseFile() const { return m_service->dataFile(QStringLiteral("accounts.sqlite")); }

    // Gives the account that has one access token @p count more, which expire later than that one.
    void makeTokens(int count) const
    {
        SQLite::Database database(databaseFile().toStdString(), SQLite::OPEN_READWRITE, patienceMs);
        database.exec("UPDATE token SET expires = expires - 60 WHERE kind = 0");
        database.exec("WITH RECURSIVE number (n) AS "
                      "(SELECT 1 UNION ALL SELECT n + 1 FROM number WHERE n < "
                      + std::to_string(count)
                      + ") INSERT INTO token (digest, account, kind, expires) "
                        "SELECT 'made ' || n, account, kind, expires + 60 FROM token, number "
                        "WHERE kind = 0");
    }

    // Makes the service's sweeping without effect, so that it has to look at the time itself.
    void keepExpiredTokens() const
    {
        SQLite::Database database(databaseFile().toStdString(), SQLite::OPEN_READWRITE, patienceMs);
        database.exec("CREATE TRIGGER kept BEFORE DELETE ON token "
                      "BEGIN SELECT RAISE(IGNORE); END");
    }

    // The codes with which both operations that want a token answer a request that lacks the rest.
    QVector<int> speechCodes(const QByteArray &authorization)
    {
        const QJsonObject process{{QStringLiteral("feature"), QStringLiteral("none")}};
        const QJsonObject result{{QStringLiteral("feature"), QStringLiteral("longVoiceSynthesis")},
                                 {QStringLiteral("task_id"), QStringLiteral("x")}};
        ServiceClient &client = m_steps->client();
        return {client.post(QStringLiteral("asr/process"), process, authorization).code(),
                client.post(QStringLiteral("asr/getProcessResult"), result, authorization).code()};
    }

    QScopedPointer<LocalService> m_service;
    QScopedPointer<SignInSteps> m_steps;
};

QTEST_GUILESS_MAIN(TestServiceTokens)
#include "tst_servicetokens.moc"
