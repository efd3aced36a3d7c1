// How the arguments of the smoothing filters travel.
#ifndef ODX_DSP_ONDRIX_BLUR_X_H
#define ODX_DSP_ONDRIX_BLUR_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

inline constexpr auto boxNxN = [](const float* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                  uint32_t n, float* dst, uint32_t dstStride) {
    return imageAround(src, width, height, srcStride, dst, dstStride, n);
};
inline constexpr auto medianMxN = [](const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                     uint32_t m, uint32_t n, int16_t* dst, uint32_t dstStride) {
    return limit(worthSending(width, height), imageAround(src, width, height, srcStride, dst, dstStride, m, n));
};

// Filters with a border and with limits of its own.
inline constexpr auto gaussian3x3 = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                       uint8_t* dst, uint32_t dstStride, auto... border) {
    return limit(worthSending(width, height) && height >= 3 && width >= 4 &&
                     multiplesOf(4, src, width, srcStride, dst, dstStride),
                 image(src, width, height, srcStride, dst, dstStride, border...));
};
inline constexpr auto median3x3 = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride, auto... border) {
    return limit(worthSending(width, height) && height >= 4 &&
                     multiplesOf(8, src, width, srcStride, dst, dstStride),
                 image(src, width, height, srcStride, dst, dstStride, border...));
};

} // namespace odx::remoting

#endif
