#pragma once

#include <QtGlobal>

#include <sys/resource.h>

/// The largest file that programs may write which are started while such an object lives.
class FileSizeLimit
{
    Q_DISABLE_COPY(FileSizeLimit)

public:
    explicit FileSizeLimit(rlim_t bytes);
    ~FileSizeLimit();

private:
    rlimit m_before = {};
};
