#include "ondrix/warps.h"

#include "frame/entry.h"

using namespace odx;

namespace
{

bool covers(uint32_t stride, uint64_t width, uint64_t size = 1)
{
    return stride >= width * size;
}

} // namespace

// The arguments of an image and of another one, and their names.
#define ODX_SOURCE const uint8_t *src, unsigned int srcWidth, unsigned int srcHeight
#define ODX_SOURCE_V2 ODX_SOURCE, unsigned int srcStride
#define ODX_DESTINATION uint8_t *dst, unsigned int dstWidth, unsigned int dstHeight
#define ODX_DESTINATION_V2 ODX_DESTINATION, unsigned int dstStride
#define ODX_MAPS const float *mapX, const float *mapY, unsigned int mapStride
#define ODX_DEFAULT_STRIDES(channels)                           \
    srcStride = packedIfZero(srcStride, srcWidth * (channels)); \
    dstStride = packedIfZero(dstStride, dstWidth * (channels));

extern "C" {

// clang-format off
#define ODX_PACKED_WARP(name) \
    void name(ODX_SOURCE, ODX_DESTINATION, const float* projectionMatrix) \
    { \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight))); \
        const float* const proj = projectionMatrix; \
        ODX_CHECK(src && dst && proj && srcWidth && srcHeight && dstWidth && dstHeight); \
        call(src, srcWidth, srcHeight, dst, dstWidth, dstHeight, projectionMatrix); \
    }
#define ODX_WARP(name, channels) \
    void name(ODX_SOURCE_V2, ODX_DESTINATION_V2, const float* projectionMatrix) \
    { \
        ODX_DEFAULT_STRIDES(channels) \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight))); \
        const float* const proj = projectionMatrix; \
        ODX_CHECK(src && dst && proj && srcWidth && srcHeight && dstWidth && dstHeight && (srcStride >= srcWidth) && (dstStride >= dstWidth)); \
        call(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, projectionMatrix); \
    }
#define ODX_REMAP_RGBA(name) \
    void name(ODX_SOURCE_V2, ODX_DESTINATION_V2, ODX_MAPS) \
    { \
        ODX_DEFAULT_STRIDES(4) \
        mapStride = packedIfZero(mapStride, dstWidth * sizeof *mapX); \
        const Call<name##C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight))); \
        ODX_CHECK_AS("src && (srcStride >= srcWidth*4) && dst && (dstStride >= dstWidth*4) && mapX && mapY && (mapStride >= (dstWidth*sizeof(float32_t)))", \
                     src && covers(srcStride, srcWidth, 4) && dst && covers(dstStride, dstWidth, 4) && mapX && mapY && covers(mapStride, dstWidth, 4)); \
        call(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, mapX, mapY, mapStride); \
    }
#define ODX_PATCH(name) \
    int name(ODX_SOURCE_V2, const float* position, const float* affine, uint8_t* patch, unsigned int patchWidth, \
             unsigned int patchHeight, unsigned int patchStride) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        patchStride = packedIfZero(patchStride, patchWidth); \
        const Call<odxTransformAffineu8C> call(__func__, ODX_LIMITS(pixels(patchWidth, patchHeight))); \
        if (!src || !srcWidth || !srcHeight || !position || !affine || !patch || !patchWidth || !patchHeight) return call.failure(); \
        return call(src, srcWidth, srcHeight, srcStride, position, affine, patch, patchWidth, patchHeight, patchStride); \
    }
#define ODX_PATCHES(name) \
    int name(ODX_SOURCE_V2, uint32_t nPositions, const float* positions, const float* affines, uint8_t* patches) \
    { \
        srcStride = packedIfZero(srcStride, srcWidth); \
        const Call<odxTransformAffine8x8u8C> call(__func__, ODX_LIMITS(bytes(nPositions, 64))); \
        if (!src || !srcWidth || !srcHeight || !nPositions || !positions || !affines || !patches) return call.failure(); \
        return call(src, srcWidth, srcHeight, srcStride, nPositions, positions, affines, patches); \
    }

