// How the arguments of the trackers travel.
#ifndef ODX_DSP_ONDRIX_TRACK_X_H
#define ODX_DSP_ONDRIX_TRACK_X_H

#include "dsp/shapes.h"
#include "ondrix/tracking.h"

namespace odx::remoting
{

inline constexpr auto adaptiveTracker = [](const auto* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                           odxWindow* window, uint32_t limit_, float epsilon,
                                           odxTrackedEllipse* ellipse) {
    const Stride from = strideOf(src, srcStride, width);
    return arguments(rows(src, from, height), width, height, from, list(window, 1), limit_, epsilon,
                     list(ellipse, 1));
};

inline constexpr auto patchSearch = [](const uint8_t* patch, const uint8_t* src, uint32_t width, uint32_t height,
                                       uint32_t x, uint32_t y, uint32_t searchWidth, uint16_t* bestX,
                                       uint16_t* bestY, int32_t* score, int32_t subPixel, float* subX, float* subY,
                                       int32_t threshold) {
    constexpr uint64_t kPatch = 64;
    return arguments(list(patch, kPatch), list(src, product(width, height)), width, height, x, y, searchWidth,
                     list(bestX, 1), list(bestY, 1), list(score, 1), subPixel, list(subX, 1), list(subY, 1),
                     threshold);
};

inline constexpr auto blockMatching = [](const uint8_t* src1, const uint8_t* src2, uint32_t width, uint32_t height,
                                         uint32_t srcStride, uint32_t step, uint32_t radius, int16_t* flow,
                                         uint16_t* sums) {
    constexpr uint32_t kBlock = 16;
    const Stride from = stride(srcStride, width);
    const auto along = [step](uint32_t size) { return uint64_t{(size - kBlock) / step} + 1; };
    const uint64_t blocks = product(along(width), along(height));
    return arguments(rows(src1, from, height), rows(src2, from, height), width, height, from, step, radius,
                     list(flow, product(2, blocks)), list(sums, blocks));
};

} // namespace odx::remoting

#endif
