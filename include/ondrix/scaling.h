/// \file scaling.h
/// Reductions and enlargements of images: by 2, 4, 3:2, M:N and any ratio, with and without filters.
///
/// Conventions of this page
/// - Images are row-major with one channel, except where a name says "Interleave": there a pixel is a pair of
///   bytes, widths count pairs, and both channels are scaled apart from each other. Widths and heights are in
///   pixels, strides in bytes. Functions without strides work on packed rows.
/// - A stride of 0 means the packed row, of the source or of the output (its width in pixels times the bytes of a
///   pixel). Any other stride is at least the row; smaller ones are refused.
/// - Source and destination must not overlap. Only the pixels of the output are written, nothing between its rows.
/// - s(x, y) is a source pixel, d(x, y) an output. Whole numbers are unsigned, >> drops the remainder; trunc is
///   the whole part of a number that is not negative. Float means single precision, each operation rounded.
/// - Functions with an int return 0, and -1 for refused arguments. Those with a status return
///   ONDRIX_BAD_PARAMETER. Neither logs. Functions without a result log refused arguments ("Assertion failed
///   @..."). Null pointers and sizes of 0 are refused everywhere.
#ifndef ONDRIX_SCALING_H
#define ONDRIX_SCALING_H

#include "ondrix/types.h"

/// \name Means of blocks
/// @{

/// Halves an image: means of 2x2 pixels.
/// d(x, y) = (s(2x, 2y) + s(2x+1, 2y) + s(2x, 2y+1) + s(2x+1, 2y+1)) >> 2: the remainder is dropped. Packed rows.
/// Odd sizes are refused.
ODX_API int odxScaleDownBy2u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst);

/// As odxScaleDownBy2u8, with strides.
ODX_API int odxScaleDownBy2u8_v2(const uint8_t* src, unsigned int width, unsigned int height,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Reduces an image to a quarter of its width and height: means of 4x4 pixels.
/// Sum of the block >> 4. Packed rows. Sizes that are no multiples of 4 are refused.
ODX_API int odxScaleDownBy4u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst);

/// As odxScaleDownBy4u8, with strides.
ODX_API int odxScaleDownBy4u8_v2(const uint8_t* src, unsigned int width, unsigned int height,
                                 unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Reduces 3x3 pixels to 2x2.
/// The block a b c / d e f / g h i becomes
///     (9a + 3b + 3d + e) >> 4    (9c + 3b + 3f + e) >> 4
///     (9g + 3h + 3d + e) >> 4    (9i + 3h + 3f + e) >> 4
/// There are width / 3 blocks in a row and height / 3 rows of them; columns and rows beyond the last whole block
/// are not read, and what would be their outputs is not written. A dstStride of 0 is width / 3 * 2.
/// \return 1 when width or height is below 3 (nothing is written), else as above
ODX_API int odxScaleDown3To2u8(const uint8_t* src, unsigned int width, unsigned int height, unsigned int srcStride,
                               uint8_t* dst, unsigned int dstStride);

/// Means of blocks whose sizes are whole numbers.
/// With kx = srcWidth / dstWidth and ky = srcHeight / dstHeight each output is the sum of its block of kx x ky
/// pixels over kx * ky; the remainder is dropped. Packed rows. Sizes that do not divide are refused ("Error at
/// ...").
ODX_API void odxScaleDownu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, uint8_t* dst,
                            unsigned int dstWidth, unsigned int dstHeight);

/// As odxScaleDownu8, with strides.
ODX_API void odxScaleDownu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                               unsigned int dstStride);

/// Means of groups of M and N pixels, for ratios that are not whole.
/// Column group k (from 1 on) ends at source column ceil(k * srcWidth / dstWidth), which is not part of it, and
/// begins where the one before ends; rows likewise. An output is the mean of its n = columns * rows pixels, as
/// (sum * t) >> 32 with t = ceil(2^32 / n): the remainder is dropped. For n = 1, t is 2^32 - 1: **a group of a
/// single pixel p gives p - 1** (0 stays 0), so that equal sizes darken the image by 1. dstWidth * 20 > srcWidth
/// and dstHeight * 20 > srcHeight, else the call is refused. A destination
/// that is larger than the source has no meaning: on such an axis every source pixel is a group of its own, for
/// the first outputs, and the others are not written.
ODX_API void odxScaleDownMNu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                              unsigned int dstStride);

/// As odxScaleDownMNu8, for two interleaved channels.
/// Groups may have any size: above 400 pixels the mean is the quotient of whole numbers.
ODX_API void odxScaleDownMNInterleaveu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                        unsigned int dstHeight, unsigned int dstStride);

