// Reference implementations: transposition, flips, rotation, copies.
#ifndef ODX_CPU_ONDRIX_REORDER_C_H
#define ODX_CPU_ONDRIX_REORDER_C_H

#include "ondrix/reordering.h"

extern "C" {
decltype(odxTransposeu8) odxTransposeu8C;
decltype(odxTransposeu16) odxTransposeu16C;
decltype(odxTransposef32) odxTransposef32C;
decltype(odxTransposeRGB888u8) odxTransposeRGB888u8C;
decltype(odxFlipu8) odxFlipu8C;
decltype(odxFlipu16) odxFlipu16C;
decltype(odxFlipRGB888u8) odxFlipRGB888u8C;
decltype(odxRotateImageu8) odxRotateImageu8C;
decltype(odxRotateImageInterleavedu8) odxRotateImageInterleavedu8C;
decltype(odxCopy) odxCopyC;
}

#endif
