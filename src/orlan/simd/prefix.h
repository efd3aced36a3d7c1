// What running sums ask of the vector layer besides the rest of it:
//
//   SumsBefore(sum)      runs along bytes: each next(p) gives, for kBytes / 2 of them, in order, as 32 bits,
//                        `sum` and all bytes before, modulo 2^32. Bytes follow each other from call to call; it
//                        reads kBefore bytes in front of p, which are 0 the first time; nextTwo(p) gives two of
//                        these
//   SquareSums(sum)      the same with the squares of these bytes, each included, and without bytes in front
//   runningSums(v)       of a u32v: of each lane and all before it
//   widenInOrder(v)      the lanes of a u16v as 32 bits, in order
//   storeAdded(p, q, v)  q[i] + v[i] of a u32v or a u32p in order, in 32 or 64 bits
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

// In every lane.
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

    ODX_MEMBER Pair<u32p> nextTwo(const uint8_t* p)
    {
        const u32p first = next(p);
        return {first, next(p + kBytes / 2)};
    }

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

class SquareSums
{
public:
    ODX_MEMBER explicit SquareSums(uint32_t sum) : before_(u32v{} + sum) {}
    ODX_MEMBER u32p next(const uint8_t* p)
    {
        const u16v bytes = loadWiden(p);
        const u32p squares = widenInOrder(bytes * bytes);
        const u32v first = runningSums(squares.a), second = runningSums(squares.b) + lastLane(first);
        const u32p sums = {first + before_, second + before_};
        before_ += lastLane(second);
        return sums;
    }

private:
    u32v before_;
};

#elif defined(__ARM_NEON)

// The sum before a byte is the one before the byte four earlier, and the four in between.
class SumsBefore
{
public:
    static constexpr uint32_t kBefore = 8;

    ODX_MEMBER explicit SumsBefore(uint32_t sum) : sums_(vdupq_n_u32(sum)) {}
    ODX_MEMBER u32p next(const uint8_t* p) { return add(vaddl_u8(vld1_u8(p - 1), vld1_u8(p - 2))); }
    ODX_MEMBER Pair<u32p> nextTwo(const uint8_t* p)
    {
        const uint8x16_t one = vld1q_u8(p - 1), other = vld1q_u8(p - 2);
        const u32p low = add(vaddl_u8(vget_low_u8(one), vget_low_u8(other)));
        return {low, add(vaddl_u8(vget_high_u8(one), vget_high_u8(other)))};
    }

private:
    // Pairs of bytes become fours, and these sums.
    ODX_MEMBER u32p add(uint16x8_t two)
    {
        const uint16x8_t four = vaddq_u16(two, vextq_u16(two_, two, 6));
        two_ = two;
        const uint32x4_t first = vaddw_u16(sums_, vget_low_u16(four));
        sums_ = vaddw_u16(first, vget_high_u16(four));
        return {(u32v)first, (u32v)sums_};
    }
    uint16x8_t two_ = vdupq_n_u16(0);
    uint32x4_t sums_;
};

// The sum up to a square is the one four squares earlier, and those four.
class SquareSums
{
public:
    ODX_MEMBER explicit SquareSums(uint32_t sum) : sums_(vdupq_n_u32(sum)) {}
    ODX_MEMBER u32p next(const uint8_t* p)
    {
        const uint8x8_t bytes = vld1_u8(p);
        const uint16x8_t one = vmull_u8(bytes, bytes), other = vextq_u16(one_, one, 7);
        const uint32x4_t low = vaddl_u16(vget_low_u16(one), vget_low_u16(other)),
                         high = vaddl_u16(vget_high_u16(one), vget_high_u16(other));
        const uint32x4_t first = vaddq_u32(vaddq_u32(low, vextq_u32(two_, low, 2)), sums_);
        sums_ = vaddq_u32(vaddq_u32(high, vextq_u32(low, high, 2)), first);
        one_ = one;
        two_ = high;
        return {(u32v)first, (u32v)sums_};
    }

private:
    uint16x8_t one_ = vdupq_n_u16(0);
    uint32x4_t two_ = vdupq_n_u32(0), sums_;
};

ODX_INLINE u32v runningSums(u32v v)
{
    const uint32x4_t zero = vdupq_n_u32(0), n = (uint32x4_t)v, two = vaddq_u32(n, vextq_u32(zero, n, 3));
    return (u32v)vaddq_u32(two, vextq_u32(zero, two, 2));
}

ODX_INLINE u32p widenInOrder(u16v v)
{
    const uint16x8_t n = (uint16x8_t)v;
    return {(u32v)vmovl_u16(vget_low_u16(n)), (u32v)vmovl_u16(vget_high_u16(n))};
}
ODX_INLINE void storeAdded(uint64_t* p, const uint64_t* q, u32v v)
{
    const uint32x4_t n = (uint32x4_t)v;
    const uint64x2_t low = vaddw_u32(vld1q_u64(q), vget_low_u32(n)),
                     high = vaddw_u32(vld1q_u64(q + 2), vget_high_u32(n));
    vst1q_u64(p, low);
    vst1q_u64(p + 2, high);
}

#endif

// Loads come first: pairs of them are one instruction then, though the addresses may be those of the stores.
ODX_INLINE void storeAdded(uint32_t* p, const uint32_t* q, const u32p& v)
{
    constexpr uint32_t kLanes = kBytes / 4;
    const u32v a = load<u32v>(q) + v.a, b = load<u32v>(q + kLanes) + v.b;
    store(p, a);
    store(p + kLanes, b);
}
ODX_INLINE void storeAdded(uint64_t* p, const uint64_t* q, const u32p& v)
{
    constexpr uint32_t kLanes = kBytes / 4;
    storeAdded(p, q, v.a);
    storeAdded(p + kLanes, q + kLanes, v.b);
}

} // namespace odx::ODX_TARGET::simd

#endif
