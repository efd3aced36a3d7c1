/// \file harrisCorners.h
/// Harris corners of 8-bit single-channel images, and what refines them.
///
/// The response of a pixel
/// - Gradients: dx = (right - left) >> 1, dy = (below - above) >> 1, of the neighbouring pixels.
/// - The products dx*dx, dy*dy, dx*dy, each smoothed with the 5x5 kernel (1 4 6 4 1) x (1 4 6 4 1) and shifted
///   right by 8, give Ixx, Iyy, Ixy.
/// - Response = Ixx*Iyy - Ixy*Ixy - (Ixx+Iyy)^2 / 16, a signed 32-bit integer up to about 2^28. Corners have large
///   positive responses, edges negative ones. Contrast enters with its fourth power.
/// - The three outermost rows and columns have no response.
/// A corner is a pixel whose response is above a threshold and above the responses of all other pixels of its 5x5
/// neighbourhood; neighbours of equal response rule each other out.
///
/// Conventions of this page
/// - Strides are in bytes; 0 means the width. Widths and heights are in pixels.
/// - `border`: pixels closer than this to an edge are not corners; values below 6 mean 5.
/// - `xy` receives an x and a y for each corner and must hold `nCornersMax` pairs; the corners come in raster
///   order unless the function says otherwise, and the search ends when the list is full. `nCorners`
///   (`numcorners`) receives their number. With a capacity of 0 there are none.
/// - Refused arguments are logged ("Assertion failed @...") and nothing is written.
/// - The detectors take temporary memory: the reference 56 bytes a column, the SIMD code about 84. Without it the
///   process ends with an error line.
#ifndef ONDRIX_HARRIS_CORNERS_H
#define ONDRIX_HARRIS_CORNERS_H

#include "ondrix/types.h"

/// Harris corners. Width and height of at least 5; below 11 there are no corners.
ODX_API void odxCornerHarrisu8(const uint8_t* src, unsigned int width, unsigned int height, unsigned int stride,
                               unsigned int border, uint32_t* xy, unsigned int nCornersMax, uint32_t* numcorners,
                               int threshold);

/// Harris corners outside a mask. The mask does not take part in the neighbourhood: a corner is dropped when its
/// own bit is set.
///
/// \param bitMask  one bit a pixel, set to exclude it; rows of (maskWidth + 7) / 8 bytes, most significant bit first.
///                 The mask has the image's size, or 2, 4 or 8 times that, or a half, a quarter or an eighth of
///                 it, exactly and in both directions. With another size there are no corners.
ODX_API void odxCornerHarrisInMasku8(const uint8_t* srcImg, unsigned int width, unsigned int height,
                                     unsigned int stride, unsigned int border, uint32_t* xy,
                                     unsigned int nCornersMax, uint32_t* numcorners, int threshold,
                                     const uint8_t* bitMask, unsigned int maskWidth, unsigned int maskHeight);

/// The strongest Harris corners: where more than `nCornersMax` pixels are corners, the threshold adapts to the
/// image, so that the list keeps the strongest of the whole image, not the topmost ones. Among equal responses at
/// the limit the earlier in raster order stays. The corners come in raster order. Temporary memory: 12 bytes for
/// each 3x3 pixels; without it an error line is logged and there are no corners.
///
/// \param threshold  the least that a response must exceed in any case
ODX_API void odxCornerHarrisAdaptiveu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                       unsigned int srcStride, unsigned int border, uint32_t* xy,
                                       unsigned int nCornersMax, uint32_t* nCorners, int threshold);

/// Harris corners and their responses.
///
/// \param scores  receives the response of each corner, in the order of `xy`
ODX_API void odxCornerHarrisScoreu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, unsigned int border, uint32_t* xy, int32_t* scores,
                                    unsigned int nCornersMax, uint32_t* nCorners, int threshold);

