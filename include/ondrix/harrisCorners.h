/// \file harrisCorners.h
/// Harris corners of 8-bit single-channel images, and what refines them.
///
/// The response of a pixel
/// - Gradients: dx = (right - left) >> 1, dy = (below - above) >> 1, of the neighbouring pixels.
/// - The products dx*dx, dy*dy, dx*dy, each smoothed with the 5x5 kernel (1 4 6 4 1) x (1 4 6 4 1) and shifted
///   right by 8, give Ixx, Iyy, Ixy.
/// - Response = Ixx*Iyy - (Ixy*Ixy + ((Ixx+Iyy)^2 >> 4)), a signed 32-bit integer up to about 2^28. Corners
///   have large positive responses, edges negative ones. Contrast enters with its fourth power.
/// - The three outermost rows and columns have no response.
/// A corner is a pixel whose response is above a threshold and above the responses of all other pixels of its 5x5
/// neighbourhood; neighbours of equal response rule each other out.
///
/// Conventions of this page
/// - Strides are in bytes; 0 means the width. Widths and heights are in pixels.
/// - `border`: pixels closer than this to an edge are not corners; values below 6 mean 5.
/// - `xy` receives an x and a y for each corner and must hold `nCornersMax` pairs; the corners come in raster
///   order unless the function says otherwise, and the search ends when the list is full. `nCorners`
///   (`numcorners`) receives their number. With a capacity of 0 there are none. What the list holds beyond that
///   number stays as it was.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written, the number of corners neither:
///   set it to 0 before the call. Refused are null pointers, sizes of 0 and strides below the width, and what a
///   function says.
/// - The detectors take temporary memory: the reference 56 bytes a column, the SIMD code about 84. Without it the
///   process ends with an error line.
#ifndef ONDRIX_HARRIS_CORNERS_H
#define ONDRIX_HARRIS_CORNERS_H

#include "ondrix/types.h"

/// Harris corners.
/// Width and height of at least 5; below 11 there are no corners.
ODX_API void odxCornerHarrisu8(const uint8_t* src, unsigned int width, unsigned int height, unsigned int stride,
                               unsigned int border, uint32_t* xy, unsigned int nCornersMax, uint32_t* numcorners,
                               int threshold);

/// Harris corners outside a mask.
/// Images of any size; below 11 there are no corners. The mask does not take part in the neighbourhood: a corner
/// is dropped when its own bit is set.
///
/// \param bitMask  one bit a pixel, set to exclude it; rows of (maskWidth + 7) / 8 bytes, most significant bit first.
///                 The mask has the image's size, or 2, 4 or 8 times that, or a half, a quarter or an eighth of
///                 it, exactly and in both directions. With another size there are no corners.
ODX_API void odxCornerHarrisInMasku8(const uint8_t* srcImg, unsigned int width, unsigned int height,
                                     unsigned int stride, unsigned int border, uint32_t* xy,
                                     unsigned int nCornersMax, uint32_t* numcorners, int threshold,
                                     const uint8_t* bitMask, unsigned int maskWidth, unsigned int maskHeight);

/// The strongest Harris corners.
/// Where more than `nCornersMax` pixels are corners, the threshold adapts to the image, so that the list keeps the
/// strongest of the whole image, not the topmost ones. Among equal responses at the limit the earlier in raster
/// order stays. The corners come in raster order. Width and height of at least 5. Temporary memory: 12 bytes for
/// each 3x3 pixels; without it an error line is logged and there are no corners.
///
/// \param threshold  the least that a response must exceed in any case
ODX_API void odxCornerHarrisAdaptiveu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, unsigned int border, uint32_t* xy,
                                       unsigned int nCornersMax, uint32_t* nCorners, int threshold);

/// Harris corners and their responses.
/// Width and height of at least 5.
///
/// \param scores  receives the response of each corner, in the order of `xy`
ODX_API void odxCornerHarrisScoreu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, unsigned int border, uint32_t* xy, int32_t* scores,
                                    unsigned int nCornersMax, uint32_t* nCorners, int threshold);

/// The pixel with the largest Harris response around a pixel.
/// It is searched in the window of (2 * radius + 1)^2 pixels around (x, y), as far as that has responses; the
/// first one in raster order of several.
///
/// \param maxX,maxY    receive the pixel
/// \param maxResponse  receives its response, which may be negative
/// \return ONDRIX_BAD_PARAMETER for refused arguments (logged), and when no pixel of the window has a response (in
///         silence); nothing is written then
ODX_API odxStatus odxLocalHarrisMaxu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                      unsigned int srcStride, unsigned int x, unsigned int y, unsigned int radius,
                                      uint32_t* maxX, uint32_t* maxY, int32_t* maxResponse);

/// Corners that are good to track, the strongest first.
/// The strength of a pixel is the smaller eigenvalue of the matrix (Ixx Ixy, Ixy Iyy), in 1/256, rounded down:
///     (256 * (Ixx + Iyy) - floor(256 * sqrt((Ixx - Iyy)^2 + 4 * Ixy^2))) >> 1
/// where Ixx, Iyy and Ixy are those of the response above.
/// - Candidates are the pixels not closer to an edge than the border whose strength is above 0 and above that of
///   all 24 other pixels of their 5x5 neighbourhood; pixels without responses do not come into it.
/// - They are taken from the strongest on, equal ones in raster order. The first one sets the level: those of less
///   than (double)qualityLevel times its strength are dropped.
/// - A candidate is dropped when its distance to one that was kept is below `minDistance`: dx^2 + dy^2 <
///   minDistance^2. Dropped ones drop no others.
/// - The first `nCornersMax` that were kept are the result.
/// Width and height of at least 5. Temporary memory: 12 bytes for each 3x3 pixels and a grid of distances; without
/// it an error line is logged and there are no corners.
///
/// \param qualityLevel  0 to 1, typically 0.01; NaN and values outside are refused
/// \param minDistance   in pixels; 0 and 1 drop none
ODX_API void odxGoodFeatureToTracku8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, unsigned int border, uint32_t* xy,
                                     unsigned int nCornersMax, uint32_t* nCorners, float qualityLevel,
                                     unsigned int minDistance);

