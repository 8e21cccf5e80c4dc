#include "tests/network/operation.h"

#include "tests/network/text.h"

#include <QVector>

namespace {

const char processPath[] = "/convert/public/index.php/v1/asr/process";
const char freeProcessPath[] = "/convert/public/index.php/v1/asr/freeProcess";
const char resultPath[] = "/convert/public/index.php/v1/asr/getProcessResult";

// The headers that Qt itself adds, before and after those of the request.
QByteArray requestStart(const QByteArray &method, const QByteArray &path)
{
    return method + ' ' + path + " HTTP/1.1\r\nHost: localhost:" + QByteArray::number(SERVICE_PORT)
           + "\r\n";
}

QByteArray commonHeaders(const QByteArray &deviceId)
{
    return "appcode: 40000000\r\nappversion: 1.1.1.26\r\nchannelcode: channel_360\r\n"
           "deviceid: "
           + deviceId + "\r\n";
}

QByteArray requestEnd(const QByteArray &body)
{
    return "Content-Length: " + QByteArray::number(body.size())
           + "\r\nConnection: Keep-Alive\r\nAccept-Encoding: gzip, deflate\r\n"
             "Accept-Language: "
           + acceptLanguage() + "\r\nUser-Agent: Mozilla/5.0\r\n\r\n" + body;
}

const QByteArray shortBody = R"({
    "feature": "inWord",
    "file_link": "https://files.example/a.wav",
    "pageFeature": "page"
}
)";

const QByteArray taskBody = R"({
    "auto_split": "false",
    "enable_disfluency": "false",
    "enable_inverse_text_normalization": "true",
    "enable_punctuation_prediction": "true",
    "enable_sample_rate_adaptive": "true",
    "enable_semantic_sentence_detection": "false",
    "enable_timestamp_alignment": "false",
    "enable_words": "true",
    "feature": "recordingRecognition",
    "file_link": "https://files.example/a.wav",
    "first_channel_only": "true",
    "pageFeature": "page"
}
)";

const QByteArray resultBody = R"({
    "feature": "recordingRecognition",
    "task_id": "task 1"
}
)";

const QByteArray ttsBody = R"({
    "feature": "voiceSynthesis",
    "format": "mp3",
    "pageFeature": "page",
    "pitch_rate": -4,
    "sample_rate": 16000,
    "speech_rate": 3,
    "text": "Hello",
    "voice": "anna",
    "volume": 50
}
)";

const QByteArray longTtsBody = R"({
    "enable_subtitle": "false",
    "feature": "longVoiceSynthesis",
    "format": "mp3",
    "pageFeature": "page",
    "pitch_rate": -4,
    "sample_rate": 16000,
    "speech_rate": 3,
    "text": "Hello",
    "voice": "anna",
    "volume": 50
}
)";

const QByteArray longStatusBody = R"({
    "feature": "longVoiceSynthesis",
    "task_id": "task 1"
}
)";

const QString fileLink = QStringLiteral("https://files.example/a.wav");
const QString page = QStringLiteral("page");
const QString task = QStringLiteral("task 1");

} // namespace

QByteArray Operations::bareGet(const QByteArray &path)
{
    return requestStart("GET", path) + requestEnd(QByteArray());
}

QByteArray Operations::get(const QByteArray &path, const QByteArray &deviceId)
{
    return requestStart("GET", path) + commonHeaders(deviceId) + requestEnd(QByteArray());
}

QByteArray Operations::post(const QByteArray &path, const QByteArray &authorization,
                            const QByteArray &body, const QByteArray &deviceId)
{
    QByteArray headers;
    if (!authorization.isEmpty())
        headers += "Authorization: " + authorization + "\r\n";
    headers += commonHeaders(deviceId) + "Content-Type: application/json\r\n";
    return requestStart("POST", path) + headers + requestEnd(body);
}

QString Operations::started(const char *operation, const QByteArray &body)
{
    return QLatin1String(operation) + QLatin1Char(' ') + quoted(QString::fromUtf8(body));
}

QByteArray Operations::envelope(const QByteArray &data)
{
    return R"({"code":0,"message":"ok","data":)" + data + '}';
}

