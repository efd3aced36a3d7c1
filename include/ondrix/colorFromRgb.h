/// \file colorFromRgb.h
/// Conversions from packed RGB: to luma and chroma, grey, HSV, L*a*b*, and to other packed layouts; and between
/// the layouts of luma and chroma images.
///
/// Conventions of this page
/// - Widths and heights are in pixels, strides in bytes. A stride of 0 means packed rows. Buffers may have any
///   alignment.
/// - Results are exact. `>>` rounds toward minus infinity, `clamp` is to 0..255.
/// - Source and destination must not overlap, except where in-place operation is stated.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written: null pointers, sizes of 0, and
///   strides that are neither 0 nor at least a packed row.
///
/// **Mind the order of the bytes**: it is part of each function's contract, and differs between the families.
///
///                     to luma and chroma (4:4:4, 4:2:2, 4:2:0)     all others here, and all of colorToRgb.h
///     RGB888          bytes B, G, R                                bytes R, G, B
///     RGBA8888        bytes B, G, R, A                             bytes R, G, B, A
///     RGB565          R in bits 11 to 15, B in bits 0 to 4         R in bits 0 to 4, B in bits 11 to 15
///
/// Pixels of the order on the right are made ready for luma and chroma by odxColorRGB888ToBGR888u8,
/// odxColorRGBA8888ToBGRA8888u8 and odxColorRGB565ToBGR565u8.
///
/// Formats that encoders want, full range (0..255), matrix of BT.601; X stands for RGB565, RGB888 or RGBA8888:
///
///     NV12 (4:2:0, Cb Cr)     odxColorXToYCbCr420PseudoPlanaru8
///     NV21 (4:2:0, Cr Cb)     the same, then odxColorCbCrSwapu8 of the chroma in place
///     I420 (4:2:0, Cb, Cr)    odxColorXToYCbCr420Planaru8; YV12: with the pointers in their places
///     NV16, I422, NV24, I444  the same for 422 and 444
///     I420 to NV12            odxColorYCbCr420PlanarToYCbCr420PseudoPlanaru8, and the like
///
/// There are none to video range (luma 16..235), and none to packed YUYV or UYVY.
#ifndef ONDRIX_COLOR_FROM_RGB_H
#define ONDRIX_COLOR_FROM_RGB_H

#include "ondrix/types.h"

