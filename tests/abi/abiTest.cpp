// The shared library as an application meets it, one that supplies the platform's functions itself.
#include "ondrix.h"

#include "support/childProcess.h"
#include "support/logCapture.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <map>
#include <string.h>

using namespace odx::test;

namespace
{
std::map<std::string, std::string> properties;
}

extern "C" {

extern void* odxBoxFilter5x5u8R_;

__attribute__((visibility("default"))) int __system_property_get(const char* name, char* value)
{
    return static_cast<int>(strlen(strcpy(value, properties[name].c_str())));
}
}

TEST(SharedLibrary, LogsThroughTheApplicationsFunction)
{
    LogCapture log;
    char version[6];
    odxGetVersion(version, sizeof version);
    EXPECT_STREQ("1.7.1", version);
    EXPECT_EQ(0u, odxBitCountu8(nullptr, 1));
    EXPECT_EQ((std::vector<LogLine>{{3, "ondrix_lib_log", "Ondrix vendor library\n"}}), log.take());
}

// What the library brings for applications without a log: a line each on stderr.
TEST(SharedLibrary, HasALogOfItsOwn)
{
    void* const library = dlopen("libondrixopt.so", RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(nullptr, library);
    using Print = int(int priority, const char* tag, const char* format, ...);
    auto* const print = reinterpret_cast<Print*>(dlsym(library, "__android_log_print"));
    ASSERT_NE(nullptr, print);
    const ChildResult child = runInChild([print] {
        print(3, "one", "%d\n", 7);
        print(4, "two", "%s", "text");
        print(6, "three", "%s", "");
        print(8, "four", "%s", "\n");
    });
    EXPECT_EQ("D/one: 7\nI/two: text\nE/three: \n?/four: \n", child.output);
}

TEST(SharedLibrary, ReadsTheApplicationsProperties)
{
    onProcessor(kOtherSimd, [] {
        // The environment is not asked: its value would make the board another vendor's.
        setenv("RO_BOARD_PLATFORM", "none", 1);
        EXPECT_EQ(0u, odxAvailableHardware(ONDRIX_OP_CPU_PERFORMANCE) & ONDRIX_HW_MOBILE);
        properties["ro.board.platform"] = "vka1";
        EXPECT_EQ(unsigned{ONDRIX_HW_MOBILE}, odxAvailableHardware(ONDRIX_OP_CPU_PERFORMANCE) & ONDRIX_HW_MOBILE);

        properties["vendor.runtime.ondrix.log"] = "1";
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_CPU_PERFORMANCE));
        LogCapture log;
        const uint8_t bytes[] = {3, 5, 255};
        EXPECT_EQ(12u, odxBitCountu8(bytes, 3));
        EXPECT_EQ((std::vector<LogLine>{{6, "ondrix_runtime_log", "odxBitCountu8_ORLAN"}}), log.take());
    });
}

TEST(SharedLibrary, RemotePointersAreVariablesOfTheApplication)
{
    onProcessor(kArmSimd, [] {
        EXPECT_EQ(nullptr, odxBoxFilter5x5u8R_);
        odxBoxFilter5x5u8R_ = &properties;
        EXPECT_EQ(0u, odxSetOperationModeRemoteLib(ONDRIX_OP_CPU_PERFORMANCE)); // clears them all
        EXPECT_EQ(nullptr, odxBoxFilter5x5u8R_);
    });
}
