// How the arguments of optical flow travel. Of pyramids only the records do: the levels lie in memory that both
// processors see, where the library's allocator puts them while there is a session.
#ifndef ODX_DSP_ONDRIX_OPTICAL_FLOW_X_H
#define ODX_DSP_ONDRIX_OPTICAL_FLOW_X_H

#include "dsp/shapes.h"

namespace odx::remoting
{

inline uint64_t countOf(int count)
{
    return count > 0 ? static_cast<uint64_t>(count) : 0;
}

inline auto imagePair(const uint8_t* src1, const uint8_t* src2, uint32_t width, uint32_t height)
{
    const uint64_t size = product(width, height);
    return arguments(list(src1, size), list(src2, size), width, height);
}
inline auto imagePair(const uint8_t* src1, const uint8_t* src2, uint32_t width, uint32_t height,
                      uint32_t rowStride)
{
    const Stride from = stride(rowStride, width);
    return arguments(rows(src1, from, height), rows(src2, from, height), width, height, from);
}

inline auto features(const float* in, float* out, int32_t* status, int count)
{
    const uint64_t n = countOf(count);
    return arguments(list(in, 2 * n), list(out, 2 * n), list(status, n), count);
}

inline constexpr auto opticalFlow =
    [](const uint8_t* src1, const uint8_t* src2, uint32_t width, uint32_t height, const odxPyrLevel* pyramid1,
       const odxPyrLevel* pyramid2, const odxPyrLevel* dx, const odxPyrLevel* dy, const float* in, float* out,
       int32_t* status, int count, int windowWidth, int windowHeight, int limit_, int levels, auto... tuning) {
        const uint64_t n = countOf(levels);
        return imagePair(src1, src2, width, height) +
               arguments(list(pyramid1, n), list(pyramid2, n), list(dx, 0), list(dy, 0)) +
               features(in, out, status, count) + arguments(windowWidth, windowHeight, limit_, levels, tuning...);
    };

inline constexpr auto opticalFlowStrided =
    [](const uint8_t* src1, const uint8_t* src2, uint32_t width, uint32_t height, uint32_t rowStride,
       const auto* pyramid1, const auto* pyramid2, const float* in, float* out, int32_t* status, int count,
       int windowWidth, int windowHeight, int limit_, int levels) {
        const uint64_t n = countOf(levels);
        return imagePair(src1, src2, width, height, rowStride) + arguments(list(pyramid1, n), list(pyramid2, n)) +
               features(in, out, status, count) + arguments(windowWidth, windowHeight, limit_, levels);
    };

inline constexpr auto opticalFlowEstimated =
    [](const uint8_t* src1, const uint8_t* src2, uint32_t width, uint32_t height, uint32_t rowStride,
       const odxPyrLevelStrided* pyramid1, const odxPyrLevelStrided* pyramid2, const float* in, float* out,
       int32_t* status, int count, int windowWidth, int windowHeight, int limit_, int levels,
       const float* estimates, auto... numbers) {
        constexpr int kWindow = 7;
        return limit(worthSending(width, height) && multiplesOf(kRemoteAlignment, src1, src2, rowStride) &&
                         windowWidth == kWindow && windowHeight == kWindow,
                     opticalFlowStrided(src1, src2, width, height, rowStride, pyramid1, pyramid2, in, out, status,
                                        count, windowWidth, windowHeight, limit_, levels) +
                         arguments(list(estimates, 2 * countOf(count)), numbers...));
    };

} // namespace odx::remoting

#endif
