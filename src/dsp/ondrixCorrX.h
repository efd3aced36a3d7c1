// How the arguments of correlation travel.
#ifndef ODX_DSP_ONDRIX_CORR_X_H
#define ODX_DSP_ONDRIX_CORR_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

inline constexpr auto kernel3x3 = [](const int8_t* kernel, auto... images) {
    return arguments(list(kernel, 9)) + image(images...);
};
inline constexpr auto kernelNxN = [](const float* kernel, uint32_t n, const uint8_t* src, uint32_t width,
                                     uint32_t height, auto... rest) {
    return limit(worthSending(width, height),
                 arguments(list(kernel, product(n, n)), n) + image(src, width, height, rest...));
};
inline constexpr auto kernelNxNShift = [](const int8_t* kernel, uint32_t n, int32_t shift, const uint8_t* src,
                                          uint32_t width, uint32_t height, auto... rest) {
    return limit(worthSending(width, height),
                 arguments(list(kernel, product(n, n)), n, shift) + image(src, width, height, rest...));
};

} // namespace odx::remoting

#endif
