#include "tests/support/residentmemory.h"

#include "tests/support/testfolder.h"

#include <QList>

qint64 residentMemory()
{
    const QList<QByteArray> fields =
        TestFolder::contents(QStringLiteral("/proc/self/statm")).split(' ');
    return fields.value(1).toLongLong() * 4096;
}
