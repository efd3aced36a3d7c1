// SIMD conversions from RGB. A conversion is a group of kBytes pixels; what is left of a row is converted as a
// group of its own in a buffer, so that all of them work in place.
#include "cpu/ondrixColor.h"
#include "cpu/ondrixColorFromRgb.h"
#include "cpu/ondrixColorFromRgbC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/colorFromRgb.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;
using namespace color;

// ---- layouts ----

// A layout loads kBytes pixels as one vector a channel, in order of memory or from the low bits up, and stores
// them.

struct Triples {
    static constexpr size_t kSize = 3;
    static constexpr bool kBlueFirst = false;
    ODX_INLINE u8q pixels(const uint8_t* p) { return loadTriples(p); } // for sums of channels
    ODX_INLINE u8x3 load(const uint8_t* p) { return load3(p); }
    ODX_INLINE void store(uint8_t* p, const u8x3& v) { store3(p, v.a, v.b, v.c); }
};

struct Quads {
    static constexpr size_t kSize = 4;
    static constexpr bool kBlueFirst = false;
    ODX_INLINE u8q pixels(const uint8_t* p) { return loadQuads(p); }
    ODX_INLINE u8x3 load(const uint8_t* p)
    {
        const u8x4 v = load4(p);
        return {v.a, v.b, v.c};
    }
    ODX_INLINE void store(uint8_t* p, const u8x3& v) { store4(p, v.a, v.b, v.c, v.a | 255); }
};

// 16-bit words with channels of 5, 6 and 5 bits, whose missing low bits become 0, or copies of the high ones.
template <bool copies>
struct Words565 {
    static constexpr size_t kSize = 2;
    static constexpr bool kBlueFirst = false;
    ODX_INLINE u8x3 pixels(const uint8_t* p) { return load(p); }
    ODX_INLINE u8x3 load(const uint8_t* p)
    {
        const u8x2 v = load2(p);
        const u8v first = v.a << 3, second = (v.a >> 3 & 0x1C) | v.b << 5, third = v.b & 0xF8;
        if constexpr (!copies) return {first, second, third};
        return {first | (first >> 5), second | (second >> 6), third | (third >> 5)};
    }
    ODX_INLINE void store(uint8_t* p, const u8x3& v)
    {
        RGB565::pack(v.a, v.b, v.c, [p](u8v low, u8v high) { store2(p, low, high); });
    }
};

template <class Storage>
struct BlueFirst {
    static constexpr size_t kSize = Storage::kSize;
    static constexpr bool kBlueFirst = true;
    ODX_INLINE auto pixels(const uint8_t* p) { return Storage::pixels(p); }
    ODX_INLINE u8x3 load(const uint8_t* p)
    {
        const u8x3 v = Storage::load(p);
        return {v.c, v.b, v.a};
    }
    ODX_INLINE void store(uint8_t* p, const u8x3& v) { Storage::store(p, {v.c, v.b, v.a}); }
};

namespace repacked
{
using RGB565 = Words565<true>;
using RGB888 = Triples;
using RGBA8888 = Quads;
using BGR565 = BlueFirst<RGB565>;
using BGR888 = BlueFirst<RGB888>;
using BGRA8888 = BlueFirst<RGBA8888>;
} // namespace repacked

// What the conversions to luma and chroma call by the same names.
namespace blueFirst
{
using RGB565 = BlueFirst<Words565<false>>;
using RGB888 = BlueFirst<Triples>;
using RGBA8888 = BlueFirst<Quads>;
} // namespace blueFirst

// Converts groups of kBytes pixels, and moves on to the next ones.
template <size_t srcSize, size_t dstSize, size_t groups, class Group>
ODX_INLINE void convertGroups(const uint8_t*& src, uint8_t*& dst, Group group)
{
    group(src, dst);
    src += srcSize * kBytes;
    dst += dstSize * kBytes;
    if constexpr (srcSize > 2 || dstSize > 2) { // others are pairs of vectors
        pin(src);
        pin(dst);
    }
    if constexpr (groups > 1) convertGroups<srcSize, dstSize, groups - 1>(src, dst, group);
}

