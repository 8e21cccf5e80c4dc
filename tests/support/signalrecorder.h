#pragma once

#include <QObject>
#include <QStringList>
#include <QVector>

/// Writes down the order and the values of chosen signals of one object, each as
/// "name(argument, argument)". Only what is chosen is connected, so an object that looks at its
/// receivers behaves as it would for a host that is connected to just these.
class SignalRecorder : public QObject
{
public:
    /// @p signatures as the meta-object has them, for example "finished(QByteArray)".
    SignalRecorder(QObject *object, const QStringList &signatures, QObject *parent = nullptr);

    /// What was emitted so far.
    QStringList calls() const;

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override;

private:
    QObject *m_object;
    QVector<int> m_signals;
    QStringList m_calls;
};
