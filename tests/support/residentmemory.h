#pragma once

#include <QtGlobal>

/// The resident memory of this process, in bytes.
qint64 residentMemory();
