// The loopback stub itself: what it promises to those who develop with it.
#include "dsp/stub.h"
#include "dsp/session.h"
#include "remote/remoteCase.h"
#include "support/childProcess.h"

#include <algorithm>
#include <stdlib.h>

using namespace odx;
using namespace odx::test;

TEST(LoopbackStub, MisbehavesAsItsEnvironmentSays)
{
    const auto open = [] {
        loader.stub = ODX_TEST_UNLOADING_STUB; // reads the environment when it is loaded
        EXPECT_EQ(0, ODXAZ9_init(1, "1.7.1"));
    };
    const auto call = [] {
        uint32_t word = 1, count;
        return countRemotely(&word, &count);
    };
    onProcessor(kArmSimd, [&] {
        setenv("ONDRIX_STUB_FAILURE", "3", 1);
        setenv("ONDRIX_STUB_VERSION", "2.0", 1);
        LogCapture log;
        open();
        EXPECT_EQ(loaded() + error("Unmatch CPU and Z9 major version. CPU version is 1.7.1, Z9 version is 2.0") +
                      initialized(1),
                  log.take());
        EXPECT_EQ(3, call());
    });
    onProcessor(kArmSimd, [&] {
        setenv("ONDRIX_STUB_RESTART_EVERY", "2", 1);
        setenv("ONDRIX_STUB_FAILED_RETURNS", "1", 1);
        LogCapture log;
        open();
        EXPECT_EQ(0, call());
        EXPECT_EQ(104, call());
        auto* const initialise =
            reinterpret_cast<decltype(&dspRT_initZ9_with_attributes)>(dlsym_get(ODX_STUB_INIT));
        EXPECT_NE(0, initialise(nullptr, 0));
        EXPECT_EQ(104, call());
        EXPECT_EQ(0, initialise(nullptr, 0));
        EXPECT_EQ(0, call());
    });
}

TEST(LoopbackStub, ALostCallLeavesItsBuffersAlone)
{
    onRemote([](Stub& stub, LogCapture&) {
        const uint8_t src[25] = {};
        uint8_t dst[25];
        const auto filter = [&] {
            std::fill_n(dst, 25, uint8_t{7});
            return entry<decltype(ondrixadsp_odxBoxFilter3x3u8X)>(pFnX_odxBoxFilter3x3u8X)(src, 25, 5, 5, 5, dst,
                                                                                           25, 5);
        };
        EXPECT_EQ(0, filter());
        EXPECT_EQ(0, dst[12]);
        stub.behaves(restarting(1));
        EXPECT_EQ(104, filter());
        EXPECT_EQ(7, dst[12]);
    });
}

TEST(LoopbackStub, ALengthThatIsTooShortEndsTheProcess)
{
    onRemote([](Stub&, LogCapture&) {
        const auto statusWithLength = [](uint32_t length) {
            return runInChild([length] {
                       static const uint8_t bytes[64] = {};
                       uint32_t count;
                       entry<decltype(ondrixadsp_odxBitCountu8X)>(pFnX_odxBitCountu8X)(bytes, length, 64, &count);
                   })
                .exitStatus;
        };
        EXPECT_EQ(0, statusWithLength(64));
        EXPECT_NE(0, statusWithLength(63));
    });
}
