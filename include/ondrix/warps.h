/// \file warps.h
/// Perspective and affine warps, remaps through maps of coordinates, affine patches, and the matrices for them.
///
/// Every pixel of a destination is the sample of the source at a position (sx, sy), which a matrix or a map gives
/// for the pixel's column x and row y. All arithmetic is in single precision, operation by operation as it stands
/// here.
///
/// Positions
/// - Perspective matrix: 9 floats M0 .. M8, row by row, from the destination to the source. A row begins with
///       numX = M2 + M1 * y,  numY = M5 + M4 * y,  den = M8 + M7 * y        (the product first)
///   and M0, M3 and M6 are added from one column to the next. With w = 1 / den, sx = numX * w and sy = numY * w.
/// - Affine matrix: 6 floats A0 .. A5. A row begins with sx = A2 + A1 * y, sy = A5 + A4 * y; A0 and A3 are added
///   from one column to the next.
/// - Maps: the floats at column x and row y of mapX and mapY.
/// - A position that is not a number, is infinite or lies beyond 32-bit integers is outside the source.
///
/// Samples, of each channel for itself; whole parts are rounded toward minus infinity
/// - Nearest: the pixel (floor(sx + 0.5), floor(sy + 0.5)), if the source has it.
/// - Bilinear: with ix = floor(sx), iy = floor(sy), fx = sx - ix, fy = sy - iy, and the pixels p00, p01 (right of
///   it), p10 (below it), p11: top = p00 + fx * (p01 - p00), bottom = p10 + fx * (p11 - p10), and the result is fy
///   * (bottom - top) + top without its fraction. It exists where all four pixels do: ix in 0 .. srcWidth - 2, iy
///   in 0 .. srcHeight - 2. The last row and column are therefore never inside, and a source that is one pixel
///   wide or high has no inside at all.
/// - Fixed-point bilinear (clipped transforms): fx and fy are integers, 65536 times the fractions, without what is
///   left of them, at most 65535. If fy is 0, the result is p00 + ((fx * (p01 - p00) + 32768) >> 16); if only fx
///   is 0, the same with fy and p10; else
///       top = 128 * p00 + ((fx * (p01 - p00) + 256) >> 9), bottom from p10 and p11 likewise,
///       (top + ((fy * (bottom - top) + 32768) >> 16) + 64) >> 7
///
/// Outside
/// - Warps and remaps write the border value there, which is 0 unless the border type is ONDRIX_BORDER_CONSTANT.
///   With that type bilinear samples exist for ix in -1 .. srcWidth - 1 and iy in -1 .. srcHeight - 1, too: pixels
///   that the source does not have count as the border value. The low 8 bits of a border value count.
///
/// Everywhere
/// - Images are row-major. Widths and heights are in pixels, strides in bytes, those of maps too. A stride of 0
///   means packed rows: width times channels, for maps 4 * dstWidth. Other strides have any alignment.
/// - Every pixel of a destination is written, except where something else is stated, and nothing between its rows.
///   A destination must not overlap what is read.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written; functions with a status return
///   ONDRIX_BAD_PARAMETER in silence instead. Interpolations above ONDRIX_INTERPOLATION_AREA are refused;
///   ONDRIX_INTERPOLATION_AREA is bilinear, except where it is refused.
#ifndef ONDRIX_WARPS_H
#define ONDRIX_WARPS_H

#include "ondrix/types.h"

/// Perspective warp of a grey image.
/// Bilinear, 0 outside. Packed rows.
ODX_API void odxWarpPerspectiveu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight, uint8_t* dst,
                                  unsigned int dstWidth, unsigned int dstHeight, const float* projectionMatrix);

/// As odxWarpPerspectiveu8, with strides.
/// 0 = packed.
ODX_API void odxWarpPerspectiveu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                     unsigned int dstHeight, unsigned int dstStride,
                                     const float* projectionMatrix);

/// As odxWarpPerspectiveu8_v2, with an interpolation.
/// 0 outside. Refuses what odxWarpPerspectiveu8_v2 does.
ODX_API odxStatus odxWarpPerspectiveu8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                          unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                          unsigned int dstHeight, unsigned int dstStride,
                                          const float* projectionMatrix, odxInterpolationType interpolation);

/// As odxWarpPerspectiveu8_v3, with a border.
/// ONDRIX_BORDER_REPLICATE is no more than ONDRIX_BORDER_UNDEFINED here: 0 outside.
ODX_API odxStatus odxWarpPerspectiveu8_v4(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                          unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                          unsigned int dstHeight, unsigned int dstStride,
                                          const float* projectionMatrix, odxInterpolationType interpolation,
                                          odxBorderType borderType, uint32_t borderValue);

