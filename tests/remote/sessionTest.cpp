// Sessions with the remote processor: what opens, what is logged, in which order.
#include "dsp/session.h"

#include "dsp/stub.h"
#include "frame/hardware.h"
#include "frame/log.h"
#include "remote/remoteCase.h"
#include "support/processors.h"

#include <gtest/gtest.h>

using namespace odx;
using namespace odx::test;

namespace
{

constexpr char kVersion[] = "1.7.1";

// Runs a test in a process that has a stub and captures the log.
void withStub(const std::function<void(Stub&, LogCapture&)>& body)
{
    onProcessor(kArmSimd, [&] {
        Stub stub;
        LogCapture log;
        body(stub, log);
    });
}

// The remote entries in the order of their lookup, and the pointer of each.
struct Symbol {
    std::string name;
    void* pointer;
};
std::vector<Symbol> symbols()
{
    return {
#define ODX_ROUTINE(number, name, index, columns, ...) \
    ODX_IF_##columns##_X({"ondrixadsp_" #name "X", pFnX_##name##X}, )
#define ODX_SERVICE(name) {"ondrixadsp_" #name "X", pFnX_##name##X},
#include "frame/operations/families.def"
    };
}

size_t symbolsSet()
{
    size_t set = 0;
    for (const Symbol& symbol : symbols())
        set += symbol.pointer != nullptr ? 1 : 0;
    return set;
}

} // namespace

TEST(Session, OpensOnceForAPowerMode)
{
    withStub([](Stub& stub, LogCapture& log) {
        EXPECT_EQ(0, ODXAZ9_is_ready());
        EXPECT_EQ(-1, ODXAZ9_get_current_mode());
        EXPECT_EQ(0, ODXAZ9_init(1, kVersion));
        EXPECT_EQ(loaded() + initialized(1), log.take());
        EXPECT_EQ(1, ODXAZ9_is_ready());
        EXPECT_EQ(1, ODXAZ9_get_current_mode());
        EXPECT_EQ(1, stub.counts().powerMode);
        EXPECT_EQ(symbols().size(), symbolsSet());

        char version[] = "1.7.1";
        EXPECT_EQ(0, ODXAZ9_init(1, kVersion));
        EXPECT_EQ(0, odxZ9Initialize(1, version));
        EXPECT_EQ(Lines{}, log.take());
        EXPECT_EQ(1u, stub.counts().initialisations);
    });
}

TEST(Session, AnotherPowerModeReopensIt)
{
    withStub([](Stub& stub, LogCapture& log) {
        ODXAZ9_init(1, kVersion);
        log.take();
        EXPECT_EQ(0, ODXAZ9_init(2, kVersion));
        EXPECT_EQ(closing() + unloaded() + loaded() + initialized(2), log.take());
        EXPECT_EQ(2, ODXAZ9_get_current_mode());
        EXPECT_EQ(2, stub.counts().powerMode);
        EXPECT_EQ(2, loader.opened);
        EXPECT_EQ(1, loader.closed);

        loader.failingOpens = 1;
        EXPECT_EQ(-1, ODXAZ9_init(1, kVersion));
        EXPECT_EQ(-1, ODXAZ9_get_current_mode()); // neither the old one nor the new one
        EXPECT_EQ(0, ODXAZ9_is_ready());
    });
}

TEST(Session, TheStubStaysUntilItsLastUserLeaves)
{
    withStub([](Stub&, LogCapture&) {
        const remoting::StubReplaced replaced;
        EXPECT_EQ(0, dlopen_stub());
        EXPECT_EQ(0, dlopen_stub());
        EXPECT_EQ(1, loader.opened);
        dlclose_stub();
        EXPECT_EQ(0, loader.closed);
        EXPECT_NE(nullptr, dlsym_get("dspRT_deinitZ9"));
        dlclose_stub();
        EXPECT_EQ(1, loader.closed);
        EXPECT_EQ(nullptr, dlsym_get("dspRT_deinitZ9"));
        dlclose_stub();
        EXPECT_EQ(1, loader.closed);
    });
}

