// Described processors: a body of a test runs in a process of its own on one of them.
#ifndef ODX_TESTS_SUPPORT_PROCESSORS_H
#define ODX_TESTS_SUPPORT_PROCESSORS_H

#include <functional>
#include <string>

namespace odx::test
{

struct Processor {
    const char* name;
    std::string description; // what stands in for /proc/cpuinfo; empty: there is none that can be read
    std::string board;       // ro.board.platform; empty: the property is absent
};

inline const Processor kArmSimd{
    "ARM with SIMD",
    "Features\t: half thumb fastmult vfp edsp neon\nCPU implementer\t: 0x41\nCPU architecture: 7\n", ""};
inline const Processor kVendorSimd{"the vendor's with SIMD",
                                   "Features\t: fp asimd\nCPU implementer\t: 0x51\nCPU architecture: 8\n", ""};
inline const Processor kOtherSimd{"another maker's with SIMD",
                                  "Features\t: fp asimd evtstrm\nCPU implementer\t: 0x48\nCPU architecture: 8\n",
                                  ""};
inline const Processor kOtherSimdOnVendorBoard{"another maker's with SIMD on the vendor's board",
                                               kOtherSimd.description, "vkc8998"};
inline const Processor kFloatOnly{"ARM with floating point only",
                                  "Features\t: half vfp\nCPU implementer\t: 0x41\nCPU architecture: 6TEJ\n", ""};
inline const Processor kNeither{"ARM with neither",
                                "Features\t: half thumb\nCPU implementer\t: 0x41\nCPU architecture: 7\n", ""};
inline const Processor kUnreadable{"unreadable", "", ""};
inline const Processor kCpuOnlyChip{"a chip without DSP and GPU",
                                    kArmSimd.description + "Hardware\t: Board TKM210 rev 2\n", ""};

// Makes a text the processor description of this process, which must not have run the detection yet.
void describeProcessor(const std::string& description);

// Runs the body on the processor, and fails the test with the body's failures.
void onProcessor(const Processor& processor, const std::function<void()>& body);

} // namespace odx::test

#endif
