#include "operations/shapes.h"

#include "ondrix/reordering.h"

namespace odx::test::reordering
{

// Rows of packed pixels are described in elements of T. Rows that lie a power of two apart move in tiles.
template <class T, uint32_t channels>
Image<T> turning(Draw& draw, Extent& extent)
{
    extent = draw.extent();
    if (draw.pick("apart", {0, 1, 0, 0}) == 0)
        return draw.source<T>("src", {channels * extent.width, extent.height});
    constexpr uint32_t kRow = 1024 / sizeof(T);
    extent = {draw.number("width", 1u, kRow / channels, 0u), draw.number("height", 1u, 600u, 0u)};
    auto src = draw.source<T>("src", {kRow, extent.height}, true);
    src.defaulted = false;
    return src;
}

template <class T, uint32_t channels, auto* operation>
void transpose(Draw& draw)
{
    Extent extent;
    const auto src = turning<T, channels>(draw, extent);
    const auto dst = draw.destination<T>("dst", {channels * extent.height, extent.width});
    draw.call(operation, sized(src, extent), dst);
}

template <class T, uint32_t channels, auto* operation>
void flip(Draw& draw)
{
    const Extent extent = draw.extent();
    const int dir = draw.pick("dir", {1, 3, 2});
    const auto src = draw.source<T>("src", {channels * extent.width, extent.height});
    draw.call(operation, sized(src, extent), draw.destinationOr(src), dir);
}

template <uint32_t channels, auto* operation>
void rotate(Draw& draw)
{
    Extent extent;
    const auto src = turning<uint8_t, channels>(draw, extent);
    const int degree = draw.pick("degree", {1, 3, 2});
    const Extent turned = degree == 2 ? extent : Extent{extent.height, extent.width};
    const auto dst = draw.destination<uint8_t>("dst", {channels * turned.width, turned.height});
    draw.call(operation, sized(src, extent), dst, degree);
}

void copy(Draw& draw)
{
    const uint32_t length = draw.length(1);
    draw.call(odxCopy, to<uint8_t>("dst", length), from<uint8_t>("src", length), length);
}

std::vector<Row> rows()
{
    return {
        {"odxTransposeu8", transpose<uint8_t, 1, odxTransposeu8>},
        {"odxTransposeu16", transpose<uint16_t, 1, odxTransposeu16>},
        {"odxTransposef32", transpose<float, 1, odxTransposef32>},
        {"odxTransposeRGB888u8", transpose<uint8_t, 3, odxTransposeRGB888u8>},
        {"odxFlipu8", flip<uint8_t, 1, odxFlipu8>},
        {"odxFlipu16", flip<uint16_t, 1, odxFlipu16>},
        {"odxFlipRGB888u8", flip<uint8_t, 3, odxFlipRGB888u8>},
        {"odxRotateImageu8", rotate<1, odxRotateImageu8>},
        {"odxRotateImageInterleavedu8", rotate<2, odxRotateImageInterleavedu8>},
        {"odxCopy", copy},
    };
}

} // namespace odx::test::reordering
