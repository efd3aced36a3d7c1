#include "operations/shapes.h"

#include "ondrix/pyramids.h"
#include "ondrix/scaling.h"

namespace odx::test::scaling
{

// The size of an output, of a source of `size`: typically two thirds.
uint32_t outputSize(Draw& draw, const char* name, uint32_t size, uint32_t least = 1)
{
    const uint32_t third = size / 3, typical = std::max(2 * third, least);
    const uint32_t drawn = draw.number<uint32_t>(name, least, std::max(2 * size, least) + 1, typical);
    return draw.pick("size", {drawn, std::max(size, least), std::max(size / 2, least), 2 * size, 3 * size, drawn});
}

// An even number of pixels, or another multiple of k.
Extent multiples(Draw& draw, uint32_t k)
{
    const Extent extent = draw.extent(k, k);
    return {extent.width / k * k, extent.height / k * k};
}

template <class T, uint32_t channels, auto* operation>
void rescale(Draw& draw, Extent extent, Extent outputs)
{
    constexpr bool packed = arity(operation) < 6;
    const auto src = draw.source<T>("src", {extent.width * channels, extent.height}, packed);
    const auto dst = draw.destination<T>("dst", {outputs.width * channels, outputs.height}, packed);
    draw.call(operation, sized(src, extent), dst);
}

// Operations that write `up` pixels for each `down` pixels of the source.
template <class T, uint32_t up, uint32_t down, auto* operation>
void whole(Draw& draw)
{
    const Extent extent = multiples(draw, down);
    rescale<T, 1, operation>(draw, extent, {extent.width / down * up, extent.height / down * up});
}

// Sizes that need not be multiples: n pixels become (up * n + rounds) / down.
template <auto* operation, uint32_t upX, uint32_t upY, uint32_t channels = 1, uint32_t least = 1,
          uint32_t down = 1, uint32_t rounds = 0>
void rescaling(Draw& draw)
{
    const Extent extent = draw.extent(least, least);
    rescale<uint8_t, channels, operation>(
        draw, extent, {(upX * extent.width + rounds) / down, (upY * extent.height + rounds) / down});
}

// Operations whose sizes are given.

template <uint32_t channels, auto* operation, class... Numbers>
void resize(Draw& draw, Extent from, Extent to, Numbers... numbers)
{
    const auto src = draw.source<uint8_t>("src", {from.width * channels, from.height}),
               dst = draw.destination<uint8_t>("dst", {to.width * channels, to.height});
    draw.call(operation, sized(src, from), sized(dst, to), numbers...);
}

template <uint32_t channels, uint32_t share, auto* operation>
void toAnySize(Draw& draw)
{
    const Extent from = draw.extent();
    const Extent to = {outputSize(draw, "width", from.width, from.width / share + 1),
                       outputSize(draw, "height", from.height, from.height / share + 1)};
    resize<channels, operation>(draw, from, to);
}

Extent drawnSize(Draw& draw, Extent from)
{
    return {outputSize(draw, "width", from.width), outputSize(draw, "height", from.height)};
}

template <auto* operation, auto... rest>
void scale(Draw& draw)
{
    const Extent from = draw.extent(), to = drawnSize(draw, from);
    resize<1, operation>(draw, from, to, rest...);
}
constexpr auto bilinearFirst =
                   oneOf<ONDRIX_INTERPOLATION_BILINEAR, ONDRIX_INTERPOLATION_AREA, ONDRIX_INTERPOLATION_NEAREST>,
               areaFirst =
                   oneOf<ONDRIX_INTERPOLATION_AREA, ONDRIX_INTERPOLATION_BILINEAR, ONDRIX_INTERPOLATION_NEAREST>;

template <auto* operation>
void blocks(Draw& draw)
{
    constexpr bool packed = arity(operation) < 8;
    const uint32_t x = draw.pick("kx", {3u, 1u, 2u, 4u, 5u, 17u}), y = draw.pick("ky", {3u, 2u, 1u, 4u, 7u});
    const Extent extent = draw.extent(x, y), to = {extent.width / x, extent.height / y},
                 from = {to.width * x, to.height * y};
    const auto src = draw.source<uint8_t>("src", from, packed), dst = draw.destination<uint8_t>("dst", to, packed);
    draw.call(operation, sized(src), sized(dst));
}

// ---- pyramids: the levels' buffers are images; what becomes of the records counts as result ----

template <class Level>
void report(Draw& draw, const std::vector<Level>& levels, const void* base)
{
    for (const Level& level : levels) {
        draw.result(level.width);
        draw.result(level.height);
        draw.result(level.ptr == base);
    }
}

constexpr uint32_t kLevels = 4;

template <class T, class Level, auto* operation>
void halves(Draw& draw)
{
    const Extent extent = multiples(draw, 1u << (kLevels - 1));
    constexpr bool strided = std::is_same_v<Level, odxPyrLevelStrided>;
    const auto base = draw.source<T>("base", extent, !strided);
    if constexpr (std::is_same_v<T, float>) {
        // Infinite sums of a level would become no numbers in the next, whose bits depend on the processor.
        for (uint32_t y = 0; y < extent.height; ++y) {
            for (uint32_t x = 0; x < extent.width; ++x)
                base.at(x, y) *= 0x1p-20F;
        }
    }
    std::vector<Level> levels(kLevels);
    for (uint32_t i = 1; i < kLevels; ++i)
        levels[i].ptr = draw.destination<T>("level", {extent.width >> i, extent.height >> i}, true).pixels;
    draw.call(operation, sized(base), kLevels, levels.data());
    report(draw, levels, base.pixels);
}

void anyPyramid(Draw& draw)
{
    const Extent extent = draw.extent();
    const uint32_t octaves = draw.pick("scaleFlag", {0u, 1u});
    const bool owned = draw.pick("owned", {0, 1}) == 1;
    const auto base = draw.source<uint8_t>("base", extent);
    std::vector<odxPyrLevelStrided> levels(kLevels + 2), sizes(levels.size());
    const auto count = static_cast<uint32_t>(levels.size());
    odxPyramidAllocate_v3(sizes.data(), extent.width, extent.height, 0, 1, 8, count, octaves, 0);
    odxPyramidDelete_v2(sizes.data(), count, 1);
    for (uint32_t i = owned ? 0 : 1; i < count; ++i) {
        levels[i] = sizes[i];
        levels[i].stride = i == 0 ? base.stride : sizes[i].width + 3;
        const Extent whole = {levels[i].stride, sizes[i].height};
        levels[i].ptr = draw.destination<uint8_t>("level", whole, true).pixels;
    }
    draw.call(odxPyramidCreateu8_v3, sized(base, extent), count, octaves, levels.data());
    report(draw, levels, base.pixels);
}

template <class T, auto* operation>
void gradients(Draw& draw)
{
    const Extent extent = draw.extent();
    std::vector<odxPyrLevel> levels[3];
    for (auto& pyramid : levels)
        pyramid.resize(kLevels);
    for (uint32_t i = 0; i < kLevels; ++i) {
        const Extent size = {std::max(extent.width >> i, 1u), std::max(extent.height >> i, 1u)};
        levels[0][i] = {draw.source<uint8_t>("level", size, true).pixels, extent.width >> i, extent.height >> i};
        levels[1][i].ptr = draw.destination<T>("dx", size, true).pixels;
        levels[2][i].ptr = draw.destination<T>("dy", size, true).pixels;
    }
    draw.call(operation, levels[0].data(), levels[1].data(), levels[2].data(), kLevels);
    report(draw, levels[1], nullptr);
    report(draw, levels[2], nullptr);
}

// Allocation of 5 levels and deletion: what the records hold between them.
template <class Level, auto* remove, auto* allocate, bool hasStride, bool hasScale>
void allocation(Draw& draw)
{
    const Extent extent = draw.extent();
    const uint32_t owned = draw.pick("owned", {1u, 0u});
    const auto scale = when<hasScale>(draw.pick("scaleFlag", {0u, 1u}));
    const auto stride = when<hasStride>(hasScale ? 0 : extent.width * 4 + 8);
    std::vector<Level> levels(5);
    const auto arguments = flatWith<true>(NoArguments(), levels.data(), extent, stride, hasScale ? 1 : 4,
                                          when<hasScale>(24), 5, scale, owned);
    draw.run([&] {
        const auto result = pass(allocate, arguments);
        for (const Level& level : levels) {
            draw.result(level.width);
            draw.result(level.height);
            draw.result(level.ptr != nullptr);
        }
        remove(levels.data(), 5, 0);
        remove(levels.data(), 5, 0);
        return result;
    });
}
constexpr auto allocate = allocation<odxPyrLevel, odxPyramidDelete, odxPyramidAllocate, false, false>,
               allocate_v2 =
                   allocation<odxPyrLevelStrided, odxPyramidDelete_v2, odxPyramidAllocate_v2, true, false>,
               allocate_v3 =
                   allocation<odxPyrLevelStrided, odxPyramidDelete_v2, odxPyramidAllocate_v3, true, true>;

std::vector<Row> rows()
{
    return {
        VERSIONS(odxScaleDownBy2u8, whole, uint8_t, 1, 2),
        VERSIONS(odxScaleDownBy4u8, whole, uint8_t, 1, 4),
        {"odxScaleDown3To2u8", rescaling<odxScaleDown3To2u8, 2, 2, 1, 3, 3>},
        {"odxScaleDownu8", blocks<odxScaleDownu8>},
        {"odxScaleDownu8_v2", blocks<odxScaleDownu8_v2>},
        {"odxScaleDownMNu8", toAnySize<1, 20, odxScaleDownMNu8>},
        {"odxScaleDownMNInterleaveu8", toAnySize<2, 40, odxScaleDownMNInterleaveu8>},
        {"odxScaleDownBy2Gaussian5x5u8", whole<uint8_t, 1, 2, odxScaleDownBy2Gaussian5x5u8>},
        {"odxScaleDownBy2Gaussian5x5u8_v2", rescaling<odxScaleDownBy2Gaussian5x5u8_v2, 1, 1, 1, 2, 2, 0>},
        VERSIONS(odxScaleDownBy2Gaussian5x5f32, whole, float, 1, 2),
        {"odxScaleDownBy2Gaussian3x3u8", rescaling<odxScaleDownBy2Gaussian3x3u8, 1, 1, 1, 3, 2, 1>},
        {"odxScaleUpBy2Gaussian5x5u8", whole<uint8_t, 2, 1, odxScaleUpBy2Gaussian5x5u8>},
        {"odxScaleUpBy2Gaussian5x5u8_v2", rescaling<odxScaleUpBy2Gaussian5x5u8_v2, 2, 2, 1>},
        {"odxUpsampleVerticalu8", rescaling<odxUpsampleVerticalu8, 1, 2, 1>},
        {"odxUpsampleHorizontalu8", rescaling<odxUpsampleHorizontalu8, 2, 1, 1>},
        {"odxUpsample2Du8", rescaling<odxUpsample2Du8, 2, 2, 1>},
        {"odxUpsampleVerticalInterleavedu8", rescaling<odxUpsampleVerticalInterleavedu8, 1, 2, 2>},
        {"odxUpsampleHorizontalInterleavedu8", rescaling<odxUpsampleHorizontalInterleavedu8, 2, 1, 2>},
        {"odxUpsample2DInterleavedu8", rescaling<odxUpsample2DInterleavedu8, 2, 2, 2>},
        {"odxScaleDownNNu8", toAnySize<1, 100, odxScaleDownNNu8>},
        {"odxScaleDownBLu8", toAnySize<1, 100, odxScaleDownBLu8>},
        {"odxScaleUpPolyu8", toAnySize<1, 100, odxScaleUpPolyu8>},
        {"odxScaleUpPolyInterleaveu8", toAnySize<2, 100, odxScaleUpPolyInterleaveu8>},
        {"odxScaleu8", scale<odxScaleu8, bilinearFirst>},
        {"odxScaleu8_v2", scale<odxScaleu8_v2, areaFirst, borderType, between<uint8_t{0}, 255, 100>>},
        {"odxPyramidAllocate", allocate, false, true},
        {"odxPyramidAllocate_v2", allocate_v2, false, true},
        {"odxPyramidAllocate_v3", allocate_v3, false, true},
        {"odxPyramidDelete", allocate, false, true},
        {"odxPyramidDelete_v2", allocate_v2, false, true},
        {"odxPyramidCreateu8", halves<uint8_t, odxPyrLevel, odxPyramidCreateu8>},
        {"odxPyramidCreatef32", halves<float, odxPyrLevel, odxPyramidCreatef32>},
        {"odxPyramidCreateu8_v2", halves<uint8_t, odxPyrLevelStrided, odxPyramidCreateu8_v2>},
        {"odxPyramidCreatef32_v2", halves<float, odxPyrLevelStrided, odxPyramidCreatef32_v2>},
        {"odxPyramidCreateu8_v3", anyPyramid},
        {"odxPyramidSobelGradientCreatei16", gradients<int16_t, odxPyramidSobelGradientCreatei16>},
        {"odxPyramidSobelGradientCreatei8", gradients<int8_t, odxPyramidSobelGradientCreatei8>},
        {"odxPyramidSobelGradientCreatef32", gradients<float, odxPyramidSobelGradientCreatef32>},
    };
}

} // namespace odx::test::scaling
