#include "hostkit/failurereasons.h"
#include "hostkit/hostkit.h"
#include "network/vonetwork.h"
#include "network/vonetworkintf.h"
#include "tests/support/logcapture.h"
#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/trust.h"
#include "tests/system/answers.h"

#include <QLoggingCategory>
#include <QtTest>

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace {

using Kind = Reason::Kind;

void handler(QtMsgType, const QMessageLogContext &, const QString &) {}

QtMessageHandler installed()
{
    const QtMessageHandler current = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(current);
    return current;
}

struct Release
{
    void operator()(VoNetworkIntf *service) const { VoNetwork::ReleaseVoNetwork(service); }
};

} // namespace

/// What the library itself says of a failure is understood.
class TestReasons : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theLibrarysOwnWordsAreUnderstood_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const QByteArray &answer, Kind kind, int code,
                            const char *text) {
            QTest::newRow(name) << answer << int(kind) << code << QString::fromUtf8(text);
        };
        row("refusal", Answers::refusal(413, "\"text\" has more than 1000 characters"),
            Kind::Refused, 413, "the service refused: \"text\" has more than 1000 characters");
        row("a message of its own kind", Answers::refusal(5, "a\\b \"c\" ,msg= \"d\""),
            Kind::Refused, 5, "the service refused: a\\b \"c\" ,msg= \"d\"");
        row("negative code", Answers::refusal(-5, "no"), Kind::Refused, -5,
            "the service refused: no");
        row("no message", Answers::refusal(7, ""), Kind::Refused, 7, "the service refused");
        row("lines", Answers::refusal(5, "one\ntwo"), Kind::Refused, 5,
            "the service refused: one two");
        row("no JSON", ScriptedServer::reply("<html>"), Kind::BadAnswer, 0,
            "the service sent no usable answer");
        row("status", ScriptedServer::reply("", "503 Busy"), Kind::Refused, 0,
            "the server answered: Busy");
        row("closed", {}, Kind::Network, 0,
            "no answer from " SERVICE_BASE_ADDRESS ": the connection was closed");
    }
    void theLibrarysOwnWordsAreUnderstood()
    {
        QFETCH(const QByteArray, answer);
        QFETCH(const int, kind);
        QFETCH(const int, code);
        QFETCH(const QString, text);
        ScriptedServer server(Identity::Localhost);
        QVERIFY(server.start(SERVICE_PORT));
        server.answer(answer);
        const FailureReasons reasons;
        for (const auto &ask : operations()) {
            const Reason reason = reasonOf(ask);
            QCOMPARE(int(reason.kind), kind);
            if (reason.code != 0) // one operation logs the message alone
                QCOMPARE(reason.code, code);
            if (!text.endsWith(QLatin1String("refused")))
                QCOMPARE(reason.text, text);
            QVERIFY(FailureReasons::take().isNone());
        }
    }

    void theHandlerOfTheHostIsPutBack()
    {
        const QtMessageHandler before = qInstallMessageHandler(handler);
        {
            const FailureReasons reasons;
            const FailureReasons more;
            QVERIFY(installed() != handler);
        }
        QVERIFY(installed() == handler);
        qInstallMessageHandler(before);
    }

    void aHandlerThatWasSetLaterStays()
    {
        const QtMessageHandler before = installed();
        {
            const FailureReasons reasons;
            const QtMessageHandler ours = qInstallMessageHandler(handler);
            QVERIFY(ours != before);
        }
        QVERIFY(installed() == handler);
        qInstallMessageHandler(before);
    }

    void aHandlerThatWasSetLaterMayGoOnToThisOne()
    {
        const LogCapture log;
        auto reasons = std::make_unique<FailureReasons>();
        static QtMessageHandler next = nullptr;
        const auto forwarding = [](QtMsgType type, const QMessageLogContext &context,
                                   const QString &text) { next(type, context, text); };
        next = qInstallMessageHandler(forwarding);
        reasons.reset();
        reasons = std::make_unique<FailureReasons>();
        qDebug("[error]slotTTSSuc failed:retCode= 5 ,msg= \"no\"");
        QCOMPARE(FailureReasons::take().code, 5);
        QCOMPARE(log.lines().size(), 1);
    }

    void theHostHearsWhatItWouldHaveHeard_data()
    {
        QTest::addColumn<bool>("isSilent");
        QTest::newRow("all") << false;
        QTest::newRow("no debug lines") << true;
    }
    void theHostHearsWhatItWouldHaveHeard()
    {
        QFETCH(const bool, isSilent);
        if (isSilent)
            QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        const LogCapture log;
        {
            const FailureReasons reasons;
            qDebug("[error] VoNetworker::slotTTSFail \"no\"");
            qWarning("a warning");
            QVERIFY(!FailureReasons::take().isNone());
        }
        qDebug("afterwards");
        QCOMPARE(log.texts(QtDebugMsg).size(), isSilent ? 0 : 2);
        QCOMPARE(log.texts(QtWarningMsg), QStringList{QStringLiteral("a warning")});
        QLoggingCategory::setFilterRules({});
    }

    void eachThreadHasItsOwnReason()
    {
        const LogCapture log;
        const FailureReasons reasons;
        std::array<std::thread, 8> threads;
        std::atomic<int> right{0};
        for (std::size_t i = 0; i < threads.size(); ++i) {
            threads.at(i) = std::thread([code = int(i) + 1, &right] {
                for (int round = 0; round < 200; ++round) {
                    qDebug("[error]slotTTSSuc failed:retCode= %d ,msg= \"no\"", code);
                    right += FailureReasons::take().code == code ? 1 : 0;
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(right.load(), int(threads.size()) * 200);
        QVERIFY(FailureReasons::take().isNone());
    }

private:
    using Ask = std::function<void(VoNetworkIntf *service)>;

    // All but GetLoginQrCode(), which may not answer, and those that wait.
    static std::vector<Ask> operations()
    {
        return {
            [](VoNetworkIntf *service) { service->GetOssSign(); },
            [](VoNetworkIntf *service) { service->ShortSTT({}, 1, {}); },
            [](VoNetworkIntf *service) { service->CreateSTTTask({}, 1, {}); },
            [](VoNetworkIntf *service) { service->GetSTTTaskResult({}, 1); },
            [](VoNetworkIntf *service) {
                TTSParams params;
                service->TTS(&params, true, 1);
            },
            [](VoNetworkIntf *service) {
                TTSParams params;
                service->LongTTSTask(&params, 1);
            },
            [](VoNetworkIntf *service) { service->LongTTSStatus({}, 1); },
            [](VoNetworkIntf *service) { service->SendSmsVerifyCode({}); },
            [](VoNetworkIntf *service) { service->SmsVerifyCodeLogin({}, {}); },
            [](VoNetworkIntf *service) { service->RefreshToken(1); },
            [](VoNetworkIntf *service) { service->GetLoginQrCodeStatus({}); },
            [](VoNetworkIntf *service) { service->GetDubList(); },
            [](VoNetworkIntf *service) { service->GetBgmList(); },
            [](VoNetworkIntf *service) { service->GetUpdateInfo(); },
        };
    }

    // Why the operation failed, as it is known when it has.
    static Reason reasonOf(const Ask &ask)
    {
        const std::unique_ptr<VoNetworkIntf, Release> service(VoNetwork::CreateVoNetworkIntf());
        Reason reason;
        ask(service.get());
        (void)QTest::qWaitFor([&] { return !(reason = FailureReasons::take()).isNone(); },
                              patienceMs);
        return reason;
    }

    const TrustTestAuthority m_trust;
};

QTEST_GUILESS_MAIN(TestReasons)
#include "tst_reasons.moc"
