#include "hostkit/servicejob.h"

#include "hostkit/failurereasons.h"
#include "hostkit/hostkit.h"
#include "hostkit/servicelease.h"
#include "hostkit/tokenkeeper.h"
#include "hostkit/waitingcall.h"

ServiceJob::ServiceJob(HostKit *kit, QObject *parent)
    : Job(parent)
    , m_kit(kit)
{
}

HostKit *ServiceJob::kit() const { return m_kit; }

ServiceLease *ServiceJob::service()
{
    if (!m_service)
        m_service = new ServiceLease(m_kit, work());
    return m_service;
}

void ServiceJob::withToken(const std::function<void(qint64 token)> &use)
{
    m_use = use;
    m_kit->tokens()->give(
        work(),
        [this, use](qint64 token) {
            m_token = token;
            use(token);
        },
        [this](const Reason &reason) { fail(reason); });
}

void ServiceJob::failAsTold()
{
    const Reason reason = FailureReasons::take();
    const bool mayRenew = m_use && !m_hasRenewed && m_kit->tokens()->usesSession();
    if (reason.code != Reason::unauthorized || !mayRenew) {
        fail(reason.isNone() ? notAnswered() : reason);
        return;
    }
    m_hasRenewed = true;
    const auto use = m_use; // it may delete the job
    m_kit->tokens()->renew(m_token, work(), use, [this](const Reason &reason) { fail(reason); });
}

void ServiceJob::runWaiting(const std::function<void(VoNetworkIntf *service)> &call,
                            const std::function<void(const Reason &reason)> &done)
{
    auto *waiting = new WaitingCall(call, work());
    connect(waiting, &WaitingCall::finished, work(), [waiting, done] { done(waiting->reason()); });
    waiting->start();
}

Reason ServiceJob::notAnswered()
{
    return {Reason::Kind::BadAnswer, tr("the service refused or sent no usable answer")};
}
