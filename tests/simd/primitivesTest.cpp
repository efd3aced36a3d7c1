#include "simd/cases.h"

#include "orlan/targets.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#define DECLARE(name)                                      \
    namespace odx::name                                    \
    {                                                      \
    extern const test::PrimitiveCases ODX_PRIMITIVE_CASES; \
    }
ODX_SIMD_TARGETS(DECLARE)

namespace odx::test
{

namespace
{

std::vector<PrimitiveCases> casesOf(const std::string& target)
{
#define RETURN(name)                  \
    if (target == #name) {            \
        using namespace name;         \
        return {ODX_PRIMITIVE_CASES}; \
    }
    ODX_SIMD_TARGETS(RETURN)
    return {};
}

// Noise, also of the extremes alone, and the same everywhere.
uint8_t drawn(std::mt19937& random, uint32_t round)
{
    const uint32_t number = random();
    switch (round % 4) {
    case 0:
        return static_cast<uint8_t>(number);
    case 1:
        return number % 2 == 0 ? 0 : 255;
    case 2:
        return static_cast<uint8_t>(number % 3 + 127);
    default:
        return static_cast<uint8_t>(round / 4);
    }
}

void check(const PrimitiveCase& test)
{
    std::mt19937 random(1);
    for (uint32_t round = 0; round < 4 * 256; ++round) {
        // Exactly as long as it may be, so that the sanitizer sees what is read beyond it.
        const std::unique_ptr<uint8_t[]> in(new uint8_t[test.input]);
        for (size_t i = 0; i < test.input; ++i)
            in[i] = drawn(random, round);
        std::vector<uint8_t> out(kMostOutput, 0xA5), expected(kMostOutput, 0xA5);
        test.run(in.get(), out.data(), expected.data());
        ASSERT_EQ(out, expected) << test.name << ", round " << round;
    }
}

TEST(Primitives, AreWhatPlainLoopsAre)
{
    size_t ran = 0;
    for (size_t i = 0; i < orlan::kTargetCount; ++i) {
        const orlan::Target& target = *orlan::kTargets[i];
        if (!target.supported()) continue;
        SCOPED_TRACE(target.name);
        const std::vector<PrimitiveCases> tables = casesOf(target.name);
        ASSERT_FALSE(tables.empty());
        for (const PrimitiveCases& table : tables) {
            for (size_t n = 0; n < table.count; ++n, ++ran)
                check(table.cases[n]);
        }
    }
    EXPECT_NE(ran, 0u);
}

} // namespace

} // namespace odx::test
