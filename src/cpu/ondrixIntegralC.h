// Reference implementations: integral images.
#ifndef ODX_CPU_ONDRIX_INTEGRAL_C_H
#define ODX_CPU_ONDRIX_INTEGRAL_C_H

#include "frame/helpers.h"
#include "ondrix/integrals.h"

extern "C" {
decltype(odxIntegrateImageu8_v2) odxIntegrateImageu8C;
decltype(odxIntegrateImageu8u64) odxIntegrateImageu8u64C;
decltype(odxIntegrateImageYCbCr420PseudoPlanaru8) odxIntegrateImageYCbCr420PseudoPlanaru8C;
decltype(odxIntegrateImageLineu8) odxIntegrateImageLineu8C;
decltype(odxIntegrateImageLine64u8) odxIntegrateImageLine64u8C;
decltype(odxTiltedIntegralu8s32) odxTiltedIntegralu8s32C;
decltype(odxIntegratePatch12x12u8_v2) odxIntegratePatch12x12u8C, odxIntegratePatch18x18u8C;
decltype(odxIntegratePatchu8_v2) odxIntegratePatchu8C;
decltype(odxIntegratePatchu8_v3) odxIntegratePatchu8_v3C;

// A row of a tilted integral image from the two rows above it, and from the two rows of pixels above it, of
// `width` pixels.
void tiltedRowC(const uint8_t* src, const uint8_t* srcAbove, uint32_t width, const uint32_t* above,
                const uint32_t* twoAbove, uint32_t* dst);
ODX_HELPER_POINTER(tiltedRow);
}

#endif
