#include "ending.h"

#include "exitstatus.h"

#include <QCoreApplication>

void Ending::end(int status)
{
    if (m_isDecided)
        return;
    m_isDecided = true;
    QCoreApplication::exit(status);
}

void Ending::fail(const QString &problem)
{
    if (!m_isDecided)
        m_problem = problem;
    end(Failure);
}

QString Ending::problem() const { return m_problem; }
