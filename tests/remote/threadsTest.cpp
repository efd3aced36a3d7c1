// Restarts under the calls of several threads.
#include "support/threads.h"
#include "dsp/session.h"
#include "dsp/stub.h"
#include "dsp/variant.h"
#include "frame/operations.h"
#include "remote/ion.h"
#include "remote/remoteCase.h"
#include "support/pictures.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

using namespace odx;
using namespace odx::test;

namespace
{

constexpr int kThreads = 4;

// A thread's own images: what an operation gives must be what the reference gives, whichever column ran.
class Work
{
public:
    Work() : source_(noise<uint8_t>(kWidth, kHeight, 0, 255).pixels), result_(source_.size()), expected_(result_)
    {
        odxFilterGaussian5x5u8C(source_.data(), kWidth, kHeight, kWidth, expected_.data(), kWidth, 1);
        bits_ = odxBitCountu8C(source_.data(), kWidth * kHeight);
        expectedCorners_ = corners(odxCornerFast9Scoreu8C);
    }

    // Number of wrong results.
    int run()
    {
        std::fill(result_.begin(), result_.end(), uint8_t{0});
        odxFilterGaussian5x5u8(source_.data(), kWidth, kHeight, result_.data(), 1);
        return (result_ != expected_ ? 1 : 0) +
               (odxBitCountu8(source_.data(), kWidth * kHeight) != bits_ ? 1 : 0) +
               (corners(odxCornerFast9Scoreu8) != expectedCorners_ ? 1 : 0);
    }

private:
    // Corners and their scores, which the columns work out through the helper pointers.
    std::vector<uint32_t> corners(decltype(odxCornerFast9Scoreu8)* detect) const
    {
        constexpr uint32_t kCapacity = 100;
        std::vector<uint32_t> list(3 * kCapacity + 1);
        detect(source_.data(), kWidth, kHeight, kWidth, 1, 3, list.data(), list.data() + 2 * kCapacity, kCapacity,
               &list.back());
        return list;
    }

    static constexpr uint32_t kWidth = 37, kHeight = 9;
    std::vector<uint8_t> source_, result_, expected_;
    std::vector<uint32_t> expectedCorners_;
    uint32_t bits_;
};

int wrongResults(int rounds)
{
    std::atomic<int> wrong{0};
    std::vector<Work> works(kThreads);
    inThreads(kThreads, [&](unsigned i) {
        Work& work = works[i];
        for (int round = 0; round < rounds; ++round)
            wrong += work.run();
    });
    return wrong;
}

} // namespace

TEST(RemoteThreads, EveryResultIsRightWhileTheProcessorRestarts)
{
    for (const auto& [every, failedReturns] : {std::pair{7u, 0u}, {40u, 0u}, {40u, 2u}, {1u, 0u}}) {
        SCOPED_TRACE(every);
        const uint32_t period = every, failures = failedReturns;
        onRemote([&](Stub& stub, LogCapture& log) {
            odxStubBehaviour behaviour = restarting(period, failures);
            behaviour.delayMicroseconds = 50;
            stub.behaves(behaviour);
            EXPECT_EQ(0, wrongResults(200));
            const odxStubCounts counts = stub.counts();
            EXPECT_GT(counts.restarts, 0u);
            if (period > 1) {
                EXPECT_GT(counts.completed, 0u);
            }
            // Nothing is left behind: calls are remote again, once one has brought back what the last restart
            // left.
            stub.behaves({});
            EXPECT_EQ(kBits, countBits());
            const uint32_t completed = stub.counts().completed;
            log.take();
            EXPECT_EQ(kBits, countBits());
            EXPECT_EQ(Lines{}, log.take());
            EXPECT_EQ(completed + 1, stub.counts().completed);
            EXPECT_EQ(2u, odxImplTable[op_odxBitCountu8]);
        });
    }
}

// The stub really leaves the process, while other threads' calls want into it.
TEST(RemoteThreads, NobodyIsInsideAStubThatIsUnloaded)
{
    onProcessor(kArmSimd, [] {
        setenv("ONDRIX_STUB_RESTART_EVERY", "30", 1);
        setenv("ONDRIX_STUB_DELAY", "50", 1);
        loader.stub = ODX_TEST_UNLOADING_STUB;
        LogCapture log;
        ASSERT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_XDSP));
        // Shared buffers are registered with the stub, too.
        ion.present = true;
        std::atomic<bool> done{false};
        std::thread allocating([&done] {
            while (!done)
                odxMemFree(odxMemAlloc(100, 16));
        });
        EXPECT_EQ(0, wrongResults(200));
        done = true;
        allocating.join();
        EXPECT_GT(loader.opened, 2);
        EXPECT_EQ(loader.opened, loader.closed + 1);
        odxCleanUp();
        EXPECT_EQ(loader.opened, loader.closed);
    });
}

TEST(RemoteThreads, CallsStayHereUntilTheLastThreadHasRecovered)
{
    onRemote([](Stub&, LogCapture&) {
        const auto recovered = [](auto during) {
            remoting::RemoteCall call;
            void* const entry = &call;
            for (const int code : {remoting::kRestarted, 0}) {
                ASSERT_NE(nullptr, call.begins(entry));
                if (code == 0) during();
                call.ends(code);
            }
            EXPECT_EQ(nullptr, call.begins(entry));
            EXPECT_TRUE(call.succeeded());
        };
        recovered([&] {
            EXPECT_TRUE(stubIsHeld());
            std::thread([&] { recovered([] {}); }).join();
            EXPECT_EQ(1u, odxImplTable[op_odxBitCountu32]);
        });
        EXPECT_EQ(2u, odxImplTable[op_odxBitCountu32]);
    });
}

TEST(RemoteThreads, ALateThreadFindsTheProcessorUp)
{
    onRemote([](Stub& stub, LogCapture& log) {
        // All calls are under way when the processor restarts: one thread reloads it, the others find it up.
        odxStubBehaviour behaviour = restarting(kThreads);
        behaviour.delayMicroseconds = 200000;
        stub.behaves(behaviour);
        std::atomic<int> right{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i)
            threads.emplace_back([&right] { right += countBits() == kBits ? 1 : 0; });
        while (stub.counts().restarts == 0)
            std::this_thread::yield();
        stub.behaves({});
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(kThreads, right);
        const Lines lines = log.take();
        const auto count = [&](const char* text) {
            return std::count(lines.begin(), lines.end(), debug(text)[0]);
        };
        EXPECT_EQ(count("ADSP SSR cleanup sequence initiated."),
                  count("Z9 already up. Skipping reload.") + count("DSP reinitialization success."));
        EXPECT_EQ(kThreads, count("ADSP SSR cleanup sequence initiated."));
        EXPECT_EQ(1, count("DSP reinitialization success."));
    });
}
