// Which implementation each mode gives each operation, on every kind of processor.
#include "ondrix/modes.h"

#include "dsp/remote.h"
#include "frame/fakeRemote.h"
#include "frame/hardware.h"
#include "frame/helpers.h"
#include "frame/log.h"
#include "frame/operations.h"
#include "frame/remotePointers.h"
#include "orlan/targets.h"
#include "support/logCapture.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string.h>
#include <unistd.h>

using namespace odx;
using namespace odx::test;

namespace
{

using Names = std::vector<std::string>;

constexpr auto kUnknownMode = static_cast<odxOperationMode>(INT32_MIN + 3);

// Of all operations, the internal ones behind the public ones.
using Indices = std::vector<uint32_t>;
using Column = std::vector<void*>;

Indices indices()
{
    Indices all(odxImplTable, odxImplTable + kPublicSlots);
    all.insert(all.end(), odxInternalImplTable, odxInternalImplTable + kInternalEntries);
    return all;
}
Indices internal(const Indices& all)
{
    return {all.begin() + kPublicSlots, all.end()};
}
constexpr uint32_t kRegistration = op_odxRegisterBuf, kTime = op_probeZ9Time;

void setIndices(uint32_t index)
{
    std::fill(std::begin(odxImplTable), std::end(odxImplTable), index);
    std::fill(std::begin(odxInternalImplTable), std::end(odxInternalImplTable), index);
}

Column column(uint32_t impl, const ODX_FUNC_TABLE& funcTable = odxFuncTable,
              const ODX_INTERNAL_FUNC_TABLE& internalTable = odxInternalFuncTable)
{
    Column entries;
    for (uint32_t slot = 0; slot < kPublicSlots; ++slot)
        entries.push_back(funcTable.entry[slot * kImplementations + impl]);
    for (uint32_t entry = 0; entry < kInternalEntries; ++entry)
        entries.push_back(internalTable.entry[entry * kImplementations + impl]);
    return entries;
}

enum Columns { kReference, kSimd };

// What a mode without remote operations selects, on tables that were zero.
Indices expected(Columns columns)
{
    Indices all(kOperationNumbers);
#define ODX_ROUTINE(number, name, index, ...) all[number] = columns == kSimd && #index[0] == 'V' ? 1 : 0;
#include "frame/operations/families.def"
    return all;
}

Column referenceColumn()
{
    Column entries(kOperationNumbers, nullptr);
#define ODX_ROUTINE(number, name, index, columns, ...) \
    ODX_IF_##columns##_C(entries[number] = reinterpret_cast<void*>(&name##C);)
#include "frame/operations/families.def"
    return entries;
}

// A column after the SIMD entries were written over it.
Column withSimd(Column entries)
{
    static ODX_FUNC_TABLE publicTable;
    static ODX_INTERNAL_FUNC_TABLE internalTable;
    if (const orlan::Target* target = orlan::bestTarget())
        target->fillColumn(publicTable.entry, internalTable.entry);
    Column simd = column(0, publicTable, internalTable);
    simd[op_odxSolveLUf32] = referenceColumn()[op_odxSolveLUf32]; // without SIMD code, it belongs to the column
    for (uint32_t number = 0; number < kOperationNumbers; ++number) {
        if (simd[number] != nullptr) entries[number] = simd[number];
    }
    return entries;
}

Column remoteColumn(Column entries)
{
    for (uint32_t number = 0; number < kOperationNumbers; ++number) {
        if (isRemote(number)) entries[number] = remoteVariant(number);
    }
    return entries;
}

ODX_FUNC_MANAGER managerOf(uint32_t slots, uint32_t entries, uint32_t implementations)
{
    return {odxImplTable,          slots,          &odxFuncTable, odxInternalImplTable, entries,
            &odxInternalFuncTable, implementations};
}

// Names of the remote pointers that are set.
Names setPointers()
{
    Names names;
#define ODX_REMOTE_POINTER(name, variant, pointer) \
    ODX_POINTER_##pointer(if (name##R_ != nullptr) names.push_back(#name);)
#include "frame/operations/families.def"
    return names;
}

// Names of the remote pointers in a list: that of a mode, by its letter, or the full one.
Names listed(char letter = 0)
{
    Names names;
#define ODX_REMOTE_POINTER(name, variant, pointer)                                       \
    ODX_POINTER_##pointer(if (letter == 0 ? (remoteList_##pointer & remoteList_all) != 0 \
                                          : strchr(#pointer, letter) != nullptr) names.push_back(#name);)
#include "frame/operations/families.def"
    return names;
}

// What the full list reaches here, where one variant is missing.
Names reachable()
{
    Names names = listed();
    names.erase(std::find(names.begin(), names.end(), "odxTransposeu16"));
    return names;
}

} // namespace

TEST(Modes, SelectColumnsByProcessor)
{
    const auto extended = [](uint32_t target) { return static_cast<odxOperationMode>(0x80000000u | target); };
    const auto standard = [](int mode) { return static_cast<odxOperationMode>(mode); };
    const std::vector<odxOperationMode> known{standard(0), standard(1), standard(2), standard(3)},
        targets{extended(1), extended(4), extended(8), extended(32), extended(1024)},
        unknown{extended(3),  extended(5), extended(6),  extended(7),    extended(9),
                extended(31), extended(0), extended(33), extended(1023), extended(0x7FFFFFFF)};
    const struct {
        std::vector<const Processor*> processors;
        std::vector<odxOperationMode> modes;
        int result;
        Columns columns;
    } rows[] = {
        // Standard modes take the SIMD code on mobile targets only.
        {{&kArmSimd, &kVendorSimd, &kOtherSimdOnVendorBoard}, known, 0, kSimd},
        {{&kOtherSimd, &kFloatOnly}, known, 0, kReference},
        {{&kArmSimd, &kOtherSimd}, {standard(4), standard(INT32_MAX)}, 0, kReference},
        // The extended modes take it wherever there is any.
        {{&kArmSimd, &kOtherSimd}, targets, 0, kSimd},
        {{&kFloatOnly}, targets, 0, kReference},
        {{&kArmSimd, &kOtherSimd, &kFloatOnly}, {extended(2)}, 0, kReference},
        {{&kOtherSimd}, unknown, -1, kSimd},
        {{&kFloatOnly}, {extended(3), extended(33)}, -1, kReference},
    };
    for (const auto& row : rows) {
        for (const Processor* processor : row.processors) {
            for (const odxOperationMode mode : row.modes) {
                SCOPED_TRACE(mode);
                onProcessor(*processor, [&] {
                    EXPECT_EQ(row.result, odxSetOperationMode(mode));
                    EXPECT_TRUE(indices() == expected(row.columns));
                    EXPECT_EQ(mode, mode_globalVar);
                    EXPECT_EQ(1, odxImplTablesInitialized);
                    const bool remoteMode = mode == ONDRIX_OP_EXT_DSP || mode == ONDRIX_OP_EXT_XDSP;
                    EXPECT_EQ(remoteMode ? 0u : 1u, HW_constraint_checks_enable);
                    EXPECT_EQ(HW_constraint_checks_enable, fakeRemote.constraintChecks);
                    EXPECT_EQ(sysconf(_SC_NPROCESSORS_ONLN), nOdxAvailableProc);
                });
            }
        }
    }
}

TEST(Modes, RefuseAnUnusableProcessor)
{
    for (const Processor& processor : {kNeither, kUnreadable}) {
        for (const odxOperationMode mode : {ONDRIX_OP_CPU_PERFORMANCE, ONDRIX_OP_EXT_REFERENCE, kUnknownMode}) {
            onProcessor(processor, [&] {
                EXPECT_EQ(999, odxSetOperationMode(mode));
                EXPECT_EQ(999u, odxSetOperationModeRemoteLib(mode));
                EXPECT_EQ(1, odxSetOperationModeExt(ONDRIX_EXT_TARGET_GPU));
                EXPECT_EQ(ONDRIX_OP_EXT_GPU, mode_globalVar);
                EXPECT_EQ(0, odxImplTablesInitialized);
                EXPECT_EQ(Column(kOperationNumbers), column(ODX_IMPL_ORLAN));
                EXPECT_EQ(nullptr, odxMasterFuncManager);
            });
        }
    }
}

TEST(Modes, BecomeCpuPerformanceOnACpuOnlyChip)
{
    const std::vector<LogLine> warning{
        {6, "ondrix_lib_log", "DSP and GPU not present. Setting ONDRIX mode to ONDRIX_OP_CPU_PERFORMANCE.\n"}};
    for (const odxOperationMode mode : {ONDRIX_OP_LOW_POWER, ONDRIX_OP_CPU_PERFORMANCE, ONDRIX_OP_EXT_XDSP,
                                        kUnknownMode, ONDRIX_OP_EXT_REFERENCE}) {
        onProcessor(kCpuOnlyChip, [&] {
            const bool kept = mode == ONDRIX_OP_EXT_REFERENCE;
            fakeRemote.openResult = 0;
            LogCapture log;
            EXPECT_EQ(0, odxSetOperationMode(mode));
            EXPECT_EQ(kept ? std::vector<LogLine>{} : warning, log.take());
            EXPECT_EQ(kept ? mode : ONDRIX_OP_CPU_PERFORMANCE, mode_globalVar);
            EXPECT_TRUE(indices() == expected(kept ? kReference : kSimd));
            EXPECT_EQ(0u, fakeRemote.events.size());
        });
    }
}

TEST(Modes, SimdIndicesAndNumbers)
{
    const Indices simd = expected(kSimd);
    EXPECT_EQ((Indices{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 1, 1, 0, 0}), internal(simd));
    EXPECT_EQ(0u, simd[op_odxTiltedIntegralu8s32]);
    EXPECT_EQ(1u, simd[op_odxBitCountu8]);
    EXPECT_EQ(1, op_odx3ChannelWarpPerspectiveu8);
    EXPECT_EQ(6, op_odxAbsDiffVc3f32);
    EXPECT_EQ(216, op_odxFilterMedian3x3u8);
    EXPECT_EQ(368, op_odxSumOfAbsoluteDiffs8x8u8);
    EXPECT_EQ(396, op_odxAddScalarf32);
}

TEST(Modes, ResetKeepsEmptySlotsAndTheBufferRegistration)
{
    onProcessor(kArmSimd, [] {
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_CPU_PERFORMANCE));
        setIndices(5);
        Indices left = expected(kReference);
        for (uint32_t slot : kEmptySlots)
            left[slot] = 5;
        left[kRegistration] = 5;
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE));
        EXPECT_TRUE(indices() == left);
        EXPECT_EQ(0, odxSelectMode(ONDRIX_OP_CPU_PERFORMANCE)); // is not recorded
        EXPECT_EQ(ONDRIX_OP_EXT_REFERENCE, mode_globalVar);
        EXPECT_EQ(1u, odxImplTable[op_odxBitCountu8]);
    });
}