/// Refines corners to fractions of a pixel: moves them to where the gradients of their neighbourhood meet.
/// Each step samples the window around the point and solves for the point to which the gradients are
/// perpendicular. All arithmetic is in double precision, from left to right; the result is rounded to float. With
/// h = halfWindow and (x, y) the point, which starts at the corner, a step is:
/// 1. Samples, for |i| and |j| up to h + 1, with X = floor(x), fx = x - X, Y = floor(y), fy = y - Y and
///    p the image:
///        v(i, j) = (1 - fy) * ((1 - fx) * p(X + i, Y + j)     + fx * p(X + i + 1, Y + j))
///                +      fy  * ((1 - fx) * p(X + i, Y + j + 1) + fx * p(X + i + 1, Y + j + 1))
///    Columns X + i + 1 are not looked at where fx = 0, nor rows Y + j + 1 where fy = 0.
/// 2. Sums from 0, for j = -h .. h (outer) and i = -h .. h (inner), with w = (h + 1 - |i|) * (h + 1 - |j|),
///    gx = v(i + 1, j) - v(i - 1, j) and gy = v(i, j + 1) - v(i, j - 1):
///        xx += w * gx * gx,  yy += w * gy * gy,  xy += w * gx * gy,
///        bx += w * gx * (gx * i + gy * j),  by += w * gy * (gx * i + gy * j)
/// 3. determinant = xx * yy - xy * xy, trace = xx + yy,
///    dx = (yy * bx - xy * by) / determinant, dy = (xx * by - xy * bx) / determinant; x += dx, y += dy
///
/// It ends after `maxIterations` steps, or after a step with dx * dx + dy * dy <= epsilon * epsilon. The corner
/// stays where it was when in any step a pixel that is needed lies outside the image, when the window has no
/// structure in two directions (unless determinant > 1e-6 * trace * trace), or when after it the point is further
/// than h from where it started, in x or in y. NaN and infinite corners stay, too. Nothing tells which corners
/// stayed but that they did not move.
///
/// \param xy             `nCorners` pairs (x, y), in pixels, pixel centres at whole numbers; refined in place
/// \param halfWindow     1 to 15; others are refused
/// \param maxIterations  at least 1; 0 is refused
/// \param epsilon        0 or more; others and NaN are refused
ODX_API void odxCornerRefineSubPixu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, float* xy, unsigned int nCorners,
                                     unsigned int halfWindow, unsigned int maxIterations, float epsilon);

/// Edges that a line crosses: maxima of the image's derivative along a search line through a point.
/// The line is walked along `dir`, so that maxima are where the image grows brighter in that direction; for edges
/// to darkness turn `dir` around. With r = maxDistance, single precision throughout:
/// 1. The line starts at pos - r * dir and ends at pos + r * dir. Both must be at least r + 2 and at most
///    srcWidth - r - 2 (x) or srcHeight - r - 2 (y).
/// 2. Sample k = 0 .. 2r is at X = (int)(start.x + k * dir.x + 0.5f), Y = (int)(start.y + k * dir.y + 0.5f).
///    With p = src + Y * srcStride + X, the sample is
///        s[k] = (p[-1] + p[0] + p[1] + p[-srcWidth] + p[srcWidth]) >> 2    (five pixels, a quarter of their sum)
/// 3. Slopes d[k] = s[k + 1] - s[k - 1] for k = 1 .. 2r - 1; d[0] = d[1] and d[2r] = d[2r - 1].
/// 4. In order of k = 1 .. 2r - 1, a sample is a maximum when d[k] >= minGradient, d[k - 1] <= d[k] and
///    d[k] > d[k + 1] (so that the last one of a plateau counts), and the image's gradient there fits the
///    direction. With q = src + Y * srcWidth + X and W = srcWidth, that is
///        gx = (q[-W + 1] - q[-W - 1]) + 2 * (q[1] - q[-1]) + (q[W + 1] - q[W - 1])
///        gy = (q[W - 1] - q[-W - 1]) + 2 * (q[W] - q[-W]) + (q[W + 1] - q[-W + 1])
///    m = gx * gx + gy * gy must not be 0, nor c * c / m below maxAngleDiff, where c = gx * dir.x + gy * dir.y.
///
/// Images with padded rows give other results: the vertical neighbours of samples are `srcWidth` bytes apart, and
/// the gradient is looked up as if rows followed each other without padding.
///
/// \param pos,dir       (x, y); a direction of unit length makes samples a pixel apart
/// \param maxAngleDiff  squared cosine of the largest angle between gradient and direction, if `dir` has unit length
/// \param maxima        receives the offsets k - r of the first `maxNumMaxima` maxima, in order
/// \param numMaxima     receives their number
/// \return 0 after a search; 1, without touching the outputs, when arguments are refused ("Assertion failed @..."),
///         or (in silence) when the line leaves the area of step 1; 1 with `numMaxima` 0 when temporary memory (4
///         bytes a sample) is missing
ODX_API uint32_t odxFindMultipleMaximau8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, const float* pos, const float* dir,
                                         unsigned int maxDistance, unsigned int maxNumMaxima, int minGradient,
                                         float maxAngleDiff, float* maxima, uint32_t* numMaxima);

#endif
