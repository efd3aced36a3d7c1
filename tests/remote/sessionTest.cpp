// Sessions with the remote processor: what opens, what is logged, in which order.
#include "dsp/session.h"

#include "dsp/stub.h"
#include "frame/hardware.h"
#include "frame/log.h"
#include "remote/remoteCase.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string.h>

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
        const auto expectClosed = [] {
            EXPECT_EQ(0, ODXAZ9_is_ready());
            EXPECT_EQ(-1, ODXAZ9_get_current_mode());
            EXPECT_EQ(0u, symbolsSet()); // nobody may call into what was unloaded
        };
        expectClosed();
        Lines before; // of the session that another one follows
        // Modes beyond the known ones travel without an attribute.
        for (const auto& [mode, told] : {std::pair{1, 1}, {2, 2}, {0, 0}, {3, -1}}) {
            const uint32_t initialisations = stub.counts().initialisations;
            for (const bool again : {false, true}) {
                EXPECT_EQ(0, ODXAZ9_init(mode, kVersion));
                EXPECT_EQ(again ? Lines{} : before + loaded() + initialized(mode), log.take());
                EXPECT_EQ(1, ODXAZ9_is_ready());
                EXPECT_EQ(mode, ODXAZ9_get_current_mode());
                EXPECT_EQ(told, stub.counts().powerMode);
                EXPECT_EQ(initialisations + 1, stub.counts().initialisations);
                EXPECT_EQ(symbols().size(), symbolsSet());
            }
            before = closing + unloaded;
        }
        EXPECT_EQ(0, odxZ9Initialize(3, std::string(kVersion).data()));
        EXPECT_EQ(0, libLogPrintX);
        for (const bool again : {false, true}) {
            ODXAZ9_deinit();
            EXPECT_EQ(again ? closing : before, log.take());
            expectClosed();
            EXPECT_EQ(4, loader.opened);
            EXPECT_EQ(4, loader.closed);
        }
        setenv("VENDOR_RUNTIME_ONDRIX_LOG", "1", 1);
        EXPECT_EQ(0, ODXAZ9_init(-1, kVersion));
        EXPECT_EQ(-1, stub.counts().powerMode);
        EXPECT_EQ(1, libLogPrintX);
        EXPECT_EQ(1, libLogPrint);
        loader.failingOpens = 1;
        EXPECT_EQ(-1, ODXAZ9_init(1, kVersion)); // neither the old one nor the new one
        EXPECT_EQ(0, ODXAZ9_is_ready());
        EXPECT_EQ(-1, ODXAZ9_get_current_mode());
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

TEST(Session, OpensOrFailsWithWhatItFinds)
{
    const auto opening = [](const char* local, const char* remote, const std::function<void()>& prepare,
                            const Lines& complaint, int result = 0, size_t found = symbols().size(),
                            const Lines& atClosing = {}) {
        withStub([&](Stub& stub, LogCapture& log) {
            odxStubBehaviour behaviour = {};
            strcpy(behaviour.version, remote);
            stub.behaves(behaviour);
            prepare();
            EXPECT_EQ(result, ODXAZ9_init(1, local));
            EXPECT_EQ((loader.opened != 0 ? loaded() : notLoaded) + complaint +
                          (result == 0 ? initialized(1) : disabled),
                      log.take());
            EXPECT_EQ(result + 1, ODXAZ9_is_ready());
            EXPECT_EQ(found, symbolsSet());
            // A failure stays, even where nothing would fail any more, until the session is closed.
            loader.failingOpens = 0;
            EXPECT_EQ(result, ODXAZ9_init(1, local));
            EXPECT_EQ(Lines{}, log.take());
            ODXAZ9_deinit();
            EXPECT_EQ(closing + atClosing + unloaded, log.take());
            EXPECT_EQ(loader.opened, loader.closed);
            loader.missing.clear();
            loader.stub = ODX_TEST_STUB;
            EXPECT_EQ(0, ODXAZ9_init(1, local));
        });
    };
    const auto nothing = [] {};
    const auto unmatched = [](const std::string& remote) {
        return error("Unmatch CPU and Z9 major version. CPU version is 1.7.1, Z9 version is " + remote);
    };
    for (const char* remote : {"2.7.1", "1_7", "10.2.1234"})
        opening(kVersion, remote, nothing, unmatched(remote));
    opening(kVersion, "1.9.3", nothing, {});
    opening(nullptr, "2.7.1", nothing, {});

    const std::vector<Symbol> all = symbols();
    EXPECT_EQ("ondrixadsp_odxTrackLKOpticalFlowu8X", all[0].name);
    EXPECT_EQ("ondrixadsp_odxTrackLKOpticalFlowf32X", all[1].name);
    EXPECT_EQ("ondrixadsp_odxTrackLKOpticalFlowu8_v2X", all[2].name);
    opening(
        kVersion, kVersion, [] { loader.failingOpens = 1; }, cannotLoad(all[0].name) + noSymbols, -1, 0,
        cannotLoad("dspRT_deinitZ9"));
    for (const size_t position : {size_t{0}, all.size() / 2, all.size() - 1}) {
        const std::string& name = all[position].name;
        opening(
            kVersion, kVersion, [&] { loader.missing[name] = kAlways; }, cannotLoad(name) + noSymbols, -1,
            position); // those before it
    }
    const std::string lacking = "ondrixadsp_odxFilterMedian3x3u8X";
    const auto place = std::find_if(all.begin(), all.end(), [&](const Symbol& s) { return s.name == lacking; });
    opening(
        kVersion, kVersion, [] { loader.stub = ODX_TEST_INCOMPLETE_STUB; }, cannotLoad(lacking) + noSymbols, -1,
        static_cast<size_t>(place - all.begin()));
    // It opens without its own entries.
    const char *const init = "dspRT_initZ9_with_attributes", *const deinit = "dspRT_deinitZ9";
    opening(
        kVersion, kVersion,
        [&] {
            loader.missing = {{init, 1}, {deinit, 1}};
        },
        cannotLoad(init) + error("ondrixadsp_odxZ9SessionInit failed"), 0, all.size(), cannotLoad(deinit));
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
        EXPECT_EQ(closing + unloaded + loaded() + initialized(2), log.take());
    });
}

TEST(Session, FollowsTheOperationMode)
{
    withStub([](Stub& stub, LogCapture& log) {
        const Lines version = debug("Ondrix vendor library\n");
        const Lines available = debug("XDSP is available");
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_LOW_POWER));
        EXPECT_EQ(version + closing + loaded() + initialized(1) + available, log.take());
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_LOW_POWER));
        EXPECT_EQ(available, log.take());
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_XDSP));
        EXPECT_EQ(version + closing + unloaded + loaded() + initialized(2) + available, log.take());
        EXPECT_EQ(2, stub.counts().powerMode);
        EXPECT_EQ(0u, Z9_constraint_checks_enable);
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_CPU));
        EXPECT_EQ(Lines{}, log.take()); // the session stays
        EXPECT_EQ(1u, Z9_constraint_checks_enable);
        EXPECT_EQ(0, odxCleanUp());
        EXPECT_EQ(closing + unloaded, log.take());
        EXPECT_EQ(loader.opened, loader.closed);

        loader.stub.clear();
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_CPU_OFFLOAD));
        const Lines failure = notLoaded + cannotLoad(symbols()[0].name) + noSymbols + disabled;
        // The session is probed for the mode alone: the lists of the mode are not looked at without it.
        EXPECT_EQ(version + closing + failure, log.take());
    });
}