TEST(Session, PowerModesBeyondTheKnownOnesTravelWithoutAttribute)
{
    withStub([](Stub& stub, LogCapture&) {
        for (const auto& [mode, told] : {std::pair{0, 0}, {1, 1}, {2, 2}, {3, -1}, {-1, -1}}) {
            ODXAZ9_deinit();
            EXPECT_EQ(0, ODXAZ9_init(mode, kVersion));
            EXPECT_EQ(told, stub.counts().powerMode);
            EXPECT_EQ(mode, ODXAZ9_get_current_mode());
        }
    });
}

TEST(Session, Closes)
{
    withStub([](Stub&, LogCapture& log) {
        ODXAZ9_init(2, kVersion);
        log.take();
        ODXAZ9_deinit();
        EXPECT_EQ(closing() + unloaded(), log.take());
        EXPECT_EQ(0, ODXAZ9_is_ready());
        EXPECT_EQ(-1, ODXAZ9_get_current_mode());
        EXPECT_EQ(0u, symbolsSet()); // nobody may call into what was unloaded
        EXPECT_EQ(1, loader.closed);
        ODXAZ9_deinit();
        EXPECT_EQ(closing(), log.take());
        EXPECT_EQ(1, loader.closed);
    });
}

TEST(Session, FailsWithoutTheLibraryUntilItIsClosed)
{
    withStub([](Stub&, LogCapture& log) {
        loader.failingOpens = 1;
        EXPECT_EQ(-1, ODXAZ9_init(1, kVersion));
        EXPECT_EQ(notLoaded() + cannotLoad(symbols()[0].name) + noSymbols() + disabled(), log.take());
        EXPECT_EQ(0, ODXAZ9_is_ready());
        EXPECT_EQ(-1, ODXAZ9_get_current_mode());

        EXPECT_EQ(-1, ODXAZ9_init(1, kVersion)); // now there would be one
        EXPECT_EQ(Lines{}, log.take());
        ODXAZ9_deinit();
        EXPECT_EQ(closing() + cannotLoad("dspRT_deinitZ9") + unloaded(), log.take());
        EXPECT_EQ(0, ODXAZ9_init(1, kVersion));
        EXPECT_EQ(loaded() + initialized(1), log.take());
    });
}

TEST(Session, FailsAtTheFirstMissingSymbol)
{
    const std::vector<Symbol> all = symbols();
    EXPECT_EQ("ondrixadsp_odxTrackLKOpticalFlowu8X", all[0].name);
    EXPECT_EQ("ondrixadsp_odxTrackLKOpticalFlowf32X", all[1].name);
    EXPECT_EQ("ondrixadsp_odxTrackLKOpticalFlowu8_v2X", all[2].name);
    for (const size_t position : {size_t{0}, all.size() / 2, all.size() - 1}) {
        withStub([&](Stub&, LogCapture& log) {
            loader.missing[all[position].name] = kAlways;
            EXPECT_EQ(-1, ODXAZ9_init(1, kVersion));
            EXPECT_EQ(loaded() + cannotLoad(all[position].name) + noSymbols() + disabled(), log.take());
            EXPECT_EQ(position, symbolsSet()); // those before it
            ODXAZ9_deinit();
            EXPECT_EQ(closing() + unloaded(), log.take());
            EXPECT_EQ(loader.opened, loader.closed);
        });
    }
}

TEST(Session, FailsWithABuildOfTheStubThatLacksAnEntry)
{
    withStub([](Stub&, LogCapture& log) {
        loader.stub = ODX_TEST_INCOMPLETE_STUB;
        EXPECT_EQ(-1, ODXAZ9_init(1, kVersion));
        EXPECT_EQ(loaded() + cannotLoad("ondrixadsp_odxFilterMedian3x3u8X") + noSymbols() + disabled(),
                  log.take());
    });
}

