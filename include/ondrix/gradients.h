/// \file gradients.h
/// First derivatives (central differences, Sobel, Scharr), edge magnitudes, and Canny edges.
///
/// Conventions of this page
/// - Images are row-major with one channel, widths and heights in pixels, strides in bytes; a stride of 0 is
///   the packed row of that image. In formulas the neighbours of a pixel C are
///
///       TL T TR
///       L  C R
///       BL B BR
///
/// - dx is right minus left, dy is below minus above: both grow toward brighter pixels.
/// - The central difference is dx = R - L and dy = B - T. The Sobel sums are
///   Gx = (TR - TL) + 2 * (R - L) + (BR - BL) and Gy = (BL - TL) + 2 * (B - T) + (BR - TR), exact for bytes.
/// - **Planar** functions write two images dx and dy with a common stride, the result of pixel (x, y) at (x,
///   y). The outermost rows and columns of both are not written. Packed rows have `width` elements.
/// - **Interleaved** functions write pairs (dx, dy), and only the (width - 2) x (height - 2) results that
///   have all their neighbours, from the first element of each row on: that of pixel (x, y) is pair x - 1 of
///   row y - 1. Packed rows have width - 2 pairs, 4 * width - 8 bytes for `s16` and 8 * width - 16 for
///   `f32`.
/// - Images narrower or lower than 3 have no result: nothing is written. (Functions that compare the stride
///   of interleaved results refuse a width of 1, for which width - 2 wraps.)
/// - Outputs do not overlap the source, nor each other.
/// - Strides that are compared: that of the source, which is at least `width` (in bytes, for float pixels,
///   too), and output strides where a function has them, at least their packed row.
/// - Refused arguments (null pointers, empty images, such strides) are logged ("Assertion failed @...") and
///   nothing is written. Functions with a status return ONDRIX_BAD_PARAMETER in silence instead.
#ifndef ONDRIX_GRADIENTS_H
#define ONDRIX_GRADIENTS_H

#include "ondrix/types.h"

/// Central differences as pairs of 16-bit numbers.
/// Interleaved, packed pairs.
ODX_API void odxImageGradientInterleaveds16(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                            unsigned int srcStride, int16_t* gradients);

/// As odxImageGradientInterleaveds16, with the stride of the pairs.
ODX_API void odxImageGradientInterleaveds16_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                               unsigned int srcStride, int16_t* gradients,
                                               unsigned int gradStride);

/// Central differences as pairs of floats.
/// Interleaved, packed pairs; the same numbers as odxImageGradientInterleaveds16.
ODX_API void odxImageGradientInterleavedf32(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                            unsigned int srcStride, float* gradients);

/// As odxImageGradientInterleavedf32, with the stride of the pairs.
ODX_API void odxImageGradientInterleavedf32_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                               unsigned int srcStride, float* gradients, unsigned int gradStride);

/// Central differences as two images of 16-bit numbers.
/// Planar, packed rows.
ODX_API void odxImageGradientPlanars16(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, int16_t* dx, int16_t* dy);

/// As odxImageGradientPlanars16, with the stride of dx and dy.
ODX_API void odxImageGradientPlanars16_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                          unsigned int srcStride, int16_t* dx, int16_t* dy,
                                          unsigned int dxyStride);

/// Central differences as two images of floats.
/// Planar, packed rows.
ODX_API void odxImageGradientPlanarf32(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, float* dx, float* dy);

/// As odxImageGradientPlanarf32, with the stride of dx and dy.
ODX_API void odxImageGradientPlanarf32_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                          unsigned int srcStride, float* dx, float* dy, unsigned int dxyStride);

/// Sobel gradients, an eighth of the sums, as pairs of 16-bit numbers.
/// Interleaved, packed pairs: Gx >> 3 and Gy >> 3, rounded toward minus infinity, from -128 to 127.
ODX_API void odxImageGradientSobelInterleaveds16(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                                 unsigned int srcStride, int16_t* gradients);

/// As odxImageGradientSobelInterleaveds16, with the stride of the pairs.
ODX_API void odxImageGradientSobelInterleaveds16_v2(const uint8_t* src, unsigned int srcWidth,
                                                    unsigned int srcHeight, unsigned int srcStride,
                                                    int16_t* gradients, unsigned int gradStride);

/// The same as odxImageGradientSobelInterleaveds16_v2.
ODX_API void odxImageGradientSobelInterleaveds16_v3(const uint8_t* src, unsigned int srcWidth,
                                                    unsigned int srcHeight, unsigned int srcStride,
                                                    int16_t* gradients, unsigned int gradStride);

/// Sobel gradients, an eighth of the sums, as pairs of floats.
/// Interleaved, packed pairs: Gx * 0.125 and Gy * 0.125, exact.
ODX_API void odxImageGradientSobelInterleavedf32(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                                 unsigned int srcStride, float* gradients);

