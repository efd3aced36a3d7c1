// SIMD colour conversions from luma and chroma to RGB. Rows that share a chroma row are converted together. Images
// that are narrower than a vector are left to the reference.
#include "cpu/image.h"
#include "cpu/ondrixColorC.h"
#include "orlan/simd/simd.h"

namespace odx::ODX_TARGET
{
using namespace simd;
using namespace color;

// ---- arithmetic ----

// What chroma adds to luma, in 16 bits. A gain is 2^shift + rest, so that
//     (gain * luma + term) >> shift = luma + whole + ((rest * luma + fraction) >> shift),
// where term = whole * 2^shift + fraction, and rest * luma + fraction fits 16 bits.
struct Term {
    s16v whole;
    u16v fraction;
};

struct TermsV {
    Term red, green, blue;
};

// For the two halves of a pair of luma.
struct TermsPair {
    TermsV a, b;
};

template <const Scheme& s>
constexpr uint16_t kRest = (uint16_t)(s.gain - (1 << s.shift));

template <const Scheme& s, int32_t weightU, int32_t weightV>
ODX_INLINE Term term(s16v u, s16v v)
{
    constexpr bool rounds = s.offset == 1 << (s.shift - 1);
    Term t = {};
    if constexpr (rounds && weightU == 0) {
        t.whole = mulRound(v << (15 - s.shift), weightV);
    } else if constexpr (rounds && weightV == 0) {
        t.whole = mulRound(u << (15 - s.shift), weightU);
    } else {
        t.whole = dotShift<s.shift>(u, v, weightU, weightV, s.offset);
    }
    if constexpr (kRest<s> != 0) {
        const u16v sum = (u16v)u * (uint16_t)weightU + (u16v)v * (uint16_t)weightV + (uint16_t)s.offset;
        t.fraction = sum & (uint16_t)((1 << s.shift) - 1);
    }
    return t;
}

template <const Scheme& s>
ODX_INLINE TermsV termsOf(u16v cb, u16v cr)
{
    const s16v u = (s16v)cb * (int16_t)s.chromaScale - (int16_t)s.chromaOrigin,
               v = (s16v)cr * (int16_t)s.chromaScale - (int16_t)s.chromaOrigin;
    return {term<s, 0, s.redCr>(u, v), term<s, s.greenCb, s.greenCr>(u, v), term<s, s.blueCb, 0>(u, v)};
}

template <const Scheme& s>
ODX_INLINE s16v channel(u16v luma, const Term& term)
{
    s16v value = (s16v)luma + term.whole;
    if constexpr (kRest<s> != 0) value += (s16v)((luma * kRest<s> + term.fraction) >> s.shift);
    return value;
}

template <const Scheme& s>
ODX_INLINE u8v channel(const u16p& luma, const Term& a, const Term& b)
{
    return joinClamped({channel<s>(luma.a, a), channel<s>(luma.b, b)});
}

// Writes kBytes pixels.
template <const Scheme& s, class Pixel, bool backward>
ODX_INLINE void convertLuma(const uint8_t* y, const TermsPair& t, uint8_t* dst)
{
    u8v bytes = load<u8v>(y);
    if constexpr (s.darkest != 0) bytes = max(bytes, u8v{} + (uint8_t)s.darkest);
    const u16p luma = split(bytes);
    u8v red = channel<s>(luma, t.a.red, t.b.red), green = channel<s>(luma, t.a.green, t.b.green),
        blue = channel<s>(luma, t.a.blue, t.b.blue);
    if constexpr (backward) {
        red = reverse(red);
        green = reverse(green);
        blue = reverse(blue);
    }
    Pixel::pack(red, green, blue, [dst](auto... channels) {
        static_assert(sizeof...(channels) == Pixel::kSize);
        if constexpr (Pixel::kSize == 2) store2(dst, channels...);
        if constexpr (Pixel::kSize == 3) store3(dst, channels...);
        if constexpr (Pixel::kSize == 4) store4(dst, channels...);
    });
}

// ---- chroma ----

ODX_INLINE Term eachTwice(const Term& t, bool second)
{
    const s16p whole = simd::eachTwice(t.whole), fraction = simd::eachTwice((s16v)t.fraction);
    return second ? Term{whole.b, (u16v)fraction.b} : Term{whole.a, (u16v)fraction.a};
}

// A pair of chroma for each of the kBytes pixels from x on.
template <const Scheme& s, Chroma chroma>
ODX_INLINE TermsPair fullTerms(const uint8_t* cb, const uint8_t* cr, size_t x)
{
    u8x2 c;
    if constexpr (chroma == Chroma::Planes) {
        c = {load<u8v>(cb + x), load<u8v>(cr + x)};
    } else {
        c = load2(cb + 2 * x);
    }
    const u16p u = split(c.a), v = split(c.b);
    return {termsOf<s>(u.a, v.a), termsOf<s>(u.b, v.b)};
}

// A pair of chroma for every two pixels; x is even.
template <const Scheme& s, Chroma chroma>
ODX_INLINE TermsPair halfTerms(const uint8_t* cb, const uint8_t* cr, size_t x)
{
    TermsV t;
    if constexpr (chroma == Chroma::Planes) {
        t = termsOf<s>(loadWiden(cb + x / 2), loadWiden(cr + x / 2));
    } else {
        const u16v pairs = load<u16v>((chroma == Chroma::CbCrPairs ? cb : cr) + x);
        const u16v first = pairs & 0xFF, second = pairs >> 8;
        t = chroma == Chroma::CbCrPairs ? termsOf<s>(first, second) : termsOf<s>(second, first);
    }
    return {{eachTwice(t.red, false), eachTwice(t.green, false), eachTwice(t.blue, false)},
            {eachTwice(t.red, true), eachTwice(t.green, true), eachTwice(t.blue, true)}};
}

// ---- images ----

// How the chroma of an image covers its pixels, and how its rows are written.
template <uint32_t across_, uint32_t down_, Chroma chroma_, bool ownLast_ = false, bool backward_ = false>
struct Layout {
    static constexpr uint32_t kAcross = across_, kDown = down_; // pixels of a chroma pair
    static constexpr Chroma kChroma = chroma_;
    static constexpr bool kOwnLast = ownLast_;   // the last pixel of an odd row has a chroma pair of its own
    static constexpr bool kBackward = backward_; // images turned by 180 degrees
};

// The destination of kBytes or of 1 pixel in a row.
template <class Pixel, class L>
ODX_INLINE uint8_t* placeOf(const Frame& f, size_t x, size_t y, size_t count)
{
    if constexpr (L::kBackward) {
        return rowOf(f.dst, f.dstStride, f.height - 1 - y) + Pixel::kSize * (f.width - x - count);
    } else {
        return rowOf(f.dst, f.dstStride, y) + Pixel::kSize * x;
    }
}

// Converts `rows` rows from y on, which share their chroma.
template <const Scheme& s, class Pixel, class L, uint32_t rows>
ODX_INLINE void convertRows(const Frame& f, size_t y)
{
    const uint8_t *cb = rowOf(f.cb, f.cbStride, y / L::kDown), *cr = rowOf(f.cr, f.crStride, y / L::kDown);
    const size_t width = f.width / L::kAcross * L::kAcross;
    for (size_t x = 0; x < width; x += kBytes) {
        if (width - x < kBytes) x = width - kBytes;
        TermsPair terms;
        if constexpr (L::kAcross == 1) {
            terms = fullTerms<s, L::kChroma>(cb, cr, x);
        } else {
            terms = halfTerms<s, L::kChroma>(cb, cr, x);
        }
        for (uint32_t i = 0; i < rows; ++i) {
            convertLuma<s, Pixel, L::kBackward>(rowOf(f.y, f.yStride, y + i) + x, terms,
                                                placeOf<Pixel, L>(f, x, y + i, kBytes));
        }
    }
    if (width != f.width) {
        const size_t last = kChromaStep<L::kChroma> * (L::kOwnLast ? width / 2 : width / 2 - 1);
        const Terms terms = color::termsOf<s>(cb[last], cr[last]);
        for (uint32_t i = 0; i < rows; ++i)
            convertPixel<s, Pixel>(rowOf(f.y, f.yStride, y + i)[width], terms,
                                   placeOf<Pixel, L>(f, width, y + i, 1));
    }
}

// False for an image that is too narrow.
template <const Scheme& s, class Pixel, class L>
ODX_INLINE bool convert(const Frame& f, size_t rows)
{
    if (f.width / L::kAcross * L::kAcross < kBytes) return false;
    size_t y = 0;
    for (; rows - y >= L::kDown; y += L::kDown)
        convertRows<s, Pixel, L, L::kDown>(f, y);
    if (y < rows) convertRows<s, Pixel, L, 1>(f, y);
    return true;
}

template <class Pixel, Chroma chroma>
ODX_INLINE bool convert444(const Frame& f)
{
    return convert<kFullRange, Pixel, Layout<1, 1, chroma>>(f, f.height);
}

template <class Pixel, Chroma chroma>
ODX_INLINE bool convert422(const Frame& f)
{
    return convert<kFullRange, Pixel, Layout<2, 1, chroma>>(f, f.height);
}

// Rows come in pairs, so that an odd height takes one row more.
template <class Pixel, Chroma chroma>
ODX_INLINE bool convert420(const Frame& f)
{
    return convert<kFullRange, Pixel, Layout<2, 2, chroma>>(f, size_t{f.height} + f.height % 2);
}

#define ODX_COLOR_SIMD(subsampling, pixels, rows, output)                                                         \
    decltype(odxColorYCbCr##subsampling##PlanarTo##pixels##u8) odxColorYCbCr##subsampling##PlanarTo##pixels##u8V; \
    void odxColorYCbCr##subsampling##PlanarTo##pixels##u8V(                                                       \
        const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr, uint32_t srcWidth, uint32_t srcHeight,   \
        uint32_t srcYStride, uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst, uint32_t dstStride)        \
    {                                                                                                             \
        if (convert##subsampling<pixels, Chroma::Planes>(planarFrame(                                             \
                srcY, srcCb, srcCr, srcWidth, srcHeight, srcYStride, srcCbStride, srcCrStride, dst, dstStride)))  \
            return;                                                                                               \
        odxColorYCbCr##subsampling##PlanarTo##pixels##u8C(srcY, srcCb, srcCr, srcWidth, srcHeight, srcYStride,    \
                                                          srcCbStride, srcCrStride, dst, dstStride);              \
    }                                                                                                             \
    decltype(odxColorYCbCr##subsampling##PseudoPlanarTo##pixels##u8)                                              \
        odxColorYCbCr##subsampling##PseudoPlanarTo##pixels##u8V;                                                  \
    void odxColorYCbCr##subsampling##PseudoPlanarTo##pixels##u8V(                                                 \
        const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,     \
        uint32_t srcCStride, uint8_t* dst, uint32_t dstStride)                                                    \
    {                                                                                                             \
        if (convert##subsampling<pixels, Chroma::CbCrPairs>(                                                      \
                pseudoPlanarFrame(srcY, srcC, srcWidth, srcHeight, srcYStride, srcCStride, dst, dstStride)))      \
            return;                                                                                               \
        odxColorYCbCr##subsampling##PseudoPlanarTo##pixels##u8C(srcY, srcC, srcWidth, srcHeight, srcYStride,      \
                                                                srcCStride, dst, dstStride);                      \
    }
