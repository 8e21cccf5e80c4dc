#pragma once

#include <QString>

class QJsonObject;

/// How a task on the service is getting on.
enum class TaskState {
    Processing, ///< Queued or running.
    Succeeded,
    Failed, ///< Also every state that the service is not known to report.
};

/// What the replies about recognition and synthesis tasks have in common.
struct TaskReply
{
    explicit TaskReply(const QJsonObject &data);

    TaskState state;
    QString taskId;
    QString requestId;
};
