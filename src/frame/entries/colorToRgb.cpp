#include "ondrix/colorToRgb.h"

#include "frame/entries/color.h"

using namespace odx;
using namespace odx::color;

extern "C" {

// The conversions of planar images: chromaWidth is the length of a chroma row in bytes, pixelSize that of a pixel.
#define ODX_PLANAR(name, chromaWidth, pixelSize)                                                                 \
    void name(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr, uint32_t srcWidth,                \
              uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst, \
              uint32_t dstStride)                                                                                \
    {                                                                                                            \
        srcYStride = packedIfZero(srcYStride, srcWidth);                                                         \
        srcCbStride = packedIfZero(srcCbStride, chromaWidth);                                                    \
        srcCrStride = packedIfZero(srcCrStride, chromaWidth);                                                    \
        dstStride = packedIfZero(dstStride, srcWidth * pixelSize);                                               \
        const Call<name##C> call(                                                                                \
            __func__,                                                                                            \
            [&] {                                                                                                \
                return remoteFits(srcWidth, srcHeight, srcY, srcCb, srcCr, srcYStride, srcCbStride, srcCrStride, \
                                  dst, dstStride);                                                               \
            },                                                                                                   \
            [&] { return gpuFits(srcWidth, srcY, srcCb, srcCr, dst); });                                         \
        ODX_CHECK(srcY && srcCb && srcCr && dst && srcWidth && srcHeight && ( srcYStride == 0 || srcYStride >= (srcWidth*sizeof(uint8_t)) ) && ( srcCbStride == 0 || srcCbStride >= (chromaWidth*sizeof(uint8_t)) ) && ( srcCrStride == 0 || srcCrStride >= (chromaWidth*sizeof(uint8_t)) ) && ( dstStride == 0 || dstStride >= (srcWidth*pixelSize*sizeof(uint8_t))));       \
        call(srcY, srcCb, srcCr, srcWidth, srcHeight, srcYStride, srcCbStride, srcCrStride, dst, dstStride);     \
    }

// The widths stand in the text of the checks.
// clang-format off
ODX_PLANAR(odxColorYCbCr444PlanarToRGB565u8, srcWidth, 2)
ODX_PLANAR(odxColorYCbCr444PlanarToRGB888u8, srcWidth, 3)
ODX_PLANAR(odxColorYCbCr444PlanarToRGBA8888u8, srcWidth, 4)
ODX_PLANAR(odxColorYCbCr422PlanarToRGB565u8, (srcWidth+1)/2, 2)
ODX_PLANAR(odxColorYCbCr422PlanarToRGB888u8, (srcWidth+1)/2, 3)
ODX_PLANAR(odxColorYCbCr422PlanarToRGBA8888u8, (srcWidth+1)/2, 4)
ODX_PLANAR(odxColorYCbCr420PlanarToRGB565u8, (srcWidth+1)/2, 2)
ODX_PLANAR(odxColorYCbCr420PlanarToRGB888u8, (srcWidth+1)/2, 3)
ODX_PLANAR(odxColorYCbCr420PlanarToRGBA8888u8, (srcWidth+1)/2, 4)
// clang-format on
#undef ODX_PLANAR

// The conversions of pseudo-planar images.
#define ODX_PSEUDO_PLANAR(name, chromaWidth, pixelSize)                                                          \
    void name(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth, uint32_t srcHeight,                   \
              uint32_t srcYStride, uint32_t srcCStride, uint8_t* dst, uint32_t dstStride)                        \
    {                                                                                                            \
        srcYStride = packedIfZero(srcYStride, srcWidth);                                                         \
        srcCStride = packedIfZero(srcCStride, chromaWidth);                                                      \
        dstStride = packedIfZero(dstStride, srcWidth * pixelSize);                                               \
        const Call<name##C> call(                                                                                \
            __func__,                                                                                            \
            [&] { return remoteFits(srcWidth, srcHeight, srcY, srcC, srcYStride, srcCStride, dst, dstStride); }, \
            [&] { return gpuFits(srcWidth, srcY, srcC, dst); });                                                 \
        ODX_CHECK(srcY && srcC && dst && srcWidth && srcHeight && ( srcYStride == 0 || srcYStride >= (srcWidth*sizeof(uint8_t)) ) && ( srcCStride == 0 || srcCStride >= (chromaWidth*sizeof(uint8_t)) ) && ( dstStride == 0 || dstStride >= (srcWidth*pixelSize*sizeof(uint8_t))));       \
        call(srcY, srcC, srcWidth, srcHeight, srcYStride, srcCStride, dst, dstStride);                           \
    }

// clang-format off
ODX_PSEUDO_PLANAR(odxColorYCbCr444PseudoPlanarToRGB565u8, srcWidth*2, 2)
ODX_PSEUDO_PLANAR(odxColorYCbCr444PseudoPlanarToRGB888u8, srcWidth*2, 3)
ODX_PSEUDO_PLANAR(odxColorYCbCr444PseudoPlanarToRGBA8888u8, srcWidth*2, 4)
ODX_PSEUDO_PLANAR(odxColorYCbCr422PseudoPlanarToRGB565u8, srcWidth, 2)
ODX_PSEUDO_PLANAR(odxColorYCbCr422PseudoPlanarToRGB888u8, srcWidth, 3)
ODX_PSEUDO_PLANAR(odxColorYCbCr422PseudoPlanarToRGBA8888u8, srcWidth, 4)
ODX_PSEUDO_PLANAR(odxColorYCbCr420PseudoPlanarToRGB565u8, srcWidth, 2)
ODX_PSEUDO_PLANAR(odxColorYCbCr420PseudoPlanarToRGB888u8, srcWidth, 3)
ODX_PSEUDO_PLANAR(odxColorYCbCr420PseudoPlanarToRGBA8888u8, srcWidth, 4)
// clang-format on
#undef ODX_PSEUDO_PLANAR

// The conversions of images in one packed buffer.
#define ODX_SINGLE_BUFFER(name)                                                  \
    void name(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst) \
    {                                                                            \
        const Call<name##C> call(                                                \
            __func__, [&] { return remoteFits(width, height, src, dst); },       \
            [&] { return gpuFits(width, src, dst); });                           \
        ODX_CHECK(src && dst && width && height);                                \
        call(src, width, height, dst);                                           \
    }

ODX_SINGLE_BUFFER(odxColorYUV420toRGB565u8)
ODX_SINGLE_BUFFER(odxColorYUV420toRGB565u8Rotate180)
ODX_SINGLE_BUFFER(odxColorYUV420toRGB8888u8)
ODX_SINGLE_BUFFER(odxColorYCrCbH1V1toRGB888u8)
ODX_SINGLE_BUFFER(odxColorYCrCbH2V2toRGB888u8)
ODX_SINGLE_BUFFER(odxColorYCrCbH2V1toRGB888u8)
ODX_SINGLE_BUFFER(odxColorYCrCbH1V2toRGB888u8)
#undef ODX_SINGLE_BUFFER

void odxColorYCrCb420PseudoPlanarToRGB8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcYStride, uint32_t srcCStride, uint8_t* dst,
                                             uint32_t dstStride)
{
    const Call<odxColorYCrCb420PseudoPlanarToRGB8888u8C> call(
        __func__, [&] { return remoteFits(srcWidth, srcHeight, src, srcYStride, srcCStride, dst, dstStride); },
        [&] { return gpuFits(srcWidth, src, dst); });
    ODX_CHECK(src && dst && srcWidth && srcHeight && srcYStride && srcCStride && dstStride);
    call(src, srcWidth, srcHeight, srcYStride, srcCStride, dst, dstStride);
}
}