ODX_YCBCR_TO_RGB(ODX_COLOR_SIMD)
#undef ODX_COLOR_SIMD

#define ODX_COLOR(name) decltype(name##C) name##V
ODX_COLOR(odxColorYUV420toRGB565u8);
ODX_COLOR(odxColorYUV420toRGB565u8Rotate180);
ODX_COLOR(odxColorYCrCb420PseudoPlanarToRGB8888u8);
ODX_COLOR(odxColorYUV420toRGB8888u8);
ODX_COLOR(odxColorYCrCbH1V1toRGB888u8);
ODX_COLOR(odxColorYCrCbH2V2toRGB888u8);
ODX_COLOR(odxColorYCrCbH2V1toRGB888u8);
ODX_COLOR(odxColorYCrCbH1V2toRGB888u8);

void odxColorYUV420toRGB565u8V(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const Frame frame = singleBufferFrame(Chroma::CbCrPairs, src, width, height, width, width, dst, 2 * width);
    if (convert<kVideoRange, RGB565, Layout<2, 2, Chroma::CbCrPairs, true>>(frame, height)) return;
    odxColorYUV420toRGB565u8C(src, width, height, dst);
}

void odxColorYUV420toRGB565u8Rotate180V(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const Frame frame = singleBufferFrame(Chroma::CbCrPairs, src, width, height, width, width, dst, 2 * width);
    if (convert<kVideoRange, RGB565, Layout<2, 2, Chroma::CbCrPairs, true, true>>(frame, height)) return;
    odxColorYUV420toRGB565u8Rotate180C(src, width, height, dst);
}

