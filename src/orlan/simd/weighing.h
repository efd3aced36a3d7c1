// Primitives of weighted sums whose weights come from tables: bilateral filters. Weights are up to 128.
//
//   pairUp(v, w)                 two vectors side by side, as the functions below take them, in the target's order
//   weightByte(w)                how a weight stands in a byte
//   addWeights(sum, w)           sum + the weights of both vectors of a pair, for each place, of a s16p
//   addWeighted(sum, w, v)       sum + these weights times the signed bytes of another pair
//   addDots(sum, v, w, a, b)     sum + v * a + w * b in 32 bits, of these sums
//   joinBytes(sum)               the bytes at the bottom of 32-bit sums, which are below 256, as a vector again
#ifndef ODX_ORLAN_SIMD_WEIGHING_H
#define ODX_ORLAN_SIMD_WEIGHING_H

#include "orlan/simd/simd.h"

namespace odx::ODX_TARGET::simd
{

// Lanes of 32 bits for each byte of a vector.
struct s32x4 {
    s32v a, b, c, d;
};

#if defined(__AVX2__)

// Pairs are neighbouring bytes: what a and b begin with in each 16 bytes, and what they end with.
ODX_INLINE u8x2 pairUp(u8v v, u8v w)
{
    return zip<1>(v, w);
}

constexpr uint8_t weightByte(uint32_t w)
{
    return (uint8_t)w;
}

ODX_INLINE s16p addWeights(const s16p& sum, const u8x2& w)
{
    const auto add = [](s16v s, u8v weights) {
        return s + (s16v)ODX_MM(maddubs_epi16)((ODX_MI)weights, ODX_MM(set1_epi8)(1));
    };
    return {add(sum.a, w.a), add(sum.b, w.b)};
}

// Two products are from -32768 to 32512.
ODX_INLINE s16p addWeighted(const s16p& sum, const u8x2& w, const u8x2& v)
{
    const auto add = [](s16v s, u8v weights, u8v values) {
        return s + (s16v)ODX_MM(maddubs_epi16)((ODX_MI)weights, (ODX_MI)values);
    };
    return {add(sum.a, w.a, v.a), add(sum.b, w.b, v.b)};
}

ODX_INLINE s32x4 addDots(const s32x4& sum, const s16p& v, const s16p& w, int16_t a, int16_t b)
{
    const ODX_MI weights = ODX_MM(set1_epi32)((a & 0xFFFF) | (int32_t)((uint32_t)b << 16));
    const auto low = [=](s16v p, s16v q) {
        return (s32v)ODX_MM(madd_epi16)(ODX_MM(unpacklo_epi16)((ODX_MI)p, (ODX_MI)q), weights);
    };
    const auto high = [=](s16v p, s16v q) {
        return (s32v)ODX_MM(madd_epi16)(ODX_MM(unpackhi_epi16)((ODX_MI)p, (ODX_MI)q), weights);
    };
    return {sum.a + low(v.a, w.a), sum.b + high(v.a, w.a), sum.c + low(v.b, w.b), sum.d + high(v.b, w.b)};
}

ODX_INLINE u8v joinBytes(const s32x4& v)
{
    return (u8v)ODX_MM(packus_epi16)(ODX_MM(packus_epi32)((ODX_MI)v.a, (ODX_MI)v.b),
                                     ODX_MM(packus_epi32)((ODX_MI)v.c, (ODX_MI)v.d));
}

#elif defined(__ARM_NEON)

ODX_INLINE u8x2 pairUp(u8v v, u8v w)
{
    return {v, w};
}

// Weights are negative, so that 128 fits a signed byte.
constexpr uint8_t weightByte(uint32_t w)
{
    return (uint8_t)-w;
}

ODX_INLINE s16p addWeights(const s16p& sum, const u8x2& w)
{
    const int8x16_t a = (int8x16_t)w.a, b = (int8x16_t)w.b;
    return {(s16v)vsubw_s8(vsubw_s8((int16x8_t)sum.a, vget_low_s8(a)), vget_low_s8(b)),
            (s16v)vsubw_s8(vsubw_s8((int16x8_t)sum.b, vget_high_s8(a)), vget_high_s8(b))};
}

ODX_INLINE s16p addWeighted(const s16p& sum, const u8x2& w, const u8x2& v)
{
    const int8x16_t a = (int8x16_t)w.a, b = (int8x16_t)w.b, c = (int8x16_t)v.a, d = (int8x16_t)v.b;
    const auto add = [](s16v s, int8x8_t k, int8x8_t p, int8x8_t l, int8x8_t q) {
        return (s16v)vmlsl_s8(vmlsl_s8((int16x8_t)s, k, p), l, q);
    };
    return {add(sum.a, vget_low_s8(a), vget_low_s8(c), vget_low_s8(b), vget_low_s8(d)),
            add(sum.b, vget_high_s8(a), vget_high_s8(c), vget_high_s8(b), vget_high_s8(d))};
}

ODX_INLINE s32x4 addDots(const s32x4& sum, const s16p& v, const s16p& w, int16_t a, int16_t b)
{
    const auto add = [=](s32v s, int16x4_t p, int16x4_t q) {
        return (s32v)vmlal_n_s16(vmlal_n_s16((int32x4_t)s, p, a), q, b);
    };
    const int16x8_t p = (int16x8_t)v.a, q = (int16x8_t)w.a, r = (int16x8_t)v.b, t = (int16x8_t)w.b;
    return {add(sum.a, vget_low_s16(p), vget_low_s16(q)), add(sum.b, vget_high_s16(p), vget_high_s16(q)),
            add(sum.c, vget_low_s16(r), vget_low_s16(t)), add(sum.d, vget_high_s16(r), vget_high_s16(t))};
}

ODX_INLINE u8v joinBytes(const s32x4& v)
{
    u8v bytes;
    storeBytes((uint8_t*)&bytes, v.a, v.b, v.c, v.d);
    return bytes;
}

#endif

} // namespace odx::ODX_TARGET::simd

#endif