// Converts a row with group(src, dst), which converts kBytes pixels of srcSize bytes to pixels of dstSize bytes;
// short groups some `together`.
template <size_t srcSize, size_t dstSize, size_t together = 1, class Group>
ODX_INLINE void convertRow(const uint8_t* src, uint8_t* dst, size_t width, Group group)
{
    for (size_t i = width / (together * kBytes); i != 0; --i)
        convertGroups<srcSize, dstSize, together>(src, dst, group);
    if constexpr (together != 1) {
        for (size_t i = width / kBytes % together; i != 0; --i)
            convertGroups<srcSize, dstSize, 1>(src, dst, group);
    }
    const size_t left = width % kBytes;
    if (left == 0) return;
    uint8_t in[srcSize * kBytes] = {}, out[dstSize * kBytes];
    memcpy(in, src, srcSize * left);
    group(in, out);
    memcpy(dst, out, dstSize * left);
}

template <size_t srcSize, size_t dstSize, size_t together = 1, class Group>
ODX_INLINE void convertImage(ODX_Packed_SOURCE, ODX_Packed_DESTINATION, Group group)
{
    eachRow(ODX_Packed_ARGUMENTS, [group](const uint8_t* in, uint8_t* out, size_t width) {
        convertRow<srcSize, dstSize, together>(in, out, width, group);
    });
}

// ---- luma and chroma ----

constexpr Weights kY = {77, 150, 29}, kCb = {-43, -85, 128}, kCr = {128, -107, -21};

// The weights of a source's channels in order of memory.
template <class Source, const Weights& w>
constexpr Weights kOrdered = Source::kBlueFirst ? Weights{w.blue, w.green, w.red} : w;

// Sums for pixels as a source gives them: of every pixel, or of every second one as 16-bit lanes.
template <class Source, class Pixels>
ODX_INLINE u8v lumaOf(const Pixels& pixels)
{
    constexpr Weights w = kOrdered<Source, kY>;
    return lumaSums<w.red, w.green, w.blue>(pixels);
}
template <class Source, const Weights& weights, class Pixels>
ODX_INLINE u8v chromaOf(const Pixels& pixels)
{
    constexpr Weights w = kOrdered<Source, weights>;
    return chromaSums<w.red, w.green, w.blue>(pixels);
}
template <class Source, const Weights& weights, class Pixels>
ODX_INLINE u16v chromaOfPairs(const Pixels& pixels)
{
    constexpr Weights w = kOrdered<Source, weights>;
    return chromaSumsOfPairs<w.red, w.green, w.blue>(pixels);
}

// Converts kBytes pixels, with the chroma of every `step`-th one.
template <class Source, Chroma layout, size_t step>
ODX_INLINE void toYuv(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr)
{
    const auto pixels = Source::pixels(src);
    store(y, lumaOf<Source>(pixels));
    if constexpr (step == 1) {
        const u8v u = chromaOf<Source, kCb>(pixels), v = chromaOf<Source, kCr>(pixels);
        if constexpr (layout == Chroma::Planes) {
            store(cb, u);
            store(cr, v);
        } else {
            store2(cb, u, v);
        }
    } else {
        const u16v u = chromaOfPairs<Source, kCb>(pixels), v = chromaOfPairs<Source, kCr>(pixels);
        if constexpr (layout == Chroma::Planes) {
            storeNarrow(cb, u);
            storeNarrow(cr, v);
        } else {
            store(cb, u | v << 8);
        }
    }
}

template <class Source, Chroma layout, size_t step>
ODX_INLINE void yuvRow(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, size_t width)
{
    constexpr size_t size = layout == Chroma::CbCrPairs ? 2 : 1;
    size_t x = 0;
    for (; width - x >= kBytes; x += kBytes)
        toYuv<Source, layout, step>(src + Source::kSize * x, y + x, cb + size * x / step, cr + size * x / step);
    if (x == width) return;
    const size_t left = width - x;
    uint8_t in[Source::kSize * kBytes] = {}, luma[kBytes], chroma[2][2 * kBytes];
    memcpy(in, src + Source::kSize * x, Source::kSize * left);
    toYuv<Source, layout, step>(in, luma, chroma[0], chroma[1]);
    memcpy(y + x, luma, left);
    memcpy(cb + size * x / step, chroma[0], size * left / step);
    if constexpr (layout == Chroma::Planes) memcpy(cr + x / step, chroma[1], left / step);
}

template <class Source>
ODX_INLINE void yRow(const uint8_t* src, uint8_t* y, size_t width)
{
    convertRow<Source::kSize, 1>(src, y, width,
                                 [](auto in, auto out) { store(out, lumaOf<Source>(Source::pixels(in))); });
}

