// An allocator that fails on request, for test programs linked with
// -Wl,--wrap=malloc,--wrap=calloc,--wrap=realloc. Only the library's own calls count.
#ifndef TESTS_SUPPORT_FAILING_MEMORY_H
#define TESTS_SUPPORT_FAILING_MEMORY_H

// The allocation that follows `passing` successful ones fails, once; -1: none does.
void FailAllocationAfter(int passing);
// Whether the failure has happened.
bool AllocationHasFailed();

#endif
