#pragma once

#include <QObject>

/// How the program ends. The first call decides: an interruption makes operations fail, and those
/// failures are not what the user is told.
class Ending : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Ending)

public:
    using QObject::QObject;

    /// Leaves the event loops, also nested ones, with @p status. Must be called inside one.
    void end(int status);

    /// Ends with status Failure. @p problem is a line for the user.
    void fail(const QString &problem);

    /// The line for the user; empty: there is none.
    QString problem() const;

private:
    bool m_isDecided = false;
    QString m_problem;
};
