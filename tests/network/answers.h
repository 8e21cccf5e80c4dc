#pragma once

#include "network/vonetworkintf.h"

#include <QObject>
#include <QStringList>

/// A host that is connected to every signal of a service object. It writes each of them down as
/// "signalShortSTT(0, "text")": statuses as numbers, texts in quotation marks, a record by its
/// fields in their order. Records are deleted once they are written down, as is their receiver's
/// duty.
class Answers : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Answers)

public:
    explicit Answers(VoNetworkIntf *service);

    /// What was emitted so far, in order.
    QStringList calls() const;

    /// Runs the event loop until @p count signals were emitted in all; false when they were not.
    bool waitFor(int count);

Q_SIGNALS:
    void arrived();

private:
    void note(const char *signal, const QStringList &values);

    QStringList m_calls;
};
