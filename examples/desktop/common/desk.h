#pragma once

#include "hostkit/hostkit.h"
#include "hostkit/job.h"
#include "requests/requestlog.h"

#include <QObject>

class Catalogue;
class ServiceProcess;

/// What all pages share. It outlives them.
class Desk : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Desk)

public:
    explicit Desk(QObject *parent = nullptr);
    ~Desk() override;

    HostKit *kit();
    RequestLog *requests();
    Catalogue *catalogue() const;
    ServiceProcess *service() const;

    /// Whether requests can have a token of a user.
    bool isSignedIn() const;

    /// Starts @p job, lists it as @p operation in the log of requests, and deletes it at its end.
    template <typename J>
    J *run(J *job, const QString &operation)
    {
        const int entry = m_requests.begin(operation);
        connect(job, &J::succeeded, this, [=] { end(job, entry, {}); });
        connect(job, &Job::failed, this, [=](const Reason &reason) { end(job, entry, reason); });
        connect(job, &QObject::destroyed, &m_requests, [=] { m_requests.abandon(entry); });
        job->start();
        return job;
    }

private:
    void end(Job *job, int entry, const Reason &reason);

    HostKit m_kit;
    RequestLog m_requests;
    Catalogue *m_catalogue;    ///< A child.
    ServiceProcess *m_service; ///< A child.
};
