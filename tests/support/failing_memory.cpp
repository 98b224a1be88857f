#include "tests/support/failing_memory.h"

#include <cstddef>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* block, std::size_t size);
}

static int s_passing = -1;
static bool s_failed = false;

void FailAllocationAfter(int passing)
{
    s_passing = passing;
    s_failed = false;
}

bool AllocationHasFailed()
{
    return s_failed;
}

static bool s_mustFail()
{
    if (s_passing < 0 || s_passing-- > 0) return false;
    s_failed = true;
    return true;
}

void* __wrap_malloc(std::size_t size)
{
    return s_mustFail() ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size)
{
    return s_mustFail() ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* block, std::size_t size)
{
    return s_mustFail() ? nullptr : __real_realloc(block, size);
}
