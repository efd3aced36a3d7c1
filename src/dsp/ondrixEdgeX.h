// How the arguments of gradients and edges travel.
#ifndef ODX_DSP_ONDRIX_EDGE_X_H
#define ODX_DSP_ONDRIX_EDGE_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

// Interleaved results have no frame.
inline constexpr auto gradientPairs = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                         auto* gradients, uint32_t gradStride) {
    const uint32_t across = width < 3 ? 0 : width - 2, down = width < 3 || height < 3 ? 0 : height - 2;
    const Stride from = strideOf(src, srcStride, width), to = strideOf(gradients, gradStride, across, 2);
    return arguments(rows(src, from, height), width, height, from, rows(gradients, to, down), to);
};
inline constexpr auto gradientPlanes = [](const auto* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                          auto* dx, auto* dy, uint32_t dxyStride, auto... border) {
    const Stride from = strideOf(src, srcStride, width), to = strideOf(dx, dxyStride, width);
    return arguments(rows(src, from, height), width, height, from, rows(dx, to, height), rows(dy, to, height), to,
                     border...);
};
inline constexpr auto sobelWithBorder = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                           int16_t* dx, int16_t* dy, uint32_t dxyStride, odxBorderType type,
                                           uint32_t value) {
    return limit(worthSending(width, height) && multiplesOf(8, src, srcStride, dx, dy, dxyStride),
                 gradientPlanes(src, width, height, srcStride, dx, dy, dxyStride, type, value));
};

inline constexpr auto differenceEdges = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                           uint8_t* dst, uint32_t dstStride, int32_t low, int32_t high,
                                           auto... gradients) {
    const auto edges = image(src, width, height, srcStride, dst, dstStride, low, high);
    if constexpr (sizeof...(gradients) == 0) {
        return edges;
    } else {
        const auto more = [=](int16_t* gx, int16_t* gy, uint32_t gradStride) {
            const Stride to = strideOf(gx, gradStride, width);
            return arguments(rows(gx, to, height), rows(gy, to, height), to);
        };
        return edges + more(gradients...);
    }
};
inline constexpr auto canny = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                 uint32_t kernelSize, int32_t low, int32_t high, odxNormType norm, uint8_t* dst,
                                 uint32_t dstStride, int16_t* gx, int16_t* gy, uint32_t gradStride) {
    const Stride from = strideOf(src, srcStride, width), to = strideOf(dst, dstStride, width),
                 gradients = strideOf(gx, gradStride, width);
    return limit(worthSending(width, height) && multiplesOf(8, src, srcStride, dst, dstStride, gx, gy, gradStride),
                 arguments(rows(src, from, height), width, height, from, kernelSize, low, high, norm,
                           rows(dst, to, height), to, rows(gx, gradients, height), rows(gy, gradients, height),
                           gradients));
};

} // namespace odx::remoting

#endif
