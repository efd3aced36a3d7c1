// Reference implementations: colour conversions from RGB, and between layouts of luma and chroma.
#ifndef ODX_CPU_ONDRIX_COLOR_FROM_RGB_C_H
#define ODX_CPU_ONDRIX_COLOR_FROM_RGB_C_H

#include "frame/helpers.h"
#include "ondrix/colorFromRgb.h"

// ---- the conversions, as tables ----

// X(pixels, subsampling); each exists to planar and to pseudo-planar images. The row routines are <source>2yuvp
// and, where two pixels share their chroma, <source>2yyuvp for planar, without the p for interleaved chroma;
// <source>2y for luma.
#define ODX_RGB_TO_YCBCR(X) \
    X(RGB565, 444)          \
    X(RGB565, 422)          \
    X(RGB565, 420)          \
    X(RGB888, 444)          \
    X(RGB888, 422)          \
    X(RGB888, 420)          \
    X(RGBA8888, 444)        \
    X(RGBA8888, 422)        \
    X(RGBA8888, 420)

// X(source, pixels): the sources of the row routines.
#define ODX_RGB_SOURCES(X) \
    X(rgb565, RGB565)      \
    X(rgb888, RGB888)      \
    X(rgba, RGBA8888)

// X(source pixels, destination pixels). The row routine is repack<source pixels>To<destination pixels>.
#define ODX_RGB_TO_RGB(X) \
    X(RGB565, RGB888)     \
    X(RGB565, RGBA8888)   \
    X(RGB565, BGR565)     \
    X(RGB565, BGR888)     \
    X(RGB565, BGRA8888)   \
    X(RGB888, RGB565)     \
    X(RGB888, RGBA8888)   \
    X(RGB888, BGR565)     \
    X(RGB888, BGR888)     \
    X(RGB888, BGRA8888)   \
    X(RGBA8888, RGB565)   \
    X(RGBA8888, RGB888)   \
    X(RGBA8888, BGR565)   \
    X(RGBA8888, BGR888)   \
    X(RGBA8888, BGRA8888)

// X(source layout, source subsampling, destination layout, destination subsampling), for layouts `Planar` and
// `PseudoPlanar`
#define ODX_YCBCR_TO_OTHER_SUBSAMPLING(X, from, to) \
    X(from, 420, to, 422)                           \
    X(from, 420, to, 444)                           \
    X(from, 422, to, 420)                           \
    X(from, 422, to, 444)                           \
    X(from, 444, to, 420)                           \
    X(from, 444, to, 422)
#define ODX_YCBCR_TO_OTHER_LAYOUT(X, from, to) \
    X(from, 420, to, 420)                      \
    X(from, 422, to, 422)                      \
    X(from, 444, to, 444)
#define ODX_YCBCR_TO_YCBCR(X)                                     \
    ODX_YCBCR_TO_OTHER_SUBSAMPLING(X, Planar, Planar)             \
    ODX_YCBCR_TO_OTHER_SUBSAMPLING(X, Planar, PseudoPlanar)       \
    ODX_YCBCR_TO_OTHER_SUBSAMPLING(X, PseudoPlanar, Planar)       \
    ODX_YCBCR_TO_OTHER_SUBSAMPLING(X, PseudoPlanar, PseudoPlanar) \
    ODX_YCBCR_TO_OTHER_LAYOUT(X, Planar, PseudoPlanar)            \
    ODX_YCBCR_TO_OTHER_LAYOUT(X, PseudoPlanar, Planar)

// Rows of chroma: X(name, source layout, step, destination layout, repeat). Of every `step`-th sample of the
// source come `repeat` in the destination; one of them is 1. Samples that only move are copied.
#define ODX_CHROMA_ROWS(X)                                                    \
    X(chromaPlanarToPlanarHalf, Planar, 2, Planar, 1)                         \
    X(chromaPlanarToPlanarTwice, Planar, 1, Planar, 2)                        \
    X(chromaPlanarToPseudoPlanar, Planar, 1, PseudoPlanar, 1)                 \
    X(chromaPlanarToPseudoPlanarHalf, Planar, 2, PseudoPlanar, 1)             \
    X(chromaPlanarToPseudoPlanarTwice, Planar, 1, PseudoPlanar, 2)            \
    X(chromaPseudoPlanarToPlanar, PseudoPlanar, 1, Planar, 1)                 \
    X(chromaPseudoPlanarToPlanarHalf, PseudoPlanar, 2, Planar, 1)             \
    X(chromaPseudoPlanarToPlanarTwice, PseudoPlanar, 1, Planar, 2)            \
    X(chromaPseudoPlanarToPseudoPlanarHalf, PseudoPlanar, 2, PseudoPlanar, 1) \
    X(chromaPseudoPlanarToPseudoPlanarTwice, PseudoPlanar, 1, PseudoPlanar, 2)

// ---- their parameters, and the names of these as arguments ----

