#include "entries/entries.h"

#include "ondrix/correlation.h"

namespace odx::test::correlation
{

Entries entries()
{
    // N is less than both sides.
    const auto size = value(7, {0, kHeight, kWidth, 4294967295.0}, {1, kHeight - 1});
    const Argument columns = {Argument::kColumns, kWidth, {0, 7}, 1, 1, {8}},
                   lines = {Argument::kRows, kHeight, {0, 7}, 1, 1, {8}};
    const auto sized = [&](const Arguments& kernel, uint32_t pixelSize) {
        return kernel + Arguments{buffer(), columns, lines, stride(), buffer(), stride(pixelSize * kWidth)};
    };
    // 4 bytes for each of these columns are 4, in 32 bits.
    const Combinations wrapping = {{{3, 0x40000001}, {5, 4294967295.0}, {7, 4096}}};
    return {
        ENTRY(odxFilterCorr3x3s8, "kernel && src && dst && w && h",
              {buffer(), buffer(), width(), height(), buffer()}),
        ENTRY(odxFilterCorr3x3s8_v2, "kernel && " + kImages + strides(),
              {buffer(), buffer(), width(), height(), stride(), buffer(), stride()}),
        ENTRY(odxFilterCorrNxNu8, "", sized({buffer(), size, value()}, 1)),
        ENTRY(odxFilterCorrNxNu8f32, "", sized({buffer(), size}, 4).refusing(wrapping)),
        ENTRY(odxFilterCorrNxNu8s16, "", sized({buffer(), size, value()}, 2)),
    };
}

} // namespace odx::test::correlation
