// Reference implementations: search of patches by normalised cross-correlation.
#ifndef ODX_CPU_ONDRIX_NCC_PATCH_C_H
#define ODX_CPU_ONDRIX_NCC_PATCH_C_H

#include "frame/helpers.h"
#include "ondrix/tracking.h"

extern "C" {
decltype(odxNCCPatchOnSquare8x8u8_v2) odxNCCPatchOnSquare8x8u8C;
decltype(odxNCCPatchOnCircle8x8u8_v2) odxNCCPatchOnCircle8x8u8C;
decltype(odxNCCPatchesOnRectu8) odxNCCPatchesOnRectu8C;

// The sums of products of a patch of 64 pixels and 64 pixels that begin at strips, strips + 8, strips + 16, ...:
// `count` sums. Those of the next of `columns` strips are `pitch` sums, and begin 8 * pitch pixels, further on.
void odxPatchProducts8x8C(const uint8_t* patch, const uint8_t* strips, size_t pitch, uint32_t columns,
                          uint32_t count, int32_t* sums);
ODX_HELPER_POINTER(odxPatchProducts8x8);
}

#endif
