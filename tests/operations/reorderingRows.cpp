#include "operations/shapes.h"

#include "ondrix/reordering.h"

namespace odx::test::reordering
{

// Rows of packed pixels are described in elements of T.
template <class T, uint32_t channels, auto* operation>
void transpose(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = draw.source<T>("src", {channels * extent.width, extent.height});
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
    const Extent extent = draw.extent();
    const int degree = draw.pick("degree", {1, 3, 2});
    const Extent turned = degree == 2 ? extent : Extent{extent.height, extent.width};
    const auto src = draw.source<uint8_t>("src", {channels * extent.width, extent.height});
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
