/// \file integrals.h
/// Integral images: sums of all pixels above and to the left, from which four reads make the sum of any rectangle.
///
/// Conventions of this page
/// - The table of an image of w x h pixels has w + 1 entries in each of h + 1 rows. Entry (X, Y) is the sum of the
///   pixels (x, y) with x < X and y < Y, so that the first row and the first column are 0. The pixels with
///   x0 <= x < x1 and y0 <= y < y1 have the sum (x1, y1) - (x0, y1) - (x1, y0) + (x0, y0).
/// - Entries are sums modulo 2^32 (modulo 2^64 where they have 64 bits): also where entries wrap, that difference
///   is right for every rectangle whose own sum fits.
/// - Images are bytes, row-major. Widths and heights are in pixels, strides in bytes; where a function takes
///   strides, 0 means the packed row: the width for pixels, and one entry more than it for tables. Strides of
///   tables are multiples of the size of an entry, which is not checked.
/// - Every entry of a table is written, and nothing else. Tables overlap neither pixels nor each other.
/// - Refused are null pointers, sizes of 0, strides shorter than their packed row (which is computed without
///   overflow), and what a function names. That is logged ("Assertion failed @...") and nothing is written.
///   Functions with a status return ONDRIX_BAD_PARAMETER then.
#ifndef ONDRIX_INTEGRALS_H
#define ONDRIX_INTEGRALS_H

#include "ondrix/types.h"

/// \name Images
/// @{

/// Integral image.
/// Packed rows on both sides. Widths from 2^30 - 1 on, whose rows of entries exceed 32 bits, are refused.
ODX_API void odxIntegrateImageu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, uint32_t* dst);

/// As odxIntegrateImageu8, with strides.
ODX_API void odxIntegrateImageu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, uint32_t* dst, unsigned int dstStride);

/// Integral images of the pixels and of their squares, in 64 bits.
/// For means and variances of rectangles of any size. One of the two tables may be null; both have the stride.
ODX_API void odxIntegrateImageu8u64(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, uint64_t* sums, uint64_t* squareSums,
                                    unsigned int dstStride);

/// Integral images of luma and of both chroma planes.
/// Luma has srcWidth x srcHeight pixels, both even. Chroma has half of them in each direction: pairs, Cb first, in
/// rows of srcWidth bytes. dstY has srcWidth + 1 entries in a row, dstCb and dstCr have srcWidth/2 + 1.
ODX_API void odxIntegrateImageYCbCr420PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                     unsigned int srcWidth, unsigned int srcHeight,
                                                     unsigned int srcYStride, unsigned int srcCStride,
                                                     uint32_t* dstY, uint32_t* dstCb, uint32_t* dstCr,
                                                     unsigned int dstYStride, unsigned int dstCbStride,
                                                     unsigned int dstCrStride);

/// The next row of an integral image, for pictures that arrive line by line.
/// dst[0] = above[0], and dst[i + 1] = above[i + 1] + src[0] + ... + src[i] for i < length: above and dst have
/// length + 1 entries. A null above stands for zeros. dst may be above, but not overlap it otherwise.
ODX_API void odxIntegrateImageLineu8(const uint8_t* src, unsigned int length, const uint32_t* above,
                                     uint32_t* dst);

/// As odxIntegrateImageLineu8, of 64 pixels.
ODX_API void odxIntegrateImageLine64u8(const uint8_t* src, const uint32_t* above, uint32_t* dst);

/// Tilted integral image: sums of triangles, from which four reads make the sum of a rectangle at 45 degrees.
/// Entry (X, Y) is the sum of the pixels (x, y) of the image with y < Y and |x - X + 1| <= Y - y - 1: the pixel
/// (X - 1, Y - 1), three pixels around the one above it, five above those, and so on. X goes from 0 to srcWidth
/// and Y from 0 to srcHeight, as in an upright table; the first row is 0, the first column is not. Sums are modulo
/// 2^32, as signed numbers. No temporary memory is taken.
ODX_API odxStatus odxTiltedIntegralu8s32(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, int32_t* dst, unsigned int dstStride);

/// @}
/// \name Patches
/// Tables of a patch of an image, whose first pixel is (x, y): of its pixels and of their squares, which
/// normalised correlation and tests of variance ask for. squareSums may be null. Modulo 2^32, sums of squares are
/// exact for patches of up to 66051 pixels.
/// @{

/// Tables of a patch of 12x12 pixels: 13x13 entries each.
/// Packed rows. Patches that are not inside the image are refused.
ODX_API void odxIntegratePatch12x12u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                      unsigned int x, unsigned int y, uint32_t* sums, uint32_t* squareSums);

/// As odxIntegratePatch12x12u8, with the source's stride.
ODX_API void odxIntegratePatch12x12u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, unsigned int x, unsigned int y, uint32_t* sums,
                                         uint32_t* squareSums);

/// Tables of a patch of 18x18 pixels: 19x19 entries each.
/// As odxIntegratePatch12x12u8.
ODX_API void odxIntegratePatch18x18u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                      unsigned int x, unsigned int y, uint32_t* sums, uint32_t* squareSums);

/// As odxIntegratePatch18x18u8, with the source's stride.
ODX_API void odxIntegratePatch18x18u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, unsigned int x, unsigned int y, uint32_t* sums,
                                         uint32_t* squareSums);

/// Tables of a patch of any size.
/// Packed rows, of the image as of the tables. Patches that are not inside the image are refused.
ODX_API void odxIntegratePatchu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, unsigned int x,
                                 unsigned int y, unsigned int patchWidth, unsigned int patchHeight, uint32_t* sums,
                                 uint32_t* squareSums);

/// As odxIntegratePatchu8, with the source's stride.
ODX_API void odxIntegratePatchu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, unsigned int x, unsigned int y,
                                    unsigned int patchWidth, unsigned int patchHeight, uint32_t* sums,
                                    uint32_t* squareSums);

/// Tables of a patch of any size, also beyond the image, with strides.
/// A patch may reach beyond the image by any distance, or be outside altogether: what is outside comes from the
/// border type, CONSTANT or REPLICATE. With UNDEFINED such patches are refused, as are other border types.
/// The stride of squareSums is checked, and 0 stands for packed rows, also where squareSums is null.
/// \param borderValue  pixel value outside the image for ONDRIX_BORDER_CONSTANT; its low 8 bits count
ODX_API odxStatus odxIntegratePatchu8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, int x, int y, unsigned int patchWidth,
                                         unsigned int patchHeight, uint32_t* sums, unsigned int sumsStride,
                                         uint32_t* squareSums, unsigned int squareSumsStride,
                                         odxBorderType borderType, uint32_t borderValue);

/// @}

#endif
