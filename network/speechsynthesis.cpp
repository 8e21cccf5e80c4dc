#include "network/filefetch.h"
#include "network/serviceenvelope.h"
#include "network/servicelog.h"
#include "network/serviceoperation.h"
#include "network/taskreply.h"
#include "network/vonetworker.h"

#include <QDebug>
#include <QJsonObject>

namespace {

constexpr ServiceOperation tts{HttpMethod::Post, convertServicePrefix, "asr/process",
                               "1slotTTSSuc(QByteArray)", "1slotTTSFail(QByteArray)"};
constexpr ServiceOperation anonymousTTS{HttpMethod::Post, convertServicePrefix, "asr/freeProcess",
                                        "1slotTTSSuc(QByteArray)", "1slotTTSFail(QByteArray)"};
constexpr ServiceOperation longTTSTask{HttpMethod::Post, convertServicePrefix, "asr/process",
                                       "1slotLongTTSTaskSuc(QByteArray)",
                                       "1slotLongTTSTaskFail(QByteArray)"};
constexpr ServiceOperation longTTSStatus{
    HttpMethod::Post, convertServicePrefix, "asr/getProcessResult",
    "1slotLongTTSTaskStatusSuc(QByteArray)", "1slotLongTTSTaskStatusFail(QByteArray)"};

constexpr ServiceEnvelope::Texts ttsTexts{"slotTTSSuc",
                                          "[error]slotTTSSuc failed:retCode=", ",msg="};
constexpr ServiceEnvelope::Texts longTTSTaskTexts{"slotLongTTSTaskSuc",
                                                  "[error]slotLongTTSTaskSuc failed:", ","};
constexpr ServiceEnvelope::Texts longTTSTaskStatusTexts{
    "slotLongTTSTaskStatusSuc", "[error]slotLongTTSTaskStatusSuc failed:retCode=", ",msg="};

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
    if (const auto data = ServiceEnvelope::read(jsonStr, ttsTexts))
        Q_EMIT signalTTSRet(TTS_SUCCESS, data->toObject().value(QLatin1String("audio")).toString());
    else
        Q_EMIT signalTTSRet(TTS_FAILED, QString());
}

void VoNetworker::slotTTSFail(QByteArray failInfo)
{
    ServiceLog::failure("VoNetworker::slotTTSFail", failInfo);
    Q_EMIT signalTTSRet(TTS_FAILED, QString());
}

void VoNetworker::LongTTSTask(TTSParams *params, qint64 token)
{
    QJsonObject body = synthesisBody(longSynthesis, *params);
    body.insert(QStringLiteral("enable_subtitle"), QStringLiteral("false")); // a word, no boolean
    ServiceLog::begin("VoNetworker::LongTTSTask", body);
    issue(longTTSTask, authorizedHeaders(token), body);
}

void VoNetworker::slotLongTTSTaskSuc(QByteArray jsonStr)
{
    if (const auto data = ServiceEnvelope::read(jsonStr, longTTSTaskTexts))
        Q_EMIT signalLongTTSTask(LONG_TTS_SUCCESS,
                                 data->toObject().value(QLatin1String("task_id")).toString());
    else
        Q_EMIT signalLongTTSTask(LONG_TTS_FAILED, QString());
}

void VoNetworker::slotLongTTSTaskFail(QByteArray failInfo)
{
    ServiceLog::failure("VoNetworker::slotLongTTSTaskFail", failInfo);
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
    const auto data = ServiceEnvelope::read(jsonStr, longTTSTaskStatusTexts);
    if (!data) {
        Q_EMIT signalGetLongTTSResult(LONG_TTS_FAILED, QString(), QString(), QString());
        return;
    }
    const TaskReply task(data->toObject());
    switch (task.state) {
    case TaskState::Processing:
        Q_EMIT signalGetLongTTSResult(LONG_TTS_PROCESSING, task.taskId, task.requestId, QString());
        break;
    case TaskState::Succeeded:
        Q_EMIT signalGetLongTTSResult(
            LONG_TTS_SUCCESS, task.taskId, task.requestId,
            data->toObject().value(QLatin1String("audio_address")).toString());
        break;
    case TaskState::Failed:
        Q_EMIT signalGetLongTTSResult(LONG_TTS_FAILED, task.taskId, task.requestId, QString());
        break;
    }
}

void VoNetworker::slotLongTTSTaskStatusFail(QByteArray failInfo)
{
    ServiceLog::failure("VoNetworker::slotLongTTSTaskStatusFail", failInfo);
    Q_EMIT signalGetLongTTSResult(LONG_TTS_FAILED, QString(), QString(), QString());
}

bool VoNetworker::DownloadLongTTSRet(QString fileUrl, QString saveDir)
{
    constexpr const char *tag = "VoNetworker::DownloadLongTTSRet";
    qDebug() << tag << "fileUrl=" << fileUrl << ",saveDir=" << saveDir;
    const FileFetch::Result result = FileFetch::fetch(fileUrl, tag);
    return result.error == QNetworkReply::NoError
           && FileFetch::save(result.body, saveDir, tag, "open file error,");
}
