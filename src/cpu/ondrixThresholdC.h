// Reference implementations: thresholds.
#ifndef ODX_CPU_ONDRIX_THRESHOLD_C_H
#define ODX_CPU_ONDRIX_THRESHOLD_C_H

#include "cpu/ondrixThreshold.h"
#include "frame/helpers.h"
#include "ondrix/thresholding.h"

extern "C" {

// ---- loops over whole images ----

// Each level as the range has it.
typedef void odxMarkRange(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcStride, uint8_t* dst,
                          uint32_t dstStride, const odx::threshold::Range& range);
odxMarkRange markRangeC;
ODX_HELPER_POINTER(markRange);

// `within` where from - less is at most `limit`, else `beyond`; the destination may be one of the sources.
typedef void odxMarkDifference(const uint8_t* from, uint32_t fromStride, const uint8_t* less, uint32_t lessStride,
                               uint32_t width, uint32_t height, uint8_t* dst, uint32_t dstStride, uint8_t limit,
                               uint8_t within, uint8_t beyond);
odxMarkDifference markDifferenceC;
ODX_HELPER_POINTER(markDifference);

// ---- operations ----

decltype(odxFilterThresholdu8_v2) odxFilterThresholdu8C;
decltype(odxFilterThresholdu8_v3) odxFilterThresholdu8_v3C;
decltype(odxFilterThresholdRangeu8_v2) odxFilterThresholdRangeu8C;
decltype(odxFilterThresholdOtsuu8) odxFilterThresholdOtsuu8C;
decltype(odxAdaptiveThresholdGaussian3x3u8) odxAdaptiveThresholdGaussian3x3u8C, odxAdaptiveThresholdGaussian5x5u8C,
    odxAdaptiveThresholdGaussian11x11u8C, odxAdaptiveThresholdMean3x3u8C, odxAdaptiveThresholdMean5x5u8C,
    odxAdaptiveThresholdMean11x11u8C;
}

#endif
