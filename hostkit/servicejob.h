#pragma once

#include "hostkit/job.h"

#include <functional>

class HostKit;
class ServiceLease;
class VoNetworkIntf;

/// The common part of the jobs that ask the service.
class ServiceJob : public Job
{
    Q_OBJECT
    Q_DISABLE_COPY(ServiceJob)

protected:
    /// @p kit outlives the job.
    ServiceJob(HostKit *kit, QObject *parent);

    /// What the jobs of the host share; not owned.
    HostKit *kit() const;

    /// The service object of this job. Nothing else of the job may be pending in it.
    ServiceLease *service();

    /// Calls @p use with a token of the user, or fails.
    void withToken(const std::function<void(qint64 token)> &use);

    /// Fails because of the request that has just failed. Where the service takes the token no
    /// longer, it is renewed instead, and the last withToken() repeated, once in the life of a job.
    void failAsTold();

    /// Runs @p call, which may wait, in another thread with a service object of its own, then
    /// @p done here, with what the library said of a failure. @p call must not touch the job.
    void runWaiting(const std::function<void(VoNetworkIntf *service)> &call,
                    const std::function<void(const Reason &reason)> &done);

    /// The reason of a failure of which the library said nothing.
    static Reason notAnswered();

private:
    HostKit *m_kit;
    ServiceLease *m_service = nullptr; ///< Goes with the work.
    std::function<void(qint64 token)> m_use;
    qint64 m_token = 0;
    bool m_hasRenewed = false;
};