TEST(Session, OpensWithoutTheSessionsOwnEntries)
{
    withStub([](Stub& stub, LogCapture& log) {
        loader.missing = {{"dspRT_initZ9_with_attributes", 1}, {"dspRT_deinitZ9", 1}};
        EXPECT_EQ(0, ODXAZ9_init(1, kVersion));
        EXPECT_EQ(loaded() + cannotLoad("dspRT_initZ9_with_attributes") +
                      error("ondrixadsp_odxZ9SessionInit failed") + initialized(1),
                  log.take());
        EXPECT_EQ(1, ODXAZ9_is_ready());
        EXPECT_EQ(0u, stub.counts().initialisations);
        ODXAZ9_deinit();
        EXPECT_EQ(closing() + cannotLoad("dspRT_deinitZ9") + unloaded(), log.take());
    });
}

TEST(Session, OpensWithAnotherVersion)
{
    const auto opening = [](const char* local, const char* remote, const Lines& complaint) {
        withStub([&](Stub& stub, LogCapture& log) {
            odxStubBehaviour behaviour = {};
            strcpy(behaviour.version, remote);
            stub.behaves(behaviour);
            EXPECT_EQ(0, ODXAZ9_init(1, local));
            EXPECT_EQ(loaded() + complaint + initialized(1), log.take());
        });
    };
    const auto unmatched = [](const std::string& remote) {
        return error("Unmatch CPU and Z9 major version. CPU version is 1.7.1, Z9 version is " + remote);
    };
    opening(kVersion, "2.7.1", unmatched("2.7.1"));
    opening(kVersion, "1_7", unmatched("1_7"));
    opening(kVersion, "10.2.1234", unmatched("10.2.1234"));
    opening(kVersion, "1.9.3", {});
    opening(nullptr, "2.7.1", {});
}

TEST(Session, OpensWithAProcessorThatDoesNotStart)
{
    withStub([](Stub& stub, LogCapture& log) {
        // Restarted behind the library's back, and not coming back: it cannot tell its version either.
        ODXAZ9_init(1, kVersion);
        odxStubBehaviour behaviour = restarting(1, 1);
        strcpy(behaviour.version, "9");
        stub.behaves(behaviour);
        uint32_t word = 1, count;
        EXPECT_EQ(104, countRemotely(&word, &count));
        log.take();

        EXPECT_EQ(0, ODXAZ9_init(2, kVersion));
        EXPECT_EQ(closing() + unloaded() + loaded() + initialized(2), log.take());
    });
}

TEST(Session, FollowsTheOperationMode)
{
    withStub([](Stub& stub, LogCapture& log) {
        const Lines version = debug("Ondrix vendor library\n");
        const Lines available = debug("XDSP is available");
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_LOW_POWER));
        EXPECT_EQ(version + closing() + loaded() + initialized(1) + available, log.take());
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_LOW_POWER));
        EXPECT_EQ(available, log.take());
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_XDSP));
        EXPECT_EQ(version + closing() + unloaded() + loaded() + initialized(2) + available, log.take());
        EXPECT_EQ(2, stub.counts().powerMode);
        EXPECT_EQ(0u, Z9_constraint_checks_enable);
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_CPU));
        EXPECT_EQ(Lines{}, log.take()); // the session stays
        EXPECT_EQ(1u, Z9_constraint_checks_enable);
        EXPECT_EQ(0, odxCleanUp());
        EXPECT_EQ(closing() + unloaded(), log.take());
        EXPECT_EQ(loader.opened, loader.closed);

        loader.stub.clear();
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_CPU_OFFLOAD));
        const Lines failure = notLoaded() + cannotLoad(symbols()[0].name) + noSymbols() + disabled();
        // The session is probed for the mode alone: the lists of the mode are not looked at without it.
        EXPECT_EQ(version + closing() + failure, log.take());
    });
}

TEST(Session, SwitchesTheVariantsLog)
{
    withStub([](Stub&, LogCapture&) {
        ODXAZ9_init(1, kVersion);
        EXPECT_EQ(0, libLogPrintX);
        ODXAZ9_deinit();
        setenv("VENDOR_RUNTIME_ONDRIX_LOG", "1", 1);
        ODXAZ9_init(1, kVersion);
        EXPECT_EQ(1, libLogPrintX);
        EXPECT_EQ(1, libLogPrint);
    });
}