TTSParams Operations::sampleParams()
{
    TTSParams params;
    params.text = QStringLiteral("Hello");
    params.format = QStringLiteral("mp3");
    params.sample_rate = 16000;
    params.voice = QStringLiteral("anna");
    params.volume = 50;
    params.speech_rate = 3;
    params.pitch_rate = -4;
    params.pageFeature = page;
    return params;
}

Operation Operations::getOssSign()
{
    Operation operation;
    operation.name = "GetOssSign"_s;
    operation.call = [](VoNetworkIntf *service) { service->GetOssSign(); };
    operation.request = bareGet("/convert/public/index.php/v1/upload/getsignsts");
    operation.start = QStringList{"get oss sign begin"_s};
    operation.successSlot = "slotGetOssSignSuc"_s;
    operation.failureSlot = "slotGetOssSignFail"_s;
    operation.refusal = "[error]get oss sign failed: %2"_s;
    operation.data = R"({"AccessKeyId":"id","AccessKeySecret":"secret","endpoint":"end",)"
                     R"("bucketName":"bucket","dir":"a/","SecurityToken":"token",)"
                     R"("bucketRegion":"region"})";
    operation.answer =
        R"(signalGetOssSign("id", "secret", "end", "bucket", "a/", "token", "region"))"_s;
    operation.dataLog = QStringList{R"("bucket")"_s};
    operation.emptyAnswers = QStringList{R"(signalGetOssSign("", "", "", "", "", "", ""))"_s};
    operation.emptyLog = QStringList{R"("")"_s};
    operation.failure = operation.networkFailure = "signalGetOssSign(null)"_s;
    return operation;
}

Operation Operations::shortSTT()
{
    Operation operation;
    operation.name = "ShortSTT"_s;
    operation.call = [](VoNetworkIntf *service) { service->ShortSTT(fileLink, 12, page); };
    operation.request = post(processPath, "Bearer 12", shortBody);
    operation.start = QStringList{started("VoNetworker::ShortSTT", shortBody)};
    operation.successSlot = "slotShortSTTSuc"_s;
    operation.failureSlot = "slotShortSTTFail"_s;
    operation.refusal = "[error]slotShortSTTSuc failed: %1 , %2"_s;
    operation.data = R"({"text":"said"})";
    operation.answer = R"(signalShortSTT(0, "said"))"_s;
    operation.emptyAnswers = QStringList{R"(signalShortSTT(0, ""))"_s};
    operation.failure = operation.networkFailure = R"(signalShortSTT(1, ""))"_s;
    return operation;
}

Operation Operations::createSTTTask()
{
    Operation operation;
    operation.name = "CreateSTTTask"_s;
    operation.call = [](VoNetworkIntf *service) { service->CreateSTTTask(fileLink, 12, page); };
    operation.request = post(processPath, "Bearer 12", taskBody);
    operation.start = QStringList{started("VoNetworker::CreateSTTTask", taskBody)};
    operation.successSlot = "slotCreateSTTTaskSuc"_s;
    operation.failureSlot = "slotCreateSTTTaskFail"_s;
    operation.refusal = "[error]slotCreateSTTTaskSuc failed: %1 , %2"_s;
    operation.data = R"({"task_id":"t1"})";
    operation.answer = R"(signalCreateSTTTask(0, "t1"))"_s;
    operation.emptyAnswers = QStringList{R"(signalCreateSTTTask(0, ""))"_s};
    operation.failure = operation.networkFailure = R"(signalCreateSTTTask(2, ""))"_s;
    return operation;
}

Operation Operations::getSTTTaskResult()
{
    Operation operation;
    operation.name = "GetSTTTaskResult"_s;
    operation.call = [](VoNetworkIntf *service) { service->GetSTTTaskResult(task, 12); };
    operation.request = post(resultPath, "Bearer 12", resultBody);
    operation.start = QStringList{R"(VoNetworker::GetSTTTaskResult "task 1")"_s};
    operation.successSlot = "slotGetSTTRetSuc"_s;
    operation.failureSlot = "slotGetSTTRetFail"_s;
    operation.refusal = "[error]slotGetSTTRetSuc failed:retCode= %1 ,msg= %2"_s;
    operation.data = R"({"status":"SUCCESS","task_id":"t1","request_id":"r1",)"
                     R"("result":{"Sentences":[{"Text":"said"}]}})";
    operation.answer = R"(signalGetSTTResult(0, "t1", "r1", "said"))"_s;
    operation.emptyAnswers = QStringList{R"(signalGetSTTResult(2, "", "", ""))"_s};
    operation.failure = operation.networkFailure = R"(signalGetSTTResult(2, "", "", ""))"_s;
    return operation;
}

