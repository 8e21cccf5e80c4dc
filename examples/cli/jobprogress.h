#pragma once

#include "hostkit/job.h"
#include "transferprogress.h"

#include <QObject>
#include <QString>

#include <optional>

class Progress;

/// The line about a job.
class JobProgress : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(JobProgress)

public:
    /// @p asking is shown while nothing is known of a request.
    JobProgress(Progress *progress, const QString &asking, QObject *parent);

    void show(Job::Stage stage, qint64 done, qint64 total);

private:
    Progress *m_progress;
    QString m_asking;
    std::optional<TransferProgress> m_transfer;
    qint64 m_transferBegan = 0; ///< Bytes that were there before.
};
