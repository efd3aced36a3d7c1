#include "ondrix/colorFromRgb.h"

#include "frame/entries/color.h"

using namespace odx;
using namespace odx::color;

extern "C" {

// The text of a check is logged as it is spelled here, blanks included.
// clang-format off

// Length of a row of packed pixels.
#define ODX_RGB565_ROW srcWidth*2
#define ODX_RGB888_ROW srcWidth*3
#define ODX_RGBA8888_ROW srcWidth*4
#define ODX_BGR565_ROW srcWidth*2
#define ODX_BGR888_ROW srcWidth*3
#define ODX_BGRA8888_ROW srcWidth*4

// Length of a row of chroma. The conversions from RGB have whole pairs of pixels only.
#define ODX_444_Planar_ROW srcWidth
#define ODX_422_Planar_ROW (srcWidth+1)/2
#define ODX_420_Planar_ROW (srcWidth+1)/2
#define ODX_444_PlanarFromRgb_ROW srcWidth
#define ODX_422_PlanarFromRgb_ROW srcWidth/2
#define ODX_420_PlanarFromRgb_ROW srcWidth/2
#define ODX_444_PseudoPlanar_ROW srcWidth*2
#define ODX_422_PseudoPlanar_ROW srcWidth
#define ODX_420_PseudoPlanar_ROW srcWidth

// The parts of an image, `side` being src or dst; `row` is that of a packed image, or that of the chroma.
#define ODX_Packed_POINTERS(side) side
#define ODX_Packed_STRIDES(side) side##Stride
#define ODX_Packed_GIVEN(side) side
#define ODX_Packed_DEFAULTS(side, row) ODX_DEFAULT(side##Stride, row)
#define ODX_Packed_FIT(side, row) ODX_FITS(side##Stride, row)

#define ODX_Planar_POINTERS(side) side##Y, side##Cb, side##Cr
#define ODX_Planar_STRIDES(side) side##YStride, side##CbStride, side##CrStride
#define ODX_Planar_GIVEN(side) side##Y && side##Cb && side##Cr
#define ODX_Planar_DEFAULTS(side, row) \
    ODX_DEFAULT(side##YStride, srcWidth) ODX_DEFAULT(side##CbStride, row) ODX_DEFAULT(side##CrStride, row)
#define ODX_Planar_FIT(side, row) \
    ODX_FITS(side##YStride, srcWidth) && ODX_FITS(side##CbStride, row) && ODX_FITS(side##CrStride, row)

#define ODX_PseudoPlanar_POINTERS(side) side##Y, side##C
#define ODX_PseudoPlanar_STRIDES(side) side##YStride, side##CStride
#define ODX_PseudoPlanar_GIVEN(side) side##Y && side##C
#define ODX_PseudoPlanar_DEFAULTS(side, row) ODX_DEFAULT(side##YStride, srcWidth) ODX_DEFAULT(side##CStride, row)
#define ODX_PseudoPlanar_FIT(side, row) ODX_FITS(side##YStride, srcWidth) && ODX_FITS(side##CStride, row)

#define ODX_DEFAULT(stride, row) stride = packedIfZero(stride, row);
#define ODX_FITS(stride, row) ( stride == 0 || stride >= (row*sizeof(uint8_t)) )
// A check whose text is what its macros stand for.
#define ODX_CHECK_SPELLED_OUT(condition) ODX_CHECK(condition)

// An entry point from one form of image to another.
#define ODX_CONVERSION(name, from, fromRow, to, toRow) ODX_VERSION_OF(name, name, from, fromRow, to, toRow)
// One that goes through the slot of another operation.
#define ODX_VERSION_OF(base, name, from, fromRow, to, toRow)                                                  \
    void name(ODX_##from##_SOURCE, ODX_##to##_DESTINATION)                                                    \
    {                                                                                                         \
        ODX_##from##_DEFAULTS(src, fromRow)                                                                   \
        ODX_##to##_DEFAULTS(dst, toRow)                                                                       \
        const Call<base##C> call(                                                                             \
            __func__,                                                                                         \
            [&] {                                                                                             \
                return remoteFits(srcWidth, srcHeight, ODX_##from##_POINTERS(src), ODX_##from##_STRIDES(src), \
                                  ODX_##to##_POINTERS(dst), ODX_##to##_STRIDES(dst));                         \
            },                                                                                                \
            [&] { return gpuFits(srcWidth, ODX_##from##_POINTERS(src), ODX_##to##_POINTERS(dst)); });         \
        ODX_CHECK_SPELLED_OUT(ODX_##from##_GIVEN(src) && ODX_##to##_GIVEN(dst) && srcWidth && srcHeight &&    \
                              ODX_##from##_FIT(src, fromRow) && ODX_##to##_FIT(dst, toRow));                  \
        call(ODX_##from##_POINTERS(src), srcWidth, srcHeight, ODX_##from##_STRIDES(src),                      \
             ODX_##to##_POINTERS(dst), ODX_##to##_STRIDES(dst));                                              \
    }

#define ODX_DEFINE(pixels, subsampling, source, rows)                                                                  \
    ODX_CONVERSION(odxColor##pixels##ToYCbCr##subsampling##Planaru8, Packed, ODX_##pixels##_ROW, Planar, \
                   ODX_##subsampling##_PlanarFromRgb_ROW)                                                \
    ODX_CONVERSION(odxColor##pixels##ToYCbCr##subsampling##PseudoPlanaru8, Packed, ODX_##pixels##_ROW,   \
                   PseudoPlanar, ODX_##subsampling##_PseudoPlanar_ROW)
ODX_RGB_TO_YCBCR(ODX_DEFINE)
#undef ODX_DEFINE

#define ODX_DEFINE(from, to) \
    ODX_CONVERSION(odxColor##from##To##to##u8, Packed, ODX_##from##_ROW, Packed, ODX_##to##_ROW)
ODX_RGB_TO_RGB(ODX_DEFINE)
#undef ODX_DEFINE

#define ODX_DEFINE(from, fromSubsampling, to, toSubsampling)                                   \
    ODX_CONVERSION(odxColorYCbCr##fromSubsampling##from##ToYCbCr##toSubsampling##to##u8, from, \
                   ODX_##fromSubsampling##_##from##_ROW, to, ODX_##toSubsampling##_##to##_ROW)
ODX_YCBCR_TO_YCBCR(ODX_DEFINE)
#undef ODX_DEFINE

ODX_CONVERSION(odxColorRGB888ToRGB565Rotate180u8, Packed, ODX_RGB888_ROW, Packed, ODX_RGB565_ROW)
ODX_CONVERSION(odxColorRGB888ToGrayu8, Packed, ODX_RGB888_ROW, Packed, srcWidth)
ODX_CONVERSION(odxColorRGB888ToHSV888u8, Packed, ODX_RGB888_ROW, Packed, srcWidth*3)
ODX_VERSION_OF(odxColorRGB888toYCrCbu8, odxColorRGB888toYCrCbu8_v2, Packed, ODX_RGB888_ROW, Packed, srcWidth*3)
ODX_CONVERSION(odxColorRGBA8888ToLABu8, Packed, ODX_RGBA8888_ROW, Packed, srcWidth*3)
ODX_CONVERSION(odxColorCbCrSwapu8, Packed, srcWidth*2, Packed, srcWidth*2)
// clang-format on

void odxColorRGB888toYCrCbu8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const Call<odxColorRGB888toYCrCbu8C> call(
        __func__, [&] { return remoteFits(width, height, src, dst); }, [&] { return gpuFits(width, src, dst); });
    ODX_CHECK(src && dst && width && height);
    call(src, width, height, width * 3, dst, width * 3);
}
}
