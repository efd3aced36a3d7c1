#include "ondrix/thresholding.h"

#include "operations/draw.h"

namespace odx::test
{

namespace
{

// Calls operation(src, srcStride, dst, dstStride), sometimes in place.
template <class Operation>
void inPlaceOrNot(Draw& draw, Extent extent, bool packed, Operation operation)
{
    const auto src = draw.source<uint8_t>("src", extent, packed);
    if (!draw.measures() && draw.pick("in place", {0, 1, 0}) == 1) {
        draw.writesInPlace(src);
        draw.call(operation, src.pixels, src.stride, src);
        return;
    }
    const auto dst = draw.destination<uint8_t>("dst", extent, packed);
    draw.call(operation, src, dst);
}

// Levels, and what lies beyond them.
int32_t bound(Draw& draw, const char* name, int32_t typical)
{
    return draw.pick("anywhere", {0, 0, 0, 1}) == 0 ? draw.number<int32_t>(name, 0, 255, typical)
                                                    : draw.number<int32_t>(name, -300, 300, typical);
}

void packedThreshold(Draw& draw)
{
    const Extent extent = draw.extent();
    const uint32_t threshold = draw.number<uint32_t>("threshold", 0, 300, 100);
    inPlaceOrNot(draw, extent, true, [&](const uint8_t* src, uint32_t, uint8_t* dst, uint32_t) {
        odxFilterThresholdu8(src, extent.width, extent.height, threshold, dst);
    });
}

template <auto* operation, class... Numbers>
void threshold(Draw& draw, Numbers... numbers)
{
    const Extent extent = draw.extent();
    inPlaceOrNot(draw, extent, false,
                 [&](const uint8_t* src, uint32_t srcStride, uint8_t* dst, uint32_t dstStride) {
                     return operation(src, extent.width, extent.height, srcStride, dst, dstStride, numbers...);
                 });
}

void stridedThreshold(Draw& draw)
{
    threshold<odxFilterThresholdu8_v2>(draw, draw.number<uint32_t>("threshold", 0, 300, 100));
}

void valuedThreshold(Draw& draw)
{
    const uint32_t at = draw.number<uint32_t>("threshold", 0, 300, 100);
    const auto trueValue = draw.number<uint32_t>("trueValue", 0, 300, 255),
               falseValue = draw.number<uint32_t>("falseValue", 0, 300, 0);
    threshold<odxFilterThresholdu8_v3>(draw, at, trueValue, falseValue);
}

void range(Draw& draw)
{
    const int32_t low = bound(draw, "low", 50);
    threshold<odxFilterThresholdRangeu8>(draw, low, bound(draw, "high", 150));
}

void valuedRange(Draw& draw)
{
    const int32_t low = bound(draw, "low", 50), high = bound(draw, "high", 150);
    const auto trueValue = draw.number<uint32_t>("trueValue", 0, 300, 255),
               falseValue = draw.number<uint32_t>("falseValue", 0, 300, 0);
    threshold<odxFilterThresholdRangeu8_v2>(draw, low, high, trueValue, falseValue);
}

void otsu(Draw& draw)
{
    threshold<odxFilterThresholdOtsuu8>(draw, draw.pick("type", {0u, 1u, 2u}));
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

} // namespace

std::vector<Row> thresholdingRows()
{
    return {
        {"odxFilterThresholdu8", packedThreshold},
        {"odxFilterThresholdu8_v2", stridedThreshold},
        {"odxFilterThresholdu8_v3", valuedThreshold},
        {"odxFilterThresholdRangeu8", range},
        {"odxFilterThresholdRangeu8_v2", valuedRange},
        {"odxFilterThresholdOtsuu8", otsu},
        {"odxAdaptiveThresholdGaussian3x3u8", adaptive<2, odxAdaptiveThresholdGaussian3x3u8>},
        {"odxAdaptiveThresholdGaussian5x5u8", adaptive<5, odxAdaptiveThresholdGaussian5x5u8>},
        {"odxAdaptiveThresholdGaussian11x11u8", adaptive<11, odxAdaptiveThresholdGaussian11x11u8>},
        {"odxAdaptiveThresholdMean3x3u8", adaptive<3, odxAdaptiveThresholdMean3x3u8>},
        {"odxAdaptiveThresholdMean5x5u8", adaptive<5, odxAdaptiveThresholdMean5x5u8>},
        {"odxAdaptiveThresholdMean11x11u8", adaptive<11, odxAdaptiveThresholdMean11x11u8>},
    };
}

} // namespace odx::test
