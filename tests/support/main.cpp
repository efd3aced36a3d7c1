#include <gtest/gtest.h>

// A data race ends the process: a test in a child process would pass otherwise.
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options()
{
    return "halt_on_error=1";
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
