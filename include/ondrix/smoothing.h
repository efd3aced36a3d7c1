/// \file smoothing.h
/// Gaussian (binomial), box and median filters on single-channel images.
///
/// Conventions of this page
/// - Images are row-major with one channel. Source and destination have the same size and pixel type. Widths and
///   heights are in pixels, strides in bytes. Functions without strides work on packed rows.
/// - Where a function takes strides and says so, a stride of 0 means the packed row: width times pixel size.
///   Any other stride is at least that, though not every function insists: rows that overlap give results without
///   meaning.
/// - Source and destination must not overlap, except where in-place operation is stated.
/// - The border of a KxK filter are the pixels closer than K/2 to an edge; the others are the interior.
/// - A `border` flag of 1 computes the border from the pixels inside the image, divided by the weights used; with
///   any other value the border of the destination is left as it was.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written. Functions with a status
///   return ONDRIX_BAD_PARAMETER in silence instead.
#ifndef ONDRIX_SMOOTHING_H
#define ONDRIX_SMOOTHING_H

#include "ondrix/types.h"

/// 3x3 Gaussian, kernel (1 2 1) x (1 2 1): interior = weighted sum >> 4. Border: corners / 9, edges / 12.
/// Packed rows. Widths 2 to 6 are refused ("Error at ...").
ODX_API void odxFilterGaussian3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst,
                                    int border);

/// As odxFilterGaussian3x3u8, with strides (0 = packed); width and height of at least 2, strides not below width.
ODX_API void odxFilterGaussian3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border);

/// 3x3 Gaussian of images of any size, with a border type; strides of 0 are packed.
/// The border is always written: UNDEFINED divides by the weights inside the image (/ 9 and / 12), CONSTANT
/// and REPLICATE fill the missing pixels in and use the full kernel.
/// \param borderValue  pixel value outside the image for ONDRIX_BORDER_CONSTANT; its low 8 bits count
ODX_API odxStatus odxFilterGaussian3x3u8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                            unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                            odxBorderType borderType, uint32_t borderValue);

/// 5x5 Gaussian, kernel (1 4 6 4 1) in both directions: interior = weighted sum >> 8. Packed rows; width and
/// height of at least 5.
ODX_API void odxFilterGaussian5x5u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst,
                                    int border);

/// As odxFilterGaussian5x5u8, with strides (0 = packed).
ODX_API void odxFilterGaussian5x5u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border);

/// 11x11 Gaussian, binomial kernel of order 10 in both directions: interior = weighted sum >> 20. Packed rows;
/// width and height of at least 11.
ODX_API void odxFilterGaussian11x11u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst,
                                      int border);

/// As odxFilterGaussian11x11u8, with strides (0 = packed).
ODX_API void odxFilterGaussian11x11u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border);

/// 5x5 Gaussian of signed 16-bit pixels: interior = weighted sum >> 8, rounding toward minus infinity; border
/// quotients round toward zero. Packed rows; height of at least 2. Images narrower or lower than 5 are all border.
ODX_API void odxFilterGaussian5x5s16(const int16_t* src, unsigned int width, unsigned int height, int16_t* dst,
                                     int border);

/// As odxFilterGaussian5x5s16, with strides (0 = packed), which are multiples of 2.
ODX_API void odxFilterGaussian5x5s16_v2(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, int16_t* dst, unsigned int dstStride, int border);

/// 5x5 Gaussian of signed 32-bit pixels; as for 16 bits, with sums modulo 2^32. Packed rows; width and height of
/// at least 5.
ODX_API void odxFilterGaussian5x5s32(const int32_t* src, unsigned int width, unsigned int height, int32_t* dst,
                                     int border);

/// As odxFilterGaussian5x5s32, with strides (0 = packed), which are multiples of 4.
ODX_API void odxFilterGaussian5x5s32_v2(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, int32_t* dst, unsigned int dstStride, int border);

/// 3x3 mean, rounded: (sum * 7282 + 32768) >> 16. Every pixel is written; pixels outside the image count as 0, so
/// that the border comes out darker. Width and height of at least 3; strides are given, not defaulted.
ODX_API void odxBoxFilter3x3u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// 3x3 mean of images of any size, with a border type; strides of 0 are packed. UNDEFINED takes pixels outside the
/// image as 0.
///
/// \param borderValue  as for odxFilterGaussian3x3u8_v3
ODX_API odxStatus odxBoxFilter3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                       odxBorderType borderType, uint32_t borderValue);

/// 5x5 mean: (sum * 2621 + 32768) >> 16, pixels outside the image counting as 0. Width and height of at least 5;
/// strides are given, not defaulted.
ODX_API void odxBoxFilter5x5u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// 11x11 mean: (sum * 542 + 32768) >> 16, pixels outside the image counting as 0. Width and height of at least 11;
/// strides are given, not defaulted.
ODX_API void odxBoxFilter11x11u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// NxN mean of float pixels, from running sums: every output is the sum of its window times 1/(N*N), pixels
/// outside the image counting as 0. For an even N the window reaches one pixel further to the left and up. The
/// cost does not depend on N. Works in place with equal strides. Width and height of at least 5, N of at least 2;
/// strides are multiples of 4, 0 = packed. Temporary memory: one float a pixel; without it an error line is
/// logged and nothing is written. The payload of NaN results is not defined.
ODX_API void odxBoxFilterNxNf32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, unsigned int N, float* dst, unsigned int dstStride);

/// 3x3 median of the interior; the border is left as it was. Packed rows; images narrower or lower than 3 have no
/// interior.
ODX_API void odxFilterMedian3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst);

/// As odxFilterMedian3x3u8, with strides (0 = packed).
ODX_API void odxFilterMedian3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// 3x3 median with a border type: UNDEFINED leaves the border as it was, the others fill the missing pixels in.
/// Strides of 0 are packed.
///
/// \param borderValue  as for odxFilterGaussian3x3u8_v3
ODX_API odxStatus odxFilterMedian3x3u8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                          odxBorderType borderType, uint32_t borderValue);

/// Median of an M wide and N high window of signed 16-bit pixels; the border is copied from the source. M and N
/// are odd and at least 3; strides are multiples of 2 and not below 2 * width.
/// \return ONDRIX_NO_MEMORY when M*N pixels of temporary memory could not be had
ODX_API odxStatus odxFilterMedianMxNs16(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, unsigned int M, unsigned int N, int16_t* dst,
                                        unsigned int dstStride);

#endif