ODX_PACKED_WARP(odxWarpPerspectiveu8)
ODX_PACKED_WARP(odx3ChannelWarpPerspectiveu8)
ODX_WARP(odxWarpPerspectiveu8_v2, 1)
ODX_WARP(odx3ChannelWarpPerspectiveu8_v2, 3)
ODX_REMAP_RGBA(odxRemapRGBA8888NNu8)
ODX_REMAP_RGBA(odxRemapRGBA8888BLu8)
ODX_PATCH(odxTransformAffineu8)
ODX_PATCH(odxTransformAffineu8_v2)
ODX_PATCHES(odxTransformAffine8x8u8)
ODX_PATCHES(odxTransformAffine8x8u8_v2)
// clang-format on

odxStatus odxWarpPerspectiveu8_v3(ODX_SOURCE_V2, ODX_DESTINATION_V2, const float* projectionMatrix,
                                  odxInterpolationType interpolation)
{
    ODX_DEFAULT_STRIDES(1)
    const Call<odxWarpPerspectiveu8_v3C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight)));
    if (!src || !dst || !projectionMatrix || !srcWidth || !srcHeight || !dstWidth || !dstHeight ||
        !covers(srcStride, srcWidth) || !covers(dstStride, dstWidth))
        return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, projectionMatrix,
                interpolation);
}

odxStatus odxWarpPerspectiveu8_v4(ODX_SOURCE_V2, ODX_DESTINATION_V2, const float* projectionMatrix,
                                  odxInterpolationType interpolation, odxBorderType borderType,
                                  uint32_t borderValue)
{
    ODX_DEFAULT_STRIDES(1)
    const Call<odxWarpPerspectiveu8_v4C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight)));
    if (!src || !dst || !projectionMatrix || !srcWidth || !srcHeight || !dstWidth || !dstHeight ||
        !covers(srcStride, srcWidth) || !covers(dstStride, dstWidth) || borderType > ONDRIX_BORDER_REPLICATE)
        return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, projectionMatrix,
                interpolation, borderType, borderValue);
}

odxStatus odx2PlaneWarpPerspectiveu8(const uint8_t* src1, const uint8_t* src2, unsigned int srcWidth,
                                     unsigned int srcHeight, unsigned int src1Stride, unsigned int src2Stride,
                                     uint8_t* dst1, uint8_t* dst2, unsigned int dstWidth, unsigned int dstHeight,
                                     unsigned int dst1Stride, unsigned int dst2Stride,
                                     const float* projectionMatrix)
{
    src1Stride = packedIfZero(src1Stride, srcWidth);
    src2Stride = packedIfZero(src2Stride, srcWidth);
    dst1Stride = packedIfZero(dst1Stride, dstWidth);
    dst2Stride = packedIfZero(dst2Stride, dstWidth);
    const Call<odx2PlaneWarpPerspectiveu8C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight)));
    if (!src1 || !src2 || !dst1 || !dst2 || !projectionMatrix || !srcWidth || !srcHeight || !dstWidth ||
        !dstHeight || !covers(src1Stride, srcWidth) || !covers(src2Stride, srcWidth) ||
        !covers(dst1Stride, dstWidth) || !covers(dst2Stride, dstWidth))
        return call.failure();
    return call(src1, src2, srcWidth, srcHeight, src1Stride, src2Stride, dst1, dst2, dstWidth, dstHeight,
                dst1Stride, dst2Stride, projectionMatrix);
}

void odxTransformAffineClippedu8(ODX_SOURCE_V2, const float* affineMatrix, ODX_DESTINATION_V2, uint32_t* dstBorder)
{
    ODX_DEFAULT_STRIDES(1)
    const Call<odxTransformAffineClippedu8C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight)));
    if (!(src && affineMatrix && dst && srcStride >= srcWidth && dstStride >= dstWidth)) {
        call.refused("src && affineMatrix && dst && srcStride >= srcWidth && dstStride >= dstWidth");
        return;
    }
    call(src, srcWidth, srcHeight, srcStride, affineMatrix, dst, dstWidth, dstHeight, dstStride, dstBorder,
         ONDRIX_INTERPOLATION_BILINEAR);
}

odxStatus odxTransformAffineClippedu8_v2(ODX_SOURCE_V2, const float* affineMatrix, ODX_DESTINATION_V2,
                                         uint32_t* dstBorder, odxInterpolationType interpolation)
{
    ODX_DEFAULT_STRIDES(1)
    const Call<odxTransformAffineClippedu8C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight)));
    if (!src || !affineMatrix || !dst || !covers(srcStride, srcWidth) || !covers(dstStride, dstWidth))
        return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, affineMatrix, dst, dstWidth, dstHeight, dstStride, dstBorder,
                interpolation);
}