/// \name RGB to luma and chroma
/// Packed RGB, blue first, to an image of luma and chroma (NV12 and I420, for example).
/// Full range:
///     Y  = (77 * R + 150 * G + 29 * B + 128) >> 8
///     Cb = min(128 + ((-43 * R - 85 * G + 128 * B + 128) >> 8), 255)
///     Cr = min(128 + ((128 * R - 107 * G - 21 * B + 128) >> 8), 255)
///
/// Sources, in order of memory
/// - RGB888: bytes B, G, R. RGBA8888: bytes B, G, R, A; A is ignored.
/// - RGB565: a little-endian 16-bit word with R in bits 11 to 15, G in bits 5 to 10 and B in bits 0 to 4, each
///   shifted up to 8 bits with low bits of 0.
///
/// Destinations
/// - Planar: a plane each of Y, Cb and Cr. Pseudo-planar: a plane of Y and one of interleaved pairs, Cb first.
/// - 4:4:4 has a chroma pair for each pixel. 4:2:2 has the pair of the first of two neighbours in a row, and 4:2:0
///   has those of even rows only: chroma is picked, not averaged.
/// - Of images of odd width, the conversions to 4:2:2 write nothing, and those to 4:2:0 only the luma of the rows
///   1, 3, 5, ..., which give no chroma.
/// - An odd height of 4:2:0 gives the last row a chroma row of its own.
///
/// Packed rows have srcWidth pixels of the source, and srcWidth bytes of luma; srcWidth / 2 of a 4:2:2 or 4:2:0
/// chroma plane and srcWidth of a 4:4:4 one; 2 * srcWidth of interleaved 4:4:4 chroma and srcWidth of interleaved
/// 4:2:2 or 4:2:0 chroma.
/// @{
ODX_API void odxColorRGB565ToYCbCr444Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                              uint32_t dstYStride, uint32_t dstCbStride, uint32_t dstCrStride);
ODX_API void odxColorRGB888ToYCbCr444Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                              uint32_t dstYStride, uint32_t dstCbStride, uint32_t dstCrStride);
ODX_API void odxColorRGBA8888ToYCbCr444Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                uint32_t dstYStride, uint32_t dstCbStride, uint32_t dstCrStride);
ODX_API void odxColorRGB565ToYCbCr422Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                              uint32_t dstYStride, uint32_t dstCbStride, uint32_t dstCrStride);
ODX_API void odxColorRGB888ToYCbCr422Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                              uint32_t dstYStride, uint32_t dstCbStride, uint32_t dstCrStride);
ODX_API void odxColorRGBA8888ToYCbCr422Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                uint32_t dstYStride, uint32_t dstCbStride, uint32_t dstCrStride);
ODX_API void odxColorRGB565ToYCbCr420Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                              uint32_t dstYStride, uint32_t dstCbStride, uint32_t dstCrStride);
ODX_API void odxColorRGB888ToYCbCr420Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcStride, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                              uint32_t dstYStride, uint32_t dstCbStride, uint32_t dstCrStride);
ODX_API void odxColorRGBA8888ToYCbCr420Planaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                uint32_t srcStride, uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                uint32_t dstYStride, uint32_t dstCbStride, uint32_t dstCrStride);
ODX_API void odxColorRGB565ToYCbCr444PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint8_t* dstC,
                                                    uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorRGB888ToYCbCr444PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint8_t* dstC,
                                                    uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorRGBA8888ToYCbCr444PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcStride, uint8_t* dstY, uint8_t* dstC,
                                                      uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorRGB565ToYCbCr422PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint8_t* dstC,
                                                    uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorRGB888ToYCbCr422PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint8_t* dstC,
                                                    uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorRGBA8888ToYCbCr422PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcStride, uint8_t* dstY, uint8_t* dstC,
                                                      uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorRGB565ToYCbCr420PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint8_t* dstC,
                                                    uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorRGB888ToYCbCr420PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                    uint32_t srcStride, uint8_t* dstY, uint8_t* dstC,
                                                    uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorRGBA8888ToYCbCr420PseudoPlanaru8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcStride, uint8_t* dstY, uint8_t* dstC,
                                                      uint32_t dstYStride, uint32_t dstCStride);
/// @}

/// \name RGB to single and interleaved planes
/// The source has bytes R, G, B.
/// @{

/// RGB to grey.
/// (19595 * R + 38469 * G + 7471 * B + 32768) >> 16
ODX_API void odxColorRGB888ToGrayu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                    uint8_t* dst, uint32_t dstStride);

/// RGB to luma and chroma in one plane.
/// Three bytes a pixel, Y, Cr, Cb, full range:
///     Y  = clamp((9798 * R + 19235 * G + 3736 * B + 16384) >> 15)
///     Cr = clamp(128 + ((16384 * R - 13720 * G - 2664 * B + 16384) >> 15))
///     Cb = min(128 + ((-5529 * R - 10855 * G + 16384 * B + 16384) >> 15), 255)
/// Packed rows; works in place.
ODX_API void odxColorRGB888toYCrCbu8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst);

/// As odxColorRGB888toYCrCbu8, with strides.
/// Works in place with equal strides.
ODX_API void odxColorRGB888toYCrCbu8_v2(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride);