TEST(Modes, FirstSelectionFillsFourColumns)
{
    onProcessor(kArmSimd, [] {
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE));
        EXPECT_EQ(referenceColumn(), column(ODX_IMPL_CPU));
        const Column simd = withSimd(referenceColumn());
        for (uint32_t impl : {ODX_IMPL_ORLAN, ODX_IMPL_XDSP, ODX_IMPL_GPU})
            EXPECT_EQ(simd, column(impl)) << impl;
        for (uint32_t impl : {ODX_IMPL_ADSP, ODX_IMPL_CDSP, ODX_IMPL_MDSP}) {
            EXPECT_EQ(Column(kOperationNumbers), column(impl)) << impl;
        }
        if (orlan::bestTarget() != nullptr) {
            EXPECT_NE(referenceColumn()[op_odxBitCountu8], simd[op_odxBitCountu8]);
        }
    });
    onProcessor(kFloatOnly, [] {
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_CPU));
        for (uint32_t impl : {ODX_IMPL_CPU, ODX_IMPL_ORLAN, ODX_IMPL_XDSP, ODX_IMPL_GPU}) {
            EXPECT_EQ(referenceColumn(), column(impl)) << impl;
        }
    });
    EXPECT_NE(nullptr, referenceColumn()[op_odxBitCountu8]);
}

