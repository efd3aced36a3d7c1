#include "ondrix/gradients.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

// Bytes of a packed row of interleaved results. Of a width of 1 it is more than any stride.
uint64_t pairsOf(uint32_t width, size_t size)
{
    return uint64_t{(width - 2) * 2} * size;
}

bool usable(const void* src, uint32_t width, uint32_t height, uint32_t srcStride, uint32_t gradStride)
{
    return src && width && height && srcStride >= width && gradStride >= uint64_t{width} * sizeof(int16_t);
}

} // namespace

extern "C" {

// clang-format off
// Interleaved results, of packed rows and with a stride, by the slot of `base`.
#define ODX_INTERLEAVED(name, T) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              T* gradients) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        const Call<name##C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride, gradients))); \
        ODX_CHECK(src && srcWidth && srcHeight && (srcStride >= srcWidth) && gradients); \
        call(src, srcWidth, srcHeight, srcStride, gradients, static_cast<uint32_t>(pairsOf(srcWidth, sizeof(T)))); \
    }
#define ODX_INTERLEAVED_V2(name, base, T, text) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              T* gradients, unsigned int gradStride) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        gradStride = packedIfZero(gradStride, pairsOf(srcWidth, sizeof(T))); \
        const Call<base##C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride, gradients, gradStride))); \
        ODX_CHECK_AS(text, src && srcWidth && srcHeight && srcStride >= srcWidth && gradients && gradStride >= pairsOf(srcWidth, sizeof(T))); \
        call(src, srcWidth, srcHeight, srcStride, gradients, gradStride); \
    }

#define ODX_PAIRS_TEXT(T) "src && srcWidth && srcHeight && (srcStride >= srcWidth) && gradients && (gradStride >= ((srcWidth-2)*2*sizeof(" #T ")))"

ODX_INTERLEAVED(odxImageGradientInterleaveds16, int16_t)
ODX_INTERLEAVED(odxImageGradientInterleavedf32, float)
ODX_INTERLEAVED(odxImageGradientSobelInterleaveds16, int16_t)
ODX_INTERLEAVED(odxImageGradientSobelInterleavedf32, float)
ODX_INTERLEAVED_V2(odxImageGradientInterleaveds16_v2, odxImageGradientInterleaveds16, int16_t, ODX_PAIRS_TEXT(int16_t))
ODX_INTERLEAVED_V2(odxImageGradientInterleavedf32_v2, odxImageGradientInterleavedf32, float, ODX_PAIRS_TEXT(float))
ODX_INTERLEAVED_V2(odxImageGradientSobelInterleaveds16_v2, odxImageGradientSobelInterleaveds16, int16_t, ODX_PAIRS_TEXT(int16_t))
ODX_INTERLEAVED_V2(odxImageGradientSobelInterleaveds16_v3, odxImageGradientSobelInterleaveds16_v3, int16_t, ODX_PAIRS_TEXT(int16_t))
ODX_INTERLEAVED_V2(odxImageGradientSobelInterleavedf32_v2, odxImageGradientSobelInterleavedf32, float, ODX_PAIRS_TEXT(float))
ODX_INTERLEAVED_V2(odxImageGradientScharrInterleaveds16, odxImageGradientScharrInterleaveds16, int16_t, "src && srcWidth && srcHeight && (srcStride >= srcWidth)&& gradients && (gradStride >= ((srcWidth-2)*2*sizeof(int16_t)))")

// Planar results, the same; the condition is the text of the check.
#define ODX_PLANAR(name, S, T, condition) \
    void name(const S* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, T* dx, T* dy) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth * sizeof(S)); \
        const Call<name##C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride, dx, dy))); \
        ODX_CHECK(condition); \
        call(src, srcWidth, srcHeight, srcStride, dx, dy, static_cast<uint32_t>(srcWidth * sizeof(T))); \
    }
#define ODX_PLANAR_V2(name, base, S, T, condition) \
    void name(const S* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, T* dx, T* dy, \
              unsigned int dxyStride) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth * sizeof(S)); \
        dxyStride = packedIfZero(dxyStride, srcWidth * sizeof(T)); \
        const Call<base##C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride, dx, dy, dxyStride))); \
        ODX_CHECK(condition); \
        call(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride); \
    }

