// The backend of AVX2 (32 bytes) and AVX-512 with VBMI, BITALG and VNNI (64 bytes): the same instructions at two
// widths.
#ifndef ODX_ORLAN_SIMD_X86_H
#define ODX_ORLAN_SIMD_X86_H

#include <immintrin.h>

#if ODX_VECTOR_BYTES == 64
#define ODX_MM(name) _mm512_##name
#define ODX_MI __m512i
#else
#define ODX_MM(name) _mm256_##name
#define ODX_MI __m256i
#endif

namespace odx::ODX_TARGET::simd
{

ODX_INLINE u8v min(u8v a, u8v b)
{
    return (u8v)ODX_MM(min_epu8)((ODX_MI)a, (ODX_MI)b);
}
ODX_INLINE u8v max(u8v a, u8v b)
{
    return (u8v)ODX_MM(max_epu8)((ODX_MI)a, (ODX_MI)b);
}
ODX_INLINE s16v min(s16v a, s16v b)
{
    return (s16v)ODX_MM(min_epi16)((ODX_MI)a, (ODX_MI)b);
}
ODX_INLINE s16v max(s16v a, s16v b)
{
    return (s16v)ODX_MM(max_epi16)((ODX_MI)a, (ODX_MI)b);
}

ODX_INLINE s32v min(s32v a, s32v b)
{
    return (s32v)ODX_MM(min_epi32)((ODX_MI)a, (ODX_MI)b);
}
ODX_INLINE s32v max(s32v a, s32v b)
{
    return (s32v)ODX_MM(max_epi32)((ODX_MI)a, (ODX_MI)b);
}

ODX_INLINE u16v min(u16v a, u16v b)
{
    return (u16v)ODX_MM(min_epu16)((ODX_MI)a, (ODX_MI)b);
}
ODX_INLINE u16v max(u16v a, u16v b)
{
    return (u16v)ODX_MM(max_epu16)((ODX_MI)a, (ODX_MI)b);
}
ODX_INLINE u32v min(u32v a, u32v b)
{
    return (u32v)ODX_MM(min_epu32)((ODX_MI)a, (ODX_MI)b);
}
ODX_INLINE u32v max(u32v a, u32v b)
{
    return (u32v)ODX_MM(max_epu32)((ODX_MI)a, (ODX_MI)b);
}

ODX_INLINE u16v loadWiden(const uint8_t* p)
{
#if ODX_VECTOR_BYTES == 64
    return (u16v)_mm512_cvtepu8_epi16(_mm256_loadu_si256((const __m256i*)p));
#else
    return (u16v)_mm256_cvtepu8_epi16(_mm_loadu_si128((const __m128i*)p));
#endif
}

ODX_INLINE void storeNarrow(uint8_t* p, u16v v)
{
#if ODX_VECTOR_BYTES == 64
    _mm256_storeu_si256((__m256i*)p, _mm512_cvtepi16_epi8((__m512i)v));
#else
    const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi16((__m256i)v, (__m256i)v), 0x08);
    _mm_storeu_si128((__m128i*)p, _mm256_castsi256_si128(packed));
#endif
}

// A table of 16 bytes for every lane.
ODX_INLINE ODX_MI inEachLane(__m128i v)
{
#if ODX_VECTOR_BYTES == 64
    return _mm512_broadcast_i32x4(v);
#else
    return _mm256_broadcastsi128_si256(v);
#endif
}

// Pairs are the even and the odd lanes.
ODX_INLINE u16p split(u8v v)
{
    return {(u16v)v & 0xFF, (u16v)v >> 8};
}
ODX_INLINE s32p split(s16v v)
{
    return {((s32v)v << 16) >> 16, (s32v)v >> 16};
}

ODX_INLINE u8v join(const u16p& p)
{
    return (u8v)(p.a | p.b << 8);
}

ODX_INLINE u8v joinClamped(const s16p& p)
{
    const ODX_MI halves = ODX_MM(packus_epi16)((ODX_MI)p.a, (ODX_MI)p.b);
    return (u8v)ODX_MM(shuffle_epi8)(
        halves, inEachLane(_mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15)));
}

template <int n>
ODX_INLINE u8v joinCentred(const s16p& p)
{
    const ODX_MI halves = ODX_MM(packs_epi16)((ODX_MI)(p.a >> n), (ODX_MI)(p.b >> n));
    return (u8v)ODX_MM(shuffle_epi8)(
               halves, inEachLane(_mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15))) ^
           0x80;
}