TEST(Modes, LaterSelectionsRefillTheRemoteColumnOnly)
{
    static char mark;
    const Column marks(kOperationNumbers, &mark);
    const auto selectTwice = [&] {
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_CPU));
        std::fill(std::begin(odxFuncTable.entry), std::end(odxFuncTable.entry), &mark);
        std::fill(std::begin(odxInternalFuncTable.entry), std::end(odxInternalFuncTable.entry), &mark);
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_CPU));
        for (uint32_t impl = 0; impl < kImplementations; ++impl) {
            EXPECT_EQ(impl != ODX_IMPL_XDSP, marks == column(impl)) << impl;
        }
    };
    onProcessor(kArmSimd, [&] {
        selectTwice();
        EXPECT_EQ(withSimd(marks), column(ODX_IMPL_XDSP)); // what has no SIMD code keeps its remote variant
    });
    onProcessor(kFloatOnly, [&] {
        selectTwice();
        Column refilled = referenceColumn();
        for (uint32_t slot : kEmptySlots)
            refilled[slot] = &mark;
        EXPECT_EQ(refilled, column(ODX_IMPL_XDSP));
    });
}

TEST(Modes, HelperPointersFollowTheMode)
{
    onProcessor(kArmSimd, [] {
        for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU, ONDRIX_OP_EXT_REFERENCE}) {
            odxSetOperationMode(mode);
            [[maybe_unused]] const bool simd = mode == ONDRIX_OP_EXT_CPU && orlan::bestTarget() != nullptr;
#define SIMD_C false
#define SIMD_CV simd
#define ODX_HELPER(name, columns)                 \
    EXPECT_NE(nullptr, name##_) << #name << mode; \
    EXPECT_EQ(SIMD_##columns, &name##C != name##_) << #name << mode;
#include "frame/operations/families.def"
        }
    });
}

