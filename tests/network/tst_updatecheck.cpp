#include "tests/network/operationtest.h"
#include "tests/network/records.h"

#include <QTest>

namespace {

QByteArray versionReply(const char *version)
{
    return ScriptedServer::reply(
        Operations::envelope(R"({"versionInfo":{"version_code":")" + QByteArray(version) + "\"}}"));
}

} // namespace

/// GetUpdateInfo.
class TestUpdateCheck : public OperationTest
{
    Q_OBJECT

protected:
    QList<Operation> operations() const override { return {Operations::getUpdateInfo()}; }

private Q_SLOTS:
    void fillsTheRecordFromTheData_data();
    void fillsTheRecordFromTheData();
    void indentsEveryLineOfTheLog_data();
    void indentsEveryLineOfTheLog();
    void returnsANewRecordEachTime();
    void deletesTheRecordBeforeItAsksAgain();
    void forgetsTheRecordWhenItFails();
    void leavesItsRecordBehindWhenTheObjectGoes();
};

void TestUpdateCheck::fillsTheRecordFromTheData_data()
{
    addDataColumns();
    const auto row = [](const char *title, const char *data, const char *written) {
        QTest::newRow(title) << QByteArray(data) << QString::fromUtf8(written);
    };
    const char empty[] = R"((0, "1.1.1.26", "", "", ""))";
    row("upgradeStatus alone", R"({"upgradeStatus":1})", R"((1, "1.1.1.26", "", "", ""))");
    row("a negative upgradeStatus", R"({"upgradeStatus":-2147483648})",
        R"((-2147483648, "1.1.1.26", "", "", ""))");
    row("the largest upgradeStatus", R"({"upgradeStatus":2147483647})",
        R"((2147483647, "1.1.1.26", "", "", ""))");
    row("upgradeStatus out of range", R"({"upgradeStatus":2147483648})", empty);
    row("upgradeStatus with a fraction", R"({"upgradeStatus":1.5})", empty);
    row("upgradeStatus a text", R"({"upgradeStatus":"1"})", empty);
    row("upgradeStatus true", R"({"upgradeStatus":true})", empty);
    row("upgradeStatus a level too deep", R"({"versionInfo":{"upgradeStatus":1}})", empty);
    row("version_code alone", R"({"versionInfo":{"version_code":"1.2"}})",
        R"((0, "1.1.1.26", "1.2", "", ""))");
    row("url alone", R"({"versionInfo":{"url":"x"}})", R"((0, "1.1.1.26", "", "", "x"))");
    row("numeric texts", R"({"versionInfo":{"version_code":12,"url":5}})", empty);
    row("versionInfo an array", R"({"versionInfo":[{"version_code":"1.2","url":"x"}]})", empty);
    row("versionInfo null", R"({"versionInfo":null})", empty);
    row("outside of versionInfo", R"({"version_code":"1.2","url":"x","external_update_log":["A"]})",
        empty);
    row("a version of its own", R"({"currentVersion":"9.9","versionInfo":{"currentVersion":"9"}})",
        empty);
    row("an older version", R"({"upgradeStatus":3,"versionInfo":{"version_code":"0.1"}})",
        R"((3, "1.1.1.26", "0.1", "", ""))");
}

void TestUpdateCheck::fillsTheRecordFromTheData() { exchangeData(Operations::getUpdateInfo()); }

void TestUpdateCheck::indentsEveryLineOfTheLog_data()
{
    addDataColumns();
    const auto row = [](const char *title, const char *log, const char *lines) {
        QTest::newRow(title) << R"({"versionInfo":{"external_update_log":)" + QByteArray(log) + "}}"
                             << R"((0, "1.1.1.26", "", "%1", ""))"_s.arg(QString::fromUtf8(lines));
    };
    row("none", "[]", "");
    row("one", R"(["A"])", "  A\n");
    row("two", R"(["A","B"])", "  A\n  B\n");
    row("in the service's order", R"(["c","a","b"])", "  c\n  a\n  b\n");
    row("an empty one", R"(["","B"])", "  \n  B\n");
    row("with blanks and lines of their own", R"([" A ","b\nc"])", "   A \n  b\nc\n");
    row("with placeholders", R"(["%1 %2"])", "  %1 %2\n");
    row("another script", R"(["修复é"])", "  修复é\n");
    row("elements that are no texts", R"([7,null,"A",{},["B"]])", "  \n  \n  A\n  \n  \n");
    row("a text", R"("A")", "");
    row("an object", R"({"0":"A"})", "");
    row("null", "null", "");
}

void TestUpdateCheck::indentsEveryLineOfTheLog() { exchangeData(Operations::getUpdateInfo()); }

void TestUpdateCheck::returnsANewRecordEachTime()
{
    server->answer(versionReply("first"));
    server->answer(versionReply("second"));
    QCOMPARE(written(Operations::updateInfo(service)), R"((0, "1.1.1.26", "first", "", ""))"_s);
    QCOMPARE(written(Operations::updateInfo(service)), R"((0, "1.1.1.26", "second", "", ""))"_s);
}

void TestUpdateCheck::deletesTheRecordBeforeItAsksAgain()
{
    server->answer(versionReply("first"));
    // Its text is this one until it goes.
    const QString version = Operations::updateInfo(service)->version_code;
    QVERIFY(!version.isDetached());
    bool deleted = false;
    connect(server.get(), &ScriptedServer::requestReceived, this,
            [&] { deleted = version.isDetached(); });
    Operations::updateInfo(service);
    QVERIFY(deleted);
}

void TestUpdateCheck::forgetsTheRecordWhenItFails()
{
    server->answer(versionReply("first"));
    server->answer(ScriptedServer::reply(R"({"code":1001,"message":"no"})"));
    QVERIFY(Operations::updateInfo(service));
    QVERIFY(!Operations::updateInfo(service));
    QCOMPARE(logged(),
             (QStringList{"VoNetworker::GetUpdateInfo"_s, "VoNetworker::GetUpdateInfo"_s,
                          R"([error]slotGetDubListSuc failed:retCode= 1001 ,msg= "no")"_s}));
}

void TestUpdateCheck::leavesItsRecordBehindWhenTheObjectGoes()
{
    server->answer(versionReply("last"));
    UpdateInfo *record = service->GetUpdateInfo();
    release();
    QCOMPARE(written(record), R"((0, "1.1.1.26", "last", "", ""))"_s);
    delete record;
}

QTEST_GUILESS_MAIN(TestUpdateCheck)
#include "tst_updatecheck.moc"