#define ODX_YUV_ROW(name, pixels, chroma, step)                                                                 \
    void name(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, size_t width)                           \
    {                                                                                                           \
        yuvRow<blueFirst::pixels, Chroma::chroma, step>(src, y, cb, Chroma::chroma == Chroma::Planes ? cr : cb, \
                                                        width);                                                 \
    }
#define ODX_LUMA_ROW(name, pixels)                          \
    void name(const uint8_t* src, uint8_t* y, size_t width) \
    {                                                       \
        yRow<blueFirst::pixels>(src, y, width);             \
    }
ODX_YUV_ROW(rgb5652yuvpV, RGB565, Planes, 1)
ODX_YUV_ROW(rgb5652yyuvpV, RGB565, Planes, 2)
ODX_YUV_ROW(rgb5652yuvV, RGB565, CbCrPairs, 1)
ODX_YUV_ROW(rgb5652yyuvV, RGB565, CbCrPairs, 2)
ODX_LUMA_ROW(rgb5652yV, RGB565)
ODX_YUV_ROW(rgb8882yuvpV, RGB888, Planes, 1)
ODX_YUV_ROW(rgb8882yyuvpV, RGB888, Planes, 2)
ODX_YUV_ROW(rgb8882yuvV, RGB888, CbCrPairs, 1)
ODX_YUV_ROW(rgb8882yyuvV, RGB888, CbCrPairs, 2)
ODX_LUMA_ROW(rgb8882yV, RGB888)
ODX_YUV_ROW(rgba2yuvpV, RGBA8888, Planes, 1)
ODX_YUV_ROW(rgba2yyuvpV, RGBA8888, Planes, 2)
ODX_YUV_ROW(rgba2yuvV, RGBA8888, CbCrPairs, 1)
ODX_YUV_ROW(rgba2yyuvV, RGBA8888, CbCrPairs, 2)
ODX_LUMA_ROW(rgba2yV, RGBA8888)

// ---- other pixels ----

template <class Source, class Target>
struct Repacking {
    ODX_INLINE void group(const uint8_t* in, uint8_t* out) { Target::store(out, Source::load(in)); }
};

// Only the bytes of each pixel are moved.
template <bool mirrored>
struct Widening {
    ODX_INLINE void group(const uint8_t* in, uint8_t* out) { widen3<mirrored>(out, in); }
};
template <bool mirrored>
struct Narrowing {
    ODX_INLINE void group(const uint8_t* in, uint8_t* out) { narrow4<mirrored>(out, in); }
};
template <>
struct Repacking<repacked::RGB888, repacked::RGBA8888> : Widening<false> {
};
template <>
struct Repacking<repacked::RGB888, repacked::BGRA8888> : Widening<true> {
};
template <>
struct Repacking<repacked::RGBA8888, repacked::RGB888> : Narrowing<false> {
};
template <>
struct Repacking<repacked::RGBA8888, repacked::BGR888> : Narrowing<true> {
};

template <>
struct Repacking<repacked::RGB888, repacked::BGR888> {
    ODX_INLINE void group(const uint8_t* in, uint8_t* out) { mirror3(out, in); }
};
template <>
struct Repacking<repacked::RGB565, repacked::RGBA8888> {
    ODX_INLINE void group(const uint8_t* in, uint8_t* out) { widen565<false>(out, in); }
};
template <>
struct Repacking<repacked::RGB565, repacked::BGRA8888> {
    ODX_INLINE void group(const uint8_t* in, uint8_t* out) { widen565<true>(out, in); }
};

// Both have the same words.
template <>
struct Repacking<repacked::RGB565, repacked::BGR565> {
    ODX_INLINE void group(const uint8_t* in, uint8_t* out)
    {
        for (size_t half = 0; half < 2 * kBytes; half += kBytes)
            store(out + half, mirror565(load<u16v>(in + half)));
    }
};
template <>
struct Repacking<repacked::RGBA8888, repacked::BGRA8888> {
    ODX_INLINE void group(const uint8_t* in, uint8_t* out) { mirror4(out, in); }
};

// Groups of a few instructions, which a loop would double.
template <class Source, class Target>
constexpr size_t kTogether = Source::kSize + Target::kSize == 4                         ? 2
                             : kBytes == 16 && Source::kSize != 2 && Target::kSize != 2 ? (kPairsVectors ? 8 : 4)
                                                                                        : 1;