TEST(Modes, ReadTheLogSwitch)
{
    onProcessor(kFloatOnly, [] {
        const std::pair<const char*, void (*)()> rows[] = {
            {"2", [] { odxSetOperationMode(ONDRIX_OP_EXT_CPU); }},
            {"0", [] { odxSetOperationModeRemoteLib(ONDRIX_OP_EXT_CPU); }},
            {"1", [] { odxAvailableHardware(ONDRIX_OP_EXT_CPU); }},
            {"", [] { odxSetOperationMode(ONDRIX_OP_EXT_CPU); }}};
        for (const auto& [value, call] : rows) {
            setenv("VENDOR_RUNTIME_ONDRIX_LOG", value, 1);
            call();
            EXPECT_EQ(*value > '0' ? 1 : 0, libLogPrint);
        }
    });
}

TEST(Modes, ExtendedSelection)
{
    onProcessor(kOtherSimd, [] {
        LogCapture log;
        for (int option : {2, -1, 0x400}) {
            EXPECT_EQ(1, odxSetOperationModeExt(static_cast<odxOperationModeExt>(option)));
            EXPECT_EQ(
                (std::vector<LogLine>{
                    {3, "ondrix_lib_log",
                     "Failed in odxSetOperationModeExt. Please select appropriate option for mode to "
                     "odxSetOperationModeExt based on the target of interest"},
                    {3, "ondrix_lib_log",
                     "For mobile targets, odxSetOperationModeExt supports only ONDRIX_OP_EXT_XDSP and "
                     "ONDRIX_OP_EXT_GPU options"},
                    {3, "ondrix_lib_log",
                     "For non mobile targets(IOT or BXR), odxSetOperationModeExt supports ONDRIX_OP_EXT_XDSP, "
                     "ONDRIX_OP_EXT_GPU, ONDRIX_OP_EXT_ADSP, ONDRIX_OP_EXT_CDSP and ONDRIX_OP_EXT_MDSP  "
                     "options"}}),
                log.take());
        }
        EXPECT_EQ(0, odxImplTablesInitialized);
        EXPECT_EQ(ONDRIX_OP_CPU_PERFORMANCE, mode_globalVar);

        EXPECT_EQ(0, odxSetOperationModeExt(ONDRIX_EXT_TARGET_GPU));
        EXPECT_EQ(ONDRIX_OP_EXT_GPU, mode_globalVar);
        EXPECT_EQ(1u, HW_constraint_checks_enable);
        EXPECT_EQ(0, odxSetOperationModeExt(ONDRIX_EXT_TARGET_XDSP));
        EXPECT_EQ(ONDRIX_OP_EXT_XDSP, mode_globalVar);
        EXPECT_EQ(0u, HW_constraint_checks_enable);
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_CPU));
        EXPECT_EQ(1u, HW_constraint_checks_enable);
        EXPECT_EQ(1u, fakeRemote.constraintChecks);
        EXPECT_EQ(std::vector<LogLine>{}, log.take());
    });
}

