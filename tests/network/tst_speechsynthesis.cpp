#include "tests/network/operationtest.h"
#include "tests/support/patience.h"

#include <QTest>

#include <limits>

namespace {

const char processPath[] = "/convert/public/index.php/v1/asr/process";
const char freeProcessPath[] = "/convert/public/index.php/v1/asr/freeProcess";
const char resultPath[] = "/convert/public/index.php/v1/asr/getProcessResult";

QByteArray synthesisBody(const QByteArray &feature, const QByteArray &number,
                         const QByteArray &json)
{
    return "    \"feature\": \"" + feature + "\",\n    \"format\": " + json
           + ",\n    \"pageFeature\": " + json + ",\n    \"pitch_rate\": " + number
           + ",\n    \"sample_rate\": " + number + ",\n    \"speech_rate\": " + number
           + ",\n    \"text\": " + json + ",\n    \"voice\": " + json
           + ",\n    \"volume\": " + number + "\n}\n";
}

} // namespace

/// TTS, LongTTSTask and LongTTSStatus. DownloadLongTTSRet has a test of its own.
class TestSpeechSynthesis : public OperationTest
{
    Q_OBJECT

protected:
    QList<Operation> operations() const override
    {
        return {Operations::tts(), Operations::anonymousTTS(), Operations::longTTSTask(),
                Operations::longTTSStatus()};
    }

private Q_SLOTS:
    void sendsEverySettingUnchanged_data();
    void sendsEverySettingUnchanged();
    void readsTheSettingsDuringTheCall();
    void leavesTheSettingsAsTheyAre();
    void sendsTheTokenInDecimalUnlessAnonymous_data();
    void sendsTheTokenInDecimalUnlessAnonymous();
    void asksForATaskByAnyIdentifier_data();
    void asksForATaskByAnyIdentifier();
    void handsTheAudioOnAsReceived_data();
    void handsTheAudioOnAsReceived();
    void takesTheIdentifierOfANewTask_data();
    void takesTheIdentifierOfANewTask();
    void readsTheStateOfATask_data();
    void readsTheStateOfATask();
};

void TestSpeechSynthesis::sendsEverySettingUnchanged_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<qint32>("number");
    QTest::addColumn<QByteArray>("digits");
    QTest::newRow("nothing set") << QString() << QByteArray(R"("")") << 0 << QByteArray("0");
    QTest::newRow("largest") << "a\nb"_s << QByteArray(R"("a\nb")")
                             << std::numeric_limits<qint32>::max() << QByteArray("2147483647");
    QTest::newRow("smallest") << R"(a "b" \c %1)"_s << QByteArray(R"("a \"b\" \\c %1")")
                              << std::numeric_limits<qint32>::min() << QByteArray("-2147483648");
    QTest::newRow("digits stay a text")
        << "16000"_s << QByteArray(R"("16000")") << 16000 << QByteArray("16000");
    QTest::newRow("another script")
        << "你好 é 🎤"_s << QByteArray(R"("你好 é 🎤")") << -500 << QByteArray("-500");
}

void TestSpeechSynthesis::sendsEverySettingUnchanged()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, json);
    QFETCH(qint32, number);
    QFETCH(QByteArray, digits);
    TTSParams params;
    params.text = params.format = params.voice = params.pageFeature = text;
    params.sample_rate = params.volume = params.speech_rate = params.pitch_rate = number;

    const QByteArray body = "{\n" + synthesisBody("voiceSynthesis", digits, json);
    compareRequest([&params](VoNetworkIntf *to) { to->TTS(&params, false, 5); },
                   Operations::post(processPath, "Bearer 5", body),
                   "VoNetworker::TTS "_s + quoted(QString::fromUtf8(body)));

    server->reset();
    log->clear();
    const QByteArray longBody = "{\n    \"enable_subtitle\": \"false\",\n"
                                + synthesisBody("longVoiceSynthesis", digits, json);
    compareRequest([&params](VoNetworkIntf *to) { to->LongTTSTask(&params, 5); },
                   Operations::post(processPath, "Bearer 5", longBody),
                   "VoNetworker::LongTTSTask "_s + quoted(QString::fromUtf8(longBody)));
}

void TestSpeechSynthesis::readsTheSettingsDuringTheCall()
{
    auto params = std::make_unique<TTSParams>(Operations::sampleParams());
    service->TTS(params.get(), false, 12);
    params->text = "changed"_s;
    params.reset();
    TRY_VERIFY(!server->requests().isEmpty());
    QCOMPARE(server->requests(), QList<QByteArray>{Operations::tts().request});
}

void TestSpeechSynthesis::leavesTheSettingsAsTheyAre()
{
    TTSParams params = Operations::sampleParams();
    service->TTS(&params, false, 12);
    service->TTS(&params, true, 12);
    service->LongTTSTask(&params, 12);
    const TTSParams same = Operations::sampleParams();
    QCOMPARE(params.text, same.text);
    QCOMPARE(params.format, same.format);
    QCOMPARE(params.sample_rate, same.sample_rate);
    QCOMPARE(params.voice, same.voice);
    QCOMPARE(params.volume, same.volume);
    QCOMPARE(params.speech_rate, same.speech_rate);
    QCOMPARE(params.pitch_rate, same.pitch_rate);
    QCOMPARE(params.pageFeature, same.pageFeature);
}