/// @}
/// \name Binomial filters and the factor 2
/// In the reductions the outputs are the filtered pixels (2x, 2y). Where taps fall outside the image they are
/// dropped, and the rest is divided by the sum W of the remaining weights, which is the product of those of both
/// axes.
/// @{

/// Halves an image, filtered with a 5x5 Gaussian.
/// Kernel (1 4 6 4 1) in both directions; width / 2 by height / 2 outputs. Outputs of the full weight 256 are
/// (sum + 128) >> 8, the others floor(0.5 + sum * r) in double precision, where r is the float nearest to 1 / W.
/// An axis has the weight 11 at its beginning, 15 at the end of an even size (10 at size 2) and else 16. Packed
/// rows. Odd sizes are refused ("Error at ...").
ODX_API void odxScaleDownBy2Gaussian5x5u8(const uint8_t* src, unsigned int width, unsigned int height,
                                          uint8_t* dst);

/// As odxScaleDownBy2Gaussian5x5u8, with strides and for all sizes.
/// Odd sizes: the last output of an axis has its full weight of 16 (11 at size 3); at size 1 there is none.
/// dstStride is at least srcWidth / 2.
ODX_API void odxScaleDownBy2Gaussian5x5u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Halves an image of float pixels, filtered with a 5x5 Gaussian.
/// d = sum * r, where r is the float nearest to 1 / W (1 / 256 inside). Taps outside the image count as +0. A row
/// of taps a b c d e gives ((a + e) + 4 * (b + d)) + 6 * c, and five of these rows in the same way the sum. Packed
/// rows. Odd sizes are refused. There is no remote form: in modes that run everything on a remote processor the
/// call says so in the log, and writes nothing.
ODX_API void odxScaleDownBy2Gaussian5x5f32(const float* src, unsigned int width, unsigned int height, float* dst);

/// As odxScaleDownBy2Gaussian5x5f32, with strides.
/// The packed rows are 4 * srcWidth and 2 * srcWidth bytes.
ODX_API void odxScaleDownBy2Gaussian5x5f32_v2(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                              unsigned int srcStride, float* dst, unsigned int dstStride);

/// Halves an image, filtered with a 3x3 Gaussian; odd sizes are rounded up.
/// Kernel (1 2 1) in both directions; (srcWidth + 1) >> 1 by (srcHeight + 1) >> 1 outputs. d = trunc(floor(sum * r
/// + 0.5)) in float, with r = 0.0625f inside, 0.0833333f for a weight of 12 (border rows and columns, whose exact
/// halves so round down) and 0.1111111f for 9 (corners). The last output of an odd size lies on the last pixel and
/// has two taps. Width and height of at least 3.
ODX_API odxStatus odxScaleDownBy2Gaussian3x3u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Doubles an image, filtered with a 5x5 Gaussian.
/// 2 * width by 2 * height outputs. With s[-1] = s[1] and s[n] = s[n-1] (both s[0] for a single pixel), an axis
/// has the sums s[i-1] + 6 s[i] + s[i+1] for output 2i and 4 s[i] + 4 s[i+1] for output 2i + 1; an output is (sum
/// of both axes + 32) >> 6. Packed rows.
ODX_API void odxScaleUpBy2Gaussian5x5u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst);

/// As odxScaleUpBy2Gaussian5x5u8, with strides.
ODX_API void odxScaleUpBy2Gaussian5x5u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                           unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// @}
/// \name Upsampling by 2 with the weights 3:1, as for chroma
/// An axis of n pixels has 2n outputs: the first is s[0], the last s[n-1], and between neighbours a and b there
/// are (3a + b + 2) >> 2 and (a + 3b + 2) >> 2. In the interleaved forms srcWidth counts pairs of bytes, and each
/// channel has its own neighbours; a packed row then has 2 (4 when doubled) bytes a pair.
/// @{

/// Doubles the height.
/// **The rows between the first and the last output are written for an even number of pixels**: the last column of
/// an odd width stays as it was in them.
ODX_API void odxUpsampleVerticalu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Doubles the width.
ODX_API void odxUpsampleHorizontalu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Doubles width and height.
/// Inside, an output has the weights 9, 3, 3 and 1 of its four neighbours: (sum + 8) >> 4. The first and the last
/// row and column have the rule of their own axis.
ODX_API void odxUpsample2Du8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Doubles the height of two interleaved channels; every pair is written.
ODX_API void odxUpsampleVerticalInterleavedu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                              unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Doubles the width of two interleaved channels.
ODX_API void odxUpsampleHorizontalInterleavedu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                                unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Doubles width and height of two interleaved channels.
ODX_API void odxUpsample2DInterleavedu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// @}
/// \name Any sizes
/// @{

