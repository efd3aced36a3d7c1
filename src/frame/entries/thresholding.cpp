#include "ondrix/thresholding.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

// What the functions with a status ask of their arguments, in silence.
bool usable(const void* src, uint32_t width, uint32_t srcStride, const void* dst, uint32_t dstStride)
{
    return src && dst && srcStride && dstStride && srcStride >= width;
}

} // namespace

extern "C" {

void odxFilterThresholdu8(const uint8_t* src, unsigned int width, unsigned int height, unsigned int threshold,
                          uint8_t* dst)
{
    const Call<odxFilterThresholdu8C> call(__func__, ODX_LIMITS(pixels(width, height)));
    ODX_CHECK(src && dst && (signed)threshold >= 0);
    call(src, width, height, width, dst, width, threshold);
}

void odxFilterThresholdu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride, unsigned int threshold)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterThresholdu8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    // clang-format off
    ODX_CHECK(src && dst && dstStride && srcStride && (srcStride >=srcWidth) && (signed)threshold >= 0);
    // clang-format on
    ODX_CHECK_AS("srcStride == dstStride", src != dst || srcStride == dstStride);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride, threshold);
}

odxStatus odxFilterThresholdu8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                  unsigned int threshold, unsigned int trueValue, unsigned int falseValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterThresholdu8_v3C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    if (!usable(src, srcWidth, srcStride, dst, dstStride) || threshold > INT32_MAX) return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstStride, threshold, trueValue, falseValue);
}

odxStatus odxFilterThresholdRangeu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int lowThresh,
                                       int highThresh, unsigned int trueValue, unsigned int falseValue)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterThresholdRangeu8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    if (!usable(src, srcWidth, srcStride, dst, dstStride)) return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstStride, lowThresh, highThresh, trueValue, falseValue);
}

odxStatus odxFilterThresholdRangeu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int lowThresh,
                                    int highThresh)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterThresholdRangeu8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    if (!usable(src, srcWidth, srcStride, dst, dstStride)) return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstStride, lowThresh, highThresh, 255u, 0u);
}

void odxFilterThresholdOtsuu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                              unsigned int thresholdType)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterThresholdOtsuu8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    ODX_CHECK(src && dst && srcStride >= srcWidth && dstStride >= srcWidth);
    ODX_CHECK_AS("srcStride == dstStride", src != dst || srcStride == dstStride);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride, thresholdType);
}

// clang-format off
// Adaptive thresholds; the condition is the text of the check.
#define ODX_ADAPTIVE(name, condition) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              unsigned int maxValue, unsigned int thresholdType, int value, uint8_t* dst, unsigned int dstStride) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        dstStride = packedIfZero(dstStride, srcWidth); \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight))); \
        ODX_CHECK(condition); \
        call(src, srcWidth, srcHeight, srcStride, maxValue, thresholdType, value, dst, dstStride); \
    }

ODX_ADAPTIVE(odxAdaptiveThresholdGaussian3x3u8, src && dst && (srcWidth > 1) && (srcHeight > 1) && (srcStride >= srcWidth) && (dstStride >= srcWidth))
ODX_ADAPTIVE(odxAdaptiveThresholdGaussian5x5u8, src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 4 && srcWidth > 4)
ODX_ADAPTIVE(odxAdaptiveThresholdGaussian11x11u8, src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 10 && srcWidth > 10)
ODX_ADAPTIVE(odxAdaptiveThresholdMean3x3u8, src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth ) && srcWidth > 2 && srcHeight > 2)
ODX_ADAPTIVE(odxAdaptiveThresholdMean5x5u8, src && dst && srcWidth && srcHeight && srcStride && dstStride && (srcStride >=srcWidth) && srcWidth > 4 && srcHeight > 4)
ODX_ADAPTIVE(odxAdaptiveThresholdMean11x11u8, src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth) && srcWidth > 10 && srcHeight > 10)
// clang-format on
}
