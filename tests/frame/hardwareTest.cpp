// What the library learns about the processor, the board and the remote processor.
#include "frame/hardware.h"

#include "frame/fakeRemote.h"
#include "frame/log.h"
#include "support/logCapture.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/time.h>
#include <unistd.h>

using namespace odx;
using namespace odx::test;

namespace
{

bool processorCountFails = false;

std::string field(const std::string& description, size_t length = std::string::npos)
{
    const size_t size = std::min(length, description.size());
    char* value = extract_cpuinfo_field(description.data(), static_cast<int>(size), "Features");
    std::string text = value != nullptr ? value : "(absent)";
    free(value);
    return text;
}

ODX_CPU_INFO parse(const std::string& description, bool flagsLine = false)
{
    return parseProcessorDescription(description.data(), description.size(), flagsLine);
}

} // namespace

// The linker puts this in place of odx::platform::onlineProcessors. (In place of sysconf it would be in the way of
// the sanitizers' runtimes.)
extern "C" long __real__ZN3odx8platform16onlineProcessorsEv();
extern "C" long __wrap__ZN3odx8platform16onlineProcessorsEv();
extern "C" long __wrap__ZN3odx8platform16onlineProcessorsEv()
{
    return processorCountFails ? -1 : __real__ZN3odx8platform16onlineProcessorsEv();
}

TEST(ProcessorField, IsWhatFollowsItsNameAtTheStartOfALine)
{
    const std::pair<std::string, std::string> rows[] = {
        {"Features\t: fp asimd\n", "fp asimd"},
        {"processor : 0\nmy Features : no\nFeatures : fp\nFeatures : later\n", "fp"},
        {"my Features : fp\n", "(absent)"},
        {"", "(absent)"},
        {"Feature", "(absent)"},
        {"Features : fp", "fp"}, // ends with the buffer
        {"Features : \nHardware : x\n", ""},
        {"Features : ", ""},
        // There is a blank after the colon.
        {"Features :fp\n", "(absent)"},
        {"Features :\tfp\n", "(absent)"},
        {"Features :", "(absent)"},
        {"Features fp", "(absent)"},
    };
    for (const auto& [description, value] : rows) {
        EXPECT_EQ(value, field(description));
        EXPECT_EQ(value,
                  field(description + "Features : more\n", description.size())); // nothing beyond the length
    }
    for (const size_t length : {7u, 8u, 10u})
        EXPECT_EQ("(absent)", field("Features : fp\n", length)) << length;
}

TEST(ProcessorDescription, TellsFeaturesImplementerAndChip)
{
    constexpr int kBoth = ODX_CPU_VFP | ODX_CPU_SIMD;
    const struct {
        const char* name;
        std::vector<const char*> values;
        int features;
        unsigned implementer = 0, cpuOnlyChip = 0;
        bool flagsLine = false;
    } rows[] = {
        {"Features : ", {"half thumb fastmult vfp edsp neon\n", "asimd\tfp \n"}, kBoth},
        {"Features : ", {"fp\n"}, ODX_CPU_VFP},
        {"Features : ", {" neon"}, ODX_CPU_SIMD},
        {"Features : ", {"vfpv3 fphp asimddp asimdhp neonx\n"}, 0}, // whole words
        {"CPU architecture: ", {"7", "8", " 9", "10", "7-A", "99999999999999999999"}, ODX_CPU_ARMV7},
        {"CPU architecture: ", {"6", "5TEJ", "AArch64", "", "-8", "0x8"}, 0}, // a decimal number
        {"CPU implementer : ", {"0x51\n"}, 0, 0x51},
        {"CPU implementer : ", {"65\n"}, 0, 65},
        {"CPU implementer : ", {"010\n"}, 0, 8}, // in the notation of C
        {"CPU implementer : ", {"ARM\n", "\nCPU implementer : 0x41\n"}, 0},
        {"CPU part : ", {"0x41\n"}, 0},
        {"Hardware\t: ", {"TKM200\n", "TKM210\n", "TKM100\n", "DELTA\n", "Board xDELTAx (flat)\n"}, 0, 0, 1},
        {"Hardware\t: ", {"TKM300 delta\nmodel : TKM200\n"}, 0},
        // A line of flags serves only where it is asked for and there are no features.
        {"flags\t\t: ", {"fpu vme avx avx2\n"}, kBoth, 0, 0, true},
        {"flags\t\t: ", {"fpu avx avx2x\nvmx flags : avx2\n"}, ODX_CPU_VFP, 0, 0, true},
        {"flags\t\t: ", {"fpu avx2\nFeatures : vfp\n"}, ODX_CPU_VFP, 0, 0, true},
        {"flags\t\t: ", {"fpu avx2\nFeatures : \n"}, 0, 0, 0, true},
        {"flags\t\t: ", {"fpu avx2\n"}, 0},
    };
    for (const auto& row : rows) {
        for (const char* value : row.values) {
            const ODX_CPU_INFO found = parse(row.name + std::string(value), row.flagsLine);
            EXPECT_EQ(row.features, found.features) << row.name << value;
            EXPECT_EQ(row.implementer, found.implementer) << row.name << value;
            EXPECT_EQ(row.cpuOnlyChip, found.cpuOnlyChip) << row.name << value;
        }
    }
}

