#pragma once

#include "hostkit/reason.h"

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

    /// Ends with the status of the reason.
    void fail(const Reason &reason);

    /// Why it ends; none: it did not fail.
    Reason reason() const;

private:
    bool m_isDecided = false;
    Reason m_reason;
};
