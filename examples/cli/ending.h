#pragma once

#include <QObject>

/// How the program ends. What happens first decides: an operation that fails because the program
/// was interrupted does not make a failure out of the interruption.
class Ending : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Ending)

public:
    using QObject::QObject;

    /// Leaves the event loops, also nested ones, with @p status. Must be called inside one.
    void end(int status);

    /// The same with status Failure. The line is for the user.
    void fail(const QString &problem);

    /// What there is to say to the user; empty: nothing.
    QString problem() const;

private:
    bool m_isDecided = false;
    QString m_problem;
};
