/// \file arithmetic.h
/// Element-wise arithmetic on images: sums, differences, products, bits, depths, tables, gradients, constants; and
/// interleaved channels.
///
/// Conventions of this page
/// - Images are row-major. Widths and heights are in pixels, strides in bytes; a stride of 0 means the packed row.
///   Every pixel of the destination is computed and written, and nothing else: there are no borders.
/// - Refused are null pointers, sizes of 0, strides shorter than a packed row (whose length is computed as a
///   size_t), and what an operation names: that is logged ("Assertion failed @...") and nothing is written.
///   Nothing is returned, except by odxAdds16_v2.
/// - In place: the destination may be any source whose pixels have the same size, with the same stride. Two
///   sources may be the same image. All other overlaps, also of a table, value or mask with the destination, give
///   results without meaning. The channel operations do not work in place at all.
/// - a and b stand for the pixels of src1 and src2, v for those of src. Integers are exact before they are stored.
///   "Saturated" clips to the numbers that the destination's type holds; "wrapped" keeps the low bits. A shift of
///   a negative number to the right rounds toward minus infinity.
/// - scaled(x) is (x + half) >> shift, saturated, where half is 0 for a shift of 0 and 1 << (shift - 1) otherwise,
///   and shift is at most 15. So weights of 0 to 128 with a shift of 7 leave pixels of weight 128 as they are.
/// - Floats are IEEE single precision, rounded to nearest even after each operation, with infinities and subnormal
///   numbers. The sign and payload of a computed not-a-number are not defined.
#ifndef ONDRIX_ARITHMETIC_H
#define ONDRIX_ARITHMETIC_H

#include "ondrix/types.h"

/// \name Two images
/// @{

/// Sum of two 8-bit images.
/// a + b, wrapped or saturated.
ODX_API void odxAddu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight, unsigned int src1Stride,
                      const uint8_t* src2, unsigned int src2Stride, odxOverflow policy, uint8_t* dst,
                      unsigned int dstStride);

/// Saturated sum of two signed 16-bit images.
/// a + b saturated.
ODX_API void odxAdds16(const int16_t* src1, unsigned int srcWidth, unsigned int srcHeight, unsigned int src1Stride,
                       const int16_t* src2, unsigned int src2Stride, int16_t* dst, unsigned int dstStride);

/// Sum of two signed 16-bit images, with a choice of what happens to sums that do not fit.
/// a + b, wrapped or saturated. Refused arguments are logged, and give ONDRIX_BAD_PARAMETER.
ODX_API odxStatus odxAdds16_v2(const int16_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int src1Stride, const int16_t* src2, unsigned int src2Stride,
                               odxOverflow policy, int16_t* dst, unsigned int dstStride);

/// Sum of two float images.
/// a + b.
ODX_API void odxAddf32(const float* src1, unsigned int srcWidth, unsigned int srcHeight, unsigned int src1Stride,
                       const float* src2, unsigned int src2Stride, float* dst, unsigned int dstStride);

/// Sum of two 8-bit images in 16 bits.
/// a + b.
ODX_API void odxAddu8u16(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                         unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride, uint16_t* dst,
                         unsigned int dstStride);

/// Sum of a 16-bit and an 8-bit image.
/// a + b saturated. With dst = src1 it accumulates frames.
ODX_API void odxAddu16u8u16(const uint16_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride, uint16_t* dst,
                            unsigned int dstStride);

/// Difference of two 8-bit images.
/// a - b, wrapped or saturated (at 0).
ODX_API void odxSubtractu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                           odxOverflow policy, uint8_t* dst, unsigned int dstStride);

/// Difference of two signed 16-bit images.
/// a - b, wrapped or saturated.
ODX_API void odxSubtracts16(const int16_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int src1Stride, const int16_t* src2, unsigned int src2Stride,
                            odxOverflow policy, int16_t* dst, unsigned int dstStride);

/// Signed difference of two 8-bit images.
/// a - b.
ODX_API void odxSubtractu8s16(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride, int16_t* dst,
                              unsigned int dstStride);

/// Absolute difference of two 8-bit images.
/// abs(a - b).
ODX_API void odxAbsDiffu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride, uint8_t* dst,
                          unsigned int dstStride);

/// Absolute difference of two signed 32-bit images.
/// abs(a - b), at most 2^31 - 1.
ODX_API void odxAbsDiffs32(const int32_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int src1Stride, const int32_t* src2, unsigned int src2Stride, int32_t* dst,
                           unsigned int dstStride);

