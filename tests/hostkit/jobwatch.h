#pragma once

#include "hostkit/job.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QVector>

/// What a job emits.
class JobWatch
{
    QVector<QMetaMethod> m_signals;

public:
    explicit JobWatch(Job *job)
        : m_signals(signalsOf(job))
        , successes(job, named("succeeded"))
        , failures(job, &Job::failed)
        , progress(job, &Job::progressed)
    {
    }

    /// How often it has ended.
    int ends() const { return successes.count() + failures.count(); }

    /// Why it has failed; none: it has not.
    Reason reason() const
    {
        return failures.isEmpty() ? Reason() : failures.first().first().value<Reason>();
    }

    /// The signals that kinds of jobs declare.
    const QVector<QMetaMethod> &ownSignals() const { return m_signals; }

    QSignalSpy successes;
    QSignalSpy failures;
    QSignalSpy progress;

private:
    static QVector<QMetaMethod> signalsOf(const Job *job)
    {
        QVector<QMetaMethod> all;
        const QMetaObject *type = job->metaObject();
        for (int i = QObject::staticMetaObject.methodCount(); i < type->methodCount(); ++i) {
            if (type->method(i).methodType() == QMetaMethod::Signal)
                all.append(type->method(i));
        }
        return all;
    }

    QMetaMethod named(const QByteArray &name) const
    {
        for (const QMetaMethod &signal : m_signals) {
            if (signal.name() == name)
                return signal;
        }
        qFatal("there is no signal %s", name.constData());
    }
};