Operation Operations::tts()
{
    Operation operation;
    operation.name = "TTS"_s;
    operation.call = [](VoNetworkIntf *service) {
        TTSParams params = sampleParams();
        service->TTS(&params, false, 12);
    };
    operation.request = post(processPath, "Bearer 12", ttsBody);
    operation.start = QStringList{started("VoNetworker::TTS", ttsBody)};
    operation.successSlot = "slotTTSSuc"_s;
    operation.failureSlot = "slotTTSFail"_s;
    operation.refusal = "[error]slotTTSSuc failed:retCode= %1 ,msg= %2"_s;
    operation.data = R"({"audio":"QUJD"})";
    operation.answer = R"(signalTTSRet(0, "QUJD"))"_s;
    operation.emptyAnswers = QStringList{R"(signalTTSRet(0, ""))"_s};
    operation.failure = operation.networkFailure = R"(signalTTSRet(1, ""))"_s;
    return operation;
}

Operation Operations::anonymousTTS()
{
    Operation operation = tts();
    operation.name = "TTS, anonymous"_s;
    operation.call = [](VoNetworkIntf *service) {
        TTSParams params = sampleParams();
        service->TTS(&params, true, 12);
    };
    operation.request = post(freeProcessPath, QByteArray(), ttsBody);
    return operation;
}

Operation Operations::longTTSTask()
{
    Operation operation;
    operation.name = "LongTTSTask"_s;
    operation.call = [](VoNetworkIntf *service) {
        TTSParams params = sampleParams();
        service->LongTTSTask(&params, 12);
    };
    operation.request = post(processPath, "Bearer 12", longTtsBody);
    operation.start = QStringList{started("VoNetworker::LongTTSTask", longTtsBody)};
    operation.successSlot = "slotLongTTSTaskSuc"_s;
    operation.failureSlot = "slotLongTTSTaskFail"_s;
    operation.refusal = "[error]slotLongTTSTaskSuc failed: %1 , %2"_s;
    operation.data = R"({"task_id":"t1"})";
    operation.answer = R"(signalLongTTSTask(0, "t1"))"_s;
    operation.emptyAnswers = QStringList{R"(signalLongTTSTask(0, ""))"_s};
    operation.failure = operation.networkFailure = R"(signalLongTTSTask(2, ""))"_s;
    return operation;
}

Operation Operations::longTTSStatus()
{
    Operation operation;
    operation.name = "LongTTSStatus"_s;
    operation.call = [](VoNetworkIntf *service) { service->LongTTSStatus(task, 12); };
    operation.request = post(resultPath, "Bearer 12", longStatusBody);
    operation.start = QStringList{started("VoNetworker::LongTTSStatus", longStatusBody)};
    operation.successSlot = "slotLongTTSTaskStatusSuc"_s;
    operation.failureSlot = "slotLongTTSTaskStatusFail"_s;
    operation.refusal = "[error]slotLongTTSTaskStatusSuc failed:retCode= %1 ,msg= %2"_s;
    operation.data = R"({"status":"SUCCESS","task_id":"t1","request_id":"r1",)"
                     R"("audio_address":"https://files.example/a.mp3"})";
    operation.answer = R"(signalGetLongTTSResult(0, "t1", "r1", "https://files.example/a.mp3"))"_s;
    operation.emptyAnswers = QStringList{R"(signalGetLongTTSResult(2, "", "", ""))"_s};
    operation.failure = operation.networkFailure = R"(signalGetLongTTSResult(2, "", "", ""))"_s;
    return operation;
}

QList<Operation> Operations::all()
{
    return {getOssSign(),
            shortSTT(),
            createSTTTask(),
            getSTTTaskResult(),
            tts(),
            anonymousTTS(),
            longTTSTask(),
            longTTSStatus(),
            getLoginQrCode(),
            getLoginQrCodeStatus(),
            sendSmsVerifyCode(),
            smsVerifyCodeLogin(),
            refreshToken()};
}
