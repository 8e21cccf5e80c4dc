#include "benchmarks/meter.h"

#include <atomic>
#include <cstddef>

// A program's own malloc() takes the place of the C library's for all that it loads. These count
// and pass on to the C library, which keeps free(): the blocks are its own.

// NOLINTBEGIN(bugprone-reserved-identifier): the C library's own names
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

std::atomic<qint64> allocations{0};

void count() { allocations.fetch_add(1, std::memory_order_relaxed); }

} // namespace

qint64 allocationCount() { return allocations.load(std::memory_order_relaxed); }

extern "C" {

void *malloc(std::size_t size)
{
    count();
    return __libc_malloc(size);
}

void *calloc(std::size_t number, std::size_t size)
{
    count();
    return __libc_calloc(number, size);
}

void *realloc(void *block, std::size_t size)
{
    count();
    return __libc_realloc(block, size);
}

} // extern "C"