ODX_INLINE s16p eachTwice(s16v v)
{
    return {v, v};
}

template <int n>
ODX_INLINE u8v joinShifted(const u16p& p)
{
    static_assert(n <= 8);
    return (u8v)(p.a >> n | ((p.b << (8 - n)) & 0xFF00));
}

template <int n>
ODX_INLINE s16v joinShifted(const s32p& p)
{
    return (s16v)(((p.a >> n) & 0xFFFF) | (s32v)((u32v)(p.b >> n) << 16));
}

// The lower and the upper halves of each 16 bytes, in order.
struct Ordered {
    ODX_MI first, second;
};
ODX_INLINE Ordered inOrder(ODX_MI low, ODX_MI high)
{
#if ODX_VECTOR_BYTES == 64
    return {_mm512_permutex2var_epi64(low, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), high),
            _mm512_permutex2var_epi64(low, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), high)};
#else
    return {_mm256_permute2x128_si256(low, high, 0x20), _mm256_permute2x128_si256(low, high, 0x31)};
#endif
}

ODX_INLINE void storeInOrder(int32_t* p, const s32p& pair)
{
    const Ordered v = inOrder(ODX_MM(unpacklo_epi32)((ODX_MI)pair.a, (ODX_MI)pair.b),
                              ODX_MM(unpackhi_epi32)((ODX_MI)pair.a, (ODX_MI)pair.b));
    store(p, v.first);
    store(p + kBytes / 4, v.second);
}

ODX_INLINE s16p loadInOrder(const uint8_t* p)
{
    return {(s16v)loadWiden(p), (s16v)loadWiden(p + kBytes / 2)};
}
ODX_INLINE void storePairs(int16_t* p, s16v v, s16v w)
{
    const Ordered pairs =
        inOrder(ODX_MM(unpacklo_epi16)((ODX_MI)v, (ODX_MI)w), ODX_MM(unpackhi_epi16)((ODX_MI)v, (ODX_MI)w));
    store(p, pairs.first);
    store(p + kBytes / 2, pairs.second);
}
ODX_INLINE void storePairs(float* p, f32v v, f32v w)
{
    storeInOrder((int32_t*)p, {(s32v)v, (s32v)w}); // the pairs of words are even and odd lanes
}

ODX_INLINE s32p widenInOrder(s16v v)
{
#if ODX_VECTOR_BYTES == 64
    return {(s32v)_mm512_cvtepi16_epi32(_mm512_castsi512_si256((__m512i)v)),
            (s32v)_mm512_cvtepi16_epi32(_mm512_extracti64x4_epi64((__m512i)v, 1))};
#else
    return {(s32v)_mm256_cvtepi16_epi32(_mm256_castsi256_si128((__m256i)v)),
            (s32v)_mm256_cvtepi16_epi32(_mm256_extracti128_si256((__m256i)v, 1))};
#endif
}
ODX_INLINE s32p loadNumbers(const uint8_t* p)
{
    return widenInOrder((s16v)loadWiden(p));
}

ODX_INLINE void storeInOrder(int16_t* p, const s16p& pair)
{
    storePairs(p, pair.a, pair.b); // the even and the odd lanes
}

ODX_INLINE s16v joinSat(const s32p& p)
{
    const ODX_MI halves = ODX_MM(packs_epi32)((ODX_MI)p.a, (ODX_MI)p.b);
    return (s16v)ODX_MM(shuffle_epi8)(
        halves, inEachLane(_mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15)));
}

struct Weights2 {
    ODX_MI pair;
};
ODX_INLINE Weights2 weights2(const int8_t* two)
{
    short both;
    memcpy(&both, two, sizeof both);
    return {ODX_MM(set1_epi16)(both)};
}
ODX_INLINE s16p dot2(const uint8_t* p, Weights2 w)
{
    return {(s16v)ODX_MM(maddubs_epi16)((ODX_MI)load<u8v>(p), w.pair),
            (s16v)ODX_MM(maddubs_epi16)((ODX_MI)load<u8v>(p + 1), w.pair)};
}

ODX_INLINE s16v narrowMask(const s32p& p)
{
    const ODX_MI halves = ODX_MM(packs_epi32)((ODX_MI)p.a, (ODX_MI)p.b);
#if ODX_VECTOR_BYTES == 64
    return (s16v)_mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), halves);
