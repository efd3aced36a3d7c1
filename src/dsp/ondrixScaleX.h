// How the arguments of scaling travel.
#ifndef ODX_DSP_ONDRIX_SCALE_X_H
#define ODX_DSP_ONDRIX_SCALE_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

// An image, and outputs of another size.
inline auto scaled(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
                   uint32_t dstStride, uint64_t outputs, uint64_t outputRows)
{
    const Stride from = stride(srcStride, width), to = stride(dstStride, outputs);
    return arguments(rows(src, from, height), width, height, from, rows(dst, to, outputRows), to);
}

template <uint32_t k>
inline constexpr auto blocks =
    [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst, uint32_t dstStride) {
        return scaled(src, width, height, srcStride, dst, dstStride, width / k, height / k);
    };
inline constexpr auto threeToTwo = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                      uint8_t* dst, uint32_t dstStride) {
    return scaled(src, width, height, srcStride, dst, dstStride, width / 3 * 2, height / 3 * 2);
};
inline constexpr auto halvedUp = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride) {
    return limit(worthSending(width, height),
                 scaled(src, width, height, srcStride, dst, dstStride, half(width), half(height)));
};
inline constexpr auto doubled = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride) {
    return scaled(src, width, height, srcStride, dst, dstStride, 2 * uint64_t{width}, 2 * uint64_t{height});
};

// Both sizes are given.
template <uint32_t channels>
inline constexpr auto resized = [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride,
                                   auto... numbers) {
    const Stride from = strideOf(src, srcStride, srcWidth, channels),
                 to = strideOf(dst, dstStride, dstWidth, channels);
    return arguments(rows(src, from, srcHeight), srcWidth, srcHeight, from, rows(dst, to, dstHeight), dstWidth,
                     dstHeight, to, numbers...);
};
inline constexpr auto resizedWithStatus = [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             auto... others) {
    return limit(worthSending(srcWidth, srcHeight), resized<1>(src, srcWidth, srcHeight, others...));
};

} // namespace odx::remoting

#endif
