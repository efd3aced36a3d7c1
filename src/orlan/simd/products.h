// Sums of products of 16-bit numbers, in 32 bits and modulo 2^32, two products at a time:
//
//   interleave(v, w)             two s16v, whose lanes make a product each
//   neighbours(p)                lanes p[i] and p[i + 1], the same way
//   addPairs(sums, pairs, w)     adds the products with both words of w (of repeatPair) to a u32p: sums of
//   interleaved
//                                vectors are in the order of mulWide and joinWideSat, those of neighbours in the
//                                order of split and joinSat
//   halves(sums)                 the lower and the upper halves of a u32p in mulWide's order, as an s16p in order
//   kMultipliesWords             products of 32-bit lanes cost no more than twice those of 16-bit ones, and
//   mulWide's
//                                order is in order
//   atTop(v)                     the lanes of an s16v times 65536, in split's order
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

#endif

} // namespace odx::ODX_TARGET::simd

#endif
