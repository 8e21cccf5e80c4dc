#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"
#include "tests/system/answers.h"
#include "tests/system/home.h"
#include "tests/system/program.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QtTest>

namespace {

const QLatin1String answers(SERVICE_BASE_ADDRESS " answers; it is compiled in");
const QLatin1String refused("cannot reach " SERVICE_BASE_ADDRESS
                            ": connection refused; is vo-localservice running?");
const QLatin1String untrusted("the authority of the server is not trusted, or it does not speak "
                              "TLS; use --ca");
const QLatin1String signedOut("sign in first: vospeak login --qr, or vospeak login --sms NUMBER");
const QLatin1String noPlayer("nothing here plays sound; install one of paplay (pulseaudio-utils), "
                             "aplay (alsa-utils), play (sox)");
const QLatin1String noRecorder("nothing here records sound; install one of arecord (alsa-utils), "
                               "parecord (pulseaudio-utils)");

QJsonObject session()
{
    const QString later = QDateTime::currentDateTimeUtc().addSecs(7200).toString(Qt::ISODate);
    return {{QStringLiteral("token"), QStringLiteral("7")},
            {QStringLiteral("refreshToken"), QStringLiteral("5")},
            {QStringLiteral("tokenExpires"), later},
            {QStringLiteral("sessionExpires"), later},
            {QStringLiteral("nickname"), QStringLiteral("Zoe")}};
}

} // namespace

/// What vospeak finds out about what it needs.
class TestDoctor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("PATH", QFile::encodeName(m_tools.path()));
        qputenv("VOSPEAK_CA", TEST_AUTHORITY);
    }

    void init()
    {
        m_server.reset();
        m_server.answer(Answers::envelope({{QStringLiteral("upgradeStatus"), 0}}));
        QVERIFY(listen());
        m_home.writeSession(session());
        for (const char *name : {"aplay", "arecord"})
            writeProgram(m_tools.path(QString::fromLatin1(name)));
    }

    void cleanup() { m_server.close(); }

    void everythingIsThere()
    {
        const Outcome outcome = vospeak(arguments("doctor --json"));
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(outcome.status, 0);
        const QJsonArray checks = checksIn(outcome);
        QCOMPARE(checks.at(0).toObject(), check("service", true, answers));
        QCOMPARE(checks.at(1).toObject(), check("trust", true, QLatin1String(TEST_AUTHORITY)));
        QCOMPARE(checks.at(2).toObject(), check("session", true, QLatin1String("Zoe")));
        const QJsonObject service = checks.at(3).toObject();
        QCOMPARE(service.value(QStringLiteral("check")).toString(),
                 QStringLiteral("local service"));
        QVERIFY(service.value(QStringLiteral("text"))
                    .toString()
                    .endsWith(QLatin1String("/vo-localservice")));
        QCOMPARE(checks.at(4).toObject(), check("player", true, QLatin1String("is there")));
        QCOMPARE(checks.at(5).toObject(), check("recorder", true, QLatin1String("is there")));
        QCOMPARE(checks.size(), 6);
    }

    void aServiceThatRefusesIsThere()
    {
        m_server.reset();
        m_server.answer(Answers::refusal(9, "no"));
        const Outcome outcome = vospeak(arguments("doctor --json"));
        QCOMPARE(outcome.status, 5);
        const QJsonArray checks = checksIn(outcome);
        QCOMPARE(checks.at(0).toObject(), check("service", true, answers));
        QCOMPARE(checks.at(1).toObject(), check("trust", true, QLatin1String(TEST_AUTHORITY)));
    }

    void aServiceThatIsNotThereHasNoTrustToCheck()
    {
        m_server.close();
        const Outcome outcome = vospeak(arguments("doctor --json"));
        QCOMPARE(outcome.status, 3);
        const QJsonArray checks = checksIn(outcome);
        QCOMPARE(checks.at(0).toObject(), check("service", false, refused));
        QCOMPARE(checks.at(1).toObject(), check("session", true, QLatin1String("Zoe")));
    }

    void aServiceThatIsNotTrustedIsThere()
    {
        qunsetenv("VOSPEAK_CA");
        const Outcome outcome = vospeak(arguments("doctor --json"));
        qputenv("VOSPEAK_CA", TEST_AUTHORITY);
        QCOMPARE(outcome.status, 4);
        const QJsonArray checks = checksIn(outcome);
        QCOMPARE(checks.at(0).toObject(), check("service", true, answers));
        QCOMPARE(checks.at(1).toObject(), check("trust", false, untrusted));
    }

    void whatIsMissingIsNamed()
    {
        QFile::remove(m_home.sessionFile());
        for (const char *name : {"aplay", "arecord"})
            QFile::remove(m_tools.path(QString::fromLatin1(name)));
        const Outcome outcome = vospeak(arguments("doctor --json"));
        QCOMPARE(outcome.status, 0); // the service can be used
        const QJsonArray checks = checksIn(outcome);
        QCOMPARE(checks.at(2).toObject(), check("session", false, signedOut));
        QCOMPARE(checks.at(4).toObject(), check("player", false, noPlayer));
        QCOMPARE(checks.at(5).toObject(), check("recorder", false, noRecorder));
    }

    void withoutTheLocalServiceNoneIsStarted()
    {
        const TestFolder elsewhere;
        const QString copy = elsewhere.path(QStringLiteral("vospeak"));
        QVERIFY(QFile::copy(Program::path(), copy));
        QProcess process;
        process.start(copy, arguments("doctor --json"));
        TRY_COMPARE(process.state(), QProcess::NotRunning);
        QCOMPARE(checksIn({0, process.readAllStandardOutput(), {}}).at(3).toObject(),
                 check("local service", false, QLatin1String("vo-localservice is not installed")));
        process.start(copy, arguments("start"));
        TRY_COMPARE(process.state(), QProcess::NotRunning);
        QCOMPARE(process.readAllStandardError(),
                 QByteArray("vospeak: vo-localservice is not installed\n"));
        QCOMPARE(process.exitCode(), 2);
    }

    void aTableIsForTheUser()
    {
        m_server.close();
        QFile::remove(m_home.sessionFile());
        const Outcome outcome = vospeak(arguments("doctor"));
        QCOMPARE(outcome.err, "vospeak: " + QByteArray(refused.data()) + '\n');
        const QByteArrayList lines = outcome.out.split('\n');
        QCOMPARE(lines.value(0), QByteArray("CHECK          OK   WHAT"));
        QCOMPARE(lines.value(1), "service        no   " + QByteArray(refused.data()));
        QCOMPARE(lines.value(2), "session        no   " + QByteArray(signedOut.data()));
    }

private:
    bool listen()
    {
        const quint16 port = SERVICE_PORT;
        return m_server.start(port);
    }

    static QJsonArray checksIn(const Outcome &outcome)
    {
        const QJsonObject document = QJsonDocument::fromJson(outcome.out).object();
        return document.value(QStringLiteral("checks")).toArray();
    }

    static QJsonObject check(const char *name, bool isFine, QLatin1String text)
    {
        return {{QStringLiteral("check"), QString::fromLatin1(name)},
                {QStringLiteral("ok"), isFine},
                {QStringLiteral("text"), QString(text)}};
    }

    static void writeProgram(const QString &path)
    {
        TestFolder::write(path, "#!/bin/sh\n");
        QVERIFY(
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    ScriptedServer m_server{Identity::Localhost};
    const TestFolder m_tools;
    const Home m_home;
};

QTEST_GUILESS_MAIN(TestDoctor)
#include "tst_doctor.moc"
