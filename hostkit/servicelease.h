#pragma once

#include "network/vonetworkintf.h"

#include <QObject>
#include <QPointer>

class HostKit;

/// A service object that nobody else asks meanwhile: an answer says neither what was asked nor by
/// whom. It goes back when it has answered; where an answer is due, it is released, which ends the
/// request.
class ServiceLease : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ServiceLease)

public:
    ServiceLease(HostKit *kit, QObject *parent);
    ~ServiceLease() override;

    /// Calls @p question with the service object, and @p handler with what its signal @p answer
    /// brings, once. One question at a time. The lease may be deleted in @p handler.
    template <typename Answer, typename Question, typename Handler>
    void ask(Answer answer, const Question &question, const Handler &handler)
    {
        m_answer = connect(m_service, answer, this, [this, handler](auto... values) {
            disconnect(m_answer);
            m_isPending = false;
            handler(values...);
        });
        m_isPending = true;
        question(m_service);
    }

private:
    QPointer<HostKit> m_kit;
    VoNetworkIntf *m_service;
    QMetaObject::Connection m_answer;
    bool m_isPending = false;
};
