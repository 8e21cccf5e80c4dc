#include "tests/support/patience.h"
#include "tests/system/localservice.h"
#include "tests/system/serviceclient.h"
#include "tests/system/signinsteps.h"

#include <QtTest>

#include <atomic>
#include <csignal>
#include <functional>
#include <thread>
#include <vector>

namespace {

constexpr int clients = 6;
constexpr int busy = 429;

QString convert(const QString &operation)
{
    return SignInSteps::address(QStringLiteral("/convert/public/index.php/v1/") + operation);
}

QString text(const QJsonObject &data, const char *key)
{
    return data.value(QLatin1String(key)).toString();
}

QJsonObject request(const char *feature, const char *key, const QString &value)
{
    return {{QStringLiteral("feature"), QLatin1String(feature)}, {QLatin1String(key), value}};
}

/// A client on a thread of its own. Each step names what went wrong; empty: nothing did.
class Client
{
public:
    Client(LocalService *service, int number)
        : m_steps(service)
        , m_number(number)
    {
    }

    QStringList round(const QString &refreshToken)
    {
        QStringList problems{speakAndRecognize(), waitForTask(), browse(), signInHalfway()};
        if (!m_steps.renew(refreshToken).isSuccess())
            problems.append(QStringLiteral("renewing"));
        problems.removeAll(QString());
        return problems;
    }

private:
    ServiceClient::Reply process(const QJsonObject &body)
    {
        return m_steps.client().post(QStringLiteral("asr/process"), body,
                                     ServiceClient::authorization());
    }

    QString speakAndRecognize()
    {
        const auto spoken =
            process(request("voiceSynthesis", "text", QStringLiteral("Go forward.")));
        const QByteArray recording =
            QByteArray::fromBase64(text(spoken.data(), "audio").toLatin1());
        ServiceClient &client = m_steps.client();
        const QJsonObject own = client.credentials();
        const QString token = text(own, "SecurityToken");
        const QString address =
            QStringLiteral("%1/speech/%2/a.wav").arg(text(own, "endpoint"), text(own, "dir"));
        if (!client.put(address, recording, token).isSuccess()
            || client.get(address, token).body != recording || recording.isEmpty())
            return QStringLiteral("storing");
        const int code = process(request("inWord", "file_link", address)).code();
        return code == 0 || code == busy ? QString() : QStringLiteral("recognising");
    }

    QString waitForTask()
    {
        const auto created =
            process(request("longVoiceSynthesis", "text", QStringLiteral("One. Two. Three.")));
        const QJsonObject question =
            request("longVoiceSynthesis", "task_id", text(created.data(), "task_id"));
        QString status = QStringLiteral("QUEUEING");
        while (status == QLatin1String("QUEUEING") || status == QLatin1String("RUNNING"))
            status = text(m_steps.client()
                              .post(QStringLiteral("asr/getProcessResult"), question,
                                    ServiceClient::authorization())
                              .data(),
                          "status");
        return status == QLatin1String("SUCCESS") ? QString() : QStringLiteral("a task");
    }

    QString browse()
    {
        ServiceClient &client = m_steps.client();
        const QString sample = SignInSteps::address(QStringLiteral("/speechdesk/audition/rms.wav"));
        const QString upgrade =
            SignInSteps::address(QStringLiteral("/app/public/index.php/v1/app/upgrade"));
        return client.get(convert(QStringLiteral("asr/getVoice"))).isSuccess()
                       && client.get(convert(QStringLiteral("asr/getBackgroundMusic"))).isSuccess()
                       && client.get(upgrade).isSuccess() && client.get(sample).status == 200
                   ? QString()
                   : QStringLiteral("browsing");
    }

    QString signInHalfway()
    {
        const QString phone = QStringLiteral("1000%1").arg(m_number);
        const QJsonObject code = m_steps.beginQr().data();
        return m_steps.askForCode(phone).isSuccess()
                       && m_steps.enterCode(phone, QStringLiteral("no code")).code() == 403
                       && m_steps.client().get(text(code, "url")).status == 200
                       && m_steps.pollQr(text(code, "business_code")).isSuccess()
                   ? QString()
                   : QStringLiteral("signing in");
    }

    SignInSteps m_steps;
    int m_number;
};

std::vector<std::thread> onThreads(const std::function<void(int)> &work)
{
    std::vector<std::thread> threads;
    threads.reserve(clients);
    for (int i = 0; i < clients; ++i)
        threads.emplace_back(work, i);
    return threads;
}

} // namespace

/// The service with several clients at once. It is under ThreadSanitizer that this tells most.
class TestServiceThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOperationServesSeveralClientsAtOnce()
    {
        LocalService service;
        QVERIFY(service.start());
        const QString refreshToken = SignInSteps::token(
            SignInSteps(&service).signIn(QStringLiteral("12345")), "refresh_token");
        std::vector<QStringList> problems(clients);
        for (std::thread &thread : onThreads([&](int number) {
                 problems[std::size_t(number)] = Client(&service, number).round(refreshToken);
             }))
            thread.join();
        QCOMPARE(problems, std::vector<QStringList>(clients));
        QCOMPARE(service.stop(SIGTERM), 0);
    }

    void itStopsInTheMiddleOfItsWork()
    {
        LocalService service;
        QVERIFY(service.start());
        std::atomic<int> begun(0);
        std::atomic<bool> stopped(false);
        std::vector<std::thread> threads = onThreads([&](int number) {
            Client client(&service, number);
            for (++begun; !stopped;)
                client.round(QString());
        });
        TRY_COMPARE(begun.load(), clients);
        const int status = service.stop(SIGTERM);
        stopped = true;
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(status, 0);
    }
};

QTEST_GUILESS_MAIN(TestServiceThreads)

#include "tst_servicethreads.moc"
