/// \file opticalFlow.h
/// Sparse optical flow: where points of one picture are in the next one.
///
/// Pyramidal Lucas-Kanade tracking of 8-bit single-channel images, in single precision.
///
/// Conventions of this page
/// - `src1` and `src2` are level 0 of the two images, of `width` x `height` pixels. Levels 1 and up come from the
///   pyramids `src1Pyr` and `src2Pyr`, arrays of `numLevels` records of which the first one is not looked at; each
///   level should be a smoothed image of half the size of the one before. Levels without pixels hold no points.
/// - `featureXY` holds `featureCount` points (x, y) of image 1 in pixels, pixel centres at whole numbers;
///   `featureXY_out` receives their places in image 2, and must not overlap it; `featureStatus` receives for each
///   point: 1 tracked; -2 the window has no structure in two directions; -4 the window lies outside the image, in
///   image 1 or, after some step, in image 2. A place means something with status 1 only.
/// - `windowWidth` and `windowHeight` are odd. With one below 5, a negative `numLevels`, or without points nothing
///   is written.
/// - With 0 levels every status is 1, and the estimates are the result.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written: null pointers and even
///   windows.
/// - Temporary memory: 40 bytes for each pixel of the window and 64 for each level, roughly. Without it nothing is
///   written.
/// - 0 as a stride means packed rows; any other stride is at least the width, which nobody checks.
///
/// How a point is tracked
///
/// With `hx = windowWidth / 2`, `hy = windowHeight / 2` and a scale that is 1 on level 0 and halves from level to
/// level, for each level from the top to 0, and each point that still has status 1:
/// 1. p = featureXY * scale. The guess g is the estimate times the scale on the top level, and twice the result of
///    the level before on others.
/// 2. The window of a point q has its top left corner at (floor(q.x) - hx, floor(q.y) - hy). It is cut to the
///    image; what remains is w x h pixels, cut by l, r, t and b pixels at its sides. Its centre is q + ((l - r) *
///    0.5, (t - b) * 0.5). When nothing remains, or a coordinate is not finite or 2^30 and more in magnitude, the
///    point is outside.
/// 3. A patch of w x h samples about the centre c starts at s = c - ((w - 1) * 0.5, (h - 1) * 0.5). With
///    (X, Y) = floor(s), fx = max(s.x - X, 0.0001), fy = s.y - Y and pixels of the image, or the nearest ones
///    inside it, the sample (i, j) is
///        (1 - fy) * ((1 - fx) * p(X + i, Y + j)     + fx * p(X + i + 1, Y + j))
///          + fy   * ((1 - fx) * p(X + i, Y + j + 1) + fx * p(X + i + 1, Y + j + 1))
/// 4. The window of p in image 1: outside, the status is -4 and the estimate keeps its value. Else a patch f of
///    (w + 2) x (h + 2) samples is taken about its centre. I1 is f without its outer samples; there
///        Ix = (dx(-1) + dx(1)) * 0.09375 + dx(0) * 0.3125,  dx(k) = f(i + 1, j + k) - f(i - 1, j + k)
///        Iy = (dy(-1) + dy(1)) * 0.09375 + dy(0) * 0.3125,  dy(k) = f(i + k, j + 1) - f(i + k, j - 1)
/// 5. At most `iterationLimit` times (1 at least, 100 at most):
///    - The window of g in image 2, cut to that image and to what the window in image 1 was cut to, as places in
///      the whole window: when nothing remains, the status is -4 and the iteration ends. Else I2 is a patch of
///      what remains, about the centre for these cuts.
///    - Sums over that part of the window: xx of Ix * Ix, xy of Ix * Iy, yy of Iy * Iy (only made again when the
///      part is another one than in the iteration before), bx of (I1 - I2) * Ix, by of (I1 - I2) * Iy.
///    - determinant = xx * yy - xy * xy; below 1e-7 the status is -2 and the iteration ends.
///    - dx = (yy * bx - xy * by) / determinant, dy = (xx * by - xy * bx) / determinant; g += (dx, dy).
///    - With dx * dx + dy * dy < epsilon the iteration ends. From the second one on it also ends when the step
///      reversed itself, |dx + dx before| < 0.01 and |dy + dy before| < 0.01; then g -= (dx * 0.5, dy * 0.5).
/// 6. g is the result of the level, also when the iteration ended with a status of -2 or -4.
///
/// Order of the sums: the values, in raster order with a 0 behind each row of w, are added from 0 to 16 sums in
/// turn; then sum k + 8 is added to sum k, k + 4 to k, k + 2 to k, and the second to the first.
///
/// epsilon is 0.0009 (a step of 0.03 pixels) where a function has no such argument.
#ifndef ONDRIX_OPTICAL_FLOW_H
#define ONDRIX_OPTICAL_FLOW_H

