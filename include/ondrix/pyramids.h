/// \file pyramids.h
/// Image pyramids: a picture and ever smaller, smoothed copies of it.
///
/// Conventions of this page
/// - A pyramid is an array of numLevels level records that belongs to the caller. Level 0 is the picture, the
///   base.
/// - First a pyramid is allocated, then created, any number of times from pictures of one size, at last deleted.
///   Level 0 is either the caller's picture (borrowed, and never freed as long as deleting begins at level 1) or a
///   buffer of the pyramid (owned). Levels from 1 on own their buffers, which are aligned to 16 bytes and come
///   from odxMemAlloc; odxMemFree frees them, too.
/// - The records are the caller's to clear first: the calls without _v2 or _v3 in their names do not touch level 0
///   when it is not owned, and none but the delete calls free what a record holds before. A size of 0 has a
///   buffer, too.
/// - Creating calls odxScaleDownBy2Gaussian5x5u8 and the like, as an application would: the mode decides how.
#ifndef ONDRIX_PYRAMIDS_H
#define ONDRIX_PYRAMIDS_H

#include "ondrix/types.h"

/// \name Memory
/// @{

/// Allocates the buffers of a pyramid, each level half as wide and high as the one before, rounded down.
/// With ownBase (any value but 0) level 0 gets a buffer and its size, else it is left as it is.
/// \return 0; -1 when memory is short, where the levels before keep their buffers; -1 for a null pyramid and no
///         levels
ODX_API int odxPyramidAllocate(odxPyrLevel* pyr, unsigned int baseWidth, unsigned int baseHeight,
                               unsigned int bytesPerPixel, unsigned int numLevels, unsigned int ownBase);

/// As odxPyramidAllocate, with a stride for level 0.
/// Its record is always written, with a null pointer unless it is owned. The others have packed rows. A baseStride
/// of 0 is the packed row.
/// \return 0; -1 when memory is short, where nothing stays allocated; -1 for a null pyramid and no levels
ODX_API int odxPyramidAllocate_v2(odxPyrLevelStrided* pyr, unsigned int baseWidth, unsigned int baseHeight,
                                  unsigned int baseStride, unsigned int bytesPerPixel, unsigned int numLevels,
                                  unsigned int ownBase);

/// Allocates the buffers of a pyramid in steps of halves, rounded up, or of quarter octaves.
/// Level 0 is as with odxPyramidAllocate_v2. With a scaleFlag of 0 a level has (w + 1) >> 1 by (h + 1) >> 1
/// pixels. Else levels 1 to 3 of each octave are ceil(f * octave) of the octave's size in float, with f =
/// 0.8408964f, 0.7071068f and 0.5946036f, and the fourth, with f = 0.5f, is the next octave. Strides are the width
/// rounded up to a multiple of `alignment` pixels, times bytesPerPixel. Allocate and create with the same
/// scaleFlag.
/// \param alignment  a multiple of 8, not 0
/// \return ONDRIX_NO_MEMORY, where nothing stays allocated; ONDRIX_BAD_PARAMETER for a null pyramid, no levels,
///         sizes of 0, another alignment, and a stride below the packed row
ODX_API odxStatus odxPyramidAllocate_v3(odxPyrLevelStrided* pyr, unsigned int baseWidth, unsigned int baseHeight,
                                        unsigned int baseStride, unsigned int bytesPerPixel,
                                        unsigned int alignment, unsigned int numLevels, unsigned int scaleFlag,
                                        unsigned int ownBase);

/// Frees the buffers of the levels from startLevel on.
/// Their pointers become null, so that a second call does nothing; sizes stay. startLevel is 1 where level 0 is
/// borrowed; more than numLevels is refused ("Assertion failed @...").
ODX_API void odxPyramidDelete(odxPyrLevel* pyr, unsigned int numLevels, unsigned int startLevel);

/// As odxPyramidDelete, for records with strides.
ODX_API void odxPyramidDelete_v2(odxPyrLevelStrided* pyr, unsigned int numLevels, unsigned int startLevel);

/// @}
/// \name Halves
/// Level 0 becomes the caller's picture, whatever its record held: allocate without ownBase. Each further level is
/// odxScaleDownBy2Gaussian5x5u8 (or ...f32) of the one before. Both sizes are multiples of 2^(numLevels-1), and
/// there are at most 32 levels.
/// @{