/// RGB to hue, saturation and value.
/// Three bytes a pixel, H, S, V, each over the full range of 0..255: H covers the circle in 256 steps, from red
/// (0) over green (85) to blue (170). A grey pixel has H = S = 0. With reciprocals of 16 fractional bits, rounded,
/// 1/0 = 0, V = max(R, G, B) and d = V - min(R, G, B):
///     h = (G - B) * (1/d), and 6 more where G < B       if R is the greatest, else
///         (B - R) * (1/d) + 2                           if G is the greatest, else
///         (R - G) * (1/d) + 4                           in sixths of the circle
///     H = (((h * 85) >> 1) + 32768) >> 16
///     S = ((1/V) * d * 255 + 32768) >> 16
/// Works in place with equal strides.
ODX_API void odxColorRGB888ToHSV888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                      uint32_t srcStride, uint8_t* dst, uint32_t dstStride);

/// sRGB to CIE L*a*b*.
/// Of bytes R, G, B, A (A is ignored), relative to the white D65. Three bytes a pixel: L * 255 / 100, a + 128,
/// b + 128, rounded. Before that rounding it is within 0.03 of the exact value. Grey pixels have a = b = 128.
///
/// The arithmetic is of integers, with tables of real numbers rounded to the nearest whole number:
/// - Light of a channel value v, with c = v / 255: light(v) = c / 12.92 up to c = 0.04045, else
///   ((c + 0.055) / 1.055)^2.4.
/// - Its share in x, y and z: round(2^30 * light(v) * weight), with the weights
///       x: R 0.4124564, G 0.3575761, B 0.1804375, each over their sum
///       y: R 0.2126729, G 0.7151522, B 0.0721750
///       z: R 0.0193339, G 0.1191920, B 0.9503041, each over their sum
///   x, y and z of a pixel are the sums of the shares of its three channels.
/// - The curve F[i] = round(2^15 * f(i / 2048)) for i = 0 .. 2049, where f(t) is the cube root of t above
///   216 / 24389, else t * 841 / 108 + 4 / 29. Between its points it is linear: with i = t >> 19 and
///   part = (t >> 9) & 1023,
///       curve(t) = F[i] + (((F[i + 1] - F[i]) * part + 512) >> 10)
/// - With fx = curve(x), fy = curve(y), fz = curve(z):
///       L = (fy * 37862 - 5222 * 32768 + 2097152) >> 22
///       a = 128 + ((500 * (fx - fy) + 16384) >> 15)
///       b = 128 + ((200 * (fy - fz) + 16384) >> 15)
ODX_API void odxColorRGBA8888ToLABu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                     uint8_t* dst, uint32_t dstStride);
/// @}

/// \name Packed RGB to packed RGB
/// One layout of packed RGB to another.
/// Layouts, in order of memory
/// - RGB888: bytes R, G, B. RGBA8888: bytes R, G, B, A.
/// - RGB565: a little-endian 16-bit word with R in bits 0 to 4, G in bits 5 to 10, B in bits 11 to 15.
/// - BGR888, BGRA8888, BGR565: the same with R and B exchanged.
///
/// Channels of 8 bits become 5 or 6 bits by dropping the low ones. Channels of 5 or 6 bits become 8 by repeating
/// their highest bits below (abcde gives abcdeabc), so that 0 and full brightness stay what they are. A is kept
/// between layouts that have it, and 255 where the source has none.
/// @{
ODX_API void odxColorRGB565ToRGB888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                      uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGB565ToRGBA8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGB565ToBGR565u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                      uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGB565ToBGR888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                      uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGB565ToBGRA8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGB888ToRGB565u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                      uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGB888ToRGBA8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGB888ToBGR565u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                      uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGB888ToBGR888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                      uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGB888ToBGRA8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGBA8888ToRGB565u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGBA8888ToRGB888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGBA8888ToBGR565u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGBA8888ToBGR888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                        uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
ODX_API void odxColorRGBA8888ToBGRA8888u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                          uint32_t srcStride, uint8_t* dst, uint32_t dstStride);

