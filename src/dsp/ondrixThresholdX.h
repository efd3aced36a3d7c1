// How the arguments of thresholds travel.
#ifndef ODX_DSP_ONDRIX_THRESHOLD_X_H
#define ODX_DSP_ONDRIX_THRESHOLD_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

inline constexpr auto adaptive = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                    uint32_t maxValue, uint32_t thresholdType, int32_t value, uint8_t* dst,
                                    uint32_t dstStride) {
    return imageAround(src, width, height, srcStride, dst, dstStride, maxValue, thresholdType, value);
};

} // namespace odx::remoting

#endif
