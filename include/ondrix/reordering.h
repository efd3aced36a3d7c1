/// \file reordering.h
/// Transposition, mirroring and rotation of images, and a plain copy of bytes.
///
/// Conventions of this page
/// - Sizes are those of the source, in pixels; strides are in bytes. A stride of 0 means packed rows: width times
///   pixel size, for destinations that stand on their side height times pixel size.
/// - Buffers and strides may have any alignment, save those of odxTransposeu16, odxTransposef32 and odxFlipu16,
///   which have that of their pixels.
/// - Only pixels of the destination are written, none between its rows. Source and destination must not overlap,
///   except where in-place operation is stated.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written. Functions with a status
///   return ONDRIX_BAD_PARAMETER in silence instead.
#ifndef ONDRIX_REORDERING_H
#define ONDRIX_REORDERING_H

#include "ondrix/types.h"

/// Transposes an image of bytes.
/// Row r, column c of the source becomes row c, column r of the destination, which is srcHeight wide and srcWidth
/// high.
ODX_API void odxTransposeu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Transposes an image of 16-bit pixels.
/// As odxTransposeu8.
ODX_API void odxTransposeu16(const uint16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint16_t* dst, unsigned int dstStride);

/// Transposes an image of floats.
/// As odxTransposeu8; the bits of every pixel are kept.
ODX_API void odxTransposef32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, float* dst, unsigned int dstStride);

/// Transposes an image of 3-byte pixels.
/// As odxTransposeu8, by whole pixels. **Arguments that the others refuse end the process** with a log line and
/// exit status 1: null pointers, sizes of 0, strides shorter than their rows.
ODX_API void odxTransposeRGB888u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Mirrors an image of bytes.
/// Works in place (dst == src) when both strides are equal; with two strides it then logs an error line and does
/// nothing.
/// \param dir  1 reverses the columns of each row, 2 the order of the rows, 3 both (a half turn)
ODX_API void odxFlipu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                       uint8_t* dst, unsigned int dstStride, int dir);

/// Mirrors an image of 16-bit pixels.
/// As odxFlipu8.
ODX_API void odxFlipu16(const uint16_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int srcStride,
                        uint16_t* dst, unsigned int dstStride, int dir);

/// Mirrors an image of 3-byte pixels.
/// As odxFlipu8, by whole pixels, with a status: ONDRIX_BAD_PARAMETER for refused arguments, and for work in place
/// with two strides, which is logged, too.
ODX_API odxStatus odxFlipRGB888u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int dir);

/// Turns an image of bytes by a multiple of 90 degrees.
/// The destination of a quarter turn is srcHeight wide and srcWidth high, and another buffer. Half turns are
/// odxFlipu8 with dir 3, which does them, and work in place as it does.
/// \param degree  1 a quarter turn clockwise: row r, column c goes to row c, column srcHeight - 1 - r;
///                2 a half turn;
///                3 a quarter turn counter-clockwise: row r, column c goes to row srcWidth - 1 - c, column r
ODX_API odxStatus odxRotateImageu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int degree);

/// Turns an image of pairs of bytes (interleaved chroma) by a multiple of 90 degrees.
/// As odxRotateImageu8, for pixels of two bytes, which keep their order. srcWidth counts pairs. Half turns are
/// odxFlipu16 with dir 3.
ODX_API odxStatus odxRotateImageInterleavedu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                              unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                              int degree);

/// Copies bytes.
/// \return 0; -1, and nothing is copied, when a pointer is null. A count of 0 is no error
ODX_API int odxCopy(void* dst, const void* src, size_t byteCount);

#endif
