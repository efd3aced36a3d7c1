// What the conversions from RGB share between their reference and their SIMD column.
#ifndef ODX_CPU_ONDRIX_COLOR_FROM_RGB_H
#define ODX_CPU_ONDRIX_COLOR_FROM_RGB_H

#include "cpu/image.h"

namespace odx::color
{

// The weights of the channels in a sum.
struct Weights {
    int32_t red, green, blue;
};

// (sum + half) >> 16
constexpr Weights kGrey = {19595, 38469, 7471};

// (sum + half) >> 15
constexpr Weights kFineY = {9798, 19235, 3736};
constexpr Weights kFineCr = {16384, -13720, -2664};
constexpr Weights kFineCb = {-5529, -10855, 16384};

// Runs a conversion of rows, row(src, dst, width), over an image.
template <class Row>
[[gnu::always_inline]] static inline void eachRow(const uint8_t* src, uint32_t width, uint32_t height,
                                                  uint32_t srcStride, uint8_t* dst, uint32_t dstStride, Row row)
{
    for (size_t y = 0; y < height; ++y)
        row(rowOf(src, srcStride, y), rowOf(dst, dstStride, y), size_t{width});
}

} // namespace odx::color

#endif
