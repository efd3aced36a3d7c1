// What the library learns about the processor, the board and the remote processor.
#include "frame/hardware.h"

#include "frame/fakeRemote.h"
#include "frame/log.h"
#include "support/childProcess.h"
#include "support/logCapture.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace odx;
using namespace odx::test;

namespace
{

bool processorCountFails = false;

std::string field(const std::string& description, const char* name)
{
    char* value = extract_cpuinfo_field(description.data(), static_cast<int>(description.size()), name);
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

TEST(ProcessorField, IsFoundWhereItStartsALine)
{
    EXPECT_EQ("fp asimd", field("Features\t: fp asimd\n", "Features"));
    EXPECT_EQ("fp", field("processor : 0\nmy Features : no\nFeatures : fp\nFeatures : later\n", "Features"));
    EXPECT_EQ("(absent)", field("my Features : fp\n", "Features"));
    EXPECT_EQ("(absent)", field("", "Features"));
    EXPECT_EQ("(absent)", field("Feature", "Features"));
}

TEST(ProcessorField, EndsWithItsLineOrTheBuffer)
{
    EXPECT_EQ("fp", field("Features : fp", "Features"));
    EXPECT_EQ("", field("Features : \nHardware : x\n", "Features"));
    EXPECT_EQ("", field("Features : ", "Features"));
    // Nothing beyond the given length is looked at.
    char* value = extract_cpuinfo_field("Features : fp asimd\n", 13, "Features");
    EXPECT_STREQ("fp", value);
    free(value);
    for (int length : {7, 8, 10}) {
        EXPECT_EQ(nullptr, extract_cpuinfo_field("Features : fp\n", length, "Features")) << length;
    }
}

TEST(ProcessorField, NeedsABlankAfterTheColon)
{
    EXPECT_EQ("(absent)", field("Features :fp\n", "Features"));
    EXPECT_EQ("(absent)", field("Features :\tfp\n", "Features"));
    EXPECT_EQ("(absent)", field("Features :", "Features"));
    EXPECT_EQ("(absent)", field("Features fp", "Features"));
}

TEST(ProcessorDescription, FeaturesAreWholeWords)
{
    EXPECT_EQ(ODX_CPU_VFP | ODX_CPU_SIMD, parse("Features : half thumb fastmult vfp edsp neon\n").features);
    EXPECT_EQ(ODX_CPU_VFP | ODX_CPU_SIMD, parse("Features : asimd\tfp \n").features);
    EXPECT_EQ(ODX_CPU_VFP, parse("Features : fp\n").features);
    EXPECT_EQ(ODX_CPU_SIMD, parse("Features :  neon").features);
    EXPECT_EQ(0, parse("Features : vfpv3 fphp asimddp asimdhp neonx\n").features);
    EXPECT_EQ(0, parse("CPU part : 0xd03\n").features);
}

TEST(ProcessorDescription, ArchitectureIsADecimalNumberOfAtLeast7)
{
    for (const char* value : {"7", "8", " 9", "10", "7-A", "99999999999999999999"}) {
        EXPECT_EQ(ODX_CPU_ARMV7, parse("CPU architecture: " + std::string(value) + "\n").features) << value;
    }
    for (const char* value : {"6", "5TEJ", "AArch64", "", "-8", "0x8"}) {
        EXPECT_EQ(0, parse("CPU architecture: " + std::string(value) + "\n").features) << value;
    }
}

TEST(ProcessorDescription, ImplementerIsANumberInCNotation)
{
    EXPECT_EQ(0x51u, parse("CPU implementer : 0x51\n").implementer);
    EXPECT_EQ(65u, parse("CPU implementer : 65\n").implementer);
    EXPECT_EQ(8u, parse("CPU implementer : 010\n").implementer);
    EXPECT_EQ(0u, parse("CPU implementer : ARM\n").implementer);
    EXPECT_EQ(0u, parse("CPU implementer : \nCPU implementer : 0x41\n").implementer);
    EXPECT_EQ(0u, parse("CPU part : 0x41\n").implementer);
}

TEST(ProcessorDescription, CpuOnlyChipsAreNamedAnywhereInTheHardwareLine)
{
    for (const char* chip : {"TKM200", "TKM210", "TKM100", "DELTA", "Board xDELTAx (flat)"}) {
        EXPECT_EQ(1u, parse("Hardware\t: " + std::string(chip) + "\n").cpuOnlyChip) << chip;
    }
    EXPECT_EQ(0u, parse("Hardware\t: TKM300 delta\nmodel : TKM200\n").cpuOnlyChip);
}

TEST(ProcessorDescription, FlagsLineServesOnlyWithoutFeatures)
{
    EXPECT_EQ(ODX_CPU_VFP | ODX_CPU_SIMD, parse("flags\t\t: fpu vme avx avx2\n", true).features);
    EXPECT_EQ(ODX_CPU_VFP, parse("flags\t\t: fpu avx avx2x\nvmx flags : avx2\n", true).features);
    EXPECT_EQ(0, parse("flags\t\t: fpu avx2\n", false).features);
    EXPECT_EQ(ODX_CPU_VFP, parse("flags\t\t: fpu avx2\nFeatures : vfp\n", true).features);
    EXPECT_EQ(0, parse("flags\t\t: fpu avx2\nFeatures : \n", true).features);
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
    const ChildResult result = runInChild([] {
        const std::string directory = testing::TempDir() + "ondrix_" + std::to_string(getpid());
        const std::string pipe = directory + "/cpuinfo";
        ASSERT_EQ(0, mkdir(directory.c_str(), 0700));
        ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
        setenv("ONDRIX_CPUINFO", pipe.c_str(), 1);
        static volatile sig_atomic_t interruptions = 0;
        struct sigaction action = {};
        action.sa_handler = [](int) { interruptions = interruptions + 1; };
        sigaction(SIGUSR1, &action, nullptr);

        const pthread_t reader = pthread_self();
        std::thread writer([&] {
            const int file = open(pipe.c_str(), O_WRONLY); // waits for the reader
            for (int i = 0; i < 20; ++i) {
                usleep(2000);
                pthread_kill(reader, SIGUSR1);
            }
            usleep(2000);
            const std::string text = "CPU implementer : 0x51\n";
            EXPECT_EQ(static_cast<ssize_t>(text.size()), write(file, text.data(), text.size()));
            close(file);
        });
        EXPECT_EQ(0x51u, processorInfo().implementer);
        writer.join();
        EXPECT_LT(0, interruptions);
        unlink(pipe.c_str());
        rmdir(directory.c_str());
    });
    EXPECT_EQ(0, result.exitStatus) << result.output;
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
        const Processor& processor;
        unsigned mask;
    } rows[] = {
        {kArmSimd, kRan | kSimd | kFloat | kV7 | kMobile},
        {kVendorSimd, kRan | kSimd | kFloat | kV7 | kMobile},
        {kOtherSimd, kRan | kSimd | kFloat | kV7},
        {kOtherSimdOnVendorBoard, kRan | kSimd | kFloat | kV7 | kMobile},
        {kFloatOnly, kRan | kFloat | kMobile},
        {kNeither, kRan | kV7 | kMobile},
        {kUnreadable, kRan},
    };
    for (const auto& row : rows) {
        onProcessor(row.processor, [&] { EXPECT_EQ(row.mask, odxAvailableHardware(ONDRIX_OP_PERFORMANCE)); });
    }
}

TEST(HardwareMask, KnowsTheVendorsBoardsByThreeLetters)
{
    for (const char* board : {"vka", "vkb1", "vkc8998", "vkd"}) {
        onProcessor({board, kOtherSimd.description, board},
                    [] { EXPECT_TRUE(odxAvailableHardware(0) & ONDRIX_HW_MOBILE); });
    }
    for (const char* board : {"vk", "vke1", "VKA", "xvka", "v", "vk`"}) {
        onProcessor({board, kOtherSimd.description, board},
                    [] { EXPECT_FALSE(odxAvailableHardware(0) & ONDRIX_HW_MOBILE); });
    }
}

#if defined(__x86_64__)
TEST(HardwareMask, OfAnX86Processor)
{
    onProcessor({"x86-64", "vendor_id\t: x\nflags\t\t: fpu sse avx avx2\n", ""}, [] {
        EXPECT_EQ(unsigned{ONDRIX_HW_CPU_INFO | ONDRIX_HW_SIMD | ONDRIX_HW_VFP}, odxAvailableHardware(0));
    });
}
#endif

TEST(RemoteProbe, OpensASessionInThePowerModeOfTheMode)
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
    fakeRemote = {};
}

