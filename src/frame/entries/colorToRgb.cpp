#include "ondrix/colorToRgb.h"

#include "frame/entries/color.h"

using namespace odx;
using namespace odx::color;

extern "C" {

// A packed image as the texts of this family spell it: without the last blank.
#define ODX_Rgb_DESTINATION ODX_Packed_DESTINATION
#define ODX_Rgb_PLANES(side, row) ODX_Packed_PLANES(side, row)
#define ODX_Rgb_GIVEN(side) ODX_Packed_GIVEN(side)
#define ODX_Rgb_FIT(side, row) "( " #side "Stride == 0 || " #side "Stride >= (" #row "*sizeof(uint8_t)))"

// clang-format off
ODX_CONVERSION(odxColorYCbCr444PlanarToRGB565u8, Planar, srcWidth, Rgb, srcWidth*2)
ODX_CONVERSION(odxColorYCbCr444PlanarToRGB888u8, Planar, srcWidth, Rgb, srcWidth*3)
ODX_CONVERSION(odxColorYCbCr444PlanarToRGBA8888u8, Planar, srcWidth, Rgb, srcWidth*4)
ODX_CONVERSION(odxColorYCbCr422PlanarToRGB565u8, Planar, (srcWidth+1)/2, Rgb, srcWidth*2)
ODX_CONVERSION(odxColorYCbCr422PlanarToRGB888u8, Planar, (srcWidth+1)/2, Rgb, srcWidth*3)
ODX_CONVERSION(odxColorYCbCr422PlanarToRGBA8888u8, Planar, (srcWidth+1)/2, Rgb, srcWidth*4)
ODX_CONVERSION(odxColorYCbCr420PlanarToRGB565u8, Planar, (srcWidth+1)/2, Rgb, srcWidth*2)
ODX_CONVERSION(odxColorYCbCr420PlanarToRGB888u8, Planar, (srcWidth+1)/2, Rgb, srcWidth*3)
ODX_CONVERSION(odxColorYCbCr420PlanarToRGBA8888u8, Planar, (srcWidth+1)/2, Rgb, srcWidth*4)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToRGB565u8, PseudoPlanar, srcWidth*2, Rgb, srcWidth*2)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToRGB888u8, PseudoPlanar, srcWidth*2, Rgb, srcWidth*3)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToRGBA8888u8, PseudoPlanar, srcWidth*2, Rgb, srcWidth*4)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToRGB565u8, PseudoPlanar, srcWidth, Rgb, srcWidth*2)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToRGB888u8, PseudoPlanar, srcWidth, Rgb, srcWidth*3)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToRGBA8888u8, PseudoPlanar, srcWidth, Rgb, srcWidth*4)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToRGB565u8, PseudoPlanar, srcWidth, Rgb, srcWidth*2)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToRGB888u8, PseudoPlanar, srcWidth, Rgb, srcWidth*3)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToRGBA8888u8, PseudoPlanar, srcWidth, Rgb, srcWidth*4)
// clang-format on

ODX_PACKED_CONVERSION(odxColorYUV420toRGB565u8)
ODX_PACKED_CONVERSION(odxColorYUV420toRGB565u8Rotate180)
ODX_PACKED_CONVERSION(odxColorYUV420toRGB8888u8)
ODX_PACKED_CONVERSION(odxColorYCrCbH1V1toRGB888u8)
ODX_PACKED_CONVERSION(odxColorYCrCbH2V2toRGB888u8)
ODX_PACKED_CONVERSION(odxColorYCrCbH2V1toRGB888u8)
ODX_PACKED_CONVERSION(odxColorYCrCbH1V2toRGB888u8)

void odxColorYCrCb420PseudoPlanarToRGB8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                             uint32_t srcYStride, uint32_t srcCStride, uint8_t* dst,
                                             uint32_t dstStride)
{
    const Call<odxColorYCrCb420PseudoPlanarToRGB8888u8C> call(
        __func__, ODX_LIMITS(image(srcWidth, srcHeight) & aligned(src, srcYStride, srcCStride, dst, dstStride)));
    ODX_CHECK(src && dst && srcWidth && srcHeight && srcYStride && srcCStride && dstStride);
    call(src, srcWidth, srcHeight, srcYStride, srcCStride, dst, dstStride);
}
}
