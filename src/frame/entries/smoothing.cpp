#include "ondrix/smoothing.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

// The 3x3 Gaussian's rows come in groups of six and at least one more pixel. In unsigned arithmetic this refuses
// the widths 2 to 6.
bool gaussianRowsFit(uint32_t width)
{
    return (width - 2) / 6 * 6 >= width - 7;
}

// What the functions with a border type ask of their arguments, in silence.
bool usable(const void* src, uint32_t width, uint32_t height, uint32_t srcStride, const void* dst,
            uint32_t dstStride, odxBorderType borderType)
{
    return borderType <= ONDRIX_BORDER_REPLICATE && src && dst && width && height && srcStride && dstStride;
}

// The limits of the 3x3 Gaussian and of the 3x3 median; the values are what has to be aligned beside the width.
template <class... Values>
Limit gaussian3x3(uint32_t width, uint32_t height, Values... values)
{
    return pixels(width, height) & atLeast(3, height) & atLeast(4, width) & remote(4, width, values...) &
           gpu(2, width, height);
}
template <class... Values>
Limit median3x3(uint32_t width, uint32_t height, Values... values)
{
    return image(width, height) & atLeast(4, height) & remote(8, width) & aligned(values...);
}

} // namespace

extern "C" {

// clang-format off
// Gaussians of packed images; the condition is the text of the check.
#define ODX_GAUSSIAN(name, T, condition) \
    void name(const T* src, unsigned int width, unsigned int height, T* dst, int border) \
    { \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(width, height))); \
        ODX_CHECK(condition); \
        const uint32_t stride = width * static_cast<uint32_t>(sizeof(T)); \
        call(src, width, height, stride, dst, stride, border); \
    }
// The same with strides, by the slot of `base`.
#define ODX_GAUSSIAN_V2(name, base, T, condition) \
    void name(const T* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, T* dst, \
              unsigned int dstStride, int border) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth * sizeof(T)); \
        dstStride = packedIfZero(dstStride, srcWidth * sizeof(T)); \
        const Call<base##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight))); \
        ODX_CHECK(condition); \
        call(src, srcWidth, srcHeight, srcStride, dst, dstStride, border); \
    }

ODX_GAUSSIAN(odxFilterGaussian5x5u8, uint8_t, src && dst && width && height && height > 4 && width > 4)
ODX_GAUSSIAN(odxFilterGaussian11x11u8, uint8_t, src && dst && width && height && height > 10 && width > 10)
ODX_GAUSSIAN(odxFilterGaussian5x5s16, int16_t, src && dst && width && height && height > 1)
ODX_GAUSSIAN(odxFilterGaussian5x5s32, int32_t, src && dst && width && height && width > 4 && height > 4)
ODX_GAUSSIAN_V2(odxFilterGaussian5x5u8_v2, odxFilterGaussian5x5u8, uint8_t, src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 4 && srcWidth > 4)
ODX_GAUSSIAN_V2(odxFilterGaussian11x11u8_v2, odxFilterGaussian11x11u8, uint8_t, src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride && srcHeight > 10 && srcWidth > 10)
ODX_GAUSSIAN_V2(odxFilterGaussian5x5s16_v2, odxFilterGaussian5x5s16, int16_t, src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*sizeof(int16_t)) && (dstStride >= srcWidth*sizeof(int16_t)) && srcHeight > 1)
ODX_GAUSSIAN_V2(odxFilterGaussian5x5s32_v2, odxFilterGaussian5x5s32, int32_t, src && dst && srcWidth && srcHeight && (srcStride >= srcWidth*sizeof(int32_t)) && (dstStride >= srcWidth*sizeof(int32_t)) && srcWidth > 4 && srcHeight > 4)

// Box filters, whose strides are given.
#define ODX_BOX_FILTER(name, condition) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              uint8_t* dst, unsigned int dstStride) \
    { \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight))); \
        ODX_CHECK(condition); \
        call(src, srcWidth, srcHeight, srcStride, dst, dstStride); \
    }

