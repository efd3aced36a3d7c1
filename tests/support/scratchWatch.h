// Requests for temporary memory, counted, and refused where a test wants it.
#ifndef ODX_TESTS_SUPPORT_SCRATCH_WATCH_H
#define ODX_TESTS_SUPPORT_SCRATCH_WATCH_H

#include "frame/scratch.h"

namespace odx::test
{

// While it lives, the request of that number fails, counted from 1 among those for aligned blocks, or for
// unaligned ones; with kAll, each. One at a time.
class ScratchWatch
{
public:
    static constexpr int kAll = -1, kNone = 0;

    explicit ScratchWatch(int number, bool ofAligned = true)
    {
        requests = lent = returned = 0;
        failing = number;
        aligned = ofAligned;
        odxGetScratchBufferAligned_ = [](uint32_t size, uint32_t alignment) -> void* {
            return refuses(true) ? nullptr : local_odxGetScratchBufferAligned(size, alignment);
        };
        odxGetScratchBufferUnaligned_ = [](uint32_t size) -> void* {
            return refuses(false) ? nullptr : local_odxGetScratchBufferUnaligned(size);
        };
        odxReleaseScratchBuffer_ = [](void* block) {
            if (block != nullptr) --lent, ++returned;
            return local_odxReleaseScratchBuffer(block);
        };
    }
    ~ScratchWatch()
    {
        odxGetScratchBufferAligned_ = lendAligned_;
        odxGetScratchBufferUnaligned_ = lendUnaligned_;
        odxReleaseScratchBuffer_ = takeBack_;
    }
    ScratchWatch(const ScratchWatch&) = delete;
    ScratchWatch& operator=(const ScratchWatch&) = delete;

    static inline int lent, returned; // blocks

private:
    static bool refuses(bool ofAligned)
    {
        const bool refused = ofAligned == aligned && (++requests == failing || failing == kAll);
        lent += refused ? 0 : 1;
        return refused;
    }
    static inline int requests, failing;
    static inline bool aligned;
    decltype(odxGetScratchBufferAligned_) lendAligned_ = odxGetScratchBufferAligned_;
    decltype(odxGetScratchBufferUnaligned_) lendUnaligned_ = odxGetScratchBufferUnaligned_;
    decltype(odxReleaseScratchBuffer_) takeBack_ = odxReleaseScratchBuffer_;
};

} // namespace odx::test

#endif
