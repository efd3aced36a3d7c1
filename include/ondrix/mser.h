/// \file mser.h
/// Maximally stable extremal regions: blobs whose outline hardly changes while a threshold does.
///
/// A handle holds the parameters and all working memory for images up to a size; extraction allocates nothing. One
/// handle serves one call at a time; calls on distinct handles may run side by side.
///
/// The regions
/// - Of the image without its outermost rows and columns, all components of pixels with grey values <= g are taken
///   for each level g from 0 to 255: connected by 4 neighbours, or by 8 with a handle of odxMserNN8Init. These are
///   the dark regions (also "plus"). The bright ones ("minus") are the same of the inverted image.
/// - From one level to the next a component stays as it is, grows by itself, or unites with others. Its history is
///   the list of its sizes, an entry for each level at which it changed. Where components unite, the one with the
///   most pixels keeps its history, and all that follows here, and those of the others end; of equal ones the one
///   that has been so large from the lower level on, else the one with the larger entry before, and so on.
/// - A component that changed last at level h, and changes again at level g, is tested with its size there:
///   1. If its size at h is not above minArea and below maxArea, nothing happens.
///   2. e is the entry before h, if h <= g - delta and there is one; else the most recent entry from h backwards
///      with a level <= g - delta, or the oldest one. The variation is v = (size(g) - size(e)) / size(e).
///   3. If v is not above the last variation (infinite for a new component), and h + 1 >= g, the variation still
///      falls: v becomes the last variation, and a minimum may be reported again.
///   4. Else the component at h is a region if none was reported since the last step 3, the last variation is
///      below maxVariation, and (size(h) - size of the last region reported) / size(h), with 0 for none, is above
///      minDiversity. In any case v becomes the last variation, and nothing is reported until the next step 3.
///   Divisions are of floats.
///
/// The order of points and regions
/// - Pixels are finished in the order of a flood, for the bright regions that of the inverted image. It begins at
///   (1, 1). At a pixel it looks for the darkest neighbour that it has not met yet, the first of equal ones in the
///   order right, below, left, above, then (of 8) below right, below left, above left, above right. If that one is
///   darker than the pixel, the pixel is put aside and the neighbour is next. Else all neighbours not met yet are
///   put aside, in the same order, and the pixel is finished. Pixels put aside wait in a stack for each level;
///   next is the last one of the lowest level that has any.
/// - The pixels of a component are finished one after the other, without others between them. The points of a
///   region have this order.
/// - A region is found when the component is complete that is tested with it at level g: regions have the order of
///   the last pixels of those components, the smaller one first where that is the same pixel.
///
/// Working memory: 52 bytes for each pixel, and 4 more in rows that are rounded up to 32.
///
/// Arguments of the extraction
/// - `srcStride` is in bytes; 0 means the width. An image may be smaller than the handle's. Then maxArea is, in
///   floats, (maxArea / (width * height of the handle)) * srcWidth * srcHeight, rounded down. An image larger than
///   the handle's, or with a stride below its width, is refused in silence, and nothing is written. A side below 3
///   leaves no pixels, so no regions.
/// - `numContours` receives the number of regions: first the dark ones, then the bright ones, each in their order.
///   Regions come before those of the same polarity that contain them.
/// - `numPointsInContour` receives the number of points of each, and `pointsArray` the points of one after the
///   other, as pairs x, y: all pixels of the region, not only its outline. Counts of 16 bits are modulo 65536.
/// - `maxContours` and `pointsArraySize` are the capacities, in regions and in points (pairs). When not everything
///   fits, an error line is logged, the outputs have the first regions that fit as a whole, and the result is 0.
/// - `contourVariation`: the last variation of step 4. `contourPolarity`: 1 for dark regions, -1 for bright ones.
/// - `contourNodeId`, `contourNodeCounter`: the place of the region in the tree of components. The id
///   is the number of pixels finished before the first one of the region, the counter the number of its points, in
///   32 bits. So region i contains region k of the same polarity exactly if id[i] <= id[k] and
///   id[k] + counter[k] <= id[i] + counter[i].
/// - Null pointers are refused, in silence and with the result 0. The functions without a result log the line
///   "Assertion failed @<operation>: <condition>": of odxMserRelease the condition is "mserHandle", of odxMseru8
///   "mserHandle && srcPtr && numContours && numPointsInContour && pointsArray", and of odxMserExtu8 the same with
///   " && contourVariation && contourPolarity && contourNodeId && contourNodeCounter" behind it.
/// - The two polarities are found by two threads: the calling one, and one that the call starts and joins. Where
///   no thread can be had, the calling one does both.
#ifndef ONDRIX_MSER_H
#define ONDRIX_MSER_H

#include "ondrix/types.h"

/// Creates a handle for regions connected by 4 neighbours.
/// On failure, which is logged, the handle is null: an image narrower than 51 or lower than 6, or no memory. Other
/// parameters out of their range END THE PROCESS with exit status 1, after a log line.
///
/// \param width,height  the largest image; at most 8160 and 65535
/// \param delta         1 to 255: how far the levels are apart over which the variation is measured
/// \param minArea       below (width - 2) * (height - 2)
/// \param maxArea       2 or more, and above minArea + 1; regions are larger than minArea and smaller than maxArea
/// \param maxVariation  above 0
/// \param minDiversity  below 256
/// \param mserHandle    receives the handle
/// \return 1, or 0 on failure
ODX_API uint32_t odxMserInit(unsigned int width, unsigned int height, int delta, unsigned int minArea,
                             unsigned int maxArea, float maxVariation, float minDiversity, void** mserHandle);

