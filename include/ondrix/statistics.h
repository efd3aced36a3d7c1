/// \file statistics.h
/// Statistics of images: smallest and largest elements, histograms, mean and variance, moments, local
/// normalisation.
///
/// Conventions of this page
/// - Images are row-major with one channel. Widths and heights are in pixels, strides in bytes; a stride of 0
///   means packed rows. (x, y) is a column and a row.
/// - Refused arguments (null pointers, sizes of 0, strides shorter than a packed row, and what an operation names)
///   are logged ("Assertion failed @..."); nothing is written, and operations with a status return
///   ONDRIX_BAD_PARAMETER.
/// - Results are overwritten, never added to. They must not overlap the source, nor each other, except where an
///   operation works in place.
/// - Integer results are exact. Images have fewer than 2^32 pixels: counts are modulo 2^32. n is the number of
///   pixels.
/// - Double precision: every operation is rounded once, and the results are the same on all processors; the sign
///   and payload of a computed not-a-number are not defined.
#ifndef ONDRIX_STATISTICS_H
#define ONDRIX_STATISTICS_H

#include "ondrix/types.h"

/// Divisor of a variance.
ODX_ENUM(uint32_t, odxVarianceEstimator){
    ONDRIX_VARIANCE_POPULATION = 0, ///< n: the pixels are all there is
    ONDRIX_VARIANCE_SAMPLE = 1      ///< n - 1: they are a sample
};

/// Moments of an image: spatial, central, and central normalised by the mass.
typedef struct odxMoments {
    double m00, m10, m01, m20, m11, m02, m30, m21, m12, m03; ///< spatial
    double mu20, mu11, mu02, mu30, mu21, mu12, mu03;         ///< central
    double nu20, nu11, nu02, nu30, nu21, nu12, nu03;         ///< normalised central
} odxMoments;

/// \name Smallest and largest element
/// @{

/// Smallest and largest element of an 8-bit image, and where they are.
/// minXY and maxXY receive the first place of each in raster order, as the pair x, y. Any of the four results may
/// be null and is then not written.
ODX_API void odxMinMaxLocu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                            unsigned int srcStride, uint8_t* minValue, uint8_t* maxValue, uint32_t* minXY,
                            uint32_t* maxXY);

/// As odxMinMaxLocu8, of signed 16-bit images.
ODX_API void odxMinMaxLocs16(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, int16_t* minValue, int16_t* maxValue, uint32_t* minXY,
                             uint32_t* maxXY);

/// As odxMinMaxLocu8, of 16-bit images.
ODX_API void odxMinMaxLocu16(const uint16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint16_t* minValue, uint16_t* maxValue, uint32_t* minXY,
                             uint32_t* maxXY);

/// As odxMinMaxLocu8, of signed 32-bit images.
ODX_API void odxMinMaxLocs32(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, int32_t* minValue, int32_t* maxValue, uint32_t* minXY,
                             uint32_t* maxXY);

/// As odxMinMaxLocu8, of 32-bit images.
ODX_API void odxMinMaxLocu32(const uint32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, uint32_t* minValue, uint32_t* maxValue, uint32_t* minXY,
                             uint32_t* maxXY);

/// As odxMinMaxLocu8, of float images.
/// Not-a-numbers are skipped; without anything else both values are the one of bits 0x7FC00000, and the places (0,
/// 0). -0 equals +0; the value is, bit for bit, the element at the first place.
ODX_API void odxMinMaxLocf32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                             unsigned int srcStride, float* minValue, float* maxValue, uint32_t* minXY,
                             uint32_t* maxXY);

/// Smallest and largest element of an 8-bit image, and all places where they are.
/// \param minValue,maxValue  the elements; not null
/// \param minXY,maxXY        the first `capacity` places of each in raster order, as pairs x, y; entries beyond the
///                           smaller of count and capacity are not written. May be null with a capacity of 0
/// \param minCount,maxCount  numbers of all places in the image, also beyond the capacity; not null
/// \return ONDRIX_SUCCESS, also with more places than fit
ODX_API odxStatus odxMinMaxLocu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, uint8_t* minValue, uint8_t* maxValue, uint32_t* minXY,
                                    uint32_t* maxXY, unsigned int capacity, uint32_t* minCount,
                                    uint32_t* maxCount);

/// As odxMinMaxLocu8_v2, of signed 16-bit images.
ODX_API odxStatus odxMinMaxLocs16_v2(const int16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, int16_t* minValue, int16_t* maxValue, uint32_t* minXY,
                                     uint32_t* maxXY, unsigned int capacity, uint32_t* minCount,
                                     uint32_t* maxCount);

/// As odxMinMaxLocu8_v2, of 16-bit images.
ODX_API odxStatus odxMinMaxLocu16_v2(const uint16_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint16_t* minValue, uint16_t* maxValue,
                                     uint32_t* minXY, uint32_t* maxXY, unsigned int capacity, uint32_t* minCount,
                                     uint32_t* maxCount);

