#pragma once

#include <QElapsedTimer>
#include <QtGlobal>

/// What this process has used since the meter was made.
class Meter
{
public:
    Meter();

    /// Prints it as one line of JSON: seconds, cpuSeconds (of all threads), memoryBytes (how far
    /// resident memory has risen above where it began), allocations.
    void print() const;

private:
    qint64 m_allocations;
    double m_cpuSeconds;
    qint64 m_residentBytes;
    QElapsedTimer m_timer;
};

/// How many blocks of memory this process has asked for, on any thread: by new, by malloc() and by
/// what gets memory as it does.
qint64 allocationCount();
