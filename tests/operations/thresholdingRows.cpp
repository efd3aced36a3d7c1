#include "ondrix/thresholding.h"

#include "operations/shapes.h"

namespace odx::test::thresholding
{

constexpr auto level = between<0u, 300u, 100u>, whenTrue = between<0u, 300u, 255u>,
               whenFalse = between<0u, 300u, 0u>;

// Levels, and what lies beyond them.
template <int32_t typical>
int32_t bound(Draw& draw)
{
    return draw.pick("anywhere", {0, 0, 0, 1}) == 0 ? draw.number<int32_t>("bound", 0, 255, typical)
                                                    : draw.number<int32_t>("bound", -300, 300, typical);
}

void packedThreshold(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent(), true);
    draw.call(odxFilterThresholdu8, sized(src), level, draw.destinationOr(src, true));
}

template <auto* operation, auto... rest>
void threshold(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent());
    const auto dst = draw.destinationOr(src);
    draw.call(operation, sized(src), dst, rest...);
}

template <uint32_t least, auto* operation>
void adaptive(Draw& draw)
{
    const Extent extent = draw.extent(least, least);
    const uint32_t maxValue = draw.number<uint32_t>("maxValue", 0, 300, 255);
    const uint32_t type = draw.pick("type", {0u, 1u, 0u, 1u, 2u});
    const int32_t value = draw.pick("anywhere", {0, 0, 0, 1}) == 0 ? draw.number("value", -20, 20, 5)
                                                                   : draw.number("value", -258, 258, 5);
    const auto src = draw.source<uint8_t>("src", extent);
    // Other types clear whole rows.
    const auto dst = draw.destination<uint8_t>("dst", extent, type > 1);
    draw.call(operation, sized(src, extent), maxValue, type, value, dst);
}

std::vector<Row> rows()
{
    return {
        {"odxFilterThresholdu8", packedThreshold},
        {"odxFilterThresholdu8_v2", threshold<odxFilterThresholdu8_v2, level>},
        {"odxFilterThresholdu8_v3", threshold<odxFilterThresholdu8_v3, level, whenTrue, whenFalse>},
        {"odxFilterThresholdRangeu8", threshold<odxFilterThresholdRangeu8, bound<50>, bound<150>>},
        {"odxFilterThresholdRangeu8_v2",
         threshold<odxFilterThresholdRangeu8_v2, bound<50>, bound<150>, whenTrue, whenFalse>},
        {"odxFilterThresholdOtsuu8", threshold<odxFilterThresholdOtsuu8, oneOf<0u, 1u, 2u>>},
        {"odxAdaptiveThresholdGaussian3x3u8", adaptive<2, odxAdaptiveThresholdGaussian3x3u8>},
        {"odxAdaptiveThresholdGaussian5x5u8", adaptive<5, odxAdaptiveThresholdGaussian5x5u8>},
        {"odxAdaptiveThresholdGaussian11x11u8", adaptive<11, odxAdaptiveThresholdGaussian11x11u8>},
        {"odxAdaptiveThresholdMean3x3u8", adaptive<3, odxAdaptiveThresholdMean3x3u8>},
        {"odxAdaptiveThresholdMean5x5u8", adaptive<5, odxAdaptiveThresholdMean5x5u8>},
        {"odxAdaptiveThresholdMean11x11u8", adaptive<11, odxAdaptiveThresholdMean11x11u8>},
    };
}

} // namespace odx::test::thresholding
