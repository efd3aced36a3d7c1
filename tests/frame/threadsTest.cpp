// Calls from many threads at once, between selections of a mode. A race is the thread sanitizer's to find.
#include "support/threads.h"
#include "frame/hardware.h"
#include "frame/log.h"
#include "ondrix.h"
#include "support/logCapture.h"
#include "support/pictures.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace odx::test;

constexpr unsigned kThreads = 8;

TEST(Threads, DetectTheProcessorTogether)
{
    onProcessor(kArmSimd, [] {
        std::vector<unsigned> masks(kThreads);
        inThreads(kThreads, [&](unsigned i) { masks[i] = odxAvailableHardware(ONDRIX_OP_CPU_PERFORMANCE); });
        EXPECT_EQ(std::vector<unsigned>(kThreads, odxAvailableHardware(ONDRIX_OP_CPU_PERFORMANCE)), masks);
        EXPECT_TRUE(masks[0] & ONDRIX_HW_SIMD);
    });
}

TEST(Threads, CallBetweenSelections)
{
    onProcessor(kArmSimd, [] {
        constexpr int kCalls = 10;
        const Grid<uint8_t> src = noise<uint8_t>(96, 40, 0, 255);
        Grid<uint8_t> first(0, 0);

        setenv("VENDOR_RUNTIME_ONDRIX_LOG", "1", 1);
        EXPECT_EQ(1, odxMemInit());
        for (const odxOperationMode mode :
             {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU, ONDRIX_OP_CPU_PERFORMANCE}) {
            ASSERT_EQ(0, odxSetOperationMode(mode));
            LogCapture log;
            std::vector<Grid<uint8_t>> results(kThreads, Grid<uint8_t>(96, 40));
            inThreads(kThreads, [&](unsigned i) {
                for (int call = 0; call < kCalls; ++call) {
                    odxFilterGaussian5x5u8(src.data(), 96, 40, results[i].data(), 1);
                    odxFilterGaussian5x5u8(nullptr, 96, 40, results[i].data(), 1);
                }
            });
            const std::vector<LogLine> lines = log.take();
            EXPECT_EQ(3 * kThreads * kCalls, lines.size()); // two traces and a refusal
            const char* const column = mode == ONDRIX_OP_EXT_REFERENCE ? "_CPU" : "_ORLAN";
            const LogLine trace{6, ODX_RUNTIME_LOG, std::string("odxFilterGaussian5x5u8") + column};
            EXPECT_EQ(2 * kThreads * kCalls, std::count(lines.begin(), lines.end(), trace));
            if (first.width == 0) first = results[0];
            for (const Grid<uint8_t>& result : results)
                EXPECT_EQ(first, result);
            EXPECT_EQ(0, odxCleanUp());
        }
        EXPECT_EQ(0, odxMemDeInit());
    });
}