#define ODX_Packed_SOURCE const uint8_t *src, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcStride
#define ODX_Packed_DESTINATION uint8_t *dst, uint32_t dstStride
#define ODX_Packed_ARGUMENTS src, srcWidth, srcHeight, srcStride, dst, dstStride

#define ODX_Planar_SOURCE                                                                                   \
    const uint8_t *srcY, const uint8_t *srcCb, const uint8_t *srcCr, uint32_t srcWidth, uint32_t srcHeight, \
        uint32_t srcYStride, uint32_t srcCbStride, uint32_t srcCrStride
#define ODX_Planar_DESTINATION \
    uint8_t *dstY, uint8_t *dstCb, uint8_t *dstCr, uint32_t dstYStride, uint32_t dstCbStride, uint32_t dstCrStride
#define ODX_PseudoPlanar_SOURCE                                                                           \
    const uint8_t *srcY, const uint8_t *srcC, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride, \
        uint32_t srcCStride
#define ODX_PseudoPlanar_DESTINATION uint8_t *dstY, uint8_t *dstC, uint32_t dstYStride, uint32_t dstCStride

extern "C" {

// ---- row routines ----

// Luma and chroma of a row: of every pixel (2yuv), or with the chroma of every second one (2yyuv), for even
// widths. Interleaved chroma is written to cb alone.
typedef void odxYuvRow(const uint8_t* src, uint8_t* y, uint8_t* cb, uint8_t* cr, size_t width);
typedef void odxLumaRow(const uint8_t* src, uint8_t* y, size_t width);
typedef void odxRepackedRow(const uint8_t* src, uint8_t* dst, size_t width);
// `count` samples of each kind are read, at `step` times their place, and written `repeat` times. Interleaved
// chroma is at cb alone. The rows do not overlap.
typedef void odxChromaRow(const uint8_t* srcCb, const uint8_t* srcCr, uint8_t* dstCb, uint8_t* dstCr,
                          size_t count);

#define ODX_DECLARE(source, pixels)                                           \
    odxYuvRow source##2yuvpC, source##2yyuvpC, source##2yuvC, source##2yyuvC; \
    odxLumaRow source##2yC;                                                   \
    ODX_HELPER_POINTER(source##2yuvp);                                        \
    ODX_HELPER_POINTER(source##2yyuvp);                                       \
    ODX_HELPER_POINTER(source##2yuv);                                         \
    ODX_HELPER_POINTER(source##2yyuv);                                        \
    ODX_HELPER_POINTER(source##2y);
ODX_RGB_SOURCES(ODX_DECLARE)
#undef ODX_DECLARE

#define ODX_DECLARE(from, to)               \
    odxRepackedRow repack##from##To##to##C; \
    ODX_HELPER_POINTER(repack##from##To##to);
ODX_RGB_TO_RGB(ODX_DECLARE)
#undef ODX_DECLARE

odxRepackedRow rgba2labC;
ODX_HELPER_POINTER(rgba2lab);

#define ODX_DECLARE(name, from, step, to, repeat) \
    odxChromaRow name##C;                         \
    ODX_HELPER_POINTER(name);
ODX_CHROMA_ROWS(ODX_DECLARE)
#undef ODX_DECLARE

// ---- operations ----

#define ODX_DECLARE(pixels, subsampling)                                                                          \
    decltype(odxColor##pixels##ToYCbCr##subsampling##Planaru8) odxColor##pixels##ToYCbCr##subsampling##Planaru8C; \
    decltype(odxColor##pixels##ToYCbCr##subsampling##PseudoPlanaru8)                                              \
        odxColor##pixels##ToYCbCr##subsampling##PseudoPlanaru8C;
ODX_RGB_TO_YCBCR(ODX_DECLARE)
#undef ODX_DECLARE

#define ODX_DECLARE(from, to) decltype(odxColor##from##To##to##u8) odxColor##from##To##to##u8C;
ODX_RGB_TO_RGB(ODX_DECLARE)
#undef ODX_DECLARE

#define ODX_DECLARE(from, fromSubsampling, to, toSubsampling)                      \
    decltype(odxColorYCbCr##fromSubsampling##from##ToYCbCr##toSubsampling##to##u8) \
        odxColorYCbCr##fromSubsampling##from##ToYCbCr##toSubsampling##to##u8C;
ODX_YCBCR_TO_YCBCR(ODX_DECLARE)
#undef ODX_DECLARE

decltype(odxColorRGB888ToGrayu8) odxColorRGB888ToGrayu8C;
decltype(odxColorRGB888toYCrCbu8_v2) odxColorRGB888toYCrCbu8C;
decltype(odxColorRGB888ToHSV888u8) odxColorRGB888ToHSV888u8C;
decltype(odxColorRGBA8888ToLABu8) odxColorRGBA8888ToLABu8C;
decltype(odxColorRGB888ToRGB565Rotate180u8) odxColorRGB888ToRGB565Rotate180u8C;
decltype(odxColorCbCrSwapu8) odxColorCbCrSwapu8C;
}

#endif
