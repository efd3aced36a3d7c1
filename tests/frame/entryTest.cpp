// The road of a call: choice of the implementation, trace, checks, and the way to the implementation.
#include "frame/entry.h"

#include "ondrix.h"
#include "support/logCapture.h"
#include "support/processors.h"

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

    static void fillColumns()
    {
        constexpr auto columns = std::make_integer_sequence<uint32_t, kImplementations>();
        fill<uint8_t>(op_odxBitCountu8, columns);
        fill<uint32_t>(op_odxBitCountu32, columns);
    }

    template <class Source, uint32_t... impl>
    static void fill(uint32_t slot, std::integer_sequence<uint32_t, impl...>)
    {
        (set(slot, impl, columnOf<Source, impl>), ...);
    }

    // The column that a call takes when `impl` is selected.
    static uint32_t bytes(uint32_t impl, const uint8_t* src, uint32_t length)
    {
        odxImplTable[op_odxBitCountu8] = impl;
        return odxBitCountu8(src, length) - 100;
    }
    static uint32_t words(uint32_t impl, const uint32_t* src, uint32_t length)
    {
        odxImplTable[op_odxBitCountu32] = impl;
        return odxBitCountu32(src, length) - 100;
    }

    alignas(16) uint8_t buffer[16] = {};
    const uint32_t* const word = reinterpret_cast<const uint32_t*>(buffer);
};

LogLine trace(const char* text)
{
    return {6, "ondrix_runtime_log", text};
}
LogLine error(const char* text)
{
    return {6, "ondrix_lib_log", text};
}

uint32_t plainBitCount(const uint8_t* src, size_t length)
{
    uint32_t sum = 0;
    for (size_t i = 0; i < length; ++i) {
        for (int bit = 0; bit < 8; ++bit)
            sum += (src[i] >> bit) & 1;
    }
    return sum;
}

} // namespace

TEST_F(Entry, ReferenceAndSimdIndicesAreNeverNarrowed)
{
    fillColumns();
    for (uint32_t impl : {0u, 1u}) {
        EXPECT_EQ(impl, bytes(impl, buffer + 1, 1));
        EXPECT_EQ(impl, words(impl, word, 100000));
    }
}

TEST_F(Entry, TraceNamesTheNarrowedChoice)
{
    fillColumns();
    LogCapture log;
    bytes(ODX_IMPL_CPU, buffer, 1);
    EXPECT_EQ(std::vector<LogLine>{}, log.take());
    libLogPrint = 1;
    bytes(ODX_IMPL_CPU, buffer, 1);
    bytes(ODX_IMPL_XDSP, buffer, 1);
    bytes(ODX_IMPL_XDSP, buffer, 25345);
    bytes(ODX_IMPL_GPU, buffer, 1);
    words(ODX_IMPL_ADSP, word, 10000);
    words(ODX_IMPL_CDSP, word, 10000);
    words(ODX_IMPL_MDSP, word, 10000);
    EXPECT_EQ((std::vector<LogLine>{trace("odxBitCountu8_CPU"), trace("odxBitCountu8_ORLAN"),
                                    trace("odxBitCountu8_XDSP"), trace("odxBitCountu8_GPU"),
                                    trace("odxBitCountu32_ADSP"), trace("odxBitCountu32_CDSP"),
                                    trace("odxBitCountu32_MDSP")}),
              log.take());
}

TEST_F(Entry, TraceComesBeforeTheRefusal)
{
    fillColumns();
    libLogPrint = 1;
    LogCapture log;
    EXPECT_EQ(0u, odxBitCountu8(nullptr, 5)); // in silence
    EXPECT_EQ(std::vector<LogLine>{trace("odxBitCountu8_CPU")}, log.take());

    odxFilterGaussian5x5u8(nullptr, 8, 8, buffer, 0);
    EXPECT_EQ(
        (std::vector<LogLine>{trace("odxFilterGaussian5x5u8_CPU"),
                              error("Assertion failed @odxFilterGaussian5x5u8: src && dst && width && height "
                                    "&& height > 4 && width > 4\n")}),
        log.take());

    odxFilterGaussian3x3u8(nullptr, 6, 8, buffer, 0); // its test of the width comes before the choice
    EXPECT_EQ(std::vector<LogLine>{error("Error at odxFilterGaussian3x3u8\n")}, log.take());
}

TEST_F(Entry, BeforeAModeIsSelectedEveryCallFailsWithOneLine)
{
    LogCapture log;
    EXPECT_EQ(0u, odxBitCountu8(buffer, 16));
    EXPECT_EQ(std::vector<LogLine>{error("No operation mode selected @odxBitCountu8\n")}, log.take());
    EXPECT_EQ(ONDRIX_BAD_PARAMETER,
              odxFilterMedian3x3u8_v3(buffer, 4, 4, 4, buffer, 4, ONDRIX_BORDER_UNDEFINED, 0));
    EXPECT_EQ(std::vector<LogLine>{error("No operation mode selected @odxFilterMedian3x3u8_v3\n")}, log.take());
    odxFilterGaussian5x5u8(buffer, 8, 8, buffer, 0);
    EXPECT_EQ(1u, log.take().size());
    const float point[] = {4, 4};
    float maxima[1];
    uint32_t count;
    EXPECT_EQ(1u, odxFindMultipleMaximau8(buffer, 8, 8, 0, point, point, 1, 1, 0, 0, maxima, &count));
    EXPECT_EQ(1u, log.take().size());
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

TEST(BitCount, EqualsAPlainLoopInEveryColumn)
{
    onProcessor(kArmSimd, [] {
        std::vector<uint32_t> storage(20000);
        uint32_t state = 1;
        for (uint32_t& value : storage)
            value = state = state * 1664525 + 1013904223;
        std::fill(storage.begin() + 1000, storage.end(), ~0u); // long runs fill narrow counters
        const auto* const source = reinterpret_cast<const uint8_t*>(storage.data());
        const uint32_t size = static_cast<uint32_t>(storage.size());

        for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU}) {
            ASSERT_EQ(0, odxSetOperationMode(mode));
            for (uint32_t offset : {0u, 1u, 3u, 17u}) {
                for (uint32_t length = 0; length < 300; ++length) {
                    ASSERT_EQ(plainBitCount(source + offset, length), odxBitCountu8(source + offset, length));
                    ASSERT_EQ(plainBitCount(source + 4 * offset, 4 * length),
                              odxBitCountu32(storage.data() + offset, length));
                }
            }
            EXPECT_EQ(plainBitCount(source, 4 * size), odxBitCountu8(source, 4 * size));
            EXPECT_EQ(plainBitCount(source, 4 * size), odxBitCountu32(storage.data(), size));
            EXPECT_EQ(0u, odxBitCountu8(nullptr, 8));
            EXPECT_EQ(0u, odxBitCountu32(nullptr, 8));
        }
    });
}