TEST(Version, IsCopiedWholeOrNotAtAll)
{
    LogCapture log;
    char version[8];
    for (unsigned length = 0; length <= sizeof version; ++length) {
        memset(version, '#', sizeof version);
        odxGetVersion(version, length);
        const std::string text = length >= 6 ? std::string("1.7.1\0", 6) : std::string(length, '\0');
        EXPECT_EQ(text + std::string(sizeof version - text.size(), '#'), std::string(version, sizeof version))
            << length;
        EXPECT_EQ((std::vector<LogLine>{{3, "ondrix_lib_log", "Ondrix vendor library\n"}}), log.take());
    }
    odxGetVersion(nullptr, 6);
    EXPECT_EQ(1u, log.take().size());

    const int numbers[] = {ONDRIX_VERSION_MAJOR, ONDRIX_VERSION_MINOR, ONDRIX_VERSION_PATCH};
    EXPECT_EQ(std::string(ONDRIX_VERSION_TEXT),
              std::to_string(numbers[0]) + "." + std::to_string(numbers[1]) + "." + std::to_string(numbers[2]));
}

TEST(RemoteModes, TakeWhatTheirListsName)
{
    const Names low{"close", "open 1 for 1.7.1"}, twice{"close", "open 2 for 1.7.1", "close", "open 1 for 1.7.1"};
    const struct {
        odxOperationMode mode;
        char letter;
        Names events;
        uint32_t remote, local; // an operation each
        uint32_t registration;  // index of the buffer registration
    } rows[] = {
        {ONDRIX_OP_LOW_POWER, 'L', low, op_odxFilterMedian3x3u8, op_odxBoxFilter3x3u8, 2},
        // The lists of a mode are set by a fresh probe in low power.
        {ONDRIX_OP_PERFORMANCE, 'P', twice, op_odxRemapRGBA8888BLu8, op_odxBoxFilter5x5u8, 0},
        {ONDRIX_OP_CPU_OFFLOAD, 'O', low, op_odxTransposef32, op_odxTransposeu8, 0},
    };
    for (const auto& row : rows) {
        const bool simd = row.mode != ONDRIX_OP_LOW_POWER;
        onProcessor(simd ? kArmSimd : kFloatOnly, [&] {
            SCOPED_TRACE(row.letter);
            fakeRemote.openResult = 0;
            LogCapture log;
            EXPECT_EQ(0, odxSetOperationMode(row.mode));
            const std::vector<LogLine> lines = log.take();
            EXPECT_EQ(1,
                      std::count(lines.begin(), lines.end(), LogLine{3, "ondrix_lib_log", "XDSP is available"}));
            EXPECT_EQ(row.events, fakeRemote.takeEvents());
            EXPECT_EQ(listed(row.letter), setPointers());
            EXPECT_EQ(remoteColumn(simd ? withSimd(referenceColumn()) : referenceColumn()), column(ODX_IMPL_XDSP));
            const Indices selected = indices();
            EXPECT_EQ(2u, selected[row.remote]);
            EXPECT_EQ(simd ? 1u : 0u, selected[row.local]);
            Indices others = expected(simd ? kSimd : kReference);
            others[kTime] = 2;
            others[kRegistration] = row.registration;
            EXPECT_EQ(internal(others), internal(selected));
            EXPECT_EQ(1u, XDSP_initflag);

            GPU_initflag = 1;
            EXPECT_EQ(0, odxCleanUp());
            EXPECT_EQ(Names{"clean up"}, fakeRemote.takeEvents());
            EXPECT_EQ(0u, XDSP_initflag);
            EXPECT_EQ(0u, GPU_initflag);
            EXPECT_EQ(1, odxImplTablesInitialized);
            EXPECT_TRUE(indices() == selected);
        });
    }
}

