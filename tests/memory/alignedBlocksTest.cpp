// Aligned blocks for applications, with and without memory shared with the DSP.
#include "frame/scratch.h"
#include "memory/heapWatch.h"

#include <gtest/gtest.h>

#include <limits>
#include <string.h>

namespace odx::test
{

namespace
{

uintptr_t address(const void* pointer)
{
    return reinterpret_cast<uintptr_t>(pointer);
}

struct Pair {
    const char* name;
    void* (*allocate)(size_t nBytes, size_t alignment);
    void (*release)(void* ptr);
};
const Pair kPairs[] = {{"odxMemAlign", odxMemAlign, odxMemAlignFree}, {"odxMemAlloc", odxMemAlloc, odxMemFree}};

class AlignedBlocks : public testing::Test
{
protected:
    void TearDown() override { EXPECT_EQ(0u, heapReport().liveBlocks); }
};

TEST_F(AlignedBlocks, AreAlignedAndKnowWhereTheirRawBlockBegins)
{
    for (const Pair& pair : kPairs) {
        for (size_t alignment = 1; alignment <= 128; alignment *= 2) {
            for (const size_t size : {0, 1, 63, 64, 5000}) {
                SCOPED_TRACE(pair.name + std::string(" ") + std::to_string(size) + " by " +
                             std::to_string(alignment));
                auto* const block = static_cast<uint8_t*>(pair.allocate(size, alignment));
                ASSERT_NE(nullptr, block);
                const HeapReport report = heapReport();
                EXPECT_EQ(size + alignment + 1, report.lastBytes);
                EXPECT_EQ((address(report.lastBlock) + alignment + 1) / alignment * alignment, address(block));
                EXPECT_EQ(address(report.lastBlock) + block[-1], address(block));
                EXPECT_LE(2, block[-1]);
                memset(block, 0xFF, size);
                pair.release(block);
                EXPECT_EQ(report.frees + 1, heapReport().frees);
            }
        }
    }
}

TEST_F(AlignedBlocks, AreRefusedWhenTheyCannotBeMade)
{
    constexpr size_t kMax = std::numeric_limits<size_t>::max();
    const std::pair<size_t, size_t> requests[] = {
        {100, 0},  {100, 3},          {100, 24},       {100, 129},  {100, 256},
        {kMax, 1}, {kMax - 128, 128}, {kMax - 16, 16}, {100, kMax}, {100, kMax / 2 + 1}};
    for (const Pair& pair : kPairs) {
        SCOPED_TRACE(pair.name);
        const unsigned before = allocationCount();
        for (const auto& [size, alignment] : requests)
            EXPECT_EQ(nullptr, pair.allocate(size, alignment));
        EXPECT_EQ(before, allocationCount());
        const NoMemory noMemory;
        EXPECT_EQ(nullptr, pair.allocate(100, 16));
        pair.release(nullptr);
    }
}

// A shared-memory allocator with a single block.
struct {
    bool lent;
    unsigned requests, releases;
    alignas(128) uint8_t block[256];
} sharedMemory;

void* sharedAlloc(size_t nBytes, size_t alignment)
{
    ++sharedMemory.requests;
    if (sharedMemory.lent || nBytes > sizeof sharedMemory.block || alignment > 128) return nullptr;
    sharedMemory.lent = true;
    return sharedMemory.block;
}

int sharedFree(void* ptr)
{
    ++sharedMemory.releases;
    if (ptr != sharedMemory.block) return -1;
    sharedMemory.lent = false;
    return 0;
}

TEST_F(AlignedBlocks, ComeFromSharedMemoryFirst)
{
    odxSharedMemAlloc_ = sharedAlloc;
    odxSharedMemFree_ = sharedFree;
    const unsigned before = heapReport().allocations;
    void* const shared = odxMemAlloc(200, 64);
    EXPECT_EQ(sharedMemory.block, shared);
    EXPECT_EQ(before, heapReport().allocations);

    void* const own = odxMemAlloc(200, 64); // shared memory is used up
    EXPECT_EQ(2u, sharedMemory.requests);
    EXPECT_EQ(before + 1, heapReport().allocations);

    void* const alignedOnly = odxMemAlign(200, 64);
    EXPECT_EQ(2u, sharedMemory.requests);
    odxMemAlignFree(alignedOnly);
    odxMemFree(nullptr);
    EXPECT_EQ(0u, sharedMemory.releases);

    odxMemFree(own);
    EXPECT_TRUE(sharedMemory.lent);
    odxMemFree(shared);
    EXPECT_FALSE(sharedMemory.lent);
    EXPECT_EQ(2u, sharedMemory.releases);
    // One half of shared memory is none.
    odxSharedMemFree_ = nullptr;
    odxMemFree(odxMemAlloc(10, 8));
    odxSharedMemAlloc_ = nullptr;
    odxSharedMemFree_ = sharedFree;
    odxMemFree(odxMemAlloc(10, 8));
    odxSharedMemFree_ = nullptr;
    EXPECT_EQ(2u, sharedMemory.requests);
    EXPECT_EQ(2u, sharedMemory.releases);
}

} // namespace

} // namespace odx::test
