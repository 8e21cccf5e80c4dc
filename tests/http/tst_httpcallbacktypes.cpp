#include "http/httpcallbacktypes.h"
#include "http/httpresponse.h"
#include "tests/http/controlledreply.h"
#include "tests/http/httptesting.h"
#include "tests/support/logcapture.h"
#include "tests/support/patience.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>

namespace {

template <typename... Arguments>
QVariant emptyFunction()
{
    return QVariant::fromValue(std::function<void(Arguments...)>());
}

} // namespace

/// The names under which the callback types and the signals' argument types are known.
class TestHttpCallbackTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { registerHttpMetaTypes(); }

    void everyFunctionTypeHasItsExactName_data()
    {
        QTest::addColumn<QVariant>("function");
        const auto row = [](const char *name, const QVariant &function) {
            QTest::newRow(name) << function;
        };
        row("std::function<void (void)>", emptyFunction<>());
        row("std::function<void (QByteArray)>", emptyFunction<QByteArray>());
        row("std::function<void (QString)>", emptyFunction<QString>());
        row("std::function<void (QVariantMap)>", emptyFunction<QVariantMap>());
        row("std::function<void (QNetworkReply*)>", emptyFunction<QNetworkReply *>());
        row("std::function<void (qint64, qint64)>", emptyFunction<qint64, qint64>());
        row("std::function<void (QNetworkReply::NetworkError)>",
            emptyFunction<QNetworkReply::NetworkError>());
        row("std::function<void (QSslPreSharedKeyAuthenticator*)>",
            emptyFunction<QSslPreSharedKeyAuthenticator *>());
        row("std::function<void (QUrl)>", emptyFunction<QUrl>());
        row("std::function<void (QList<QSslError>)>", emptyFunction<QList<QSslError>>());
        row("std::function<void (QAuthenticator*)>", emptyFunction<QAuthenticator *>());
        row("std::function<void (QList<QNetworkReply::RawHeaderPair>)>",
            emptyFunction<QList<QNetworkReply::RawHeaderPair>>());
        row("std::function<void (QMap<QString, QString>)>",
            emptyFunction<QMap<QString, QString>>());
    }
    void everyFunctionTypeHasItsExactName()
    {
        QFETCH(QVariant, function);
        const QByteArray name = QTest::currentDataTag();
        QCOMPARE(QByteArray(function.typeName()), name);
        QCOMPARE(QMetaType::type(name.constData()), function.userType());
        QCOMPARE(QByteArray(QMetaType::typeName(function.userType())), name);
    }

    void aFunctionInAVariantCanBeCalledAfterItsOriginalIsGone()
    {
        QByteArray got;
        QVariant target;
        {
            const std::function<void(QByteArray)> function = [&got](const QByteArray &bytes) {
                got += bytes;
            };
            target = QVariant::fromValue(function);
        }
        const QVariant copy = target;
        target.clear();
        copy.value<std::function<void(QByteArray)>>()("called");
        QCOMPARE(got, "called"_b);
    }

    void theArgumentTypesOfTheSignalsAreKnown_data()
    {
        QTest::addColumn<int>("id");
        QTest::newRow("QNetworkReply*") << qMetaTypeId<QNetworkReply *>();
        QTest::newRow("QNetworkReply::NetworkError") << qMetaTypeId<QNetworkReply::NetworkError>();
        QTest::newRow("QSslPreSharedKeyAuthenticator*")
            << qMetaTypeId<QSslPreSharedKeyAuthenticator *>();
        QTest::newRow("QList<QSslError>") << qMetaTypeId<QList<QSslError>>();
        QTest::newRow("QList<QNetworkReply::RawHeaderPair>")
            << qMetaTypeId<QList<QNetworkReply::RawHeaderPair>>();
        QTest::newRow("QMap<QString,QString>") << qMetaTypeId<QMap<QString, QString>>();
    }
    void theArgumentTypesOfTheSignalsAreKnown()
    {
        QFETCH(int, id);
        QCOMPARE(QMetaType::type(QTest::currentDataTag()), id);
    }

    void registeringAgainChangesNothing()
    {
        const int id = QMetaType::type("std::function<void (qint64, qint64)>");
        registerHttpMetaTypes();
        QCOMPARE(QMetaType::type("std::function<void (qint64, qint64)>"), id);
    }

    void everySignalCanBeSpiedOnAndQueued_data()
    {
        QTest::addColumn<int>("index");
        const QMetaObject &meta = HttpResponse::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QMetaMethod method = meta.method(i);
            // An authenticator is filled in before the signal returns and so never travels.
            if (method.methodType() == QMetaMethod::Signal
                && method.name() != "authenticationRequired")
                QTest::newRow(method.methodSignature().constData()) << i;
        }
    }
    void everySignalCanBeSpiedOnAndQueued()
    {
        QFETCH(int, index);
        const QMetaMethod signal = HttpResponse::staticMetaObject.method(index);
        HttpResponse response(HttpRequest(HttpMethod::Get, nullptr), nullptr);

        LogCapture log;
        QSignalSpy direct(&response, signal);
        // A signal received by a signal of its own shape, once the event loop runs.
        HttpResponse receiver(HttpRequest(HttpMethod::Get, nullptr), nullptr);
        QSignalSpy queued(&receiver, signal);
        QVERIFY(QObject::connect(&response, signal, &receiver, signal, Qt::QueuedConnection));

        QVector<QVariant> values;
        QVector<void *> arguments{nullptr};
        values.reserve(signal.parameterCount());
        for (int i = 0; i < signal.parameterCount(); ++i) {
            values.append(QVariant(signal.parameterType(i), nullptr));
            arguments.append(const_cast<void *>(values.last().constData()));
        }
        QMetaObject::metacall(&response, QMetaObject::InvokeMetaMethod, index, arguments.data());
        QCOMPARE(direct.size(), 1);
        QCOMPARE(queued.size(), 0);
        QVERIFY(queued.wait(patienceMs));
        QCOMPARE(queued.size(), 1);
        QCOMPARE(queued.first().size(), signal.parameterCount());
        for (int i = 0; i < signal.parameterCount(); ++i)
            QCOMPARE(queued.first().at(i).userType(), signal.parameterType(i));
        QCOMPARE(log.lines().size(), 0);
    }

    void aQueuedSignalCarriesItsValues()
    {
        HttpResponse response(HttpRequest(HttpMethod::Get, nullptr), nullptr);
        HttpResponse receiver(HttpRequest(HttpMethod::Get, nullptr), nullptr);
        using R = HttpResponse;
        const auto pairs = QOverload<QList<QNetworkReply::RawHeaderPair>>::of(&R::head);
        const auto map = QOverload<QMap<QString, QString>>::of(&R::head);
        const auto code = QOverload<QNetworkReply::NetworkError>::of(&R::error);
        for (const auto &connection :
             {connect(&response, pairs, &receiver, pairs, Qt::QueuedConnection),
              connect(&response, map, &receiver, map, Qt::QueuedConnection),
              connect(&response, code, &receiver, code, Qt::QueuedConnection),
              connect(&response, &R::sslErrors, &receiver, &R::sslErrors, Qt::QueuedConnection)})
            QVERIFY(connection);
        QSignalSpy pairsSpy(&receiver, pairs);
        QSignalSpy mapSpy(&receiver, map);
        QSignalSpy codeSpy(&receiver, code);
        QSignalSpy errorsSpy(&receiver, &R::sslErrors);
        const QList<QNetworkReply::RawHeaderPair> sentPairs{{"a", "1"}, {"b", "2"}};
        const QMap<QString, QString> sentMap{{"a"_s, "1"_s}};
        const QList<QSslError> sentErrors{QSslError(QSslError::CertificateExpired)};
        Q_EMIT response.head(sentPairs);
        Q_EMIT response.head(sentMap);
        Q_EMIT response.error(QNetworkReply::HostNotFoundError);
        Q_EMIT response.sslErrors(sentErrors);
        QVERIFY(errorsSpy.wait(patienceMs));
        QCOMPARE(pairsSpy.first().first().value<QList<QNetworkReply::RawHeaderPair>>(), sentPairs);
        QCOMPARE((mapSpy.first().first().value<QMap<QString, QString>>()), sentMap);
        QCOMPARE(codeSpy.first().first().value<QNetworkReply::NetworkError>(),
                 QNetworkReply::HostNotFoundError);
        QCOMPARE(errorsSpy.first().first().value<QList<QSslError>>(), sentErrors);
    }
};

QTEST_GUILESS_MAIN(TestHttpCallbackTypes)
#include "tst_httpcallbacktypes.moc"
