#include "ondrix/bilateral.h"

#include "frame/entry.h"

using namespace odx;

extern "C" {

// clang-format off
#define ODX_BILATERAL(name) \
    void name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
              uint8_t* dst, unsigned int dstStride) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        dstStride = packedIfZero(dstStride, srcWidth); \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride))); \
        ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth)); \
        call(src, srcWidth, srcHeight, srcStride, dst, dstStride); \
    }

ODX_BILATERAL(odxBilateralFilter5x5u8)
ODX_BILATERAL(odxBilateralFilter7x7u8)
ODX_BILATERAL(odxBilateralFilter9x9u8)

#define ODX_BILATERAL_V2(name) \
    odxStatus name(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                   uint8_t* dst, unsigned int dstStride, float sigmaColor, float sigmaSpace, \
                   odxBorderType borderType, uint32_t borderValue) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        dstStride = packedIfZero(dstStride, srcWidth); \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride))); \
        ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth) && (sigmaColor > 0) && (sigmaSpace > 0) && (borderType <= ONDRIX_BORDER_REPLICATE)); \
        return call(src, srcWidth, srcHeight, srcStride, dst, dstStride, sigmaColor, sigmaSpace, borderType, borderValue); \
    }

ODX_BILATERAL_V2(odxBilateralFilter5x5u8_v2)
ODX_BILATERAL_V2(odxBilateralFilter7x7u8_v2)
ODX_BILATERAL_V2(odxBilateralFilter9x9u8_v2)

odxStatus odxBilateralFilterRecursiveu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                        float sigmaColor, float sigmaSpace)
{
    srcStride = packedIfZero(srcStride, srcWidth);
    dstStride = packedIfZero(dstStride, srcWidth);
    const Call<odxBilateralFilterRecursiveu8C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight) & aligned(src, srcStride, dst, dstStride)));
    ODX_CHECK(src && dst && srcWidth && srcHeight && (srcStride >= srcWidth) && (dstStride >= srcWidth) && (sigmaColor > 0) && (sigmaSpace > 0) && (sigmaSpace <= 64));
    return call(src, srcWidth, srcHeight, srcStride, dst, dstStride, sigmaColor, sigmaSpace);
}
// clang-format on
}
