/// \file smoothing.h
/// Gaussian (binomial), box and median filters on single-channel images.
///
/// Conventions of this page
/// - Images are row-major with one channel. Source and destination have the same size and pixel type. Widths and
///   heights are in pixels, strides in bytes. Functions without strides work on packed rows.
/// - Where a function takes strides and says so, a stride of 0 means the packed row: width times pixel size.
///   Any other stride is at least that. The Gaussians refuse smaller ones, those of bytes (5x5 and 11x11) for the
///   source alone; box and 3x3 median filters refuse them for the source, odxBoxFilterNxNf32 and
///   odxFilterMedianMxNs16 for both. Otherwise, and in the functions with a border type, nobody checks: rows that
///   overlap give results without meaning.
/// - Source and destination must not overlap, except where in-place operation is stated.
/// - The border of a KxK filter are the pixels closer than K/2 to an edge; the others are the interior.
/// - A `border` flag of 1 computes the border from the pixels inside the image: the sum of weight * pixel over the
///   sum of these weights, in whole numbers, a remainder is dropped (quotients round toward zero). With any other
///   value the border of the destination is left as it was.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written. Functions with a status
///   return ONDRIX_BAD_PARAMETER in silence instead.
#ifndef ONDRIX_SMOOTHING_H
#define ONDRIX_SMOOTHING_H

#include "ondrix/types.h"

/// 3x3 Gaussian filter.
/// Kernel (1 2 1) x (1 2 1): interior = weighted sum >> 4. Border: corners / 9, edges / 12. Packed rows. Widths 2
/// to 6 are refused ("Error at ...").
ODX_API void odxFilterGaussian3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst,
                                    int border);

/// As odxFilterGaussian3x3u8, with strides.
/// 0 = packed; height of at least 2, width of at least 7.
ODX_API void odxFilterGaussian3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border);

/// 3x3 Gaussian filter of images of any size, with a border type.
/// Strides of 0 are packed. The border is always written: UNDEFINED divides by the weights inside the image (/ 9
/// and / 12), CONSTANT and REPLICATE fill the missing pixels in and use the full kernel.
/// \param borderValue  pixel value outside the image for ONDRIX_BORDER_CONSTANT; its low 8 bits count
ODX_API odxStatus odxFilterGaussian3x3u8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                            unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                            odxBorderType borderType, uint32_t borderValue);

/// 5x5 Gaussian filter.
/// Kernel (1 4 6 4 1) in both directions: interior = weighted sum >> 8. Packed rows; width and height of at
/// least 5.
ODX_API void odxFilterGaussian5x5u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst,
                                    int border);

/// As odxFilterGaussian5x5u8, with strides.
/// 0 = packed.
ODX_API void odxFilterGaussian5x5u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border);

/// 11x11 Gaussian filter.
/// Binomial kernel of order 10 (1 10 45 120 210 252 210 120 45 10 1) in both directions: interior =
/// weighted sum >> 20. Packed rows; width and height of at least 11.
ODX_API void odxFilterGaussian11x11u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst,
                                      int border);

/// As odxFilterGaussian11x11u8, with strides.
/// 0 = packed.
ODX_API void odxFilterGaussian11x11u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int border);

/// 5x5 Gaussian filter of signed 16-bit pixels.
/// Interior = weighted sum >> 8, rounding toward minus infinity; border quotients round toward zero, as
/// everywhere. Packed rows; height of at least 2. Images narrower or lower than 5 are all border.
ODX_API void odxFilterGaussian5x5s16(const int16_t* src, unsigned int width, unsigned int height, int16_t* dst,
                                     int border);

/// As odxFilterGaussian5x5s16, with strides.
/// 0 = packed.
ODX_API void odxFilterGaussian5x5s16_v2(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, int16_t* dst, unsigned int dstStride, int border);

/// 5x5 Gaussian filter of signed 32-bit pixels.
/// As for 16 bits. Sums are modulo 2^32, and taken as signed before they are shifted or divided. Packed rows;
/// width and height of at least 5.
ODX_API void odxFilterGaussian5x5s32(const int32_t* src, unsigned int width, unsigned int height, int32_t* dst,
                                     int border);

