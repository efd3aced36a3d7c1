/// \file tracking.h
/// Tracking of objects and patches: mean shift, adaptive windows, normalised correlation, block matching.
///
/// Conventions of this page
/// - Images have one channel; strides are in bytes, 0 means packed rows. Refused arguments are logged ("Assertion
///   failed @...") and nothing is written.
/// - Mean shift and the adaptive trackers work on images of weights: how much each pixel belongs to the object, as
///   a back-projected histogram tells. Weights may be bytes, signed integers or floats; NaN and infinite weights
///   in the window end the search as a window without weight does.
#ifndef ONDRIX_TRACKING_H
#define ONDRIX_TRACKING_H

#include "ondrix/types.h"

/// A rectangle of pixels of an image.
typedef struct {
    uint32_t x, y, width, height;
} odxWindow;

/// An ellipse: its centre, the lengths of its full axes, in pixels, and the angle of the long one from the x axis
/// towards growing y, in radians.
typedef struct {
    float x, y, length, width, angle;
} odxTrackedEllipse;

/// Moves a window to where the weights gather.
/// Repeats, with `iterationLimit` at least 1:
/// 1. Clamp: x to 0 .. srcWidth - 1, then width = max(min(srcWidth - x, width), 1); y and height likewise.
/// 2. Sums over the window, in double: m00 of the weights, m10 of weight * column, m01 of weight * row, with
///    columns and rows counted from the window's corner. With |m00| < 2.220446e-16, or sums that are not finite,
///    the search ends.
/// 3. dx = round(m10 / m00 - width * 0.5), dy = round(m01 / m00 - height * 0.5), halves away from zero. The corner
///    moves to (x + dx, y + dy), and the window is clamped.
/// 4. With dx * dx + dy * dy < trunc(epsilon * epsilon + 0.5), in double, the search ends. Else one more iteration
///    is complete; the search ends when `iterationLimit` are.
/// Uniform weights give -0.5, which rounds to -1: without other weights a window creeps to the origin.
///
/// Sums of integers are exact up to 2^53. Sums of floats: each row in parts of 4096 columns; in a part the
/// weights, and weights * column in it, are added in double to 8 sums in turn, and these as sum k + 4 to k, k + 2
/// to k, and the second to the first, which gives s and t. From row to row and part to part, starting with 0: m00
/// += s, m10 += t + s * (the part's first column), m01 += s * row.
///
/// \param window  clamped and moved in place; left as it was with a limit of 0
/// \return the number of completed iterations; 0 for refused arguments
ODX_API unsigned int odxMeanShiftu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, odxWindow* window, unsigned int iterationLimit,
                                    float epsilon);

/// As odxMeanShiftu8, of signed 32-bit weights.
ODX_API unsigned int odxMeanShifts32(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, odxWindow* window, unsigned int iterationLimit,
                                     float epsilon);

/// As odxMeanShiftu8, of float weights.
ODX_API unsigned int odxMeanShiftf32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, odxWindow* window, unsigned int iterationLimit,
                                     float epsilon);

/// Finds an object in an image of weights, measures it, and fits the window to it for the next image.
/// Continuously adaptive mean shift, in double:
/// 1. Mean shift as odxMeanShiftu8 does it; with a limit of 0 the window is clamped.
/// 2. The region is that window with 10 pixels more on each side, cut to the image. Its sums are those of mean
///    shift; the centre is xc = (region's left) + m10 / m00, yc = (region's top) + m01 / m00. With u and v the
///    distances of a pixel's column and row from the centre: a = sum(weight * u * u) / m00, b = sum(weight * u *
///    v) / m00, c = sum(weight * v * v) / m00; a and c below 0 count as 0.
/// 3. Unless m00 is at least 2.220446e-16 and all of these are finite, the ellipse is all 0 and the window is what
///    step 1 left.
/// 4. The ellipse: with s = sqrt((a - c)^2 + 4 b^2), length = 4 * sqrt((a + c + s) / 2),
///    width = 4 * sqrt((a + c - s) / 2), where a negative radicand counts as 0, angle = atan2(2 b, a - c) / 2.
/// 5. The window becomes the columns floor(xc - 2 sqrt(a)) to ceil(xc + 2 sqrt(a)), and the rows alike with yc and
/// c,
///    both ends included and clamped to the image.
///
/// Sums about the centre: for each row, weight, weight * u and weight * u * u are added from left to right, to 8
/// sums in turn, which are added as those of mean shift; a row's sums s, t and q are added up as q, t * v and s *
/// v * v.
///
/// \param window   in: where the object was; out: where to look for it next
/// \param ellipse  receives the object; may be null
/// \return as odxMeanShiftu8
ODX_API unsigned int odxConAdaTracku8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                      unsigned int srcStride, odxWindow* window, unsigned int iterationLimit,
                                      float epsilon, odxTrackedEllipse* ellipse);