/// As odxColorRGB888ToRGB565u8, turned by 180 degrees.
/// Source pixel (x, y) goes to (srcWidth - 1 - x, srcHeight - 1 - y).
ODX_API void odxColorRGB888ToRGB565Rotate180u8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                               uint32_t srcStride, uint8_t* dst, uint32_t dstStride);
/// @}

/// \name Between layouts of luma and chroma
/// One layout of luma and chroma to another (I420 to NV12, for example).
/// Luma is copied. Chroma is picked and replicated, never averaged or interpolated: fewer samples take those of
/// even columns and rows, more samples repeat each one over the pixels that it covers.
///
/// Layouts, and their packed rows, are those of the conversions above, except that a plane of 4:2:2 or 4:2:0
/// chroma has (srcWidth + 1) / 2 samples a row, and 4:2:0 has (srcHeight + 1) / 2 rows of chroma: any size is
/// converted. Interleaved 4:2:2 or 4:2:0 chroma of an odd width has (srcWidth + 1) / 2 pairs a row if its stride
/// has room for them, that is srcWidth + 1 bytes; with a stride of srcWidth it is a pair less, and the last pixel
/// shares the pair before (if there is none, its chroma counts as 128).
/// @{
ODX_API void odxColorYCbCr444PlanarToYCbCr422Planaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                      const uint8_t* srcCr, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, uint32_t srcCbStride,
                                                      uint32_t srcCrStride, uint8_t* dstY, uint8_t* dstCb,
                                                      uint8_t* dstCr, uint32_t dstYStride, uint32_t dstCbStride,
                                                      uint32_t dstCrStride);
ODX_API void odxColorYCbCr444PlanarToYCbCr420Planaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                      const uint8_t* srcCr, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, uint32_t srcCbStride,
                                                      uint32_t srcCrStride, uint8_t* dstY, uint8_t* dstCb,
                                                      uint8_t* dstCr, uint32_t dstYStride, uint32_t dstCbStride,
                                                      uint32_t dstCrStride);
ODX_API void odxColorYCbCr444PlanarToYCbCr444PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                            const uint8_t* srcCr, uint32_t srcWidth,
                                                            uint32_t srcHeight, uint32_t srcYStride,
                                                            uint32_t srcCbStride, uint32_t srcCrStride,
                                                            uint8_t* dstY, uint8_t* dstC, uint32_t dstYStride,
                                                            uint32_t dstCStride);
ODX_API void odxColorYCbCr444PlanarToYCbCr422PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                            const uint8_t* srcCr, uint32_t srcWidth,
                                                            uint32_t srcHeight, uint32_t srcYStride,
                                                            uint32_t srcCbStride, uint32_t srcCrStride,
                                                            uint8_t* dstY, uint8_t* dstC, uint32_t dstYStride,
                                                            uint32_t dstCStride);
ODX_API void odxColorYCbCr444PlanarToYCbCr420PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                            const uint8_t* srcCr, uint32_t srcWidth,
                                                            uint32_t srcHeight, uint32_t srcYStride,
                                                            uint32_t srcCbStride, uint32_t srcCrStride,
                                                            uint8_t* dstY, uint8_t* dstC, uint32_t dstYStride,
                                                            uint32_t dstCStride);
ODX_API void odxColorYCbCr422PlanarToYCbCr444Planaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                      const uint8_t* srcCr, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, uint32_t srcCbStride,
                                                      uint32_t srcCrStride, uint8_t* dstY, uint8_t* dstCb,
                                                      uint8_t* dstCr, uint32_t dstYStride, uint32_t dstCbStride,
                                                      uint32_t dstCrStride);
ODX_API void odxColorYCbCr422PlanarToYCbCr420Planaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                      const uint8_t* srcCr, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, uint32_t srcCbStride,
                                                      uint32_t srcCrStride, uint8_t* dstY, uint8_t* dstCb,
                                                      uint8_t* dstCr, uint32_t dstYStride, uint32_t dstCbStride,
                                                      uint32_t dstCrStride);
