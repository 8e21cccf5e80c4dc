#pragma once

#include <QtGlobal>

#if defined(__SANITIZE_ADDRESS__) // gcc
#define VONETWORK_HAS_LEAK_CHECK
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) // clang
#define VONETWORK_HAS_LEAK_CHECK
#endif
#endif

#ifdef VONETWORK_HAS_LEAK_CHECK
#include <sanitizer/lsan_interface.h>
#endif

/// Keeps the leak checker from reporting what this thread allocates while the object lives. For
/// records that by contract nobody can delete.
class LeaksAllowed
{
    Q_DISABLE_COPY(LeaksAllowed)

public:
#ifdef VONETWORK_HAS_LEAK_CHECK
    LeaksAllowed() { __lsan_disable(); }
    ~LeaksAllowed() { __lsan_enable(); }
#else
    // The constructor is not trivial, so that compilers do not call such an object unused.
    LeaksAllowed() {}  // NOLINT(modernize-use-equals-default)
    ~LeaksAllowed() {} // NOLINT(modernize-use-equals-default)
#endif
};
