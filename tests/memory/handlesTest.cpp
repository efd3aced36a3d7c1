// Handles that programs hold: however many of them live, and wherever the memory ends, nothing is left behind.
#include "memory/heapWatch.h"

#include "cpu/ondrixMserFxpC.h"
#include "ondrix/descriptors.h"
#include "ondrix/modes.h"
#include "ondrix/mser.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <stdlib.h>

namespace odx::test
{

namespace
{

struct Lives {
    static constexpr unsigned kMost = 80;
    std::mt19937 random{1};
    uint8_t pixels[kMost * kMost];
    int8_t vectors[kMost * 36];
    float lengths[kMost];
    unsigned used = 0;

    unsigned below(unsigned n) { return static_cast<unsigned>(random() % n); }

    void ofRegions()
    {
        const unsigned width = 51 + below(kMost - 51), height = 6 + below(kMost - 6);
        void* handle = nullptr;
        {
            std::optional<NoMemory> noMemory;
            if (below(3) == 0) noMemory.emplace(below(6));
            (below(2) != 0 ? odxMserInit : odxMserNN8Init)(width, height, 1 + int(below(9)), 2, 200, 0.5f, 0.2f,
                                                           &handle);
        }
        if (handle == nullptr) return;
        uint32_t count, points[200], array[2000];
        for (unsigned uses = below(3); uses > 0; --uses, ++used)
            odxMseru8(handle, pixels, width, height - below(6), kMost, below(200), &count, points, below(1000),
                      array);
        odxMserRelease(handle);
    }

    // The third block, of a few bytes, ends the process where there is none.
    void ofTrees()
    {
        const int count = int(below(kMost));
        odxKDTree36s8f32* tree = nullptr;
        std::optional<NoMemory> noMemory;
        if (const unsigned served = below(21); served < 8 && served != 2) noMemory.emplace(served);
        odxKDTreeCreate36s8f32(vectors, lengths, count, &tree);
        uint32_t found;
        int32_t indices[kMost];
        float distances[kMost];
        for (unsigned uses = below(3); uses > 0 && tree != nullptr; --uses, ++used)
            odxKDTreeQuery36s8f32(tree, vectors, 0.01f, int(below(kMost)), 5, int(below(40)), 0, &found, indices,
                                  distances);
        odxKDTreeDestroy36s8f32(tree);
    }
};

} // namespace

TEST(Handles, OfRegionsSayWhyThereAreNone)
{
    const std::string missing = "ERROR: out of memory initializing MSER.\n";
    const struct {
        unsigned served, width;
        std::string text;
    } rows[] = {{0, 51, "ERROR: Cannot allocate MSER handle.\n"},
                {1, 51, missing},
                {2, 51, missing},
                {3, 51, missing},
                {4, 51, missing},
                {5, 50, "ERROR: image width must be greater than 50 for MSER.\n"}};
    for (const auto& row : rows) {
        const size_t before = heapReport().liveBlocks;
        void* handle = &handle;
        LogCapture log;
        const NoMemory noMemory(row.served);
        EXPECT_EQ(0u, odxMserInitC(row.width, 6, 2, 3, 200, 0.5f, 0.2f, &handle));
        EXPECT_EQ(nullptr, handle);
        EXPECT_EQ(before, heapReport().liveBlocks);
        EXPECT_EQ(row.text, log.take().at(0).text);
    }
}

// ONDRIX_TEST_LIVES sets how many.
TEST(Handles, LeaveNothingBehind)
{
    ASSERT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_CPU));
    static Lives lives;
    for (uint8_t& pixel : lives.pixels)
        pixel = static_cast<uint8_t>(lives.below(8));
    for (int8_t& element : lives.vectors)
        element = static_cast<int8_t>(lives.random());
    for (float& length : lives.lengths)
        length = 0.01f;
    LogCapture log;
    const size_t before = heapReport().liveBlocks;
    const char* const text = getenv("ONDRIX_TEST_LIVES");
    for (long left = text != nullptr ? strtol(text, nullptr, 10) : 2000; left > 0; --left) {
        if (lives.below(2) != 0) {
            lives.ofRegions();
        } else {
            lives.ofTrees();
        }
        log.take();
        ASSERT_EQ(before, heapReport().liveBlocks);
    }
    EXPECT_GT(lives.used, 0u);
}

} // namespace odx::test
