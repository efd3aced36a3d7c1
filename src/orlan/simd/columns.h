// Elements of a row that become a column. Strides may be negative.
//
//   kStoresColumns                whether there are instructions for it; without them there are none of these:
//   storeWordColumns(p, stride, q, qStride)
//                                 four rows of four 32-bit words from p on, transposed to q
//   storeTripleColumns(p, stride, q, qStride)
//                                 two rows of kBytes pixels of 3 bytes
#ifndef ODX_ORLAN_SIMD_COLUMNS_H
#define ODX_ORLAN_SIMD_COLUMNS_H

#include "orlan/simd/simd.h"

namespace odx::ODX_TARGET::simd
{

#if defined(__ARM_NEON)
constexpr bool kStoresColumns = true;

template <int lane>
ODX_INLINE void storeWordLanes(uint8_t* q, ptrdiff_t stride, const uint32x4x4_t& rows)
{
    vst4q_lane_u32((uint32_t*)q, rows, lane);
    if constexpr (lane < 3) storeWordLanes<lane + 1>(q + stride, stride, rows);
}
ODX_INLINE void storeWordColumns(const uint8_t* p, ptrdiff_t pStride, uint8_t* q, ptrdiff_t qStride)
{
    uint32x4x4_t rows;
    rows.val[0] = (uint32x4_t)load<u8v>(p);
    rows.val[1] = (uint32x4_t)load<u8v>(p += pStride);
    rows.val[2] = (uint32x4_t)load<u8v>(p += pStride);
    rows.val[3] = (uint32x4_t)load<u8v>(p += pStride);
    storeWordLanes<0>(q, qStride, rows);
}

template <int lane>
ODX_INLINE void storeTripleLanes(uint8_t* q, ptrdiff_t stride, const uint8x8x3_t& a, const uint8x8x3_t& b)
{
    vst3_lane_u8(q, a, lane);
    vst3_lane_u8(q + 3, b, lane);
    if constexpr (lane < 7) storeTripleLanes<lane + 1>(q + stride, stride, a, b);
}
ODX_INLINE void storeTripleColumns(const uint8_t* p, ptrdiff_t pStride, uint8_t* q, ptrdiff_t qStride)
{
    const uint8_t* const next = p + pStride;
    storeTripleLanes<0>(q, qStride, vld3_u8(p), vld3_u8(next));
    storeTripleLanes<0>(q + 8 * qStride, qStride, vld3_u8(p + 24), vld3_u8(next + 24));
}
#else
constexpr bool kStoresColumns = false;

ODX_INLINE void storeWordColumns(const uint8_t*, ptrdiff_t, uint8_t*, ptrdiff_t) {}
ODX_INLINE void storeTripleColumns(const uint8_t*, ptrdiff_t, uint8_t*, ptrdiff_t) {}
#endif

} // namespace odx::ODX_TARGET::simd

#endif