TEST(Detection, RunsOnceAndReadsTheStartOfTheDescription)
{
    const std::string filler(4096 - 13, ' ');
    // The last word that the first 4096 bytes hold is whole, and what comes after them is not seen.
    const Processor processor{"a long description", filler + "\nFeatures: fp neon\nCPU implementer : 0x41\n", ""};
    onProcessor(processor, [] {
        EXPECT_EQ(1u, processorInfo().detectionRan);
        EXPECT_EQ(ODX_CPU_VFP, processorInfo().features);
        EXPECT_EQ(0u, processorInfo().implementer);
        describeProcessor(kArmSimd.description);
        EXPECT_EQ(ODX_CPU_VFP, processorInfo().features);
    });
}

TEST(Detection, AnUnreadableDescriptionCountsAsRun)
{
    const auto isEmpty = [] {
        EXPECT_EQ(1u, processorInfo().detectionRan);
        EXPECT_EQ(0, processorInfo().features);
        EXPECT_EQ(0u, processorInfo().implementer);
        EXPECT_EQ(0, odx_check_only_cpu());
        EXPECT_EQ(unsigned{ONDRIX_HW_CPU_INFO}, odxAvailableHardware(ONDRIX_OP_PERFORMANCE));
    };
    onProcessor(kUnreadable, isEmpty);
    onProcessor(kUnreadable, [&] {
        setenv("ONDRIX_CPUINFO", "/", 1); // opens, but cannot be read
        isEmpty();
    });
}

TEST(Detection, ReadsTheSystemsDescriptionUnlessAnotherIsNamed)
{
    std::string text(4096, '\0');
    const int file = open("/proc/cpuinfo", O_RDONLY);
    const ssize_t length = read(file, &text[0], text.size());
    close(file);
    text.resize(static_cast<size_t>(std::max<ssize_t>(length, 0)));
#if defined(__x86_64__)
    const ODX_CPU_INFO expected = parse(text, true);
#else
    const ODX_CPU_INFO expected = parse(text);
#endif
    for (const char* name : {"", static_cast<const char*>(nullptr)}) {
        onProcessor(kUnreadable, [&] {
            unsetenv("ONDRIX_CPUINFO");
            if (name != nullptr) setenv("ONDRIX_CPUINFO", name, 1);
            EXPECT_EQ(expected.features, processorInfo().features);
            EXPECT_EQ(expected.implementer, processorInfo().implementer);
        });
    }
}

TEST(Detection, AnInterruptedReadIsRepeated)
{
    onProcessor(kUnreadable, [] {
        static int ends[2];
        static volatile sig_atomic_t interruptions = 0;
        ASSERT_EQ(0, pipe(ends));
        setenv("ONDRIX_CPUINFO", ("/proc/self/fd/" + std::to_string(ends[0])).c_str(), 1);
        struct sigaction action = {};
        action.sa_handler = [](int) {
            if ((interruptions = interruptions + 1) != 20) return;
            if (write(ends[1], "CPU implementer : 0x51\n", 23) != 23) abort();
            close(ends[1]);
        };
        sigaction(SIGALRM, &action, nullptr);
        const itimerval often = {{0, 2000}, {0, 2000}}, never = {};
        setitimer(ITIMER_REAL, &often, nullptr);
        EXPECT_EQ(0x51u, processorInfo().implementer); // waits for the text
        setitimer(ITIMER_REAL, &never, nullptr);
        EXPECT_LE(20, interruptions);
    });
}