#else
    return (s16v)_mm256_permute4x64_epi64(halves, 0xD8);
#endif
}

ODX_INLINE s32p loadBoth(const int32_t* p)
{
    return {load<s32v>(p), load<s32v>(p + kBytes / 4)};
}
ODX_INLINE void storeBoth(int32_t* p, const s32p& v)
{
    store(p, v.a);
    store(p + kBytes / 4, v.b);
}
ODX_INLINE s16v narrowBoth(const s32p& p)
{
    return narrowMask(p);
}

ODX_INLINE s32p sumOfSquares(s16v v, s16v w)
{
    const ODX_MI low = ODX_MM(unpacklo_epi16)((ODX_MI)v, (ODX_MI)w),
                 high = ODX_MM(unpackhi_epi16)((ODX_MI)v, (ODX_MI)w);
    const Ordered sums = inOrder(ODX_MM(madd_epi16)(low, low), ODX_MM(madd_epi16)(high, high));
    return {(s32v)sums.first, (s32v)sums.second};
}

ODX_INLINE s16v abs(s16v v)
{
    return max(v, (s16v)ODX_MM(subs_epi16)(ODX_MI{}, (ODX_MI)v));
}

ODX_INLINE void storeBytes(uint8_t* p, s32v a, s32v b, s32v c, s32v d)
{
    const ODX_MI low = ODX_MM(packus_epi32)((ODX_MI)a, (ODX_MI)b),
                 high = ODX_MM(packus_epi32)((ODX_MI)c, (ODX_MI)d), bytes = ODX_MM(packus_epi16)(low, high);
#if ODX_VECTOR_BYTES == 64
    store(p, _mm512_permutexvar_epi32(_mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15),
                                      bytes));
#else
    store(p, _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7)));
#endif
}

template <int k>
ODX_INLINE s16p mulCentred(u8v v)
{
    static_assert(k >= 0 && k <= 255);
    const ODX_MI centred = (ODX_MI)(v ^ 0x80);
    return {(s16v)ODX_MM(maddubs_epi16)(ODX_MM(set1_epi16)(k), centred),
            (s16v)ODX_MM(maddubs_epi16)(ODX_MM(set1_epi16)((short)(k << 8)), centred)};
}

// p[i] * w0 + p[i + 1] * w1 for even lanes i, or odd ones (p points to the first); sums may use all 16 bits.
template <int w0, int w1>
ODX_INLINE u16v dotOf(u8v v)
{
    static_assert(w0 >= 0 && w0 <= 127 && w1 >= 0 && w1 <= 127 && 255 * (w0 + w1) <= 32767);
    if constexpr (w0 == 1 && w1 == 0) return (u16v)v & 0xFF;
    if constexpr (w0 == 0 && w1 == 1) return (u16v)v >> 8;
    return (u16v)ODX_MM(maddubs_epi16)((ODX_MI)v, ODX_MM(set1_epi16)(w0 | w1 << 8));
}

// Sums of the even lanes take the weights in twos from the first on, those of the odd lanes from the second on:
// both from the same vectors. What they have in common is summed once.
struct Dots {
    u16v even, odd, both;
};
template <int scale, int before, int w0>
ODX_INLINE Dots dotsFrom(const uint8_t* p, u16v both)
{
    const u8v v = load<u8v>(p);
    return {dotOf<w0, 0>(v), dotOf<before * scale, w0 * scale>(v), both};
}
template <int scale, int before, int w0, int w1, int... w>
ODX_INLINE Dots dotsFrom(const uint8_t* p, u16v both)
{
    const u8v v = load<u8v>(p);
    if constexpr (before == w0 && w0 == w1 && scale == 1) {
        return dotsFrom<scale, w1, w...>(p + 2, both + dotOf<w0, w1>(v));
    } else {
        const Dots rest = dotsFrom<scale, w1, w...>(p + 2, both);
        return {dotOf<w0, w1>(v) + rest.even, dotOf<before * scale, w0 * scale>(v) + rest.odd, rest.both};
    }
}
template <int n, int... w>
ODX_INLINE u16p dotsFor(const uint8_t* p)
{
    const Dots sums = dotsFrom<1 << (8 - n), 0, w...>(p, u16v{});
    return {sums.even + sums.both, sums.odd + sums.both};
}
template <int... w>
ODX_INLINE u16p dots(const uint8_t* p)
{
    return dotsFor<8, w...>(p);
}
template <int n>
ODX_INLINE u8v joinDots(const u16p& p)
{
#if ODX_VECTOR_BYTES == 64
    return (u8v)(p.a >> n | (p.b & 0xFF00));
#else
    return (u8v)_mm256_blendv_epi8((__m256i)(p.a >> n), (__m256i)p.b, _mm256_set1_epi16((short)0xFF00));
#endif
}

