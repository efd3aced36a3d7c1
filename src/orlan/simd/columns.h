// Elements of a row that become a column. Strides may be negative.
//
//   kStoresColumns                whether there are instructions for it; without them there are none of these:
//   storeWordColumns(p, stride, q, qStride)
//                                 four rows of four 32-bit words from p on, transposed to q
//   storeTripleColumn(p, q, stride)
//                                 kBytes pixels of 3 bytes, each to a row of its own
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
ODX_INLINE uint8_t* storeTripleLanes(uint8_t* q, ptrdiff_t stride, const uint8x8x3_t& pixels)
{
    vst3_lane_u8(q, pixels, lane);
    if constexpr (lane < 7) return storeTripleLanes<lane + 1>(q + stride, stride, pixels);
    return q + stride;
}
ODX_INLINE void storeTripleColumn(const uint8_t* p, uint8_t* q, ptrdiff_t stride)
{
    storeTripleLanes<0>(storeTripleLanes<0>(q, stride, vld3_u8(p)), stride, vld3_u8(p + 24));
}
#else
constexpr bool kStoresColumns = false;

ODX_INLINE void storeWordColumns(const uint8_t*, ptrdiff_t, uint8_t*, ptrdiff_t) {}
ODX_INLINE void storeTripleColumn(const uint8_t*, uint8_t*, ptrdiff_t) {}
#endif

} // namespace odx::ODX_TARGET::simd

#endif