TEST(RemoteModes, ExtendedModeTakesAllThatIsRemote)
{
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_DSP, ONDRIX_OP_EXT_XDSP}) {
        onProcessor(kArmSimd, [&] {
            fakeRemote.openResult = 0;
            EXPECT_EQ(0, odxSetOperationMode(mode));
            EXPECT_EQ((Names{"close", "open 2 for 1.7.1"}), fakeRemote.takeEvents());
            EXPECT_EQ(0u, HW_constraint_checks_enable);
            EXPECT_EQ(0u, fakeRemote.constraintChecks);
            EXPECT_EQ(reachable(), setPointers());
            EXPECT_EQ(nullptr, odxTransposeu16R_);
            // Pointers whose names are not those of their operations.
            EXPECT_EQ(remoteVariant(op_odxFilterMedian3x3u8), odxFilterMedian3x3u8_v2R_);
            EXPECT_EQ(remoteVariant(op_odxSumOfAbsoluteDiffs8x8u8), odxSumOfAbsoluteDiffs8x8u8_v2R_);
            EXPECT_EQ(remoteVariant(op_odxFilterCanny3x3u8), odxFilterCanny3x3u8_v2R_);
            EXPECT_EQ(remoteVariant(op_odxFilterCorrSep11x11s16), odxFilterCorrSep11x11s16_v3R_);
            const Indices all = indices();
            EXPECT_EQ(kPublicSlots - std::size(kEmptySlots) - 1,
                      static_cast<size_t>(std::count(all.begin(), all.begin() + kPublicSlots, 2)));
            EXPECT_EQ(1u, all[op_odxTransposeu16]);
            EXPECT_EQ((Indices{2, 2, 2, 2, 2, 2, 2, 2, 1, 1, 2, 2, 2, 1, 0, 0}), internal(all));
            EXPECT_EQ(remoteColumn(withSimd(referenceColumn())), column(ODX_IMPL_XDSP));
            odxHoughLineu8R_ = odxTransposeu16R_ = &fakeRemote; // in no list, and left out
            uRNull();
            EXPECT_EQ(Names{}, setPointers());
        });
    }
}

TEST(RemoteModes, NeverMindAMissingProcessor)
{
    onProcessor(kArmSimd, [] {
        for (const odxOperationMode mode : {ONDRIX_OP_LOW_POWER, ONDRIX_OP_PERFORMANCE, ONDRIX_OP_CPU_OFFLOAD,
                                            ONDRIX_OP_EXT_XDSP, ONDRIX_OP_EXT_GPU}) {
            EXPECT_EQ(0, odxSetOperationMode(mode)) << mode;
            EXPECT_TRUE(indices() == expected(kSimd)) << mode;
            EXPECT_EQ(Names{}, setPointers()) << mode;
        }
    });
    // A session that is lost between two selections leaves no index behind, but for the buffer registration's.
    onProcessor(kArmSimd, [] {
        fakeRemote.openResult = 0;
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_XDSP));
        fakeRemote = {};
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_XDSP));
        Indices left = expected(kSimd);
        left[kRegistration] = 2;
        EXPECT_TRUE(indices() == left);
    });
}

