// The log helpers that reference implementations use.
#include "frame/log.h"

#include "support/childProcess.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

using namespace odx::test;

TEST(LogAssert, StartsWithTheLineNumberAndIsTaggedWithTheBaseName)
{
    LogCapture log;
    EXPECT_EQ(5, odxLogAssert("src/cpu/some.cpp", 42, 5, "%s %d", "abc", 7));
    EXPECT_EQ(3, odxLogAssert("some.cpp", 0, 3, "%s", "abc"));
    EXPECT_EQ(0, odxLogAssert("folder/", 12345, 6, "%s", ""));
    EXPECT_EQ((std::vector<LogLine>{{5, "some.cpp", "  42| abc 7"}, {3, "some.cpp", "abc"}, {6, "", "12345| "}}),
              log.take());
}

TEST(LogAssert, CutsLongLinesAndNames)
{
    const std::string text(600, 'x');
    LogCapture log;
    EXPECT_EQ(600, odxLogAssert(("a/" + std::string(200, 'n')).c_str(), 7, 6, "%s", text.c_str()));
    EXPECT_EQ((std::vector<LogLine>{{6, std::string(128, 'n'), "   7| " + text.substr(0, 511 - 6)}}), log.take());
}

TEST(FatalAssertion, LogsAndEndsTheProcess)
{
    const auto check = [](int value) { ODX_FATAL_ASSERT("ondrixSomeC", 12, value > 1 && value < 3); };
    // Outside a capture the test's log function prints the line.
    const ChildResult failed = runInChild([&] { check(3); });
    EXPECT_EQ(1, failed.exitStatus);
    EXPECT_EQ("6/ondrix_lib_log: ondrixSomeC@12: value > 1 && value < 3 Assertion failed\n\n", failed.output);
    const ChildResult passed = runInChild([&] { check(2); });
    EXPECT_EQ(0, passed.exitStatus);
    EXPECT_EQ("", passed.output);
}
