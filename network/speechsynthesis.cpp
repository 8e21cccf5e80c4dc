#include "network/filefetch.h"
#include "network/serviceenvelope.h"
#include "network/servicelog.h"
#include "network/serviceoperation.h"
#include "network/taskreply.h"
#include "network/vonetworker.h"

#include <QJsonObject>

namespace {

constexpr ServiceOperation tts{HttpMethod::Post, convertServicePrefix, "asr/process", "TTS"};
constexpr ServiceOperation anonymousTTS{HttpMethod::Post, convertServicePrefix, "asr/freeProcess",
                                        "TTS"};
constexpr ServiceOperation longTTSTask{HttpMethod::Post, convertServicePrefix, "asr/process",
                                       "LongTTSTask", refusalWithComma};
constexpr ServiceOperation longTTSStatus{HttpMethod::Post, convertServicePrefix,
                                         "asr/getProcessResult", "LongTTSTaskStatus"};

const QLatin1String longSynthesis("longVoiceSynthesis");

QJsonObject synthesisBody(const QString &feature, const TTSParams &params)
{
    return {{QStringLiteral("feature"), feature},
            {QStringLiteral("text"), params.text},
            {QStringLiteral("format"), params.format},
            {QStringLiteral("sample_rate"), params.sample_rate},
            {QStringLiteral("voice"), params.voice},
            {QStringLiteral("volume"), params.volume},
            {QStringLiteral("speech_rate"), params.speech_rate},
            {QStringLiteral("pitch_rate"), params.pitch_rate},
            {QStringLiteral("pageFeature"), params.pageFeature}};
}

QString audioAddress(const QJsonObject &data)
{
    return data.value(QLatin1String("audio_address")).toString();
}

} // namespace

void VoNetworker::TTS(TTSParams *params, bool anonymous, qint64 token)
{
    const QJsonObject body = synthesisBody(QStringLiteral("voiceSynthesis"), *params);
    ServiceLog::begin("VoNetworker::TTS", body);
    if (anonymous)
        issue(anonymousTTS, commonHeaders(), body);
    else
        issue(tts, authorizedHeaders(token), body);
}

void VoNetworker::slotTTSSuc(QByteArray jsonStr)
{
    if (const auto data = dataOf(&jsonStr, tts))
        Q_EMIT signalTTSRet(TTS_SUCCESS, data->toObject().value(QLatin1String("audio")).toString());
    else
        Q_EMIT signalTTSRet(TTS_FAILED, QString());
}

void VoNetworker::slotTTSFail(QByteArray failInfo)
{
    ServiceLog::failure(tts, failInfo);
    Q_EMIT signalTTSRet(TTS_FAILED, QString());
}

void VoNetworker::LongTTSTask(TTSParams *params, qint64 token)
{
    QJsonObject body = synthesisBody(longSynthesis, *params);
    body.insert(QStringLiteral("enable_subtitle"), QStringLiteral("false")); // a text, no boolean
    ServiceLog::begin("VoNetworker::LongTTSTask", body);
    issue(longTTSTask, authorizedHeaders(token), body);
}

void VoNetworker::slotLongTTSTaskSuc(QByteArray jsonStr)
{
    if (const auto data = ServiceEnvelope::read(jsonStr, longTTSTask))
        Q_EMIT signalLongTTSTask(LONG_TTS_SUCCESS,
                                 data->toObject().value(QLatin1String("task_id")).toString());
    else
        Q_EMIT signalLongTTSTask(LONG_TTS_FAILED, QString());
}

void VoNetworker::slotLongTTSTaskFail(QByteArray failInfo)
{
    ServiceLog::failure(longTTSTask, failInfo);
    Q_EMIT signalLongTTSTask(LONG_TTS_FAILED, QString());
}

void VoNetworker::LongTTSStatus(QString taskId, qint64 token)
{
    const QJsonObject body{{QStringLiteral("feature"), longSynthesis},
                           {QStringLiteral("task_id"), taskId}};
    ServiceLog::begin("VoNetworker::LongTTSStatus", body);
    issue(longTTSStatus, authorizedHeaders(token), body);
}

void VoNetworker::slotLongTTSTaskStatusSuc(QByteArray jsonStr)
{
    const TaskReply task(ServiceEnvelope::read(jsonStr, longTTSStatus), audioAddress);
    Q_EMIT signalGetLongTTSResult(LONG_TTS_STATUS(task.state), task.taskId, task.requestId,
                                  task.result);
}

void VoNetworker::slotLongTTSTaskStatusFail(QByteArray failInfo)
{
    ServiceLog::failure(longTTSStatus, failInfo);
    Q_EMIT signalGetLongTTSResult(LONG_TTS_FAILED, QString(), QString(), QString());
}

bool VoNetworker::DownloadLongTTSRet(QString fileUrl, QString saveDir)
{
    constexpr const char *tag = "VoNetworker::DownloadLongTTSRet";
    ServiceLog::beginDownload(tag, "fileUrl=", fileUrl, ",saveDir=", saveDir);
    const FileFetch::Result result = FileFetch::fetch(fileUrl, tag);
    return result.error == QNetworkReply::NoError
           && FileFetch::save(result.body, saveDir, tag, "open file error,");
}