/// Creates a handle for regions connected by 8 neighbours.
/// As odxMserInit.
ODX_API uint32_t odxMserNN8Init(unsigned int width, unsigned int height, int delta, unsigned int minArea,
                                unsigned int maxArea, float maxVariation, float minDiversity, void** mserHandle);

/// Frees a handle; null is refused.
ODX_API void odxMserRelease(void* mserHandle);

/// Extracts regions.
ODX_API void odxMseru8(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth, unsigned int srcHeight,
                       unsigned int srcStride, unsigned int maxContours, uint32_t* numContours,
                       uint32_t* numPointsInContour, unsigned int pointsArraySize, uint32_t* pointsArray);

/// Extracts regions, and tells whether everything fitted.
/// \return 1, or 0 for refused arguments and full outputs
ODX_API uint32_t odxMseru8_v2(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth,
                              unsigned int srcHeight, unsigned int srcStride, unsigned int maxContours,
                              uint32_t* numContours, uint16_t* numPointsInContour, unsigned int pointsArraySize,
                              uint32_t* pointsArray);

/// Extracts regions connected by 8 neighbours, with a handle of odxMserNN8Init.
/// As odxMseru8_v2; it is the handle that decides about the neighbours.
ODX_API uint32_t odxMserNN8u8(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth,
                              unsigned int srcHeight, unsigned int srcStride, unsigned int maxContours,
                              uint32_t* numContours, uint16_t* numPointsInContour, unsigned int pointsArraySize,
                              uint32_t* pointsArray);

/// Extracts regions with their variation, polarity and place in the tree.
ODX_API void odxMserExtu8(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth, unsigned int srcHeight,
                          unsigned int srcStride, unsigned int maxContours, uint32_t* numContours,
                          uint32_t* numPointsInContour, unsigned int pointsArraySize, uint32_t* pointsArray,
                          float* contourVariation, int32_t* contourPolarity, uint32_t* contourNodeId,
                          uint32_t* contourNodeCounter);

/// Extracts regions with their variation, polarity and place in the tree, and tells whether everything fitted.
/// \return 1, or 0 for refused arguments and full outputs
ODX_API uint32_t odxMserExtu8_v2(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcStride, unsigned int maxContours,
                                 uint32_t* numContours, uint16_t* numPointsInContour, unsigned int pointsArraySize,
                                 uint32_t* pointsArray, float* contourVariation, int32_t* contourPolarity,
                                 uint32_t* contourNodeId, uint32_t* contourNodeCounter);

/// Extracts regions connected by 8 neighbours with their variation, polarity and place in the tree.
/// As odxMserExtu8_v2, with a handle of odxMserNN8Init.
ODX_API uint32_t odxMserExtNN8u8(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcStride, unsigned int maxContours,
                                 uint32_t* numContours, uint16_t* numPointsInContour, unsigned int pointsArraySize,
                                 uint32_t* pointsArray, float* contourVariation, int32_t* contourPolarity,
                                 uint32_t* contourNodeId, uint32_t* contourNodeCounter);

/// Extracts regions with their bounding boxes.
/// As odxMserExtu8_v2.
/// \param contourBoundingBox  receives four numbers for each region: least x, least y, greatest x, greatest y
ODX_API uint32_t odxMserExtu8_v3(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth,
                                 unsigned int srcHeight, unsigned int srcStride, unsigned int maxContours,
                                 uint32_t* numContours, uint16_t* numPointsInContour, unsigned int pointsArraySize,
                                 uint32_t* pointsArray, float* contourVariation, int32_t* contourPolarity,
                                 uint32_t* contourNodeId, uint32_t* contourNodeCounter,
                                 uint32_t* contourBoundingBox);

/// Extracts dark and bright regions, counted apart.
/// As odxMserExtu8_v2.
/// \param numContours  receives two numbers: of dark regions, which come first, and of bright ones
ODX_API uint32_t odxMserSplitExtu8(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth,
                                   unsigned int srcHeight, unsigned int srcStride, unsigned int maxContours,
                                   uint32_t* numContours, uint16_t* numPointsInContour,
                                   unsigned int pointsArraySize, uint32_t* pointsArray, float* contourVariation,
                                   int32_t* contourPolarity, uint32_t* contourNodeId,
                                   uint32_t* contourNodeCounter);

/// Extracts dark and bright regions, counted apart, by the calling thread alone.
/// As odxMserSplitExtu8.
ODX_API uint32_t odxMserSplitExtu8ST(void* mserHandle, const uint8_t* srcPtr, unsigned int srcWidth,
                                     unsigned int srcHeight, unsigned int srcStride, unsigned int maxContours,
                                     uint32_t* numContours, uint16_t* numPointsInContour,
                                     unsigned int pointsArraySize, uint32_t* pointsArray, float* contourVariation,
                                     int32_t* contourPolarity, uint32_t* contourNodeId,
                                     uint32_t* contourNodeCounter);

#endif
