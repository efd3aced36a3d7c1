#include "entries/entries.h"

#include "ondrix/reordering.h"

namespace odx::test::reordering
{

Entries entries()
{
    const auto image = [](uint32_t size, bool turned, const Arguments& rest = {}) {
        return Arguments{buffer(), width(),
                         height(), stride(size * kWidth),
                         buffer(), stride(size * (turned ? kHeight : kWidth))} +
               rest;
    };
    const auto code = [](double good) { return Arguments{value(good, {0, 4, -1}, {1, 2, 3})}; };
    const auto unchecked = [](Argument size) {
        size.refused.clear();
        return size;
    };
    // Products of the checks that wrap, and two strides for one image.
    const std::vector<std::pair<size_t, double>> wide = {{1, 0x80000001}}, high = {{2, 0x80000001}},
                                                 twoStrides = {{0, 65536}, {4, 65536}, {5, 4000}};
    const std::string dir = " && dir >= 1 && dir <= 3";
    return {
        ENTRY(odxTransposeu8, kImages + strides("srcWidth", "srcHeight"), image(1, true)),
        ENTRY(odxTransposeu16, kImages + strides("srcWidth*2", "srcHeight*2"),
              image(2, true).refusing({wide, high})),
        ENTRY(odxTransposef32, kImages + strides("srcWidth*4", "srcHeight*4"),
              image(4, true).refusing({wide, high})),
        ENTRY(odxTransposeRGB888u8, "",
              {optional(), unchecked(width()), unchecked(height()), looseStride(), optional(), looseStride()}),
        ENTRY(odxFlipu8, kImages + strides() + dir, image(1, false, code(1))),
        ENTRY(odxFlipu16, kImages + strides("srcWidth*2") + dir, image(2, false, code(1)).refusing({wide})),
        ENTRY(odxFlipRGB888u8, "", image(3, false, code(1)).refusing({wide})),
        ENTRY(odxRotateImageu8, "", image(1, true, code(1))),
        ENTRY(odxRotateImageInterleavedu8, "",
              image(2, true, code(1))
                  .refusing({wide, {{3, 2 * kWidth - 1}}, {{5, 2 * kHeight - 1}}, {{6, 2}, {5, 2 * kWidth - 1}}})),
        ENTRY(odxCopy, "", Arguments{buffer(), buffer(), value(1, {}, {0})}.pixels(0)),
    };
}

} // namespace odx::test::reordering