template <int a, int b>
ODX_INLINE s32p dot2(const int16_t* p)
{
    const ODX_MI weights = ODX_MM(set1_epi32)((a & 0xFFFF) | b << 16);
    return {(s32v)ODX_MM(madd_epi16)((ODX_MI)load<s16v>(p), weights),
            (s32v)ODX_MM(madd_epi16)((ODX_MI)load<s16v>(p + 1), weights)};
}

ODX_INLINE s32p binomials5(const int16_t* p)
{
    return dot2<1, 4>(p) + dot2<6, 4>(p + 2) + split(load<s16v>(p + 4));
}

ODX_INLINE s16v widenPairs(const int8_t* p, const int8_t* q)
{
#if ODX_VECTOR_BYTES == 64
    const __m128i a = _mm_loadu_si128((const __m128i*)p), b = _mm_loadu_si128((const __m128i*)q);
    const __m256i low = _mm256_castsi128_si256(_mm_unpacklo_epi8(a, b));
    return (s16v)_mm512_cvtepi8_epi16(_mm256_inserti128_si256(low, _mm_unpackhi_epi8(a, b), 1));
#else
    const __m128i a = _mm_loadl_epi64((const __m128i*)p), b = _mm_loadl_epi64((const __m128i*)q);
    return (s16v)_mm256_cvtepi8_epi16(_mm_unpacklo_epi8(a, b));
#endif
}
ODX_INLINE s16v repeatPair(const int16_t* p)
{
    int both;
    memcpy(&both, p, sizeof both);
    return (s16v)ODX_MM(set1_epi32)(both);
}
ODX_INLINE s32v addPairProducts(s32v sum, s16v v, s16v w)
{
    return sum + (s32v)ODX_MM(madd_epi16)((ODX_MI)v, (ODX_MI)w);
}

#if ODX_VECTOR_BYTES == 64 && !defined(ODX_EMULATE_AVX512)
#define ODX_SIMD_QUADS
ODX_INLINE u8v widenQuads(const int8_t* const* rows, size_t offset)
{
    const auto sixteen = [=](size_t i) __attribute__((always_inline))
    {
        return load<__m128i>(rows[i] + offset);
    };
    const __m128i low01 = _mm_unpacklo_epi8(sixteen(0), sixteen(1)),
                  high01 = _mm_unpackhi_epi8(sixteen(0), sixteen(1)),
                  low23 = _mm_unpacklo_epi8(sixteen(2), sixteen(3)),
                  high23 = _mm_unpackhi_epi8(sixteen(2), sixteen(3));
    const __m128i quads[4] = {_mm_unpacklo_epi16(low01, low23), _mm_unpackhi_epi16(low01, low23),
                              _mm_unpacklo_epi16(high01, high23), _mm_unpackhi_epi16(high01, high23)};
    return (u8v)load<__m512i>(quads);
}
ODX_INLINE u8v repeatQuad(const uint8_t* p)
{
    int32_t all;
    memcpy(&all, p, sizeof all);
    return (u8v)_mm512_set1_epi32(all);
}
ODX_INLINE s32v addQuadProducts(s32v sum, u8v v, u8v w)
{
    return (s32v)_mm512_dpbusd_epi32((__m512i)sum, (__m512i)w, (__m512i)v);
}
#endif

ODX_INLINE u16v mulHigh(u16v v, uint16_t k)
{
    return (u16v)ODX_MM(mulhi_epu16)((ODX_MI)v, ODX_MM(set1_epi16)((short)k));
}
ODX_INLINE u16v mulRound(u16v v, int16_t k)
{
    return (u16v)ODX_MM(mulhrs_epi16)((ODX_MI)v, ODX_MM(set1_epi16)(k));
}

ODX_INLINE s16v mulRound(s16v v, int16_t k)
{
    return (s16v)ODX_MM(mulhrs_epi16)((ODX_MI)v, ODX_MM(set1_epi16)(k));
}

