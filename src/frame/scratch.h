// Temporary memory for algorithms: a pool of reusable blocks.
#ifndef ODX_FRAME_SCRATCH_H
#define ODX_FRAME_SCRATCH_H

#include "ondrix/memory.h"

extern "C" {

// Algorithms take and give back scratch blocks through these three. A request never waits: it returns null when
// every block is lent or memory is short. An alignment that is no power of two counts as 1. A block belongs to the
// thread that took it until that thread returns it; releasing null does nothing.
extern void* (*odxGetScratchBufferAligned_)(uint32_t size, uint32_t alignment);
extern void* (*odxGetScratchBufferUnaligned_)(uint32_t size);
extern int (*odxReleaseScratchBuffer_)(void* block);

void* local_odxGetScratchBufferAligned(uint32_t size, uint32_t alignment);
void* local_odxGetScratchBufferUnaligned(uint32_t size);
int local_odxReleaseScratchBuffer(void* block);

// Allocator of memory shared with the remote processor; null without a session. A free of 0 means that it owned
// the block.
extern void* (*odxSharedMemAlloc_)(size_t nBytes, size_t alignment);
extern int (*odxSharedMemFree_)(void* ptr);
extern void* (*odxSharedMemAllocR_)(size_t nBytes, size_t alignment);
extern int (*odxSharedMemFreeR_)(void* ptr);
}

namespace odx
{

// A scratch block for the lifetime of a scope: `Scratch<float> sums(count); if (!sums) ...`.
template <class T>
class Scratch
{
public:
    [[gnu::always_inline]] explicit Scratch(uint64_t count, uint32_t alignment = 64)
        : block_(count > UINT32_MAX / 2 / sizeof(T) ? nullptr
                                                    : static_cast<T*>(odxGetScratchBufferAligned_(
                                                          static_cast<uint32_t>(count * sizeof(T)), alignment)))
    {
    }
    [[gnu::always_inline]] ~Scratch() { odxReleaseScratchBuffer_(block_); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    [[gnu::always_inline]] explicit operator bool() const { return block_ != nullptr; }
    [[gnu::always_inline]] T* get() const { return block_; }
    [[gnu::always_inline]] T& operator[](size_t i) const { return block_[i]; }

private:
    T* block_;
};

} // namespace odx

#endif