/// Makes a pyramid of bytes.
/// \return 0; -1 for refused arguments, without a line in the log, and for a level without a buffer, where the
///         levels before are made and those behind it untouched
ODX_API int odxPyramidCreateu8(const uint8_t* base, unsigned int baseWidth, unsigned int baseHeight,
                               unsigned int numLevels, odxPyrLevel* pyr);

/// Makes a pyramid of floats.
ODX_API int odxPyramidCreatef32(const float* base, unsigned int baseWidth, unsigned int baseHeight,
                                unsigned int numLevels, odxPyrLevel* pyr);

/// As odxPyramidCreateu8, with the stride of the base; 0 is packed.
/// The other levels' strides become the packed rows.
ODX_API int odxPyramidCreateu8_v2(const uint8_t* base, unsigned int baseWidth, unsigned int baseHeight,
                                  unsigned int baseStride, unsigned int numLevels, odxPyrLevelStrided* pyr);

/// As odxPyramidCreatef32, with the stride of the base in bytes; 0 is packed.
ODX_API int odxPyramidCreatef32_v2(const float* base, unsigned int baseWidth, unsigned int baseHeight,
                                   unsigned int baseStride, unsigned int numLevels, odxPyrLevelStrided* pyr);

/// @}

/// Makes a pyramid of bytes of any size, in halves or in quarter octaves.
/// It is allocated by odxPyramidAllocate_v3 with the same scaleFlag. Sizes of the levels are written, strides and
/// pointers are not. A baseStride of 0 is packed.
///
/// Level 0: without a buffer it borrows the picture, else the picture is copied into it (the bytes between its
/// rows may be, too), unless it is the picture already. **A record does not tell a borrowed buffer from an owned
/// one**: to borrow another picture set its pointer to null first, else the picture is copied over the first one.
///
/// scaleFlag 0: a level is odxScaleDownBy2Gaussian5x5u8_v2 of the one before; for odd sizes the last column and
/// row, which that call does not write, follow the same rule: taps centred on the last column or row, those
/// outside dropped, an axis having the weight 11 there (6 at size 1).
///
/// scaleFlag set: the level before is filtered by odxFilterGaussian5x5u8_v2 with its border, and odxScaleu8 takes
/// the nearest pixels of that. A level narrower or lower than 5 is filtered by the same kernel: the sum of the
/// taps inside over their weights, rounded down.
/// \return ONDRIX_FAILURE when an owned level 0 has another size or stride; ONDRIX_NO_MEMORY for a level without a
///         buffer, where those before it are made, and (with scaleFlag) without baseWidth * baseHeight bytes of
///         temporary memory; ONDRIX_BAD_PARAMETER for null pointers, sizes of 0 and baseStride < baseWidth
ODX_API odxStatus odxPyramidCreateu8_v3(const uint8_t* base, unsigned int baseWidth, unsigned int baseHeight,
                                        unsigned int baseStride, unsigned int numLevels, unsigned int scaleFlag,
                                        odxPyrLevelStrided* pyr);

/// \name Gradients
/// Level i has the size of level 0 of the picture's pyramid, shifted right by i, in all three pyramids; sizes are
/// written, and the levels of dx and dy have packed rows of that size. Inside, they become the Sobel gradients of
/// the picture's level, whose rows are packed, too; the frame of a pixel is not written. Levels narrower or lower
/// than 3 have no inside.
/// \return 0; -1 for null pointers, and for a level of dx or dy without a buffer, whose sizes and the levels before
///         are made
/// @{

/// Makes the Sobel gradients of a pyramid, with 16 bits, by odxImageGradientSobelPlanars16.
ODX_API int odxPyramidSobelGradientCreatei16(const odxPyrLevel* imgPyr, odxPyrLevel* dxPyr, odxPyrLevel* dyPyr,
                                             unsigned int numLevels);

/// Makes the Sobel gradients of a pyramid, with 8 bits, by odxImageGradientSobelPlanars8.
ODX_API int odxPyramidSobelGradientCreatei8(const odxPyrLevel* imgPyr, odxPyrLevel* dxPyr, odxPyrLevel* dyPyr,
                                            unsigned int numLevels);

/// Makes the Sobel gradients of a pyramid, in float, by odxImageGradientSobelPlanarf32.
ODX_API int odxPyramidSobelGradientCreatef32(const odxPyrLevel* imgPyr, odxPyrLevel* dxPyr, odxPyrLevel* dyPyr,
                                             unsigned int numLevels);

/// @}

#endif
