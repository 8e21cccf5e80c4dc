#include "tests/network/operationtest.h"

#include <QTest>

#include <limits>

namespace {

const char processPath[] = "/convert/public/index.php/v1/asr/process";
const char resultPath[] = "/convert/public/index.php/v1/asr/getProcessResult";

QByteArray shortBody(const QByteArray &fileLink, const QByteArray &pageFeature)
{
    return "{\n    \"feature\": \"inWord\",\n    \"file_link\": " + fileLink
           + ",\n    \"pageFeature\": " + pageFeature + "\n}\n";
}

QByteArray resultBody(const QByteArray &taskId)
{
    return "{\n    \"feature\": \"recordingRecognition\",\n    \"task_id\": " + taskId + "\n}\n";
}

} // namespace

/// ShortSTT, CreateSTTTask and GetSTTTaskResult.
class TestSpeechRecognition : public OperationTest
{
    Q_OBJECT

protected:
    QList<Operation> operations() const override
    {
        return {Operations::shortSTT(), Operations::createSTTTask(),
                Operations::getSTTTaskResult()};
    }

private Q_SLOTS:
    void sendsEveryTextUnchanged_data();
    void sendsEveryTextUnchanged();
    void sendsTheTextsOfATaskUnchanged();
    void sendsTheTokenInDecimal_data();
    void sendsTheTokenInDecimal();
    void asksForATaskByAnyIdentifier_data();
    void asksForATaskByAnyIdentifier();
    void takesTheTextOfAShortRecognition_data();
    void takesTheTextOfAShortRecognition();
    void takesTheIdentifierOfANewTask_data();
    void takesTheIdentifierOfANewTask();
    void readsTheStateOfATask_data();
    void readsTheStateOfATask();
    void joinsTheSentencesOfAFinishedTask_data();
    void joinsTheSentencesOfAFinishedTask();
};

void TestSpeechRecognition::sendsEveryTextUnchanged_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("empty") << QString() << QByteArray(R"("")");
    QTest::newRow("blanks") << "  a  b  "_s << QByteArray(R"("  a  b  ")");
    QTest::newRow("an address with a query")
        << "https://x.example/a%20b?c=d&e=%2F#f"_s
        << QByteArray(R"("https://x.example/a%20b?c=d&e=%2F#f")");
    QTest::newRow("placeholders") << "%1%2%3 {0} %s"_s << QByteArray(R"("%1%2%3 {0} %s")");
    QTest::newRow("JSON's own characters")
        << R"(a "b" \c\ /d/ {e} [f])"_s << QByteArray(R"("a \"b\" \\c\\ /d/ {e} [f]")");
    QTest::newRow("control characters")
        << "a\nb\r\nc\td\x01"_s << QByteArray(R"("a\nb\r\nc\td\u0001")");
    QTest::newRow("another script") << "录音/é.wav"_s << QByteArray(R"("录音/é.wav")");
    QTest::newRow("beyond the basic plane") << "🎤"_s << QByteArray(R"("🎤")");
}

void TestSpeechRecognition::sendsEveryTextUnchanged()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, json);
    const QByteArray body = shortBody(json, json);
    compareRequest([&text](VoNetworkIntf *to) { to->ShortSTT(text, 5, text); },
                   Operations::post(processPath, "Bearer 5", body),
                   "VoNetworker::ShortSTT "_s + quoted(QString::fromUtf8(body)));
}

void TestSpeechRecognition::sendsTheTextsOfATaskUnchanged()
{
    const QByteArray body = R"({
    "auto_split": "false",
    "enable_disfluency": "false",
    "enable_inverse_text_normalization": "true",
    "enable_punctuation_prediction": "true",
    "enable_sample_rate_adaptive": "true",
    "enable_semantic_sentence_detection": "false",
    "enable_timestamp_alignment": "false",
    "enable_words": "true",
    "feature": "recordingRecognition",
    "file_link": "录音 \"%1\"",
    "first_channel_only": "true",
    "pageFeature": ""
}
)";
    compareRequest([](VoNetworkIntf *to) { to->CreateSTTTask(R"(录音 "%1")"_s, -5, QString()); },
                   Operations::post(processPath, "Bearer -5", body),
                   "VoNetworker::CreateSTTTask "_s + quoted(QString::fromUtf8(body)));
}