/// As odxConAdaTracku8, of signed 32-bit weights.
ODX_API unsigned int odxConAdaTracks32(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, odxWindow* window, unsigned int iterationLimit,
                                       float epsilon, odxTrackedEllipse* ellipse);

/// As odxConAdaTracku8, of float weights.
ODX_API unsigned int odxConAdaTrackf32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, odxWindow* window, unsigned int iterationLimit,
                                       float epsilon, odxTrackedEllipse* ellipse);

/// Looks for an 8x8 patch in a square of an image by normalised cross-correlation.
/// The window of a centre (x, y) are the columns x - 4 .. x + 3 and the rows y - 4 .. y + 3. With
/// r = searchWidth >> 1, candidates are the centres (xSearchCenter + dx, ySearchCenter + dy), dx and dy in -r ..
/// r. Packed rows.
/// - Sums over patch P and window W: Sp of P, Qp of P * P, Sw of W, Qw of W * W, C of P * W.
///   varP = Qp - ((Sp * Sp) >> 6), varW = Qw - ((Sw * Sw) >> 6), n = C - ((Sw * Sp) >> 6): 64 times variances and
///   covariance.
/// - The best candidate, in order of dy, then dx, from the first with n >= 1 on: a later one with n >= 1 replaces
///   it when (float)n * n * (best varW) > (best n * n) * varW, in single precision from left to right.
/// - Its score is the correlation in 1/128: n * 128 / sqrt((float)varP * varW), in single precision, rounded,
///   halves away from zero. When rounded sums of nearly flat patches make it exceed 128, an error line is logged
///   and the process ends.
/// - Sub-pixel place: where -r < dx < r - 1 and both neighbours in x have n >= 1, with their scores l and h and
///   the score m, subX = (float)(h - l) / (float)(4 * m - 2 * (l + h)), 0 for a divisor of 0; else 0. subY alike,
///   with dy. When a neighbour's score exceeds m, an error line is logged and the process ends.
///
/// \param patch        64 pixels, row by row
/// \param searchWidth  up to 11; 12 to 19 end the process with an error line
/// \param bestX,bestY  receive the centre of the best window
/// \param bestNCC      receives its score, 1 to 128 or 0
/// \param doSubPixel   not 0: subX and subY receive offsets in (-1, 1), valid with result 0
/// \return 0 found; 1 `searchWidth` is 20 or more; 2 the candidates' windows do not fit: unless
///         r + 4 <= xSearchCenter < srcWidth - (r + 4), and y alike; 3 no candidate had n >= 1; -1 refused
///         arguments. With 1, 2 and 3 place and score are 0
ODX_API int odxNCCPatchOnSquare8x8u8(const uint8_t* patch, const uint8_t* src, unsigned int srcWidth,
                                     unsigned int srcHeight, unsigned int xSearchCenter,
                                     unsigned int ySearchCenter, unsigned int searchWidth, uint16_t* bestX,
                                     uint16_t* bestY, int32_t* bestNCC, int doSubPixel, float* subX, float* subY);

