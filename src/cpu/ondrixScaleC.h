// Reference implementations: scaling.
#ifndef ODX_CPU_ONDRIX_SCALE_C_H
#define ODX_CPU_ONDRIX_SCALE_C_H

#include "frame/helpers.h"
#include "ondrix/scaling.h"

namespace odx::scale
{
struct Resize;
}

extern "C" {
decltype(odxScaleDownBy2u8_v2) odxScaleDownBy2u8C;
decltype(odxScaleDownBy4u8_v2) odxScaleDownBy4u8C;
decltype(odxScaleDown3To2u8) odxScaleDown3To2u8C;
decltype(odxScaleDownu8_v2) odxScaleDownu8C;
decltype(odxScaleDownMNu8) odxScaleDownMNu8C;
decltype(odxScaleDownMNInterleaveu8) odxScaleDownMNInterleaveu8C;
decltype(odxScaleDownBy2Gaussian5x5u8_v2) odxScaleDownBy2Gaussian5x5u8C;
decltype(odxScaleDownBy2Gaussian5x5f32) odxScaleDownBy2Gaussian5x5f32C;
decltype(odxScaleDownBy2Gaussian5x5f32_v2) odxScaleDownBy2Gaussian5x5f32_v2C;
decltype(odxScaleDownBy2Gaussian3x3u8) odxScaleDownBy2Gaussian3x3u8C;
decltype(odxScaleUpBy2Gaussian5x5u8_v2) odxScaleUpBy2Gaussian5x5u8C;
decltype(odxUpsampleVerticalu8) odxUpsampleVerticalu8C;
decltype(odxUpsampleHorizontalu8) odxUpsampleHorizontalu8C;
decltype(odxUpsample2Du8) odxUpsample2Du8C;
decltype(odxUpsampleVerticalInterleavedu8) odxUpsampleVerticalInterleavedu8C;
decltype(odxUpsampleHorizontalInterleavedu8) odxUpsampleHorizontalInterleavedu8C;
decltype(odxUpsample2DInterleavedu8) odxUpsample2DInterleavedu8C;
decltype(odxScaleDownNNu8) odxScaleDownNNu8C;
decltype(odxScaleDownBLu8) odxScaleDownBLu8C;
decltype(odxScaleUpPolyu8) odxScaleUpPolyu8C;
decltype(odxScaleUpPolyInterleaveu8) odxScaleUpPolyInterleaveu8C;
decltype(odxScaleu8) odxScaleu8C;
decltype(odxScaleu8_v2) odxScaleu8_v2C;

// Upsampling a row of pixels with so many channels of a byte.
void upsampleRowC(const uint8_t* src, uint8_t* dst, uint32_t pixels, uint32_t channels);
// The two rows between two others, byte by byte.
void upsampleBetweenC(const uint8_t* above, const uint8_t* below, uint8_t* upper, uint8_t* lower, uint32_t bytes);
// Both at once.
void upsampleSquaresC(const uint8_t* above, const uint8_t* below, uint8_t* upper, uint8_t* lower, uint32_t pixels,
                      uint32_t channels);
// Means of groups of pixels.
void groupMeansC(const odx::scale::Resize* image, uint32_t channels);
ODX_HELPER_POINTER(upsampleRow);
ODX_HELPER_POINTER(upsampleBetween);
ODX_HELPER_POINTER(upsampleSquares);
ODX_HELPER_POINTER(groupMeans);
}

#endif
