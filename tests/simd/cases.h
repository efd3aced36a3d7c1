// The primitives of the vector layer beside plain loops.
#ifndef ODX_TESTS_SIMD_CASES_H
#define ODX_TESTS_SIMD_CASES_H

#include <stddef.h>
#include <stdint.h>

namespace odx::test
{

// Writes what a primitive makes of `input` bytes, and what it should make of them.
struct PrimitiveCase {
    const char* name;
    size_t input;
    void (*run)(const uint8_t* in, uint8_t* out, uint8_t* expected);
};
constexpr size_t kMostOutput = 16 * 64 + 64;

struct PrimitiveCases {
    const PrimitiveCase* cases;
    size_t count;
};

// The tables, each in a file of its name.
#define ODX_PRIMITIVE_CASES \
    crossCases, gatheringCases, laneCases, pixelCases, prefixCases, productCases, resamplingCases

} // namespace odx::test

#endif