TEST(RemoteProbe, ReportsAnAbsentProcessor)
{
    fakeRemote = {};
    EXPECT_EQ(0u, odxAvailableHWComponent(0));
    EXPECT_EQ(0u, odxAvailableHWComponent(0));
    EXPECT_EQ(4u, fakeRemote.takeEvents().size()); // each probe tries again
    EXPECT_EQ((std::vector<unsigned>{0, 0}), fakeRemote.sharedMemoryFor);
    fakeRemote = {};
}

TEST(RemoteProbe, LogsItsTimeWhenTheTraceIsOn)
{
    fakeRemote = {};
    LogCapture log;
    odxAvailableHWComponent(0);
    EXPECT_EQ((std::vector<LogLine>{{3, "ondrix_lib_log", "Ondrix vendor library\n"}}), log.take());
    libLogPrint = 1;
    odxAvailableHWComponent(0);
    libLogPrint = 0;
    const std::vector<LogLine> lines = log.take();
    ASSERT_EQ(2u, lines.size());
    EXPECT_EQ(6, lines[1].priority);
    EXPECT_EQ("ondrix_runtime_log", lines[1].tag);
    const std::string start = " Z9 Initialization Time : ";
    ASSERT_EQ(start, lines[1].text.substr(0, start.size()));
    EXPECT_GT(60000000, std::stoll(lines[1].text.substr(start.size()))); // microseconds, not since 1970
    fakeRemote = {};
}