/// As odxImageGradientSobelInterleavedf32, with the stride of the pairs.
ODX_API void odxImageGradientSobelInterleavedf32_v2(const uint8_t* src, unsigned int srcWidth,
                                                    unsigned int srcHeight, unsigned int srcStride,
                                                    float* gradients, unsigned int gradStride);

/// Sobel gradients, an eighth of the sums, as two images of 16-bit numbers.
/// Planar, packed rows: Gx >> 3 and Gy >> 3, rounded toward minus infinity.
ODX_API void odxImageGradientSobelPlanars16(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                            unsigned int srcStride, int16_t* dx, int16_t* dy);

/// As odxImageGradientSobelPlanars16, with the stride of dx and dy.
ODX_API void odxImageGradientSobelPlanars16_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                               unsigned int srcStride, int16_t* dx, int16_t* dy,
                                               unsigned int dxyStride);

/// The same as odxImageGradientSobelPlanars16_v2.
ODX_API void odxImageGradientSobelPlanars16_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                               unsigned int srcStride, int16_t* dx, int16_t* dy,
                                               unsigned int dxyStride);

/// Sobel gradients, an eighth of the sums, as two images of bytes.
/// Planar, packed rows: Gx >> 3 and Gy >> 3, rounded toward minus infinity; they fit.
ODX_API void odxImageGradientSobelPlanars8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                           unsigned int srcStride, int8_t* dx, int8_t* dy);

/// As odxImageGradientSobelPlanars8, with the stride of dx and dy.
ODX_API void odxImageGradientSobelPlanars8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                              unsigned int srcStride, int8_t* dx, int8_t* dy,
                                              unsigned int dxyStride);

/// Sobel gradients, an eighth of the sums, as two images of floats.
/// Planar, packed rows: Gx * 0.125 and Gy * 0.125, exact.
ODX_API void odxImageGradientSobelPlanarf32(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                            unsigned int srcStride, float* dx, float* dy);

/// As odxImageGradientSobelPlanarf32, with the stride of dx and dy.
ODX_API void odxImageGradientSobelPlanarf32_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                               unsigned int srcStride, float* dx, float* dy,
                                               unsigned int dxyStride);

/// Sobel gradients of float pixels, an eighth of the sums.
/// Planar, packed rows of dx and dy. Gx and Gy are single-precision sums, each operation rounded, in this
/// order: ((TR - TL) + 2 * (R - L)) + (BR - BL) and ((BL - TL) + 2 * (B - T)) + (BR - TR); then times 0.125.
/// The payload of NaN results is not defined. The source's stride is in bytes, a multiple of 4 (not
/// checked), 0 for 4 * width; less than `width` is refused.
ODX_API void odxImageGradientSobelPlanarf32f32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                               unsigned int srcStride, float* dx, float* dy);

/// As odxImageGradientSobelPlanarf32f32, with the stride of dx and dy.
/// It is not compared with the width.
ODX_API void odxImageGradientSobelPlanarf32f32_v2(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                                  unsigned int srcStride, float* dx, float* dy,
                                                  unsigned int dxyStride);

/// Scharr gradients as pairs of 16-bit numbers.
/// Interleaved: dx = 3 * ((TR - TL) + (BR - BL)) + 10 * (R - L) and dy = 3 * ((BL - TL) + (BR - TR)) + 10 *
/// (B - T).
ODX_API void odxImageGradientScharrInterleaveds16(const uint8_t* src, unsigned int srcWidth,
                                                  unsigned int srcHeight, unsigned int srcStride,
                                                  int16_t* gradients, unsigned int gradStride);

/// Magnitude of the Sobel gradient: min(|Gx| + |Gy|, 255).
/// Packed rows. The outermost rows and columns of dst are not written.
ODX_API void odxFilterSobel3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst);

/// As odxFilterSobel3x3u8, with strides.
ODX_API void odxFilterSobel3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// 3x3 Sobel sums of images of any size, with a border type.
/// dx = Gx and dy = Gy, not scaled. Both are of the image's size; a null dx or dy is left out. UNDEFINED
/// leaves the pixels unwritten whose window is not inside the image, CONSTANT and REPLICATE write every
/// pixel. An image smaller than the window is all border. Refused are a null source, empty images, strides
/// below the packed row (that of dx and dy even where both are null), and unknown border types.
/// \param borderValue  pixel value outside the image for ONDRIX_BORDER_CONSTANT; its low 8 bits count
ODX_API odxStatus odxFilterSobel3x3u8s16(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, int16_t* dx, int16_t* dy, unsigned int dxyStride,
                                         odxBorderType borderType, uint32_t borderValue);

