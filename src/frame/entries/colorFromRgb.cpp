#include "ondrix/colorFromRgb.h"

#include "frame/entries/color.h"

using namespace odx;
using namespace odx::color;

extern "C" {

// clang-format off
// RGB to luma and chroma. These have whole pairs of pixels only.
ODX_CONVERSION(odxColorRGB565ToYCbCr444Planaru8, Packed, srcWidth*2, Planar, srcWidth)
ODX_CONVERSION(odxColorRGB888ToYCbCr444Planaru8, Packed, srcWidth*3, Planar, srcWidth)
ODX_CONVERSION(odxColorRGBA8888ToYCbCr444Planaru8, Packed, srcWidth*4, Planar, srcWidth)
ODX_CONVERSION(odxColorRGB565ToYCbCr422Planaru8, Packed, srcWidth*2, Planar, srcWidth/2)
ODX_CONVERSION(odxColorRGB888ToYCbCr422Planaru8, Packed, srcWidth*3, Planar, srcWidth/2)
ODX_CONVERSION(odxColorRGBA8888ToYCbCr422Planaru8, Packed, srcWidth*4, Planar, srcWidth/2)
ODX_CONVERSION(odxColorRGB565ToYCbCr420Planaru8, Packed, srcWidth*2, Planar, srcWidth/2)
ODX_CONVERSION(odxColorRGB888ToYCbCr420Planaru8, Packed, srcWidth*3, Planar, srcWidth/2)
ODX_CONVERSION(odxColorRGBA8888ToYCbCr420Planaru8, Packed, srcWidth*4, Planar, srcWidth/2)
ODX_CONVERSION(odxColorRGB565ToYCbCr444PseudoPlanaru8, Packed, srcWidth*2, PseudoPlanar, srcWidth*2)
ODX_CONVERSION(odxColorRGB888ToYCbCr444PseudoPlanaru8, Packed, srcWidth*3, PseudoPlanar, srcWidth*2)
ODX_CONVERSION(odxColorRGBA8888ToYCbCr444PseudoPlanaru8, Packed, srcWidth*4, PseudoPlanar, srcWidth*2)
ODX_CONVERSION(odxColorRGB565ToYCbCr422PseudoPlanaru8, Packed, srcWidth*2, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorRGB888ToYCbCr422PseudoPlanaru8, Packed, srcWidth*3, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorRGBA8888ToYCbCr422PseudoPlanaru8, Packed, srcWidth*4, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorRGB565ToYCbCr420PseudoPlanaru8, Packed, srcWidth*2, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorRGB888ToYCbCr420PseudoPlanaru8, Packed, srcWidth*3, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorRGBA8888ToYCbCr420PseudoPlanaru8, Packed, srcWidth*4, PseudoPlanar, srcWidth)

// RGB to single and interleaved planes
ODX_CONVERSION(odxColorRGB888ToGrayu8, Packed, srcWidth*3, Packed, srcWidth)
ODX_CONVERSION(odxColorRGB888ToHSV888u8, Packed, srcWidth*3, Packed, srcWidth*3)
ODX_CONVERSION(odxColorRGBA8888ToLABu8, Packed, srcWidth*4, Packed, srcWidth*3)
ODX_CONVERSION_VERSION(odxColorRGB888toYCrCbu8_v2, odxColorRGB888toYCrCbu8, Packed, srcWidth*3, Packed, srcWidth*3)

// RGB to RGB
ODX_CONVERSION(odxColorRGB565ToRGB888u8, Packed, srcWidth*2, Packed, srcWidth*3)
ODX_CONVERSION(odxColorRGB565ToRGBA8888u8, Packed, srcWidth*2, Packed, srcWidth*4)
ODX_CONVERSION(odxColorRGB565ToBGR565u8, Packed, srcWidth*2, Packed, srcWidth*2)
ODX_CONVERSION(odxColorRGB565ToBGR888u8, Packed, srcWidth*2, Packed, srcWidth*3)
ODX_CONVERSION(odxColorRGB565ToBGRA8888u8, Packed, srcWidth*2, Packed, srcWidth*4)
ODX_CONVERSION(odxColorRGB888ToRGB565u8, Packed, srcWidth*3, Packed, srcWidth*2)
ODX_CONVERSION(odxColorRGB888ToRGBA8888u8, Packed, srcWidth*3, Packed, srcWidth*4)
ODX_CONVERSION(odxColorRGB888ToBGR565u8, Packed, srcWidth*3, Packed, srcWidth*2)
ODX_CONVERSION(odxColorRGB888ToBGR888u8, Packed, srcWidth*3, Packed, srcWidth*3)
ODX_CONVERSION(odxColorRGB888ToBGRA8888u8, Packed, srcWidth*3, Packed, srcWidth*4)
ODX_CONVERSION(odxColorRGBA8888ToRGB565u8, Packed, srcWidth*4, Packed, srcWidth*2)
ODX_CONVERSION(odxColorRGBA8888ToRGB888u8, Packed, srcWidth*4, Packed, srcWidth*3)
ODX_CONVERSION(odxColorRGBA8888ToBGR565u8, Packed, srcWidth*4, Packed, srcWidth*2)
ODX_CONVERSION(odxColorRGBA8888ToBGR888u8, Packed, srcWidth*4, Packed, srcWidth*3)
ODX_CONVERSION(odxColorRGBA8888ToBGRA8888u8, Packed, srcWidth*4, Packed, srcWidth*4)
ODX_CONVERSION(odxColorRGB888ToRGB565Rotate180u8, Packed, srcWidth*3, Packed, srcWidth*2)

// Between the layouts of luma and chroma
ODX_CONVERSION(odxColorYCbCr444PlanarToYCbCr422Planaru8, Planar, srcWidth, Planar, (srcWidth+1)/2)
ODX_CONVERSION(odxColorYCbCr444PlanarToYCbCr420Planaru8, Planar, srcWidth, Planar, (srcWidth+1)/2)
ODX_CONVERSION(odxColorYCbCr444PlanarToYCbCr444PseudoPlanaru8, Planar, srcWidth, PseudoPlanar, srcWidth*2)
ODX_CONVERSION(odxColorYCbCr444PlanarToYCbCr422PseudoPlanaru8, Planar, srcWidth, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorYCbCr444PlanarToYCbCr420PseudoPlanaru8, Planar, srcWidth, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorYCbCr422PlanarToYCbCr444Planaru8, Planar, (srcWidth+1)/2, Planar, srcWidth)
ODX_CONVERSION(odxColorYCbCr422PlanarToYCbCr420Planaru8, Planar, (srcWidth+1)/2, Planar, (srcWidth+1)/2)
ODX_CONVERSION(odxColorYCbCr422PlanarToYCbCr444PseudoPlanaru8, Planar, (srcWidth+1)/2, PseudoPlanar, srcWidth*2)
ODX_CONVERSION(odxColorYCbCr422PlanarToYCbCr422PseudoPlanaru8, Planar, (srcWidth+1)/2, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorYCbCr422PlanarToYCbCr420PseudoPlanaru8, Planar, (srcWidth+1)/2, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorYCbCr420PlanarToYCbCr444Planaru8, Planar, (srcWidth+1)/2, Planar, srcWidth)
ODX_CONVERSION(odxColorYCbCr420PlanarToYCbCr422Planaru8, Planar, (srcWidth+1)/2, Planar, (srcWidth+1)/2)
ODX_CONVERSION(odxColorYCbCr420PlanarToYCbCr444PseudoPlanaru8, Planar, (srcWidth+1)/2, PseudoPlanar, srcWidth*2)
ODX_CONVERSION(odxColorYCbCr420PlanarToYCbCr422PseudoPlanaru8, Planar, (srcWidth+1)/2, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorYCbCr420PlanarToYCbCr420PseudoPlanaru8, Planar, (srcWidth+1)/2, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToYCbCr444Planaru8, PseudoPlanar, srcWidth*2, Planar, srcWidth)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToYCbCr422Planaru8, PseudoPlanar, srcWidth*2, Planar, (srcWidth+1)/2)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToYCbCr420Planaru8, PseudoPlanar, srcWidth*2, Planar, (srcWidth+1)/2)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToYCbCr422PseudoPlanaru8, PseudoPlanar, srcWidth*2, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorYCbCr444PseudoPlanarToYCbCr420PseudoPlanaru8, PseudoPlanar, srcWidth*2, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToYCbCr444Planaru8, PseudoPlanar, srcWidth, Planar, srcWidth)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToYCbCr422Planaru8, PseudoPlanar, srcWidth, Planar, (srcWidth+1)/2)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToYCbCr420Planaru8, PseudoPlanar, srcWidth, Planar, (srcWidth+1)/2)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToYCbCr444PseudoPlanaru8, PseudoPlanar, srcWidth, PseudoPlanar, srcWidth*2)
ODX_CONVERSION(odxColorYCbCr422PseudoPlanarToYCbCr420PseudoPlanaru8, PseudoPlanar, srcWidth, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToYCbCr444Planaru8, PseudoPlanar, srcWidth, Planar, srcWidth)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToYCbCr422Planaru8, PseudoPlanar, srcWidth, Planar, (srcWidth+1)/2)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToYCbCr420Planaru8, PseudoPlanar, srcWidth, Planar, (srcWidth+1)/2)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToYCbCr444PseudoPlanaru8, PseudoPlanar, srcWidth, PseudoPlanar, srcWidth*2)
ODX_CONVERSION(odxColorYCbCr420PseudoPlanarToYCbCr422PseudoPlanaru8, PseudoPlanar, srcWidth, PseudoPlanar, srcWidth)
ODX_CONVERSION(odxColorCbCrSwapu8, Packed, srcWidth*2, Packed, srcWidth*2)
// clang-format on

void odxColorRGB888toYCrCbu8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const Call<odxColorRGB888toYCrCbu8C> call(__func__, ODX_LIMITS(image(width, height) & aligned(src, dst)));
    ODX_CHECK(src && dst && width && height);
    call(src, width, height, width * 3, dst, width * 3);
}
}
