/// \file types.h
/// Enumerations and conventions shared by every operation.
#ifndef ONDRIX_TYPES_H
#define ONDRIX_TYPES_H

#include <stddef.h>
#include <stdint.h>

#if defined(__cplusplus)
#define ODX_EXTERN_C extern "C"
#else
#define ODX_EXTERN_C
#endif

#if defined(__GNUC__)
#define ODX_API ODX_EXTERN_C __attribute__((visibility("default")))
#else
#define ODX_API ODX_EXTERN_C
#endif

/// Declares an enumeration of a fixed 32-bit type, so that its size is the same for every compiler and any value
/// may be passed through it: a C++ enumeration with that underlying type, an integer typedef in C.
#if defined(__cplusplus)
#define ODX_ENUM(type, name) enum name : type
#else
#define ODX_ENUM(type, name) \
    typedef type name;       \
    enum
#endif

/// Result of the operations that report one. Older operations return nothing, or a scalar whose failure value
/// their documentation names.
ODX_ENUM(int32_t, odxStatus){
    ONDRIX_SUCCESS = 0,             ///< done
    ONDRIX_FAILURE = 1,             ///< the algorithm could not finish
    ONDRIX_BAD_PARAMETER = 3,       ///< arguments refused, nothing was written
    ONDRIX_NO_MEMORY = 5,           ///< no temporary memory could be had
    ONDRIX_UNSUPPORTED_HERE = 32768 ///< internal: never returned to an application
};

/// What an operation assumes beyond the edges of an image.
ODX_ENUM(uint32_t, odxBorderType){
    ONDRIX_BORDER_UNDEFINED = 0, ///< the operation's own behaviour, which its documentation states
    ONDRIX_BORDER_CONSTANT = 1,  ///< pixels outside have the given border value
    ONDRIX_BORDER_REPLICATE = 2  ///< pixels outside equal the nearest pixel of the edge
};

/// How an image of another size or shape gets its pixels.
ODX_ENUM(uint32_t, odxInterpolationType){
    ONDRIX_INTERPOLATION_NEAREST = 0,  ///< from the nearest pixel
    ONDRIX_INTERPOLATION_BILINEAR = 1, ///< from the four pixels around, weighted
    ONDRIX_INTERPOLATION_AREA = 2      ///< from the pixels that are covered
};

/// What happens to results that the destination's type cannot hold.
ODX_ENUM(uint32_t, odxOverflow){
    ONDRIX_OVERFLOW_WRAP = 0,    ///< the low bits are kept
    ONDRIX_OVERFLOW_SATURATE = 1 ///< the nearest number that the type holds
};

/// A channel of an image: by position in an interleaved pixel, by colour, or of luma and chroma.
ODX_ENUM(uint32_t, odxChannelType){ONDRIX_CHANNEL_0 = 0, ONDRIX_CHANNEL_1 = 1, ONDRIX_CHANNEL_2 = 2,
                                   ONDRIX_CHANNEL_3 = 3, ONDRIX_CHANNEL_R = 4, ONDRIX_CHANNEL_G = 5,
                                   ONDRIX_CHANNEL_B = 6, ONDRIX_CHANNEL_A = 7, ONDRIX_CHANNEL_Y = 8,
                                   ONDRIX_CHANNEL_U = 9, ONDRIX_CHANNEL_V = 10};

/// A level of a pyramid with packed rows.
typedef struct odxPyrLevel {
    void* ptr;              ///< the pixels: bytes for pyramids of 8-bit images
    uint32_t width, height; ///< in pixels
} odxPyrLevel;

/// A level of a pyramid with a stride.
typedef struct odxPyrLevelStrided {
    void* ptr;              ///< the pixels
    uint32_t width, height; ///< in pixels
    uint32_t stride;        ///< in bytes
} odxPyrLevelStrided;

#endif