ODX_API void odxColorYCbCr422PlanarToYCbCr444PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                            const uint8_t* srcCr, uint32_t srcWidth,
                                                            uint32_t srcHeight, uint32_t srcYStride,
                                                            uint32_t srcCbStride, uint32_t srcCrStride,
                                                            uint8_t* dstY, uint8_t* dstC, uint32_t dstYStride,
                                                            uint32_t dstCStride);
ODX_API void odxColorYCbCr422PlanarToYCbCr422PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                            const uint8_t* srcCr, uint32_t srcWidth,
                                                            uint32_t srcHeight, uint32_t srcYStride,
                                                            uint32_t srcCbStride, uint32_t srcCrStride,
                                                            uint8_t* dstY, uint8_t* dstC, uint32_t dstYStride,
                                                            uint32_t dstCStride);
ODX_API void odxColorYCbCr422PlanarToYCbCr420PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                            const uint8_t* srcCr, uint32_t srcWidth,
                                                            uint32_t srcHeight, uint32_t srcYStride,
                                                            uint32_t srcCbStride, uint32_t srcCrStride,
                                                            uint8_t* dstY, uint8_t* dstC, uint32_t dstYStride,
                                                            uint32_t dstCStride);
ODX_API void odxColorYCbCr420PlanarToYCbCr444Planaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                      const uint8_t* srcCr, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, uint32_t srcCbStride,
                                                      uint32_t srcCrStride, uint8_t* dstY, uint8_t* dstCb,
                                                      uint8_t* dstCr, uint32_t dstYStride, uint32_t dstCbStride,
                                                      uint32_t dstCrStride);
ODX_API void odxColorYCbCr420PlanarToYCbCr422Planaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                      const uint8_t* srcCr, uint32_t srcWidth, uint32_t srcHeight,
                                                      uint32_t srcYStride, uint32_t srcCbStride,
                                                      uint32_t srcCrStride, uint8_t* dstY, uint8_t* dstCb,
                                                      uint8_t* dstCr, uint32_t dstYStride, uint32_t dstCbStride,
                                                      uint32_t dstCrStride);
ODX_API void odxColorYCbCr420PlanarToYCbCr444PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                            const uint8_t* srcCr, uint32_t srcWidth,
                                                            uint32_t srcHeight, uint32_t srcYStride,
                                                            uint32_t srcCbStride, uint32_t srcCrStride,
                                                            uint8_t* dstY, uint8_t* dstC, uint32_t dstYStride,
                                                            uint32_t dstCStride);
ODX_API void odxColorYCbCr420PlanarToYCbCr422PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                            const uint8_t* srcCr, uint32_t srcWidth,
                                                            uint32_t srcHeight, uint32_t srcYStride,
                                                            uint32_t srcCbStride, uint32_t srcCrStride,
                                                            uint8_t* dstY, uint8_t* dstC, uint32_t dstYStride,
                                                            uint32_t dstCStride);
ODX_API void odxColorYCbCr420PlanarToYCbCr420PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcCb,
                                                            const uint8_t* srcCr, uint32_t srcWidth,
                                                            uint32_t srcHeight, uint32_t srcYStride,
                                                            uint32_t srcCbStride, uint32_t srcCrStride,
                                                            uint8_t* dstY, uint8_t* dstC, uint32_t dstYStride,
                                                            uint32_t dstCStride);
ODX_API void odxColorYCbCr444PseudoPlanarToYCbCr444Planaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                            uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, uint32_t srcCStride,
                                                            uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                            uint32_t dstYStride, uint32_t dstCbStride,
                                                            uint32_t dstCrStride);
ODX_API void odxColorYCbCr444PseudoPlanarToYCbCr422Planaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                            uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, uint32_t srcCStride,
                                                            uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                            uint32_t dstYStride, uint32_t dstCbStride,
                                                            uint32_t dstCrStride);