/// 5x5 Sobel sums of images of any size, with a border type.
/// As odxFilterSobel3x3u8s16; dx is the sum of weight * pixel over the window with the weights
/// (-1 -2 0 2 1) along rows times (1 4 6 4 1) along columns, dy the same with rows and columns exchanged.
ODX_API odxStatus odxFilterSobel5x5u8s16(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, int16_t* dx, int16_t* dy, unsigned int dxyStride,
                                         odxBorderType borderType, uint32_t borderValue);

/// 7x7 Sobel sums of images of any size, with a border type.
/// As odxFilterSobel5x5u8s16 with the weights (-1 -4 -5 0 5 4 1) and (1 6 15 20 15 6 1), and sums are held
/// between -32768 and 32767.
ODX_API odxStatus odxFilterSobel7x7u8s16(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, int16_t* dx, int16_t* dy, unsigned int dxyStride,
                                         odxBorderType borderType, uint32_t borderValue);

/// How odxFilterCannyu8 measures gradients.
ODX_ENUM(uint32_t, odxNormType){
    ONDRIX_NORM_L1 = 0, ///< |gx| + |gy|; so does every other value but 1
    ONDRIX_NORM_L2 = 1  ///< the square root of gx * gx + gy * gy
};

/// Canny edges from Sobel gradients: 255 on edges, 0 elsewhere.
/// Every pixel of dst is written; its outermost rows and columns are 0.
///
/// 1. gx and gy are what the Sobel filter of the kernel's size (odxFilterSobel3x3u8s16, 5x5 or 7x7) gives
///    with ONDRIX_BORDER_REPLICATE. They are written where their pointers are not null.
/// 2. low = min(|lowThresh|, 32767) and high = min(|highThresh|, 32767). The magnitude m is gx * gx + gy *
///    gy for ONDRIX_NORM_L2, and both thresholds are squared; else it is |gx| + |gy|.
/// 3. Thinning, for pixels with m > low that are not in the outermost rows and columns:
///    - if |gx| * 13573 > |gy| * 32768 (near horizontal), a pixel stays if m > m(L) and m >= m(R);
///    - else if |gx| * 79109 >= |gy| * 32768 (diagonal), if m > m(TR) and m > m(BL) where gx * gy < 0, and
///      if m > m(TL) and m > m(BR) elsewhere;
///    - else if m > m(T) and m >= m(B).
/// 4. A pixel that stays is strong if m > high, else weak. Edges are the strong pixels, and the weak ones
///    that touch an edge pixel at a side or corner. (If low is above high, all are strong.)
///
/// The time is proportional to the number of pixels, whatever they show. Temporary memory: about 5 bytes a
/// pixel. Refused, with nothing written: null src or dst, empty images, strides below the packed row, and
/// kernel sizes other than 3, 5 and 7.
/// \param gradStride  that of gx and gy; 0 = 2 * width
/// \return ONDRIX_NO_MEMORY, with nothing written, when temporary memory could not be had
ODX_API odxStatus odxFilterCannyu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, unsigned int kernelSize, int lowThresh, int highThresh,
                                   odxNormType normType, uint8_t* dst, unsigned int dstStride, int16_t* gx,
                                   int16_t* gy, unsigned int gradStride);

/// Canny edges from differences of neighbouring pixels: 255 on edges, 0 elsewhere.
/// Packed rows, width and height of at least 3, low <= high. Every pixel of dst is written; its two
/// outermost rows and columns are 0.
///
/// 1. b = R - L, a = B - T, and the magnitude is m = a * a + b * b.
/// 2. The direction is: left and right if |b| > 2 * |a|; else, if |a| <= 2 * |b|, the diagonal TL and BR
///    where a and b have the same sign, TR and BL elsewhere; else above and below.
/// 3. A pixel stays if m is above that of the first of these two neighbours, and not below that of the
///    second: L and R, TL and BR, TR and BL, T and B.
/// 4. low and high are in the units of a and b: negative ones count as 0, and both are squared. A pixel that
///    stays is strong if m >= high, and weak if m >= low. Edges are the strong pixels, and the weak ones
///    that touch an edge pixel at a side or corner.
///
/// Time and temporary memory as for odxFilterCannyu8. Without memory an error line is logged and nothing is
/// written.
ODX_API void odxFilterCanny3x3u8(const uint8_t* src, unsigned int width, unsigned int height, uint8_t* dst,
                                 int low, int high);

/// As odxFilterCanny3x3u8, with strides.
ODX_API void odxFilterCanny3x3u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int low,
                                    int high);

/// As odxFilterCanny3x3u8_v2, with the differences gx = b and gy = a.
/// What gx and gy hold in the outermost rows and columns afterwards is not defined; either may be null.
ODX_API void odxFilterCanny3x3u8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, uint8_t* dst, unsigned int dstStride, int low,
                                    int high, int16_t* gx, int16_t* gy, unsigned int gradStride);

#endif
