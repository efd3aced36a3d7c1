/// \file morphology.h
/// Erosion and dilation of single-channel images: the least, or the greatest, pixel of a square window.
///
/// Conventions of this page
/// - Images are bytes, row-major, of one channel. Widths and heights are in pixels, strides in bytes; where a
///   function takes strides, 0 means the packed row. Images may have any size from 1x1 on, smaller than the window
///   too. Every pixel is written.
/// - Source and destination have the same size, and must not overlap.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written. Functions with a status return
///   ONDRIX_BAD_PARAMETER in silence instead.
#ifndef ONDRIX_MORPHOLOGY_H
#define ONDRIX_MORPHOLOGY_H

#include "ondrix/types.h"

/// 3x3 erosion: the least pixel of each window.
/// Windows at the border have only the pixels inside the image. Packed rows.
ODX_API void odxFilterErode3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst);

/// As odxFilterErode3x3u8, with strides.
/// Both are at least the width.
ODX_API void odxFilterErode3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// 3x3 erosion with a border type.
/// CONSTANT takes every pixel outside the image as the border value; UNDEFINED and REPLICATE are as
/// odxFilterErode3x3u8. Strides are not compared with the width.
/// \param borderValue  pixel value outside the image for ONDRIX_BORDER_CONSTANT; its low 8 bits count
ODX_API odxStatus odxFilterErode3x3u8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                         odxBorderType borderType, uint32_t borderValue);

/// NxN erosion: the least pixel of each window, whose size hardly matters to the time.
/// The window of the pixel at x, y has the columns from x - N/2 to x - N/2 + N - 1, and rows likewise: with an
/// even N one more before than after. It has only the pixels inside the image; N may be larger than that. An N of
/// 0 counts as 1. Both strides are at least the width.
/// \return ONDRIX_NO_MEMORY when no temporary memory could be had, and nothing is written. With r pixels, the width
///         or max(2048, 2 * N) if that is less, it takes about (min(N, height) + 9) * r + 8 * N bytes
ODX_API odxStatus odxFilterErodeNxNu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                      unsigned int srcStride, unsigned int N, uint8_t* dst,
                                      unsigned int dstStride);

/// 3x3 dilation: the greatest pixel of each window.
/// Windows at the border have only the pixels inside the image. Packed rows.
ODX_API void odxFilterDilate3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst);

/// As odxFilterDilate3x3u8, with strides.
/// Both are at least the width.
ODX_API void odxFilterDilate3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// 3x3 dilation with a border type.
/// As odxFilterErode3x3u8_v3.
ODX_API odxStatus odxFilterDilate3x3u8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                          odxBorderType borderType, uint32_t borderValue);

/// NxN dilation: the greatest pixel of each window, whose size hardly matters to the time.
/// As odxFilterErodeNxNu8.
ODX_API odxStatus odxFilterDilateNxNu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, unsigned int N, uint8_t* dst,
                                       unsigned int dstStride);

#endif