/// As odxMinMaxLocu8_v2, of signed 32-bit images.
ODX_API odxStatus odxMinMaxLocs32_v2(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, int32_t* minValue, int32_t* maxValue, uint32_t* minXY,
                                     uint32_t* maxXY, unsigned int capacity, uint32_t* minCount,
                                     uint32_t* maxCount);

/// As odxMinMaxLocu8_v2, of 32-bit images.
ODX_API odxStatus odxMinMaxLocu32_v2(const uint32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, uint32_t* minValue, uint32_t* maxValue,
                                     uint32_t* minXY, uint32_t* maxXY, unsigned int capacity, uint32_t* minCount,
                                     uint32_t* maxCount);

/// As odxMinMaxLocu8_v2, of float images.
/// Not-a-numbers are skipped; without anything else both values are the one of bits 0x7FC00000, the counts 0. -0
/// equals +0; the value is, bit for bit, the element at the first place.
ODX_API odxStatus odxMinMaxLocf32_v2(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, float* minValue, float* maxValue, uint32_t* minXY,
                                     uint32_t* maxXY, unsigned int capacity, uint32_t* minCount,
                                     uint32_t* maxCount);

/// @}
/// \name Histograms
/// @{

/// Number of pixels of each grey level.
/// \param histogram  256 counts
ODX_API void odxImageIntensityHistogram(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, uint32_t* histogram);

/// Histograms of the cells of an image, with a bin for each value.
/// As odxImageSpatialHistogramu8_v2 with 256 bins and a range of 256.
ODX_API void odxImageSpatialHistogramu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                        unsigned int srcStride, unsigned int cellsX, unsigned int cellsY,
                                        uint32_t* histograms);

/// Histograms of the cells of an image, of pattern labels or of grey levels.
/// The image is cut into cellsX x cellsY cells: pixel (x, y) belongs to cell (x * cellsX / srcWidth,
/// y * cellsY / srcHeight), in 64 bits, rounded down. A pixel of value v < range counts in bin v * bins / range,
/// rounded down, other pixels nowhere. Grey levels take 16 bins of 256, for example, labels as many bins as their
/// range.
/// \param cellsX,cellsY  1 to srcWidth, and to srcHeight
/// \param bins           1 to range
/// \param range          at most 256
/// \param histograms     those of the cells one behind the other in raster order, `bins` counts each
ODX_API void odxImageSpatialHistogramu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                           unsigned int srcStride, unsigned int cellsX, unsigned int cellsY,
                                           unsigned int bins, unsigned int range, uint32_t* histograms);

/// Spreads the grey levels of an image so that their histogram becomes as flat as it can.
/// With c(v) the number of pixels of value <= v, and c0 that of the smallest value present, every pixel v becomes
/// ((c(v) - c0) * 255 + (n - c0) / 2) / (n - c0), in 64 bits, quotients rounded down; an image of one value is
/// copied. In place with equal strides.
ODX_API void odxImageHistogramEqualizeu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, uint8_t* dst, unsigned int dstStride);

/// @}
/// \name Mean, variance and moments
/// @{

/// Mean and variance of a rectangle of an 8-bit image.
/// Of the n = width * height pixels at (x, y). With S and Q the exact sums of the pixels and of their squares, in
/// double: m = S / n, mean = (float)m, variance = (float)((Q - S * m) / n).
///
/// A rectangle that is not inside the image is refused before everything else, with the line "Error at
/// odxImageIntensityStats\n".
/// \param width,height  not 0
ODX_API void odxImageIntensityStats(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, unsigned int x, unsigned int y, unsigned int width,
                                    unsigned int height, float* mean, float* variance);

/// Mean and variance of a rectangle of an 8-bit image, with a choice of the divisor.
/// As odxImageIntensityStats; ONDRIX_VARIANCE_SAMPLE divides by n - 1, and gives 0 for one pixel. A rectangle that
/// is not inside the image is refused like other arguments.
ODX_API odxStatus odxImageIntensityStats_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                            unsigned int srcStride, unsigned int x, unsigned int y,
                                            unsigned int width, unsigned int height, float* mean, float* variance,
                                            odxVarianceEstimator estimator);

