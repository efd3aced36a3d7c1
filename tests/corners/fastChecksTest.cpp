// What ends the process.
#include "corners/fastModels.h"
#include "support/childProcess.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

using namespace odx::test;
using namespace odx::test::fast;

TEST(FastChecks, SuppressionWithoutMemoryEndsTheProcess)
{
    ASSERT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE));
    for (const Operation& operation : operations()) {
        if (!operation.suppresses) continue;
        const ChildResult child = runInChild([&] {
            const Image image = noise(40, 30, 1);
            const Mask mask(image, 1, 1);
            Options options;
            options.mask = &mask;
            uint32_t xy[2], score, count;
            options.capacity = 1;
            operation.run(image, options, xy, &score, &count, 1, nullptr);
        });
        EXPECT_EQ(1, child.exitStatus) << operation.name;
        const std::string source = operation.N == 9 ? "ondrixFastC" : "ondrixFast10C";
        const std::regex line("6/ondrix_lib_log: " + source + "@[1-9][0-9]*: tempBuf Assertion failed\n\n");
        EXPECT_TRUE(std::regex_match(child.output, line)) << operation.name << ": " << child.output;
    }
}
