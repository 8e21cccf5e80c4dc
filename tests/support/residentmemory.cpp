#include "tests/support/residentmemory.h"

#include <QtGlobal>

#ifdef Q_OS_WIN

#include <qt_windows.h>

#include <psapi.h>

qint64 residentMemory()
{
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return qint64(counters.WorkingSetSize);
}

#else

#include "tests/support/testfolder.h"

#include <QList>

qint64 residentMemory()
{
    const QList<QByteArray> fields =
        TestFolder::contents(QStringLiteral("/proc/self/statm")).split(' ');
    return fields.value(1).toLongLong() * 4096;
}

#endif
