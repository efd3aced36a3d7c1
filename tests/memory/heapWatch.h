// What this program asks of the system allocator. The linker hands the malloc family of everything that it links
// statically, the library included, to heapWatch.cpp.
#ifndef ODX_TESTS_MEMORY_HEAP_WATCH_H
#define ODX_TESTS_MEMORY_HEAP_WATCH_H

#include <stddef.h>

namespace odx::test
{

// Allocations so far by the malloc family; those by new go unseen.
unsigned allocationCount();

// While it lives, malloc fails, after it has served so many calls.
class NoMemory
{
public:
    explicit NoMemory(unsigned served = 0);
    ~NoMemory();
    NoMemory(const NoMemory&) = delete;
    NoMemory& operator=(const NoMemory&) = delete;
};

// What the library told the statistics hooks so far.
struct HeapReport {
    unsigned poolsCreated, poolsDestroyed;
    unsigned allocations, frees;
    size_t liveBlocks;
    const void* lastBlock; // of the latest allocation
    size_t lastBytes;
};
HeapReport heapReport();

} // namespace odx::test

#endif