#define ODX_REPACK(name, from, to)                                               \
    void name(const uint8_t* src, uint8_t* dst, size_t width)                    \
    {                                                                            \
        using Source = repacked::from;                                           \
        using Target = repacked::to;                                             \
        using Pixels = Repacking<Source, Target>;                                \
        convertRow<Source::kSize, Target::kSize, kTogether<Source, Target>>(     \
            src, dst, width, [](auto in, auto out) { Pixels::group(in, out); }); \
    }
ODX_REPACK(repackRGB565ToRGB888V, RGB565, RGB888)
ODX_REPACK(repackRGB565ToRGBA8888V, RGB565, RGBA8888)
ODX_REPACK(repackRGB565ToBGR565V, RGB565, BGR565)
ODX_REPACK(repackRGB565ToBGR888V, RGB565, BGR888)
ODX_REPACK(repackRGB565ToBGRA8888V, RGB565, BGRA8888)
ODX_REPACK(repackRGB888ToRGB565V, RGB888, RGB565)
ODX_REPACK(repackRGB888ToRGBA8888V, RGB888, RGBA8888)
ODX_REPACK(repackRGB888ToBGR565V, RGB888, BGR565)
ODX_REPACK(repackRGB888ToBGR888V, RGB888, BGR888)
ODX_REPACK(repackRGB888ToBGRA8888V, RGB888, BGRA8888)
ODX_REPACK(repackRGBA8888ToRGB565V, RGBA8888, RGB565)
ODX_REPACK(repackRGBA8888ToRGB888V, RGBA8888, RGB888)
ODX_REPACK(repackRGBA8888ToBGR565V, RGBA8888, BGR565)
ODX_REPACK(repackRGBA8888ToBGR888V, RGBA8888, BGR888)
ODX_REPACK(repackRGBA8888ToBGRA8888V, RGBA8888, BGRA8888)

// ---- grey and Y/Cr/Cb ----

// Calls sum(red, green, blue) for the halves of the channels, widened.
template <class Sum>
ODX_INLINE s16p ofHalves(const u8x3& rgb, Sum sum)
{
    const u16p r = split(rgb.a), g = split(rgb.b), b = split(rgb.c);
    return {sum((s16v)r.a, (s16v)g.a, (s16v)b.a), sum((s16v)r.b, (s16v)g.b, (s16v)b.b)};
}

void odxColorRGB888ToGrayu8V(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    convertImage<3, 1>(ODX_Packed_ARGUMENTS, [](const uint8_t* in, uint8_t* out) {
        store(out, fineSums<kGrey.red, kGrey.green, kGrey.blue>(in));
    });
}

// 128 + ((weights * channels + half) >> 15) with weights whose sum is 0, so that it is one of differences.
template <int16_t first, int16_t second>
ODX_INLINE s16v fineChroma(s16v firstDifference, s16v secondDifference)
{
    return dotShift<15>(firstDifference, secondDifference, first, second, 16384) + 128;
}

void odxColorRGB888toYCrCbu8V(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    convertImage<3, 3>(ODX_Packed_ARGUMENTS, [](const uint8_t* in, uint8_t* out) {
        static_assert(kFineCr.red == -kFineCr.green - kFineCr.blue);
        static_assert(kFineCb.blue == -kFineCb.green - kFineCb.red);
        const u8x3 rgb = load3(in);
        const s16p y = ofHalves(rgb, [](s16v r, s16v g, s16v b) {
            return dotShift<15>(r, g, b, kFineY.red, kFineY.green, kFineY.blue, 16384);
        });
        const s16p cr = ofHalves(
            rgb, [](s16v r, s16v g, s16v b) { return fineChroma<-kFineCr.green, -kFineCr.blue>(r - g, r - b); });
        const s16p cb = ofHalves(
            rgb, [](s16v r, s16v g, s16v b) { return fineChroma<-kFineCb.red, -kFineCb.green>(b - r, b - g); });
        store3(out, joinClamped(y), joinClamped(cr), joinClamped(cb));
    });
}

// ---- HSV ----

ODX_INLINE u8v choose(u8v mask, u8v a, u8v b)
{
    return (mask & a) | (~mask & b);
}

