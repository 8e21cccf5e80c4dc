#pragma once

#include "network/vonetworkintf.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>

/// A host that is connected to every signal of a service object. It records each of them as
/// "signalShortSTT(0, "text")": statuses as numbers, texts in quotation marks, a record by its
/// fields in their order, the temporary folder's path as "<temporary>", a local time as "now"
/// when it lies between the construction of this object and the signal.
///
/// It deletes the records that it receives once they are recorded, except those of sign-in codes,
/// which the service object may emit again: these go with this object.
class Answers : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Answers)

public:
    explicit Answers(VoNetworkIntf *service);
    ~Answers() override;

    /// The signals that were emitted so far, in order.
    QStringList calls() const;

    /// Runs the event loop until @p count signals were emitted in all; false when they were not.
    bool waitFor(int count);

    /// The records of codes, each once, in the order of their first emission.
    QList<LoginQrCode *> codes() const;

Q_SIGNALS:
    void arrived();

private:
    void connectSpeech(VoNetworkIntf *service);
    void connectSignIn(VoNetworkIntf *service);
    QString dateText(const QDateTime &date) const;
    void note(const char *signal, const QStringList &values);
    void note(const QString &call);

    QDateTime m_start = QDateTime::currentDateTime();
    QStringList m_calls;
    QList<LoginQrCode *> m_codes;
};
