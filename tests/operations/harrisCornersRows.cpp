#include "operations/shapes.h"

#include "ondrix/harrisCorners.h"

namespace odx::test::harrisCorners
{

// A list of corners; what lies beyond the corners found must stay as it was.
struct CornerList {
    uint32_t capacity;
    uint32_t* xy;
    uint32_t* count;

    explicit CornerList(Draw& draw)
        : capacity(draw.number<uint32_t>("capacity", 0, draw.pick("plenty", {1, 0}) != 0 ? 2000 : 9, 20000)),
          xy(draw.destinationArray<uint32_t>("xy", 2 * capacity)),
          count(draw.destinationArray<uint32_t>("count", 1))
    {
    }
};

// Corners of noise everywhere, corners with contrast only, and a threshold that nearly all pixels exceed.
constexpr auto threshold = oneOf<20000, 0, -100000000, 3000000>;
constexpr auto border = oneOf<0u, 5u, 6u, 9u, 40u>, noBorder = oneOf<0u>;

// Of which the responses leave out 6 columns and rows, and their maxima 4 more.
Extent drawExtent(Draw& draw)
{
    return draw.extent(5, 5, 10);
}

float quality(Draw& draw)
{
    return draw.real("quality", 0, 0.2f, 0.01f);
}

template <auto* operation, auto border, auto... rest>
void corners(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", drawExtent(draw));
    const CornerList list(draw);
    draw.call(operation, sized(src), border(draw), list.xy, list.capacity, list.count, rest...);
}

void cornersInMask(Draw& draw)
{
    Extent extent = drawExtent(draw);
    const Extent mask = maskFor(draw, extent);
    const auto src = draw.source<uint8_t>("src", extent);
    const auto bits = draw.source<uint8_t>("bits", {(mask.width + 7) / 8, mask.height}, true);
    const CornerList list(draw);
    draw.call(odxCornerHarrisInMasku8, sized(src, extent), 0, list.xy, list.capacity, list.count, threshold(draw),
              bits.pixels, mask.width, mask.height);
}

void scores(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", drawExtent(draw));
    const CornerList list(draw);
    draw.call(odxCornerHarrisScoreu8, sized(src), 0, list.xy, to<int32_t>("scores", list.capacity), list.capacity,
              list.count, threshold);
}

void localMaximum(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent(7, 7));
    const uint32_t x = draw.number<uint32_t>("x", 0, src.width, src.width / 2),
                   y = draw.number<uint32_t>("y", 0, src.height, src.height / 2),
                   radius = draw.pick("radius", {50u, 4u, 8u, 100u, 0xFFFFFFFFu});
    draw.call(odxLocalHarrisMaxu8, sized(src), x, y, radius, results<uint32_t, 1>, results<uint32_t, 1>,
              results<int32_t, 1>);
}

void refine(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent(12, 12));
    const uint32_t count = draw.number<uint32_t>("count", 0, 20, 1000);
    const Image<float> xy = draw.destination<float>("xy", {2 * count + 1, 1}, true);
    const uint32_t half = draw.number<uint32_t>("half", 1, 15, 5);
    const float size[] = {static_cast<float>(src.width), static_cast<float>(src.height)};
    std::vector<float> start;
    for (uint32_t i = 0; i < 2 * count; ++i)
        start.push_back(draw.real("at", -2, size[i % 2] + 2, size[i % 2] / 2));
    draw.run([&] {
        std::copy(start.begin(), start.end(), xy.pixels);
        odxCornerRefineSubPixu8(src.pixels, src.width, src.height, src.strideArgument(), xy.pixels, count, half,
                                10, 0.01f);
    });
}

void maximaAlongLine(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent(20, 20));
    const float width = static_cast<float>(src.width), height = static_cast<float>(src.height);
    const float pos[2] = {draw.real("x", 0.4f * width, 0.6f * width, 0.5f * width),
                          draw.real("y", 0.4f * height, 0.6f * height, 0.5f * height)};
    const float dir[2] = {draw.real("dx", -1, 1, 0.6f), draw.real("dy", -1, 1, 0.8f)};
    const uint32_t distance = draw.number<uint32_t>("distance", 0, std::min(src.width, src.height) / 4, 100);
    const uint32_t capacity = draw.number<uint32_t>("capacity", 0, 9, 50);
    draw.call(odxFindMultipleMaximau8, sized(src), pos, dir, distance, capacity, oneOf<10, 0, -50, 100>,
              draw.real("angle", 0, 1, 0.5f), to<float>("maxima", capacity), results<uint32_t, 1>);
}

std::vector<Row> rows()
{
    constexpr bool contentMatters = true;
    return {
        {"odxCornerHarrisu8", corners<odxCornerHarrisu8, border, threshold>, contentMatters},
        {"odxCornerHarrisInMasku8", cornersInMask, contentMatters},
        {"odxCornerHarrisAdaptiveu8", corners<odxCornerHarrisAdaptiveu8, noBorder, threshold>, contentMatters},
        {"odxCornerHarrisScoreu8", scores, contentMatters},
        {"odxLocalHarrisMaxu8", localMaximum},
        {"odxGoodFeatureToTracku8",
         corners<odxGoodFeatureToTracku8, noBorder, quality, oneOf<10u, 0u, 4u, 31u, 100000u>>, contentMatters},
        {"odxCornerRefineSubPixu8", refine},
        {"odxFindMultipleMaximau8", maximaAlongLine},
    };
}

} // namespace odx::test::harrisCorners
