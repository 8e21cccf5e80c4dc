#include "hostkit/waitingcall.h"

#include "hostkit/failurereasons.h"
#include "network/vonetwork.h"
#include "network/vonetworkintf.h"

#include <QCoreApplication>

#include <utility>

WaitingCall::WaitingCall(Call call, QObject *parent)
    : QThread(parent)
    , m_call(std::move(call))
{
}

// A thread that quits ends the event loops in it, nested ones too, and those that begin later.
WaitingCall::~WaitingCall()
{
    quit();
    wait();
}

Reason WaitingCall::reason() const { return m_reason; }

// The service object leaves its client to be deleted later, too. Qt does that when the thread ends,
// but not for what has come to be deleted meanwhile.
void WaitingCall::run()
{
    VoNetworkIntf *service = VoNetwork::CreateVoNetworkIntf();
    m_call(service);
    m_reason = FailureReasons::take();
    VoNetwork::ReleaseVoNetwork(service);
    QCoreApplication::sendPostedEvents(service, QEvent::DeferredDelete);
}
