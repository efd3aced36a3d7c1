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
const Lines reloading = debug("Trying to reload Z9 stub.") + unloaded;
const Lines reinitializing = debug("Trying to reinitialize DSP.");
const Lines reloaded = debug("Stub reloaded successfully.");
const Lines back = debug("DSP reinitialization success.");
const Lines remoteAgain = debug("XDSP is available"); // the mode is selected again

// A recovery that goes well.
Lines recovered()
{
    return started + reloading + loaded() + reloaded + reinitializing + back;
}

} // namespace

TEST(Recovery, ACallGetsItsResultWhateverFails)
{
    const auto recoveries = [](int n) { return [n] { return times(n, recovered()) + remoteAgain; }; };
    const auto withFailingLoads = [](int n) {
        const Lines end = n < 10 ? reloading + loaded() + reloaded + reinitializing + back : Lines{};
        return started + times(n, reloading + notLoaded) + end + remoteAgain;
    };
    const auto withoutSymbol = [](const char* symbol, int n) {
        const Lines end = n < 15 ? reinitializing + back : Lines{};
        return started + reloading + loaded() + reloaded +
               times(n, reinitializing + cannotLoad(symbol) + noSymbols) + end + remoteAgain;
    };
    const auto failing = [](int code) {
        odxStubBehaviour behaviour = {};
        behaviour.failure = code;
        return behaviour;
    };
    static constexpr char kFirst[] = "ondrixadsp_odxTrackLKOpticalFlowu8X", kOther[] = "ondrixadsp_odxBitCountu8X",
                          kInit[] = "dspRT_initZ9_with_attributes";
    const auto withoutInit = [] {
        return started + reloading + loaded() + reloaded + reinitializing + cannotLoad(kInit) + back +
               recovered() + remoteAgain;
    };
    // What fails under a call; with a restart at every second one, under the second.
    const struct {
        odxStubBehaviour stub;
        uint32_t calls, completed;
        std::function<Lines()> lines;
        bool remoteAfterwards = true;
        int failingOpens = 0;
        const char* missing = "";
        int lookups = 0, sleeps = 0;
    } rows[] = {
        {restarting(2), 3, 2, recoveries(1)}, // the lost one was sent again
        // The processor comes back after some attempts; it restarts again and again.
        {restarting(2, 1), 4, 2, recoveries(2)},
        {restarting(2, 4), 7, 2, recoveries(5)},
        {restarting(2, 5), 7, 1, recoveries(5)},
        {restarting(1), 6, 0, recoveries(5)},
        // It is up again each time, but loses the call; other failures are done here in silence.
        {failing(104), 6, 0, [] { return times(5, alreadyUp) + remoteAgain; }},
        {failing(1), 1, 0, [] { return Lines{}; }},
        {failing(-1), 1, 0, [] { return Lines{}; }},
        {failing(103), 1, 0, [] { return Lines{}; }},
        {restarting(2), 3, 2, [&] { return withFailingLoads(9); }, true, 9},
        {restarting(2), 2, 1, [&] { return withFailingLoads(10); }, false, 10},
        {restarting(2), 3, 2, [&] { return withoutSymbol(kOther, 14); }, true, 0, kOther, 14, 14},
        {restarting(2), 2, 1, [&] { return withoutSymbol(kOther, 15); }, false, 0, kOther, 15, 15},
        {restarting(2), 3, 2, [&] { return withoutSymbol(kFirst, 1); }, true, 0, kFirst, 1, 1},
        {restarting(2), 2, 1, [&] { return withoutSymbol(kFirst, 15); }, false, 0, kFirst, 15, 15},
        {restarting(2), 4, 2, withoutInit, true, 0, kInit, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        onRemote([&](Stub& stub, LogCapture& log) {
            stub.behaves(row.stub);
            for (uint32_t call = 1; call < row.stub.restartEvery; ++call)
                EXPECT_EQ(kBits, countBits());
            EXPECT_EQ(Lines{}, log.take());
            loader.failingOpens = row.failingOpens;
            if (row.lookups != 0) loader.missing[row.missing] = row.lookups;
            EXPECT_EQ(kBits, countBits());
            EXPECT_EQ(row.lines(), log.take());
            EXPECT_EQ(row.calls, stub.counts().calls);
            EXPECT_EQ(row.completed, stub.counts().completed);
            EXPECT_EQ(row.sleeps, loader.sleeps);
            // The library is as it was, and so are the session's attributes.
            EXPECT_EQ(2, stub.counts().powerMode);
            EXPECT_EQ(ONDRIX_OP_EXT_XDSP, mode_globalVar);
            EXPECT_EQ(2u, odxImplTable[op_odxBitCountu32]);
            EXPECT_EQ(0u, HW_constraint_checks_enable);
            EXPECT_EQ(1, ODXAZ9_is_ready());
            // Without a stub the calls stay here, until the session is opened anew.
            stub.behaves({});
            EXPECT_EQ(kBits, countBits());
            EXPECT_EQ(row.completed + row.remoteAfterwards, stub.counts().completed);
            log.take();
            odxCleanUp();
            EXPECT_EQ(loader.opened, loader.closed);
            EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_XDSP));
            EXPECT_EQ(kBits, countBits());
            EXPECT_EQ(row.completed + row.remoteAfterwards + 1, stub.counts().completed);
        });
    }
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
