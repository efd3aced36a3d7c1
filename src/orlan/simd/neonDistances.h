// Products and distances of bytes, summed over vectors.
#ifndef ODX_ORLAN_SIMD_NEON_DISTANCES_H
#define ODX_ORLAN_SIMD_NEON_DISTANCES_H

namespace odx::ODX_TARGET::simd
{

template <uint32_t n>
ODX_INLINE u8v loadPart(const uint8_t* p)
{
    static_assert(n == 4 || n == 8);
    if constexpr (n == 8) return (u8v)vcombine_u8(vld1_u8(p), vdup_n_u8(0));
    uint32_t word;
    memcpy(&word, p, sizeof word);
    return (u8v)vsetq_lane_u32(word, vdupq_n_u32(0), 0);
}

ODX_INLINE u8v distance(u8v a, u8v b)
{
    return (u8v)vabdq_u8((uint8x16_t)a, (uint8x16_t)b);
}
ODX_INLINE s32v distance(s32v a, s32v b)
{
    return (s32v)vminq_u32((uint32x4_t)vabdq_s32((int32x4_t)a, (int32x4_t)b), vdupq_n_u32(INT32_MAX));
}
ODX_INLINE f32v distance(f32v a, f32v b)
{
    return (f32v)vabdq_f32((float32x4_t)a, (float32x4_t)b);
}

ODX_INLINE u32v addProducts(u32v sum, u8v a, u8v b)
{
    const uint8x16_t m = (uint8x16_t)a, n = (uint8x16_t)b;
    return (u32v)vpadalq_u16(vpadalq_u16((uint32x4_t)sum, vmull_u8(vget_low_u8(m), vget_low_u8(n))),
                             vmull_u8(vget_high_u8(m), vget_high_u8(n)));
}
ODX_INLINE u32v addProducts(u32v sum, s8v a, s8v b)
{
    const int8x16_t m = (int8x16_t)a, n = (int8x16_t)b;
    return (u32v)vpadalq_s16(vpadalq_s16((int32x4_t)sum, vmull_s8(vget_low_s8(m), vget_low_s8(n))),
                             vmull_s8(vget_high_s8(m), vget_high_s8(n)));
}

// Four bytes of `q` stand twice: there is nothing beside the second ones.
template <uint32_t n>
ODX_INLINE uint8x8_t loadHalf(const void* p)
{
    static_assert(n == 4 || n == 8);
    uint64_t bytes = 0;
    memcpy(&bytes, p, n);
    return vcreate_u8(bytes);
}
template <uint32_t n>
ODX_INLINE uint8x8_t loadHalfFreely(const void* q)
{
    if constexpr (n == 8) return loadHalf<n>(q);
    uint32_t word;
    memcpy(&word, q, sizeof word);
    return vreinterpret_u8_u32(vdup_n_u32(word));
}
template <uint32_t n>
ODX_INLINE u32v addPartProducts(u32v sum, const uint8_t* p, const uint8_t* q)
{
    return (u32v)vpadalq_u16((uint32x4_t)sum, vmull_u8(loadHalf<n>(p), loadHalfFreely<n>(q)));
}
template <uint32_t n>
ODX_INLINE u32v addPartProducts(u32v sum, const int8_t* p, const int8_t* q)
{
    return (u32v)vpadalq_s16((int32x4_t)sum, vmull_s8((int8x8_t)loadHalf<n>(p), (int8x8_t)loadHalfFreely<n>(q)));
}

ODX_INLINE u32v addBytes(u32v sum, u8v v)
{
    return (u32v)vpadalq_u16((uint32x4_t)sum, vpaddlq_u8((uint8x16_t)v));
}
ODX_INLINE u32v addWords(u32v sum, u16v v)
{
    return (u32v)vpadalq_u16((uint32x4_t)sum, (uint16x8_t)v);
}
ODX_INLINE u32v addDifferences(u32v sum, u8v a, u8v b)
{
    return addBytes(sum, (u8v)vabdq_u8((uint8x16_t)a, (uint8x16_t)b));
}

ODX_INLINE uint32x2_t halfSum(u32v v)
{
    return vadd_u32(vget_low_u32((uint32x4_t)v), vget_high_u32((uint32x4_t)v));
}
ODX_INLINE void storeSums(uint32_t* p, u32v a, u32v b, u32v c, u32v d)
{
#if defined(__aarch64__)
    vst1q_u32(p, vpaddq_u32(vpaddq_u32((uint32x4_t)a, (uint32x4_t)b), vpaddq_u32((uint32x4_t)c, (uint32x4_t)d)));
#else
    vst1q_u32(p, vcombine_u32(vpadd_u32(halfSum(a), halfSum(b)), vpadd_u32(halfSum(c), halfSum(d))));
#endif
}
ODX_INLINE uint32_t sumOfLanes(u32v v)
{
#if defined(__aarch64__)
    return vaddvq_u32((uint32x4_t)v);
#else
    const uint32x2_t half = halfSum(v);
    return vget_lane_u32(vpadd_u32(half, half), 0);
#endif
}

#define ODX_SIMD_ROWS
#if defined(__aarch64__)
constexpr uint32_t kRowsAtOnce = 4;
#else
constexpr uint32_t kRowsAtOnce = 1;
#endif
template <uint32_t n>
ODX_INLINE u16v addRowDistances(u16v sum, const uint8_t* p, const uint8_t* q)
{
    if constexpr (n == 16) return addDistances(sum, load<u8v>(p), load<u8v>(q));
    static_assert(n == 8 || n == 16);
    return (u16v)vabal_u8((uint16x8_t)sum, vld1_u8(p), vld1_u8(q));
}
// The last three of eleven bytes end another eight.
template <uint32_t n>
ODX_INLINE u32v addRowProducts(u32v sum, const uint8_t* p, const uint8_t* q)
{
    static_assert(n == 8 || n == 11);
    sum = addPartProducts<8>(sum, p, q);
    if constexpr (n == 8) return sum;
    const uint8x8_t last = vand_u8(vld1_u8(p + 3), vcreate_u8(~uint64_t{0} << 40));
    return (u32v)vpadalq_u16((uint32x4_t)sum, vmull_u8(last, vld1_u8(q + 3)));
}
ODX_INLINE uint32_t sumOfLanes(u16v v)
{
#if defined(__aarch64__)
    return vaddlvq_u16((uint16x8_t)v);
#else
    return sumOfLanes((u32v)vpaddlq_u16((uint16x8_t)v));
#endif
}

constexpr uint32_t kPatchPlaces = 16;
typedef u16p PlaceSums;
template <int k>
ODX_INLINE PlaceSums addDifferencesOf(const PlaceSums& sum, const uint8_t* p, uint8x8_t q)
{
    const uint8x16_t v = vld1q_u8(p + k);
    const uint8x8_t byte = vdup_lane_u8(q, k);
    const PlaceSums next = {(u16v)vabal_u8((uint16x8_t)sum.a, vget_low_u8(v), byte),
                            (u16v)vabal_u8((uint16x8_t)sum.b, vget_high_u8(v), byte)};
    if constexpr (k < 7) return addDifferencesOf<k + 1>(next, p, q);
    return next;
}
ODX_INLINE PlaceSums addDifferencesOf8(const PlaceSums& sum, const uint8_t* p, const uint8_t* q)
{
    return addDifferencesOf<0>(sum, p, vld1_u8(q));
}
ODX_INLINE void storePlaces(uint16_t* p, const PlaceSums& sum)
{
    store(p, sum.a);
    store(p + 8, sum.b);
}

} // namespace odx::ODX_TARGET::simd

#endif
