#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"
#include "tests/system/answers.h"
#include "tests/system/filesizelimit.h"
#include "tests/system/home.h"
#include "tests/system/program.h"
#include "tests/system/smalldisk.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QtEndian>
#include <QtTest>

#include <optional>

namespace {

const QString file = QStringLiteral("file");

QString localTime(int secondsFromNow)
{
    return QDateTime::currentDateTime()
        .addSecs(secondsFromNow)
        .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

QByteArray user()
{
    return Answers::envelope(
        {{QStringLiteral("base"), QJsonObject{{QStringLiteral("user_id"), 17}}},
         {QStringLiteral("token"),
          QJsonObject{{QStringLiteral("token"), 7007},
                      {QStringLiteral("refresh_token"), 5005},
                      {QStringLiteral("token_expire_time"), localTime(3600)},
                      {QStringLiteral("refresh_expire_time"), localTime(7200)}}}});
}

QByteArray renewedToken()
{
    return Answers::envelope(
        {{QStringLiteral("token"), 8008}, {QStringLiteral("expire_time"), localTime(3600)}});
}

/// Its token is about to expire.
QByteArray session()
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    return QJsonDocument(
               {{QStringLiteral("token"), QStringLiteral("7007")},
                {QStringLiteral("refreshToken"), QStringLiteral("5005")},
                {QStringLiteral("tokenExpires"), now.toString(Qt::ISODate)},
                {QStringLiteral("sessionExpires"), now.addSecs(7200).toString(Qt::ISODate)}})
        .toJson();
}

QByteArray scannableCode()
{
    return Answers::envelope(
        {{QStringLiteral("url"), QStringLiteral(SERVICE_BASE_ADDRESS "/code.png")},
         {QStringLiteral("expire_time"), QDateTime::currentSecsSinceEpoch() + 60},
         {QStringLiteral("business_code"), QStringLiteral("attempt-7")}});
}

QByteArray wave(int size)
{
    QByteArray bytes("RIFF\0\0\0\0WAVE", 12);
    bytes.resize(size);
    qToLittleEndian(quint32(size - 8), bytes.data() + 4);
    return bytes;
}

QByteArray speech(int size) { return Answers::one("audio", wave(size).toBase64().constData()); }

} // namespace

Q_DECLARE_METATYPE(QList<QByteArray>)