template <int n>
ODX_INLINE s16v dotShift(s16v v, s16v w, int16_t k, int16_t l, int32_t c)
{
    const ODX_MI weights = ODX_MM(set1_epi32)((k & 0xFFFF) | (int32_t)((uint32_t)l << 16));
    const ODX_MI low = ODX_MM(unpacklo_epi16)((ODX_MI)v, (ODX_MI)w),
                 high = ODX_MM(unpackhi_epi16)((ODX_MI)v, (ODX_MI)w);
    const s32v sumLow = ((s32v)ODX_MM(madd_epi16)(low, weights) + c) >> n,
               sumHigh = ((s32v)ODX_MM(madd_epi16)(high, weights) + c) >> n;
    return (s16v)ODX_MM(packs_epi32)((ODX_MI)sumLow, (ODX_MI)sumHigh);
}

template <int n>
ODX_INLINE s16v dotShift(s16v u, s16v v, s16v w, int16_t j, int16_t k, int16_t l, int32_t c)
{
    // The constant is a fourth product: 2 and its half.
    const ODX_MI weights = ODX_MM(set1_epi32)((j & 0xFFFF) | (int32_t)((uint32_t)k << 16)),
                 others = ODX_MM(set1_epi32)((l & 0xFFFF) | (int32_t)((uint32_t)(c / 2) << 16)),
                 two = ODX_MM(set1_epi16)(2);
    const auto sum = [=](ODX_MI uv, ODX_MI w2) {
        return (s32v)ODX_MM(madd_epi16)(uv, weights) + (s32v)ODX_MM(madd_epi16)(w2, others);
    };
    const s32v low = sum(ODX_MM(unpacklo_epi16)((ODX_MI)u, (ODX_MI)v), ODX_MM(unpacklo_epi16)((ODX_MI)w, two)),
               high = sum(ODX_MM(unpackhi_epi16)((ODX_MI)u, (ODX_MI)v), ODX_MM(unpackhi_epi16)((ODX_MI)w, two));
    return (s16v)ODX_MM(packs_epi32)((ODX_MI)(low >> n), (ODX_MI)(high >> n));
}

// The quotient is never as close to a half, unless it is one, as the division may be off.
ODX_INLINE s32v reciprocal16(s32v v)
{
    const f32v quotient = 65536.0f / __builtin_convertvector(v, f32v);
    return __builtin_convertvector(quotient + 0.5f, s32v);
}

// Of elements whose last one's bytes `lastFirst` brings to the front, in 16 bytes.
ODX_INLINE ODX_MI reversed(ODX_MI v, __m128i lastFirst)
{
    const ODX_MI lanes = ODX_MM(shuffle_epi8)(v, inEachLane(lastFirst));
#if ODX_VECTOR_BYTES == 64
    return _mm512_shuffle_i32x4(lanes, lanes, 0x1B);
#else
    return _mm256_permute2x128_si256(lanes, lanes, 1);
#endif
}
ODX_INLINE u8v reverse(u8v v)
{
    return (u8v)reversed((ODX_MI)v, _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
}
ODX_INLINE u16v reverse(u16v v)
{
    return (u16v)reversed((ODX_MI)v, _mm_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1));
}

template <int size>
ODX_INLINE u8x2 zip(u8v v, u8v w)
{
    const ODX_MI a = (ODX_MI)v, b = (ODX_MI)w;
    if constexpr (size == 1) return {(u8v)ODX_MM(unpacklo_epi8)(a, b), (u8v)ODX_MM(unpackhi_epi8)(a, b)};
    if constexpr (size == 2) return {(u8v)ODX_MM(unpacklo_epi16)(a, b), (u8v)ODX_MM(unpackhi_epi16)(a, b)};
    return {(u8v)ODX_MM(unpacklo_epi32)(a, b), (u8v)ODX_MM(unpackhi_epi32)(a, b)};
}

ODX_INLINE u8v loadSixteens(const uint8_t* p, ptrdiff_t distance)
{
    const auto at = [=](ptrdiff_t i) { return _mm_loadu_si128((const __m128i*)(p + distance * i)); };
#if ODX_VECTOR_BYTES == 64
    // By masks, because shuffles are what transpositions wait for.
    __m512i v = _mm512_castsi128_si512(at(0));
    v = _mm512_mask_broadcast_i32x4(v, 0x00F0, at(1));
    v = _mm512_mask_broadcast_i32x4(v, 0x0F00, at(2));
    return (u8v)_mm512_mask_broadcast_i32x4(v, 0xF000, at(3));
#else
    return (u8v)_mm256_inserti128_si256(_mm256_castsi128_si256(at(0)), at(1), 1);
#endif
}

