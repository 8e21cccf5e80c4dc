#pragma once

#include <QObject>
#include <QStringList>
#include <QVector>

/// Records chosen signals of one object in their order, each as "name(argument, argument)". It
/// connects to no other signals, because some objects behave by which signals have receivers.
class SignalRecorder : public QObject
{
public:
    /// @p signatures as the meta-object has them, for example "finished(QByteArray)".
    SignalRecorder(QObject *object, const QStringList &signatures, QObject *parent = nullptr);

    /// The signals that were emitted so far.
    QStringList calls() const;

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

private:
    QObject *m_object;
    QVector<int> m_signals;
    QStringList m_calls;
};
