#include "support/processors.h"

#include "support/childProcess.h"

#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

namespace odx::test
{

void describeProcessor(const std::string& description)
{
    const int file = memfd_create("cpuinfo", 0);
    ASSERT_EQ(static_cast<ssize_t>(description.size()), write(file, description.data(), description.size()));
    setenv("ONDRIX_CPUINFO", ("/proc/self/fd/" + std::to_string(file)).c_str(), 1);
}

void onProcessor(const Processor& processor, const std::function<void()>& body)
{
    SCOPED_TRACE(processor.name);
    const ChildResult result = runInChild([&] {
        unsetenv("VENDOR_RUNTIME_ONDRIX_LOG");
        unsetenv("RO_BOARD_PLATFORM");
        if (!processor.board.empty()) setenv("RO_BOARD_PLATFORM", processor.board.c_str(), 1);
        if (processor.description.empty()) {
            setenv("ONDRIX_CPUINFO", "/nowhere/cpuinfo", 1);
        } else {
            describeProcessor(processor.description);
        }
        body();
    });
    EXPECT_EQ(0, result.exitStatus) << result.output;
}

} // namespace odx::test