TEST(RemoteModes, ServingTheRemoteSideResetsNoIndex)
{
    onProcessor(kVendorSimd, [] {
        fakeRemote.openResult = 0;
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_CPU));
        const auto startOver = [] {
            setIndices(1);
            HW_constraint_checks_enable = fakeRemote.constraintChecks = 7;
            odxFuncTable.entry[op_odxBitCountu8 * kImplementations + ODX_IMPL_XDSP] = nullptr;
            uX();
        };
        const struct {
            odxOperationMode mode;
            Names pointers;
            unsigned checks;
            bool remoteTranspose;
        } rows[] = {{ONDRIX_OP_LOW_POWER, listed('L'), 1, false},
                    {ONDRIX_OP_PERFORMANCE, listed('P'), 1, false},
                    {ONDRIX_OP_CPU_OFFLOAD, listed('O'), 1, true},
                    {ONDRIX_OP_CPU_PERFORMANCE, {}, 1, false},
                    {ONDRIX_OP_EXT_XDSP, reachable(), 0, true},
                    {ONDRIX_OP_EXT_DSP, reachable(), 0, true},
                    {ONDRIX_OP_EXT_GPU, {}, 1, false},
                    {ONDRIX_OP_EXT_REFERENCE, {}, 1, false}};
        for (const auto& row : rows) {
            SCOPED_TRACE(row.mode);
            startOver();
            EXPECT_EQ(0u, odxSetOperationModeRemoteLib(row.mode));
            EXPECT_EQ(row.pointers, setPointers());
            EXPECT_EQ(row.checks, HW_constraint_checks_enable);
            EXPECT_EQ(row.checks, fakeRemote.constraintChecks);
            EXPECT_EQ(row.remoteTranspose ? 2u : 1u, odxImplTable[op_odxTransposef32]);
            EXPECT_EQ(1u, odxImplTable[op_odxTransposeu16]);
            const bool probed = row.mode != ONDRIX_OP_CPU_PERFORMANCE && row.mode != ONDRIX_OP_EXT_REFERENCE;
            EXPECT_EQ(probed ? remoteVariant(op_odxBitCountu8) : nullptr, column(ODX_IMPL_XDSP)[op_odxBitCountu8]);
            EXPECT_EQ(ONDRIX_OP_EXT_CPU, mode_globalVar);
        }
    });
    // Without a mobile target the standard modes do nothing.
    onProcessor(kOtherSimd, [] {
        fakeRemote.openResult = 0;
        EXPECT_EQ(0u, odxSetOperationModeRemoteLib(ONDRIX_OP_CPU_OFFLOAD));
        EXPECT_EQ(Names{}, setPointers());
        EXPECT_EQ(0u, odxSetOperationModeRemoteLib(ONDRIX_OP_EXT_XDSP));
        EXPECT_EQ(1u, HW_constraint_checks_enable);
        EXPECT_TRUE(indices() == expected(kReference));
    });
}

