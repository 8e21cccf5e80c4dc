#include "commands/ending.h"

#include "terminal/exitstatus.h"

#include <QCoreApplication>

void Ending::end(int status)
{
    if (m_isDecided)
        return;
    m_isDecided = true;
    QCoreApplication::exit(status);
}

void Ending::fail(const Reason &reason)
{
    if (!m_isDecided)
        m_reason = reason;
    end(exitStatus(reason.kind));
}

Reason Ending::reason() const { return m_reason; }
