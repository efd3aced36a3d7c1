// Products and distances of bytes, summed over vectors.
#ifndef ODX_ORLAN_SIMD_X86_DISTANCES_H
#define ODX_ORLAN_SIMD_X86_DISTANCES_H

#include "orlan/simd/x86Search.h"

namespace odx::ODX_TARGET::simd
{

template <uint32_t n>
ODX_INLINE u8v loadPart(const uint8_t* p)
{
    static_assert(n % 4 == 0 && n < kBytes);
    if constexpr (n == 4) {
        uint32_t word;
        memcpy(&word, p, sizeof word);
        return (u8v)u32v{word};
    }
#if ODX_VECTOR_BYTES == 64 && !defined(ODX_EMULATE_AVX512)
    // A masked load takes microseconds where the memory behind the bytes is missing.
    if constexpr (n > 32) {
        static_assert(n == 36 || n == 40);
        const __m128i rest = n == 36 ? _mm_loadu_si32(p + 32) : _mm_loadl_epi64((const __m128i*)(p + 32));
        return (u8v)_mm512_inserti64x4(_mm512_zextsi256_si512(_mm256_loadu_si256((const __m256i*)p)),
                                       _mm256_zextsi128_si256(rest), 1);
    }
#endif
    u8v v = {};
    memcpy(&v, p, n);
    return v;
}

ODX_INLINE u8v distance(u8v a, u8v b)
{
    return max(a, b) - min(a, b);
}
// What 31 bits do not hold has the sign bit set.
ODX_INLINE s32v distance(s32v a, s32v b)
{
    const s32v high = max(a, b), low = a ^ b ^ high, d = (s32v)((u32v)high - (u32v)low);
    return (d | d >> 31) & INT32_MAX;
}
ODX_INLINE f32v distance(f32v a, f32v b)
{
    return (f32v)((u32v)(a - b) & INT32_MAX);
}

ODX_INLINE u32v addProducts(u32v sum, u8v a, u8v b)
{
    const u16p p = split(a), q = split(b);
    return sum + (u32v)ODX_MM(madd_epi16)((ODX_MI)p.a, (ODX_MI)q.a) +
           (u32v)ODX_MM(madd_epi16)((ODX_MI)p.b, (ODX_MI)q.b);
}
ODX_INLINE u32v addProducts(u32v sum, s8v a, s8v b)
{
#if ODX_VECTOR_BYTES == 64 && !defined(ODX_EMULATE_AVX512)
    // a + 128 is a byte; 128 * b is taken away as 128 * (-1 - b) and 4 * 128.
    const __m512i byte = _mm512_set1_epi8((char)0x80), less = _mm512_set1_epi32(4 * 128);
    return (u32v)_mm512_dpbusd_epi32((__m512i)sum, (__m512i)a ^ byte, (__m512i)b) +
           (u32v)_mm512_dpbusd_epi32(less, byte, ~(__m512i)b);
#else
    const auto even = [](s8v v) { return (ODX_MI)((s16v)((u16v)v << 8) >> 8); };
    const auto odd = [](s8v v) { return (ODX_MI)((s16v)v >> 8); };
    return sum + (u32v)ODX_MM(madd_epi16)(even(a), even(b)) + (u32v)ODX_MM(madd_epi16)(odd(a), odd(b));
#endif
}

ODX_INLINE u32v addBytes(u32v sum, u8v v)
{
    return sum + (u32v)ODX_MM(sad_epu8)((ODX_MI)v, ODX_MI{});
}
ODX_INLINE u32v addWords(u32v sum, u16v v)
{
    return sum + (u32v)ODX_MM(madd_epi16)((ODX_MI)v, ODX_MM(set1_epi16)(1));
}
ODX_INLINE u32v addDifferences(u32v sum, u8v a, u8v b)
{
    return sum + (u32v)ODX_MM(sad_epu8)((ODX_MI)a, (ODX_MI)b);
}

// The sums of the lanes of four vectors, each in a lane of its own.
ODX_INLINE __m128i sums4(u32v a, u32v b, u32v c, u32v d)
{
    const auto low = [](u32v v, u32v w) { return (u32v)ODX_MM(unpacklo_epi32)((ODX_MI)v, (ODX_MI)w); };
    const auto high = [](u32v v, u32v w) { return (u32v)ODX_MM(unpackhi_epi32)((ODX_MI)v, (ODX_MI)w); };
    const u32v ab = low(a, b) + high(a, b), cd = low(c, d) + high(c, d);
    const u32v abcd = (u32v)ODX_MM(unpacklo_epi64)((ODX_MI)ab, (ODX_MI)cd) +
                      (u32v)ODX_MM(unpackhi_epi64)((ODX_MI)ab, (ODX_MI)cd);
#if ODX_VECTOR_BYTES == 64
    const __m256i half =
        _mm256_add_epi32(_mm512_castsi512_si256((__m512i)abcd), _mm512_extracti64x4_epi64((__m512i)abcd, 1));
#else
    const __m256i half = (__m256i)abcd;
#endif
    return _mm_add_epi32(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
}
ODX_INLINE void storeSums(uint32_t* p, u32v a, u32v b, u32v c, u32v d)
{
    _mm_storeu_si128((__m128i*)p, sums4(a, b, c, d));
}

ODX_INLINE uint32_t sumOfLanes(u32v v)
{
#if ODX_VECTOR_BYTES == 64
    const __m256i half =
        _mm256_add_epi32(_mm512_castsi512_si256((__m512i)v), _mm512_extracti64x4_epi64((__m512i)v, 1));
#else
    const __m256i half = (__m256i)v;
#endif
    __m128i all = _mm_add_epi32(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
    all = _mm_add_epi32(all, _mm_shuffle_epi32(all, 0x4E));
    all = _mm_add_epi32(all, _mm_shuffle_epi32(all, 0xB1));
    return (uint32_t)_mm_cvtsi128_si32(all);
}

template <uint32_t n>
ODX_INLINE u32v addPartProducts(u32v sum, const uint8_t* p, const uint8_t* q)
{
    return addProducts(sum, loadPart<n>(p), loadPart<n>(q));
}
template <uint32_t n>
ODX_INLINE u32v addPartProducts(u32v sum, const int8_t* p, const int8_t* q)
{
    return addProducts(sum, (s8v)loadPart<n>((const uint8_t*)p), (s8v)loadPart<n>((const uint8_t*)q));
}

constexpr uint32_t kPatchPlaces = kBytes / 2;
typedef u16v PlaceSums;
ODX_INLINE void storePlaces(uint16_t* p, PlaceSums sum)
{
    store(p, sum);
}
// A group of 16 bytes has what eight neighbouring sums of eight differences need.
ODX_INLINE u16v addDifferencesOf8(u16v sum, const uint8_t* p, const uint8_t* q)
{
    uint64_t eight;
    memcpy(&eight, q, sizeof eight);
#if ODX_VECTOR_BYTES == 64
    // An instruction takes bytes 0 to 3 and 4 to 7 of each eight, and compares them at the offsets 0 and 1, and 2
    // and 3, of the words 0 and 1, and 1 and 2, that its last argument selects.
    const __m512i bytes =
        _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 1, 1, 2, 2, 3, 3, 4), (__m512i)loadPart<40>(p));
    const __m512i first = _mm512_set1_epi32((int)(uint32_t)eight),
                  second = _mm512_set1_epi32((int)(uint32_t)(eight >> 32));
    return sum + (u16v)_mm512_dbsad_epu8(first, bytes, 0x94) + (u16v)_mm512_dbsad_epu8(second, bytes, 0xE9);
#else
    const __m256i bytes = (__m256i)loadHalves(p, p + 8), both = _mm256_set1_epi64x((long long)eight);
    return sum + (u16v)_mm256_mpsadbw_epu8(bytes, both, 0x00) + (u16v)_mm256_mpsadbw_epu8(bytes, both, 0x2D);
#endif
}

} // namespace odx::ODX_TARGET::simd

#endif