TEST(HardwareMask, TellsFeaturesAndVendor)
{
    enum : unsigned {
        kRan = ONDRIX_HW_CPU_INFO,
        kSimd = ONDRIX_HW_SIMD,
        kFloat = ONDRIX_HW_VFP,
        kV7 = ONDRIX_HW_ARMV7,
        kMobile = ONDRIX_HW_MOBILE
    };
    const struct {
        Processor processor;
        unsigned mask;
    } rows[] = {
        {kArmSimd, kRan | kSimd | kFloat | kV7 | kMobile},
        {kVendorSimd, kRan | kSimd | kFloat | kV7 | kMobile},
        {kOtherSimd, kRan | kSimd | kFloat | kV7},
        {kOtherSimdOnVendorBoard, kRan | kSimd | kFloat | kV7 | kMobile},
        {kFloatOnly, kRan | kFloat | kMobile},
        {kNeither, kRan | kV7 | kMobile},
        {kUnreadable, kRan},
#if defined(__x86_64__)
        {{"x86-64", "vendor_id\t: x\nflags\t\t: fpu sse avx avx2\n", ""}, kRan | kSimd | kFloat},
#endif
    };
    for (const auto& row : rows) {
        onProcessor(row.processor, [&] { EXPECT_EQ(row.mask, odxAvailableHardware(ONDRIX_OP_PERFORMANCE)); });
    }
}

TEST(HardwareMask, KnowsTheVendorsBoardsByThreeLetters)
{
    const std::pair<const char*, bool> boards[] = {
        {"vka", true},  {"vkb1", true},  {"vkc8998", true}, {"vkd", true}, {"vk", false}, {"vke1", false},
        {"VKA", false}, {"xvka", false}, {"vja", false},    {"v", false},  {"vk`", false}};
    for (const auto& [board, mobile] : boards) {
        onProcessor({board, kOtherSimd.description, board},
                    [mobile = mobile] { EXPECT_EQ(mobile, (odxAvailableHardware(0) & ONDRIX_HW_MOBILE) != 0); });
    }
}

class RemoteProbe : public testing::Test
{
protected:
    ~RemoteProbe() override { fakeRemote = {}, XDSP_initflag = 0; }
};

TEST_F(RemoteProbe, OpensASessionInThePowerModeOfTheMode)
{
    const struct {
        unsigned mode;
        int power;
    } rows[] = {{0, 1}, {1, 2}, {2, 1}, {3, 1}, {77, 1}, {0x80000400u, 2}, {0x80000000u, 2}, {0xFFFFFFFFu, 2}};
    for (const auto& row : rows) {
        fakeRemote = {};
        fakeRemote.openResult = 0;
        EXPECT_EQ(unsigned{ONDRIX_HW_XDSP}, odxAvailableHWComponent(row.mode)) << row.mode;
        const std::string open = "open " + std::to_string(row.power) + " for 1.7.1";
        EXPECT_EQ((std::vector<std::string>{"close", open}), fakeRemote.takeEvents()) << row.mode;
        EXPECT_EQ(std::vector<unsigned>{ONDRIX_HW_XDSP}, fakeRemote.sharedMemoryFor);

        // An open session of that power mode is kept, one of another is closed.
        odxAvailableHWComponent(row.mode);
        EXPECT_EQ(std::vector<std::string>{}, fakeRemote.takeEvents()) << row.mode;
        fakeRemote.powerMode = 0;
        odxAvailableHWComponent(row.mode);
        EXPECT_EQ((std::vector<std::string>{"close", open}), fakeRemote.takeEvents()) << row.mode;
    }
}

TEST_F(RemoteProbe, ReportsAnAbsentProcessorAndItsTime)
{
    LogCapture log;
    EXPECT_EQ(0u, odxAvailableHWComponent(0));
    EXPECT_EQ((std::vector<LogLine>{{3, "ondrix_lib_log", "Ondrix vendor library\n"}}), log.take());
    libLogPrint = 1;
    EXPECT_EQ(0u, odxAvailableHWComponent(0));
    libLogPrint = 0;
    EXPECT_EQ(4u, fakeRemote.takeEvents().size()); // each probe tries again
    EXPECT_EQ((std::vector<unsigned>{0, 0}), fakeRemote.sharedMemoryFor);
    const std::vector<LogLine> lines = log.take();
    ASSERT_EQ(2u, lines.size());
    const std::string start = " Z9 Initialization Time : ";
    EXPECT_EQ((LogLine{6, "ondrix_runtime_log", start}),
              (LogLine{lines[1].priority, lines[1].tag, lines[1].text.substr(0, start.size())}));
    EXPECT_GT(60000000, std::stoll(lines[1].text.substr(start.size()))); // microseconds, not since 1970
}

