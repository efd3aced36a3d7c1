// What the colour conversions share: arithmetic and pixel layouts, for the reference and for the SIMD column.
#ifndef ODX_CPU_ONDRIX_COLOR_H
#define ODX_CPU_ONDRIX_COLOR_H

#include <stddef.h>
#include <stdint.h>

namespace odx::color
{

#define ODX_COLOR_INLINE [[gnu::always_inline]] static inline

// ---- luma and chroma to RGB ----

// Every way from luma and chroma to RGB is this formula, with constants of its own:
//     chroma = chromaScale * sample - chromaOrigin
//     channel = clamp((gain * (max(luma, darkest) - black) + weights * chroma + rounding) >> shift)
struct Scheme {
    int32_t shift, rounding;
    int32_t gain, darkest, black;
    int32_t chromaScale, chromaOrigin;
    int32_t redCr, greenCb, greenCr, blueCb;
};
constexpr Scheme kFullRange = {8, 128, 256, 0, 0, 1, 128, 359, -88, -183, 454};
constexpr Scheme kVideoRange = {8, 0, 298, 0, 16, 1, 128, 409, -100, -208, 517};
constexpr Scheme kVideoRangeFine = {10, 0, 1192, 16, 16, 1, 128, 1634, -400, -833, 2066};
constexpr Scheme kJpeg = {15, 16384, 32768, 0, 0, 2, 255, 22970, -5638, -11700, 29032};

// What a pair of chroma samples adds to the luma of each pixel that it covers.
struct Terms {
    int32_t red, green, blue;
};

template <const Scheme& s>
ODX_COLOR_INLINE Terms termsOf(uint8_t cb, uint8_t cr)
{
    const int32_t u = s.chromaScale * cb - s.chromaOrigin, v = s.chromaScale * cr - s.chromaOrigin;
    return {s.redCr * v, s.greenCb * u + s.greenCr * v, s.blueCb * u};
}

template <const Scheme& s>
ODX_COLOR_INLINE int32_t lumaOf(uint8_t y)
{
    return s.gain * ((y < s.darkest ? s.darkest : y) - s.black) + s.rounding;
}

template <const Scheme& s>
ODX_COLOR_INLINE uint8_t channelOf(int32_t luma, int32_t term)
{
    const int32_t value = (luma + term) >> s.shift;
    return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

// ---- pixel layouts, as the conversions to RGB write them ----

// A layout gives its bytes in memory order; the channels are bytes or vectors of bytes.
struct RGB888 {
    static constexpr uint32_t kSize = 3;

    template <class Channel, class Store>
    ODX_COLOR_INLINE void pack(Channel red, Channel green, Channel blue, Store store)
    {
        store(red, green, blue);
    }
};

struct RGBA8888 {
    static constexpr uint32_t kSize = 4;

    template <class Channel, class Store>
    ODX_COLOR_INLINE void pack(Channel red, Channel green, Channel blue, Store store)
    {
        store(red, green, blue, red | 255);
    }
};

// A little-endian word with red in its low bits: 5 of red, 6 of green, 5 of blue.
struct RGB565 {
    static constexpr uint32_t kSize = 2;

    template <class Channel, class Store>
    ODX_COLOR_INLINE void pack(Channel red, Channel green, Channel blue, Store store)
    {
        store(red >> 3 | (green << 3 & 0xE0), green >> 5 | (blue & 0xF8));
    }
};

template <const Scheme& s, class Pixel>
ODX_COLOR_INLINE void convertPixel(uint8_t y, const Terms& terms, uint8_t* dst)
{
    const int32_t luma = lumaOf<s>(y);
    Pixel::pack(channelOf<s>(luma, terms.red), channelOf<s>(luma, terms.green), channelOf<s>(luma, terms.blue),
                [=](auto... bytes) mutable { ((*dst++ = static_cast<uint8_t>(bytes)), ...); });
}

// ---- images with luma and chroma ----

// How the chroma samples of a row are stored: a plane for each, or interleaved, Cb or Cr first.
enum class Chroma { Planes, CbCrPairs, CrCbPairs };

template <Chroma chroma>
constexpr size_t kChromaStep = chroma == Chroma::Planes ? 1 : 2; // from a sample to the next of its kind

// The conversion of an image to RGB. Strides in bytes.
struct Frame {
    const uint8_t *y, *cb, *cr; // in a plane of pairs, the first sample of each kind
    uint32_t width, height;
    uint32_t yStride, cbStride, crStride;
    uint8_t* dst;
    uint32_t dstStride;
};

// Images with planar chroma, with interleaved chroma, and with interleaved chroma straight after the luma.
ODX_COLOR_INLINE Frame planarFrame(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr,
                                   uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,
                                   uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst, uint32_t dstStride)
{
    return {srcY, srcCb, srcCr, srcWidth, srcHeight, srcYStride, srcCbStride, srcCrStride, dst, dstStride};
}

ODX_COLOR_INLINE Frame pseudoPlanarFrame(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth,
                                         uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCStride,
                                         uint8_t* dst, uint32_t dstStride)
{
    return {srcY, srcC, srcC + 1, srcWidth, srcHeight, srcYStride, srcCStride, srcCStride, dst, dstStride};
}

ODX_COLOR_INLINE Frame singleBufferFrame(Chroma chroma, const uint8_t* src, uint32_t width, uint32_t height,
                                         uint32_t yStride, uint32_t cStride, uint8_t* dst, uint32_t dstStride)
{
    const uint8_t* const c = src + static_cast<size_t>(yStride) * height;
    const bool swapped = chroma == Chroma::CrCbPairs;
    return {src, c + swapped, c + !swapped, width, height, yStride, cStride, cStride, dst, dstStride};
}

// X(subsampling, pixels): the conversions of planar and pseudo-planar images.
#define ODX_YCBCR_TO_RGB(X) \
    X(444, RGB565)          \
    X(444, RGB888)          \
    X(444, RGBA8888)        \
    X(422, RGB565)          \
    X(422, RGB888)          \
    X(422, RGBA8888)        \
    X(420, RGB565)          \
    X(420, RGB888)          \
    X(420, RGBA8888)

// ---- coded blocks ----

// A unit of blocks: `across` x `down` blocks of 8x8 luma samples, then one of Cb and one of Cr, which cover them.
template <uint32_t across_, uint32_t down_>
struct Units {
    static constexpr uint32_t kAcross = across_, kDown = down_;
    static constexpr uint32_t kWidth = 8 * across_, kHeight = 8 * down_;
    static constexpr uint32_t kCb = 64 * across_ * down_, kCr = kCb + 64;
    static constexpr uint32_t kSize = kCr + 64;

    // Bytes from one row of units to the next. Units of a single luma block advance by whole blocks only, also
    // where a cut one follows.
    ODX_COLOR_INLINE size_t rowSize(uint32_t width)
    {
        const uint32_t units = width / kWidth;
        const bool cut = across_ * down_ > 1 && width % kWidth != 0;
        return (static_cast<size_t>(units) + cut) * kSize;
    }
};

} // namespace odx::color

#endif
