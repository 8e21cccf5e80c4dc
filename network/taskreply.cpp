#include "network/taskreply.h"

#include "network/vonetworkintf.h"

#include <QJsonObject>

namespace {

static_assert(int(TaskState::Succeeded) == STT_SUCCESS
              && int(TaskState::Processing) == STT_PROCESSING
              && int(TaskState::Failed) == STT_FAILED);
static_assert(int(TaskState::Succeeded) == LONG_TTS_SUCCESS
              && int(TaskState::Processing) == LONG_TTS_PROCESSING
              && int(TaskState::Failed) == LONG_TTS_FAILED);

TaskState taskState(const QString &status)
{
    const QString word = status.toUpper();
    if (word == QLatin1String("RUNNING") || word == QLatin1String("QUEUEING"))
        return TaskState::Processing;
    return word == QLatin1String("SUCCESS") ? TaskState::Succeeded : TaskState::Failed;
}

} // namespace

TaskReply::TaskReply(const std::optional<QJsonValue> &data, ReadResult readResult)
{
    if (!data)
        return;
    const QJsonObject object = data->toObject();
    state = taskState(object.value(QLatin1String("status")).toString());
    taskId = object.value(QLatin1String("task_id")).toString();
    requestId = object.value(QLatin1String("request_id")).toString();
    if (state == TaskState::Succeeded)
        result = readResult(object);
}