TEST(RemoteProbe, IsMadeOnlyForMobileTargetsAndModesThatMayUseIt)
{
    const auto bits = [](int mode) {
        XDSP_initflag = GPU_initflag = 7;
        return odxAvailableHardware(mode) & (ONDRIX_HW_XDSP | ONDRIX_HW_GPU);
    };
    const int cpuModes[] = {ONDRIX_OP_CPU_PERFORMANCE, ONDRIX_OP_EXT_CPU, ONDRIX_OP_EXT_REFERENCE,
                            ONDRIX_OP_EXT_ORLAN};
    const int remoteModes[] = {ONDRIX_OP_LOW_POWER,
                               ONDRIX_OP_PERFORMANCE,
                               ONDRIX_OP_CPU_OFFLOAD,
                               ONDRIX_OP_EXT_DSP,
                               ONDRIX_OP_EXT_XDSP,
                               ONDRIX_OP_EXT_GPU,
                               99,
                               INT32_MIN};
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

TEST(RemoteProbe, DirectSelection)
{
    fakeRemote = {};
    XDSP_initflag = 0;
    EXPECT_EQ(-1, odxSelectXDSP6Mode(2));
    EXPECT_EQ(0u, XDSP_initflag);
    fakeRemote.openResult = 0;
    EXPECT_EQ(1, odxSelectXDSP6Mode(2));
    EXPECT_EQ(1u, XDSP_initflag);
    EXPECT_EQ(2, fakeRemote.powerMode);
    EXPECT_EQ(0x123456789ab, odxZ9GetClk());
    XDSP_initflag = 0;
    fakeRemote = {};
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
    const struct {
        const char* text;
        int number;
    } rows[] = {{"1", 1},
                {"0", 0},
                {"", 0},
                {"-3", -3},
                {"on", 0},
                {"2x", 2},
                {"4294967296", INT32_MAX},
                {"-4294967296", INT32_MIN}};
    for (const auto& row : rows) {
        setenv("A_PROPERTY_9", row.text, 1);
        EXPECT_EQ(row.number, platform::propertyNumber("a.property-9")) << row.text;
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