TEST(Manager, IsRefusedIncomplete)
{
    onProcessor(kArmSimd, [] {
        ODX_FUNC_MANAGER whole = managerOf(kPublicSlots, kInternalEntries, kImplementations);
        ODX_FUNC_MANAGER parts[] = {whole, whole, whole, whole, whole};
        parts[0].implTable = parts[1].internalImplTable = nullptr;
        parts[2].funcTable = nullptr;
        parts[3].internalFuncTable = nullptr;
        parts[4].implementations = 2;
        EXPECT_EQ(1u, odxInitializeMasterFuncManager(nullptr));
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(1u, odxInitializeMasterFuncManager(&parts[i]));
        EXPECT_EQ(nullptr, odxMasterFuncManager);
        EXPECT_EQ(0u, odxInitializeMasterFuncManager(&whole));
        EXPECT_EQ(&whole, odxMasterFuncManager);

        EXPECT_EQ(1u, uXIndex(nullptr));
        EXPECT_EQ(2u, uXIndex(&parts[0]));
        EXPECT_EQ(3u, uXIndex(&parts[1]));
        EXPECT_EQ(4u, uXIndex(&parts[4]));
        EXPECT_EQ(1u, uGIndex(nullptr));
        EXPECT_EQ(0u, uGIndex(&whole));
        for (auto* table : {uHWLowPowerModeTable, uHWPerformanceModeTable, uXCpuOffloadModeTable}) {
            fakeRemote = {};
            EXPECT_EQ(1u, table(&whole)); // no DSP
            fakeRemote.openResult = 0;
            EXPECT_EQ(1u, table(nullptr));
            for (const int i : {0, 1, 4})
                EXPECT_EQ(1u, table(&parts[i]));
            EXPECT_TRUE(indices() == expected(kReference));
            EXPECT_EQ(0u, table(&whole));
            EXPECT_EQ(2u, odxInternalImplTable[10]);
            setIndices(0);
        }
    });
}

TEST(Manager, ShorterTablesAreFilledAsFarAsTheyReach)
{
    onProcessor(kArmSimd, [] {
        fakeRemote.openResult = 0;
        for (const auto& [slots, entries] : {std::pair{0u, 0u}, {100u, 11u}, {396u, 12u}, {505u, 13u}}) {
            SCOPED_TRACE(slots);
            for (auto* fill : {uXIndex, uHWLowPowerModeTable, uHWPerformanceModeTable, uXCpuOffloadModeTable}) {
                setIndices(0);
                ODX_FUNC_MANAGER part = managerOf(slots, entries, 3);
                EXPECT_EQ(0u, fill(&part));
                const Indices filled = indices();
                part.publicSlots = kPublicSlots;
                part.internalEntries = kInternalEntries;
                EXPECT_EQ(0u, fill(&part));
                Indices whole = indices();
                std::fill(whole.begin() + slots, whole.begin() + kPublicSlots, 0);
                std::fill(whole.begin() + kPublicSlots + entries, whole.end(), 0);
                EXPECT_TRUE(filled == whole);
            }
        }
    });
}

TEST(TableFill, ReportsTheTargetsThatAreThere)
{
    onProcessor(kArmSimd, [] {
        const auto fill = [](bool xdsp, bool gpu) {
            return odxTableHWInit(&odxFuncTable, &odxInternalFuncTable, xdsp, gpu);
        };
        LogCapture log;
        EXPECT_EQ(1u, odxTableHWInit(nullptr, &odxInternalFuncTable, true, true));
        EXPECT_EQ(1u, odxTableHWInit(&odxFuncTable, nullptr, true, true));
        EXPECT_EQ(0u, fill(false, false));
        EXPECT_EQ(std::vector<LogLine>{}, log.take());

        EXPECT_EQ(1u, fill(false, true)); // no master record yet
        EXPECT_EQ((std::vector<LogLine>{{3, "ondrix_lib_log", "GPU is available"}}), log.take());

        ODX_FUNC_MANAGER manager = managerOf(kPublicSlots, kInternalEntries, 3);
        EXPECT_EQ(0u, odxInitializeMasterFuncManager(&manager));
        EXPECT_EQ(4u, fill(false, true));
        manager.implementations = 4;
        EXPECT_EQ(0u, fill(true, true));
        fakeRemote.fillResult = 16;
        EXPECT_EQ(16u, fill(true, true));
        EXPECT_EQ(remoteVariant(op_odxCopy), column(ODX_IMPL_XDSP)[op_odxCopy]);
        manager.funcTable = nullptr;
        EXPECT_EQ(2u, fill(false, true));
    });
}
