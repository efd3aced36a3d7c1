#include "ondrix/morphology.h"

#include "frame/entry.h"

using namespace odx;

extern "C" {

// clang-format off
// The four entry points of an operation.
#define ODX_MORPHOLOGY(packed, strided, bordered, sized) \
    void packed(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst) \
    { \
        const Call<packed##C> call(__func__, ODX_LIMITS(pixels(width, height))); \
        ODX_CHECK(src && width && height && dst); \
        call(src, width, height, width, dst, width); \
    } \
    void strided(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                 uint8_t* dst, unsigned int dstStride) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        dstStride = packedIfZero(dstStride, srcWidth); \
        const Call<packed##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight))); \
        ODX_CHECK(src && srcWidth && srcHeight && (srcStride >= srcWidth) && dst && (dstStride >= srcWidth)); \
        call(src, srcWidth, srcHeight, srcStride, dst, dstStride); \
    } \
    odxStatus bordered(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                       uint8_t* dst, unsigned int dstStride, odxBorderType borderType, uint32_t borderValue) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        dstStride = packedIfZero(dstStride, srcWidth); \
        const Call<bordered##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight))); \
        if (borderType > ONDRIX_BORDER_REPLICATE || !src || !dst || !srcWidth || !srcHeight) return call.failure(); \
        return call(src, srcWidth, srcHeight, srcStride, dst, dstStride, borderType, borderValue); \
    } \
    odxStatus sized(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride, \
                    unsigned int N, uint8_t* dst, unsigned int dstStride) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        dstStride = packedIfZero(dstStride, srcWidth); \
        const Call<sized##C> call(__func__, ODX_LIMITS(pixels(srcWidth, srcHeight))); \
        if (!src || !dst || !srcWidth || !srcHeight || srcStride < srcWidth || dstStride < srcWidth) { \
            return call.failure(); \
        } \
        return call(src, srcWidth, srcHeight, srcStride, N, dst, dstStride); \
    }

ODX_MORPHOLOGY(odxFilterErode3x3u8, odxFilterErode3x3u8_v2, odxFilterErode3x3u8_v3, odxFilterErodeNxNu8)
ODX_MORPHOLOGY(odxFilterDilate3x3u8, odxFilterDilate3x3u8_v2, odxFilterDilate3x3u8_v3, odxFilterDilateNxNu8)
// clang-format on
}
