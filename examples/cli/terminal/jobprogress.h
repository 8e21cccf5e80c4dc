#pragma once

#include "hostkit/job.h"
#include "terminal/transferprogress.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <optional>

class Progress;

/// The line about a job.
class JobProgress : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(JobProgress)

public:
    /// @p asking is shown while nothing is known of a request; when it is empty, what is waited for
    /// is shown after a while.
    JobProgress(Progress *progress, const QString &asking, QObject *parent);

    void show(Job::Stage stage, qint64 done, qint64 total);

private:
    void showWaiting();

    Progress *m_progress;
    QString m_asking;
    QTimer m_silence; ///< Runs while nothing is shown.
    std::optional<TransferProgress> m_transfer;
    qint64 m_transferBegan = 0; ///< Bytes that were there before.
};
