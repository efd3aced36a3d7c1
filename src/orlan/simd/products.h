// Sums of products of 16-bit numbers, in 32 bits and modulo 2^32, two products at a time:
//
//   interleave(v, w)             two s16v, whose lanes make a product each
//   neighbours(p)                lanes p[i] and p[i + 1], the same way
//   addPairs(sums, pairs, w)     adds the products with both words of w (of repeatPair) to a u32p: sums of interleaved
//                                vectors are in the order of mulWide and joinWideSat, those of neighbours in the
//                                order of split and joinSat
//   halves(sums)                 the lower and the upper halves of a u32p in mulWide's order, as an s16p in order
//   kMultipliesWords             products of 32-bit lanes cost no more than twice those of 16-bit ones, and mulWide
//                                keeps the order
//   atTop(v)                     the lanes of an s16v times 65536, in split's order
//
// and, where ODX_SIMD_BYTE_PAIRS says that there are instructions for them, of signed bytes:
//
//   addBytePairs(sums, p, w)     adds the products of kBytes pairs of bytes with two weights, each to a lane of its
//                                own, in order; mulBytePairs(p, w) begins with them
//   addNeighbours(sums, w)       adds the two lanes of each pair to a sum of 32 bits
#ifndef ODX_ORLAN_SIMD_PRODUCTS_H
#define ODX_ORLAN_SIMD_PRODUCTS_H

#include "orlan/simd/simd.h"

namespace odx::ODX_TARGET::simd
{

ODX_INLINE s16p neighbours(const int16_t* p)
{
    return {load<s16v>(p), load<s16v>(p + 1)};
}

#if defined(__AVX2__)

constexpr bool kMultipliesWords = false;

ODX_INLINE s16p interleave(s16v v, s16v w)
{
    return {(s16v)ODX_MM(unpacklo_epi16)((ODX_MI)v, (ODX_MI)w),
            (s16v)ODX_MM(unpackhi_epi16)((ODX_MI)v, (ODX_MI)w)};
}
ODX_INLINE u32p addPairs(const u32p& sums, const s16p& pairs, s16v w)
{
    return {sums.a + (u32v)ODX_MM(madd_epi16)((ODX_MI)pairs.a, (ODX_MI)w),
            sums.b + (u32v)ODX_MM(madd_epi16)((ODX_MI)pairs.b, (ODX_MI)w)};
}
ODX_INLINE s16p halves(const u32p& sums)
{
    return {(s16v)ODX_MM(packus_epi32)((ODX_MI)(sums.a & 0xFFFF), (ODX_MI)(sums.b & 0xFFFF)),
            (s16v)ODX_MM(packus_epi32)((ODX_MI)(sums.a >> 16), (ODX_MI)(sums.b >> 16))};
}
ODX_INLINE u32p atTop(s16v v)
{
    return {(u32v)v << 16, (u32v)v & 0xFFFF0000};
}

#elif defined(__ARM_NEON)

constexpr bool kMultipliesWords = true;

ODX_INLINE s16p interleave(s16v v, s16v w)
{
    return {v, w};
}
ODX_INLINE u32p addPairs(const u32p& sums, const s16p& pairs, s16v w)
{
    const int16x8_t a = (int16x8_t)pairs.a, b = (int16x8_t)pairs.b;
    const int16x4_t weights = vget_low_s16((int16x8_t)w);
    const auto add = [=](u32v sum, int16x4_t first, int16x4_t second) {
        return (u32v)vmlal_lane_s16(vmlal_lane_s16((int32x4_t)sum, first, weights, 0), second, weights, 1);
    };
    return {add(sums.a, vget_low_s16(a), vget_low_s16(b)), add(sums.b, vget_high_s16(a), vget_high_s16(b))};
}
ODX_INLINE s16p halves(const u32p& sums)
{
    const int16x8x2_t n = vuzpq_s16((int16x8_t)sums.a, (int16x8_t)sums.b);
    return {(s16v)n.val[0], (s16v)n.val[1]};
}
ODX_INLINE u32p atTop(s16v v)
{
    const uint16x8_t n = (uint16x8_t)v;
    return {(u32v)vshll_n_u16(vget_low_u16(n), 16), (u32v)vshll_n_u16(vget_high_u16(n), 16)};
}

#define ODX_SIMD_BYTE_PAIRS
struct s16x4 {
    s16v a, b, c, d;
};
ODX_INLINE s8v repeatBytes(const int8_t* two)
{
    int16_t both;
    memcpy(&both, two, sizeof both);
    int16x8_t weights = vdupq_n_s16(both);
#if defined(__aarch64__)
    // Compilers that see equal halves would move those of the pixels that meet the upper one.
    asm("" : "+w"(weights));
#endif
    return (s8v)weights;
}
ODX_INLINE s16x4 mulBytePairs(const int8_t* p, s8v w)
{
    const int8x16_t v = vld1q_s8(p), next = vld1q_s8(p + kBytes), weights = (int8x16_t)w;
    const int8x8_t low = vget_low_s8(weights), high = vget_high_s8(weights);
    return {(s16v)vmull_s8(vget_low_s8(v), low), (s16v)vmull_s8(vget_high_s8(v), high),
            (s16v)vmull_s8(vget_low_s8(next), low), (s16v)vmull_s8(vget_high_s8(next), high)};
}
ODX_INLINE s16x4 addBytePairs(const s16x4& sums, const int8_t* p, s8v w)
{
    const int8x16_t v = vld1q_s8(p), next = vld1q_s8(p + kBytes), weights = (int8x16_t)w;
    const int8x8_t low = vget_low_s8(weights), high = vget_high_s8(weights);
    return {(s16v)vmlal_s8((int16x8_t)sums.a, vget_low_s8(v), low),
            (s16v)vmlal_s8((int16x8_t)sums.b, vget_high_s8(v), high),
            (s16v)vmlal_s8((int16x8_t)sums.c, vget_low_s8(next), low),
            (s16v)vmlal_s8((int16x8_t)sums.d, vget_high_s8(next), high)};
}
ODX_INLINE s32v addNeighbours(s32v sums, s16v w)
{
    return (s32v)vpadalq_s16((int32x4_t)sums, (int16x8_t)w);
}

#endif

} // namespace odx::ODX_TARGET::simd

#endif
