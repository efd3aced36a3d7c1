// The road of a call: choice of the implementation, trace, checks, and the way to the implementation.
#include "frame/entry.h"

#include "ondrix.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

#include <string.h>
#include <utility>

using namespace odx;
using namespace odx::test;

namespace
{

// Each column holds a function of its own, which tells by its result that it was called.
template <class Source, uint32_t impl>
uint32_t columnOf(const Source*, uint32_t)
{
    return 100 + impl;
}

class Entry : public testing::Test
{
protected:
    ~Entry() override
    {
        memset(&odxFuncTable, 0, sizeof odxFuncTable);
        memset(odxImplTable, 0, sizeof odxImplTable);
        HW_constraint_checks_enable = 1;
        libLogPrint = 0;
    }

    template <class Function>
    static void set(uint32_t slot, uint32_t impl, Function* function)
    {
        odxFuncTable.entry[slot * kImplementations + impl] = reinterpret_cast<void*>(function);
    }

    template <class Source, uint32_t... impl>
    static void fill(uint32_t slot, std::integer_sequence<uint32_t, impl...>)
    {
        (set(slot, impl, columnOf<Source, impl>), ...);
    }

    alignas(16) uint8_t buffer[16] = {};
};

} // namespace

// Which calls keep the index that was selected, and what they say, is the matter of the tests of entry points.
TEST_F(Entry, CallsTheColumnOfTheIndex)
{
    constexpr auto columns = std::make_integer_sequence<uint32_t, kImplementations>();
    fill<uint8_t>(op_odxBitCountu8, columns);
    fill<uint32_t>(op_odxBitCountu32, columns);
    for (uint32_t impl = 0; impl < kImplementations; ++impl) {
        odxImplTable[op_odxBitCountu8] = odxImplTable[op_odxBitCountu32] = impl;
        EXPECT_EQ(100 + impl, odxBitCountu8(buffer, 100000));
        EXPECT_EQ(100 + impl, odxBitCountu32(reinterpret_cast<const uint32_t*>(buffer), 100000));
        EXPECT_EQ(impl == ODX_IMPL_CPU || impl == ODX_IMPL_GPU ? 100 + impl : 101, odxBitCountu8(buffer, 1));
    }
}

TEST_F(Entry, AnUnhandledStatusCallGoesToTheSimdColumn)
{
    using Median = decltype(odxFilterMedian3x3u8_v3C);
    static int simdCalls;
    static odxStatus simdStatus;
    simdCalls = 0;
    const auto simd = [](const uint8_t*, uint32_t width, uint32_t, uint32_t srcStride, uint8_t*,
                         uint32_t dstStride, odxBorderType border, uint32_t borderValue) {
        ++simdCalls;
        EXPECT_EQ(8u, width);
        EXPECT_EQ(8u, srcStride); // the defaulted arguments are what every implementation receives
        EXPECT_EQ(9u, dstStride);
        EXPECT_EQ(ONDRIX_BORDER_CONSTANT, border);
        EXPECT_EQ(77u, borderValue);
        return simdStatus;
    };
    const auto remote = [](const uint8_t*, uint32_t, uint32_t height, uint32_t, uint8_t*, uint32_t, odxBorderType,
                           uint32_t) { return height == 1 ? ONDRIX_FAILURE : ONDRIX_UNSUPPORTED_HERE; };
    HW_constraint_checks_enable = 0;
    odxImplTable[op_odxFilterMedian3x3u8_v3] = ODX_IMPL_XDSP;
    set<Median>(op_odxFilterMedian3x3u8_v3, ODX_IMPL_ORLAN, simd);
    set<Median>(op_odxFilterMedian3x3u8_v3, ODX_IMPL_XDSP, remote);

    libLogPrint = 1;
    LogCapture log;
    for (const odxStatus status : {ONDRIX_SUCCESS, ONDRIX_NO_MEMORY}) {
        simdStatus = status;
        EXPECT_EQ(status, odxFilterMedian3x3u8_v3(buffer, 8, 2, 0, buffer, 9, ONDRIX_BORDER_CONSTANT, 77));
    }
    EXPECT_EQ(2, simdCalls);
    EXPECT_EQ(2u, log.take().size()); // one trace line a call

    EXPECT_EQ(ONDRIX_FAILURE, odxFilterMedian3x3u8_v3(buffer, 8, 1, 0, buffer, 9, ONDRIX_BORDER_CONSTANT, 77));
    EXPECT_EQ(2, simdCalls);
}