void TestSpeechRecognition::sendsTheTokenInDecimal_data()
{
    QTest::addColumn<qint64>("token");
    QTest::addColumn<QByteArray>("authorization");
    QTest::newRow("zero") << qint64(0) << QByteArray("Bearer 0");
    QTest::newRow("negative") << qint64(-1) << QByteArray("Bearer -1");
    QTest::newRow("more than 32 bits") << qint64(4294967296) << QByteArray("Bearer 4294967296");
    QTest::newRow("largest") << std::numeric_limits<qint64>::max()
                             << QByteArray("Bearer 9223372036854775807");
    QTest::newRow("smallest") << std::numeric_limits<qint64>::min()
                              << QByteArray("Bearer -9223372036854775808");
}

void TestSpeechRecognition::sendsTheTokenInDecimal()
{
    QFETCH(qint64, token);
    QFETCH(QByteArray, authorization);
    const QByteArray body = resultBody(R"("t")");
    compareRequest([token](VoNetworkIntf *to) { to->GetSTTTaskResult("t"_s, token); },
                   Operations::post(resultPath, authorization, body),
                   R"(VoNetworker::GetSTTTaskResult "t")"_s);
}

void TestSpeechRecognition::asksForATaskByAnyIdentifier_data() { addIdentifiersToAskBy(); }

void TestSpeechRecognition::asksForATaskByAnyIdentifier()
{
    QFETCH(QString, taskId);
    QFETCH(QByteArray, json);
    compareRequest([&taskId](VoNetworkIntf *to) { to->GetSTTTaskResult(taskId, 5); },
                   Operations::post(resultPath, "Bearer 5", resultBody(json)),
                   "VoNetworker::GetSTTTaskResult "_s + quoted(taskId));
}

void TestSpeechRecognition::takesTheTextOfAShortRecognition_data()
{
    addDataColumns();
    QTest::newRow("empty") << QByteArray(R"({"text":""})") << R"(signalShortSTT(0, ""))"_s;
    QTest::newRow("another script")
        << QByteArray(R"({"text":"你好 \u00e9 🎤"})") << R"(signalShortSTT(0, "你好 é 🎤"))"_s;
    QTest::newRow("lines") << QByteArray(R"({"text":"a\nb\"c\\"})")
                           << "signalShortSTT(0, \"a\nb\"c\\\")"_s;
    QTest::newRow("long") << R"({"text":")" + QByteArray(1000000, 'x') + R"("})"
                          << R"(signalShortSTT(0, "%1"))"_s.arg(QString(1000000, QLatin1Char('x')));
    QTest::newRow("number") << QByteArray(R"({"text":5})") << R"(signalShortSTT(0, ""))"_s;
    QTest::newRow("null") << QByteArray(R"({"text":null})") << R"(signalShortSTT(0, ""))"_s;
    QTest::newRow("object") << QByteArray(R"({"text":{"text":"x"}})")
                            << R"(signalShortSTT(0, ""))"_s;
    QTest::newRow("in other letters")
        << QByteArray(R"({"Text":"x","TEXT":"y"})") << R"(signalShortSTT(0, ""))"_s;
}

void TestSpeechRecognition::takesTheTextOfAShortRecognition()
{
    exchangeData(Operations::shortSTT());
}

void TestSpeechRecognition::takesTheIdentifierOfANewTask_data()
{
    addTaskIdentifiers("signalCreateSTTTask");
}

void TestSpeechRecognition::takesTheIdentifierOfANewTask()
{
    exchangeData(Operations::createSTTTask());
}