/// What vospeak leaves, and says, when the disk is full. The session and the output are on it.
class TestFullDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const quint16 port = SERVICE_PORT;
        QVERIFY(m_server.start(port));
        QVERIFY(QDir().mkpath(m_home.settings()));
    }

    void init() { m_server.reset(); }

    void cleanup()
    {
        m_limit.reset();
        QVERIFY(QDir::setCurrent(QDir::rootPath()));
        m_disk.reset();
        QVERIFY(QDir(m_home.settings()).removeRecursively() && QDir().mkpath(m_home.settings()));
    }

    void theOlderFilesStay_data()
    {
        QTest::addColumn<bool>("isDisk");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QList<QByteArray>>("answers");
        QTest::addColumn<bool>("isSignedIn"); // before
        QTest::addColumn<QString>("problem");
        QTest::addColumn<int>("room"); // bytes that can still be written
        const QString unwrittenSession = QStringLiteral("the session could not be written: %1");
        const QString unwritten = QStringLiteral("the audio could not be written: %1");
        const QString unfetched = QStringLiteral("the audio could not be fetched or written");
        const QString say = QStringLiteral("say hello --token 1 -o file");
        const QList<QByteArray> signIn{Answers::envelope(), user()};
        QTest::newRow("picture of a code, size of files limited")
            << false << QStringLiteral("login --qr")
            << QList<QByteArray>{scannableCode(), ScriptedServer::reply("some picture")} << true
            << QStringLiteral("no usable picture of the code came or could be written") << 0;
        for (const bool isDisk : {false, true}) {
            const auto row = [isDisk](const char *name, const QString &command,
                                      const QList<QByteArray> &answers, bool isSignedIn,
                                      const QString &problem, int room = 0) {
                QTest::addRow("%s, %s", name, isDisk ? "small disk" : "size of files limited")
                    << isDisk << command << answers << isSignedIn << problem << room;
            };
            row("first sign-in", QStringLiteral("login --sms 1"), signIn, false, unwrittenSession);
            row("next sign-in", QStringLiteral("login --sms 1"), signIn, true, unwrittenSession);
            for (const int size : {12, 9000, 20000, 200000})
                row(qPrintable(QStringLiteral("audio of %1 bytes").arg(size)), say, {speech(size)},
                    true, unwritten);
            for (const int size : {12, 9000, 200000})
                row(qPrintable(QStringLiteral("fetched audio of %1 bytes").arg(size)),
                    say + QStringLiteral(" --long"),
                    {Answers::task(), Answers::finishedSpeech(), ScriptedServer::reply(wave(size))},
                    true, unfetched);
            for (const int size : {9003, 20000})
                row(qPrintable(
                        QStringLiteral("fetched audio of %1 bytes, room for some").arg(size)),
                    say + QStringLiteral(" --long"),
                    {Answers::task(), Answers::finishedSpeech(),
                     ScriptedServer::reply(QByteArray("ID3").leftJustified(size, '3'))},
                    true, unfetched, 4096);
        }
    }
    void theOlderFilesStay()
    {
        QFETCH(const bool, isDisk);
        QFETCH(const QString, command);
        QFETCH(const QList<QByteArray>, answers);
        QFETCH(const bool, isSignedIn);
        QFETCH(const QString, problem);
        QFETCH(const int, room);
        if (isDisk && !mountDisk())
            QSKIP("this user may not mount anything", );
        for (const QByteArray &answer : answers)
            m_server.answer(answer);
        writeFiles(isSignedIn);
        fill(room);
        const QStringList before = entries();
        Program program(withAuthority(command));
        program.type("123456\n");
        const Outcome outcome = program.outcome();
        QCOMPARE(
            QString::fromUtf8(outcome.err.trimmed().split('\n').last()),
            QStringLiteral("vospeak: ")
                + (problem.contains(QLatin1Char('%')) ? problem.arg(systemsWords()) : problem));
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(outcome.status, 1);
        QCOMPARE(TestFolder::contents(file), QByteArray("older"));
        if (isSignedIn)
            QCOMPARE(TestFolder::contents(m_home.sessionFile()), m_session);
        QCOMPARE(entries(), before);
    }

    void aRenewedTokenThatCannotBeKeptIsUsedAndTheSessionStays_data()
    {
        QTest::addColumn<bool>("isDisk");
        QTest::newRow("small disk") << true;
        QTest::newRow("size of files limited") << false;
    }
    void aRenewedTokenThatCannotBeKeptIsUsedAndTheSessionStays()
    {
        QFETCH(const bool, isDisk);
        if (isDisk && !mountDisk())
            QSKIP("this user may not mount anything", );
        m_server.answer(renewedToken());
        m_server.answer(Answers::one("text", "heard"));
        writeFiles(true);
        fill();
        const QStringList before = entries();
        const Outcome outcome =
            vospeak(withAuthority(QStringLiteral("recognize https://a.example/b.wav")));
        QCOMPARE(QString::fromUtf8(outcome.err),
                 QStringLiteral("vospeak: the renewed session could not be kept: %1\n")
                     .arg(systemsWords()));
        QCOMPARE(outcome.out, QByteArray("heard\n"));
        QCOMPARE(outcome.status, 0);
        QCOMPARE(TestFolder::contents(m_home.sessionFile()), m_session);
        QCOMPARE(entries(), before);
    }

private:
    bool mountDisk()
    {
        m_disk.emplace(m_home.settings());
        return m_disk->isThere();
    }

    void writeFiles(bool isSignedIn)
    {
        QVERIFY(QDir::setCurrent(m_home.settings()));
        TestFolder::write(file, "older");
        m_session = session();
        if (isSignedIn)
            TestFolder::write(m_home.sessionFile(), m_session);
    }

    void fill(int room = 0)
    {
        if (m_disk)
            m_disk->fill(room);
        else
            m_limit.emplace(rlim_t(room));
    }

    QString systemsWords() const
    {
        return m_disk ? QStringLiteral("No space left on device")
                      : QStringLiteral("File too large");
    }

    static QStringList withAuthority(const QString &command)
    {
        return command.split(QLatin1Char(' '))
               + QStringList{QStringLiteral("--ca"), QStringLiteral(TEST_AUTHORITY)};
    }

    QStringList entries() const
    {
        return QDir(m_home.settings())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    ScriptedServer m_server{Identity::Localhost};
    const Home m_home;
    QByteArray m_session;
    std::optional<SmallDisk> m_disk;
    std::optional<FileSizeLimit> m_limit;
};

QTEST_GUILESS_MAIN(TestFullDisk)
#include "tst_fulldisk.moc"
