// SIMD rows of the conversion to L*a*b*.
#include "cpu/ondrixColorFromRgbC.h"
#include "cpu/ondrixColorLab.h"
#include "orlan/simd/fetching.h"
#include "orlan/simd/gathering.h"

#define ODX_FAMILY_LIST "frame/operations/colorFromRgb.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;
using namespace color;

// Products of a rise, below 2^7, and a part of 10 bits, in the upper 15 bits of 16.
ODX_INLINE u16v curve(const u32p& light)
{
    constexpr int shift = 15 - kPartBits;
    const u16p segments = halvesOfWords(gatherWords<kSegmentBits>(kLab.curve, light));
    const u16v parts = narrowWords<kSegmentBits - 15>(light, ((1 << kPartBits) - 1) << shift);
    return segments.a + (u16v)mulRound15((s16v)segments.b, (s16v)parts);
}

// 16-bit lanes for half of the pixels of a vector of bytes.
struct Lab {
    u16v l, a, b;

    ODX_MEMBER explicit Lab(const uint8_t* rgba)
    {
        static_assert(kCurveBits == 15);
        constexpr int32_t offset = (kLOffset << kCurveBits) - (1 << (kCurveBits + 6));
        static_assert(offset % 65536 == 0);
        u32p lights[3];
        sumsOfEntries(&kLab, rgba, lights);
        const u16v fx = curve(lights[0]), fy = curve(lights[1]), fz = curve(lights[2]);
        l = (mulHigh(fy, kLScale) - (uint16_t)(offset / 65536)) >> (kCurveBits + 7 - 16);
        a = (u16v)mulRound((s16v)(fx - fy), kAScale) + 128;
        b = (u16v)mulRound((s16v)(fy - fz), kBScale) + 128;
    }
};

ODX_INLINE void convertGroup(const uint8_t* src, uint8_t* dst)
{
    const Lab low(src), high(src + 32);
    store3(dst, narrowBytes(low.l, high.l), narrowBytes(low.a, high.a), narrowBytes(low.b, high.b));
}

void rgba2labV(const uint8_t* src, uint8_t* dst, size_t width)
{
    for (size_t i = width / kBytes; i != 0; --i) {
        convertGroup(src, dst);
        src += 4 * kBytes;
        dst += 3 * kBytes;
    }
    const size_t left = width % kBytes;
    if (left == 0) return;
    uint8_t in[4 * kBytes] = {}, out[3 * kBytes];
    memcpy(in, src, 4 * left);
    convertGroup(in, out);
    memcpy(dst, out, 3 * left);
}

} // namespace odx::ODX_TARGET