/// Perspective warp of pixels of three bytes.
/// Bilinear, 0 outside. Packed rows.
ODX_API void odx3ChannelWarpPerspectiveu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                          uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                                          const float* projectionMatrix);

/// As odx3ChannelWarpPerspectiveu8, with strides.
/// 0 = packed. Strides below the width (not 3 times the width) are refused; rows that overlap have no meaning.
ODX_API void odx3ChannelWarpPerspectiveu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                             unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                             unsigned int dstHeight, unsigned int dstStride,
                                             const float* projectionMatrix);

/// Perspective warp of two planes of one size by one matrix.
/// Each as by odxWarpPerspectiveu8_v2. Refuses null pointers, sizes of 0 and strides below the width.
ODX_API odxStatus odx2PlaneWarpPerspectiveu8(const uint8_t* src1, const uint8_t* src2, unsigned int srcWidth,
                                             unsigned int srcHeight, unsigned int src1Stride,
                                             unsigned int src2Stride, uint8_t* dst1, uint8_t* dst2,
                                             unsigned int dstWidth, unsigned int dstHeight,
                                             unsigned int dst1Stride, unsigned int dst2Stride,
                                             const float* projectionMatrix);

/// Affine transform that leaves what is outside the source.
/// Fixed-point bilinear. A pixel is inside where 0 <= sx <= srcWidth - 1 and 0 <= sy <= srcHeight - 1, so that the
/// identity copies every pixel; the others keep what the destination held.
///
/// \param dstBorder  2 * dstHeight numbers, or null: for each row the first column that is inside, and one past the
///                   last; 0 and 0 where there is none
ODX_API void odxTransformAffineClippedu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, const float* affineMatrix, uint8_t* dst,
                                         unsigned int dstWidth, unsigned int dstHeight, unsigned int dstStride,
                                         uint32_t* dstBorder);

/// As odxTransformAffineClippedu8, with an interpolation.
/// Nearest copies the nearest pixel.
ODX_API odxStatus odxTransformAffineClippedu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                                 unsigned int srcStride, const float* affineMatrix, uint8_t* dst,
                                                 unsigned int dstWidth, unsigned int dstHeight,
                                                 unsigned int dstStride, uint32_t* dstBorder,
                                                 odxInterpolationType interpolation);

/// As odxTransformAffineClippedu8_v2, with a border.
/// Outside, ONDRIX_BORDER_UNDEFINED leaves the destination, ONDRIX_BORDER_CONSTANT does what it does for warps
/// (nearest takes every pixel that rounds into the source), and ONDRIX_BORDER_REPLICATE samples at the nearest
/// position of the source (a coordinate that is not a number counts as 0; a source without pixels gives 0). The
/// border type does not change dstBorder.
ODX_API odxStatus odxTransformAffineClippedu8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                                 unsigned int srcStride, const float* affineMatrix, uint8_t* dst,
                                                 unsigned int dstWidth, unsigned int dstHeight,
                                                 unsigned int dstStride, uint32_t* dstBorder,
                                                 odxInterpolationType interpolation, odxBorderType borderType,
                                                 uint32_t borderValue);

/// Bicubic affine transform of pixels of three bytes.
/// Inside, outside and dstBorder (which is not null) as for odxTransformAffineClippedu8. For a fraction t the
/// weights of the pixels -1, 0, 1 and 2 are w0 = ((-t/2 + 1) * t - 1/2) * t, w1 = (3t/2 - 5/2) * t * t + 1, w2 =
/// ((-3t/2 + 2) * t + 1/2) * t and w3 = 1 - w0 - w1 - w2; pixels that the source does not have are those of its
/// edge. Four sums along the rows, then one of these, each from the left; the result is rounded (+ 1/2, the
/// fraction is dropped) and kept within 0 .. 255.
ODX_API void odx3ChannelTransformAffineClippedBCu8(const uint8_t* src, unsigned int srcWidth,
                                                   unsigned int srcHeight, unsigned int srcStride,
                                                   const float* affineMatrix, uint8_t* dst, unsigned int dstWidth,
                                                   unsigned int dstHeight, unsigned int dstStride,
                                                   uint32_t* dstBorder);

