// What running sums ask of the vector layer besides the rest of it:
//
//   SumsBefore(sum)      runs along bytes: each next(p) gives, for kBytes / 2 of them, in order, as 32 bits,
//                        `sum` and all bytes before, modulo 2^32. Bytes follow each other from call to call; it
//                        reads kBefore bytes in front of p, which are 0 the first time
//   runningSums(v)       of each lane and all before it, of a u32v, modulo 2^32
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
template <int n>
ODX_INLINE u32v movedUp(u32v v)
{
    return (u32v)ODX_MM(alignr_epi8)((ODX_MI)v, ODX_MI{}, 16 - n);
}

// The last lane of each 16 bytes, in each of its lanes.
ODX_INLINE u32v lastOfSixteen(u32v v)
{
    return (u32v)ODX_MM(unpackhi_epi64)(ODX_MM(unpackhi_epi32)((ODX_MI)v, (ODX_MI)v),
                                        ODX_MM(unpackhi_epi32)((ODX_MI)v, (ODX_MI)v));
}

ODX_INLINE u32v runningSums(u32v v)
{
    v += movedUp<4>(v);
    v += movedUp<8>(v);
    // Those of each 16 bytes become those of the whole vector.
    const u32v last = lastOfSixteen(v);
#if ODX_VECTOR_BYTES == 64
    const u32v one =
        (u32v)_mm512_permutex2var_epi64((__m512i)last, _mm512_setr_epi64(8, 9, 0, 1, 2, 3, 4, 5), __m512i{});
    return v + one + (u32v)_mm512_shuffle_i32x4(__m512i{}, (__m512i)(last + one), 0x44);
#else
    return v + (u32v)_mm256_permute2x128_si256((__m256i)last, (__m256i)last, 0x08);
#endif
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

// The sum before a byte is the one before the byte kBytes / 4 earlier, and the window of as many bytes in between.
class SumsBefore
{
public:
    ODX_MEMBER explicit SumsBefore(uint32_t sum) : sums_(u32v{} + sum) {}

#if ODX_VECTOR_BYTES == 64
    static constexpr uint32_t kBefore = 32;

    ODX_MEMBER u32p next(const uint8_t* p)
    {
        // Windows of 4, 8, and 16 bytes. Eight bytes have those for four places: in each 16 bytes of a vector
        // those for i to i + 3, and those for i + 16 to i + 19.
        const __m512i places = _mm512_setr_epi32(7, 8, 11, 12, 8, 9, 12, 13, 9, 10, 13, 14, 10, 11, 14, 15);
        const __m512i bytes = _mm512_permutexvar_epi32(places, load<__m512i>(p - 32));
        const u16v four = (u16v)_mm512_dbsad_epu8(__m512i{}, bytes, 0xE4);
        const u16v eight = four + earlier(four_, four, _mm512_setr_epi64(7, 14, 8, 9, 10, 11, 12, 13));
        const u16v windows = eight + earlier(eight_, eight, _mm512_setr_epi64(5, 12, 7, 14, 8, 9, 10, 11));
        four_ = four;
        eight_ = eight;
        return add((u32v)_mm512_unpacklo_epi16((__m512i)windows, __m512i{}),
                   (u32v)_mm512_unpackhi_epi16((__m512i)windows, __m512i{}));
    }
#else
    static constexpr uint32_t kBefore = 8;

    ODX_MEMBER u32p next(const uint8_t* p)
    {
        const __m256i bytes = (__m256i)loadHalves(p - 8, p);
        const u16v windows =
            (u16v)_mm256_mpsadbw_epu8(bytes, __m256i{}, 0x00) + (u16v)_mm256_mpsadbw_epu8(bytes, __m256i{}, 0x24);
        return add((u32v)_mm256_cvtepu16_epi32(_mm256_castsi256_si128((__m256i)windows)),
                   (u32v)_mm256_cvtepu16_epi32(_mm256_extracti128_si256((__m256i)windows, 1)));
    }
#endif

private:
    ODX_MEMBER u32p add(u32v first, u32v second)
    {
        const u32v before = sums_ + first;
        sums_ = before + second;
        return {before, sums_};
    }
#if ODX_VECTOR_BYTES == 64
    ODX_MEMBER static u16v earlier(u16v previous, u16v v, __m512i places)
    {
        return (u16v)_mm512_permutex2var_epi64((__m512i)previous, places, (__m512i)v);
    }
    u16v four_ = {}, eight_ = {};
#endif
    u32v sums_;
};

#elif defined(__ARM_NEON)

// The sum before a byte is the one before the byte four earlier, and the four in between.
class SumsBefore
{
public:
    static constexpr uint32_t kBefore = 8;

    ODX_MEMBER explicit SumsBefore(uint32_t sum) : sums_(vdupq_n_u32(sum)) {}
    ODX_MEMBER u32p next(const uint8_t* p)
    {
        const uint8x8_t bytes = vld1_u8(p - 1);
        const uint16x8_t two = vaddl_u8(bytes, vext_u8(bytes_, bytes, 7));
        const uint16x8_t four = vaddq_u16(two, vextq_u16(two_, two, 6));
        bytes_ = bytes;
        two_ = two;
        const uint32x4_t first = vaddw_u16(sums_, vget_low_u16(four));
        sums_ = vaddw_u16(first, vget_high_u16(four));
        return {(u32v)first, (u32v)sums_};
    }

private:
    uint8x8_t bytes_ = vdup_n_u8(0);
    uint16x8_t two_ = vdupq_n_u16(0);
    uint32x4_t sums_;
};

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
