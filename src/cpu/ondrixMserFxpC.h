// Reference implementations: maximally stable extremal regions.
#ifndef ODX_CPU_ONDRIX_MSER_FXP_C_H
#define ODX_CPU_ONDRIX_MSER_FXP_C_H

#include "ondrix/mser.h"

extern "C" {
decltype(odxMserInit) odxMserInitC;
decltype(odxMserNN8Init) odxMserNN8InitC;
decltype(odxMserRelease) odxMserReleaseC;
decltype(odxMseru8) odxMseru8C;
decltype(odxMseru8_v2) odxMseru8_v2C;
decltype(odxMserNN8u8) odxMserNN8u8C;
decltype(odxMserExtu8) odxMserExtu8C;
decltype(odxMserExtu8_v2) odxMserExtu8_v2C;
decltype(odxMserExtNN8u8) odxMserExtNN8u8C;
decltype(odxMserExtu8_v3) odxMserExtu8_v3C;
decltype(odxMserSplitExtu8) odxMserSplitExtu8C;
decltype(odxMserSplitExtu8ST) odxMserSplitExtu8STC;
}

#endif
