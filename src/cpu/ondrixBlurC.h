// Reference implementations: Gaussian, box and median filters.
#ifndef ODX_CPU_ONDRIX_BLUR_C_H
#define ODX_CPU_ONDRIX_BLUR_C_H

#include "frame/helpers.h"
#include "ondrix/smoothing.h"

extern "C" {
decltype(odxFilterGaussian3x3u8_v2) odxFilterGaussian3x3u8C;
decltype(odxFilterGaussian3x3u8_v3) odxFilterGaussian3x3u8_v3C;
decltype(odxFilterGaussian5x5u8_v2) odxFilterGaussian5x5u8C;
decltype(odxFilterGaussian11x11u8_v2) odxFilterGaussian11x11u8C;
decltype(odxFilterGaussian5x5s16_v2) odxFilterGaussian5x5s16C;
decltype(odxFilterGaussian5x5s32_v2) odxFilterGaussian5x5s32C;
decltype(odxBoxFilter3x3u8) odxBoxFilter3x3u8C;
decltype(odxBoxFilter3x3u8_v2) odxBoxFilter3x3u8_v2C;
decltype(odxBoxFilter5x5u8) odxBoxFilter5x5u8C;
decltype(odxBoxFilter11x11u8) odxBoxFilter11x11u8C;
decltype(odxBoxFilterNxNf32) odxBoxFilterNxNf32C;
decltype(odxFilterMedian3x3u8_v2) odxFilterMedian3x3u8C;
decltype(odxFilterMedian3x3u8_v3) odxFilterMedian3x3u8_v3C;
decltype(odxFilterMedianMxNs16) odxFilterMedianMxNs16C;

// 3x3 medians of 16 bits, inside the image.
void medianInteriorC(const int16_t* src, uint32_t width, uint32_t height, uint32_t srcStride, int16_t* dst,
                     uint32_t dstStride);
ODX_HELPER_POINTER(medianInterior);
}

#endif
