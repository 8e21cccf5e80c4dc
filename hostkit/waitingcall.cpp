#include "hostkit/waitingcall.h"

#include "hostkit/failurereasons.h"
#include "network/vonetwork.h"

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

// What is to be deleted later goes when the thread ends.
void WaitingCall::run()
{
    VoNetworkIntf *service = VoNetwork::CreateVoNetworkIntf();
    m_call(service);
    m_reason = FailureReasons::take();
    VoNetwork::ReleaseVoNetwork(service);
}
