#include "memory/heapWatch.h"

#include "frame/heap.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <limits.h>
#include <mutex>
#include <stdio.h>

namespace
{

std::atomic<unsigned> allocations{0};
std::atomic<unsigned> served{UINT_MAX}; // calls of malloc to come that do not fail

std::mutex reportMutex;
odx::test::HeapReport report;
const void* live[256]; // not a container: those allocate

void replaceLive(const void* block, const void* by)
{
    const auto place = std::find(std::begin(live), std::end(live), block);
    if (place == std::end(live)) {
        fprintf(stderr, "the statistics hooks heard of a block that is not there, or of too many\n");
        abort();
    }
    *place = by;
}

} // namespace

namespace odx::test
{

unsigned allocationCount()
{
    return allocations;
}

NoMemory::NoMemory(unsigned first)
{
    served = first;
}
NoMemory::~NoMemory()
{
    served = UINT_MAX;
}

HeapReport heapReport()
{
    const std::lock_guard lock(reportMutex);
    return report;
}

} // namespace odx::test

extern "C" {

void odxHeapStatsInit()
{
    const std::lock_guard lock(reportMutex);
    ++report.poolsCreated;
}
void odxHeapStatsMalloc(void* block, size_t nBytes)
{
    const std::lock_guard lock(reportMutex);
    ++report.allocations;
    ++report.liveBlocks;
    report.lastBlock = block;
    report.lastBytes = nBytes;
    replaceLive(nullptr, block);
}
void odxHeapStatsFree(void* block)
{
    const std::lock_guard lock(reportMutex);
    ++report.frees;
    --report.liveBlocks;
    replaceLive(block, nullptr);
}
void odxHeapStats()
{
    const std::lock_guard lock(reportMutex);
    ++report.poolsDestroyed;
}

// The linker's names for the allocator, and for what stands in for it.
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void* __real_aligned_alloc(size_t alignment, size_t size);
int __real_posix_memalign(void** block, size_t alignment, size_t size);

void* __wrap_malloc(size_t size)
{
    ++allocations;
    if (served == 0) return nullptr;
    if (served != UINT_MAX) --served;
    return __real_malloc(size);
}
void* __wrap_calloc(size_t count, size_t size)
{
    ++allocations;
    return __real_calloc(count, size);
}
void* __wrap_realloc(void* block, size_t size)
{
    ++allocations;
    return __real_realloc(block, size);
}
void* __wrap_aligned_alloc(size_t alignment, size_t size)
{
    ++allocations;
    return __real_aligned_alloc(alignment, size);
}
int __wrap_posix_memalign(void** block, size_t alignment, size_t size)
{
    ++allocations;
    return __real_posix_memalign(block, alignment, size);
}
}
