// How the arguments of the Harris detectors and of refinement travel.
#ifndef ODX_DSP_ONDRIX_HARRIS_X_H
#define ODX_DSP_ONDRIX_HARRIS_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

inline auto searched(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride)
{
    const Stride from = stride(srcStride, width);
    return arguments(rows(src, from, height), width, height, from);
}

inline constexpr auto harrisCorners = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                         uint32_t border, uint32_t* xy, uint32_t capacity, uint32_t* count,
                                         auto... numbers) {
    return searched(src, width, height, srcStride) +
           arguments(border, list(xy, product(2, capacity)), capacity, list(count, 1), numbers...);
};
inline constexpr auto harrisCornersInMask = [](const uint8_t* src, uint32_t width, uint32_t height,
                                               uint32_t srcStride, uint32_t border, uint32_t* xy,
                                               uint32_t capacity, uint32_t* count, int32_t threshold,
                                               const uint8_t* mask, uint32_t maskWidth, uint32_t maskHeight) {
    return harrisCorners(src, width, height, srcStride, border, xy, capacity, count, threshold) +
           arguments(list(mask, bitMask(maskWidth, maskHeight)), maskWidth, maskHeight);
};
inline constexpr auto harrisScores = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                        uint32_t border, uint32_t* xy, auto* scores, uint32_t capacity,
                                        uint32_t* count, int32_t threshold) {
    return searched(src, width, height, srcStride) + arguments(border, list(xy, product(2, capacity)),
                                                               list(scores, capacity), capacity, list(count, 1),
                                                               threshold);
};
inline constexpr auto localMaximum = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                        uint32_t x, uint32_t y, uint32_t radius, uint32_t* maxX, uint32_t* maxY,
                                        int32_t* maxResponse) {
    return limit(worthSending(width, height) && multiplesOf(4, src, srcStride) && multiplesOf(8, width),
                 searched(src, width, height, srcStride) +
                     arguments(x, y, radius, list(maxX, 1), list(maxY, 1), list(maxResponse, 1)));
};
inline constexpr auto refinedCorners = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                          float* xy, uint32_t count, auto... numbers) {
    return searched(src, width, height, srcStride) + arguments(list(xy, product(2, count)), count, numbers...);
};
inline constexpr auto maximaOnLine = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                        const float* position, const float* direction, uint32_t maxDistance,
                                        uint32_t capacity, int32_t minGradient, float maxAngle, float* maxima,
                                        uint32_t* count) {
    return searched(src, width, height, srcStride) + arguments(list(position, 2), list(direction, 2), maxDistance,
                                                               capacity, minGradient, maxAngle,
                                                               list(maxima, capacity), list(count, 1));
};

} // namespace odx::remoting

#endif