TEST_F(RemoteProbe, IsMadeOnlyForMobileTargetsAndModesThatMayUseIt)
{
    const auto bits = [](int mode) {
        XDSP_initflag = GPU_initflag = 7;
        return odxAvailableHardware(mode) & (ONDRIX_HW_XDSP | ONDRIX_HW_GPU);
    };
    const auto cpuModes = {ONDRIX_OP_CPU_PERFORMANCE, ONDRIX_OP_EXT_CPU, ONDRIX_OP_EXT_REFERENCE,
                           ONDRIX_OP_EXT_ORLAN};
    const std::vector<int> remoteModes({ONDRIX_OP_LOW_POWER, ONDRIX_OP_PERFORMANCE, ONDRIX_OP_CPU_OFFLOAD,
                                        ONDRIX_OP_EXT_DSP, ONDRIX_OP_EXT_XDSP, ONDRIX_OP_EXT_GPU, 99, INT32_MIN});
    onProcessor(kOtherSimdOnVendorBoard, [&] {
        fakeRemote.openResult = 0;
        for (int mode : cpuModes) {
            EXPECT_EQ(0u, bits(mode)) << mode;
            EXPECT_EQ(7u, XDSP_initflag);
            EXPECT_EQ(0u, fakeRemote.takeEvents().size()) << mode;
        }
        for (int mode : remoteModes) {
            EXPECT_EQ(unsigned{ONDRIX_HW_XDSP}, bits(mode)) << mode;
            EXPECT_EQ(1u, XDSP_initflag) << mode;
            EXPECT_EQ(0u, GPU_initflag) << mode;
        }
        fakeRemote = {};
        EXPECT_EQ(0u, bits(ONDRIX_OP_LOW_POWER));
        EXPECT_EQ(0u, XDSP_initflag);
    });
    onProcessor(kOtherSimd, [&] {
        fakeRemote.openResult = 0;
        for (int mode : remoteModes)
            EXPECT_EQ(0u, bits(mode)) << mode;
        EXPECT_EQ(0u, fakeRemote.events.size());
    });
}

TEST_F(RemoteProbe, DirectSelection)
{
    EXPECT_EQ(-1, odxSelectXDSP6Mode(2));
    EXPECT_EQ(0u, XDSP_initflag);
    fakeRemote.openResult = 0;
    EXPECT_EQ(1, odxSelectXDSP6Mode(2));
    EXPECT_EQ(1u, XDSP_initflag);
    EXPECT_EQ(2, fakeRemote.powerMode);
    EXPECT_EQ(0x123456789ab, odxZ9GetClk());
}

TEST(PlatformServices, ProcessorCount)
{
    LogCapture log;
    EXPECT_EQ(sysconf(_SC_NPROCESSORS_ONLN), odxAvailableProcessors());
    EXPECT_EQ(std::vector<LogLine>{}, log.take());
    processorCountFails = true;
    EXPECT_EQ(1, odxAvailableProcessors());
    processorCountFails = false;
    EXPECT_EQ((std::vector<LogLine>{{6, "ondrix_lib_log", "Error in getting the number of available processor"}}),
              log.take());
}

TEST(PlatformServices, TimeIsTheWallClockInMicroseconds)
{
    const int64_t before = time(nullptr);
    const int64_t now = odxGetTime();
    usleep(2000);
    EXPECT_LE(before - 1, now / 1000000);
    EXPECT_GE(before + 60, now / 1000000);
    const int64_t elapsed = odxGetTime() - now;
    EXPECT_LE(2000, elapsed);
    EXPECT_GT(60000000, elapsed);
}

TEST(PlatformServices, PropertiesAreNumbers)
{
    const std::pair<const char*, int> rows[] = {{"1", 1},
                                                {"0", 0},
                                                {"", 0},
                                                {"-3", -3},
                                                {"on", 0},
                                                {"2x", 2},
                                                {"4294967296", INT32_MAX},
                                                {"-4294967296", INT32_MIN}};
    for (const auto& [text, number] : rows) {
        setenv("A_PROPERTY_9", text, 1);
        EXPECT_EQ(number, platform::propertyNumber("a.property-9")) << text;
    }
    unsetenv("A_PROPERTY_9");
    EXPECT_EQ(0, platform::propertyNumber("a.property-9"));
}

TEST(PlatformServices, PropertyValuesAreCutToTheirBuffer)
{
    setenv("A_PROPERTY", std::string(200, 'x').c_str(), 1);
    char value[platform::kPropertyValueMax + 1];
    memset(value, '#', sizeof value);
    EXPECT_EQ(91, __system_property_get("a.property", value));
    EXPECT_EQ(std::string(91, 'x'), value);
    EXPECT_EQ('#', value[platform::kPropertyValueMax]);
    unsetenv("A_PROPERTY");
    EXPECT_EQ(0, __system_property_get("a.property", value));
    EXPECT_STREQ("", value);
    EXPECT_EQ(0, __system_property_get(std::string(1000, 'p').c_str(), value));
}

TEST(PlatformServices, SharedMemoryIsAbsent)
{
    int descriptor = 5;
    EXPECT_GT(0, ion_open());
    EXPECT_GT(0, ion_alloc_fd(3, 4096, 4096, 0x2000000, 1, &descriptor));
    EXPECT_EQ(5, descriptor);
    EXPECT_GT(0, ion_close(3));
}