/// As odxNCCPatchOnSquare8x8u8, for patches with contrast only.
///
/// \param filterLowVariance  the least contrast, as varP and varW have it; 0: none
/// \return also 4: varP is below it, the place is 0; 5: varW of the best window is at or below it, the place is that
///         window's. The score is -127 then
ODX_API int odxNCCPatchOnSquare8x8u8_v2(const uint8_t* patch, const uint8_t* src, unsigned int srcWidth,
                                        unsigned int srcHeight, unsigned int xSearchCenter,
                                        unsigned int ySearchCenter, unsigned int searchWidth, uint16_t* bestX,
                                        uint16_t* bestY, int32_t* bestNCC, int doSubPixel, float* subX,
                                        float* subY, int32_t filterLowVariance);

/// As odxNCCPatchOnSquare8x8u8, in a disc.
/// Candidates are those with dx * dx + dy * dy <= r * r; others count as neighbours without n >= 1. The whole
/// square must fit.
ODX_API int odxNCCPatchOnCircle8x8u8(const uint8_t* patch, const uint8_t* src, unsigned int srcWidth,
                                     unsigned int srcHeight, unsigned int xSearchCenter,
                                     unsigned int ySearchCenter, unsigned int searchWidth, uint16_t* bestX,
                                     uint16_t* bestY, int32_t* bestNCC, int doSubPixel, float* subX, float* subY);

/// As odxNCCPatchOnCircle8x8u8, for patches with contrast only.
/// See odxNCCPatchOnSquare8x8u8_v2.
ODX_API int odxNCCPatchOnCircle8x8u8_v2(const uint8_t* patch, const uint8_t* src, unsigned int srcWidth,
                                        unsigned int srcHeight, unsigned int xSearchCenter,
                                        unsigned int ySearchCenter, unsigned int searchWidth, uint16_t* bestX,
                                        uint16_t* bestY, int32_t* bestNCC, int doSubPixel, float* subX,
                                        float* subY, int32_t filterLowVariance);

/// Looks for several 8x8 patches in one rectangle of an image.
/// dx in -rx .. rx and dy in -ry .. ry, with rx = searchWidth >> 1 and ry = searchHeight >> 1. Each patch has the
/// place, the score and the status (0, 3, 4 or 5) of odxNCCPatchOnSquare8x8u8_v2, without sub-pixel places.
///
/// \param patches  `numPatches` of 64 pixels, one after the other
/// \param bestX,bestY,bestNCC,status  receive one value a patch; `status` may be null
/// \return 0 a patch was found; 3 none was; 1 when `searchWidth` or `searchHeight` is 12 or more, 2 when the
///         candidates' windows do not fit (with rx in x, ry in y): every status is that number then, places and
///         scores are 0; -1 refused arguments
ODX_API int odxNCCPatchesOnRectu8(const uint8_t* patches, unsigned int numPatches, const uint8_t* src,
                                  unsigned int srcWidth, unsigned int srcHeight, unsigned int xSearchCenter,
                                  unsigned int ySearchCenter, unsigned int searchWidth, unsigned int searchHeight,
                                  int32_t filterLowVariance, uint16_t* bestX, uint16_t* bestY, int32_t* bestNCC,
                                  int32_t* status);

/// Dense motion on a grid: where the 16x16 blocks of one image are in the next one.
/// The blocks of src1 have their top left corners at the multiples of `step` in x and y, as far as they lie in the
/// image: ((srcWidth - 16) / step + 1) in a row, ((srcHeight - 16) / step + 1) rows. For each, in raster order,
/// all displacements of -searchRadius .. searchRadius in both directions that keep it inside src2 are tried. The
/// least sum of absolute differences wins; among equal ones the shortest displacement (dx * dx + dy * dy), then
/// the first in order of dy, dx. Both images have the size and stride given; width and height of at least 16.
///
/// \param searchRadius  up to 255
/// \param flowXY        receives dx and dy for each block
/// \param sad           receives the least sum for each block; may be null
ODX_API void odxTrackBMOpticalFlow16x16u8(const uint8_t* src1, const uint8_t* src2, unsigned int srcWidth,
                                          unsigned int srcHeight, unsigned int srcStride, unsigned int step,
                                          unsigned int searchRadius, int16_t* flowXY, uint16_t* sad);

#endif
