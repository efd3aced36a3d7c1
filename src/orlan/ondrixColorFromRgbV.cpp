// SIMD conversions from RGB. A conversion is a group of kBytes pixels; what is left of a row is converted as a
// group of its own in a buffer, so that all of them work in place.
#include "cpu/ondrixColor.h"
#include "cpu/ondrixColorFromRgb.h"
#include "cpu/ondrixColorFromRgbC.h"
#include "orlan/simd/simd.h"

namespace odx::ODX_TARGET
{
using namespace simd;
using namespace color;

#define ODX_COLOR(name) decltype(name##C) name##V
ODX_COLOR(odxColorRGB888ToGrayu8);
ODX_COLOR(odxColorRGB888toYCrCbu8);
ODX_COLOR(odxColorRGB888ToHSV888u8);
ODX_COLOR(odxColorRGB888ToRGB565Rotate180u8);
ODX_COLOR(odxColorCbCrSwapu8);

// Converts a row with group(src, dst), which converts kBytes pixels of srcSize bytes to pixels of dstSize bytes.
template <size_t srcSize, size_t dstSize, class Group>
ODX_INLINE void convertRow(const uint8_t* src, uint8_t* dst, size_t width, Group group)
{
    size_t x = 0;
    for (; width - x >= kBytes; x += kBytes)
        group(src + srcSize * x, dst + dstSize * x);
    if (x == width) return;
    uint8_t in[srcSize * kBytes] = {}, out[dstSize * kBytes];
    memcpy(in, src + srcSize * x, srcSize * (width - x));
    group(in, out);
    memcpy(dst + dstSize * x, out, dstSize * (width - x));
}

template <size_t srcSize, size_t dstSize, class Group>
ODX_INLINE void convertImage(ODX_Packed_SOURCE, ODX_Packed_DESTINATION, Group group)
{
    eachRow(ODX_Packed_ARGUMENTS, [group](const uint8_t* in, uint8_t* out, size_t width) {
        convertRow<srcSize, dstSize>(in, out, width, group);
    });
}

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
        // The weight of green needs 17 bits with its sign: 65536 of it are left out, and added after the shift.
        constexpr int16_t green = (int16_t)(kGrey.green - 65536);
        const s16p grey = ofHalves(load3(in), [](s16v r, s16v g, s16v b) {
            return g + dotShift<16>(r, g, b, kGrey.red, green, kGrey.blue, 32768);
        });
        store(out, join(u16p{(u16v)grey.a, (u16v)grey.b}));
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
    for (size_t y = 0; y < srcHeight; ++y) {
        const uint8_t* const in = rowOf(src, srcStride, y);
        uint8_t* const out = rowOf(dst, dstStride, srcHeight - 1 - y);
        for (size_t x = 0; x < srcWidth; x += kBytes) {
            if (srcWidth - x < kBytes) x = srcWidth - kBytes;
            const u8x3 rgb = load3(in + 3 * x);
            RGB565::pack(reverse(rgb.a), reverse(rgb.b), reverse(rgb.c), [&](u8v low, u8v high) {
                store2(out + RGB565::kSize * (srcWidth - kBytes - x), low, high);
            });
        }
    }
}

void odxColorCbCrSwapu8V(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    convertImage<2, 2>(ODX_Packed_ARGUMENTS, [](const uint8_t* in, uint8_t* out) {
        const u16v low = load<u16v>(in), high = load<u16v>(in + kBytes);
        store(out, low << 8 | low >> 8);
        store(out + kBytes, high << 8 | high >> 8);
    });
}

} // namespace odx::ODX_TARGET