odxStatus odxTransformAffineClippedu8_v3(ODX_SOURCE_V2, const float* affineMatrix, ODX_DESTINATION_V2,
                                         uint32_t* dstBorder, odxInterpolationType interpolation,
                                         odxBorderType borderType, uint32_t borderValue)
{
    ODX_DEFAULT_STRIDES(1)
    const Call<odxTransformAffineClippedu8_v3C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight)));
    if (!src || !affineMatrix || !dst || !covers(srcStride, srcWidth) || !covers(dstStride, dstWidth) ||
        borderType > ONDRIX_BORDER_REPLICATE)
        return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, affineMatrix, dst, dstWidth, dstHeight, dstStride, dstBorder,
                interpolation, borderType, borderValue);
}

void odx3ChannelTransformAffineClippedBCu8(ODX_SOURCE_V2, const float* affineMatrix, ODX_DESTINATION_V2,
                                           uint32_t* dstBorder)
{
    ODX_DEFAULT_STRIDES(3)
    const Call<odx3ChannelTransformAffineClippedBCu8C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight)));
    ODX_CHECK_AS("src && affineMatrix && dst && dstBorder && srcWidth && srcHeight && dstWidth && dstHeight && "
                 "srcStride >= srcWidth*3 && dstStride >= dstWidth*3",
                 src && affineMatrix && dst && dstBorder && srcWidth && srcHeight && dstWidth && dstHeight &&
                     covers(srcStride, srcWidth, 3) && covers(dstStride, dstWidth, 3));
    call(src, srcWidth, srcHeight, srcStride, affineMatrix, dst, dstWidth, dstHeight, dstStride, dstBorder);
}

odxStatus odxRemapu8(ODX_SOURCE_V2, ODX_DESTINATION_V2, ODX_MAPS, odxInterpolationType interpolation)
{
    ODX_DEFAULT_STRIDES(1)
    mapStride = packedIfZero(mapStride, dstWidth * sizeof *mapX);
    const Call<odxRemapu8C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight)));
    if (!src || !dst || !mapX || !mapY || !covers(srcStride, srcWidth) || !covers(dstStride, dstWidth) ||
        !covers(mapStride, dstWidth, 4))
        return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, mapX, mapY, mapStride,
                interpolation);
}

odxStatus odxRemapu8_v2(ODX_SOURCE_V2, ODX_DESTINATION_V2, ODX_MAPS, odxInterpolationType interpolation,
                        odxBorderType borderType, uint32_t borderValue)
{
    ODX_DEFAULT_STRIDES(1)
    mapStride = packedIfZero(mapStride, dstWidth * sizeof *mapX);
    const Call<odxRemapu8_v2C> call(__func__, ODX_LIMITS(pixels(dstWidth, dstHeight)));
    if (!src || !dst || !mapX || !mapY || !covers(srcStride, srcWidth) || !covers(dstStride, dstWidth) ||
        !covers(mapStride, dstWidth, 4) || interpolation > ONDRIX_INTERPOLATION_BILINEAR ||
        borderType > ONDRIX_BORDER_REPLICATE)
        return call.failure();
    return call(src, srcWidth, srcHeight, srcStride, dst, dstWidth, dstHeight, dstStride, mapX, mapY, mapStride,
                interpolation, borderType, borderValue);
}

void odxCopyRotated17x17u8(const uint8_t* region, uint8_t* patch, float orientation)
{
    const Call<odxCopyRotated17x17u8C> call(__func__);
    ODX_CHECK(region && patch);
    call(region, patch, orientation);
}

odxStatus odxInvertAffineTransformf32(const float* affine, float* inverse)
{
    const Call<odxInvertAffineTransformf32C> call(__func__);
    if (!affine || !inverse) return call.failure();
    return call(affine, inverse);
}

void odxGetPerspectiveTransformf32(const float* src1, const float* src2, float* transformCoefficient)
{
    const Call<odxGetPerspectiveTransformf32C> call(__func__);
    ODX_CHECK(src1 && src2 && transformCoefficient);
    call(src1, src2, transformCoefficient);
}
}
