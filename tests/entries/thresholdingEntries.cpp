#include "entries/entries.h"

#include "ondrix/thresholding.h"

namespace odx::test::thresholding
{

Entries entries()
{
    const Argument anyWidth = width().with({}, {0}), anyHeight = height().with({}, {0}),
                   threshold = value(100, {-1.0, 2147483648.0}, {0, 2147483647.0});
    const auto fixed = [&](const Argument& dstStride, const Arguments& numbers) {
        return Arguments{buffer(), anyWidth, anyHeight, stride(), buffer(), dstStride} + numbers;
    };
    const auto adaptive = [](uint32_t least, const Argument& dstStride) {
        return Arguments{buffer(), width(least), height(least), stride(), value(),
                         value(),  value(),      buffer(),      dstStride};
    };
    const std::string sameStride = "srcStride == dstStride";
    // In place with other strides, and without a width that a stride could be.
    const Combinations inPlace = {{{0, 65536}, {4, 65536}, {5, 4092}}},
                       noRow = {{{1, 0}, {3, 0}}, {{1, 0}, {5, 0}}};
    const Arguments inPlaceArguments =
        Arguments{optional(), anyWidth, anyHeight, looseStride(), optional(), looseStride(), value()}.refusing(
            inPlace);
    return {
        ENTRY(odxFilterThresholdu8, "src && dst && (signed)threshold >= 0",
              {buffer(), anyWidth, anyHeight, threshold, buffer()}),
        ENTRY(odxFilterThresholdu8_v2,
              "src && dst && dstStride && srcStride && (srcStride >=srcWidth) && (signed)threshold >= 0",
              fixed(looseStride(), {threshold}).refusing(noRow)),
        ENTRY(odxFilterThresholdu8_v2, sameStride, inPlaceArguments),
        ENTRY(odxFilterThresholdu8_v3, "", fixed(looseStride(), {threshold, value(), value()}).refusing(noRow)),
        ENTRY(odxFilterThresholdRangeu8, "", fixed(looseStride(), {value(-1), value(-2)}).refusing(noRow)),
        ENTRY(odxFilterThresholdRangeu8_v2, "",
              fixed(looseStride(), {value(-1), value(-2), value(), value()}).refusing(noRow)),
        ENTRY(odxFilterThresholdOtsuu8, "src && dst && srcStride >= srcWidth && dstStride >= srcWidth",
              fixed(stride(), {value()})),
        ENTRY(odxFilterThresholdOtsuu8, sameStride, inPlaceArguments),
        ENTRY(odxAdaptiveThresholdGaussian3x3u8, "src && dst && (srcWidth > 1) && (srcHeight > 1)" + strides(),
              adaptive(2, stride())),
        ENTRY(odxAdaptiveThresholdGaussian5x5u8, gaussianText(4), adaptive(5, looseStride())),
        ENTRY(odxAdaptiveThresholdGaussian11x11u8, gaussianText(10), adaptive(11, looseStride())),
        ENTRY(odxAdaptiveThresholdMean3x3u8, boxText(" srcStride >=srcWidth ", 2), adaptive(3, looseStride())),
        ENTRY(odxAdaptiveThresholdMean5x5u8, boxText("srcStride >=srcWidth", 4), adaptive(5, looseStride())),
        ENTRY(odxAdaptiveThresholdMean11x11u8, boxText(" srcStride >=srcWidth", 10), adaptive(11, looseStride())),
    };
}

} // namespace odx::test::thresholding
