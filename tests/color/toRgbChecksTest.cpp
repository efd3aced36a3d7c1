// Which images end the process.
#include "color/toRgbModel.h"

#include "ondrix.h"
#include "support/childProcess.h"

#include <gtest/gtest.h>

#include <string.h>

using namespace odx::test;

// A row of pairs needs a pair: the column that is selected makes no difference.
TEST(ToRgbChecks, OneColumnOfPairsEndsTheProcess)
{
    const Content grey = {[](uint32_t, uint32_t) { return 9; }, [](uint32_t, uint32_t) { return 128; },
                          [](uint32_t, uint32_t) { return 128; }};
    uint32_t ended = 0;
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU}) {
        for (const Conversion& conversion : toRgbConversions()) {
            if (conversion.arithmetic != fullRange || conversion.across == 1) continue;
            const auto source = conversion.make(2, 2, grey);
            source->width = 1;
            const ChildResult child = runInChild([&] {
                EXPECT_EQ(0, odxSetOperationMode(mode));
                Bytes dst(16);
                conversion.convert(*source, dst.data());
            });
            EXPECT_EQ(1, child.exitStatus) << conversion.name;
            const size_t at = child.output.find("ondrixColorC@");
            ASSERT_NE(std::string::npos, at) << conversion.name << ": " << child.output;
            const size_t colon = child.output.find(": ", at);
            EXPECT_NE(0, std::stoi(child.output.substr(at + strlen("ondrixColorC@"))));
            EXPECT_EQ(": length > 1 Assertion failed\n", child.output.substr(colon, 30)) << conversion.name;
            ++ended;
        }
    }
    EXPECT_EQ(24u, ended);
}