void TestSpeechRecognition::readsTheStateOfATask_data()
{
    // Sentences are there in any state: only a finished task may bring them.
    addTaskStates(R"("task_id":"t1","request_id":"r1","result":{"Sentences":[{"Text":"said"}]})",
                  R"(signalGetSTTResult(1, "t1", "r1", ""))"_s,
                  R"(signalGetSTTResult(0, "t1", "r1", "said"))"_s,
                  R"(signalGetSTTResult(2, "t1", "r1", ""))"_s);
    QTest::newRow("running, no identifiers")
        << QByteArray(R"({"status":"RUNNING"})") << R"(signalGetSTTResult(1, "", "", ""))"_s;
    QTest::newRow("finished, no identifiers")
        << QByteArray(R"({"status":"SUCCESS"})") << R"(signalGetSTTResult(0, "", "", ""))"_s;
    QTest::newRow("failed, no identifiers")
        << QByteArray(R"({"status":"FAILED"})") << R"(signalGetSTTResult(2, "", "", ""))"_s;
    QTest::newRow("numeric identifiers")
        << QByteArray(R"({"status":"RUNNING","task_id":5,"request_id":6})")
        << R"(signalGetSTTResult(1, "", "", ""))"_s;
    QTest::newRow("one identifier") << QByteArray(R"({"status":"RUNNING","request_id":"r1"})")
                                    << R"(signalGetSTTResult(1, "", "r1", ""))"_s;
}

void TestSpeechRecognition::readsTheStateOfATask() { exchangeData(Operations::getSTTTaskResult()); }

void TestSpeechRecognition::joinsTheSentencesOfAFinishedTask_data()
{
    addDataColumns();
    const auto row = [](const char *title, const char *result, const char *text) {
        QTest::newRow(title) << R"({"status":"SUCCESS","task_id":"t1","request_id":"r1")"
                                    + QByteArray(result) + '}'
                             << R"(signalGetSTTResult(0, "t1", "r1", "%1"))"_s.arg(
                                    QString::fromUtf8(text));
    };
    row("nothing between them", R"(,"result":{"Sentences":[{"Text":"A"},{"Text":"B"}]})", "AB");
    row("in the array's order",
        R"(,"result":{"Sentences":[{"Text":"c","BeginTime":9},{"Text":"a"},{"Text":"b"}]})", "cab");
    row("their own blanks stay", R"(,"result":{"Sentences":[{"Text":" A "},{"Text":"\nB"}]})",
        " A \nB");
    row("another script", R"(,"result":{"Sentences":[{"Text":"你好。"},{"Text":"é"}]})", "你好。é");
    row("the same one twice", R"(,"result":{"Sentences":[{"Text":"A"},{"Text":"A"}]})", "AA");
    row("elements that are no sentences",
        R"(,"result":{"Sentences":[{"Text":"A"},"x",7,null,["y"],{},{"Text":5},{"text":"z"},)"
        R"({"Text":"B"}]})",
        "AB");
    row("no result", "", "");
    row("result null", R"(,"result":null)", "");
    row("result an array", R"(,"result":[{"Text":"A"}])", "");
    row("result a text", R"(,"result":"A")", "");
    row("no Sentences", R"(,"result":{},"Sentences":[{"Text":"A"}])", "");
    row("Sentences empty", R"(,"result":{"Sentences":[]})", "");
    row("Sentences null", R"(,"result":{"Sentences":null})", "");
    row("Sentences an object", R"(,"result":{"Sentences":{"Text":"A"}})", "");
    row("Sentences in other letters", R"(,"result":{"sentences":[{"Text":"A"}]})", "");
}

void TestSpeechRecognition::joinsTheSentencesOfAFinishedTask()
{
    exchangeData(Operations::getSTTTaskResult());
}

QTEST_GUILESS_MAIN(TestSpeechRecognition)
#include "tst_speechrecognition.moc"
