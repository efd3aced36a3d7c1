/// \file colorToRgb.h
/// Conversions from luma and chroma (YCbCr) to packed RGB.
///
/// Luma and chroma
/// - Planar images have a plane each of Y, Cb and Cr. Pseudo-planar images have a plane of Y and one of
///   interleaved pairs, Cb first.
/// - 4:4:4 has a chroma pair for each pixel, 4:2:2 one for two neighbours in a row, 4:2:0 one for 2x2 pixels.
///   Chroma is replicated over the pixels that it covers, never interpolated.
///
/// RGB, in order of memory
/// - RGB888: bytes R, G, B. RGBA8888 (and RGB8888): bytes R, G, B, 255.
/// - RGB565: a little-endian 16-bit word with R >> 3 in bits 0 to 4, G >> 2 in bits 5 to 10, B >> 3 in bits 11
///   to 15. Displays mostly want R in bits 11 to 15: odxColorRGB565ToBGR565u8 turns one into the other.
/// - **The way back reads another order**: the conversions from RGB to luma and chroma (colorFromRgb.h) take blue
///   first, and RGB565 with R in bits 11 to 15. Between both, put odxColorRGB888ToBGR888u8,
///   odxColorRGBA8888ToBGRA8888u8 or odxColorRGB565ToBGR565u8, or red and blue are exchanged.
///
/// Formats of cameras and decoders. The matrix is that of BT.601 everywhere (none for BT.709). X stands for
/// RGB888, RGBA8888 or RGB565; `c` is the chroma plane.
///
///     Format, chroma          Full range, 0..255 (JPEG)             Video range, luma 16..235
///     NV12  4:2:0, Cb Cr      odxColorYCbCr420PseudoPlanarToXu8     RGB565: odxColorYUV420toRGB565u8
///                                                                   else: swap, then as NV21
///     NV21  4:2:0, Cr Cb      swap, then as NV12                    RGBA8888: odxColorYUV420toRGB8888u8, or with
///                                                                   strides
///                                                                   odxColorYCrCb420PseudoPlanarToRGB8888u8
///                                                                   RGB565: swap, then as NV12
///     I420  4:2:0, Cb, Cr     odxColorYCbCr420PlanarToXu8           interleave, then as NV12 or NV21
///     YV12  4:2:0, Cr, Cb     as I420, pointers in their places     as I420
///     NV16  4:2:2, Cb Cr      odxColorYCbCr422PseudoPlanarToXu8     none
///     NV24  4:4:4, Cb Cr      odxColorYCbCr444PseudoPlanarToXu8     none
///     I422, I444 (planes)     odxColorYCbCr422PlanarToXu8, ...444   none
///     YUYV, UYVY (packed)     none                                  none
///
/// - Swap: odxColorCbCrSwapu8(c, width / 2, height / 2, cStride, c, cStride), of even sizes, makes NV21 of NV12
///   and back, in place.
/// - Interleave: odxColorYCbCr420PlanarToYCbCr420PseudoPlanaru8 makes NV12 of I420, and NV21 with the pointers
///   (and strides) of Cb and Cr exchanged; write the chroma straight after the luma, where video range has it.
/// - From RGBA8888 in video range to RGB888 or RGB565: odxColorRGBA8888ToRGB888u8, odxColorRGBA8888ToRGB565u8.
///
/// Conventions of this page
/// - Widths and heights are in pixels, strides in bytes. Buffers may have any alignment.
/// - Source and destination must not overlap: a pixel grows, so that no conversion works in place.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written: null pointers, sizes of 0, and
///   strides that are too small where a function says so.
///
/// Four arithmetics exist side by side; each function uses one of them, and its results are exact. `clamp` is to
/// 0..255, `>>` rounds toward minus infinity, u = cb - 128 and v = cr - 128.
#ifndef ONDRIX_COLOR_TO_RGB_H
#define ONDRIX_COLOR_TO_RGB_H

#include "ondrix/types.h"