/// Absolute difference of two float images.
/// a - b with its sign bit cleared.
ODX_API void odxAbsDifff32(const float* src1, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int src1Stride, const float* src2, unsigned int src2Stride, float* dst,
                           unsigned int dstStride);

/// Signed difference of two 8-bit images as a grey picture.
/// a - b + 128, clipped to 0..255: 128 where nothing changed.
ODX_API void odxImageDiffu8_v2(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride, uint8_t* dst,
                               unsigned int dstStride);

/// As odxImageDiffu8_v2, of packed images.
ODX_API void odxImageDiffu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                            const uint8_t* src2, uint8_t* dst);

/// Saturated signed difference of two 8-bit images in 8 bits.
/// a - b saturated.
ODX_API void odxImageDiffu8s8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride, int8_t* dst,
                              unsigned int dstStride);

/// Difference of two 8-bit images as floats.
/// a - b.
ODX_API void odxImageDiffu8f32(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride, float* dst,
                               unsigned int dstStride);

/// Saturated difference of two signed 16-bit images.
/// a - b saturated.
ODX_API void odxImageDiffs16(const int16_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int src1Stride, const int16_t* src2, unsigned int src2Stride, int16_t* dst,
                             unsigned int dstStride);

/// Difference of two float images.
/// a - b.
ODX_API void odxImageDifff32(const float* src1, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int src1Stride, const float* src2, unsigned int src2Stride, float* dst,
                             unsigned int dstStride);

/// Product of two 8-bit images.
/// scaled(a * b).
ODX_API void odxElementMultiplyu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                  unsigned int shift, uint8_t* dst, unsigned int dstStride);

/// Product of two signed 16-bit images.
/// scaled(a * b).
ODX_API void odxElementMultiplys16(const int16_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int src1Stride, const int16_t* src2, unsigned int src2Stride,
                                   unsigned int shift, int16_t* dst, unsigned int dstStride);

/// Product of two 8-bit images in 16 bits.
/// scaled(a * b).
ODX_API void odxElementMultiplyu8u16(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                     unsigned int shift, uint16_t* dst, unsigned int dstStride);

/// Product of two 8-bit images in signed 16 bits.
/// scaled(a * b).
ODX_API void odxElementMultiplyu8s16(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                     unsigned int shift, int16_t* dst, unsigned int dstStride);

/// Product of two float images.
/// a * b.
ODX_API void odxElementMultiplyf32(const float* src1, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int src1Stride, const float* src2, unsigned int src2Stride, float* dst,
                                   unsigned int dstStride);

/// Bits that both 8-bit images have.
/// a & b.
ODX_API void odxBitwiseAndu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride, uint8_t* dst,
                             unsigned int dstStride);

/// Bits that either 8-bit image has.
/// a | b.
ODX_API void odxBitwiseOru8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride, uint8_t* dst,
                            unsigned int dstStride);

/// Bits in which two 8-bit images differ.
/// a ^ b.
ODX_API void odxBitwiseXoru8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride, uint8_t* dst,
                             unsigned int dstStride);

/// Bits that either 32-bit image has.
/// a | b.
ODX_API void odxBitwiseOrs32(const int32_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int src1Stride, const int32_t* src2, unsigned int src2Stride, int32_t* dst,
                             unsigned int dstStride);

/// Weighted sum of two 8-bit images.
/// t = (a * alpha + b * beta) + gamma in single precision, each operation rounded, in this order; 0 unless t > 0
/// (so also for not-a-number), 255 where t >= 255, otherwise t rounded to the nearest integer, halves to even.
/// Weights are not checked. A running average has dst = src2 and beta = 1 - alpha.
ODX_API void odxAddWeightedu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride, float alpha,
                              float beta, float gamma, uint8_t* dst, unsigned int dstStride);

/// Magnitude of a gradient.
/// sqrt(a * a + b * b), rounded to the nearest integer (there are no halves), at most 32767.
ODX_API void odxMagnitudes16(const int16_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int src1Stride, const int16_t* src2, unsigned int src2Stride, int16_t* dst,
                             unsigned int dstStride);

/// Direction of a gradient.
/// a is the horizontal, b the vertical gradient: the angle atan2(b, a) in 256ths of a turn, rounded to the
/// nearest, modulo 256; 0 points right, 64 down (rows count downwards), 128 left, 192 up; 0 where both are 0. The
/// result is the exact angle correctly rounded for all pairs; no pair lies between two values.
ODX_API void odxPhases16(const int16_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                         unsigned int src1Stride, const int16_t* src2, unsigned int src2Stride, uint8_t* dst,
                         unsigned int dstStride);

