#include "benchmarks/meter.h"

#include <QByteArray>
#include <QFile>

#include <cstdio>
#include <sys/resource.h>

namespace {

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &time) {
        return double(time.tv_sec) + double(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Linux forgets the peak of resident memory when it is told to.
void forgetPeak()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (!file.open(QFile::WriteOnly | QFile::Unbuffered) || file.write("5") != 1)
        qFatal("cannot reset the peak of memory");
}

qint64 peakBytes()
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QFile::ReadOnly))
        qFatal("cannot read the peak of memory");
    const QByteArray status = file.readAll();
    const QByteArray title = "VmHWM:";
    const QByteArray rest = status.mid(status.indexOf(title) + title.size()).simplified();
    return rest.left(rest.indexOf(' ')).toLongLong() * 1024;
}

} // namespace

Meter::Meter()
{
    forgetPeak();
    m_residentBytes = peakBytes();
    m_allocations = allocationCount();
    m_cpuSeconds = cpuSeconds();
    m_timer.start();
}

void Meter::print() const
{
    const double seconds = double(m_timer.nsecsElapsed()) / 1e9;
    const double cpu = cpuSeconds() - m_cpuSeconds;
    const qint64 allocations = allocationCount() - m_allocations;
    std::printf("{\"seconds\": %.6f, \"cpuSeconds\": %.6f, \"memoryBytes\": %lld, "
                "\"allocations\": %lld}\n",
                seconds, cpu, static_cast<long long>(peakBytes() - m_residentBytes),
                static_cast<long long>(allocations));
}
