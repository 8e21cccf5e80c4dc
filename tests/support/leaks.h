#pragma once

#include <QtGlobal>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

/// What this thread allocates while such an object lives is not reported as leaked. For records
/// that by contract nobody can delete.
class LeaksAllowed
{
    Q_DISABLE_COPY(LeaksAllowed)

public:
#ifdef __SANITIZE_ADDRESS__
    LeaksAllowed() { __lsan_disable(); }
    ~LeaksAllowed() { __lsan_enable(); }
#else
    LeaksAllowed() {}
    ~LeaksAllowed() {}
#endif
};
