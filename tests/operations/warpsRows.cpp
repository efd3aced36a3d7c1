#include "operations/shapes.h"

#include "ondrix/warps.h"

#include <limits>
#include <math.h>

namespace odx::test::warps
{

// A matrix that shows the source turned, scaled, moved and, with nine coefficients, tilted; sometimes exactly, and
// sometimes one without sense.
const float* matrix(Draw& draw, uint32_t coefficients, Extent from, Extent to)
{
    float* const m = draw.sourceArray<float>("matrix", coefficients);
    const int kind = draw.pick("kind", {0, 0, 1, 2, 3, 4, 5});
    const float angle = kind == 0 ? draw.real("angle", -3.2f, 3.2f, 0.1f) : 0;
    const float scale = kind == 0 ? draw.real("scale", 0.3f, 2.0f, 0.9f) : 1;
    const float c = cosf(angle) * scale, s = sinf(angle) * scale;
    const bool freeX = kind == 0 || kind == 1, freeY = kind == 0 || kind == 2; // else whole or simple fractions
    const float shiftX = freeX       ? draw.real("x", -20, 20, 0.3f)
                         : kind == 3 ? -0.5f
                                     : 0,
                shiftY = freeY       ? draw.real("y", -20, 20, 0.7f)
                         : kind == 3 ? 0.25f
                                     : 0;
    const float middleX = static_cast<float>(to.width) / 2, middleY = static_cast<float>(to.height) / 2;
    const float first[] = {c, -s, static_cast<float>(from.width) / 2 - c * middleX + s * middleY + shiftX};
    const float second[] = {s, c, static_cast<float>(from.height) / 2 - s * middleX - c * middleY + shiftY};
    const float tilt = kind == 0 ? draw.real("tilt", -0.01f, 0.02f, 0.0001f) : 0;
    const float third[] = {tilt, -tilt / 2, 1};
    std::copy(first, first + 3, m);
    std::copy(second, second + 3, m + 3);
    if (coefficients == 9) std::copy(third, third + 3, m + 6);
    if (kind >= 4) {
        const float senseless[] = {0, -0.0f, 1e-40f, 3e38f, -1, 1e10f, INFINITY, NAN, -1e-30f};
        m[draw.number<uint32_t>("place", 0, coefficients - 1, 0)] = senseless[draw.number("value", 0, 8, 0)];
    }
    return m;
}

// Half of the warps go into another size.
Extent sourceExtent(Draw& draw, Extent to)
{
    if (draw.measures() || draw.pick("same size", {1, 0}) == 1) return to;
    return {draw.number<uint32_t>("source width", 1, 90, 90), draw.number<uint32_t>("source height", 1, 90, 90)};
}

// Two images, the second one of the size that is swept.
template <uint32_t channels, bool packed = false>
struct Images {
    Extent to, from;
    Image<uint8_t> src, dst;

    explicit Images(Draw& draw)
        : to(draw.extent()), from(sourceExtent(draw, to)),
          src(draw.source<uint8_t>("src", {channels * from.width, from.height}, packed)),
          dst(draw.destination<uint8_t>("dst", {channels * to.width, to.height}, packed))
    {
    }
    auto sources() const { return sized(src, from); }
    auto destinations() const { return sized(dst, to); }
};

template <uint32_t channels, auto* operation, auto... rest>
void warp(Draw& draw)
{
    const Images<channels, arity(operation) == 7> i(draw);
    draw.call(operation, i.sources(), i.destinations(), matrix(draw, 9, i.from, i.to), rest...);
}

void twoPlanes(Draw& draw)
{
    const Images<1> i(draw);
    const auto src2 = draw.source<uint8_t>("src2", i.from), dst2 = draw.destination<uint8_t>("dst2", i.to);
    draw.call(odx2PlaneWarpPerspectiveu8, pixels(i.src, src2), i.from, strides(i.src, src2), pixels(i.dst, dst2),
              i.to, strides(i.dst, dst2), matrix(draw, 9, i.from, i.to));
}

template <uint32_t channels, auto* operation, auto... rest>
void clipped(Draw& draw)
{
    const Images<channels> i(draw);
    const auto border = test::to<uint32_t>("dstBorder", 2 * i.to.height);
    auto* const dstBorder = channels == 3 ? border(draw) : maybe(border)(draw);
    draw.call(operation, i.sources(), matrix(draw, 6, i.from, i.to), i.destinations(), dstBorder, rest...);
}

// Positions near a matrix' ones, some of which are nowhere.
template <uint32_t channels, auto* operation, auto... rest>
void remap(Draw& draw)
{
    const Images<channels> images(draw);
    const Extent to = images.to;
    const auto mapX = draw.source<float>("mapX", to, true), mapY = draw.source<float>("mapY", to, true);
    const float shift = draw.real("shift", -3, 3, 0.3f), bend = draw.real("bend", -0.05f, 0.05f, 0.001f);
    const float senseless[] = {
        -0.0f, -1e-40f, 1e-40f, INFINITY, -INFINITY, NAN, 3e9f, -3e9f, static_cast<float>(images.from.width - 1)};
    const uint32_t every = draw.pick("senseless", {0u, 0u, 29u, 2u});
    for (uint32_t y = 0, i = 0; y < to.height; ++y) {
        for (uint32_t x = 0; x < to.width; ++x, ++i) {
            mapX.at(x, y) = static_cast<float>(x) + shift + bend * static_cast<float>(y);
            mapY.at(x, y) = static_cast<float>(y) - shift / 2 + bend * static_cast<float>(x);
            if (every != 0 && i % every == 0) (i / every % 2 == 0 ? mapX : mapY).at(x, y) = senseless[i / 7 % 9];
        }
    }
    draw.call(operation, images.sources(), images.destinations(), mapX.pixels, mapY, rest...);
}

template <auto* operation>
void patch(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent(12, 12));
    const auto dst = draw.destination<uint8_t>(
        "patch", {draw.number<uint32_t>("width", 1, 12, 8), draw.number<uint32_t>("height", 1, 12, 8)});
    const float position[] = {static_cast<float>(src.width) / 2 + draw.real("x", -3, 3, 0.3f),
                              static_cast<float>(src.height) / 2 + draw.real("y", -3, 3, 0.6f)};
    const float affine[] = {draw.real("a", -1.2f, 1.2f, 0.9f), draw.real("b", -0.5f, 0.5f, 0.1f),
                            draw.real("c", -0.5f, 0.5f, -0.1f), draw.real("d", -1.2f, 1.2f, 0.9f)};
    draw.call(operation, sized(src), position, affine, sized(dst));
}

