#include "AllocationCount.h"

#include <cstddef>

// glibc's other names for its functions: those of this program replace malloc() and so on, count,
// and call these.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);

// For each thread, so that counting takes no lock.
static thread_local long allocations = 0;

void *malloc(std::size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}

void *realloc(void *block, std::size_t size)
{
    ++allocations;
    return __libc_realloc(block, size);
}

void *calloc(std::size_t count, std::size_t size)
{
    ++allocations;
    return __libc_calloc(count, size);
}
}

long allocationCount()
{
    return allocations;
}
