// Reference implementations: colour conversions from luma and chroma to RGB.
#ifndef ODX_CPU_ONDRIX_COLOR_C_H
#define ODX_CPU_ONDRIX_COLOR_C_H

#include "cpu/ondrixColor.h"
#include "ondrix/colorToRgb.h"

extern "C" {
#define ODX_COLOR_REFERENCE(subsampling, pixels)                                                                  \
    decltype(odxColorYCbCr##subsampling##PlanarTo##pixels##u8) odxColorYCbCr##subsampling##PlanarTo##pixels##u8C; \
    decltype(odxColorYCbCr##subsampling##PseudoPlanarTo##pixels##u8)                                              \
        odxColorYCbCr##subsampling##PseudoPlanarTo##pixels##u8C;
ODX_YCBCR_TO_RGB(ODX_COLOR_REFERENCE)
#undef ODX_COLOR_REFERENCE
decltype(odxColorYUV420toRGB565u8) odxColorYUV420toRGB565u8C;
decltype(odxColorYUV420toRGB565u8Rotate180) odxColorYUV420toRGB565u8Rotate180C;
decltype(odxColorYCrCb420PseudoPlanarToRGB8888u8) odxColorYCrCb420PseudoPlanarToRGB8888u8C;
decltype(odxColorYUV420toRGB8888u8) odxColorYUV420toRGB8888u8C;
decltype(odxColorYCrCbH1V1toRGB888u8) odxColorYCrCbH1V1toRGB888u8C;
decltype(odxColorYCrCbH2V2toRGB888u8) odxColorYCrCbH2V2toRGB888u8C;
decltype(odxColorYCrCbH2V1toRGB888u8) odxColorYCrCbH2V1toRGB888u8C;
decltype(odxColorYCrCbH1V2toRGB888u8) odxColorYCrCbH1V2toRGB888u8C;
}

#endif
