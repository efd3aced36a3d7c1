// How the arguments of convolutions travel.
#ifndef ODX_DSP_ONDRIX_CONV_X_H
#define ODX_DSP_ONDRIX_CONV_X_H

#include "dsp/shapes.h"
#include "ondrix/convolution.h"

namespace odx::remoting
{

template <uint32_t K>
inline constexpr auto separableKxK = [](const int16_t* kernelX, const int16_t* kernelY, auto... images) {
    return arguments(list(kernelX, K), list(kernelY, K)) + image(images...);
};
inline constexpr auto separableNxN = [](const int16_t* kernelX, const int16_t* kernelY, uint32_t n,
                                        auto... images) {
    return arguments(list(kernelX, n), list(kernelY, n), n) + image(images...);
};

// Operations with a status leave by the limits of their entry points.
inline bool worthConvolving(const void* src, uint32_t width, uint32_t height, uint32_t srcStride, const void* dst,
                            uint32_t dstStride)
{
    return worthSending(width, height) && multiplesOf(8, src, srcStride, dst, dstStride);
}
inline constexpr auto convolution = [](const int16_t* kernel, uint32_t m, uint32_t n, uint32_t shift,
                                       const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                       auto* dst, uint32_t dstStride, odxBorderType type, uint32_t value) {
    return limit(worthConvolving(src, width, height, srcStride, dst, dstStride),
                 arguments(list(kernel, product(m, n)), m, n, shift) +
                     image(src, width, height, srcStride, dst, dstStride, type, value));
};
inline constexpr auto separableMxN = [](const int16_t* kernelX, uint32_t m, const int16_t* kernelY, uint32_t n,
                                        uint32_t shift, const uint8_t* src, uint32_t width, uint32_t height,
                                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride, odxBorderType type,
                                        uint32_t value) {
    return limit(worthConvolving(src, width, height, srcStride, dst, dstStride),
                 arguments(list(kernelX, m), m, list(kernelY, n), n, shift) +
                     image(src, width, height, srcStride, dst, dstStride, type, value));
};

// A 16-bit image into another one of fewer pixels.
inline constexpr auto inside = [](const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                  int16_t* dst, uint32_t dstWidth, uint32_t dstHeight, uint32_t dstStride) {
    const Stride from = strideOf(src, srcStride, width), to = strideOf(dst, dstStride, dstWidth);
    return arguments(rows(src, from, height), width, height, from, rows(dst, to, dstHeight), to);
};
// Of symmetric kernels the first half is given.
inline uint32_t given(uint32_t size, odxKernelSymmetry symmetry)
{
    return symmetry == ONDRIX_KERNEL_GENERAL ? size : size / 2 + (symmetry == ONDRIX_KERNEL_SYMMETRIC ? 1 : 0);
}
inline constexpr auto symmetricMxN = [](const int16_t* kernelX, uint32_t m, odxKernelSymmetry symmetryX,
                                        const int16_t* kernelY, uint32_t n, odxKernelSymmetry symmetryY,
                                        uint32_t shift, const int16_t* src, uint32_t width, uint32_t height,
                                        uint32_t srcStride, int16_t* dst, uint32_t dstStride,
                                        odxFilterRegion region, odxBorderType type, uint32_t value) {
    const bool same = region == ONDRIX_FILTER_SAME;
    return limit(worthConvolving(src, width, height, srcStride, dst, dstStride),
                 arguments(list(kernelX, given(m, symmetryX)), m, symmetryX, list(kernelY, given(n, symmetryY)), n,
                           symmetryY, shift) +
                     inside(src, width, height, srcStride, dst, same ? width : width - m + 1,
                            same ? height : height - n + 1, dstStride) +
                     arguments(region, type, value));
};
inline constexpr auto validMxN = [](const int16_t* kernel, uint32_t m, uint32_t n, uint32_t shift,
                                    const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                    int16_t* dst, uint32_t dstStride) {
    return arguments(list(kernel, product(m, n)), m, n, shift) +
           inside(src, width, height, srcStride, dst, width - m + 1, height - n + 1, dstStride);
};

} // namespace odx::remoting

#endif