/// Cuts a patch about a position out of an image, by an affine map.
/// With A = (a b; c d), hw = patchWidth / 2 and hh = patchHeight / 2 (floats: 3.5 for 7), the patch's first pixel
/// lies at (position.x - (hw * a + hh * b), position.y - (hw * c + hh * d)). Samples are bilinear; a row starts at
/// the previous one's start plus (b, d), and (a, c) is added from column to column. Should these sums leave the
/// image by rounding, positions below 0 count as 0, and pixels beyond the last row or column as the last.
///
/// \param position  x and y
/// \param affine    a, b, c, d
/// \return 0; 1, and nothing is written, unless the four corners, first + column * (a, c) + row * (b, d) for the columns
///         0 and patchWidth - 1 and the rows 0 and patchHeight - 1, lie in 0 .. srcWidth - 1 and 0 .. srcHeight -
///         1 (the sums from the left); -1 for null pointers and sizes of 0
ODX_API int odxTransformAffineu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                 unsigned int srcStride, const float* position, const float* affine,
                                 uint8_t* patch, unsigned int patchWidth, unsigned int patchHeight,
                                 unsigned int patchStride);

/// As odxTransformAffineu8.
/// The same in every respect.
ODX_API int odxTransformAffineu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, const float* position, const float* affine,
                                    uint8_t* patch, unsigned int patchWidth, unsigned int patchHeight,
                                    unsigned int patchStride);

/// Cuts 8x8 patches about many positions out of an image.
/// Each as by odxTransformAffineu8, from 2 floats of `positions` and 4 of `affines` into 64 bytes of `patches`.
/// \return 0; 1 when a patch leaves the image: its bytes stay, all others are written; -1 for null pointers, sizes of 0
///         and no positions
ODX_API int odxTransformAffine8x8u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, uint32_t nPositions, const float* positions,
                                    const float* affines, uint8_t* patches);

/// As odxTransformAffine8x8u8.
/// The same in every respect.
ODX_API int odxTransformAffine8x8u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, uint32_t nPositions, const float* positions,
                                       const float* affines, uint8_t* patches);

/// Takes the nearest RGBA8888 pixel for each position of a map.
/// Outside all four bytes are 0. Sizes of 0 are accepted.
ODX_API void odxRemapRGBA8888NNu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                  unsigned int dstHeight, unsigned int dstStride, const float* mapX,
                                  const float* mapY, unsigned int mapStride);

/// Interpolates RGBA8888 pixels at each position of a map.
/// Bilinear; outside all four bytes are 0. Sizes of 0 are accepted.
ODX_API void odxRemapRGBA8888BLu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                  unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                  unsigned int dstHeight, unsigned int dstStride, const float* mapX,
                                  const float* mapY, unsigned int mapStride);

/// Samples a grey image at each position of a map.
/// 0 outside. Sizes of 0 are accepted.
ODX_API odxStatus odxRemapu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint8_t* dst, unsigned int dstWidth, unsigned int dstHeight,
                             unsigned int dstStride, const float* mapX, const float* mapY, unsigned int mapStride,
                             odxInterpolationType interpolation);

/// As odxRemapu8, with a border.
/// ONDRIX_BORDER_REPLICATE samples at the nearest position of the source, as odxTransformAffineClippedu8_v3 does.
/// Refuses ONDRIX_INTERPOLATION_AREA, too.
ODX_API odxStatus odxRemapu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, uint8_t* dst, unsigned int dstWidth,
                                unsigned int dstHeight, unsigned int dstStride, const float* mapX,
                                const float* mapY, unsigned int mapStride, odxInterpolationType interpolation,
                                odxBorderType borderType, uint32_t borderValue);

/// Turns the middle of a 25x25 region into a 17x17 patch.
/// Both are packed. Patch pixel (8 + i, 8 + j) is the bilinear sample at (12 + (c * i - s * j), 12 + (s * i + c *
/// j)), with c and s the cosine and sine of the angle, correct to the last bit of a float or the one before it.
/// That keeps within the region but for rounding, after which positions and pixels count as in
/// odxTransformAffineu8.
/// \param orientation  in radians; what is infinite or not a number counts as 0, which copies
ODX_API void odxCopyRotated17x17u8(const uint8_t* region, uint8_t* patch, float orientation);

/// Inverts an affine matrix.
/// (a b tx; c d ty) becomes 9 floats: with r = 1 / (a * d - b * c), or 0 where that is 0,
/// (d*r, -b*r, -(d*r*tx) - (-b*r)*ty; -c*r, a*r, -(-c*r*tx) - (a*r)*ty; 0, 0, 1), products from the left.
/// \param inverse  may be the same memory
ODX_API odxStatus odxInvertAffineTransformf32(const float* affine, float* inverse);

/// Finds the perspective matrix that takes four points to four others.
/// Points are pairs x, y. The matrix maps src1 to src2, its last coefficient is 1; for a warp, src1 are points of
/// the destination. It comes from elimination with row pivots in double precision, and is rounded at the end.
/// Points of which three lie on a line give coefficients without meaning.
ODX_API void odxGetPerspectiveTransformf32(const float* src1, const float* src2, float* transformCoefficient);

#endif
