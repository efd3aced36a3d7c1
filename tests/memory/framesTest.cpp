// Steady work does not allocate: every operation, called again on frames of a size that it has seen.
#include "memory/heapWatch.h"
#include "ondrix/memory.h"
#include "ondrix/modes.h"
#include "ondrix/pyramids.h"
#include "operations/draw.h"

#include <gtest/gtest.h>

namespace odx::test
{

namespace
{

class FramesOfOneSize : public testing::TestWithParam<Row>
{
};

TEST_P(FramesOfOneSize, AllocateNothing)
{
    odxMemInit();
    for (const Column& column : allColumns()) {
        column.select();
        unsigned runs = 0, allocated = 0;
        Draw draw({{97, 62}}, [&](const std::function<void()>& operation) {
            operation();
            operation();
            const unsigned before = allocationCount();
            for (int frame = 0; frame < 3; ++frame)
                operation();
            allocated += allocationCount() - before;
            ++runs;
        });
        GetParam().run(draw);
        EXPECT_LT(0u, runs) << column.name;
        EXPECT_EQ(GetParam().allocates, allocated != 0) << column.name;
    }
    odxMemDeInit();
}

INSTANTIATE_TEST_SUITE_P(Operations, FramesOfOneSize, testing::ValuesIn(allRows()),
                         [](const auto& row) { return std::string(row.param.operation); });

// Whichever allocation fails, nothing stays behind; the packed form leaves the earlier levels to the caller.
TEST(Pyramids, GiveBackWhatTheyTook)
{
    odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE);
    odxPyrLevel packed[4] = {};
    odxPyrLevelStrided levels[4] = {};
    const std::vector<uint8_t> picture(40 * 24, 1);
    for (unsigned served = 0; served < 4; ++served) {
        const size_t before = heapReport().liveBlocks;
        {
            const NoMemory none(served);
            EXPECT_EQ(-1, odxPyramidAllocate(packed, 40, 24, 1, 4, 1));
            EXPECT_EQ(nullptr, packed[served].ptr);
        }
        EXPECT_EQ(before + served, heapReport().liveBlocks);
        odxPyramidDelete(packed, 4, 0);
        for (const unsigned own : {0u, 1u}) {
            const unsigned calls = std::min(served, own + 2);
            {
                const NoMemory none(calls);
                EXPECT_EQ(-1, odxPyramidAllocate_v2(levels, 40, 24, 0, 1, 4, own));
            }
            const NoMemory none(calls);
            EXPECT_EQ(ONDRIX_NO_MEMORY, odxPyramidAllocate_v3(levels, 40, 24, 0, 1, 8, 4, served % 2, own));
            EXPECT_EQ(before, heapReport().liveBlocks);
        }
    }
    EXPECT_EQ(0, odxPyramidAllocate_v3(levels, 40, 24, 0, 1, 8, 4, 1, 0));
    {
        const NoMemory none;
        EXPECT_EQ(ONDRIX_NO_MEMORY, odxPyramidCreateu8_v3(picture.data(), 40, 24, 0, 4, 1, levels));
    }
    odxPyramidDelete_v2(levels, 4, 1);
}

} // namespace

} // namespace odx::test
