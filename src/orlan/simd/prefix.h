// What running sums ask of the vector layer besides the rest of it:
//
//   runningSums(v)       of each lane and all before it, of u16v and u32v, modulo 2^16 and 2^32
//   lastLane(v)          the last lane of a u32v in every lane
//   widenInOrder(v)      the lanes of a u16v as 32 bits, in order
//   storeAdded(p, q, v)  q[i] + v[i] of a u32v, in 32 or 64 bits
#ifndef ODX_ORLAN_SIMD_PREFIX_H
#define ODX_ORLAN_SIMD_PREFIX_H

#include "orlan/simd/simd.h"

namespace odx::ODX_TARGET::simd
{

ODX_INLINE void storeAdded(uint32_t* p, const uint32_t* q, u32v v)
{
    store(p, load<u32v>(q) + v);
}

#if defined(__AVX2__)

// The lanes of each 16 bytes moved up by n bytes, above zeros.
template <int n, class V>
ODX_INLINE V movedUp(V v)
{
    return (V)ODX_MM(alignr_epi8)((ODX_MI)v, ODX_MI{}, 16 - n);
}

// The last lane of each 16 bytes, in each of its lanes.
ODX_INLINE u16v lastOfSixteen(u16v v)
{
    return (u16v)ODX_MM(shuffle_epi8)(
        (ODX_MI)v, inEachLane(_mm_setr_epi8(14, 15, 14, 15, 14, 15, 14, 15, 14, 15, 14, 15, 14, 15, 14, 15)));
}
ODX_INLINE u32v lastOfSixteen(u32v v)
{
    return (u32v)ODX_MM(unpackhi_epi64)(ODX_MM(unpackhi_epi32)((ODX_MI)v, (ODX_MI)v),
                                        ODX_MM(unpackhi_epi32)((ODX_MI)v, (ODX_MI)v));
}

// Running sums of each 16 bytes become those of the whole vector.
template <class V>
ODX_INLINE V addSixteensBefore(V v)
{
    const V last = lastOfSixteen(v);
#if ODX_VECTOR_BYTES == 64
    const __m512i one =
        _mm512_permutex2var_epi64((__m512i)last, _mm512_setr_epi64(8, 9, 0, 1, 2, 3, 4, 5), __m512i{});
    const V two = last + (V)one;
    return v + (V)one + (V)_mm512_shuffle_i32x4(__m512i{}, (__m512i)two, 0x44);
#else
    return v + (V)_mm256_permute2x128_si256((__m256i)last, (__m256i)last, 0x08);
#endif
}

ODX_INLINE u16v runningSums(u16v v)
{
    v += movedUp<2>(v);
    v += movedUp<4>(v);
    v += movedUp<8>(v);
    return addSixteensBefore(v);
}
ODX_INLINE u32v runningSums(u32v v)
{
    v += movedUp<4>(v);
    v += movedUp<8>(v);
    return addSixteensBefore(v);
}

ODX_INLINE u32v lastLane(u32v v)
{
#if ODX_VECTOR_BYTES == 64
    return (u32v)_mm512_permutexvar_epi32(_mm512_set1_epi32(15), (__m512i)v);
#else
    return (u32v)_mm256_permutevar8x32_epi32((__m256i)v, _mm256_set1_epi32(7));
#endif
}

// Eight bytes of the lower half and eight of the upper one in turn, so that unpacking keeps the order.
ODX_INLINE ODX_MI halvesInTurn(ODX_MI v)
{
#if ODX_VECTOR_BYTES == 64
    return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), v);
#else
    return _mm256_permute4x64_epi64(v, 0xD8);
#endif
}
ODX_INLINE u32p widenInOrder(u16v v)
{
    const ODX_MI turned = halvesInTurn((ODX_MI)v);
    return {(u32v)ODX_MM(unpacklo_epi16)(turned, ODX_MI{}), (u32v)ODX_MM(unpackhi_epi16)(turned, ODX_MI{})};
}
ODX_INLINE void storeAdded(uint64_t* p, const uint64_t* q, u32v v)
{
    typedef uint64_t u64v ODX_VECTOR;
    const ODX_MI turned = halvesInTurn((ODX_MI)v);
    store(p, load<u64v>(q) + (u64v)ODX_MM(unpacklo_epi32)(turned, ODX_MI{}));
    store(p + kBytes / 8, load<u64v>(q + kBytes / 8) + (u64v)ODX_MM(unpackhi_epi32)(turned, ODX_MI{}));
}

#elif defined(__ARM_NEON)

ODX_INLINE u16v runningSums(u16v v)
{
    const auto add = [](uint16x8_t n, uint16x8_t up) { return vaddq_u16(n, up); };
    const uint16x8_t zero = vdupq_n_u16(0);
    uint16x8_t n = (uint16x8_t)v;
    n = add(n, vextq_u16(zero, n, 7));
    n = add(n, vextq_u16(zero, n, 6));
    return (u16v)add(n, vextq_u16(zero, n, 4));
}
ODX_INLINE u32v runningSums(u32v v)
{
    const uint32x4_t zero = vdupq_n_u32(0);
    uint32x4_t n = (uint32x4_t)v;
    n = vaddq_u32(n, vextq_u32(zero, n, 3));
    return (u32v)vaddq_u32(n, vextq_u32(zero, n, 2));
}

ODX_INLINE u32v lastLane(u32v v)
{
    return (u32v)vdupq_lane_u32(vget_high_u32((uint32x4_t)v), 1);
}

ODX_INLINE u32p widenInOrder(u16v v)
{
    const uint16x8_t n = (uint16x8_t)v;
    return {(u32v)vmovl_u16(vget_low_u16(n)), (u32v)vmovl_u16(vget_high_u16(n))};
}
ODX_INLINE void storeAdded(uint64_t* p, const uint64_t* q, u32v v)
{
    const uint32x4_t n = (uint32x4_t)v;
    vst1q_u64(p, vaddw_u32(vld1q_u64(q), vget_low_u32(n)));
    vst1q_u64(p + 2, vaddw_u32(vld1q_u64(q + 2), vget_high_u32(n)));
}

#endif

} // namespace odx::ODX_TARGET::simd

#endif
