// Reference implementations: convolution.
#ifndef ODX_CPU_ONDRIX_CONV_C_H
#define ODX_CPU_ONDRIX_CONV_C_H

#include "ondrix/convolution.h"

extern "C" {
decltype(odxFilterCorrSep9x9s16_v2) odxFilterCorrSep9x9s16C;
decltype(odxFilterCorrSep11x11s16_v2) odxFilterCorrSep11x11s16C;
decltype(odxFilterCorrSep13x13s16_v2) odxFilterCorrSep13x13s16C;
decltype(odxFilterCorrSep15x15s16_v2) odxFilterCorrSep15x15s16C;
decltype(odxFilterCorrSep17x17s16_v2) odxFilterCorrSep17x17s16C;
decltype(odxFilterCorrSepNxNs16) odxFilterCorrSepNxNs16C;
decltype(odxFilterConvolveMxNu8) odxFilterConvolveMxNu8C;
decltype(odxFilterConvolveMxNu8s16) odxFilterConvolveMxNu8s16C;
decltype(odxFilterCorrSepMxNu8) odxFilterCorrSepMxNu8C;
decltype(odxFilterConvSepMxNs16) odxFilterConvSepMxNs16C;
decltype(odxConvValids16) odxConvValids16C;
}

#endif
