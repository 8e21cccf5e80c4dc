#pragma once

#include <QtGlobal>

#include <sys/resource.h>

/// Limits the size of the files that programs may write which are started while it lives.
class FileSizeLimit
{
    Q_DISABLE_COPY(FileSizeLimit)

public:
    explicit FileSizeLimit(rlim_t bytes);
    ~FileSizeLimit();

private:
    rlimit m_before = {};
};
