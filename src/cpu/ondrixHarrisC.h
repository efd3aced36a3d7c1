// Reference implementations of the Harris corners.
#ifndef ODX_CPU_ONDRIX_HARRIS_C_H
#define ODX_CPU_ONDRIX_HARRIS_C_H

#include "ondrix/harrisCorners.h"

extern "C" {
decltype(odxCornerHarrisu8) odxCornerHarrisu8C;
decltype(odxCornerHarrisInMasku8) odxCornerHarrisInMasku8C;
decltype(odxCornerHarrisAdaptiveu8) odxCornerHarrisAdaptiveu8C;
decltype(odxCornerHarrisScoreu8) odxCornerHarrisScoreu8C;
decltype(odxLocalHarrisMaxu8) odxLocalHarrisMaxu8C;
decltype(odxGoodFeatureToTracku8) odxGoodFeatureToTracku8C;
decltype(odxCornerRefineSubPixu8) odxCornerRefineSubPixu8C;
decltype(odxFindMultipleMaximau8) odxFindMultipleMaximau8C;
}

#endif
