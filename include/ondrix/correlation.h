/// \file correlation.h
/// Correlation of single-channel images with small square kernels of any weights.
///
/// Conventions of this page
/// - Source images are bytes, row-major, of one channel. Widths and heights are in pixels, all strides in bytes;
///   where a function takes strides, 0 means the packed row. Source and destination have the same size, and must
///   not overlap.
/// - A kernel has N * N weights, row by row. It is not flipped: with i and j from 0 to N - 1, weight i * N + j
///   multiplies the pixel at x - N/2 + j, y - N/2 + i.
/// - Only the interior is written: N/2 <= x < width - N/2, and rows likewise. So with an even N the last column
///   and row that all weights would fit are left as they were, as is the border.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written. Functions with a status return
///   ONDRIX_BAD_PARAMETER in silence instead; they ask for an N of at least 1 that is less than width and height,
///   and for strides of at least the row.
#ifndef ONDRIX_CORRELATION_H
#define ONDRIX_CORRELATION_H

#include "ondrix/types.h"

/// 3x3 correlation with signed weights in units of 1/16.
/// The sum of the nine products is divided by 16, rounding down, and clamped to 0..255. Packed rows. Images
/// narrower or lower than 3 have no interior.
ODX_API void odxFilterCorr3x3s8(const int8_t* kernel, const uint8_t* src, unsigned int width, unsigned int height,
                                uint8_t* dst);

/// As odxFilterCorr3x3s8, with strides.
/// Both are at least the width.
ODX_API void odxFilterCorr3x3s8_v2(const int8_t* kernel, const uint8_t* src, unsigned int srcWidth,
                                   unsigned int srcHeight, unsigned int srcStride, uint8_t* dst,
                                   unsigned int dstStride);

/// NxN correlation with signed weights, to bytes.
/// The sum S of the products is a signed number of 32 bits (of larger ones the low 32 bits count). With a positive
/// shift it becomes S >> shift, rounding down without a rounding term; 32 or more leave -1 of a negative S, else
/// 0. With a shift of 0 or less it becomes S << -shift, of which the low 32 bits count, as a signed number, and 0
/// from 32 on. Then it is clamped to 0..255. The shift may be any number.
ODX_API odxStatus odxFilterCorrNxNu8(const int8_t* kernel, unsigned int N, int shift, const uint8_t* src,
                                     unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                     uint8_t* dst, unsigned int dstStride);

/// NxN correlation with signed weights, to signed 16-bit numbers.
/// As odxFilterCorrNxNu8, clamped to -32768..32767.
ODX_API odxStatus odxFilterCorrNxNu8s16(const int8_t* kernel, unsigned int N, int shift, const uint8_t* src,
                                        unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                        int16_t* dst, unsigned int dstStride);

/// NxN correlation with float weights, to floats.
/// The sum begins with +0.0f; the products are added in the order of the weights, each product and each sum
/// rounded to single precision. The payload of NaN results is not defined.
ODX_API odxStatus odxFilterCorrNxNu8f32(const float* kernel, unsigned int N, const uint8_t* src,
                                        unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                                        float* dst, unsigned int dstStride);

#endif
