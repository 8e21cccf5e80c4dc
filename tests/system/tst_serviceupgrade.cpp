#include "tests/system/localservice.h"
#include "tests/system/signinsteps.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

#include <csignal>

namespace {

QByteArray edited()
{
    return R"({"upgradeStatus":2,"versionInfo":{"external_update_log":["one","二"],)"
           R"("url":"https://a.example/new","version_code":"2.0"}})";
}

} // namespace

/// What the service says of newer versions, which is in a file that its owner edits.
class TestServiceUpgrade : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_service.reset(new LocalService); }

    void atFirstThereIsNothingToUpgradeTo()
    {
        QVERIFY(begin());
        const QJsonObject data = asked().data();
        QCOMPARE(data.keys(),
                 QStringList({QStringLiteral("upgradeStatus"), QStringLiteral("versionInfo")}));
        QCOMPARE(data.value(QLatin1String("upgradeStatus")), QJsonValue(0));
        const QJsonObject version = data.value(QLatin1String("versionInfo")).toObject();
        QCOMPARE(version.value(QLatin1String("version_code")),
                 QJsonValue(QStringLiteral("1.1.1.26")));
        QVERIFY(version.value(QLatin1String("url")).toString().startsWith(QLatin1String("https")));
        const QJsonArray log = version.value(QLatin1String("external_update_log")).toArray();
        QVERIFY(!log.isEmpty());
        for (const QJsonValue &line : log)
            QVERIFY(!line.toString().isEmpty());
    }

    void anEditActsAtOnce()
    {
        QVERIFY(begin());
        QVERIFY(asked().isSuccess());
        QVERIFY(write(edited()));
        QCOMPARE(asked().data(), QJsonDocument::fromJson(edited()).object());
    }

    void anEditIsNeverOverwritten()
    {
        QVERIFY(begin());
        for (const QByteArray &contents : {edited(), QByteArray("broken")}) {
            QVERIFY(write(contents));
            QCOMPARE(m_service->stop(SIGTERM), 0);
            QVERIFY(begin());
            QFile file(path());
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(file.readAll(), contents);
        }
    }

    void aFileThatCannotBeUsedIsToldOf_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no JSON") << edited().chopped(1);
        QTest::newRow("an array") << QByteArray("[]");
        QTest::newRow("no UTF-8") << QByteArray(edited()).replace("one", "\xff");
        changedRow("no status", "\"upgradeStatus\"", "\"status\"");
        changedRow("status 3", ":2,", ":3,");
        changedRow("status -1", ":2,", ":-1,");
        changedRow("status 1.5", ":2,", ":1.5,");
        changedRow("status is a text", ":2,", ":\"2\",");
        changedRow("no version", "\"versionInfo\"", "\"version\"");
        changedRow("no version code", "\"version_code\"", "\"code\"");
        changedRow("version code is a number", "\"2.0\"", "2.0");
        changedRow("log is a text", "[\"one\",\"二\"]", "\"one\"");
        changedRow("log has a number", "\"one\"", "1");
        changedRow("address is null", "\"https://a.example/new\"", "null");
    }
    void aFileThatCannotBeUsedIsToldOf()
    {
        QFETCH(const QByteArray, contents);
        QVERIFY(begin());
        QVERIFY(write(contents));
        expectFailure();
        QVERIFY(write(edited()));
        QVERIFY(asked().isSuccess());
    }

    void aFileThatIsGoneIsToldOf()
    {
        QVERIFY(begin());
        QVERIFY(QFile::remove(path()));
        expectFailure();
    }

private:
    static void changedRow(const char *name, const char *before, const char *after)
    {
        QTest::newRow(name) << QByteArray(edited()).replace(before, after);
    }

    bool begin()
    {
        const bool started = m_service->startWithoutDevelopmentToken();
        m_steps.reset(new SignInSteps(m_service.data()));
        return started;
    }

    QString path() const { return m_service->dataFile(QStringLiteral("upgrade.json")); }

    bool write(const QByteArray &contents)
    {
        QFile file(path());
        return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
    }

    ServiceClient::Reply asked()
    {
        return m_steps->client().get(
            SignInSteps::address(QStringLiteral("/app/public/index.php/v1/app/upgrade")));
    }

    void expectFailure()
    {
        const auto reply = asked();
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.code(), 500);
        QVERIFY(reply.isRefusal());
        const QByteArray line = m_service->log().split('\n').value(0);
        QVERIFY2(line.startsWith("vo-localservice: \"" + path().toUtf8() + "\" cannot be used: "),
                 line.constData());
    }

    QScopedPointer<LocalService> m_service;
    QScopedPointer<SignInSteps> m_steps;
};

QTEST_GUILESS_MAIN(TestServiceUpgrade)
#include "tst_serviceupgrade.moc"
