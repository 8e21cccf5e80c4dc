#pragma once

#include <QJsonValue>
#include <QString>

#include <optional>

class QJsonObject;

/// How a task on the service is getting on. The values are those of STT_STATUS and of
/// LONG_TTS_STATUS.
enum class TaskState : int {
    Succeeded = 0,
    Processing = 1, ///< Queued or running.
    Failed = 2,     ///< Also every state that the service is not known to report.
};

/// What the service says of a recognition or a synthesis task.
struct TaskReply
{
    /// Takes the texts of the result out of the member "data" of a reply.
    using ReadResult = QString (*)(const QJsonObject &data);

    /// Of @p data, the member of a reply that was a success; nothing counts as failed, without
    /// identifiers.
    TaskReply(const std::optional<QJsonValue> &data, ReadResult readResult);

    TaskState state = TaskState::Failed;
    QString taskId;
    QString requestId;
    QString result; ///< Empty unless the task has succeeded.
};