ODX_API void odxColorYCbCr444PseudoPlanarToYCbCr420Planaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                            uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, uint32_t srcCStride,
                                                            uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                            uint32_t dstYStride, uint32_t dstCbStride,
                                                            uint32_t dstCrStride);
ODX_API void odxColorYCbCr444PseudoPlanarToYCbCr422PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                                  uint32_t srcWidth, uint32_t srcHeight,
                                                                  uint32_t srcYStride, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint8_t* dstC,
                                                                  uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorYCbCr444PseudoPlanarToYCbCr420PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                                  uint32_t srcWidth, uint32_t srcHeight,
                                                                  uint32_t srcYStride, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint8_t* dstC,
                                                                  uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorYCbCr422PseudoPlanarToYCbCr444Planaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                            uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, uint32_t srcCStride,
                                                            uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                            uint32_t dstYStride, uint32_t dstCbStride,
                                                            uint32_t dstCrStride);
ODX_API void odxColorYCbCr422PseudoPlanarToYCbCr422Planaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                            uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, uint32_t srcCStride,
                                                            uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                            uint32_t dstYStride, uint32_t dstCbStride,
                                                            uint32_t dstCrStride);
ODX_API void odxColorYCbCr422PseudoPlanarToYCbCr420Planaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                            uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, uint32_t srcCStride,
                                                            uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                            uint32_t dstYStride, uint32_t dstCbStride,
                                                            uint32_t dstCrStride);
ODX_API void odxColorYCbCr422PseudoPlanarToYCbCr444PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                                  uint32_t srcWidth, uint32_t srcHeight,
                                                                  uint32_t srcYStride, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint8_t* dstC,
                                                                  uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorYCbCr422PseudoPlanarToYCbCr420PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                                  uint32_t srcWidth, uint32_t srcHeight,
                                                                  uint32_t srcYStride, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint8_t* dstC,
                                                                  uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorYCbCr420PseudoPlanarToYCbCr444Planaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                            uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, uint32_t srcCStride,
                                                            uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                            uint32_t dstYStride, uint32_t dstCbStride,
                                                            uint32_t dstCrStride);
ODX_API void odxColorYCbCr420PseudoPlanarToYCbCr422Planaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                            uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, uint32_t srcCStride,
                                                            uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                            uint32_t dstYStride, uint32_t dstCbStride,
                                                            uint32_t dstCrStride);
ODX_API void odxColorYCbCr420PseudoPlanarToYCbCr420Planaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                            uint32_t srcWidth, uint32_t srcHeight,
                                                            uint32_t srcYStride, uint32_t srcCStride,
                                                            uint8_t* dstY, uint8_t* dstCb, uint8_t* dstCr,
                                                            uint32_t dstYStride, uint32_t dstCbStride,
                                                            uint32_t dstCrStride);
ODX_API void odxColorYCbCr420PseudoPlanarToYCbCr444PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                                  uint32_t srcWidth, uint32_t srcHeight,
                                                                  uint32_t srcYStride, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint8_t* dstC,
                                                                  uint32_t dstYStride, uint32_t dstCStride);
ODX_API void odxColorYCbCr420PseudoPlanarToYCbCr422PseudoPlanaru8(const uint8_t* srcY, const uint8_t* srcC,
                                                                  uint32_t srcWidth, uint32_t srcHeight,
                                                                  uint32_t srcYStride, uint32_t srcCStride,
                                                                  uint8_t* dstY, uint8_t* dstC,
                                                                  uint32_t dstYStride, uint32_t dstCStride);
/// @}

/// Exchanges the samples of each pair of an interleaved chroma plane (NV12 to NV21, or back).
/// srcWidth is the
/// number of pairs in a row, srcHeight that of chroma rows; packed rows are 2 * srcWidth bytes. Works in place
/// with equal strides.
ODX_API void odxColorCbCrSwapu8(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride,
                                uint8_t* dst, uint32_t dstStride);

#endif
