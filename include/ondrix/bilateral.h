/// \file bilateral.h
/// Bilateral filters: smoothing that keeps edges.
///
/// A pixel becomes the average of its neighbours, of which those of its own brightness count most.
///
/// Conventions of this page
/// - Images are bytes, row-major, of one channel. Widths and heights are in pixels, strides in bytes; a stride of
///   0 means the packed row. Source and destination have the same size, and must not overlap.
/// - sigmaColor is the deviation of grey levels, sigmaSpace that of distances in pixels. Both may be infinite:
///   then all levels, or all pixels, count alike.
/// - Refused are null pointers, a width or height of 0, strides less than the width, a sigma that is not above 0
///   (so that NaN is refused, too), and what a function adds. That is logged ("Assertion failed @...") and nothing
///   is written; functions with a status return ONDRIX_BAD_PARAMETER.
/// - Weights are integers from exponentials in double precision, each operation rounded for itself. e(t), for a
///   negated exponent t, is 0 from t = 32 on. Below, with n = floor(t * 1.4426950408889634) and
///   r = t - n * 0.6931471805599453, it is p / 2^n, where p begins as 1 and becomes 1 - p * r / i for i = 18 down
///   to 1, in the order of that term.
///
/// The filters of a window of K x K pixels take these weights, for a difference d of levels and an offset of i
/// rows and j columns from the centre:
///     R[d] = floor(128 * e(d * d / (2 * sigmaColor * sigmaColor)) + 0.5)
///     G(i, j) = floor(255 * e((i * i + j * j) / (2 * sigmaSpace * sigmaSpace)) + 0.5)
/// With c the level at the centre, p that of a pixel of the window, which is a whole square, and its weight
/// w = R[|p - c|] * G(i, j), A the sum of all w * p, and W the sum of all w, the result is
///     (A + W / 2) / W
/// in unsigned integers; both quotients are rounded down.
#ifndef ONDRIX_BILATERAL_H
#define ONDRIX_BILATERAL_H

#include "ondrix/types.h"

/// Bilateral filter of 5x5 pixels, with a sigmaColor of 16 and a sigmaSpace of 1.25.
/// Written are the pixels whose window is inside the image.
ODX_API void odxBilateralFilter5x5u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Bilateral filter of 7x7 pixels, with a sigmaColor of 16 and a sigmaSpace of 1.75.
/// Written are the pixels whose window is inside the image.
ODX_API void odxBilateralFilter7x7u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Bilateral filter of 9x9 pixels, with a sigmaColor of 16 and a sigmaSpace of 2.25.
/// Written are the pixels whose window is inside the image.
ODX_API void odxBilateralFilter9x9u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// Bilateral filter of 5x5 pixels, of any deviations, with a border type.
/// UNDEFINED writes the pixels whose window is inside the image, the other types all. Pixels outside count like
/// those inside: CONSTANT takes them as the low 8 bits of borderValue, REPLICATE as the nearest pixel of the
/// image. Other types are refused.
ODX_API odxStatus odxBilateralFilter5x5u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                             float sigmaColor, float sigmaSpace, odxBorderType borderType,
                                             uint32_t borderValue);

/// As odxBilateralFilter5x5u8_v2, of 7x7 pixels.
ODX_API odxStatus odxBilateralFilter7x7u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                             float sigmaColor, float sigmaSpace, odxBorderType borderType,
                                             uint32_t borderValue);

/// As odxBilateralFilter5x5u8_v2, of 9x9 pixels.
ODX_API odxStatus odxBilateralFilter9x9u8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                             unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                             float sigmaColor, float sigmaSpace, odxBorderType borderType,
                                             uint32_t borderValue);

/// Recursive bilateral filter, whose cost does not depend on its reach.
/// The weight of two pixels of a line is the product of those of all the steps from one to the other, so that
/// nothing passes an edge. With
///     T[d] = floor(4096 * e(1.4142135623730951 / sigmaSpace) * e(d * d / (2 * sigmaColor * sigmaColor)) + 0.5)
/// a line of values v is smoothed beside its guide g. From the left F[0] = 32 and E[0] = 0, then with
/// t = T[|g[x] - g[x - 1]|]
///     F[x] = 32 + ((t * F[x - 1] + 2048) >> 12)
///     E[x] = (t * (E[x - 1] + (v[x - 1] - v[x]) * F[x - 1]) + 2048) >> 12
/// where >> rounds toward minus infinity; from the right F' and E' in the same way, with x + 1 in place of x - 1
/// and the last pixel in place of the first. With e = E[x] + E'[x] and f = F[x] + F'[x] - 32 the value becomes
///     v[x] + floor((2 * e + f) / (2 * f)), clamped to 0..255.
/// All numbers fit signed 32 bits. First each row is smoothed, with itself as its guide; then each column of that
/// image of bytes, with the source's column as its guide. All pixels are written. A sigmaSpace above 64 is
/// refused. Without temporary memory nothing is written: ONDRIX_NO_MEMORY.
ODX_API odxStatus odxBilateralFilterRecursiveu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                                unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                                float sigmaColor, float sigmaSpace);

#endif
