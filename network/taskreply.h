#pragma once

#include <QJsonValue>
#include <QString>

#include <optional>

class QJsonObject;

/// The state of a task on the service. The values are those of STT_STATUS and LONG_TTS_STATUS.
enum class TaskState : int {
    Succeeded = 0,
    Processing = 1, ///< Queued or running.
    Failed = 2,     ///< Failed, or in a state that is not known.
};

/// What the service says of a recognition or a synthesis task.
struct TaskReply
{
    /// Reads the result of a task that has succeeded from the member "data" of the reply.
    using ReadResult = QString (*)(const QJsonObject &data);

    /// Reads @p data, as ServiceEnvelope::read() gives it. Without a value the task counts as
    /// failed and has no identifiers.
    TaskReply(const std::optional<QJsonValue> &data, ReadResult readResult);

    TaskState state = TaskState::Failed;
    QString taskId;
    QString requestId;
    QString result; ///< Empty unless the task has succeeded.
};
