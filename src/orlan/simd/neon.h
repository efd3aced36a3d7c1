// The backend of NEON, on 32-bit and 64-bit ARM.
#ifndef ODX_ORLAN_SIMD_NEON_H
#define ODX_ORLAN_SIMD_NEON_H

#include <arm_neon.h>

namespace odx::ODX_TARGET::simd
{

ODX_INLINE u8v min(u8v a, u8v b)
{
    return (u8v)vminq_u8((uint8x16_t)a, (uint8x16_t)b);
}
ODX_INLINE u8v max(u8v a, u8v b)
{
    return (u8v)vmaxq_u8((uint8x16_t)a, (uint8x16_t)b);
}
ODX_INLINE s16v min(s16v a, s16v b)
{
    return (s16v)vminq_s16((int16x8_t)a, (int16x8_t)b);
}
ODX_INLINE s16v max(s16v a, s16v b)
{
    return (s16v)vmaxq_s16((int16x8_t)a, (int16x8_t)b);
}

ODX_INLINE s32v min(s32v a, s32v b)
{
    return (s32v)vminq_s32((int32x4_t)a, (int32x4_t)b);
}
ODX_INLINE s32v max(s32v a, s32v b)
{
    return (s32v)vmaxq_s32((int32x4_t)a, (int32x4_t)b);
}

ODX_INLINE u16v min(u16v a, u16v b)
{
    return (u16v)vminq_u16((uint16x8_t)a, (uint16x8_t)b);
}
ODX_INLINE u16v max(u16v a, u16v b)
{
    return (u16v)vmaxq_u16((uint16x8_t)a, (uint16x8_t)b);
}
ODX_INLINE u32v min(u32v a, u32v b)
{
    return (u32v)vminq_u32((uint32x4_t)a, (uint32x4_t)b);
}
ODX_INLINE u32v max(u32v a, u32v b)
{
    return (u32v)vmaxq_u32((uint32x4_t)a, (uint32x4_t)b);
}

ODX_INLINE u16v loadWiden(const uint8_t* p)
{
    return (u16v)vmovl_u8(vld1_u8(p));
}
// Otherwise compilers load four bytes at a time, and take them through the stack on 32-bit ARM.
ODX_INLINE uint16x8_t loadForWords(const uint8_t* p)
{
    uint8x8_t v = vld1_u8(p);
#if defined(__arm__)
    asm("" : "+w"(v));
#endif
    return vmovl_u8(v);
}
ODX_INLINE s32p loadNumbers(const uint8_t* p)
{
    const uint16x8_t v = loadForWords(p);
    return {(s32v)vmovl_u16(vget_low_u16(v)), (s32v)vmovl_u16(vget_high_u16(v))};
}

ODX_INLINE void storeNarrow(uint8_t* p, u16v v)
{
    vst1_u8(p, vmovn_u16((uint16x8_t)v));
}

// Pairs are the lower and the upper half.
ODX_INLINE u16p split(u8v v)
{
    const uint8x16_t n = (uint8x16_t)v;
    return {(u16v)vmovl_u8(vget_low_u8(n)), (u16v)vmovl_u8(vget_high_u8(n))};
}
ODX_INLINE s32p split(s16v v)
{
    const int16x8_t n = (int16x8_t)v;
    return {(s32v)vmovl_s16(vget_low_s16(n)), (s32v)vmovl_s16(vget_high_s16(n))};
}

ODX_INLINE u8v join(const u16p& p)
{
    return (u8v)vcombine_u8(vmovn_u16((uint16x8_t)p.a), vmovn_u16((uint16x8_t)p.b));
}

ODX_INLINE u8v joinClamped(const s16p& p)
{
    return (u8v)vcombine_u8(vqmovun_s16((int16x8_t)p.a), vqmovun_s16((int16x8_t)p.b));
}

template <int n>
ODX_INLINE u8v joinCentred(const s16p& p)
{
    const int8x16_t n8 = vcombine_s8(vqshrn_n_s16((int16x8_t)p.a, n), vqshrn_n_s16((int16x8_t)p.b, n));
    return (u8v)n8 ^ 0x80;
}

ODX_INLINE s16p eachTwice(s16v v)
{
    const int16x8x2_t n = vzipq_s16((int16x8_t)v, (int16x8_t)v);
    return {(s16v)n.val[0], (s16v)n.val[1]};
}

template <int n>
ODX_INLINE u8v joinShifted(const u16p& p)
{
    return (u8v)vcombine_u8(vshrn_n_u16((uint16x8_t)p.a, n), vshrn_n_u16((uint16x8_t)p.b, n));
}

template <int n>
ODX_INLINE s16v joinShifted(const s32p& p)
{
    return (s16v)vcombine_s16(vmovn_s32((int32x4_t)(p.a >> n)), vmovn_s32((int32x4_t)(p.b >> n)));
}

ODX_INLINE void storeInOrder(int32_t* p, const s32p& pair)
{
    store(p, pair.a);
    store(p + 4, pair.b);
}
ODX_INLINE void storeInOrder(int16_t* p, const s16p& pair)
{
    store(p, pair.a);
    store(p + 8, pair.b);
}

ODX_INLINE s16v joinSat(const s32p& p)
{
    return (s16v)vcombine_s16(vqmovn_s32((int32x4_t)p.a), vqmovn_s32((int32x4_t)p.b));
}

struct Weights2 {
    int16_t a, b;
};
ODX_INLINE Weights2 weights2(const int8_t* two)
{
    return {two[0], two[1]};
}
ODX_INLINE s16p dot2(const uint8_t* p, Weights2 w)
{
    const u16p v = split(load<u8v>(p)), next = split(load<u8v>(p + 1));
    const auto sum = [=](u16v first, u16v second) {
        return (s16v)vmlaq_n_s16(vmulq_n_s16((int16x8_t)first, w.a), (int16x8_t)second, w.b);
    };
    return {sum(v.a, next.a), sum(v.b, next.b)};
}

ODX_INLINE s16p loadInOrder(const uint8_t* p)
{
    const u16p halves = split(load<u8v>(p));
    return {(s16v)halves.a, (s16v)halves.b};
}
ODX_INLINE void storePairs(int16_t* p, s16v v, s16v w)
{
    const int16x8x2_t n = {{(int16x8_t)v, (int16x8_t)w}};
    vst2q_s16(p, n);
}
ODX_INLINE void storePairs(float* p, f32v v, f32v w)
{
    const float32x4x2_t n = {{(float32x4_t)v, (float32x4_t)w}};
    vst2q_f32(p, n);
}

ODX_INLINE s32p widenInOrder(s16v v)
{
    return split(v);
}

ODX_INLINE s16v narrowMask(const s32p& p)
{
    return (s16v)vcombine_s16(vmovn_s32((int32x4_t)p.a), vmovn_s32((int32x4_t)p.b));
}

#if defined(__aarch64__)
ODX_INLINE s32p loadBoth(const int32_t* p)
{
    return {load<s32v>(p), load<s32v>(p + 4)};
}
ODX_INLINE void storeBoth(int32_t* p, const s32p& v)
{
    store(p, v.a);
    store(p + 4, v.b);
}
ODX_INLINE s16v narrowBoth(const s32p& p)
{
    return narrowMask(p);
}
#else
// Every second lane stands in the other vector: compilers take that for one instruction.
ODX_INLINE s32p loadBoth(const int32_t* p)
{
    const int32x4x2_t n = vld2q_s32(p);
    return {(s32v)n.val[0], (s32v)n.val[1]};
}
ODX_INLINE void storeBoth(int32_t* p, const s32p& v)
{
    const int32x4x2_t n = {{(int32x4_t)v.a, (int32x4_t)v.b}};
    vst2q_s32(p, n);
}
ODX_INLINE s16v narrowBoth(const s32p& p)
{
    return (s16v)vbslq_u32(vdupq_n_u32(0xFFFF), (uint32x4_t)p.a, (uint32x4_t)p.b);
}
#endif

ODX_INLINE s32p sumOfSquares(s16v v, s16v w)
{
    const auto sum = [](int16x4_t a, int16x4_t b) { return (s32v)vmlal_s16(vmull_s16(a, a), b, b); };
    const int16x8_t a = (int16x8_t)v, b = (int16x8_t)w;
    return {sum(vget_low_s16(a), vget_low_s16(b)), sum(vget_high_s16(a), vget_high_s16(b))};
}

ODX_INLINE s16v abs(s16v v)
{
    return (s16v)vqabsq_s16((int16x8_t)v);
}

ODX_INLINE void storeBytes(uint8_t* p, s32v a, s32v b, s32v c, s32v d)
{
    const uint16x8_t low = vcombine_u16(vmovn_u32((uint32x4_t)a), vmovn_u32((uint32x4_t)b)),
                     high = vcombine_u16(vmovn_u32((uint32x4_t)c), vmovn_u32((uint32x4_t)d));
    vst1q_u8(p, vcombine_u8(vmovn_u16(low), vmovn_u16(high)));
}

// sum + v * k, and v * k.
template <int k>
ODX_INLINE uint16x8_t mulAdd(uint16x8_t sum, uint8x8_t v)
{
    static_assert(k >= -255 && k <= 255);
    if constexpr (k < 0) return vmlsl_u8(sum, v, vdup_n_u8(-k));
    return vmlal_u8(sum, v, vdup_n_u8((uint8_t)k));
}
template <int k>
ODX_INLINE uint16x8_t mul(uint8x8_t v)
{
    return vmull_u8(v, vdup_n_u8(k));
}

template <int k>
ODX_INLINE s16p mulCentred(u8v v)
{
    static_assert(k >= 0 && k <= 255);
    const uint16x8_t origin = vdupq_n_u16((uint16_t)(-128 * k));
    return {(s16v)mulAdd<k>(origin, vget_low_u8((uint8x16_t)v)),
            (s16v)mulAdd<k>(origin, vget_high_u8((uint8x16_t)v))};
}

template <int w>
ODX_INLINE u16p addProduct(const u16p& sum, const uint8_t* p)
{
    const uint8x16_t v = (uint8x16_t)load<u8v>(p);
    const uint16x8_t a = (uint16x8_t)sum.a, b = (uint16x8_t)sum.b;
    if constexpr (w == 1) {
        return {(u16v)vaddw_u8(a, vget_low_u8(v)), (u16v)vaddw_u8(b, vget_high_u8(v))};
    } else {
        const uint8x8_t k = vdup_n_u8(w);
        return {(u16v)vmlal_u8(a, vget_low_u8(v), k), (u16v)vmlal_u8(b, vget_high_u8(v), k)};
    }
}
template <int last>
ODX_INLINE u16p dotsFrom(const uint8_t* p, const uint8_t* first)
{
    static_assert(last == 1);
    const uint8x16_t v = (uint8x16_t)load<u8v>(first), w = (uint8x16_t)load<u8v>(p);
    return {(u16v)vaddl_u8(vget_low_u8(v), vget_low_u8(w)), (u16v)vaddl_u8(vget_high_u8(v), vget_high_u8(w))};
}
template <int w0, int w1, int... w>
ODX_INLINE u16p dotsFrom(const uint8_t* p, const uint8_t* first)
{
    return addProduct<w0>(dotsFrom<w1, w...>(p + 1, first), p);
}
// The first and the last weight are 1.
template <int first, int... w>
ODX_INLINE u16p dots(const uint8_t* p)
{
    static_assert(first == 1);
    return dotsFrom<w...>(p + 1, p);
}
template <int n, int... w>
ODX_INLINE u16p dotsFor(const uint8_t* p)
{
    return dots<w...>(p);
}
template <int n>
ODX_INLINE u8v joinDots(const u16p& p)
{
    return joinShifted<n>(p);
}

template <int a, int b>
ODX_INLINE s32p dot2(const int16_t* p)
{
    const int16x8_t v = (int16x8_t)load<s16v>(p), w = (int16x8_t)load<s16v>(p + 1);
    return {(s32v)vmlal_n_s16(vmull_n_s16(vget_low_s16(v), a), vget_low_s16(w), b),
            (s32v)vmlal_n_s16(vmull_n_s16(vget_high_s16(v), a), vget_high_s16(w), b)};
}

ODX_INLINE s32p binomials5(const int16_t* p)
{
    const auto sum = [](int16x4_t a, int16x4_t b, int16x4_t c, int16x4_t d, int16x4_t e) {
        return (s32v)vmlal_n_s16(vmlal_n_s16(vmlal_n_s16(vaddl_s16(a, e), b, 4), c, 6), d, 4);
    };
    const int16x8_t a = (int16x8_t)load<s16v>(p), b = (int16x8_t)load<s16v>(p + 1),
                    c = (int16x8_t)load<s16v>(p + 2), d = (int16x8_t)load<s16v>(p + 3),
                    e = (int16x8_t)load<s16v>(p + 4);
    return {sum(vget_low_s16(a), vget_low_s16(b), vget_low_s16(c), vget_low_s16(d), vget_low_s16(e)),
            sum(vget_high_s16(a), vget_high_s16(b), vget_high_s16(c), vget_high_s16(d), vget_high_s16(e))};
}

// The words from p stand in the lower half, those from q in the upper one.
ODX_INLINE s16v widenPairs(const int8_t* p, const int8_t* q)
{
    int32_t first, second;
    memcpy(&first, p, sizeof first);
    memcpy(&second, q, sizeof second);
    return (s16v)vmovl_s8(vreinterpret_s8_s32(vset_lane_s32(second, vdup_n_s32(first), 1)));
}
ODX_INLINE s16v repeatPair(const int16_t* p)
{
    int32_t both;
    memcpy(&both, p, sizeof both);
    return (s16v)vdupq_n_s32(both);
}
ODX_INLINE s32v addPairProducts(s32v sum, s16v v, s16v w)
{
    const int16x8_t a = (int16x8_t)v;
    const int16x4_t pair = vget_low_s16((int16x8_t)w);
    return (s32v)vmlal_lane_s16(vmlal_lane_s16((int32x4_t)sum, vget_low_s16(a), pair, 0), vget_high_s16(a), pair,
                                1);
}

ODX_INLINE u16v mulHigh(u16v v, uint16_t k)
{
    const uint16x8_t n = (uint16x8_t)v;
    return (u16v)vcombine_u16(vshrn_n_u32(vmull_n_u16(vget_low_u16(n), k), 16),
                              vshrn_n_u32(vmull_n_u16(vget_high_u16(n), k), 16));
}
ODX_INLINE u16v mulRound(u16v v, int16_t k)
{
    return (u16v)vqrdmulhq_n_s16((int16x8_t)v, k);
}

ODX_INLINE s16v mulRound(s16v v, int16_t k)
{
    return (s16v)vqrdmulhq_n_s16((int16x8_t)v, k);
}

template <int n>
ODX_INLINE s16v dotShift(s16v v, s16v w, int16_t k, int16_t l, int32_t c)
{
    const int16x8_t a = (int16x8_t)v, b = (int16x8_t)w;
    const int32x4_t sum = vdupq_n_s32(c);
    const int32x4_t low = vmlal_n_s16(vmlal_n_s16(sum, vget_low_s16(a), k), vget_low_s16(b), l),
                    high = vmlal_n_s16(vmlal_n_s16(sum, vget_high_s16(a), k), vget_high_s16(b), l);
    return (s16v)vcombine_s16(vshrn_n_s32(low, n), vshrn_n_s32(high, n));
}

template <int n>
ODX_INLINE s16v dotShift(s16v u, s16v v, s16v w, int16_t j, int16_t k, int16_t l, int32_t c)
{
    const auto sum = [=](int16x4_t a, int16x4_t b, int16x4_t d) {
        return vmlal_n_s16(vmlal_n_s16(vmlal_n_s16(vdupq_n_s32(c), a, j), b, k), d, l);
    };
    const int16x8_t a = (int16x8_t)u, b = (int16x8_t)v, d = (int16x8_t)w;
    return (s16v)vcombine_s16(vshrn_n_s32(sum(vget_low_s16(a), vget_low_s16(b), vget_low_s16(d)), n),
                              vshrn_n_s32(sum(vget_high_s16(a), vget_high_s16(b), vget_high_s16(d)), n));
}

// Two Newton steps take the estimate to 2^-22 or so; the quotient is never that close to a half, unless it is one.
ODX_INLINE s32v reciprocal16(s32v v)
{
    const float32x4_t n = vcvtq_f32_s32((int32x4_t)v);
    float32x4_t r = vrecpeq_f32(n);
    r = vmulq_f32(r, vrecpsq_f32(n, r));
    r = vmulq_f32(r, vrecpsq_f32(n, r));
    return (s32v)vcvtq_s32_f32(vaddq_f32(vmulq_n_f32(r, 65536.0f), vdupq_n_f32(0.5f)));
}

ODX_INLINE u8v reverse(u8v v)
{
    const uint8x16_t halves = vrev64q_u8((uint8x16_t)v);
    return (u8v)vextq_u8(halves, halves, 8);
}

ODX_INLINE u16v reverse(u16v v)
{
    const uint16x8_t halves = vrev64q_u16((uint16x8_t)v);
    return (u16v)vextq_u16(halves, halves, 4);
}

template <int size>
ODX_INLINE u8x2 zip(u8v v, u8v w)
{
    if constexpr (size == 1) {
        const uint8x16x2_t n = vzipq_u8((uint8x16_t)v, (uint8x16_t)w);
        return {(u8v)n.val[0], (u8v)n.val[1]};
    } else if constexpr (size == 2) {
        const uint16x8x2_t n = vzipq_u16((uint16x8_t)v, (uint16x8_t)w);
        return {(u8v)n.val[0], (u8v)n.val[1]};
    } else {
        const uint32x4x2_t n = vzipq_u32((uint32x4_t)v, (uint32x4_t)w);
        return {(u8v)n.val[0], (u8v)n.val[1]};
    }
}

ODX_INLINE u8v loadSixteens(const uint8_t* p, ptrdiff_t)
{
    return load<u8v>(p);
}

ODX_INLINE u8x2 load2(const uint8_t* p)
{
    const uint8x16x2_t n = vld2q_u8(p);
    return {(u8v)n.val[0], (u8v)n.val[1]};
}
ODX_INLINE u8x3 load3(const uint8_t* p)
{
    const uint8x16x3_t n = vld3q_u8(p);
    return {(u8v)n.val[0], (u8v)n.val[1], (u8v)n.val[2]};
}
ODX_INLINE u8x4 load4(const uint8_t* p)
{
    const uint8x16x4_t n = vld4q_u8(p);
    return {(u8v)n.val[0], (u8v)n.val[1], (u8v)n.val[2], (u8v)n.val[3]};
}

ODX_INLINE void store2(uint8_t* p, u8v a, u8v b)
{
    const uint8x16x2_t n = {{(uint8x16_t)a, (uint8x16_t)b}};
    vst2q_u8(p, n);
}
ODX_INLINE void store3(uint8_t* p, u8v a, u8v b, u8v c)
{
    const uint8x16x3_t n = {{(uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c}};
    vst3q_u8(p, n);
}
ODX_INLINE void store4(uint8_t* p, u8v a, u8v b, u8v c, u8v d)
{
    const uint8x16x4_t n = {{(uint8x16_t)a, (uint8x16_t)b, (uint8x16_t)c, (uint8x16_t)d}};
    vst4q_u8(p, n);
}

template <bool mirrored>
ODX_INLINE void widen3(uint8_t* q, const uint8_t* p)
{
    const u8x3 v = load3(p);
    store4(q, mirrored ? v.c : v.a, v.b, mirrored ? v.a : v.c, v.a | 255);
}
template <bool mirrored>
ODX_INLINE void narrow4(uint8_t* q, const uint8_t* p)
{
    const u8x4 v = load4(p);
    store3(q, mirrored ? v.c : v.a, v.b, mirrored ? v.a : v.c);
}

ODX_INLINE void mirror3(uint8_t* q, const uint8_t* p)
{
    const u8x3 v = load3(p);
    store3(q, v.c, v.b, v.a);
}

// ---- sums of channels ----

typedef u8x3 u8q;

ODX_INLINE u8q loadQuads(const uint8_t* p)
{
    const u8x4 v = load4(p);
    return {v.a, v.b, v.c};
}
ODX_INLINE u8q loadTriples(const uint8_t* p)
{
    return load3(p);
}

// A product with a positive weight comes first, because it takes no register to begin with.
template <int a, int b, int c>
ODX_INLINE uint16x8_t products(uint8x8_t first, uint8x8_t second, uint8x8_t third)
{
    if constexpr (a < 0) return products<c, b, a>(third, second, first);
    return mulAdd<c>(mulAdd<b>(mul<(a < 0 ? 0 : a)>(first), second), third);
}

struct ProductsPair {
    uint16x8_t low, high;
};
template <int a, int b, int c>
ODX_INLINE ProductsPair products(const u8x3& v)
{
    const uint8x16_t first = (uint8x16_t)v.a, second = (uint8x16_t)v.b, third = (uint8x16_t)v.c;
    return {products<a, b, c>(vget_low_u8(first), vget_low_u8(second), vget_low_u8(third)),
            products<a, b, c>(vget_high_u8(first), vget_high_u8(second), vget_high_u8(third))};
}

template <int a, int b, int c>
ODX_INLINE u8v lumaSums(const u8x3& v)
{
    const ProductsPair sums = products<a, b, c>(v);
    return (u8v)vcombine_u8(vrshrn_n_u16(sums.low, 8), vrshrn_n_u16(sums.high, 8));
}

template <int a, int b, int c>
ODX_INLINE u8v chromaSums(const u8x3& v)
{
    const ProductsPair sums = products<a, b, c>(v);
    return (u8v)vcombine_s8(vqrshrn_n_s16((int16x8_t)sums.low, 8), vqrshrn_n_s16((int16x8_t)sums.high, 8)) ^ 0x80;
}

template <int a, int b, int c>
ODX_INLINE u16v chromaSumsOfPairs(const u8x3& v)
{
    const auto even = [](u8v bytes) { return vmovn_u16((uint16x8_t)bytes); };
    const uint16x8_t sums = products<a, b, c>(even(v.a), even(v.b), even(v.c));
    return (u16v)vmovl_u8(veor_u8((uint8x8_t)vqrshrn_n_s16((int16x8_t)sums, 8), vdup_n_u8(0x80)));
}

// From products with the upper and the lower bytes of the weights.
template <int a, int b, int c>
ODX_INLINE u8v fineSums(const uint8_t* p)
{
    const u8x3 v = load3(p);
    const ProductsPair upper = products<a / 256, b / 256, c / 256>(v),
                       lower = products<a % 256, b % 256, c % 256>(v);
    return (u8v)vcombine_u8(vrshrn_n_u16(vsraq_n_u16(upper.low, lower.low, 8), 8),
                            vrshrn_n_u16(vsraq_n_u16(upper.high, lower.high, 8), 8));
}

ODX_INLINE void mirror4(uint8_t* q, const uint8_t* p)
{
    const u8x4 v = load4(p);
    store4(q, v.c, v.b, v.a, v.d);
}

// ---- words of 5, 6 and 5 bits ----

ODX_INLINE u16v mirror565(u16v v)
{
    const uint16x8_t n = (uint16x8_t)v;
    return (u16v)vbslq_u16(vdupq_n_u16(0x07E0), n, vsriq_n_u16(vshlq_n_u16(n, 11), n, 11));
}

template <bool mirrored>
ODX_INLINE void widen565(uint8_t* q, const uint8_t* p)
{
    const uint8x16x2_t n = vld2q_u8(p);
    // Channels come to the top of their bytes, and over whatever is below go copies of their high bits.
    const uint8x16_t low = vshlq_n_u8(n.val[0], 3), middle = vsriq_n_u8(vshlq_n_u8(n.val[1], 5), n.val[0], 3);
    const u8v first = (u8v)vsriq_n_u8(low, low, 5), second = (u8v)vsriq_n_u8(middle, middle, 6),
              third = (u8v)vsriq_n_u8(n.val[1], n.val[1], 5);
    store4(q, mirrored ? third : first, second, mirrored ? first : third, first | 255);
}

#if defined(__aarch64__)
constexpr bool kPairsVectors = true;
#else
constexpr bool kPairsVectors = false;
#endif

constexpr bool kCountsBits = true;
ODX_INLINE u8v popCount(u8v v)
{
    return (u8v)vcntq_u8((uint8x16_t)v);
}

ODX_INLINE uint32_t sumOfBytes(u8v v)
{
#if defined(__aarch64__)
    return vaddlvq_u8((uint8x16_t)v);
#else
    const uint64x2_t sums = vpaddlq_u32(vpaddlq_u16(vpaddlq_u8((uint8x16_t)v)));
    return (uint32_t)(vgetq_lane_u64(sums, 0) + vgetq_lane_u64(sums, 1));
#endif
}

ODX_INLINE u8v addSat(u8v v, u8v w)
{
    return (u8v)vqaddq_u8((uint8x16_t)v, (uint8x16_t)w);
}
ODX_INLINE f32p loadFloats(const uint8_t* p)
{
    const uint16x8_t words = loadForWords(p);
    return {(f32v)vcvtq_f32_u32(vmovl_u16(vget_low_u16(words))),
            (f32v)vcvtq_f32_u32(vmovl_u16(vget_high_u16(words)))};
}

ODX_INLINE f32v following(f32v v, f32v next)
{
    return (f32v)vextq_f32((float32x4_t)v, (float32x4_t)next, 1);
}

ODX_INLINE float sumOfHalves(f32v v)
{
    const float32x4_t n = (float32x4_t)v;
    const float32x2_t two = vadd_f32(vget_low_f32(n), vget_high_f32(n));
    return vget_lane_f32(vpadd_f32(two, two), 0);
}

ODX_INLINE u8v loadRows(const uint8_t* p, size_t)
{
    return load<u8v>(p);
}

ODX_INLINE u16v addDistances(u16v v, u8v a, u8v b)
{
    return (u16v)vpadalq_u8((uint16x8_t)v, vabdq_u8((uint8x16_t)a, (uint8x16_t)b));
}

ODX_INLINE uint32_t sumOfLanes(s32v v)
{
#if defined(__aarch64__)
    return (uint32_t)vaddvq_s32((int32x4_t)v);
#else
    const int32x2_t two = vadd_s32(vget_low_s32((int32x4_t)v), vget_high_s32((int32x4_t)v));
    return (uint32_t)vget_lane_s32(vpadd_s32(two, two), 0);
#endif
}
ODX_INLINE uint64_t sumsOfDistances(u16v a, u16v b, u16v c, u16v d)
{
    const auto half = [](u16v v) { return vpadd_u16(vget_low_u16((uint16x8_t)v), vget_high_u16((uint16x8_t)v)); };
    const uint16x4_t ab = vpadd_u16(half(a), half(b)), cd = vpadd_u16(half(c), half(d));
    return vget_lane_u64(vreinterpret_u64_u16(vpadd_u16(ab, cd)), 0);
}

ODX_INLINE s32v addProducts(s32v v, s16v a, s16v b)
{
    const int16x8_t m = (int16x8_t)a, n = (int16x8_t)b;
    const int32x4_t low = vmlal_s16((int32x4_t)v, vget_low_s16(m), vget_low_s16(n));
    return (s32v)vmlal_s16(low, vget_high_s16(m), vget_high_s16(n));
}

ODX_INLINE s16v addSat(s16v v, s16v w)
{
    return (s16v)vqaddq_s16((int16x8_t)v, (int16x8_t)w);
}
ODX_INLINE u16v addSat(u16v v, u16v w)
{
    return (u16v)vqaddq_u16((uint16x8_t)v, (uint16x8_t)w);
}
ODX_INLINE u16v subSat(u16v v, u16v w)
{
    return (u16v)vqsubq_u16((uint16x8_t)v, (uint16x8_t)w);
}
ODX_INLINE s16v subSat(s16v v, s16v w)
{
    return (s16v)vqsubq_s16((int16x8_t)v, (int16x8_t)w);
}
ODX_INLINE u8v subSat(u8v a, u8v b)
{
    return (u8v)vqsubq_u8((uint8x16_t)a, (uint8x16_t)b);
}
ODX_INLINE s8v subSat(s8v a, s8v b)
{
    return (s8v)vqsubq_s8((int8x16_t)a, (int8x16_t)b);
}

ODX_INLINE s32p mulWide(s16v v, s16v w)
{
    const int16x8_t a = (int16x8_t)v, b = (int16x8_t)w;
    return {(s32v)vmull_s16(vget_low_s16(a), vget_low_s16(b)),
            (s32v)vmull_s16(vget_high_s16(a), vget_high_s16(b))};
}
ODX_INLINE s16v joinWideSat(const s32p& p)
{
    return (s16v)vcombine_s16(vqmovn_s32((int32x4_t)p.a), vqmovn_s32((int32x4_t)p.b));
}

ODX_INLINE f32v rootNear(f32v v)
{
#if defined(__aarch64__)
    return (f32v)vsqrtq_f32((float32x4_t)v);
#else
    const float32x4_t n = (float32x4_t)v, one = vmaxq_f32(n, vdupq_n_f32(1));
    float32x4_t r = vrsqrteq_f32(one);
    r = vmulq_f32(r, vrsqrtsq_f32(vmulq_f32(one, r), r));
    r = vmulq_f32(r, vrsqrtsq_f32(vmulq_f32(one, r), r));
    return (f32v)vmulq_f32(n, r);
#endif
}
ODX_INLINE f32v ratioNear(f32v v, f32v w)
{
    const float32x4_t r = vrecpeq_f32((float32x4_t)w);
    return (f32v)vmulq_f32((float32x4_t)v, vmulq_f32(r, vrecpsq_f32((float32x4_t)w, r)));
}

} // namespace odx::ODX_TARGET::simd

#endif
