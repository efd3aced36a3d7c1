/// \file thresholding.h
/// Thresholds: pixels of single-channel images become one of two values.
///
/// Conventions of this page
/// - Images are bytes, row-major, of one channel. Widths and heights are in pixels, strides in bytes; a stride of
///   0 means the packed row. Source and destination have the same size.
/// - odxFilterThreshold... work in place: src == dst with equal strides. odxAdaptiveThreshold... do not: source
///   and destination must not overlap.
/// - Output values are passed as 32-bit integers, of which the low 8 bits count.
/// - Images without pixels are accepted where a function does not say how large they must be; nothing is written.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written. Functions with a status return
///   ONDRIX_BAD_PARAMETER in silence instead.
#ifndef ONDRIX_THRESHOLDING_H
#define ONDRIX_THRESHOLDING_H

#include "ondrix/types.h"

/// Threshold: 255 from the threshold on, else 0.
/// A threshold above 255 counts as 255. Packed rows. The pointers are given, and the threshold, taken as signed,
/// is not negative.
ODX_API void odxFilterThresholdu8(const uint8_t* src, unsigned int width, unsigned int height,
                                  unsigned int threshold, uint8_t* dst);

/// As odxFilterThresholdu8, with strides.
/// The source's stride is at least the width; the destination's is not compared with it. In place with different
/// strides is refused.
ODX_API void odxFilterThresholdu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                     unsigned int threshold);

/// Threshold with values of one's own: trueValue above the threshold, else falseValue.
/// Unlike the others it gives a pixel that equals the threshold falseValue. Refused: null pointers, a source
/// stride less than the width, a width of 0 with a stride of 0, a threshold that is negative when taken as signed.
ODX_API odxStatus odxFilterThresholdu8_v3(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                          unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                          unsigned int threshold, unsigned int trueValue, unsigned int falseValue);

/// Range threshold: 255 where lowThresh <= pixel <= highThresh, else 0.
/// The bounds may be any numbers: nothing lies between bounds in the wrong order. Refused: null pointers, a source
/// stride less than the width, a width of 0 with a stride of 0.
ODX_API odxStatus odxFilterThresholdRangeu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                            unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                            int lowThresh, int highThresh);

/// As odxFilterThresholdRangeu8, with values of one's own: trueValue inside the range, falseValue outside.
ODX_API odxStatus odxFilterThresholdRangeu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                               unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                               int lowThresh, int highThresh, unsigned int trueValue,
                                               unsigned int falseValue);

/// Otsu's threshold: black and white at the level that separates the image's pixels best.
/// 255 above the level and 0 up to it, or with a thresholdType of 1 the other way round. Both strides are at least
/// the width. In place with different strides is refused.
///
/// The level is found so, in double precision: with h[i] pixels of level i, s = 1.0 / (width * height) and
/// m = s * (sum of i * h[i]), start with m1 = w = best = 0 and level = 0. For t = 0 to 255:
///     m1 = m1 * w; p = h[t] * s; w = w + p;
///     go on with the next t if min(w, 1 - w) < 1.1920928955078125e-7 or max(w, 1 - w) > 0.9999998807907104;
///     m1 = (t * p + m1) / w; d = m1 + (w * m1 - m) / (1 - w); score = ((w * (1 - w)) * d) * d;
///     if score > best: best = score, level = t
/// So of equal scores the lowest level counts, and the level of a constant image is 0.
ODX_API void odxFilterThresholdOtsuu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                      unsigned int srcStride, uint8_t* dst, unsigned int dstStride,
                                      unsigned int thresholdType);

/// Adaptive threshold against the 3x3 Gaussian average.
/// The adaptive thresholds compare a pixel with the average of its neighbourhood:
///     thresholdType 0: maxValue where pixel > average - value, else 0
///     thresholdType 1: maxValue where pixel <= average - value, else 0
///     any other: dstStride * height bytes of the destination become 0, those between and behind the rows included
///
/// The average is the image that odxFilterGaussian3x3u8_v3 makes with ONDRIX_BORDER_UNDEFINED. Width and height of
/// at least 2; no stride is less than the width.
ODX_API void odxAdaptiveThresholdGaussian3x3u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                               unsigned int srcStride, unsigned int maxValue,
                                               unsigned int thresholdType, int value, uint8_t* dst,
                                               unsigned int dstStride);

/// As odxAdaptiveThresholdGaussian3x3u8, against the 5x5 Gaussian average.
/// That of odxFilterGaussian5x5u8_v2 with a border flag of 1. Width and height of at least 5; the source's stride
/// is at least the width.
ODX_API void odxAdaptiveThresholdGaussian5x5u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                               unsigned int srcStride, unsigned int maxValue,
                                               unsigned int thresholdType, int value, uint8_t* dst,
                                               unsigned int dstStride);

/// As odxAdaptiveThresholdGaussian3x3u8, against the 11x11 Gaussian average.
/// That of odxFilterGaussian11x11u8_v2 with a border flag of 1. Width and height of at least 11; the source's
/// stride is at least the width.
ODX_API void odxAdaptiveThresholdGaussian11x11u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                                 unsigned int srcStride, unsigned int maxValue,
                                                 unsigned int thresholdType, int value, uint8_t* dst,
                                                 unsigned int dstStride);

/// As odxAdaptiveThresholdGaussian3x3u8, against the mean of 3x3 pixels.
/// That of odxBoxFilter3x3u8, which counts pixels outside the image as 0. Width and height of at least 3; the
/// source's stride is at least the width.
ODX_API void odxAdaptiveThresholdMean3x3u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                           unsigned int srcStride, unsigned int maxValue,
                                           unsigned int thresholdType, int value, uint8_t* dst,
                                           unsigned int dstStride);

/// As odxAdaptiveThresholdMean3x3u8, against the mean of 5x5 pixels.
/// That of odxBoxFilter5x5u8. Width and height of at least 5.
ODX_API void odxAdaptiveThresholdMean5x5u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                           unsigned int srcStride, unsigned int maxValue,
                                           unsigned int thresholdType, int value, uint8_t* dst,
                                           unsigned int dstStride);

/// As odxAdaptiveThresholdMean3x3u8, against the mean of 11x11 pixels.
/// That of odxBoxFilter11x11u8. Width and height of at least 11.
ODX_API void odxAdaptiveThresholdMean11x11u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                             unsigned int srcStride, unsigned int maxValue,
                                             unsigned int thresholdType, int value, uint8_t* dst,
                                             unsigned int dstStride);

#endif
