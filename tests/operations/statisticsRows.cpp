#include "operations/shapes.h"

#include "ondrix/statistics.h"

#include <string.h>

namespace odx::test::statistics
{

// Floats with not-a-numbers, infinities, zeros of both signs and denormal numbers among them, few or many; images
// of few values, whose extremes are in many places.
template <class T>
Image<T> elements(Draw& draw)
{
    const Image<T> image = draw.source<T>("src", draw.extent());
    if (draw.measures()) return image;
    constexpr uint32_t kPatterns[] = {0x7FC00000, 0xFF800000, 0xFFFFFFFF, 0x7F800000, 0x80000000,
                                      0x00000000, 0x7F800001, 0x00000001, 0x80000001, 0xFF800001,
                                      0x007FFFFF, 0x7F7FFFFF, 0xFF7FFFFF};
    const uint32_t step = draw.pick("special every", {0U, 0U, 1U, 3U, 40U}),
                   kinds = draw.pick("kinds", {2U, 1U, 4U, 9U}), first = draw.pick("first", {0U, 2U, 4U}),
                   values = draw.pick("values", {0U, 0U, 2U, 3U}), run = draw.pick("run", {1U, image.width});
    for (uint32_t i = 0; i < image.width * image.height; ++i) {
        T& v = image.at(i % image.width, i / image.width);
        if constexpr (std::is_floating_point_v<T>) {
            if (step != 0 && i % step == 0) memcpy(&v, &kPatterns[first + i / step / run * 7 % kinds], sizeof v);
        } else if (values != 0) {
            v = static_cast<T>(T(~T{0}) / 2 + v % static_cast<T>(values));
        }
    }
    return image;
}

template <class T, auto* operation>
void extremes(Draw& draw)
{
    const auto src = elements<T>(draw);
    const uint32_t left = draw.pick("left out", {4U, 4U, 0U, 1U, 2U, 3U});
    const auto unless = [=](uint32_t i, auto drawn) {
        return [=](Draw& d) { return left == i ? nullptr : drawn(d); };
    };
    const auto value = to<T>("value", 1);
    const auto place = to<uint32_t>("place", 2);
    draw.call(operation, sized(src), unless(0, value), unless(1, value), unless(2, place), unless(3, place));
}

template <class T, auto* operation>
void allExtremes(Draw& draw)
{
    const auto src = elements<T>(draw);
    const uint32_t capacity = draw.pick("capacity", {40U, 1U, 0U, 2U, 1000U});
    const auto places = [=](Draw& d) {
        return capacity == 0 ? nullptr : d.destinationArray<uint32_t>("places", 2 * capacity);
    };
    draw.call(operation, sized(src), results<T, 1>, results<T, 1>, places, places, capacity, results<uint32_t, 1>,
              results<uint32_t, 1>);
}

// operation(src, width, height, srcStride, rest...).
template <class T, auto* operation, auto... rest>
void of(Draw& draw)
{
    draw.call(operation, sized(draw.source<T>("src", draw.extent(1, 1, 0))), rest...);
}

template <auto* operation, bool hasBins>
void spatialHistogram(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent());
    const uint32_t cellsX = draw.number("cellsX", 1u, std::min(src.width, 9u), 8u),
                   cellsY = draw.number("cellsY", 1u, std::min(src.height, 9u), 8u),
                   range = hasBins ? draw.number("range", 1u, 256u, 59u) : 256,
                   bins = hasBins ? draw.number("bins", 1u, range, range) : 256;
    draw.call(operation, sized(src), cellsX, cellsY, when<hasBins>(bins, range),
              to<uint32_t>("histograms", cellsX * cellsY * bins));
}

