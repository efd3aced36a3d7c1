// What a call does when the remote processor restarts under it: what is logged, in which order, and that the
// caller gets its result whatever happens.
#include "dsp/session.h"
#include "dsp/stub.h"
#include "frame/operations.h"
#include "remote/remoteCase.h"

#include <vector>

using namespace odx;
using namespace odx::test;

namespace
{

const Lines started = debug("ADSP SSR cleanup sequence initiated.");
const Lines alreadyUp = started + debug("Z9 already up. Skipping reload.");
const Lines reloading = debug("Trying to reload Z9 stub.") + unloaded();
const Lines reinitializing = debug("Trying to reinitialize DSP.");
const Lines back = debug("DSP reinitialization success.");
const Lines remoteAgain = debug("XDSP is available"); // the mode is selected again

// A recovery that goes well.
Lines recovered()
{
    return started + reloading + loaded() + debug("Stub reloaded successfully.") + reinitializing + back;
}

} // namespace

TEST(Recovery, ACallSurvivesARestart)
{
    onRemote([](Stub& stub, LogCapture& log) {
        stub.behaves(restarting(2));
        EXPECT_EQ(kBits, countBits());
        EXPECT_EQ(Lines{}, log.take());
        EXPECT_EQ(kBits, countBits());
        EXPECT_EQ(recovered() + remoteAgain, log.take());

        const odxStubCounts counts = stub.counts();
        EXPECT_EQ(3u, counts.calls); // the lost one was sent again
        EXPECT_EQ(2u, counts.completed);
        EXPECT_EQ(1u, counts.restarts);
        EXPECT_EQ(2u, counts.initialisations);
        EXPECT_EQ(2, counts.powerMode); // the session's attributes were kept
        EXPECT_EQ(2, loader.opened);
        EXPECT_EQ(1, loader.closed);
        // The library is as it was.
        EXPECT_EQ(ONDRIX_OP_EXT_XDSP, mode_globalVar);
        EXPECT_EQ(2u, odxImplTable[op_odxBitCountu32]);
        EXPECT_EQ(0u, HW_constraint_checks_enable);
        EXPECT_EQ(1, ODXAZ9_is_ready());
    });
}

TEST(Recovery, AProcessorThatIsUpAgainIsNotReloaded)
{
    onRemote([](Stub& stub, LogCapture& log) {
        // It answers, but loses every call: after five more attempts the call stays here.
        odxStubBehaviour losing = {};
        losing.failure = 104;
        stub.behaves(losing);
        EXPECT_EQ(kBits, countBits());
        EXPECT_EQ(times(5, alreadyUp) + remoteAgain, log.take());
        EXPECT_EQ(6u, stub.counts().calls);
        EXPECT_EQ(1, loader.opened);

        stub.behaves({});
        EXPECT_EQ(kBits, countBits());
        EXPECT_EQ(Lines{}, log.take());
        EXPECT_EQ(7u, stub.counts().calls);
    });
}

TEST(Recovery, FivefoldAtMost)
{
    onRemote([](Stub& stub, LogCapture& log) {
        stub.behaves(restarting(1)); // it comes back, and restarts again
        EXPECT_EQ(kBits, countBits());
        EXPECT_EQ(times(5, recovered()) + remoteAgain, log.take());
        EXPECT_EQ(6u, stub.counts().restarts);
        EXPECT_EQ(0u, stub.counts().completed);
    });
    // It comes back after some attempts.
    for (const uint32_t failures : {1u, 4u, 5u}) {
        onRemote([&](Stub& stub, LogCapture& log) {
            stub.behaves(restarting(2, failures));
            countBits();
            EXPECT_EQ(kBits, countBits());
            const int attempts = failures < 5 ? static_cast<int>(failures) + 1 : 5;
            EXPECT_EQ(times(attempts, recovered()) + remoteAgain, log.take());
            EXPECT_EQ(failures < 5 ? 2u : 1u, stub.counts().completed);
        });
    }
}