void odxColorYCrCb420PseudoPlanarToRGB8888u8V(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcYStride, uint32_t srcCStride, uint8_t* dst,
                                              uint32_t dstStride)
{
    const Frame frame = singleBufferFrame(Chroma::CrCbPairs, src, srcWidth, srcHeight, srcYStride, srcCStride, dst,
                                          dstStride / 4 * 4);
    const bool rowsOverlap = frame.dstStride / 4 < srcWidth; // then their order decides what stays
    if (!rowsOverlap &&
        convert<kVideoRangeFine, RGBA8888, Layout<2, 2, Chroma::CrCbPairs, true>>(frame, srcHeight))
        return;
    odxColorYCrCb420PseudoPlanarToRGB8888u8C(src, srcWidth, srcHeight, srcYStride, srcCStride, dst, dstStride);
}

void odxColorYUV420toRGB8888u8V(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    odxColorYCrCb420PseudoPlanarToRGB8888u8V(src, width, height, width, width, dst, 4 * width);
}

// ---- coded blocks ----

// Each byte of four twice.
ODX_INLINE uint64_t spread(const uint8_t* four)
{
    uint32_t bytes;
    memcpy(&bytes, four, sizeof bytes);
    uint64_t x = bytes;
    x = (x | x << 16) & 0x0000FFFF0000FFFFu;
    x = (x | x << 8) & 0x00FF00FF00FF00FFu;
    return x | x << 8;
}

