#include "network/taskreply.h"

#include <QJsonObject>

namespace {

TaskState taskState(const QString &status)
{
    const QString word = status.toUpper();
    if (word == QLatin1String("RUNNING") || word == QLatin1String("QUEUEING"))
        return TaskState::Processing;
    return word == QLatin1String("SUCCESS") ? TaskState::Succeeded : TaskState::Failed;
}

} // namespace

TaskReply::TaskReply(const QJsonObject &data)
    : state(taskState(data.value(QLatin1String("status")).toString()))
    , taskId(data.value(QLatin1String("task_id")).toString())
    , requestId(data.value(QLatin1String("request_id")).toString())
{
}
