#include "hostkit/waitingcall.h"

#include "hostkit/failurereasons.h"
#include "network/vonetwork.h"
#include "network/vonetworkintf.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMutexLocker>
#include <QThread>

#include <utility>

WaitingCall::WaitingCall(Call call, QObject *parent)
    : QObject(parent)
    , m_call(std::move(call))
{
}

// A thread that quits ends the event loops in it, nested ones too, and those that begin later.
WaitingCall::~WaitingCall()
{
    {
        const QMutexLocker lock(&m_mutex);
        m_isEnded = true;
        if (m_waits)
            m_waits->quit();
    }
    if (m_thread.joinable())
        m_thread.join();
}

void WaitingCall::start()
{
    m_thread = std::thread([this] { run(); });
}

Reason WaitingCall::reason() const { return m_reason; }

bool WaitingCall::beginWaiting()
{
    const QMutexLocker lock(&m_mutex);
    if (!m_isEnded)
        m_waits = QThread::currentThread();
    return m_waits;
}

void WaitingCall::endWaiting()
{
    const QMutexLocker lock(&m_mutex);
    m_waits = nullptr;
}

// The service object leaves its client to be deleted later, too.
void WaitingCall::run()
{
    VoNetworkIntf *service = VoNetwork::CreateVoNetworkIntf();
    if (beginWaiting())
        m_call(service);
    endWaiting();
    m_reason = FailureReasons::take();
    VoNetwork::ReleaseVoNetwork(service);
    QCoreApplication::sendPostedEvents(service, QEvent::DeferredDelete);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Q_EMIT finished();
}
