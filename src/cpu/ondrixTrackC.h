// Reference implementations: mean shift, adaptive tracking and block matching.
#ifndef ODX_CPU_ONDRIX_TRACK_C_H
#define ODX_CPU_ONDRIX_TRACK_C_H

#include "frame/helpers.h"
#include "ondrix/tracking.h"

// The weights of a part of a row, and their sum times their columns in it; those of 8 bits fit 32.
constexpr uint32_t kTrackedPart = 4096;
template <class Sum>
struct odxPartMoments {
    Sum sum, atColumns;
};

extern "C" {
decltype(odxMeanShiftu8) odxMeanShiftu8C;
decltype(odxMeanShifts32) odxMeanShifts32C;
decltype(odxMeanShiftf32) odxMeanShiftf32C;
decltype(odxConAdaTracku8) odxConAdaTracku8C;
decltype(odxConAdaTracks32) odxConAdaTracks32C;
decltype(odxConAdaTrackf32) odxConAdaTrackf32C;
decltype(odxTrackBMOpticalFlow16x16u8) odxTrackBMOpticalFlow16x16u8C;

void momentsOfPartu8C(const uint8_t* row, uint32_t count, odxPartMoments<uint32_t>* moments);
ODX_HELPER_POINTER(momentsOfPartu8);

// The sums of absolute differences between a packed block of 16x16 pixels and those that begin at src, src + 1,
// ...
void odxBlockDistances16x16C(const uint8_t* block, const uint8_t* src, size_t stride, uint32_t count,
                             uint16_t* sums);
ODX_HELPER_POINTER(odxBlockDistances16x16);
}

#endif