#include "ondrix/types.h"

/// Tracks points by the Lucas-Kanade method.
/// Packed rows. The places of `featureXY` are the estimates.
///
/// \param dx1Pyr,dy1Pyr   gradients of image 1 as pyramids; not looked at, may be null
/// \param tuning1..tuning4  have no effect
ODX_API void odxTrackLKOpticalFlowu8(const uint8_t* src1, const uint8_t* src2, unsigned int width,
                                     unsigned int height, const odxPyrLevel* src1Pyr, const odxPyrLevel* src2Pyr,
                                     const odxPyrLevel* dx1Pyr, const odxPyrLevel* dy1Pyr, const float* featureXY,
                                     float* featureXY_out, int32_t* featureStatus, int featureCount,
                                     int windowWidth, int windowHeight, int iterationLimit, int numLevels,
                                     unsigned int tuning1, unsigned int tuning2, float tuning3,
                                     unsigned int tuning4);

/// As odxTrackLKOpticalFlowu8, for pyramids of float gradients.
/// The images and their pyramids are of bytes here, too.
ODX_API void odxTrackLKOpticalFlowf32(const uint8_t* src1, const uint8_t* src2, unsigned int width,
                                      unsigned int height, const odxPyrLevel* src1Pyr, const odxPyrLevel* src2Pyr,
                                      const odxPyrLevel* dx1Pyr, const odxPyrLevel* dy1Pyr, const float* featureXY,
                                      float* featureXY_out, int32_t* featureStatus, int featureCount,
                                      int windowWidth, int windowHeight, int iterationLimit, int numLevels,
                                      unsigned int tuning1, unsigned int tuning2, float tuning3,
                                      unsigned int tuning4);

/// As odxTrackLKOpticalFlowu8, with a stride for level 0.
ODX_API void odxTrackLKOpticalFlowu8_v2(const uint8_t* src1, const uint8_t* src2, unsigned int width,
                                        unsigned int height, unsigned int stride, const odxPyrLevel* src1Pyr,
                                        const odxPyrLevel* src2Pyr, const float* featureXY, float* featureXY_out,
                                        int32_t* featureStatus, int featureCount, int windowWidth,
                                        int windowHeight, int iterationLimit, int numLevels);

/// As odxTrackLKOpticalFlowu8_v2, with strides for all levels, estimates, and the choice when to stop.
/// Refuses its arguments in silence.
///
/// \param initialEstimate     where the points may be in image 2, in pixels of level 0, when `useInitialEstimate` is
///                            not 0; else it may be null. It may be `featureXY_out` itself.
/// \param epsilon             see above; below 0 it counts as 0, above 10 as 10
/// \param terminationMode     0: epsilon is 0.0009; 1: `iterationLimit` is 30; else both are as given
/// \return ONDRIX_SUCCESS, also when nothing was tracked; ONDRIX_BAD_PARAMETER; ONDRIX_NO_MEMORY
ODX_API odxStatus odxTrackLKOpticalFlowu8_v3(const uint8_t* src1, const uint8_t* src2, unsigned int width,
                                             unsigned int height, unsigned int stride,
                                             const odxPyrLevelStrided* src1Pyr, const odxPyrLevelStrided* src2Pyr,
                                             const float* featureXY, float* featureXY_out, int32_t* featureStatus,
                                             int featureCount, int windowWidth, int windowHeight,
                                             int iterationLimit, int numLevels, const float* initialEstimate,
                                             int32_t useInitialEstimate, float epsilon, int32_t terminationMode);

#endif