/// As odxFilterGaussian5x5s32, with strides.
/// 0 = packed.
ODX_API void odxFilterGaussian5x5s32_v2(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, int32_t* dst, unsigned int dstStride, int border);

/// 3x3 box filter.
/// Mean, rounded: (sum * 7282 + 32768) >> 16. Every pixel is written; pixels outside the image count as 0, so that
/// the border comes out darker. Width and height of at least 3; strides are given: 0 is refused.
ODX_API void odxBoxFilter3x3u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// 3x3 box filter of images of any size, with a border type.
/// As odxBoxFilter3x3u8, with strides of 0 for packed rows. UNDEFINED takes pixels outside the image as 0.
///
/// \param borderValue  as for odxFilterGaussian3x3u8_v3
ODX_API odxStatus odxBoxFilter3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                       odxBorderType borderType, uint32_t borderValue);

/// 5x5 box filter.
/// Mean: (sum * 2621 + 32768) >> 16, pixels outside the image counting as 0. Width and height of at least 5;
/// strides are given: 0 is refused.
ODX_API void odxBoxFilter5x5u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// 11x11 box filter.
/// Mean: (sum * 542 + 32768) >> 16, pixels outside the image counting as 0. Width and height of at least 11;
/// strides are given: 0 is refused.
ODX_API void odxBoxFilter11x11u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// NxN box filter of float pixels.
/// Every output is the sum of its window times 1/(N*N), pixels outside the image counting as 0. For an even N the
/// window reaches one pixel further to the left and up. The cost does not depend on N. Works in place with equal
/// strides. Width and height of at least 5, N of at least 2; strides of 0 are packed. Temporary memory: one float
/// a pixel; without it an error line is logged and nothing is written.
///
/// The sums run along the rows, then down the columns of these sums, in single precision. With before = N / 2 and
/// after = N - before - 1, a row of pixels p gives the sums s[0], s[1], ...:
///     sum = +0; sum += p[0], p[1], ... p[after - 1], one by one, as far as there are pixels;
///     for x = 0, 1, ...: sum += p[x + after] if there is such a pixel; then sum -= p[x - before - 1] if there is
///                        such a pixel; s[x] = sum
/// A column of the s gives its sums in the same way, and an output is such a sum times
/// 1.0f / ((float)N * (float)N).
///
/// **One bad pixel spoils what comes after it**, since what a running sum has lost does not come back. A NaN or an
/// infinity at (x, y), and an overflow, spoil every output from column x - after and row y - after on, to the
/// right and the lower edge of the image. A huge value leaves its rounding errors, a few times value / 2^24 in the
/// sums, in its rows (y - after .. y + before) as far as the right edge, and in its columns as far as the lower
/// one. The payload of NaN results is not defined.
ODX_API void odxBoxFilterNxNf32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, unsigned int N, float* dst, unsigned int dstStride);

/// 3x3 median filter.
/// The border is left as it was. Packed rows; images narrower or lower than 3 have no interior.
ODX_API void odxFilterMedian3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst);

/// As odxFilterMedian3x3u8, with strides.
/// 0 = packed.
ODX_API void odxFilterMedian3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// 3x3 median filter of images of any size, with a border type.
/// UNDEFINED leaves the border as it was, the others fill the missing pixels in. Strides of 0 are packed.
///
/// \param borderValue  as for odxFilterGaussian3x3u8_v3
ODX_API odxStatus odxFilterMedian3x3u8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                          odxBorderType borderType, uint32_t borderValue);

/// Median filter of an M wide and N high window of signed 16-bit pixels.
/// The border is copied from the source. M and N are odd and at least 3; strides are given: less than 2 * width is
/// refused, 0 too.
/// \return ONDRIX_NO_MEMORY when M*N pixels of temporary memory could not be had
ODX_API odxStatus odxFilterMedianMxNs16(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, unsigned int M, unsigned int N, int16_t* dst,
                                        unsigned int dstStride);

#endif
