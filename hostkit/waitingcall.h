#pragma once

#include "hostkit/reason.h"

#include <QThread>

#include <functional>

class VoNetworkIntf;

/// Runs what waits in a nested event loop in a thread of its own, with a service object of its own:
/// the thread of the host goes on, calls never meet in one service object, and each can be ended.
/// finished() says that it is done. The destruction ends the wait.
class WaitingCall : public QThread
{
    Q_OBJECT
    Q_DISABLE_COPY(WaitingCall)

public:
    using Call = std::function<void(VoNetworkIntf *service)>;

    WaitingCall(Call call, QObject *parent);
    ~WaitingCall() override;

    /// What the library said of a failure during the call. To be asked after finished().
    Reason reason() const;

protected:
    void run() override;

private:
    Call m_call;
    Reason m_reason;
};
