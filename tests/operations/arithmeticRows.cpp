#include "operations/shapes.h"

#include "ondrix/arithmetic.h"

#include <string.h>

namespace odx::test::arithmetic
{

constexpr auto overflow = oneOf<ONDRIX_OVERFLOW_SATURATE, ONDRIX_OVERFLOW_WRAP>;

// Numbers of any size, and of a few bits; floats that leave and make subnormal numbers, too.
template <class T>
T value(Draw& draw)
{
    if constexpr (std::is_floating_point_v<T>) {
        const int scale = draw.pick("exponent", {0, 0, 100, -100, -126});
        const float n = draw.real("value", -3, 3, 1.5f);
        return scale == 0 ? n : scale > 0 ? n * 0x1p100f : scale > -110 ? n * 0x1p-100f : n * 0x1p-126f;
    } else {
        return static_cast<T>(draw.number<int64_t>("value", INT32_MIN, INT32_MAX, 100));
    }
}
constexpr auto table = array<uint8_t, 256>;
float weight(Draw& draw)
{
    return draw.pick("weight", {0, 0, 1}) == 0 ? draw.real("value", -2, 2, 0.5f)
                                               : draw.real("value", -300, 300, 0);
}

// Bit patterns of infinities, not-a-numbers, subnormal numbers and zeros of both signs among others.
void addSpecial(Draw& draw, const Image<float>& image)
{
    constexpr uint32_t kPatterns[] = {0x7F800000, 0xFF800000, 0x7FC00000, 0x00000001, 0x807FFFFF, 0x80000000, 0,
                                      0x00800000, 0x80800001, 0x7F7FFFFF, 0x20000000, 0xA0000001, 0x1F000000};
    if (draw.measures()) return;
    const uint32_t first = draw.number<uint32_t>("special", 0, 40, 40);
    for (uint32_t i = first; i < image.width * image.height && first < 13; i += 1 + first)
        memcpy(&image.at(i % image.width, i / image.width), &kPatterns[i % 13], sizeof(float));
}
template <class T>
Image<T> sourceOf(Draw& draw, const char* name, Extent extent, bool packed = false)
{
    const Image<T> image = draw.source<T>(name, extent, packed);
    if constexpr (std::is_floating_point_v<T>) addSpecial(draw, image);
    return image;
}

// Not-a-numbers may differ in sign and payload: all become the same.
template <class T>
void settle(const Image<T>& image)
{
    if constexpr (std::is_floating_point_v<T>) {
        for (uint32_t i = 0; i < image.width * image.height; ++i) {
            float& v = image.at(i % image.width, i / image.width);
            if (v != v) memset(&v, 0xFF, sizeof v);
        }
    }
}

// Where the result goes: to an image of its own, or to a source whose elements are as large.
template <class D, class S>
Image<D> destinationOf(Draw& draw, Extent extent, const Image<S>& source, const char* what, bool packed = false)
{
    if constexpr (sizeof(S) == sizeof(D)) {
        if (!draw.measures() && draw.pick(what, {0, 0, 1}) == 1) {
            draw.writesInPlace(source);
            return {reinterpret_cast<D*>(source.pixels), source.width, source.height, source.stride,
                    source.defaulted};
        }
    }
    return draw.destination<D>("dst", extent, packed);
}

template <class S1, class S2, class D, auto* operation, auto... rest>
void two(Draw& draw)
{
    constexpr bool packed = arity(operation) < 8 + sizeof...(rest);
    const Extent extent = draw.extent();
    const auto src1 = sourceOf<S1>(draw, "src1", extent, packed);
    const auto src2 = sourceOf<S2>(draw, "src2", extent, packed);
    const auto dst = sizeof(S1) == sizeof(D) ? destinationOf<D>(draw, extent, src1, "in src1", packed)
                                             : destinationOf<D>(draw, extent, src2, "in src2", packed);
    draw.call(operation, sized(src1, extent), src2, rest..., dst);
    settle(dst);
}

template <class S, class D, auto* operation, auto... rest>
void one(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto src = sourceOf<S>(draw, "src", extent);
    const auto dst = destinationOf<D>(draw, extent, src, "in place");
    draw.call(operation, sized(src, extent), rest..., dst);
    settle(dst);
}

template <class T, uint32_t channels, auto* operation>
void toValues(Draw& draw)
{
    const Extent extent = draw.extent(), elements = {channels * extent.width, extent.height};
    const auto src = sourceOf<T>(draw, "src", elements);
    const T* const values = draw.sourceArray<T>("value", channels);
    const auto dst = destinationOf<T>(draw, elements, src, "in place");
    draw.call(operation, sized(src, extent), values, dst);
    settle(dst);
}

template <class T, uint32_t channels, auto* operation>
void setElements(Draw& draw)
{
    const Extent extent = draw.extent();
    const auto dst = draw.source<T>("dst", {channels * extent.width, extent.height});
    draw.writesInPlace(dst);
    const bool masked = draw.pick("masked", {1, 1, 0}) == 1;
    Image<uint8_t> mask = {};
    if (masked) mask = draw.source<uint8_t>("mask", extent);
    const T* const values = draw.sourceArray<T>("value", channels);
    const auto value = [&] {
        if constexpr (channels == 1) {
            return *values;
        } else {
            return values;
        }
    }();
    draw.call(operation, sized(dst, extent), value, mask.pixels, masked ? mask.strideArgument() : 1);
}

template <auto* operation, size_t... more>
void combine(Draw& draw, std::index_sequence<more...>)
{
    constexpr uint32_t planes = sizeof...(more) + 1;
    constexpr const char* kNames[] = {"src2", "src3", "src4"};
    const Extent extent = draw.extent();
    const std::tuple others{draw.source<uint8_t>(kNames[more], extent)...};
    const auto src = draw.source<uint8_t>("src1", extent);
    const auto dst = draw.destination<uint8_t>("dst", {planes * extent.width, extent.height});
    draw.call(operation, sized(src), others, dst);
}
template <auto* operation, uint32_t planes>
void combine(Draw& draw)
{
    combine<operation>(draw, std::make_index_sequence<planes - 1>());
}

void extract(Draw& draw)
{
    const Extent extent = draw.extent();
    const uint32_t channels = draw.pick("channels", {3u, 2u, 4u, 3u, 4u});
    const auto channel = static_cast<odxChannelType>(draw.number<uint32_t>("channel", 0, channels - 1, 1) +
                                                     (draw.pick("by colour", {0, 1}) == 1 ? 4 : 0));
    const auto src = draw.source<uint8_t>("src", {channels * extent.width, extent.height});
    const auto dst = draw.destination<uint8_t>("dst", extent);
    draw.call(odxChannelExtractu8, sized(src, extent), channels, channel, dst);
}

template <auto* operation, bool interleaves>
void layout(Draw& draw)
{
    const Extent extent = draw.extent();
    const uint32_t channels = draw.pick("channels", {3u, 2u, 4u, 3u, 2u, 4u, 5u, 16u});
    const Extent pixels = {channels * extent.width, extent.height},
                 planes = {extent.width, channels * extent.height};
    const auto src = draw.source<uint8_t>("src", interleaves ? planes : pixels);
    const auto dst = draw.destination<uint8_t>("dst", interleaves ? pixels : planes);
    draw.call(operation, sized(src, extent), channels, dst);
}

template <class T, auto* operation>
void average(Draw& draw)
{
    draw.call(operation, sized(draw.source<T>("src", draw.extent())), results<float, 1>);
}

void crossProduct(Draw& draw)
{
    const auto src1 = sourceOf<float>(draw, "src1", {3, 1}), src2 = sourceOf<float>(draw, "src2", {3, 1});
    const auto dst = destinationOf<float>(draw, {3, 1}, src1, "in place");
    draw.call(odxCrossProduct3x1f32, src1.pixels, src2.pixels, dst.pixels);
    settle(dst);
}

// What an operation takes beyond its images.
#define DRAWN_nothing(T)
#define DRAWN_policy(T) , overflow
#define DRAWN_shift(T) , between<0u, 15u, 7u>
#define DRAWN_depth(T) , between<0u, 7u, 2u>
#define DRAWN_depthPolicy(T) DRAWN_depth(T) DRAWN_policy(T)
#define DRAWN_weights(T) , weight, weight, weight
#define DRAWN_value(T) , value<T>
#define DRAWN_valueShift(T) DRAWN_value(T) DRAWN_shift(T)
#define DRAWN_table(T) , table

std::vector<Row> rows()
{
    return {
#define TWO(name, S1, S2, D, takes, ...) {#name, two<S1, S2, D, name DRAWN_##takes(S1)>},
#define ONE(name, S, D, takes, ...) {#name, one<S, D, name DRAWN_##takes(S)>},
#define TO_VALUES(name, T, channels) {#name, toValues<T, channels, name>},
#define SET(name, T, channels) {#name, setElements<T, channels, name>},
#include "operations/arithmetic.def"
        {"odxImageDiffu8", two<uint8_t, uint8_t, uint8_t, odxImageDiffu8>},
        {"odxChannelCombine2Planesu8", combine<odxChannelCombine2Planesu8, 2>},
        {"odxChannelCombine3Planesu8", combine<odxChannelCombine3Planesu8, 3>},
        {"odxChannelCombine4Planesu8", combine<odxChannelCombine4Planesu8, 4>},
        {"odxChannelExtractu8", extract},
        {"odxDeinterleaveu8", layout<odxDeinterleaveu8, false>},
        {"odxInterleaveu8", layout<odxInterleaveu8, true>},
        {"odxAverageu8", average<uint8_t, odxAverageu8>},
        {"odxAverages32", average<int32_t, odxAverages32>},
        {"odxCrossProduct3x1f32", crossProduct},
    };
}

} // namespace odx::test::arithmetic
