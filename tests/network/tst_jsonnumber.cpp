#include "network/jsonnumber.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <limits>

/// Numbers of the service's replies.
class TestJsonNumber : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsANumberWithoutItsFraction_data();
    void readsANumberWithoutItsFraction();
    void readsAMissingValueAsZero();
};

void TestJsonNumber::readsANumberWithoutItsFraction_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<qint64>("number");
    const auto row = [](const char *json, qint64 number) {
        QTest::newRow(json) << QByteArray(json) << number;
    };
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    constexpr qint64 least = std::numeric_limits<qint64>::min();
    row("0", 0);
    row("-0", 0);
    row("7", 7);
    row("-5", -5);
    row("12.7", 12);
    row("-3.9", -3);
    row("0.999", 0);
    row("-0.999", 0);
    row("1e3", 1000);
    row("4294967296", 4294967296);
    row("9007199254740992", 9007199254740992); // 2^53
    row("9007199254740993", 9007199254740992); // half way to the next double
    row("-9007199254740992", -9007199254740992);
    row("9223372036854774784", 9223372036854774784); // the last double below 2^63
    row("9223372036854775807", most);
    row("9223372036854775808", most); // 2^63
    row("9223372036854777856", most); // the first double above it
    row("-9223372036854775808", least);
    row("-9223372036854777856", least);
    row("1e300", most);
    row("-1e300", least);
    row("1e-300", 0);
    row("true", 0);
    row("null", 0);
    row(R"("abc")", 0);
    row(R"("12")", 0);
    row("{}", 0);
    row("[12]", 0);
}

void TestJsonNumber::readsANumberWithoutItsFraction()
{
    QFETCH(QByteArray, json);
    QFETCH(qint64, number);
    const QJsonDocument document = QJsonDocument::fromJson("{\"value\":" + json + '}');
    QVERIFY(document.isObject());
    QCOMPARE(JsonNumber::toInt64(document.object().value(QLatin1String("value"))), number);
}

void TestJsonNumber::readsAMissingValueAsZero()
{
    QCOMPARE(JsonNumber::toInt64(QJsonObject().value(QLatin1String("value"))), qint64(0));
}

QTEST_GUILESS_MAIN(TestJsonNumber)
#include "tst_jsonnumber.moc"
