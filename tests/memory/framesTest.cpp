// Steady work does not allocate: every operation, called again on frames of a size that it has seen.
#include "memory/heapWatch.h"
#include "ondrix/memory.h"
#include "ondrix/modes.h"
#include "ondrix/smoothing.h"
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
        EXPECT_EQ(0u, allocated) << column.name;
    }
    odxMemDeInit();
}

INSTANTIATE_TEST_SUITE_P(Operations, FramesOfOneSize, testing::ValuesIn(allRows()),
                         [](const auto& row) { return std::string(row.param.operation); });

TEST(FramesWithoutPool, AllocateAndFreeInEveryCall)
{
    const std::vector<float> src(40 * 30, 1);
    std::vector<float> dst(src.size());
    for (const Column& column : allColumns()) {
        column.select();
        for (int frame = 0; frame < 2; ++frame) {
            const HeapReport before = heapReport();
            const unsigned counted = allocationCount();
            odxBoxFilterNxNf32(src.data(), 40, 30, 0, 5, dst.data(), 0);
            EXPECT_EQ(counted + 1, allocationCount()) << column.name;
            EXPECT_EQ(before.allocations + 1, heapReport().allocations) << column.name;
            EXPECT_EQ(before.frees + 1, heapReport().frees) << column.name;
        }
    }
}

} // namespace

} // namespace odx::test
