#include "operations/draw.h"

#include "ondrix/gradients.h"

namespace odx::test
{

namespace
{

// The first versions have no stride of their results.
template <class T, auto* operation>
void interleaved(Draw& draw)
{
    const Extent extent = draw.extent(3, 3);
    const auto src = draw.source<uint8_t>("src", extent);
    constexpr bool hasStride =
        std::is_invocable_v<decltype(operation), uint8_t*, uint32_t, uint32_t, uint32_t, T*, uint32_t>;
    const auto out = draw.destination<T>("gradients", {2 * extent.width - 4, extent.height - 2}, !hasStride);
    draw.run([&] {
        if constexpr (hasStride) {
            operation(src.pixels, extent.width, extent.height, src.strideArgument(), out.pixels,
                      out.strideArgument());
        } else {
            operation(src.pixels, extent.width, extent.height, src.strideArgument(), out.pixels);
        }
    });
}

// Both results have the stride of the first.
template <class T>
struct Planes {
    Image<T> both;
    T* second;
};
template <class T>
Planes<T> planes(Draw& draw, Extent extent, bool packed = false)
{
    const auto both = draw.destination<T>("dx, dy", {extent.width, 2 * extent.height}, packed);
    return {both, &both.at(0, extent.height)};
}

template <class S, class T, auto* operation>
void planar(Draw& draw)
{
    const Extent extent = draw.extent(3, 3);
    const auto src = draw.source<S>("src", extent);
    constexpr bool hasStride =
        std::is_invocable_v<decltype(operation), S*, uint32_t, uint32_t, uint32_t, T*, T*, uint32_t>;
    const auto out = planes<T>(draw, extent, !hasStride);
    draw.run([&] {
        if constexpr (hasStride) {
            operation(src.pixels, extent.width, extent.height, src.strideArgument(), out.both.pixels, out.second,
                      out.both.strideArgument());
        } else {
            operation(src.pixels, extent.width, extent.height, src.strideArgument(), out.both.pixels, out.second);
        }
    });
}

template <uint32_t K, auto* operation>
void sobel(Draw& draw)
{
    const Extent extent = draw.extent(1, 1, K - 1);
    const auto src = draw.source<uint8_t>("src", extent);
    const auto out = planes<int16_t>(draw, extent);
    const auto type =
        draw.pick("type", {ONDRIX_BORDER_REPLICATE, ONDRIX_BORDER_CONSTANT, ONDRIX_BORDER_UNDEFINED});
    const uint32_t value = draw.number<uint32_t>("value", 0, 300, 0);
    const int wanted = draw.pick("wanted", {3, 1, 2});
    draw.run([&] {
        return operation(src.pixels, extent.width, extent.height, src.strideArgument(),
                         wanted & 1 ? out.both.pixels : nullptr, wanted & 2 ? out.second : nullptr,
                         out.both.strideArgument(), type, value);
    });
}

void magnitude(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = draw.source<uint8_t>("src", extent, true),
               dst = draw.destination<uint8_t>("dst", extent, true);
    draw.run([&] { odxFilterSobel3x3u8(src.pixels, extent.width, extent.height, dst.pixels); });
}

void magnitude_v2(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = draw.source<uint8_t>("src", extent), dst = draw.destination<uint8_t>("dst", extent);
    draw.run([&] {
        odxFilterSobel3x3u8_v2(src.pixels, extent.width, extent.height, src.strideArgument(), dst.pixels,
                               dst.strideArgument());
    });
}

void canny(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = draw.source<uint8_t>("src", extent), dst = draw.destination<uint8_t>("dst", extent);
    const uint32_t kernel = draw.pick("kernel", {3u, 5u, 7u});
    const auto norm = draw.pick("norm", {ONDRIX_NORM_L1, ONDRIX_NORM_L2});
    const int32_t scale = kernel == 3 ? 1 : kernel == 5 ? 10 : 80;
    const int32_t low = scale * draw.number("low", -300, 900, 80),
                  high = scale * draw.number("high", -600, 1500, 200);
    const int wanted = draw.measures() ? 0 : draw.pick("wanted", {0, 1, 2, 3});
    const auto out = planes<int16_t>(draw, draw.measures() ? Extent{1, 1} : extent);
    draw.run([&] {
        return odxFilterCannyu8(src.pixels, extent.width, extent.height, src.strideArgument(), kernel, low, high,
                                norm, dst.pixels, dst.strideArgument(), wanted & 1 ? out.both.pixels : nullptr,
                                wanted & 2 ? out.second : nullptr,
                                draw.measures() ? 0 : out.both.strideArgument());
    });
}

struct Thresholds {
    int low, high;
};
Thresholds thresholds(Draw& draw)
{
    const int low = draw.number("low", -10, 300, 20);
    return {low, low + draw.number("more", 0, 200, 30)};
}

void differenceEdges(Draw& draw)
{
    const Extent extent = draw.extent(3, 3);
    const auto src = draw.source<uint8_t>("src", extent, true),
               dst = draw.destination<uint8_t>("dst", extent, true);
    const Thresholds t = thresholds(draw);
    draw.run([&] { odxFilterCanny3x3u8(src.pixels, extent.width, extent.height, dst.pixels, t.low, t.high); });
}

void differenceEdges_v2(Draw& draw)
{
    const Extent extent = draw.extent(3, 3);
    const auto src = draw.source<uint8_t>("src", extent), dst = draw.destination<uint8_t>("dst", extent);
    const Thresholds t = thresholds(draw);
    draw.run([&] {
        odxFilterCanny3x3u8_v2(src.pixels, extent.width, extent.height, src.strideArgument(), dst.pixels,
                               dst.strideArgument(), t.low, t.high);
    });
}

void differenceEdges_v3(Draw& draw)
{
    const Extent extent = draw.extent(3, 3);
    const auto src = draw.source<uint8_t>("src", extent), dst = draw.destination<uint8_t>("dst", extent);
    const Thresholds t = thresholds(draw);
    const int wanted = draw.pick("wanted", {3, 1, 2, 0});
    const auto out = planes<int16_t>(draw, extent);
    draw.run([&] {
        odxFilterCanny3x3u8_v3(src.pixels, extent.width, extent.height, src.strideArgument(), dst.pixels,
                               dst.strideArgument(), t.low, t.high, wanted & 1 ? out.both.pixels : nullptr,
                               wanted & 2 ? out.second : nullptr, out.both.strideArgument());
    });
}

} // namespace

std::vector<Row> gradientRows()
{
#define ODX_PAIRS(name, T)            \
    {                                 \
#name, interleaved < T, name> \
    }
#define ODX_PLANES(name, S, T)      \
    {                               \
#name, planar < S, T, name> \
    }
    return {
        ODX_PAIRS(odxImageGradientInterleaveds16, int16_t),
        ODX_PAIRS(odxImageGradientInterleaveds16_v2, int16_t),
        ODX_PAIRS(odxImageGradientInterleavedf32, float),
        ODX_PAIRS(odxImageGradientInterleavedf32_v2, float),
        ODX_PLANES(odxImageGradientPlanars16, uint8_t, int16_t),
        ODX_PLANES(odxImageGradientPlanars16_v2, uint8_t, int16_t),
        ODX_PLANES(odxImageGradientPlanarf32, uint8_t, float),
        ODX_PLANES(odxImageGradientPlanarf32_v2, uint8_t, float),
        ODX_PAIRS(odxImageGradientSobelInterleaveds16, int16_t),
        ODX_PAIRS(odxImageGradientSobelInterleaveds16_v2, int16_t),
        ODX_PAIRS(odxImageGradientSobelInterleaveds16_v3, int16_t),
        ODX_PAIRS(odxImageGradientSobelInterleavedf32, float),
        ODX_PAIRS(odxImageGradientSobelInterleavedf32_v2, float),
        ODX_PLANES(odxImageGradientSobelPlanars16, uint8_t, int16_t),
        ODX_PLANES(odxImageGradientSobelPlanars16_v2, uint8_t, int16_t),
        ODX_PLANES(odxImageGradientSobelPlanars16_v3, uint8_t, int16_t),
        ODX_PLANES(odxImageGradientSobelPlanars8, uint8_t, int8_t),
        ODX_PLANES(odxImageGradientSobelPlanars8_v2, uint8_t, int8_t),
        ODX_PLANES(odxImageGradientSobelPlanarf32, uint8_t, float),
        ODX_PLANES(odxImageGradientSobelPlanarf32_v2, uint8_t, float),
        ODX_PLANES(odxImageGradientSobelPlanarf32f32, float, float),
        ODX_PLANES(odxImageGradientSobelPlanarf32f32_v2, float, float),
        ODX_PAIRS(odxImageGradientScharrInterleaveds16, int16_t),
        {"odxFilterSobel3x3u8", magnitude},
        {"odxFilterSobel3x3u8_v2", magnitude_v2},
        {"odxFilterSobel3x3u8s16", sobel<3, odxFilterSobel3x3u8s16>},
        {"odxFilterSobel5x5u8s16", sobel<5, odxFilterSobel5x5u8s16>},
        {"odxFilterSobel7x7u8s16", sobel<7, odxFilterSobel7x7u8s16>},
        {"odxFilterCannyu8", canny, true},
        {"odxFilterCanny3x3u8", differenceEdges, true},
        {"odxFilterCanny3x3u8_v2", differenceEdges_v2, true},
        {"odxFilterCanny3x3u8_v3", differenceEdges_v3, true},
    };
#undef ODX_PAIRS
#undef ODX_PLANES
}

} // namespace odx::test
