#include "operations/draw.h"

#include "ondrix/smoothing.h"

namespace odx::test
{

namespace
{

// Rows of the functions that share a signature. Packed functions have no strides.

template <class T, uint32_t minWidth, uint32_t minHeight, auto* operation>
void packedGaussian(Draw& draw)
{
    const Extent extent = draw.extent(minWidth, minHeight);
    const auto src = draw.source<T>("src", extent, true), dst = draw.destination<T>("dst", extent, true);
    const int border = draw.pick("border", {1, 0, 2});
    draw.run([&] { operation(src.pixels, extent.width, extent.height, dst.pixels, border); });
}

template <class T, uint32_t minWidth, uint32_t minHeight, auto* operation>
void gaussian(Draw& draw)
{
    const Extent extent = draw.extent(minWidth, minHeight);
    const auto src = draw.source<T>("src", extent), dst = draw.destination<T>("dst", extent);
    const int border = draw.pick("border", {1, 0, 2});
    draw.run([&] {
        operation(src.pixels, extent.width, extent.height, src.strideArgument(), dst.pixels, dst.strideArgument(),
                  border);
    });
}

template <uint32_t K, auto* operation>
void box(Draw& draw)
{
    const Extent extent = draw.extent(K, K);
    const auto src = draw.source<uint8_t>("src", extent), dst = draw.destination<uint8_t>("dst", extent);
    draw.run([&] { operation(src.pixels, extent.width, extent.height, src.stride, dst.pixels, dst.stride); });
}

template <auto* operation>
void withBorderType(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = draw.source<uint8_t>("src", extent), dst = draw.destination<uint8_t>("dst", extent);
    const auto type =
        draw.pick("type", {ONDRIX_BORDER_REPLICATE, ONDRIX_BORDER_CONSTANT, ONDRIX_BORDER_UNDEFINED});
    const uint32_t value = draw.number<uint32_t>("value", 0, 300, 0);
    draw.run([&] {
        return operation(src.pixels, extent.width, extent.height, src.strideArgument(), dst.pixels,
                         dst.strideArgument(), type, value);
    });
}

void boxNxN(Draw& draw)
{
    const Extent extent = draw.extent(5, 5);
    const uint32_t n = draw.number<uint32_t>("N", 2, 30, 5);
    const auto src = draw.source<float>("src", extent);
    if (!draw.measures() && draw.pick("in place", {0, 1, 0}) == 1) {
        draw.writesInPlace(src);
        draw.run([&] {
            odxBoxFilterNxNf32(src.pixels, extent.width, extent.height, src.stride, n, src.pixels, src.stride);
        });
        return;
    }
    const auto dst = draw.destination<float>("dst", extent);
    draw.run([&] {
        odxBoxFilterNxNf32(src.pixels, extent.width, extent.height, src.strideArgument(), n, dst.pixels,
                           dst.strideArgument());
    });
}

void median(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = draw.source<uint8_t>("src", extent, true),
               dst = draw.destination<uint8_t>("dst", extent, true);
    draw.run([&] { odxFilterMedian3x3u8(src.pixels, extent.width, extent.height, dst.pixels); });
}

void median_v2(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = draw.source<uint8_t>("src", extent), dst = draw.destination<uint8_t>("dst", extent);
    draw.run([&] {
        odxFilterMedian3x3u8_v2(src.pixels, extent.width, extent.height, src.strideArgument(), dst.pixels,
                                dst.strideArgument());
    });
}

void medianMxN(Draw& draw)
{
    const Extent extent = draw.extent();
    const uint32_t m = draw.pick("M", {3u, 5u, 7u, 21u}), n = draw.pick("N", {3u, 5u, 9u});
    const auto src = draw.source<int16_t>("src", extent), dst = draw.destination<int16_t>("dst", extent);
    draw.run([&] {
        return odxFilterMedianMxNs16(src.pixels, extent.width, extent.height, src.stride, m, n, dst.pixels,
                                     dst.stride);
    });
}

} // namespace

std::vector<Row> smoothingRows()
{
    return {
        {"odxFilterGaussian3x3u8", packedGaussian<uint8_t, 7, 1, odxFilterGaussian3x3u8>},
        {"odxFilterGaussian3x3u8_v2", gaussian<uint8_t, 7, 2, odxFilterGaussian3x3u8_v2>},
        {"odxFilterGaussian3x3u8_v3", withBorderType<odxFilterGaussian3x3u8_v3>},
        {"odxFilterGaussian5x5u8", packedGaussian<uint8_t, 5, 5, odxFilterGaussian5x5u8>},
        {"odxFilterGaussian5x5u8_v2", gaussian<uint8_t, 5, 5, odxFilterGaussian5x5u8_v2>},
        {"odxFilterGaussian11x11u8", packedGaussian<uint8_t, 11, 11, odxFilterGaussian11x11u8>},
        {"odxFilterGaussian11x11u8_v2", gaussian<uint8_t, 11, 11, odxFilterGaussian11x11u8_v2>},
        {"odxFilterGaussian5x5s16", packedGaussian<int16_t, 1, 2, odxFilterGaussian5x5s16>},
        {"odxFilterGaussian5x5s16_v2", gaussian<int16_t, 1, 2, odxFilterGaussian5x5s16_v2>},
        {"odxFilterGaussian5x5s32", packedGaussian<int32_t, 5, 5, odxFilterGaussian5x5s32>},
        {"odxFilterGaussian5x5s32_v2", gaussian<int32_t, 5, 5, odxFilterGaussian5x5s32_v2>},
        {"odxBoxFilter3x3u8", box<3, odxBoxFilter3x3u8>},
        {"odxBoxFilter3x3u8_v2", withBorderType<odxBoxFilter3x3u8_v2>},
        {"odxBoxFilter5x5u8", box<5, odxBoxFilter5x5u8>},
        {"odxBoxFilter11x11u8", box<11, odxBoxFilter11x11u8>},
        {"odxBoxFilterNxNf32", boxNxN},
        {"odxFilterMedian3x3u8", median},
        {"odxFilterMedian3x3u8_v2", median_v2},
        {"odxFilterMedian3x3u8_v3", withBorderType<odxFilterMedian3x3u8_v3>},
        {"odxFilterMedianMxNs16", medianMxN},
    };
}

} // namespace odx::test