// ---- interleaved channels ----

} // namespace odx::ODX_TARGET::simd

#if ODX_VECTOR_BYTES == 64
#include "orlan/simd/x86Channels64.h"
#else
#include "orlan/simd/x86Channels32.h"
#endif

#include "orlan/simd/x86Sums.h"

namespace odx::ODX_TARGET::simd
{

ODX_INLINE u16v mirror565(u16v v)
{
    return (v & 0x07E0) | v << 11 | v >> 11;
}

ODX_INLINE void mirror4(uint8_t* q, const uint8_t* p)
{
    const __m128i table = _mm_setr_epi8(2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15);
    for (uint32_t i = 0; i < 4 * kBytes; i += kBytes)
        store(q + i, (u8v)ODX_MM(shuffle_epi8)((ODX_MI)load<u8v>(p + i), inEachLane(table)));
}

constexpr bool kPairsVectors = false;

constexpr bool kCountsBits = ODX_VECTOR_BYTES == 64;
ODX_INLINE u8v popCount(u8v v)
{
#if ODX_VECTOR_BYTES == 64
    return (u8v)_mm512_popcnt_epi8((__m512i)v);
#else
    const __m256i table = inEachLane(_mm_setr_epi8(0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4));
    const u8v low = v & 15, high = v >> 4;
    return (u8v)_mm256_shuffle_epi8(table, (__m256i)low) + (u8v)_mm256_shuffle_epi8(table, (__m256i)high);
#endif
}

ODX_INLINE uint32_t sumOfBytes(u8v v)
{
    const ODX_MI sums = ODX_MM(sad_epu8)((ODX_MI)v, ODX_MI{});
#if ODX_VECTOR_BYTES == 64
    const __m256i half = _mm256_add_epi64(_mm512_castsi512_si256(sums), _mm512_extracti64x4_epi64(sums, 1));
#else
    const __m256i half = sums;
#endif
    const __m128i all = _mm_add_epi64(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
    return (uint32_t)(_mm_cvtsi128_si32(all) + _mm_extract_epi32(all, 2));
}

ODX_INLINE u8v addSat(u8v v, u8v w)
{
    return (u8v)ODX_MM(adds_epu8)((ODX_MI)v, (ODX_MI)w);
}
ODX_INLINE f32v following(f32v v, f32v next)
{
#if ODX_VECTOR_BYTES == 64
    return (f32v)_mm512_alignr_epi32((__m512i)next, (__m512i)v, 1);
#else
    const __m256i halves = _mm256_permute2x128_si256((__m256i)v, (__m256i)next, 0x21);
    return (f32v)_mm256_alignr_epi8(halves, (__m256i)v, 4);
#endif
}
ODX_INLINE f32p loadFloats(const uint8_t* p)
{
    const auto floats = [](const uint8_t* bytes) {
#if ODX_VECTOR_BYTES == 64
        return (f32v)_mm512_cvtepi32_ps(_mm512_cvtepu8_epi32(_mm_loadu_si128((const __m128i*)bytes)));
#else
        return (f32v)_mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(_mm_loadl_epi64((const __m128i*)bytes)));
#endif
    };
    return {floats(p), floats(p + kBytes / 4)};
}

ODX_INLINE float sumOfHalves(f32v v)
{
#if ODX_VECTOR_BYTES == 64
    const __m256 eight = _mm256_add_ps(_mm512_castps512_ps256((__m512)v), _mm512_extractf32x8_ps((__m512)v, 1));
#else
    const __m256 eight = (__m256)v;
#endif
    const __m128 four = _mm_add_ps(_mm256_castps256_ps128(eight), _mm256_extractf128_ps(eight, 1));
    const __m128 two = _mm_add_ps(four, _mm_movehl_ps(four, four));
    return _mm_cvtss_f32(_mm_add_ss(two, _mm_movehdup_ps(two)));
}

ODX_INLINE u8v loadRows(const uint8_t* p, size_t stride)
{
    const auto row = [=](uint32_t i) { return _mm_loadu_si128((const __m128i*)(p + i * stride)); };
    const __m256i two = _mm256_inserti128_si256(_mm256_castsi128_si256(row(0)), row(1), 1);
#if ODX_VECTOR_BYTES == 64
    return (u8v)_mm512_inserti32x4(_mm512_inserti32x4(_mm512_castsi256_si512(two), row(2), 2), row(3), 3);
#else
    return (u8v)two;
#endif
}

ODX_INLINE u16v addDistances(u16v v, u8v a, u8v b)
{
    return v + (u16v)ODX_MM(sad_epu8)((ODX_MI)a, (ODX_MI)b);
}

ODX_INLINE uint32_t sumOfLanes(s32v v)
{
#if ODX_VECTOR_BYTES == 64
    const __m256i eight =
        _mm256_add_epi32(_mm512_castsi512_si256((__m512i)v), _mm512_extracti64x4_epi64((__m512i)v, 1));
#else
    const __m256i eight = (__m256i)v;
#endif
    __m128i four = _mm_add_epi32(_mm256_castsi256_si128(eight), _mm256_extracti128_si256(eight, 1));
    four = _mm_add_epi32(four, _mm_shuffle_epi32(four, 0x4E));
    return (uint32_t)_mm_cvtsi128_si32(_mm_add_epi32(four, _mm_shuffle_epi32(four, 0xB1)));
}
// They stand in every fourth lane, so that four vectors fit one.
ODX_INLINE uint64_t sumsOfDistances(u16v a, u16v b, u16v c, u16v d)
{
    typedef uint64_t u64v ODX_VECTOR;
    const ODX_MI all = (ODX_MI)((u64v)a | (u64v)b << 16 | (u64v)c << 32 | (u64v)d << 48);
#if ODX_VECTOR_BYTES == 64
    const __m256i half = _mm256_add_epi16(_mm512_castsi512_si256(all), _mm512_extracti64x4_epi64(all, 1));
#else
    const __m256i half = all;
#endif
    const __m128i two = _mm_add_epi16(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
    return (uint64_t)_mm_cvtsi128_si64(_mm_add_epi16(two, _mm_unpackhi_epi64(two, two)));
}

ODX_INLINE s32v addProducts(s32v v, s16v a, s16v b)
{
    return v + (s32v)ODX_MM(madd_epi16)((ODX_MI)a, (ODX_MI)b);
}

ODX_INLINE s16v addSat(s16v v, s16v w)
{
    return (s16v)ODX_MM(adds_epi16)((ODX_MI)v, (ODX_MI)w);
}
ODX_INLINE u16v addSat(u16v v, u16v w)
{
    return (u16v)ODX_MM(adds_epu16)((ODX_MI)v, (ODX_MI)w);
}
ODX_INLINE u16v subSat(u16v v, u16v w)
{
    return (u16v)ODX_MM(subs_epu16)((ODX_MI)v, (ODX_MI)w);
}
ODX_INLINE s16v subSat(s16v v, s16v w)
{
    return (s16v)ODX_MM(subs_epi16)((ODX_MI)v, (ODX_MI)w);
}
ODX_INLINE u8v subSat(u8v a, u8v b)
{
    return (u8v)ODX_MM(subs_epu8)((ODX_MI)a, (ODX_MI)b);
}
ODX_INLINE s8v subSat(s8v a, s8v b)
{
    return (s8v)ODX_MM(subs_epi8)((ODX_MI)a, (ODX_MI)b);
}

ODX_INLINE s32p mulWide(s16v v, s16v w)
{
    const ODX_MI low = ODX_MM(mullo_epi16)((ODX_MI)v, (ODX_MI)w), high = ODX_MM(mulhi_epi16)((ODX_MI)v, (ODX_MI)w);
    return {(s32v)ODX_MM(unpacklo_epi16)(low, high), (s32v)ODX_MM(unpackhi_epi16)(low, high)};
}
ODX_INLINE s16v joinWideSat(const s32p& p)
{
    return (s16v)ODX_MM(packs_epi32)((ODX_MI)p.a, (ODX_MI)p.b);
}

ODX_INLINE f32v rootNear(f32v v)
{
    return (f32v)ODX_MM(sqrt_ps)(v);
}
ODX_INLINE f32v ratioNear(f32v v, f32v w)
{
    return v / w;
}

} // namespace odx::ODX_TARGET::simd

#endif
