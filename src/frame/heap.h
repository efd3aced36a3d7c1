// The system allocator as the memory services use it: every block is reported to the statistics hooks.
#ifndef ODX_FRAME_HEAP_H
#define ODX_FRAME_HEAP_H

#include <stddef.h>
#include <stdlib.h>

extern "C" {
// The library's own do nothing; a build that measures memory links others in their place. The block and its size
// are what the allocator was asked for, alignment and header included.
void odxHeapStatsInit(); // the scratch pool was created
void odxHeapStatsMalloc(void* block, size_t nBytes);
void odxHeapStatsFree(void* block); // before the block is freed
void odxHeapStats();                // the scratch pool was destroyed
}

namespace odx
{

inline void* heapAlloc(size_t nBytes)
{
    void* const block = malloc(nBytes);
    if (block != nullptr) odxHeapStatsMalloc(block, nBytes);
    return block;
}

inline void heapFree(void* block)
{
    if (block == nullptr) return;
    odxHeapStatsFree(block);
    free(block);
}

} // namespace odx

#endif
