#include "tests/network/operationtest.h"
#include "tests/support/patience.h"

#include <QTest>

/// GetOssSign.
class TestUploadSignature : public OperationTest
{
    Q_OBJECT

protected:
    QList<Operation> operations() const override { return {Operations::getOssSign()}; }

private Q_SLOTS:
    void fillsTheRecordFromTheMembersOfItsFieldsNames_data();
    void fillsTheRecordFromTheMembersOfItsFieldsNames();
    void makesANewRecordForEachSuccess();
};

void TestUploadSignature::fillsTheRecordFromTheMembersOfItsFieldsNames_data()
{
    addDataColumns();
    QTest::addColumn<QStringList>("log");
    const auto row = [](const char *title) -> QTestData & { return QTest::newRow(title); };

    row("AccessKeyId alone") << QByteArray(R"({"AccessKeyId":"x"})")
                             << R"(signalGetOssSign("x", "", "", "", "", "", ""))"_s
                             << QStringList{R"("")"_s};
    row("AccessKeySecret alone") << QByteArray(R"({"AccessKeySecret":"x"})")
                                 << R"(signalGetOssSign("", "x", "", "", "", "", ""))"_s
                                 << QStringList{R"("")"_s};
    row("endpoint alone") << QByteArray(R"({"endpoint":"x"})")
                          << R"(signalGetOssSign("", "", "x", "", "", "", ""))"_s
                          << QStringList{R"("")"_s};
    row("bucketName alone") << QByteArray(R"({"bucketName":"x"})")
                            << R"(signalGetOssSign("", "", "", "x", "", "", ""))"_s
                            << QStringList{R"("x")"_s};
    row("dir alone") << QByteArray(R"({"dir":"x"})")
                     << R"(signalGetOssSign("", "", "", "", "x", "", ""))"_s
                     << QStringList{R"("")"_s};
    row("SecurityToken alone") << QByteArray(R"({"SecurityToken":"x"})")
                               << R"(signalGetOssSign("", "", "", "", "", "x", ""))"_s
                               << QStringList{R"("")"_s};
    row("bucketRegion alone") << QByteArray(R"({"bucketRegion":"x"})")
                              << R"(signalGetOssSign("", "", "", "", "", "", "x"))"_s
                              << QStringList{R"("")"_s};
    row("no member is a text") << QByteArray(
        R"({"AccessKeyId":7,"AccessKeySecret":null,"endpoint":true,)"
        R"("bucketName":1.5,"dir":{"dir":"x"},"SecurityToken":["x"],)"
        R"("bucketRegion":false})")
                               << R"(signalGetOssSign("", "", "", "", "", "", ""))"_s
                               << QStringList{R"("")"_s};
    row("names in other letters") << QByteArray(
        R"({"accessKeyId":"x","accesskeysecret":"x","Endpoint":"x",)"
        R"("bucketname":"x","Dir":"x","securityToken":"x","BucketRegion":"x"})")
                                  << R"(signalGetOssSign("", "", "", "", "", "", ""))"_s
                                  << QStringList{R"("")"_s};
    row("another script") << QByteArray(
        R"({"bucketName":"桶","dir":"目录/","endpoint":"a\/b\u00e9"})")
                          << R"(signalGetOssSign("", "", "a/bé", "桶", "目录/", "", ""))"_s
                          << QStringList{R"("桶")"_s};
}

void TestUploadSignature::fillsTheRecordFromTheMembersOfItsFieldsNames()
{
    QFETCH(QStringList, log);
    Operation operation = Operations::getOssSign();
    operation.dataLog = log;
    exchangeData(operation);
}

void TestUploadSignature::makesANewRecordForEachSuccess()
{
    answers.reset(); // the records are this test's
    QList<OSS_SIGN_INFO *> records;
    connect(service, &VoNetworkIntf::signalGetOssSign, this,
            [&records](OSS_SIGN_INFO *record) { records.append(record); });
    server->answer(ScriptedServer::reply(Operations::envelope(R"({"dir":"first"})")));
    server->answer(ScriptedServer::reply(Operations::envelope(R"({"dir":"second"})")));
    service->GetOssSign();
    TRY_VERIFY(records.size() == 1);
    service->GetOssSign();
    TRY_VERIFY(records.size() == 2);
    release();

    // Both are still there, each with its own values, though the service object is gone.
    QVERIFY(records.at(0) != records.at(1));
    QCOMPARE(records.at(0)->dir, "first"_s);
    QCOMPARE(records.at(1)->dir, "second"_s);
    qDeleteAll(records);
}

QTEST_GUILESS_MAIN(TestUploadSignature)
#include "tst_uploadsignature.moc"
