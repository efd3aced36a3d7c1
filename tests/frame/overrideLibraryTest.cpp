// The override library: its lines, and the library itself where this process may put one at its fixed place.
#include "ondrix/modes.h"

#include "support/logCapture.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <filesystem>

using namespace odx::test;

namespace
{

namespace fs = std::filesystem;

const char* const kPath = "/data/local/libodxopt.so";

const LogLine kLoading{3, "odx", "Loading from: /data/local/libodxopt.so\n"};
const LogLine kLoaded{3, "ondrix_PLATFORM", "dlopen for /data/local/libodxopt.so is successfull.\n"};

// Puts a library at the fixed place, and takes it and the folders that it had to make away again.
class Installed
{
public:
    Installed()
    {
        std::error_code error;
        for (const char* folder : {"/data", "/data/local"}) {
            if (fs::create_directory(folder, error)) made_.insert(made_.begin(), folder);
        }
        if (fs::copy_file(ODX_OVERRIDE_LIBRARY, kPath, error)) made_.insert(made_.begin(), kPath);
        succeeded_ = !error;
    }
    ~Installed()
    {
        std::error_code error;
        for (const char* path : made_)
            fs::remove(path, error);
    }
    Installed(const Installed&) = delete;
    Installed& operator=(const Installed&) = delete;

    explicit operator bool() const { return succeeded_; }

private:
    std::vector<const char*> made_;
    bool succeeded_;
};

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
    if (fs::exists(kPath)) GTEST_SKIP() << "this system has one";
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
    if (fs::exists(kPath)) GTEST_SKIP() << "this system has one";
    const Installed installed;
    if (!installed) GTEST_SKIP() << "its folder cannot be written";
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
        EXPECT_EQ(nullptr, dlopen(kPath, RTLD_LAZY | RTLD_NOLOAD));
        EXPECT_EQ(nullptr, odxPlatformOptGetFunc("odxOverride"));
        EXPECT_EQ(1u, log.take().size());
        EXPECT_EQ(0, odxPlatformOptLoad());
        EXPECT_NE(nullptr, odxPlatformOptGetFunc("odxOverride"));
        EXPECT_EQ(2u, log.take().size());
    }
    EXPECT_EQ(0, odxPlatformOptClose());
}