// Hue and saturation of the lanes, from the greatest channel, its distance from the least, and the difference and
// the sixths of the circle that the hue is computed from. Where the distance is 0, so is the difference; then the
// reciprocals may be anything.
struct HueSaturation {
    s16v hue, saturation;
};
ODX_INLINE HueSaturation hueSaturation(s16v greatest, s16v spread, s16v difference, s16v sixths)
{
    const s32p value = split(greatest), range = split(spread), way = split(difference), turn = split(sixths);
    const auto hue = [](s32v r, s32v w, s32v t) {
        return (((reciprocal16(r) * w + (t << 16)) * 85) >> 1) + 32768;
    };
    const auto saturation = [](s32v v, s32v r) { return reciprocal16(v) * ((r << 8) - r) + 32768; };
    return {joinShifted<16>(s32p{hue(range.a, way.a, turn.a), hue(range.b, way.b, turn.b)}),
            joinShifted<16>(s32p{saturation(value.a, range.a), saturation(value.b, range.b)})};
}

void odxColorRGB888ToHSV888u8V(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    convertImage<3, 3>(ODX_Packed_ARGUMENTS, [](const uint8_t* in, uint8_t* out) {
        const u8x3 rgb = load3(in);
        const u8v r = rgb.a, g = rgb.b, b = rgb.c, lesser = min(g, b), greatest = max(r, max(g, b));
        const u8v spread = greatest - min(r, lesser);
        const u8v isRed = (u8v)(r == greatest), isGreen = (u8v)(g == greatest);
        const u16p first = split(choose(isRed, g, choose(isGreen, b, r)));
        const u16p second = split(choose(isRed, b, choose(isGreen, r, g)));
        const u8v back = (u8v)(lesser != b) & 6; // where green is less than blue
        const u16p sixths = split(choose(isRed, back, 4 - (isGreen & 2)));
        const u16p value = split(max(greatest, u8v{} + 1)), range = split(max(spread, u8v{} + 1));
        const HueSaturation low = hueSaturation((s16v)value.a, (s16v)range.a, (s16v)(first.a - second.a),
                                                (s16v)sixths.a),
                            high = hueSaturation((s16v)value.b, (s16v)range.b, (s16v)(first.b - second.b),
                                                 (s16v)sixths.b);
        const u8v coloured = (u8v)(spread != 0); // a range of 1 was no range
        store3(out, join(u16p{(u16v)low.hue, (u16v)high.hue}),
               join(u16p{(u16v)low.saturation, (u16v)high.saturation}) & coloured, greatest);
    });
}

// ---- reordering ----

void odxColorRGB888ToRGB565Rotate180u8V(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    if (srcWidth < kBytes) return odxColorRGB888ToRGB565Rotate180u8C(ODX_Packed_ARGUMENTS);
    const auto vector = [](const uint8_t* in, uint8_t* out) {
        const u8x3 rgb = load3(in);
        if constexpr (kBytes == 16) { // fewer vectors to reverse; others reverse three in less time
            RGB565::pack(rgb.a, rgb.b, rgb.c,
                         [=](u8v low, u8v high) { store2(out, reverse(low), reverse(high)); });
        } else {
            RGB565::pack(reverse(rgb.a), reverse(rgb.b), reverse(rgb.c),
                         [=](u8v low, u8v high) { store2(out, low, high); });
        }
    };
    for (size_t y = 0; y < srcHeight; ++y) {
        const uint8_t* in = rowOf(src, srcStride, y);
        uint8_t* const first = rowOf(dst, dstStride, srcHeight - 1 - y);
        vector(in + RGB888::kSize * (srcWidth - kBytes), first); // what does not fill another vector
        uint8_t* out = first + RGB565::kSize * size_t{srcWidth};
        for (size_t i = srcWidth / kBytes; i != 0; --i) {
            out -= RGB565::kSize * kBytes;
            vector(in, out);
            in += RGB888::kSize * kBytes;
        }
    }
}

void odxColorCbCrSwapu8V(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    convertImage<2, 2, 4>(ODX_Packed_ARGUMENTS, [](const uint8_t* in, uint8_t* out) {
        const u16v low = load<u16v>(in), high = load<u16v>(in + kBytes);
        store(out, low << 8 | low >> 8);
        store(out + kBytes, high << 8 | high >> 8);
    });
}

} // namespace odx::ODX_TARGET
