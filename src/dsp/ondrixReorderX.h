// How the arguments of transpositions, flips and rotations travel.
#ifndef ODX_DSP_ONDRIX_REORDER_X_H
#define ODX_DSP_ONDRIX_REORDER_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

// An image into one that stands on its side, or not.
template <class T, class... Numbers>
auto turned(const T* src, uint32_t width, uint32_t height, uint32_t srcStride, T* dst, uint32_t dstStride,
            uint32_t channels, bool quarter, Numbers... numbers)
{
    const Stride from = strideOf(src, srcStride, width, channels),
                 to = strideOf(dst, dstStride, quarter ? height : width, channels);
    return arguments(rows(src, from, height), width, height, from, rows(dst, to, quarter ? width : height), to,
                     numbers...);
}

template <uint32_t channels>
inline constexpr auto transposed =
    [](const auto* src, uint32_t width, uint32_t height, uint32_t srcStride, auto* dst, uint32_t dstStride) {
        return turned(src, width, height, srcStride, dst, dstStride, channels, true);
    };
inline constexpr auto flippedTriples = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                          uint8_t* dst, uint32_t dstStride, int dir) {
    return limit(worthSending(width, height),
                 turned(src, width, height, srcStride, dst, dstStride, 3, false, dir));
};
template <uint32_t channels>
inline constexpr auto rotated = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                   uint8_t* dst, uint32_t dstStride, int degree) {
    return limit(worthSending(width, height),
                 turned(src, width, height, srcStride, dst, dstStride, channels, degree != 2, degree));
};

} // namespace odx::remoting

#endif
