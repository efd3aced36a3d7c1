// Reference implementations: statistics of images.
#ifndef ODX_CPU_ONDRIX_STAT_C_H
#define ODX_CPU_ONDRIX_STAT_C_H

#include "frame/helpers.h"
#include "ondrix/statistics.h"

namespace odx::moments
{
template <class Sum>
struct Powers;
}

// The sums of at most seven rows, about their first pixel.
template <class T>
using odxMomentsOfBand = void(const T* src, uint32_t stride, uint32_t width, uint32_t height, uint32_t binary,
                              odx::moments::Powers<double>& sums);

extern "C" {

// ---- loops over a few rows ----

odxMomentsOfBand<uint8_t> momentsOfBandu8C;
odxMomentsOfBand<int32_t> momentsOfBands32C;
odxMomentsOfBand<float> momentsOfBandf32C;
ODX_HELPER_POINTER(momentsOfBandu8);
ODX_HELPER_POINTER(momentsOfBands32);
ODX_HELPER_POINTER(momentsOfBandf32);

// ---- operations ----

decltype(odxMinMaxLocu8) odxMinMaxLocu8C;
decltype(odxMinMaxLocs16) odxMinMaxLocs16C;
decltype(odxMinMaxLocu16) odxMinMaxLocu16C;
decltype(odxMinMaxLocs32) odxMinMaxLocs32C;
decltype(odxMinMaxLocu32) odxMinMaxLocu32C;
decltype(odxMinMaxLocf32) odxMinMaxLocf32C;
decltype(odxMinMaxLocu8_v2) odxMinMaxLocu8_v2C;
decltype(odxMinMaxLocs16_v2) odxMinMaxLocs16_v2C;
decltype(odxMinMaxLocu16_v2) odxMinMaxLocu16_v2C;
decltype(odxMinMaxLocs32_v2) odxMinMaxLocs32_v2C;
decltype(odxMinMaxLocu32_v2) odxMinMaxLocu32_v2C;
decltype(odxMinMaxLocf32_v2) odxMinMaxLocf32_v2C;
decltype(odxImageIntensityHistogram) odxImageIntensityHistogramC;
decltype(odxImageSpatialHistogramu8_v2) odxImageSpatialHistogramu8C;
decltype(odxImageHistogramEqualizeu8) odxImageHistogramEqualizeu8C;
decltype(odxImageIntensityStats) odxImageIntensityStatsC;
decltype(odxImageIntensityStats_v2) odxImageIntensityStats_v2C;
decltype(odxImageMomentsu8) odxImageMomentsu8C;
decltype(odxImageMomentss32) odxImageMomentss32C;
decltype(odxImageMomentsf32) odxImageMomentsf32C;
decltype(odxNormalizeLocalBoxu8) odxNormalizeLocalBoxu8C;
decltype(odxNormalizeLocalBoxf32) odxNormalizeLocalBoxf32C;
}

#endif
