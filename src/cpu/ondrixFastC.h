// Reference implementations: FAST corners.
#ifndef ODX_CPU_ONDRIX_FAST_C_H
#define ODX_CPU_ONDRIX_FAST_C_H

#include "frame/helpers.h"
#include "ondrix/fastCorners.h"

extern "C" {
// They take the stride and border as they are in effect.
decltype(odxCornerFast9u8) odxCornerFast9u8C;
decltype(odxCornerFast10u8) odxCornerFast10u8C;
decltype(odxCornerFast9InMasku8) odxCornerFast9InMasku8C;
decltype(odxCornerFast10InMasku8) odxCornerFast10InMasku8C;
decltype(odxCornerFast9Scoreu8) odxCornerFast9Scoreu8C;
decltype(odxCornerFast9InMaskScoreu8) odxCornerFast9InMaskScoreu8C;
decltype(odxCornerFast9Scoreu8_v2) odxCornerFast9Scoreu8_v2C;
decltype(odxCornerFast9InMaskScoreu8_v2) odxCornerFast9InMaskScoreu8_v2C;
decltype(odxCornerFast10Scoreu8) odxCornerFast10Scoreu8C;
decltype(odxCornerFast10InMaskScoreu8) odxCornerFast10InMaskScoreu8C;

// The 16 pixels of the circle, as distances in bytes from its centre.
void make_offsets(ptrdiff_t* offsets, unsigned int stride);

// The largest barrier with which the pixel is a corner, but at least `barrier`.
int32_t fast9_corner_scoreC(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier);
int32_t fast10_corner_scoreC(const uint8_t* pixel, const ptrdiff_t* offsets, int32_t barrier);
ODX_HELPER_POINTER(fast9_corner_score);
ODX_HELPER_POINTER(fast10_corner_score);

// Scores a list of corners. A stride of 0 is the width.
void score_9(const uint8_t* src, unsigned int width, unsigned int height, int barrier, unsigned int count,
             const uint32_t* xy, uint32_t* scores, unsigned int stride);

// Copies the candidates, which are in raster order, that no neighbour of at least their score suppresses.
// `rowStart` has room for a word per row, up to the last candidate's.
void nms_processing(const uint32_t* xy, const uint32_t* scores, uint32_t* rowStart, uint32_t count,
                    uint32_t* xyOut, uint32_t* scoresOut, uint32_t* countOut);
}

#endif