template <auto* operation>
void patches(Draw& draw)
{
    const auto src = draw.source<uint8_t>("src", draw.extent(12, 12));
    const uint32_t count = draw.length(1, 64);
    auto* const positions = draw.sourceArray<float>("positions", 2 * count);
    auto* const affines = draw.sourceArray<float>("affines", 4 * count);
    auto* const dst = draw.destinationArray<uint8_t>("patches", 64 * count);
    for (uint32_t i = 0; i < count; ++i) {
        const float turn = static_cast<float>(i % 13) * 0.02f, at[] = {turn, 0.9f};
        positions[2 * i] = static_cast<float>(src.width) / 2 + at[0] * static_cast<float>(i % 5);
        positions[2 * i + 1] = static_cast<float>(src.height) / 2 - at[0];
        const float affine[] = {at[1], turn, -turn, at[1]};
        std::copy(affine, affine + 4, affines + 4 * size_t{i});
    }
    draw.call(operation, sized(src), count, positions, affines, dst);
}

float orientation(Draw& draw)
{
    return draw.real("orientation", -7, 7, 0.5f);
}

void fourPoints(Draw& draw)
{
    float points[2][8];
    for (float(&p)[8] : points) {
        const float square[] = {0, 0, 100, 0, 100, 100, 0, 100};
        for (int i = 0; i < 8; ++i)
            p[i] = square[i] + draw.real("point", -20, 20, 5);
    }
    draw.call(odxGetPerspectiveTransformf32, points[0], points[1], results<float, 9>);
}

constexpr auto interpolation =
    oneOf<ONDRIX_INTERPOLATION_BILINEAR, ONDRIX_INTERPOLATION_NEAREST, ONDRIX_INTERPOLATION_AREA>;
constexpr auto exactInterpolation = oneOf<ONDRIX_INTERPOLATION_BILINEAR, ONDRIX_INTERPOLATION_NEAREST>;
constexpr auto undefinedFirst = oneOf<ONDRIX_BORDER_UNDEFINED, ONDRIX_BORDER_CONSTANT, ONDRIX_BORDER_REPLICATE>;

std::vector<Row> rows()
{
    return {
        VERSIONS(odxWarpPerspectiveu8, warp, 1),
        {"odxWarpPerspectiveu8_v3", warp<1, odxWarpPerspectiveu8_v3, interpolation>},
        {"odxWarpPerspectiveu8_v4", warp<1, odxWarpPerspectiveu8_v4, interpolation, undefinedFirst, borderValue>},
        VERSIONS(odx3ChannelWarpPerspectiveu8, warp, 3),
        {"odx2PlaneWarpPerspectiveu8", twoPlanes},
        {"odxTransformAffineu8", patch<odxTransformAffineu8>},
        {"odxTransformAffineu8_v2", patch<odxTransformAffineu8_v2>},
        {"odxTransformAffine8x8u8", patches<odxTransformAffine8x8u8>},
        {"odxTransformAffine8x8u8_v2", patches<odxTransformAffine8x8u8_v2>},
        {"odxTransformAffineClippedu8", clipped<1, odxTransformAffineClippedu8>},
        {"odxTransformAffineClippedu8_v2", clipped<1, odxTransformAffineClippedu8_v2, interpolation>},
        {"odxTransformAffineClippedu8_v3",
         clipped<1, odxTransformAffineClippedu8_v3, interpolation, undefinedFirst, borderValue>},
        {"odx3ChannelTransformAffineClippedBCu8", clipped<3, odx3ChannelTransformAffineClippedBCu8>},
        {"odxRemapRGBA8888NNu8", remap<4, odxRemapRGBA8888NNu8>},
        {"odxRemapRGBA8888BLu8", remap<4, odxRemapRGBA8888BLu8>},
        {"odxRemapu8", remap<1, odxRemapu8, interpolation>},
        {"odxRemapu8_v2", remap<1, odxRemapu8_v2, exactInterpolation, undefinedFirst, borderValue>},
        {"odxCopyRotated17x17u8",
         taking<odxCopyRotated17x17u8, array<uint8_t, 25 * 25>, results<uint8_t, 17 * 17>, orientation>},
        {"odxInvertAffineTransformf32", taking<odxInvertAffineTransformf32, array<float, 6>, results<float, 9>>},
        {"odxGetPerspectiveTransformf32", fourPoints},
    };
}

} // namespace odx::test::warps