ODX_BOX_FILTER(odxBoxFilter3x3u8, src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth ) && srcWidth > 2 && srcHeight > 2)
ODX_BOX_FILTER(odxBoxFilter5x5u8, src && dst && srcWidth && srcHeight && srcStride && dstStride && (srcStride >=srcWidth) && srcWidth > 4 && srcHeight > 4)
ODX_BOX_FILTER(odxBoxFilter11x11u8, src && dst && srcWidth && srcHeight && srcStride && dstStride && ( srcStride >=srcWidth) && srcWidth > 10 && srcHeight > 10)

// Filters with a border type. `limits` may use the arguments.
#define ODX_BORDER_FILTER(name, limits) \
    odxStatus name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                   uint8_t* dst, unsigned int dstStride, odxBorderType borderType, uint32_t borderValue) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        dstStride = packedIfZero(dstStride, srcWidth); \
        const Call<name##C> call(__func__, ODX_LIMITS(limits)); \
        if (!usable(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType)) return call.failure(); \
        return call(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType, borderValue); \
    }

ODX_BORDER_FILTER(odxFilterGaussian3x3u8_v3, gaussian3x3(srcWidth, srcHeight, src, srcStride, dst, dstStride))
ODX_BORDER_FILTER(odxBoxFilter3x3u8_v2, pixels(srcWidth, srcHeight))
ODX_BORDER_FILTER(odxFilterMedian3x3u8_v3, median3x3(srcWidth, srcHeight, src, srcStride, dst, dstStride))
// clang-format on

void odxFilterGaussian3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst, int border)
{
    if (!gaussianRowsFit(width)) return logError(__func__);
    const Call<odxFilterGaussian3x3u8C> call(__func__, ODX_LIMITS(gaussian3x3(width, height, src, dst)));
    ODX_CHECK(src && dst && width && height);
    call(src, width, height, width, dst, width, border);
}

void odxFilterGaussian3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border)
{
    if (!gaussianRowsFit(srcWidth)) return logError(__func__);
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterGaussian3x3u8C> call(
        __func__, ODX_LIMITS(gaussian3x3(srcWidth, srcHeight, src, srcStride, dst, dstStride)));
    ODX_CHECK(src && dst && (srcWidth > 1) && (srcHeight > 1) && (srcStride >= srcWidth) && (dstStride >= srcWidth));
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride, border);
}

void odxFilterMedian3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst)
{
    const Call<odxFilterMedian3x3u8C> call(__func__, ODX_LIMITS(median3x3(width, height, src, dst)));
    ODX_CHECK(src && dst && width && height);
    call(src, width, height, width, dst, width);
}

void odxFilterMedian3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterMedian3x3u8C> call(
        __func__, ODX_LIMITS(median3x3(srcWidth, srcHeight, src, srcStride, dst, dstStride)));
    ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && dstStride);
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void odxBoxFilterNxNf32(const float* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                        unsigned int N, float* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth * sizeof *src);
    dstStride = packedIfZero(dstStride, srcWidth * sizeof *dst);
    const Call<odxBoxFilterNxNf32C> call(
        __func__, ODX_LIMITS(bytes(uint64_t{srcWidth} * srcHeight, sizeof *src) & remote(8, src, srcStride)));
    ODX_CHECK(src && dst && srcWidth && srcHeight && (N > 1) && ((src == dst && srcStride == dstStride) || (src != dst)) && (srcStride >=srcWidth*4) && (dstStride >=srcWidth*4) && srcWidth > 4 && srcHeight > 4);
    call(src, srcWidth, srcHeight, srcStride, N, dst, dstStride);
}

odxStatus odxFilterMedianMxNs16(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, unsigned int M, unsigned int N, int16_t* dst,
                                unsigned int dstStride)
{
    const Call<odxFilterMedianMxNs16C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight)));
    const uint64_t packed = sizeof *src * uint64_t{srcWidth};
    const bool windowFits = M >= 3 && N >= 3 && M % 2 == 1 && N % 2 == 1;
    if (!src || !dst || !srcWidth || !srcHeight || srcStride < packed || dstStride < packed || !windowFits) {
        return call.failure();
    }
    return call(src, srcWidth, srcHeight, srcStride, M, N, dst, dstStride);
}
}