// The chroma of one luma block, enlarged to its size.
template <class Unit>
ODX_INLINE void enlarge(const uint8_t* chroma, uint32_t blockX, uint32_t blockY, uint8_t* enlarged)
{
    chroma += 8 / Unit::kDown * 8 * blockY + 8 / Unit::kAcross * blockX;
    for (uint32_t row = 0; row < 8; ++row) {
        const uint8_t* from = chroma + 8 * (row / Unit::kDown);
        if constexpr (Unit::kAcross == 1) {
            memcpy(enlarged + 8 * row, from, 8);
        } else {
            const uint64_t x = spread(from);
            memcpy(enlarged + 8 * row, &x, 8);
        }
    }
}

// A block, as 8 rows of 8 pixels one after the other.
ODX_INLINE void convertBlock(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* pixels)
{
    for (uint32_t i = 0; i < 64; i += kBytes)
        convertLuma<kJpeg, RGB888, false>(y + i, fullTerms<kJpeg, Chroma::Planes>(cb, cr, i), pixels + 3 * i);
}

template <class Unit>
ODX_INLINE void convertUnit(const uint8_t* unit, uint8_t* dst, size_t stride, size_t columns, size_t rows)
{
    for (uint32_t blockY = 0; blockY < Unit::kDown && rows > 8 * blockY; ++blockY) {
        for (uint32_t blockX = 0; blockX < Unit::kAcross && columns > 8 * blockX; ++blockX) {
            uint8_t cb[64], cr[64], pixels[3 * 64];
            enlarge<Unit>(unit + Unit::kCb, blockX, blockY, cb);
            enlarge<Unit>(unit + Unit::kCr, blockX, blockY, cr);
            convertBlock(unit + 64 * (Unit::kAcross * blockY + blockX), cb, cr, pixels);
            const size_t blockColumns = columns - 8 * blockX, blockRows = rows - 8 * blockY;
            uint8_t* out = rowOf(dst, stride, 8 * blockY) + 3 * 8 * blockX;
            for (uint32_t row = 0; row < 8 && row < blockRows; ++row, out += stride) {
                if (blockColumns >= 8) {
                    memcpy(out, pixels + 24 * row, 24);
                } else {
                    memcpy(out, pixels + 24 * row, 3 * blockColumns);
                }
            }
        }
    }
}

template <class Unit>
ODX_INLINE void convertUnits(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const size_t stride = 3 * size_t{width};
    for (size_t y = 0; y < height; y += Unit::kHeight, src += Unit::rowSize(width)) {
        const uint8_t* unit = src;
        for (size_t x = 0; x < width; x += Unit::kWidth, unit += Unit::kSize)
            convertUnit<Unit>(unit, rowOf(dst, stride, y) + 3 * x, stride, width - x, height - y);
    }
}

#define ODX_COLOR_UNITS(across, down)                                                                      \
    void odxColorYCrCbH##across##V##down##toRGB888u8V(const uint8_t* src, uint32_t width, uint32_t height, \
                                                      uint8_t* dst)                                        \
    {                                                                                                      \
        convertUnits<Units<across, down>>(src, width, height, dst);                                        \
    }
ODX_COLOR_UNITS(1, 1)
ODX_COLOR_UNITS(2, 2)
ODX_COLOR_UNITS(2, 1)
ODX_COLOR_UNITS(1, 2)
#undef ODX_COLOR_UNITS

} // namespace odx::ODX_TARGET