/// @}
/// \name One image
/// @{

/// Absolute difference of an 8-bit image to a number.
/// abs(v - value).
ODX_API void odxAbsDiffVu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcStride, uint8_t value, uint8_t* dst, unsigned int dstStride);

/// Absolute difference of a signed 32-bit image to a number.
/// abs(v - value), at most 2^31 - 1.
ODX_API void odxAbsDiffVs32(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, int32_t value, int32_t* dst, unsigned int dstStride);

/// Absolute difference of a float image to a number.
/// v - value with its sign bit cleared.
ODX_API void odxAbsDiffVf32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, float value, float* dst, unsigned int dstStride);

/// Absolute differences of an 8-bit image of 3 interleaved channels to a number for each.
/// Channel c: as odxAbsDiffVu8 with value[c].
ODX_API void odxAbsDiffVc3u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, const uint8_t* value, uint8_t* dst, unsigned int dstStride);

/// Absolute differences of a signed 32-bit image of 3 interleaved channels to a number for each.
/// Channel c: as odxAbsDiffVs32 with value[c].
ODX_API void odxAbsDiffVc3s32(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, const int32_t* value, int32_t* dst, unsigned int dstStride);

/// Absolute differences of a float image of 3 interleaved channels to a number for each.
/// Channel c: as odxAbsDiffVf32 with value[c].
ODX_API void odxAbsDiffVc3f32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, const float* value, float* dst, unsigned int dstStride);

/// Absolute differences of an 8-bit image of 4 interleaved channels to a number for each.
/// Channel c: as odxAbsDiffVu8 with value[c].
ODX_API void odxAbsDiffVc4u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, const uint8_t* value, uint8_t* dst, unsigned int dstStride);

/// Absolute differences of a signed 32-bit image of 4 interleaved channels to a number for each.
/// Channel c: as odxAbsDiffVs32 with value[c].
ODX_API void odxAbsDiffVc4s32(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, const int32_t* value, int32_t* dst, unsigned int dstStride);

/// Absolute differences of a float image of 4 interleaved channels to a number for each.
/// Channel c: as odxAbsDiffVf32 with value[c].
ODX_API void odxAbsDiffVc4f32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, const float* value, float* dst, unsigned int dstStride);

/// Sum of a signed 16-bit image and a number.
/// v + scalar saturated.
ODX_API void odxAddScalars16(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, int16_t scalar, int16_t* dst, unsigned int dstStride);

/// Sum of a float image and a number.
/// v + scalar.
ODX_API void odxAddScalarf32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, float scalar, float* dst, unsigned int dstStride);

/// Product of a signed 16-bit image and a number.
/// scaled(v * scalar).
ODX_API void odxMultiplyScalars16(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, int16_t scalar, unsigned int shift, int16_t* dst,
                                  unsigned int dstStride);

/// Product of a float image and a number.
/// v * scalar.
ODX_API void odxMultiplyScalarf32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, float scalar, float* dst, unsigned int dstStride);

/// Inverted bits of an 8-bit image.
/// ~v.
ODX_API void odxBitwiseNotu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Values of a table of 256 bytes, by the pixels of an 8-bit image.
/// table[v].
ODX_API void odxTableLookupu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, const uint8_t* table, uint8_t* dst, unsigned int dstStride);

/// 8-bit pixels as signed 16-bit ones.
/// v << shift; shift of at most 7.
ODX_API void odxConvertDepthu8s16(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, unsigned int shift, int16_t* dst,
                                  unsigned int dstStride);

/// Signed 16-bit pixels as 8-bit ones.
/// v >> shift (not rounded), wrapped or saturated; shift of at most 7.
ODX_API void odxConvertDepths16u8(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, unsigned int shift, odxOverflow policy, uint8_t* dst,
                                  unsigned int dstStride);

/// Adds the squares of an 8-bit image to a 16-bit one.
/// dst + ((v * v) >> shift) saturated; reads the destination. The squares are not rounded. With odxAddu16u8u16
/// this gives a variance over frames.
ODX_API void odxAddSquaredu8u16(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, unsigned int shift, uint16_t* dst, unsigned int dstStride);

/// @}
/// \name Setting elements
/// Pixels whose byte in `mask` is not 0 become `value`, of an element for each channel, bit for bit (also
/// not-a-numbers); the others stay as they were. Without a mask (null, its stride is ignored) all pixels are set.
/// A mask stride of 0 is packed.
/// @{

/// Sets the 8-bit pixels that a mask marks.
ODX_API void odxSetElementsu8(uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                              uint8_t value, const uint8_t* mask, unsigned int maskStride);

