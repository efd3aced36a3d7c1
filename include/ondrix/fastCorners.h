/// \file fastCorners.h
/// FAST corners of 8-bit single-channel images: pixels with a long arc around them that is brighter or darker.
///
/// A pixel of value p is a corner when at least 9 (FAST-9) or 10 (FAST-10) neighbours among the 16 pixels of the
/// circle of radius 3 around it are all above p + barrier, or all below p - barrier. Equal values don't count.
///
/// Conventions of this page
/// - `srcStride` is the distance of two rows in bytes; 0 means `srcWidth`.
/// - `border`: pixels closer than this to an edge are not tested; values below 3 mean 3.
/// - `barrier`: the sums above are not clamped. From 255 on, no pixel is a corner. A negative barrier makes
///   corners of nearly all pixels.
/// - `xy`: receives the corners in raster order, an x and a y each. It must hold `nCornersMax` pairs, and at least
///   one: the detector stops when a corner has filled the list, so a capacity of 0 still admits one corner.
/// - `nCorners`: receives the number of corners. Where a call is refused it keeps what it held: set it to 0
///   before. What the lists hold beyond that number stays as it was.
/// - `bitMask`, `mask`: an image of bits, a set bit for pixels that are not tested. Rows are whole bytes,
///   (maskWidth + 7) / 8 of them; the most significant bit of a byte comes first. The mask has the image's size,
///   or 2, 4 or 8 times that, or a half, a quarter or an eighth of it, exactly and in both directions; a pixel's
///   bit is at its scaled coordinates, rounded down. With another size there are no corners.
/// - `scores`: receives a score for each corner: the largest barrier with which it is still one, but at least the
///   `barrier` given. It must be as long as the list of corners.
/// - Suppression (`nmsEnabled` other than 0) drops each corner that has a neighbour among its eight that is a
///   corner of at least the same score; neighbours of equal score drop each other. Scores compare as unsigned.
///   `nCornersMax` then limits the corners before suppression: where there are more, the search ends, and the
///   lower part of the image has none, though fewer than `nCornersMax` may be left in the list. Give it room for
///   all.
/// - `tempBuf`: working memory for suppression, 3 * nCornersMax + srcHeight words; not used without. A null
///   pointer where it is used is logged and ends the process.
/// - Null pointers, a stride other than 0 below the width, and images that the border covers are refused with a
///   log line ("Assertion failed @..."), and nothing is written. Buffers must not overlap.
#ifndef ONDRIX_FAST_CORNERS_H
#define ONDRIX_FAST_CORNERS_H

#include "ondrix/types.h"

/// FAST-9 corners.
ODX_API void odxCornerFast9u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                              unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                              unsigned int nCornersMax, uint32_t* nCorners);

/// FAST-10 corners.
ODX_API void odxCornerFast10u8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                               unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                               unsigned int nCornersMax, uint32_t* nCorners);

/// FAST-9 corners outside a mask.
ODX_API void odxCornerFast9InMasku8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                                    unsigned int nCornersMax, uint32_t* nCorners, const uint8_t* bitMask,
                                    unsigned int maskWidth, unsigned int maskHeight);

/// FAST-10 corners outside a mask.
ODX_API void odxCornerFast10InMasku8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                     unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                                     unsigned int nCornersMax, uint32_t* nCorners, const uint8_t* mask,
                                     unsigned int maskWidth, unsigned int maskHeight);

/// FAST-9 corners and their scores, without suppression.
ODX_API void odxCornerFast9Scoreu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                   unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                                   uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners);

/// FAST-9 corners outside a mask and their scores, without suppression.
ODX_API void odxCornerFast9InMaskScoreu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                         unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                                         uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                                         const uint8_t* bitMask, unsigned int maskWidth, unsigned int maskHeight);

/// FAST-9 corners and their scores; `nmsEnabled` switches suppression, which works in `tempBuf`.
ODX_API void odxCornerFast9Scoreu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                      unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                                      uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                                      unsigned int nmsEnabled, uint32_t* tempBuf);

/// FAST-9 corners outside a mask and their scores; `nmsEnabled` switches suppression, which works in `tempBuf`.
ODX_API void odxCornerFast9InMaskScoreu8_v2(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                            unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                                            uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                                            const uint8_t* bitMask, unsigned int maskWidth,
                                            unsigned int maskHeight, unsigned int nmsEnabled, uint32_t* tempBuf);

/// FAST-10 corners and their scores; `nmsEnabled` switches suppression, which works in `tempBuf`.
ODX_API void odxCornerFast10Scoreu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                    unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                                    uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                                    unsigned int nmsEnabled, uint32_t* tempBuf);

/// FAST-10 corners outside a mask and their scores; `nmsEnabled` switches suppression, which works in `tempBuf`.
ODX_API void odxCornerFast10InMaskScoreu8(const uint8_t* src, unsigned int srcWidth, unsigned int srcHeight,
                                          unsigned int srcStride, int barrier, unsigned int border, uint32_t* xy,
                                          uint32_t* scores, unsigned int nCornersMax, uint32_t* nCorners,
                                          const uint8_t* mask, unsigned int maskWidth, unsigned int maskHeight,
                                          unsigned int nmsEnabled, uint32_t* tempBuf);

#endif
