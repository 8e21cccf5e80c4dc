#include "http/httptypes.h"
#include "tests/support/patience.h"

#include <QTest>
#include <QThread>

#include <memory>
#include <type_traits>
#include <vector>

/// The verb table, the names of the body types and the values behind the enumerations.
class TestHttpTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyMethodHasItsValueAndItsVerb_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<int>("value");
        QTest::addColumn<QByteArray>("verb");
        QTest::newRow("Unknown") << int(HttpMethod::Unknown) << 0 << QByteArray();
        QTest::newRow("Head") << int(HttpMethod::Head) << 1 << QByteArray("HEAD");
        QTest::newRow("Get") << int(HttpMethod::Get) << 2 << QByteArray("GET");
        QTest::newRow("Put") << int(HttpMethod::Put) << 3 << QByteArray("PUT");
        QTest::newRow("Post") << int(HttpMethod::Post) << 4 << QByteArray("POST");
        QTest::newRow("Delete") << int(HttpMethod::Delete) << 5 << QByteArray("DELETE");
    }
    void everyMethodHasItsValueAndItsVerb()
    {
        QFETCH(int, method);
        QFETCH(int, value);
        QFETCH(QByteArray, verb);
        QCOMPARE(method, value);
        QCOMPARE(httpVerb(HttpMethod(value)), verb);
    }

    void anyOtherMethodHasNoVerb_data()
    {
        QTest::addColumn<int>("value");
        for (const int value : {-1, 6, 7, 4711, 0x100, 0x10002, INT_MIN, INT_MAX})
            QTest::addRow("%d", value) << value;
    }
    void anyOtherMethodHasNoVerb()
    {
        QFETCH(int, value);
        QCOMPARE(httpVerb(HttpMethod(value)), QByteArray());
    }

    void theVerbTableMayBeBuiltByManyThreadsAtOnce()
    {
        // The right answer everywhere; a sanitised or instrumented run also sees a race.
        std::vector<QByteArray> verbs(8);
        std::vector<std::unique_ptr<QThread>> threads;
        threads.reserve(verbs.size());
        for (QByteArray &verb : verbs) {
            threads.emplace_back(QThread::create([&verb] { verb = httpVerb(HttpMethod::Delete); }));
        }
        for (const auto &thread : threads)
            thread->start();
        for (const auto &thread : threads)
            QVERIFY(thread->wait(patienceMs));
        QCOMPARE(verbs, std::vector<QByteArray>(8, "DELETE"));
    }

    void everyBodyTypeHasItsValueAndItsName_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("name");
        int value = 0;
        const auto row = [&value](BodyType type, const char *name) {
            QTest::newRow(name) << int(type) << value++ << QString::fromLatin1(name);
        };
        row(BodyType::None, "None");
        row(BodyType::Raw, "Raw");
        row(BodyType::RawJson, "RawJson");
        row(BodyType::x_www_form_urlencoded, "x_www_form_urlencoded");
        row(BodyType::FileMap, "FileMap");
        row(BodyType::MultiPart, "MultiPart");
        row(BodyType::FormData, "FormData");
    }
    void everyBodyTypeHasItsValueAndItsName()
    {
        QFETCH(int, type);
        QFETCH(int, value);
        QFETCH(QString, name);
        QCOMPARE(type, value);
        QCOMPARE(QString::fromLatin1(bodyTypeName(BodyType(value))), name);
    }

    void anyOtherBodyTypeHasAnEmptyName()
    {
        QCOMPARE(QString::fromLatin1(bodyTypeName(BodyType(-1))), QStringLiteral(""));
        QCOMPARE(QString::fromLatin1(bodyTypeName(BodyType(7))), QStringLiteral(""));
    }

    void everyCallbackKindHasItsValue_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("value");
        int value = 0;
        const auto row = [&value](CallbackKind kind, const char *name) {
            QTest::newRow(name) << int(kind) << value++;
        };
        row(CallbackKind::Finished, "Finished");
        row(CallbackKind::Error, "Error");
        row(CallbackKind::DownloadProgress, "DownloadProgress");
        row(CallbackKind::UploadProgress, "UploadProgress");
        row(CallbackKind::Timeout, "Timeout");
        row(CallbackKind::ReadyRead, "ReadyRead");
        row(CallbackKind::DownloadFileFinished, "DownloadFileFinished");
        row(CallbackKind::DownloadFileError, "DownloadFileError");
        row(CallbackKind::Encrypted, "Encrypted");
        row(CallbackKind::MetaDataChanged, "MetaDataChanged");
        row(CallbackKind::PreSharedKeyAuthenticationRequired, "PreSharedKeyAuthenticationRequired");
        row(CallbackKind::RedirectAllowed, "RedirectAllowed");
        row(CallbackKind::Redirected, "Redirected");
        row(CallbackKind::SslErrors, "SslErrors");
        row(CallbackKind::Retried, "Retried");
        row(CallbackKind::Repeated, "Repeated");
        row(CallbackKind::AuthenticationRequired, "AuthenticationRequired");
        row(CallbackKind::AuthenticationRequireFailed, "AuthenticationRequireFailed");
        row(CallbackKind::Head, "Head");
        row(CallbackKind::DownloadFileProgress, "DownloadFileProgress");
        row(CallbackKind::DownloadFileNameChanged, "DownloadFileNameChanged");
    }
    void everyCallbackKindHasItsValue()
    {
        QFETCH(int, kind);
        QFETCH(int, value);
        QCOMPARE(kind, value);
    }

    void theEnumerationsAreSigned32BitIntegers()
    {
        const bool all =
            std::is_same_v<
                std::underlying_type_t<HttpMethod>,
                qint32> && std::is_same_v<std::underlying_type_t<BodyType>, qint32> && std::is_same_v<std::underlying_type_t<CallbackKind>, qint32>;
        QVERIFY(all);
    }
};

QTEST_GUILESS_MAIN(TestHttpTypes)
#include "tst_httptypes.moc"
