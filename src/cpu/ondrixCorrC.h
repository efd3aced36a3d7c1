// Reference implementations: correlation.
#ifndef ODX_CPU_ONDRIX_CORR_C_H
#define ODX_CPU_ONDRIX_CORR_C_H

#include "ondrix/correlation.h"

extern "C" {
decltype(odxFilterCorr3x3s8_v2) odxFilterCorr3x3s8C;
decltype(odxFilterCorrNxNu8) odxFilterCorrNxNu8C;
decltype(odxFilterCorrNxNu8s16) odxFilterCorrNxNu8s16C;
decltype(odxFilterCorrNxNu8f32) odxFilterCorrNxNu8f32C;
}

#endif