void TestSpeechSynthesis::sendsTheTokenInDecimalUnlessAnonymous_data()
{
    QTest::addColumn<bool>("anonymous");
    QTest::addColumn<qint64>("token");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("authorization");
    const QByteArray process = processPath;
    const QByteArray freeProcess = freeProcessPath;
    QTest::newRow("zero") << false << qint64(0) << process << QByteArray("Bearer 0");
    QTest::newRow("negative") << false << qint64(-1) << process << QByteArray("Bearer -1");
    QTest::newRow("largest") << false << std::numeric_limits<qint64>::max() << process
                             << QByteArray("Bearer 9223372036854775807");
    QTest::newRow("anonymous, zero") << true << qint64(0) << freeProcess << QByteArray();
    QTest::newRow("anonymous, negative") << true << qint64(-1) << freeProcess << QByteArray();
    QTest::newRow("anonymous, largest")
        << true << std::numeric_limits<qint64>::max() << freeProcess << QByteArray();
}

void TestSpeechSynthesis::sendsTheTokenInDecimalUnlessAnonymous()
{
    QFETCH(bool, anonymous);
    QFETCH(qint64, token);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, authorization);
    const QByteArray body = "{\n" + synthesisBody("voiceSynthesis", "0", R"("")");
    TTSParams params;
    compareRequest([&](VoNetworkIntf *to) { to->TTS(&params, anonymous, token); },
                   Operations::post(path, authorization, body),
                   "VoNetworker::TTS "_s + quoted(QString::fromUtf8(body)));
}

void TestSpeechSynthesis::asksForATaskByAnyIdentifier_data() { addIdentifiersToAskBy(); }

void TestSpeechSynthesis::asksForATaskByAnyIdentifier()
{
    QFETCH(QString, taskId);
    QFETCH(QByteArray, json);
    const QByteArray body =
        "{\n    \"feature\": \"longVoiceSynthesis\",\n    \"task_id\": " + json + "\n}\n";
    compareRequest([&taskId](VoNetworkIntf *to) { to->LongTTSStatus(taskId, -9); },
                   Operations::post(resultPath, "Bearer -9", body),
                   "VoNetworker::LongTTSStatus "_s + quoted(QString::fromUtf8(body)));
}

void TestSpeechSynthesis::handsTheAudioOnAsReceived_data()
{
    addDataColumns();
    QTest::newRow("base64") << QByteArray(R"({"audio":"AAEC\/+8="})")
                            << R"(signalTTSRet(0, "AAEC/+8="))"_s;
    QTest::newRow("no base64 at all")
        << QByteArray(R"({"audio":" *声音* =="})") << R"(signalTTSRet(0, " *声音* =="))"_s;
    QTest::newRow("long") << R"({"audio":")" + QByteArray(2000000, 'A') + R"("})"
                          << R"(signalTTSRet(0, "%1"))"_s.arg(QString(2000000, QLatin1Char('A')));
    QTest::newRow("number") << QByteArray(R"({"audio":5})") << R"(signalTTSRet(0, ""))"_s;
    QTest::newRow("null") << QByteArray(R"({"audio":null})") << R"(signalTTSRet(0, ""))"_s;
    QTest::newRow("in other letters")
        << QByteArray(R"({"Audio":"QQ=="})") << R"(signalTTSRet(0, ""))"_s;
}

void TestSpeechSynthesis::handsTheAudioOnAsReceived() { exchangeData(Operations::tts()); }

void TestSpeechSynthesis::takesTheIdentifierOfANewTask_data()
{
    addTaskIdentifiers("signalLongTTSTask");
}

void TestSpeechSynthesis::takesTheIdentifierOfANewTask()
{
    exchangeData(Operations::longTTSTask());
}

void TestSpeechSynthesis::readsTheStateOfATask_data()
{
    // An address is there in any state: only a finished task may bring it.
    addTaskStates(R"("task_id":"t1","request_id":"r1","audio_address":"u")",
                  R"(signalGetLongTTSResult(1, "t1", "r1", ""))"_s,
                  R"(signalGetLongTTSResult(0, "t1", "r1", "u"))"_s,
                  R"(signalGetLongTTSResult(2, "t1", "r1", ""))"_s);
    QTest::newRow("finished, no address")
        << QByteArray(R"({"status":"SUCCESS","task_id":"t1","request_id":"r1"})")
        << R"(signalGetLongTTSResult(0, "t1", "r1", ""))"_s;
    QTest::newRow("finished, numeric address")
        << QByteArray(R"({"status":"SUCCESS","task_id":"t1","request_id":"r1","audio_address":5})")
        << R"(signalGetLongTTSResult(0, "t1", "r1", ""))"_s;
    QTest::newRow("finished, address in a nested object")
        << QByteArray(R"({"status":"SUCCESS","task_id":"t1","request_id":"r1",)"
                      R"("result":{"audio_address":"u"}})")
        << R"(signalGetLongTTSResult(0, "t1", "r1", ""))"_s;
    QTest::newRow("running, no identifiers")
        << QByteArray(R"({"status":"RUNNING"})") << R"(signalGetLongTTSResult(1, "", "", ""))"_s;
    QTest::newRow("failed, no identifiers")
        << QByteArray(R"({"status":"FAILED"})") << R"(signalGetLongTTSResult(2, "", "", ""))"_s;
    QTest::newRow("numeric identifiers")
        << QByteArray(R"({"status":"SUCCESS","task_id":5,"request_id":6,"audio_address":"u"})")
        << R"(signalGetLongTTSResult(0, "", "", "u"))"_s;
    QTest::newRow("one identifier") << QByteArray(R"({"status":"RUNNING","request_id":"r1"})")
                                    << R"(signalGetLongTTSResult(1, "", "r1", ""))"_s;
}

void TestSpeechSynthesis::readsTheStateOfATask() { exchangeData(Operations::longTTSStatus()); }

QTEST_GUILESS_MAIN(TestSpeechSynthesis)
#include "tst_speechsynthesis.moc"
