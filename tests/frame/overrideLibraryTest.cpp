// The override library: its lines, and the library itself.
#include "ondrix/modes.h"

#include "support/logCapture.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <string.h>

using namespace odx::test;

namespace
{

const LogLine kLoading{3, "odx", "Loading from: /data/local/libodxopt.so\n"};
const LogLine kLoaded{3, "ondrix_PLATFORM", "dlopen for /data/local/libodxopt.so is successfull.\n"};

// What is loaded from the fixed place.
const char* const kMissing = "./no/such/library.so";
const char* installed = kMissing;

} // namespace

// The linker puts this in place of odx::platform::openLibrary.
extern "C" void* __real__ZN3odx8platform11openLibraryEPKc(const char* path);
extern "C" void* __wrap__ZN3odx8platform11openLibraryEPKc(const char* path);
extern "C" void* __wrap__ZN3odx8platform11openLibraryEPKc(const char* path)
{
    const bool fixed = strcmp(path, "/data/local/libodxopt.so") == 0;
    return __real__ZN3odx8platform11openLibraryEPKc(fixed ? installed : path);
}

namespace
{

// The start of a line whose rest is the loader's text.
void expectError(const LogLine& line, const std::string& start)
{
    EXPECT_EQ(6, line.priority);
    EXPECT_EQ("ondrix_PLATFORM", line.tag);
    EXPECT_EQ(start, line.text.substr(0, start.size()));
    EXPECT_LT(start.size() + 1, line.text.size());
    EXPECT_EQ('\n', line.text.back());
}

} // namespace

TEST(OverrideLibrary, ReportsThatItIsMissing)
{
    installed = kMissing;
    LogCapture log;
    EXPECT_EQ(-1, odxPlatformOptLoad());
    std::vector<LogLine> lines = log.take();
    ASSERT_EQ(2u, lines.size());
    EXPECT_EQ(kLoading, lines[0]);
    expectError(lines[1], "dlopen for /data/local/libodxopt.so failed!\n Error:");

    EXPECT_EQ(nullptr, odxPlatformOptGetFunc("odxOverride"));
    EXPECT_EQ(nullptr, odxPlatformOptGetFunc(nullptr));
    lines = log.take();
    ASSERT_EQ(2u, lines.size());
    expectError(lines[0], "dlsym for odxOverride failed! \n Error:");
    EXPECT_EQ(0, odxPlatformOptClose());
    EXPECT_EQ(std::vector<LogLine>{}, log.take());
}

TEST(OverrideLibrary, IsHeldUntilItIsClosed)
{
    installed = ODX_OVERRIDE_LIBRARY;
    LogCapture log;
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(0, odxPlatformOptLoad());
        EXPECT_EQ((std::vector<LogLine>{kLoading, kLoaded}), log.take());
    }
    auto* const function = reinterpret_cast<int (*)()>(odxPlatformOptGetFunc("odxOverride"));
    ASSERT_NE(nullptr, function);
    EXPECT_EQ(1234, function());
    EXPECT_EQ(std::vector<LogLine>{}, log.take());

    EXPECT_EQ(nullptr, odxPlatformOptGetFunc("odxMissing"));
    std::vector<LogLine> lines = log.take();
    ASSERT_EQ(1u, lines.size());
    expectError(lines[0], "dlsym for odxMissing failed! \n Error:");

    // However often it was loaded, one close unloads it; it can be loaded anew.
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(0, odxPlatformOptClose());
        EXPECT_EQ(nullptr, dlopen(ODX_OVERRIDE_LIBRARY, RTLD_LAZY | RTLD_NOLOAD));
        EXPECT_EQ(nullptr, odxPlatformOptGetFunc("odxOverride"));
        EXPECT_EQ(1u, log.take().size());
        EXPECT_EQ(0, odxPlatformOptLoad());
        EXPECT_NE(nullptr, odxPlatformOptGetFunc("odxOverride"));
        EXPECT_EQ(2u, log.take().size());
    }
    EXPECT_EQ(0, odxPlatformOptClose());
}