/// Takes the nearest pixels.
/// d(x, y) = s(floor(x * srcWidth / dstWidth), floor(y * srcHeight / dstHeight)), also when enlarging. The
/// quotients are exact.
/// \return 1 when a size is above 65535 and the sizes are not equal (nothing is written), else as above
ODX_API int odxScaleDownNNu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                             unsigned int dstStride);

/// Interpolates between the four nearest pixels, in whole numbers.
/// For column x, fx = ((float)x + 0.5f) * ((float)srcWidth / (float)dstWidth) - 0.5f, at least 0 and at most
/// srcWidth - 1; ix = floor(fx), t = fx - ix; the columns ix and min(ix + 1, srcWidth - 1) have the weights
/// trunc((1 - t) * 2048 + 0.5f) and trunc(t * 2048 + 0.5f). Rows likewise. d = (wy0 * (wx0 * p00 + wx1 * p01) +
/// wy1 * (wx0 * p10 + wx1 * p11) + 2^21) >> 22. Enlarges, too.
ODX_API void odxScaleDownBLu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                              unsigned int dstStride);

/// Enlarges with a cubic filter of four taps in each direction.
/// Output x lies at the source position p = (x + 1/2) * srcWidth / dstWidth - 1/2, rounded (halves up) to 64ths: i
/// + k / 64. With t = k / 64 the pixels i - 1, i, i + 1 and i + 2 (edge pixels are repeated) have these weights in
/// 128ths:
///     w0 = round(64 * (-t + 2t^2 - t^3))     w2 = round(64 * (t + 4t^2 - 3t^3))
///     w3 = round(64 * (t^3 - t^2))           w1 = 128 - w0 - w2 - w3
/// where halves round up. A row gives h = (w0 a + w1 b + w2 c + w3 d + 1) >> 1, a signed number; rows likewise:
/// four of the h give d = (w0 h0 + w1 h1 + w2 h2 + w3 h3 + 4096) >> 13, held within 0 and 255. Any sizes; a
/// smaller destination samples the source without smoothing it.
ODX_API void odxScaleUpPolyu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                              unsigned int dstStride);

/// As odxScaleUpPolyu8, for two interleaved channels.
ODX_API void odxScaleUpPolyInterleaveu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                        unsigned int dstHeight, unsigned int dstStride);

/// Resizes an image: nearest, bilinear or area.
/// As odxScaleu8_v2 with the border type UNDEFINED: what lies outside the image is black, which shows at the edges
/// of bilinear enlargements.
ODX_API odxStatus odxScaleu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                             unsigned int dstStride, odxInterpolationType interpolation);

/// Resizes an image: nearest, bilinear or area, with a border type.
/// All in float. sx = (float)srcWidth / (float)dstWidth; rows have the same rules as columns.
///
/// NEAREST: a = 0.5f * sx for the first column, then a = a + sx for each further one; the column is trunc(a), or
/// the last one where roundings lead beyond it.
///
/// BILINEAR: a as above, fx = a - 0.5f, x0 = floor(fx), x1 = x0 + 1 (both at most srcWidth), w1 = fx - x0,
/// w0 = 1 - w1. Columns -1 and srcWidth, and rows likewise, are the border: REPLICATE repeats the edge, CONSTANT
/// has the border value, UNDEFINED is 0. With h = (w0 * s(x0)) + (w1 * s(x1)) of the rows y0 and y1, an output is
/// trunc((v0 * h0) + (v1 * h1)), at most 255, or trunc(h0) where y0 = y1. A source of exactly twice the width and
/// height goes by AREA.
///
/// AREA, if one width divides the other and one height the other: the mean of kx x ky pixels, trunc((float)sum *
/// (1.0f / (float)(kx * ky)) + 0.5f), where an axis is reduced by k (k = 1 where it is enlarged), repeated as
/// often as the axis is enlarged. Otherwise, with r = (float)dstWidth / (float)srcWidth and start = 0 for the
/// first column: end = start + sx; x0 = trunc(start), x1 = trunc(end); the weights are r * ((x0 - start) + 1) and
/// r * (end - x1), both 0.5 where x0 = x1; the next start is this end. Indices are at most srcWidth - 1. The last
/// column has x1 = srcWidth - 1 with the weight min(1, r), or 0.5 for both if that is x0. The outputs are as for
/// BILINEAR. **These two taps skip whole pixels between x0 and x1**: any ratio that is not whole, also between 1
/// and 2, gives dark columns and rows. Use odxScaleDownBLu8 or odxScaleDownMNu8 for such ratios.
///
/// Other interpolations and border types are refused.
/// \param borderValue  the pixels outside the image for ONDRIX_BORDER_CONSTANT
ODX_API odxStatus odxScaleu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                unsigned int dstHeight, unsigned int dstStride, odxInterpolationType interpolation,
                                odxBorderType borderType, uint8_t borderValue);

/// @}

#endif