TEST(Recovery, TriesTenTimesToReloadTheStub)
{
    onRemote([](Stub& stub, LogCapture& log) {
        stub.behaves(restarting(2));
        countBits();
        loader.failingOpens = 9;
        EXPECT_EQ(kBits, countBits());
        EXPECT_EQ(started + times(9, reloading + notLoaded()) + reloading + loaded() +
                      debug("Stub reloaded successfully.") + reinitializing + back + remoteAgain,
                  log.take());
        EXPECT_EQ(2u, stub.counts().completed);
    });
    onRemote([](Stub& stub, LogCapture& log) {
        stub.behaves(restarting(2));
        countBits();
        loader.failingOpens = 10;
        EXPECT_EQ(kBits, countBits());
        EXPECT_EQ(started + times(10, reloading + notLoaded()) + remoteAgain, log.take());
        EXPECT_EQ(1u, stub.counts().completed);
        EXPECT_EQ(1, loader.closed);

        // Without a stub the calls stay here, in silence, until the session is opened anew.
        EXPECT_EQ(kBits, countBits());
        EXPECT_EQ(Lines{}, log.take());
        odxCleanUp();
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_XDSP));
        EXPECT_EQ(kBits, countBits());
        EXPECT_EQ(2u, stub.counts().completed);
    });
}

TEST(Recovery, TriesFifteenTimesToLoadTheSymbols)
{
    // Also the first of all.
    const std::pair<const char*, int> lost[] = {{"ondrixadsp_odxBitCountu8X", 14},
                                                {"ondrixadsp_odxBitCountu8X", 15},
                                                {"ondrixadsp_odxTrackLKOpticalFlowu8X", 1},
                                                {"ondrixadsp_odxTrackLKOpticalFlowu8X", 15}};
    for (const auto& [symbol, failures] : lost) {
        onRemote([&, symbol = symbol, failures = failures](Stub& stub, LogCapture& log) {
            const Lines retried = reinitializing + cannotLoad(symbol) + noSymbols();
            stub.behaves(restarting(2));
            countBits();
            loader.missing[symbol] = failures;
            EXPECT_EQ(kBits, countBits());
            const Lines reloaded = started + reloading + loaded() + debug("Stub reloaded successfully.");
            const Lines end = failures < 15 ? reinitializing + back : Lines{};
            EXPECT_EQ(reloaded + times(failures, retried) + end + remoteAgain, log.take());
            EXPECT_EQ(failures, loader.sleeps);
            EXPECT_EQ(failures < 15 ? 2u : 1u, stub.counts().completed);
        });
    }
}

TEST(Recovery, GoesOnWithoutTheEntryThatInitialises)
{
    onRemote([](Stub& stub, LogCapture& log) {
        stub.behaves(restarting(2));
        countBits();
        loader.missing["dspRT_initZ9_with_attributes"] = 1;
        EXPECT_EQ(kBits, countBits());
        const Lines uninitialised = started + reloading + loaded() + debug("Stub reloaded successfully.") +
                                    reinitializing + cannotLoad("dspRT_initZ9_with_attributes") + back;
        EXPECT_EQ(uninitialised + recovered() + remoteAgain, log.take());
    });
}

TEST(Recovery, AnyOtherFailureIsDoneHereInSilence)
{
    onRemote([](Stub& stub, LogCapture& log) {
        odxStubBehaviour failing = {};
        for (const int code : {1, -1, 103}) {
            failing.failure = code;
            stub.behaves(failing);
            EXPECT_EQ(kBits, countBits());
        }
        EXPECT_EQ(Lines{}, log.take());
        EXPECT_EQ(3u, stub.counts().calls);
        EXPECT_EQ(0u, stub.counts().completed);
    });
}

TEST(Recovery, WithoutASessionThereIsNothingToRecover)
{
    onProcessor(kArmSimd, [] {
        LogCapture log;
        EXPECT_EQ(static_cast<unsigned>(-1), adspSSRcleanUpSequence());
        EXPECT_EQ(Lines{}, log.take());
    });
}

TEST(Recovery, ReturnsToTheModeOfTheApplication)
{
    // Low power has few remote operations, and keeps the size limits.
    inMode(ONDRIX_OP_LOW_POWER, [](Stub& stub, LogCapture& log) {
        constexpr uint32_t kWidth = 160, kHeight = 159;
        const std::vector<uint8_t> source(kWidth * kHeight, 77);
        std::vector<uint8_t> result(source.size());
        stub.behaves(restarting(1));
        odxBoxFilter11x11u8(source.data(), kWidth, kHeight, kWidth, result.data(), kWidth);
        EXPECT_EQ(77, result[kHeight / 2 * kWidth + kWidth / 2]);
        EXPECT_EQ(times(5, recovered()) + remoteAgain, log.take());
        EXPECT_EQ(1, stub.counts().powerMode);
        EXPECT_EQ(2u, odxImplTable[op_odxBoxFilter11x11u8]);
        EXPECT_EQ(1u, odxImplTable[op_odxBitCountu32]);
        EXPECT_EQ(1u, HW_constraint_checks_enable);
    });
}
