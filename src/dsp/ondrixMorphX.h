// How the arguments of morphology travel.
#ifndef ODX_DSP_ONDRIX_MORPH_X_H
#define ODX_DSP_ONDRIX_MORPH_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

inline constexpr auto windowNxN = [](const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride,
                                     uint32_t n, uint8_t* dst, uint32_t dstStride) {
    return limit(worthSending(width, height), imageAround(src, width, height, srcStride, dst, dstStride, n));
};

} // namespace odx::remoting

#endif