ODX_PLANAR(odxImageGradientPlanars16, uint8_t, int16_t, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy)
ODX_PLANAR(odxImageGradientPlanarf32, uint8_t, float, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy)
ODX_PLANAR(odxImageGradientSobelPlanars16, uint8_t, int16_t, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy)
ODX_PLANAR(odxImageGradientSobelPlanars8, uint8_t, int8_t, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy)
ODX_PLANAR(odxImageGradientSobelPlanarf32, uint8_t, float, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy)
ODX_PLANAR(odxImageGradientSobelPlanarf32f32, float, float, src && srcWidth && srcHeight && srcStride >= srcWidth && dx && dy)
ODX_PLANAR_V2(odxImageGradientPlanars16_v2, odxImageGradientPlanars16, uint8_t, int16_t, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy && (dxyStride >= (srcWidth*sizeof(int16_t))))
ODX_PLANAR_V2(odxImageGradientPlanarf32_v2, odxImageGradientPlanarf32, uint8_t, float, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy && (dxyStride >= (srcWidth*sizeof(float))))
ODX_PLANAR_V2(odxImageGradientSobelPlanars16_v2, odxImageGradientSobelPlanars16, uint8_t, int16_t, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy && (dxyStride >= (srcWidth*sizeof(int16_t))))
ODX_PLANAR_V2(odxImageGradientSobelPlanars16_v3, odxImageGradientSobelPlanars16_v3, uint8_t, int16_t, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy && (dxyStride >= (srcWidth*sizeof(int16_t))))
ODX_PLANAR_V2(odxImageGradientSobelPlanars8_v2, odxImageGradientSobelPlanars8, uint8_t, int8_t, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy && (dxyStride >= (srcWidth*sizeof(int8_t))))
ODX_PLANAR_V2(odxImageGradientSobelPlanarf32_v2, odxImageGradientSobelPlanarf32, uint8_t, float, src && srcWidth && srcHeight && (srcStride >= srcWidth) && dx && dy && (dxyStride >= (srcWidth*sizeof(float))))
ODX_PLANAR_V2(odxImageGradientSobelPlanarf32f32_v2, odxImageGradientSobelPlanarf32f32, float, float, src && srcWidth && srcHeight && srcStride >= srcWidth && dx && dy)

// Sobel filters with a border type.
#define ODX_SOBEL(name) \
    odxStatus name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                   int16_t* dx, int16_t* dy, unsigned int dxyStride, odxBorderType borderType, uint32_t borderValue) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        dxyStride = packedIfZero(dxyStride, srcWidth * sizeof(int16_t)); \
        const Call<name##C> call(__func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride, dx, dy, dxyStride))); \
        if (!usable(src, srcWidth, srcHeight, srcStride, dxyStride) || borderType > ONDRIX_BORDER_REPLICATE) \
            return call.failure(); \
        return call(src, srcWidth, srcHeight, srcStride, dx, dy, dxyStride, borderType, borderValue); \
    }

ODX_SOBEL(odxFilterSobel3x3u8s16)
ODX_SOBEL(odxFilterSobel5x5u8s16)
ODX_SOBEL(odxFilterSobel7x7u8s16)
// clang-format on

void odxFilterSobel3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst)
{
    const Call<odxFilterSobel3x3u8C> call(__func__, ODX_LIMITS(image(width, height) & aligned(src, dst)));
    ODX_CHECK(src && width && height && dst);
    call(src, width, height, width, dst, width);
}

void odxFilterSobel3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, uint8_t* dst, unsigned int dstStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterSobel3x3u8C> call(
        __func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride)));
    ODX_CHECK(src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth));
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride);
}

void odxFilterCanny3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst, int low,
                         int high)
{
    const Call<odxFilterCanny3x3u8C> call(__func__, ODX_LIMITS(image(width, height) & aligned(src, dst)));
    ODX_CHECK(src && width && height && dst && (low <= high) && width > 2 && height > 2);
    call(src, width, height, width, dst, width, low, high);
}

void odxFilterCanny3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int low, int high)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxFilterCanny3x3u8C> call(
        __func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride)));
    // clang-format off
    ODX_CHECK(src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth) && (low <= high) && srcWidth > 2 && srcHeight > 2);
    // clang-format on
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride, low, high);
}

void odxFilterCanny3x3u8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int low, int high,
                            int16_t* gx, int16_t* gy, unsigned int gradStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    gradStride = packedIfZero(gradStride, srcWidth * sizeof(int16_t));
    const Call<odxFilterCanny3x3u8_v3C> call(
        __func__,
        ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride, gx, gy, gradStride)));
    // clang-format off
    ODX_CHECK_AS("src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth) && (gradStride >= 2*srcWidth) && low <= high && srcWidth > 2 && srcHeight > 2",
                 usable(src, srcWidth, srcHeight, srcStride, gradStride) && dst && dstStride >= srcWidth && low <= high && srcWidth > 2 && srcHeight > 2);
    // clang-format on
    call(src, srcWidth, srcHeight, srcStride, dst, dstStride, low, high, gx, gy, gradStride);
}

odxStatus odxFilterCannyu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcStride, unsigned int kernelSize, int lowThresh, int highThresh,
                           odxNormType normType, uint8_t* dst, unsigned int dstStride, int16_t* gx, int16_t* gy,
                           unsigned int gradStride)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    gradStride = packedIfZero(gradStride, srcWidth * sizeof(int16_t));
    const Call<odxFilterCannyu8C> call(
        __func__,
        ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride, gx, gy, gradStride)));
    const bool knownKernel = kernelSize == 3 || kernelSize == 5 || kernelSize == 7;
    if (!usable(src, srcWidth, srcHeight, srcStride, gradStride) || !dst || dstStride < srcWidth || !knownKernel)
        return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, kernelSize, lowThresh, highThresh, normType, dst, dstStride,
                gx, gy, gradStride);
}
}