/// The pixel with the largest Harris response in the window of (2 * radius + 1)^2 pixels around (x, y), as far as
/// it has responses; the first one in raster order of several.
///
/// \param maxX,maxY    receive the pixel
/// \param maxResponse  receives its response, which may be negative
/// \return ONDRIX_BAD_PARAMETER for refused arguments, and when no pixel of the window has a response; nothing is
///         written then
ODX_API odxStatus odxLocalHarrisMaxu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                      unsigned int srcStride, unsigned int x, unsigned int y, unsigned int radius,
                                      uint32_t* maxX, uint32_t* maxY, int32_t* maxResponse);

/// Corners that are good to track: maxima of the smaller eigenvalue of the matrix (Ixx Ixy, Ixy Iyy), the
/// strongest first, each at least a distance away from all stronger ones that were kept.
///
/// The smaller eigenvalue is taken in 1/256, rounded down:
/// (256 * (Ixx + Iyy) - floor(256 * sqrt((Ixx - Iyy)^2 + 4 * Ixy^2))) / 2. Corners of equal strength keep raster
/// order. Temporary memory: 12 bytes for each 3x3 pixels and a grid of distances; without it an error line is
/// logged and there are no corners.
///
/// \param qualityLevel  corners below this part of the strongest one's eigenvalue are dropped; 0 to 1, typically 0.01
/// \param minDistance   least distance of two corners in pixels; 0 and 1 drop none
ODX_API void odxGoodFeatureToTracku8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, unsigned int border, uint32_t* xy,
                                     unsigned int nCornersMax, uint32_t* nCorners, float qualityLevel,
                                     unsigned int minDistance);

/// Moves corners to where the gradients of their neighbourhood meet, to a fraction of a pixel.
///
/// Each step samples the window of (2 * halfWindow + 1)^2 pixels around the point, and a pixel more on each side
/// (bilinear), weighs a pixel at the offset (i, j) by (halfWindow + 1 - |i|) * (halfWindow + 1 - |j|), and solves
/// for the point to which the gradients are perpendicular. It ends after `maxIterations` steps, or with a step of
/// at most `epsilon` pixels. A point stays where it was when a sample lies outside the image, when it would move
/// further than the window, or when the window has no structure in two directions.
///
/// \param xy             `nCorners` pairs (x, y), in pixels, pixel centres at whole numbers; refined in place
/// \param halfWindow     1 to 15
/// \param maxIterations  at least 1
/// \param epsilon        0 or more
ODX_API void odxCornerRefineSubPixu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, float* xy, unsigned int nCorners,
                                     unsigned int halfWindow, unsigned int maxIterations, float epsilon);

/// Edges that a line crosses: maxima of the image's derivative along a search line through `pos`.
///
/// Samples are taken at pos + k * dir, k = -maxDistance .. maxDistance, rounded to pixels. Each is the sum of the
/// pixel and its four neighbours, divided by four. A sample is a maximum when the difference of its two neighbours
/// is at least `minGradient` and a local maximum along the line (the last sample of a plateau), and the squared
/// projection of the image's gradient there on `dir`, over the gradient's squared length, is at least
/// `maxAngleDiff`.
///
/// Images with padded rows give other results: the vertical neighbours of samples are `srcWidth` bytes apart, and
/// the gradient is looked up as if rows followed each other without padding.
///
/// \param pos,dir       (x, y); a direction of unit length makes samples a pixel apart
/// \param maxAngleDiff  squared cosine of the largest angle between gradient and direction
/// \param maxima        receives the offsets k of up to `maxNumMaxima` maxima, in order
/// \param numMaxima     receives their number
/// \return 0 after a search; 1, without touching the outputs, when arguments are refused ("Assertion failed @..."),
///         or when an end of the line is closer than maxDistance + 2 to an edge; 1 with `numMaxima` 0 when
///         temporary memory is missing
ODX_API uint32_t odxFindMultipleMaximau8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, const float* pos, const float* dir,
                                         unsigned int maxDistance, unsigned int maxNumMaxima, int minGradient,
                                         float maxAngleDiff, float* maxima, uint32_t* numMaxima);

#endif
