#pragma once

#include "hostkit/reason.h"

#include <QMutex>
#include <QObject>

#include <functional>
#include <thread>

class QThread;
class VoNetworkIntf;

/// Runs what waits in a nested event loop in a thread of its own, with a service object of its own:
/// the thread of the host goes on, calls never meet in one service object, and each can be ended.
/// The destruction ends the wait, and returns when the thread is over, with all that libraries keep
/// for it: Qt's own threads may still be tidying up when QThread::wait() returns, and a program
/// that ends just then has OpenSSL free the same memory twice.
class WaitingCall : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(WaitingCall)

public:
    using Call = std::function<void(VoNetworkIntf *service)>;

    WaitingCall(Call call, QObject *parent);
    ~WaitingCall() override;

    /// Starts the thread, once.
    void start();

    /// What the library said of a failure during the call. To be asked after finished().
    Reason reason() const;

Q_SIGNALS:
    /// The call is done. Emitted in its thread.
    void finished();

private:
    void run();
    bool beginWaiting();
    void endWaiting();

    Call m_call;
    Reason m_reason;
    QMutex m_mutex;             ///< Guards the next two.
    QThread *m_waits = nullptr; ///< The thread of the call, while it may wait.
    bool m_isEnded = false;     ///< No wait is to begin any more.
    std::thread m_thread;
};
