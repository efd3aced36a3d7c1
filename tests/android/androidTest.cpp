// The library for Android. That this program links is half of the test.
#include "ondrix/memory.h"
#include "ondrix/modes.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

using namespace odx::test;

// Where the process has no allocator of shared memory, ordinary memory takes its place.
TEST(Android, DoesWithoutSharedMemory)
{
    odxInitSharedMem(ONDRIX_HW_XDSP);
    LogCapture log;
    void* const block = odxMemAlloc(100, 16);
    EXPECT_NE(nullptr, block);
    const std::vector<LogLine> failure = {{6, "ondrix_lib_log", "mem_alloc_ion : Open ion device failed\n"}};
    EXPECT_EQ(failure, log.take());
    odxMemFree(block);
    odxDeInitSharedMem();
}
