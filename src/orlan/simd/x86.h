// The backend of AVX2 (32 bytes) and AVX-512 with BW and VL (64 bytes): the same instructions at two widths.
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

template <int a, int b>
ODX_INLINE u16p dot2(const uint8_t* p)
{
    static_assert(a >= 0 && a <= 127 && b >= 0 && b <= 127 && 255 * (a + b) <= 32767);
    const ODX_MI weights = ODX_MM(set1_epi16)(a | b << 8);
    return {(u16v)ODX_MM(maddubs_epi16)((ODX_MI)load<u8v>(p), weights),
            (u16v)ODX_MM(maddubs_epi16)((ODX_MI)load<u8v>(p + 1), weights)};
}

template <int a, int b>
ODX_INLINE s32p dot2(const int16_t* p)
{
    const ODX_MI weights = ODX_MM(set1_epi32)((a & 0xFFFF) | b << 16);
    return {(s32v)ODX_MM(madd_epi16)((ODX_MI)load<s16v>(p), weights),
            (s32v)ODX_MM(madd_epi16)((ODX_MI)load<s16v>(p + 1), weights)};
}

ODX_INLINE u16v mulHigh(u16v v, uint16_t k)
{
    return (u16v)ODX_MM(mulhi_epu16)((ODX_MI)v, ODX_MM(set1_epi16)((short)k));
}
ODX_INLINE u16v mulRound(u16v v, int16_t k)
{
    return (u16v)ODX_MM(mulhrs_epi16)((ODX_MI)v, ODX_MM(set1_epi16)(k));
}

ODX_INLINE u8v popCount(u8v v)
{
    const __m128i nibbles = _mm_setr_epi8(0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4);
#if ODX_VECTOR_BYTES == 64
    const ODX_MI table = _mm512_broadcast_i32x4(nibbles);
#else
    const ODX_MI table = _mm256_broadcastsi128_si256(nibbles);
#endif
    const u8v low = v & 15, high = v >> 4;
    return (u8v)ODX_MM(shuffle_epi8)(table, (ODX_MI)low) + (u8v)ODX_MM(shuffle_epi8)(table, (ODX_MI)high);
}

} // namespace odx::ODX_TARGET::simd

#endif