/// Moments up to the third order of an 8-bit image.
/// In double, with v the pixels:
///
///     m_pq  = sum of x^p * y^q * v
///     mu_pq = the same about the centroid (m10 / m00, m01 / m00)
///     nu_pq = mu_pq / |m00|^(1 + (p + q) / 2)
///
/// With m00 = 0 all mu and nu are 0. The spatial moments of 8-bit images, and of binary ones, are exact as long as
/// they are below 2^53. Else m_pq and mu_pq are right to within 1e-10 * (sum of |v|) * L^(p + q), L being the
/// larger of width and height, where m00 is not near 0 by cancellation; nu_pq likewise.
///
/// How the sums are made: the image is cut into tiles of 96 columns and 7 rows, missing pixels being 0. In a tile,
/// for each column, the rows from the last to the first: s0 += v, s1 += s0, s2 += s1, s3 += s2. Of these, the sums
/// of x^p * s_q, p + q <= 3, with x counted from the tile's first column: columns in turn to 16 sums, of which k +
/// 8 is added to k, then k + 4, k + 2 and k + 1. As t_pq (the factors being integers): t_p1 = s_p1 - s_p0, t_p2 =
/// (2 * s_p2 - 3 * s_p1) + s_p0, t_03 = ((6 * s_03 - 12 * s_02) + 7 * s_01) - s_00. Tiles are added to sums b of
/// their row of tiles, with u = the tile's first column: b_pq += the sum over i, from p down to 0, of (binomial(p,
/// i) * u^(p - i)) * t_iq; rows of tiles, with w = their first row: m_pq += the sum over j, from q down to 0, of
/// (binomial(q, j) * w^(q - j)) * b_pj. With (cx, cy) the centroid:
///
///     mu20 = m20 - cx * m10, mu11 = m11 - cy * m10, mu02 = m02 - cy * m01
///     mu30 = m30 - cx * (3 * mu20 + cx * m10),  mu21 = (m21 - cx * (2 * mu11 + cx * m01)) - cy * mu20
///     mu03 = m03 - cy * (3 * mu02 + cy * m01),  mu12 = (m12 - cy * (2 * mu11 + cy * m10)) - cx * mu02
///     nu of the second order = mu / (m00 * m00), of the third = mu / (m00 * m00 * sqrt(|m00|))
/// \param binary  1: every pixel other than 0 counts as 1; 0: pixels count as they are; others are refused
ODX_API void odxImageMomentsu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, unsigned int binary, odxMoments* moments);

/// As odxImageMomentsu8, of signed 32-bit images.
ODX_API void odxImageMomentss32(const int32_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, unsigned int binary, odxMoments* moments);

/// As odxImageMomentsu8, of float images.
/// In binary ones not-a-numbers count, too.
ODX_API void odxImageMomentsf32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                unsigned int srcStride, unsigned int binary, odxMoments* moments);

/// @}
/// \name Local normalisation
/// @{

/// Takes away the mean of each pixel's neighbourhood, and divides by its deviation: 8-bit images.
/// Removes shading before recognition or tracking; the floor keeps flat regions flat. Of the NxN box around a
/// pixel v, n = N * N, in which pixels outside the image equal the nearest edge pixel, S and Q are the sums of the
/// pixels and of their squares:
///
///     a = 16 * deviation * (n * v - S)
///     r = max(floor(sqrt(256 * (n * Q - S * S))), 16 * n * minDeviation)
///     dst = 128 + a / r, the quotient rounded to the nearest integer, halves away from 0; clipped to 0..255
///
/// So the mean becomes 128, and the deviation `deviation`. Every pixel is written.
/// \param N             side of the box, odd, 3 to 31
/// \param deviation     1 to 127
/// \param minDeviation  1 to 127: smaller deviations count as this one
/// \return ONDRIX_SUCCESS, or ONDRIX_NO_MEMORY without temporary memory
ODX_API odxStatus odxNormalizeLocalBoxu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, unsigned int N, uint8_t* dst,
                                         unsigned int dstStride, unsigned int deviation,
                                         unsigned int minDeviation);

/// Takes away the mean of each pixel's neighbourhood, and divides by its deviation: float images.
/// Of the NxN box as for odxNormalizeLocalBoxu8, of finite pixels, in double: mean = S / n, the variance Q / n -
/// mean * mean, or 0 if that is less, and its root, the deviation; dst = (float)((v - mean) / max(deviation,
/// minDeviation)). That is right to within 1e-4 * (1 + its magnitude) if minDeviation is at least 1e-4 of the
/// largest magnitude in the image.
///
/// Sums of columns of N pixels: anew for the rows 0, 32, 64 ..., from the uppermost pixel down to 0 +  v and 0 + v
/// * v; for others, new being the pixel that joins the column and old the one that leaves it, S += new - old and Q
/// += new * new - old * old. Sums of boxes: c_k(x) is that of 2^k columns from x on, c_k(x) = c_(k-1)(x) +
/// c_(k-1)(x + 2^(k-1)); the sum of N columns begins with c_0 of the first column, to which are added c_k of the
/// columns that follow those already in, for each bit k of N that is set, from the low ones up.
/// \param N             side of the box, odd, 3 to 31
/// \param minDeviation  above 0
/// \return ONDRIX_SUCCESS, or ONDRIX_NO_MEMORY without temporary memory
ODX_API odxStatus odxNormalizeLocalBoxf32(const float* src, unsigned int srcWidth, unsigned int srcHeight,
                                          unsigned int srcStride, unsigned int N, float* dst,
                                          unsigned int dstStride, float minDeviation);

/// @}

#endif
