#include "entries/entries.h"

#include "ondrix/smoothing.h"

namespace odx::test::smoothing
{

Entries entries()
{
    // Rows of the 3x3 Gaussian come in groups of six and a rest.
    const Values narrow = {2, 3, 4, 5, 6};
    const auto bordered = [](const Arguments& image) {
        return image + Arguments{value(2, {3, 4, 0xFFFFFFFF}, {0, 1}), value()};
    };
    const auto packed = [](uint32_t leastWidth, uint32_t leastHeight) {
        return Arguments{buffer(), width(leastWidth), height(leastHeight), buffer(), value()};
    };
    const auto strided = [](uint32_t leastWidth, uint32_t leastHeight, uint32_t pixelSize,
                            bool checksDestination) {
        const uint32_t row = pixelSize * kWidth;
        return Arguments{buffer(),    width(leastWidth), height(leastHeight),
                         stride(row), buffer(),          checksDestination ? stride(row) : looseStride(),
                         value()};
    };
    const auto box = [](uint32_t least) {
        return Arguments{
            buffer(), width(least), height(least), stride().explicitly(), buffer(), looseStride().explicitly()};
    };
    const Argument packedGaussianWidth = width(1, 4, 2).with({0}, {1, 7}).errors(narrow),
                   gaussianWidth = width(2, 4, 2).with({0, 1}, {7}).errors(narrow);
    Argument gaussianHeight = height(), gaussianHeight2 = height(2);
    gaussianHeight.gpu = gaussianHeight2.gpu = 2;
    const Arguments median = {buffer(8, 16), width(1, 8, 8), height()};
    return {
        ENTRY(odxFilterGaussian3x3u8, "src && dst && width && height",
              Arguments{buffer(4), packedGaussianWidth, gaussianHeight, buffer(4), value()}.fromRows(3)),
        ENTRY(odxFilterGaussian3x3u8_v2, "src && dst && (srcWidth > 1) && (srcHeight > 1)" + strides(),
              Arguments{buffer(4), gaussianWidth, gaussianHeight2, stride(kWidth, 4), buffer(4), stride(kWidth, 4),
                        value()}
                  .fromRows(3)),
        ENTRY(odxFilterGaussian3x3u8_v3, "",
              bordered({buffer(4), width(1, 4, 2), gaussianHeight, looseStride(4), buffer(4), looseStride(4)})
                  .fromRows(3)),
        ENTRY(odxFilterGaussian5x5u8, "src && dst && width && height && height > 4 && width > 4", packed(5, 5)),
        ENTRY(odxFilterGaussian5x5u8_v2, gaussianText(4), strided(5, 5, 1, false)),
        ENTRY(odxFilterGaussian11x11u8, "src && dst && width && height && height > 10 && width > 10",
              packed(11, 11)),
        ENTRY(odxFilterGaussian11x11u8_v2, gaussianText(10), strided(11, 11, 1, false)),
        ENTRY(odxFilterGaussian5x5s16, "src && dst && width && height && height > 1", packed(1, 2)),
        ENTRY(odxFilterGaussian5x5s16_v2, kImages + strides("srcWidth*sizeof(int16_t)") + " && srcHeight > 1",
              strided(1, 2, 2, true)),
        ENTRY(odxFilterGaussian5x5s32, "src && dst && width && height && width > 4 && height > 4", packed(5, 5)),
        ENTRY(odxFilterGaussian5x5s32_v2,
              kImages + strides("srcWidth*sizeof(int32_t)") + " && srcWidth > 4 && srcHeight > 4",
              strided(5, 5, 4, true)),
        ENTRY(odxBoxFilter3x3u8, boxText(" srcStride >=srcWidth ", 2), box(3)),
        ENTRY(odxBoxFilter3x3u8_v2, "",
              bordered({buffer(), width(), height(), looseStride(), buffer(), looseStride()})),
        ENTRY(odxBoxFilter5x5u8, boxText("srcStride >=srcWidth", 4), box(5)),
        ENTRY(odxBoxFilter11x11u8, boxText(" srcStride >=srcWidth", 10), box(11)),
        ENTRY(odxBoxFilterNxNf32,
              kImages + " && (N > 1) && ((src == dst && srcStride == dstStride) || (src != dst)) && (srcStride "
                        ">=srcWidth*4) && (dstStride >=srcWidth*4) && srcWidth > 4 && srcHeight > 4",
              Arguments{buffer(8), width(5), height(5), stride(4 * kWidth, 8), value(2, {0, 1}), buffer(),
                        stride(4 * kWidth)}
                  .pixels(4)
                  .refusing({{{0, 65536}, {5, 65536}, {6, 4092}}})),
        ENTRY(odxFilterMedian3x3u8, "src && dst && width && height", (median + buffer(8, 16)).fromRows(4)),
        ENTRY(odxFilterMedian3x3u8_v2, kImages + " && (srcStride >= srcWidth) && dstStride",
              (median + stride(kWidth, 8) + buffer(8, 16) + looseStride(8)).fromRows(4)),
        ENTRY(odxFilterMedian3x3u8_v3, "",
              bordered(median + looseStride(8) + buffer(8, 16) + looseStride(8)).fromRows(4)),
        ENTRY(odxFilterMedianMxNs16, "",
              Arguments{buffer(), width(), height(), stride(2 * kWidth).explicitly(), value(3, {0, 1, 4}, {5}),
                        value(3, {0, 1, 4}, {5}), buffer(), stride(2 * kWidth).explicitly()}
                  .refusing({{{1, 0x80000001}}})),
    };
}

} // namespace odx::test::smoothing