/// \name Planar and pseudo-planar images
/// A full-range image to packed RGB (NV12 and I420, for example).
/// Luma and chroma are 0..255, results are rounded:
///     R = clamp((256 * y + 359 * v + 128) >> 8)
///     G = clamp((256 * y - 88 * u - 183 * v + 128) >> 8)
///     B = clamp((256 * y + 454 * u + 128) >> 8)
///
/// Strides: 0 means packed rows, which is srcWidth bytes of luma; (srcWidth + 1) / 2 of a 4:2:2 or 4:2:0 chroma
/// plane and srcWidth of a 4:4:4 one; 2 * srcWidth of interleaved 4:4:4 chroma and srcWidth of interleaved 4:2:2
/// or 4:2:0 chroma; srcWidth pixels of the destination. Smaller strides are refused.
///
/// 4:2:2 and 4:2:0
/// - In a row of odd width the last pixel takes the chroma pair of the two pixels before it; a chroma sample
///   beyond that pair is not read.
/// - A width of 1 ends the process: "ondrixColorC@<line>: length > 1 Assertion failed", exit status 1.
///
/// 4:2:0 converts pairs of rows. With an odd height the last pair takes one more row of luma and writes one more
/// row of the destination, beyond srcHeight: both buffers must have it.
/// @{
ODX_API void odxColorYCbCr444PlanarToRGB565u8(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                              uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                              uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
ODX_API void odxColorYCbCr444PlanarToRGB888u8(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                              uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                              uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
ODX_API void odxColorYCbCr444PlanarToRGBA8888u8(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                                uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                                uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst,
                                                uint32_t dstStride);
ODX_API void odxColorYCbCr422PlanarToRGB565u8(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                              uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                              uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
ODX_API void odxColorYCbCr422PlanarToRGB888u8(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                              uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                              uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
ODX_API void odxColorYCbCr422PlanarToRGBA8888u8(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                                uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                                uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst,
                                                uint32_t dstStride);
ODX_API void odxColorYCbCr420PlanarToRGB565u8(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                              uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                              uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
ODX_API void odxColorYCbCr420PlanarToRGB888u8(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                              uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                              uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst,
                                              uint32_t dstStride);
ODX_API void odxColorYCbCr420PlanarToRGBA8888u8(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                                uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                                uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst,
                                                uint32_t dstStride);
ODX_API void odxColorYCbCr444PseudoPlanarToRGB565u8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                    uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorYCbCr444PseudoPlanarToRGB888u8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                    uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorYCbCr444PseudoPlanarToRGBA8888u8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                      uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                      uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorYCbCr422PseudoPlanarToRGB565u8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                    uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorYCbCr422PseudoPlanarToRGB888u8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                    uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorYCbCr422PseudoPlanarToRGBA8888u8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                      uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                      uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorYCbCr420PseudoPlanarToRGB565u8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                    uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorYCbCr420PseudoPlanarToRGB888u8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                    uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                    uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorYCbCr420PseudoPlanarToRGBA8888u8(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                                      uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                                      uint8_t* dst, uint32_t dstStride);
/// @}

/// \name Images in one buffer, video range
/// 4:2:0 with the plane of interleaved chroma straight after the luma, which it follows at `luma stride * height`.
/// Each even row and the odd one after it share a chroma row; nothing beyond `height` is read or written. The last
/// pixel of an odd row has a chroma pair of its own, so that the last byte read of a chroma row is that at
/// `width`: where rows are packed, the next row begins with that byte.
///
/// So the source has
///     luma stride * height + chroma stride * ((height + 1) / 2 - 1) + (width + 1) / 2 * 2
/// bytes: with packed rows, an odd width needs one byte after the last chroma row.
/// @{

/// NV12 in video range to RGB565.
/// Chroma pairs of Cb, Cr in rows of `width` bytes; luma counts from 16; not rounded:
///     c = 298 * (y - 16)
///     R = clamp((c + 409 * v) >> 8)
///     G = clamp((c - 208 * v - 100 * u) >> 8)
///     B = clamp((c + 517 * u) >> 8)
/// Packed rows.
ODX_API void odxColorYUV420toRGB565u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst);

/// As odxColorYUV420toRGB565u8, turned by 180 degrees.
/// Pixel (x, y) goes to (width - 1 - x, height - 1 - y).
ODX_API void odxColorYUV420toRGB565u8Rotate180(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst);

/// NV21 in video range to RGBA8888.
/// Chroma pairs of Cr, Cb; luma below 16 counts as 16; truncated:
///     c = 1192 * (max(y, 16) - 16)
///     R = clamp((c + 1634 * v) >> 10)
///     G = clamp((c - 833 * v - 400 * u) >> 10)
///     B = clamp((c + 2066 * u) >> 10)
/// Strides are given: 0 is refused, smaller ones than a row are not. That of the destination counts in whole
/// pixels, a remainder is dropped.
ODX_API void odxColorYCrCb420PseudoPlanarToRGB8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                     uint32_t srcYStride, uint32_t srcCStride, uint8_t* dst,
                                                     uint32_t dstStride);

/// As odxColorYCrCb420PseudoPlanarToRGB8888u8, with packed rows.
/// Chroma rows have `width` bytes.
ODX_API void odxColorYUV420toRGB8888u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst);
/// @}

/// \name Coded blocks of JPEG images
/// Decoded blocks of a JPEG image to RGB888.
/// The source is a sequence of units, row by row. A unit has 8x8 blocks of 64 bytes, each row by row: H x V blocks
/// of luma (HhVv in the name), row by row, then one of Cb and one of Cr, whose samples cover h x v pixels each.
/// Units that reach over the right or the lower edge are cut. The destination is packed RGB888.
///
/// A row of units has as many as it takes to cover the width. Only H1V1 moves from row to row by width / 8 whole
/// units: with a width that is not a multiple of 8 the cut unit of a row is also the first one of the next.
///
/// Full range, rounded, with chroma doubled around 127.5: b = 2 * cb - 255, r = 2 * cr - 255,
///     R = clamp(y + ((22970 * r + 16384) >> 15))
///     G = clamp(y + ((-5638 * b - 11700 * r + 16384) >> 15))
///     B = clamp(y + ((29032 * b + 16384) >> 15))
/// @{
ODX_API void odxColorYCrCbH1V1toRGB888u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst);
ODX_API void odxColorYCrCbH2V2toRGB888u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst);
ODX_API void odxColorYCrCbH2V1toRGB888u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst);
ODX_API void odxColorYCrCbH1V2toRGB888u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst);
/// @}

#endif
