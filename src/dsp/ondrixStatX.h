// How the arguments of image statistics travel.
#ifndef ODX_DSP_ONDRIX_STAT_X_H
#define ODX_DSP_ONDRIX_STAT_X_H

#include "dsp/shapes.h"
#include "ondrix/statistics.h"

namespace odx::remoting
{

// An image, and what is read from it.
template <class T, class... Items>
auto statistics(const T* src, uint32_t width, uint32_t height, uint32_t srcStride, Items... items)
{
    const Stride from = strideOf(src, srcStride, width);
    return arguments(rows(src, from, height), width, height, from, items...);
}

inline constexpr auto minMaxLoc = [](const auto* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                     auto* least, auto* greatest, uint32_t* leastXY, uint32_t* greatestXY) {
    return statistics(src, width, height, srcStride, written(least, 1), written(greatest, 1), written(leastXY, 2),
                      written(greatestXY, 2));
};
inline constexpr auto allMinMaxLoc = [](const auto* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                        auto* least, auto* greatest, uint32_t* leastXY, uint32_t* greatestXY,
                                        uint32_t capacity, uint32_t* leastCount, uint32_t* greatestCount) {
    return limit(worthSending(width, height) && multiplesOf(8, src, srcStride),
                 statistics(src, width, height, srcStride, written(least, 1), written(greatest, 1),
                            list(leastXY, product(2, capacity)), list(greatestXY, product(2, capacity)), capacity,
                            written(leastCount, 1), written(greatestCount, 1)));
};

inline constexpr auto intensityHistogram = [](const uint8_t* src, uint32_t width, uint32_t height,
                                              uint32_t srcStride, uint32_t* histogram) {
    return statistics(src, width, height, srcStride, written(histogram, 256));
};
inline constexpr auto spatialHistogram = [](const uint8_t* src, uint32_t width, uint32_t height,
                                            uint32_t srcStride, uint32_t cellsX, uint32_t cellsY, uint32_t bins,
                                            uint32_t range, uint32_t* histograms) {
    return statistics(src, width, height, srcStride, cellsX, cellsY, bins, range,
                      written(histograms, product(cellsX, cellsY, bins)));
};

inline constexpr auto intensityStats = [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                          uint32_t srcStride, uint32_t x, uint32_t y, uint32_t width,
                                          uint32_t height, float* mean, float* variance) {
    return statistics(src, srcWidth, srcHeight, srcStride, x, y, width, height, written(mean, 1),
                      written(variance, 1));
};
inline constexpr auto intensityStatsWithStatus =
    [](const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride, uint32_t x, uint32_t y,
       uint32_t width, uint32_t height, float* mean, float* variance, odxVarianceEstimator estimator) {
        return limit(worthSending(width, height) && multiplesOf(8, src, srcStride),
                     intensityStats(src, srcWidth, srcHeight, srcStride, x, y, width, height, mean, variance) +
                         arguments(estimator));
    };

inline constexpr auto imageMoments = [](const auto* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                        uint32_t binary, odxMoments* moments) {
    return statistics(src, width, height, srcStride, binary, written(moments, 1));
};

inline constexpr auto normalizeLocal = [](const auto* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                          uint32_t N, auto* dst, uint32_t dstStride, auto... numbers) {
    const Stride to = strideOf(dst, dstStride, width);
    return limit(worthSending(width, height) && multiplesOf(8, src, srcStride, dst, dstStride),
                 statistics(src, width, height, srcStride, N, rows(dst, to, height), to, numbers...));
};

} // namespace odx::remoting

#endif
