// How the arguments of the FAST detectors travel.
#ifndef ODX_DSP_ONDRIX_FAST_X_H
#define ODX_DSP_ONDRIX_FAST_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

inline auto fastSearch(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int32_t barrier,
                       uint32_t border)
{
    const Stride from = stride(srcStride, width);
    return arguments(rows(src, from, height), width, height, from, barrier, border);
}

// The lists always have room for one corner.
inline auto foundCorners(uint32_t* xy, uint32_t capacity, uint32_t* count)
{
    return arguments(list(xy, product(2, capacity == 0 ? 1 : capacity)), capacity, list(count, 1));
}
inline auto foundScores(uint32_t* xy, uint32_t* scores, uint32_t capacity, uint32_t* count)
{
    const uint32_t room = capacity == 0 ? 1 : capacity;
    return arguments(list(xy, product(2, room)), list(scores, room), capacity, list(count, 1));
}

inline auto inMask(const uint8_t* mask, uint32_t maskWidth, uint32_t maskHeight)
{
    return arguments(list(mask, bitMask(maskWidth, maskHeight)), maskWidth, maskHeight);
}

inline auto suppression(uint32_t enabled, uint32_t* temporary, uint32_t capacity, uint32_t height)
{
    return arguments(enabled, list(temporary, enabled == 0 ? 0 : product(3, capacity) + height));
}

inline constexpr auto fastCorners = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                       int32_t barrier, uint32_t border, uint32_t* xy, uint32_t capacity,
                                       uint32_t* count) {
    return fastSearch(src, width, height, srcStride, barrier, border) + foundCorners(xy, capacity, count);
};
inline constexpr auto fastCornersInMask = [](const uint8_t* src, uint32_t width, uint32_t height,
                                             uint32_t srcStride, int32_t barrier, uint32_t border, uint32_t* xy,
                                             uint32_t capacity, uint32_t* count, const uint8_t* mask,
                                             uint32_t maskWidth, uint32_t maskHeight) {
    return fastSearch(src, width, height, srcStride, barrier, border) + foundCorners(xy, capacity, count) +
           inMask(mask, maskWidth, maskHeight);
};
inline constexpr auto fastScores = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                      int32_t barrier, uint32_t border, uint32_t* xy, uint32_t* scores,
                                      uint32_t capacity, uint32_t* count) {
    return fastSearch(src, width, height, srcStride, barrier, border) + foundScores(xy, scores, capacity, count);
};
inline constexpr auto fastScoresInMask = [](const uint8_t* src, uint32_t width, uint32_t height,
                                            uint32_t srcStride, int32_t barrier, uint32_t border, uint32_t* xy,
                                            uint32_t* scores, uint32_t capacity, uint32_t* count,
                                            const uint8_t* mask, uint32_t maskWidth, uint32_t maskHeight) {
    return fastSearch(src, width, height, srcStride, barrier, border) + foundScores(xy, scores, capacity, count) +
           inMask(mask, maskWidth, maskHeight);
};
inline constexpr auto fastSuppressed =
    [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int32_t barrier, uint32_t border,
       uint32_t* xy, uint32_t* scores, uint32_t capacity, uint32_t* count, uint32_t enabled, uint32_t* temporary) {
        return fastSearch(src, width, height, srcStride, barrier, border) +
               foundScores(xy, scores, capacity, count) + suppression(enabled, temporary, capacity, height);
    };
inline constexpr auto fastSuppressedInMask = [](const uint8_t* src, uint32_t width, uint32_t height,
                                                uint32_t srcStride, int32_t barrier, uint32_t border, uint32_t* xy,
                                                uint32_t* scores, uint32_t capacity, uint32_t* count,
                                                const uint8_t* mask, uint32_t maskWidth, uint32_t maskHeight,
                                                uint32_t enabled, uint32_t* temporary) {
    return fastSearch(src, width, height, srcStride, barrier, border) + foundScores(xy, scores, capacity, count) +
           inMask(mask, maskWidth, maskHeight) + suppression(enabled, temporary, capacity, height);
};

} // namespace odx::remoting

#endif