/// Sets the signed 32-bit pixels that a mask marks.
ODX_API void odxSetElementss32(int32_t* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                               int32_t value, const uint8_t* mask, unsigned int maskStride);

/// Sets the float pixels that a mask marks.
ODX_API void odxSetElementsf32(float* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                               float value, const uint8_t* mask, unsigned int maskStride);

/// Sets the 8-bit pixels of 3 channels that a mask marks.
ODX_API void odxSetElementsc3u8(uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                                unsigned int dstStride, const uint8_t* value, const uint8_t* mask,
                                unsigned int maskStride);

/// Sets the signed 32-bit pixels of 3 channels that a mask marks.
ODX_API void odxSetElementsc3s32(int32_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                                 unsigned int dstStride, const int32_t* value, const uint8_t* mask,
                                 unsigned int maskStride);

/// Sets the float pixels of 3 channels that a mask marks.
ODX_API void odxSetElementsc3f32(float* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                                 const float* value, const uint8_t* mask, unsigned int maskStride);

/// Sets the 8-bit pixels of 4 channels that a mask marks.
ODX_API void odxSetElementsc4u8(uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                                unsigned int dstStride, const uint8_t* value, const uint8_t* mask,
                                unsigned int maskStride);

/// Sets the signed 32-bit pixels of 4 channels that a mask marks.
ODX_API void odxSetElementsc4s32(int32_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                                 unsigned int dstStride, const int32_t* value, const uint8_t* mask,
                                 unsigned int maskStride);

/// Sets the float pixels of 4 channels that a mask marks.
ODX_API void odxSetElementsc4f32(float* dst, unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                                 const float* value, const uint8_t* mask, unsigned int maskStride);

/// @}
/// \name Channels of 8 bits
/// @{

/// Interleaves two planes.
/// Byte c of a pixel of 2 is that of plane c.
ODX_API void odxChannelCombine2Planesu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                        uint8_t* dst, unsigned int dstStride);

/// Interleaves three planes.
/// Byte c of a pixel of 3 is that of plane c.
ODX_API void odxChannelCombine3Planesu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                        const uint8_t* src3, unsigned int src3Stride, uint8_t* dst,
                                        unsigned int dstStride);

/// Interleaves four planes.
/// Byte c of a pixel of 4 is that of plane c.
ODX_API void odxChannelCombine4Planesu8(const uint8_t* src1, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int src1Stride, const uint8_t* src2, unsigned int src2Stride,
                                        const uint8_t* src3, unsigned int src3Stride, const uint8_t* src4,
                                        unsigned int src4Stride, uint8_t* dst, unsigned int dstStride);

/// One of 2, 3 or 4 interleaved channels.
/// `channel` is a position, 0 to 3; R, G, B and A are the positions 0 to 3; Y, U and V are 0, 1 and 2 of 3
/// channels, and U and V are 0 and 1 of 2 (the chroma of a pseudo-planar image). All else is refused, also a
/// position that the pixels lack. Luma of packed 4:2:2 is a channel of 2 at the full width, its chroma one of 4 at
/// half the width.
ODX_API void odxChannelExtractu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, unsigned int channels, odxChannelType channel,
                                 uint8_t* dst, unsigned int dstStride);

/// Interleaved channels to planes, one below the other.
/// 2 to 16 channels. Row y of plane c begins at dst + (c * srcHeight + y) * dstStride.
ODX_API void odxDeinterleaveu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, unsigned int channels, uint8_t* dst,
                               unsigned int dstStride);

/// Planes, one below the other, to interleaved channels.
/// The inverse of odxDeinterleaveu8: srcHeight is the height of one plane of the source.
ODX_API void odxInterleaveu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, unsigned int channels, uint8_t* dst, unsigned int dstStride);

/// @}
/// \name Means and products
/// @{

/// Mean of an 8-bit image.
/// The exact sum in 64 bits, converted to double, divided by the number of pixels in double precision, converted
/// to float.
ODX_API void odxAverageu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, float* average);

/// Mean of a signed 32-bit image.
/// As odxAverageu8.
ODX_API void odxAverages32(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                           unsigned int srcStride, float* average);

/// Cross product of two vectors of three floats.
/// dst[0] = a[1] * b[2] - a[2] * b[1], dst[1] = a[2] * b[0] - a[0] * b[2], dst[2] = a[0] * b[1] - a[1] * b[0],
/// where a and b are src1 and src2, which dst may be.
ODX_API void odxCrossProduct3x1f32(const float* src1, const float* src2, float* dst);

/// @}

#endif
