#pragma once

#include "hostkit/job.h"
#include "transferprogress.h"

#include <QObject>

#include <optional>

class Progress;

/// The line about a job.
class JobProgress : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(JobProgress)

public:
    JobProgress(Progress *progress, QObject *parent);

    void show(Job::Stage stage, qint64 done, qint64 total);

private:
    Progress *m_progress;
    std::optional<TransferProgress> m_transfer;
    qint64 m_transferBegan = 0; ///< Bytes that were there before.
};