template <auto* operation, auto... estimator>
void meanAndVariance(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent(1, 1, 0));
    const auto part = [&](const char* name, uint32_t size) { return draw.number(name, 0u, size, 0u); };
    const uint32_t x = part("x", src.width - 1), y = part("y", src.height - 1),
                   width = src.width - x - part("right", src.width - x - 1),
                   height = src.height - y - part("below", src.height - y - 1);
    draw.call(operation, sized(src), x, y, width, height, results<float, 1>, results<float, 1>, estimator...);
}

constexpr auto binary = oneOf<0u, 0u, 1u>;
odxMoments* sums(Draw& draw)
{
    return reinterpret_cast<odxMoments*>(draw.destinationArray<double>("moments", 24));
}

template <class T, auto* operation, auto... rest>
void normalized(Draw& draw)
{
    const auto src = draw.source<T>("src", draw.extent(1, 1, 0)), dst = draw.destination<T>("dst", src.extent());
    const uint32_t N = 2 * draw.number("N / 2", 1u, 15u, 3u) + 1;
    draw.call(operation, sized(src), N, dst, rest...);
}
float leastDeviation(Draw& draw)
{
    return draw.pick("exponent", {0, 1}) == 0 ? draw.real("deviation", 0.01F, 3, 1) : 1e-30F;
}

std::vector<Row> rows()
{
    return {
        {"odxMinMaxLocu8", extremes<uint8_t, odxMinMaxLocu8>, true},
        {"odxMinMaxLocs16", extremes<int16_t, odxMinMaxLocs16>},
        {"odxMinMaxLocu16", extremes<uint16_t, odxMinMaxLocu16>},
        {"odxMinMaxLocs32", extremes<int32_t, odxMinMaxLocs32>},
        {"odxMinMaxLocu32", extremes<uint32_t, odxMinMaxLocu32>},
        {"odxMinMaxLocf32", extremes<float, odxMinMaxLocf32>},
        {"odxMinMaxLocu8_v2", allExtremes<uint8_t, odxMinMaxLocu8_v2>, true},
        {"odxMinMaxLocs16_v2", allExtremes<int16_t, odxMinMaxLocs16_v2>},
        {"odxMinMaxLocu16_v2", allExtremes<uint16_t, odxMinMaxLocu16_v2>},
        {"odxMinMaxLocs32_v2", allExtremes<int32_t, odxMinMaxLocs32_v2>},
        {"odxMinMaxLocu32_v2", allExtremes<uint32_t, odxMinMaxLocu32_v2>},
        {"odxMinMaxLocf32_v2", allExtremes<float, odxMinMaxLocf32_v2>},
        {"odxImageIntensityHistogram", of<uint8_t, odxImageIntensityHistogram, results<uint32_t, 256>>, true},
        {"odxImageSpatialHistogramu8", spatialHistogram<odxImageSpatialHistogramu8, false>, true},
        {"odxImageSpatialHistogramu8_v2", spatialHistogram<odxImageSpatialHistogramu8_v2, true>, true},
        {"odxImageHistogramEqualizeu8", imageToImage<uint8_t, uint8_t, odxImageHistogramEqualizeu8>, true},
        {"odxImageIntensityStats", meanAndVariance<odxImageIntensityStats>},
        {"odxImageIntensityStats_v2",
         meanAndVariance<odxImageIntensityStats_v2, oneOf<ONDRIX_VARIANCE_POPULATION, ONDRIX_VARIANCE_SAMPLE>>},
        {"odxImageMomentsu8", of<uint8_t, odxImageMomentsu8, binary, sums>},
        {"odxImageMomentss32", of<int32_t, odxImageMomentss32, binary, sums>},
        {"odxImageMomentsf32", of<float, odxImageMomentsf32, binary, sums>},
        {"odxNormalizeLocalBoxu8",
         normalized<uint8_t, odxNormalizeLocalBoxu8, between<1u, 127u, 50u>, between<1u, 127u, 5u>>},
        {"odxNormalizeLocalBoxf32", normalized<float, odxNormalizeLocalBoxf32, leastDeviation>},
    };
}

} // namespace odx::test::statistics
