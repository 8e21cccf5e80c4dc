#pragma once

#include "hostkit/servicejob.h"

#include <QElapsedTimer>
#include <QString>

/// The common part of the jobs that may be tasks of the service. A task is asked after until it is
/// over: every 200 ms at first, then less and less often, every 5 s in the end. It lives on the
/// service: a job that is cancelled or deleted leaves it there, and another takes it up again.
class TaskJob : public ServiceJob
{
    Q_OBJECT
    Q_DISABLE_COPY(TaskJob)

public:
    /// The identifier of the task; empty: none has been named.
    QString task() const;

    /// Lets the job go on with the task @p id of the same kind instead of beginning anew. To be
    /// called before start().
    void takeUp(const QString &id);

Q_SIGNALS:
    /// The service has queued the work as the task @p id.
    void named(const QString &id);

    /// The service has said that the task is queued or runs. It is asked again after a while.
    void processing();

protected:
    /// @p kit outlives the job.
    using ServiceJob::ServiceJob;

    /// Takes up the task, or calls beginAnew().
    void begin() override;

    /// Has the service create a task, or does without one.
    virtual void beginAnew() = 0;

    /// Takes what the service object answers about a new task; @p status 0 is success.
    void onCreated(int status, const QString &id);

    /// Takes what the service object answers about the task; @p status 0 is success, 1 means that
    /// it is queued or runs.
    void onStatus(int status, const QString &id, const QString &result);

    /// Asks the service about the task; onStatus() takes the answer.
    virtual void askAfter(const QString &id, qint64 token) = 0;

    /// The task is done; its @p result is a text or an address.
    virtual void onResult(const QString &result) = 0;

private:
    void follow();
    void wait();
    void onProcessing();

    QString m_id;
    QElapsedTimer m_elapsed;
    int m_interval = 0; ///< Milliseconds to the next question.
};
