// Reference implementations: morphology.
#ifndef ODX_CPU_ONDRIX_MORPH_C_H
#define ODX_CPU_ONDRIX_MORPH_C_H

#include "ondrix/morphology.h"

extern "C" {
decltype(odxFilterErode3x3u8_v2) odxFilterErode3x3u8C, odxFilterDilate3x3u8C;
decltype(odxFilterErode3x3u8_v3) odxFilterErode3x3u8_v3C, odxFilterDilate3x3u8_v3C;
decltype(odxFilterErodeNxNu8) odxFilterErodeNxNu8C, odxFilterDilateNxNu8C;
}

#endif
