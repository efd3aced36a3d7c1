// The scratch pool.
#include "frame/scratch.h"
#include "memory/heapWatch.h"
#include "support/threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <string.h>

namespace odx::test
{

namespace
{

constexpr uint32_t kPoolMarker = 0xCDCDCDCD;
constexpr uint32_t kSystemMarker = 0xABABABAB;
constexpr uint32_t kHeader = 2 * sizeof(void*);
constexpr size_t kEntries = 32;

uint8_t* aligned(uint32_t size, uint32_t alignment)
{
    return static_cast<uint8_t*>(odxGetScratchBufferAligned_(size, alignment));
}
uint8_t* unaligned(uint32_t size)
{
    return static_cast<uint8_t*>(odxGetScratchBufferUnaligned_(size));
}
bool release(void* block)
{
    return odxReleaseScratchBuffer_(block) == 1;
}

uint32_t marker(const uint8_t* block)
{
    uint32_t value;
    memcpy(&value, block - kHeader, sizeof value);
    return value;
}
const void* origin(const uint8_t* block)
{
    const void* value;
    memcpy(&value, block - sizeof value, sizeof value);
    return value;
}

bool poolExists()
{
    const HeapReport report = heapReport();
    return report.poolsCreated != report.poolsDestroyed;
}

// Where a block lies in the raw block that was allocated for it.
void expectLatestAllocation(const uint8_t* block, uint32_t size, uint32_t alignment)
{
    const HeapReport report = heapReport();
    EXPECT_EQ(size + alignment - 1 + kHeader, report.lastBytes);
    const auto raw = reinterpret_cast<uintptr_t>(report.lastBlock);
    const auto expected = (raw + kHeader + alignment - 1) / alignment * alignment;
    EXPECT_EQ(expected, reinterpret_cast<uintptr_t>(block));
}

// Every test begins and ends without a pool, and leaves nothing allocated.
class ScratchPool : public testing::Test
{
protected:
    void SetUp() override { ASSERT_FALSE(poolExists()); }
    void TearDown() override
    {
        EXPECT_FALSE(poolExists());
        EXPECT_EQ(0u, heapReport().liveBlocks);
    }
};

TEST_F(ScratchPool, AbsentBlocksComeFromTheSystemAndGoBack)
{
    for (const auto& [size, alignment] : {std::pair{100u, 64u}, {100, 1}, {0, 16}, {1, 4096}}) {
        uint8_t* const block = aligned(size, alignment);
        expectLatestAllocation(block, size, alignment);
        EXPECT_EQ(kSystemMarker, marker(block));
        EXPECT_EQ(heapReport().lastBlock, origin(block));
        memset(block, 0xFF, size);
        EXPECT_TRUE(release(block));
        EXPECT_EQ(0u, heapReport().liveBlocks);
    }
    // No powers of two: as an alignment of 1, and as the unaligned request.
    for (const uint32_t alignment : {24u, 0u, 0x80000001u}) {
        uint8_t* const block = aligned(100, alignment);
        expectLatestAllocation(block, 100, 1);
        EXPECT_TRUE(release(block));
    }
    uint8_t* const block = unaligned(100);
    expectLatestAllocation(block, 100, 1);
    EXPECT_TRUE(release(block));

    const unsigned before = allocationCount();
    EXPECT_EQ(nullptr, unaligned(UINT32_MAX));
    for (const auto& [size, alignment] : {std::pair{0u, 1u}, {64, 64}, {0, 0x80000000}})
        EXPECT_EQ(nullptr, aligned(UINT32_MAX - size, alignment));
    EXPECT_EQ(before, allocationCount());
}

TEST_F(ScratchPool, KeepsAndGrowsItsBlocks)
{
    EXPECT_EQ(1, odxMemInit());
    uint8_t* const first = aligned(100, 16);
    expectLatestAllocation(first, 100, 16);
    EXPECT_EQ(kPoolMarker, marker(first));
    const void* const entry = origin(first);
    memset(first, 0xFF, 100);
    EXPECT_TRUE(release(first));
    EXPECT_EQ(1u, heapReport().liveBlocks);

    const unsigned before = allocationCount();
    for (const auto& [size, alignment] : {std::pair{100u, 16u}, {7, 8}, {0, 1}, {99, 24}, {100, 1}}) {
        uint8_t* const block = alignment == 1 ? unaligned(size) : aligned(size, alignment);
        EXPECT_EQ(first, block);
        EXPECT_EQ(kPoolMarker, marker(block));
        EXPECT_EQ(entry, origin(block));
        EXPECT_TRUE(release(block));
    }
    EXPECT_EQ(before, allocationCount());

    // One byte more: the entry gets a new block and the old one is freed.
    uint8_t* const grown = unaligned(101);
    expectLatestAllocation(grown, 101, 1);
    EXPECT_EQ(entry, origin(grown));
    EXPECT_EQ(1u, heapReport().liveBlocks);
    EXPECT_TRUE(release(grown));
    EXPECT_EQ(0, odxMemDeInit());
}

TEST_F(ScratchPool, KeepsItsCapacityWhenItRealigns)
{
    odxMemInit();
    EXPECT_TRUE(release(unaligned(1000)));
    uint8_t* const page = aligned(10, 1u << 20);
    expectLatestAllocation(page, 1000, 1u << 20);
    EXPECT_EQ(1u, heapReport().liveBlocks);
    EXPECT_TRUE(release(page));

    const unsigned before = allocationCount();
    uint8_t* const again = unaligned(1000);
    EXPECT_EQ(before, allocationCount());
    memset(again, 0xFF, 1000);
    EXPECT_TRUE(release(again));

    uint8_t* const empty = aligned(0, 16);
    uint8_t* const emptyToo = aligned(0, 16); // from an entry that never held memory
    EXPECT_NE(nullptr, emptyToo);
    EXPECT_NE(empty, emptyToo);
    release(empty);
    release(emptyToo);
    odxMemDeInit();
}

TEST_F(ScratchPool, LendsThirtyTwoBlocks)
{
    odxMemInit();
    std::vector<uint8_t*> lent;
    for (size_t i = 0; i < kEntries; ++i) {
        lent.push_back(i % 2 == 0 ? aligned(64, 64) : unaligned(64));
        ASSERT_NE(nullptr, lent.back());
        for (size_t j = 0; j < i; ++j)
            ASSERT_NE(origin(lent[j]), origin(lent[i]));
    }
    EXPECT_EQ(nullptr, aligned(64, 64));
    EXPECT_EQ(nullptr, unaligned(1));
    EXPECT_TRUE(release(lent[17]));
    uint8_t* const next = unaligned(64);
    EXPECT_EQ(lent[17], next);
    for (uint8_t* const block : lent)
        EXPECT_TRUE(release(block));
    odxMemDeInit();
}

TEST_F(ScratchPool, SurvivesFailedAllocations)
{
    const auto withoutMemory = [](auto&& request) {
        const NoMemory noMemory;
        return request();
    };
    EXPECT_EQ(nullptr, withoutMemory([] { return aligned(100, 16); }));
    EXPECT_EQ(nullptr, withoutMemory([] { return unaligned(100); }));

    odxMemInit();
    EXPECT_EQ(nullptr, withoutMemory([] { return aligned(100, 16); }));
    uint8_t* const block = aligned(100, 16); // the entry is not lost
    const void* const entry = origin(block);
    EXPECT_TRUE(release(block));
    EXPECT_EQ(nullptr, withoutMemory([] { return aligned(101, 16); }));
    EXPECT_EQ(nullptr, withoutMemory([] { return aligned(UINT32_MAX, 16); }));
    // Neither is the block that it had.
    uint8_t* const kept = withoutMemory([] { return aligned(100, 16); });
    EXPECT_EQ(block, kept);
    EXPECT_EQ(entry, origin(kept));
    EXPECT_TRUE(release(kept));
    odxMemDeInit();
}

TEST_F(ScratchPool, IsPreAllocated)
{
    EXPECT_EQ(1, odxMemInitPreAlloc(0));
    EXPECT_EQ(0u, heapReport().liveBlocks);
    EXPECT_TRUE(poolExists());
    EXPECT_EQ(1, odxMemInitPreAlloc(5000));
    EXPECT_EQ(5000 + 15 + kHeader, heapReport().lastBytes);
    const unsigned before = allocationCount();
    uint8_t* const block = aligned(5000, 16);
    EXPECT_EQ(before, allocationCount());
    EXPECT_TRUE(std::all_of(block, block + 5000, [](uint8_t byte) { return byte == 0; }));
    release(block);
    // Stricter alignments find room in it, too, and leave it as it was.
    for (const auto& [size, alignment] : {std::pair{4800u, 128u}, {5000u, 16u}, {4900u, 64u}, {5000u, 1u}}) {
        uint8_t* const other = aligned(size, alignment);
        EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(other) % alignment);
        memset(other, 1, size);
        release(other);
    }
    EXPECT_EQ(before, allocationCount());

