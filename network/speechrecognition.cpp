#include "network/serviceenvelope.h"
#include "network/servicelog.h"
#include "network/serviceoperation.h"
#include "network/taskreply.h"
#include "network/vonetworker.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

constexpr ServiceOperation shortSTT{HttpMethod::Post, convertServicePrefix, "asr/process",
                                    "ShortSTT", refusalWithComma};
constexpr ServiceOperation createSTTTask{HttpMethod::Post, convertServicePrefix, "asr/process",
                                         "CreateSTTTask", refusalWithComma};
constexpr ServiceOperation getSTTTaskResult{HttpMethod::Post, convertServicePrefix,
                                            "asr/getProcessResult", "GetSTTRet"};

const QLatin1String longRecognition("recordingRecognition");

QJsonObject shortSTTBody(const QString &fileLink, const QString &pageFeature)
{
    return {{QStringLiteral("feature"), QStringLiteral("inWord")},
            {QStringLiteral("file_link"), fileLink},
            {QStringLiteral("pageFeature"), pageFeature}};
}

// The service reads its options as texts, not as JSON booleans.
QJsonObject createSTTTaskBody(const QString &fileLink, const QString &pageFeature)
{
    const QString yes = QStringLiteral("true");
    const QString no = QStringLiteral("false");
    return {{QStringLiteral("feature"), longRecognition},
            {QStringLiteral("file_link"), fileLink},
            {QStringLiteral("enable_words"), yes},
            {QStringLiteral("enable_sample_rate_adaptive"), yes},
            {QStringLiteral("auto_split"), no},
            {QStringLiteral("enable_inverse_text_normalization"), yes},
            {QStringLiteral("enable_disfluency"), no},
            {QStringLiteral("enable_punctuation_prediction"), yes},
            {QStringLiteral("enable_semantic_sentence_detection"), no},
            {QStringLiteral("enable_timestamp_alignment"), no},
            {QStringLiteral("first_channel_only"), yes},
            {QStringLiteral("pageFeature"), pageFeature}};
}

// The service's sentences have their own blanks, so nothing is put between them.
QString joinedSentences(const QJsonObject &data)
{
    const QJsonArray sentences =
        data.value(QLatin1String("result")).toObject().value(QLatin1String("Sentences")).toArray();
    QString text;
    for (const QJsonValue &sentence : sentences)
        text += sentence.toObject().value(QLatin1String("Text")).toString();
    return text;
}

} // namespace

void VoNetworker::ShortSTT(QString fileLink, qint64 token, QString pageFeature)
{
    const QJsonObject body = shortSTTBody(fileLink, pageFeature);
    ServiceLog::begin("VoNetworker::ShortSTT", body);
    issue(shortSTT, authorizedHeaders(token), body);
}

void VoNetworker::slotShortSTTSuc(QByteArray jsonStr)
{
    if (const auto data = ServiceEnvelope::read(jsonStr, shortSTT))
        Q_EMIT signalShortSTT(SHORT_STT_SUCCESS,
                              data->toObject().value(QLatin1String("text")).toString());
    else
        Q_EMIT signalShortSTT(SHORT_STT_FAILED, QString());
}

void VoNetworker::slotShortSTTFail(QByteArray failInfo)
{
    ServiceLog::failure(shortSTT, failInfo);
    Q_EMIT signalShortSTT(SHORT_STT_FAILED, QString());
}

void VoNetworker::CreateSTTTask(QString fileLink, qint64 token, QString pageFeature)
{
    const QJsonObject body = createSTTTaskBody(fileLink, pageFeature);
    ServiceLog::begin("VoNetworker::CreateSTTTask", body);
    issue(createSTTTask, authorizedHeaders(token), body);
}

void VoNetworker::slotCreateSTTTaskSuc(QByteArray jsonStr)
{
    if (const auto data = ServiceEnvelope::read(jsonStr, createSTTTask))
        Q_EMIT signalCreateSTTTask(STT_SUCCESS,
                                   data->toObject().value(QLatin1String("task_id")).toString());
    else
        Q_EMIT signalCreateSTTTask(STT_FAILED, QString());
}

void VoNetworker::slotCreateSTTTaskFail(QByteArray failInfo)
{
    ServiceLog::failure(createSTTTask, failInfo);
    Q_EMIT signalCreateSTTTask(STT_FAILED, QString());
}

void VoNetworker::GetSTTTaskResult(QString taskId, qint64 token)
{
    ServiceLog::begin("VoNetworker::GetSTTTaskResult", taskId);
    issue(getSTTTaskResult, authorizedHeaders(token),
          {{QStringLiteral("feature"), longRecognition}, {QStringLiteral("task_id"), taskId}});
}

void VoNetworker::slotGetSTTRetSuc(QByteArray jsonStr)
{
    const TaskReply task(ServiceEnvelope::read(jsonStr, getSTTTaskResult), joinedSentences);
    Q_EMIT signalGetSTTResult(STT_STATUS(task.state), task.taskId, task.requestId, task.result);
}

void VoNetworker::slotGetSTTRetFail(QByteArray failInfo)
{
    ServiceLog::failure(getSTTTaskResult, failInfo);
    Q_EMIT signalGetSTTResult(STT_FAILED, QString(), QString(), QString());
}
