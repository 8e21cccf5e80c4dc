#include "tests/support/patience.h"
#include "tests/system/localservice.h"
#include "tests/system/serviceclient.h"

#include <QtTest>

namespace {

QString feature() { return QStringLiteral("longVoiceSynthesis"); }

QString createTask(ServiceClient &client, const QString &text)
{
    QJsonObject body = ServiceClient::speech("longVoiceSynthesis", text);
    body.insert(QStringLiteral("enable_subtitle"), QStringLiteral("false"));
    return client.post(QStringLiteral("asr/process"), body, ServiceClient::authorization())
        .data()
        .value(QLatin1String("task_id"))
        .toString();
}

ServiceClient::Reply ask(ServiceClient &client, const QString &task,
                         const QString &about = feature())
{
    return client.post(
        QStringLiteral("asr/getProcessResult"),
        QJsonObject{{QStringLiteral("feature"), about}, {QStringLiteral("task_id"), task}},
        ServiceClient::authorization());
}

QString statusOf(ServiceClient &client, const QString &task)
{
    return ask(client, task).data().value(QLatin1String("status")).toString();
}

QString longText()
{
    return QStringLiteral("Go forward ten meters. Then turn around and come back. ").repeated(20);
}

bool isOver(const QString &status)
{
    return status != QLatin1String("QUEUEING") && status != QLatin1String("RUNNING");
}

} // namespace

/// How tasks come along on the service.
class TestTasks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTaskIsQueuedThenRunsThenSucceeds()
    {
        LocalService service;
        QVERIFY(service.start({QStringLiteral("--workers"), QStringLiteral("1")}));
        ServiceClient client(service.authority());
        createTask(client, longText());
        createTask(client, longText());
        const QString last = createTask(client, longText());
        QVERIFY(!last.isEmpty());

        QStringList seen;
        QElapsedTimer elapsed;
        elapsed.start();
        while ((seen.isEmpty() || !isOver(seen.last())) && elapsed.elapsed() < patienceMs) {
            const QString status = statusOf(client, last);
            if (seen.isEmpty() || seen.last() != status)
                seen.append(status);
        }
        QCOMPARE(seen, QStringList({QStringLiteral("QUEUEING"), QStringLiteral("RUNNING"),
                                    QStringLiteral("SUCCESS")}));
    }

    void oneWorkerDoesOneTaskAtATime()
    {
        LocalService service;
        QVERIFY(service.start({QStringLiteral("--workers"), QStringLiteral("1")}));
        ServiceClient client(service.authority());
        const QString first = createTask(client, longText());
        const QString second = createTask(client, longText());
        // The second is asked first: if it runs, the first must have ended before.
        TRY_VERIFY(statusOf(client, second) != QLatin1String("QUEUEING"));
        QCOMPARE(statusOf(client, first), QStringLiteral("SUCCESS"));
        TRY_COMPARE(statusOf(client, second), QStringLiteral("SUCCESS"));
    }

    void aFinishedTaskNamesItselfAndItsAudio()
    {
        LocalService service;
        QVERIFY(service.start());
        ServiceClient client(service.authority());
        const QString task = createTask(client, QStringLiteral("Hello."));
        TRY_COMPARE(statusOf(client, task), QStringLiteral("SUCCESS"));
        const QJsonObject data = ask(client, task).data();
        QCOMPARE(data.value(QLatin1String("task_id")).toString(), task);
        QVERIFY(!data.value(QLatin1String("request_id")).toString().isEmpty());
        const auto audio = client.get(data.value(QLatin1String("audio_address")).toString());
        QCOMPARE(audio.status, 200);
        QVERIFY(audio.body.startsWith("RIFF"));
    }

    void aTaskIsKnownUnderItsOwnFeatureOnly()
    {
        LocalService service;
        QVERIFY(service.start());
        ServiceClient client(service.authority());
        const QString task = createTask(client, QStringLiteral("Hello."));
        QVERIFY(ask(client, task).isSuccess());
        const auto reply = ask(client, task, QStringLiteral("recordingRecognition"));
        QVERIFY2(reply.isRefusal(), reply.body.constData());
    }

    void aResultExpiresWithItsAudio()
    {
        LocalService service;
        QVERIFY(service.start({QStringLiteral("--result-lifetime"), QStringLiteral("2")}));
        ServiceClient client(service.authority());
        const QString task = createTask(client, QStringLiteral("Hello."));
        TRY_COMPARE(statusOf(client, task), QStringLiteral("SUCCESS"));
        const QString address =
            ask(client, task).data().value(QLatin1String("audio_address")).toString();
        QCOMPARE(client.get(address).status, 200);
        TRY_VERIFY(ask(client, task).isRefusal());
        TRY_VERIFY(client.get(address).status >= 400);
    }
};

QTEST_GUILESS_MAIN(TestTasks)
#include "tst_tasks.moc"