    EXPECT_EQ(1, odxMemInitPreAlloc(UINT32_MAX));
    EXPECT_EQ(33177600 + 15 + kHeader, heapReport().lastBytes);
    EXPECT_EQ(1u, heapReport().liveBlocks);
    for (int user = 0; user < 3; ++user)
        odxMemDeInit();
    EXPECT_FALSE(poolExists());

    // The memory cannot be had: the user counts nevertheless.
    const NoMemory noMemory;
    EXPECT_EQ(0, odxMemInitPreAlloc(5000));
    EXPECT_TRUE(poolExists());
    odxMemDeInit();
}

TEST_F(ScratchPool, LivesAsLongAsItHasUsers)
{
    alignas(16) uint8_t foreign[64] = {};
    EXPECT_FALSE(release(nullptr));
    EXPECT_FALSE(release(foreign + 32));
    const unsigned created = heapReport().poolsCreated;
    EXPECT_EQ(0, odxMemDeInit()); // no user
    EXPECT_FALSE(poolExists());
    for (unsigned round = 1; round <= 3; ++round) {
        EXPECT_EQ(1, odxMemInit());
        EXPECT_EQ(1, odxMemInit());
        EXPECT_EQ(created + round, heapReport().poolsCreated);
        release(unaligned(100));
        EXPECT_EQ(0, odxMemDeInit());
        EXPECT_TRUE(poolExists());
        EXPECT_EQ(1u, heapReport().liveBlocks);
        EXPECT_EQ(0, odxMemDeInit());
        EXPECT_FALSE(poolExists());
        EXPECT_EQ(0u, heapReport().liveBlocks);
        EXPECT_EQ(0, odxMemDeInit());
    }
}

TEST_F(ScratchPool, TakesBackBlocksFromBeforeAndAfterItsTime)
{
    uint8_t* const before = aligned(100, 16);
    odxMemInit();
    uint8_t* const during = aligned(100, 16);
    const void* const entry = origin(during);
    EXPECT_TRUE(release(before));
    odxMemDeInit();
    memset(during, 0xFF, 100); // it is still the borrower's
    EXPECT_EQ(1u, heapReport().liveBlocks);

    // So is its entry in later pools.
    odxMemInit();
    uint8_t* const next = aligned(100, 16);
    EXPECT_NE(entry, origin(next));
    EXPECT_TRUE(release(next));
    odxMemDeInit();
    odxMemInit();
    EXPECT_EQ(1u, heapReport().liveBlocks);
    EXPECT_TRUE(release(during));
    EXPECT_EQ(0u, heapReport().liveBlocks);

    uint8_t* const anew = aligned(50, 16);
    EXPECT_EQ(entry, origin(anew));
    expectLatestAllocation(anew, 50, 16);
    EXPECT_TRUE(release(anew));
    EXPECT_FALSE(release(anew)); // twice
    odxMemDeInit();
}

// ---- threads ----

// Takes some blocks at once, more than there are when all threads do; checks that nobody else writes to them.
unsigned borrow(unsigned thread, std::mt19937& random)
{
    constexpr unsigned kBlocks = 12;
    uint8_t* blocks[kBlocks];
    uint32_t sizes[kBlocks];
    unsigned refused = 0;
    for (unsigned i = 0; i < kBlocks; ++i) {
        sizes[i] = 1 + random() % 500;
        blocks[i] = aligned(sizes[i], 1u << random() % 8);
        if (blocks[i] == nullptr) {
            ++refused;
        } else {
            memset(blocks[i], static_cast<int>(thread), sizes[i]);
        }
    }
    for (unsigned i = 0; i < kBlocks; ++i) {
        if (blocks[i] == nullptr) continue;
        EXPECT_EQ(sizes[i], std::count(blocks[i], blocks[i] + sizes[i], static_cast<uint8_t>(thread)));
        EXPECT_TRUE(release(blocks[i]));
    }
    return refused;
}

TEST_F(ScratchPool, ThreadsNeverShareABlockNorWait)
{
    odxMemInit();
    std::atomic<unsigned> refused{0};
    inThreads(6, [&](unsigned thread) {
        std::mt19937 random(thread);
        for (int round = 0; round < 200; ++round)
            refused += borrow(thread, random);
    });
    EXPECT_LE(heapReport().liveBlocks, kEntries);
    odxMemDeInit();
}

TEST_F(ScratchPool, ThreadsBorrowWhileThePoolComesAndGoes)
{
    inThreads(4, [](unsigned thread) {
        std::mt19937 random(thread);
        for (int round = 0; round < 150; ++round) {
            if (thread < 2) {
                EXPECT_EQ(1, odxMemInit());
                EXPECT_EQ(0, odxMemDeInit());
            } else {
                borrow(thread, random);
            }
        }
    });
}

} // namespace

} // namespace odx::test
