// Tests of what the reference computes: other columns are held to it by the differential test.
#ifndef ODX_TESTS_SUPPORT_REFERENCE_TEST_H
#define ODX_TESTS_SUPPORT_REFERENCE_TEST_H

#include "ondrix/modes.h"

#include <gtest/gtest.h>

namespace odx::test
{

class ReferenceTest : public testing::Test
{
protected:
    ReferenceTest() { EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE)); }
};

} // namespace odx::test

#endif
