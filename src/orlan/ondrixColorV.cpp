// SIMD colour conversions from luma and chroma to RGB. Rows that share a chroma row are converted together. Images
// that are narrower than a vector are left to the reference.
#include "cpu/image.h"
#include "cpu/ondrixColorC.h"
#include "orlan/simd/simd.h"

#define ODX_FAMILY_LIST "frame/operations/colorToRgb.def"
#include "orlan/family.h"

namespace odx::ODX_TARGET
{
using namespace simd;
using namespace color;

// ---- arithmetic ----

// A scheme in 16 bits. Powers of two that divide the gain are divided out before the sum is made, exactly:
//     (gain * luma + sum) >> shift = (kGain * luma + (sum >> kCommon)) >> (shift - kCommon)
// A kGain of 1 leaves no shift. Otherwise the sum could need more than 16 bits; it is made around the middle of
// the channels' range, where a sum that saturates is clamped anyway.
template <const Scheme& s>
constexpr int kCommon = __builtin_ctz((uint32_t)s.gain);
template <const Scheme& s>
constexpr int kGain = s.gain >> kCommon<s>;

// What brings kGain * (luma - 128) to kGain * (luma - black), less 128 of the channel.
template <const Scheme& s>
constexpr int32_t kOrigin = kGain<s>*(128 - s.black) - (128 << (s.shift - kCommon<s>));

// What is added to the luma. A sum that needs more than 16 bits comes in two parts of one sign.
struct Term {
    s16v part, rest;
};

struct TermsV {
    Term red, green, blue;
};

// For the two halves of a pair of luma.
struct TermsPair {
    TermsV a, b;
};

// The multiple of 2^n that is nearest to a weight, divided by it, and what is left of the weight.
constexpr int32_t nearest(int32_t weight, int n)
{
    return (weight + (1 << n) / 2) >> n;
}
constexpr int32_t left(int32_t weight, int n)
{
    return weight - nearest(weight, n) * (1 << n);
}
constexpr int32_t magnitude(int32_t number)
{
    return number < 0 ? -number : number;
}

// (weightU * u + weightV * v + rounding) >> kCommon, modulo 2^16.
template <const Scheme& s, int32_t weightU, int32_t weightV>
ODX_INLINE s16v weightedSum(s16v u, s16v v)
{
    constexpr int n = kCommon<s>;
    constexpr int32_t leftU = left(weightU, n), leftV = left(weightV, n);
    if constexpr (s.rounding != 0 && (weightU == 0 || weightV == 0)) {
        static_assert(s.rounding == 1 << (n - 1));
        return mulRound((weightU == 0 ? v : u) << (15 - n), weightU + weightV);
    } else if constexpr (s.chromaOrigin * (magnitude(leftU) + magnitude(leftV)) + s.rounding <= 32767) {
        const s16v rest = u * (int16_t)leftU + v * (int16_t)leftV + (int16_t)s.rounding;
        const u16v whole = (u16v)u * (uint16_t)nearest(weightU, n) + (u16v)v * (uint16_t)nearest(weightV, n);
        return (s16v)(whole + (u16v)(rest >> n));
    } else {
        return dotShift<n>(u, v, weightU, weightV, s.rounding);
    }
}

// Whether a sum, with the origin, needs more than 16 bits.
template <const Scheme& s, int32_t weightU, int32_t weightV>
constexpr bool kLong = kGain<s> != 1 && (s.chromaOrigin * (magnitude(weightU) + magnitude(weightV)) >>
                                         kCommon<s>)+magnitude(kOrigin<s>) > 32767;

template <const Scheme& s, int32_t weightU, int32_t weightV>
ODX_INLINE Term term(s16v u, s16v v)
{
    const s16v sum = weightedSum<s, weightU, weightV>(u, v);
    if constexpr (kGain<s> == 1) {
        return {sum, s16v{}};
    } else if constexpr (!kLong<s, weightU, weightV>) {
        return {sum + (int16_t)kOrigin<s>, s16v{}};
    } else {
        // A bit is missing, but the sum of one product has the sign of its chroma.
        static_assert((weightU == 0 || weightV == 0) && weightU + weightV > 0);
        const s16v part = (s16v)((u16v)sum >> 1) | ((weightU == 0 ? v : u) & (int16_t)-32768);
        return {part, sum - part + (int16_t)kOrigin<s>};
    }
}

template <const Scheme& s>
ODX_INLINE TermsV termsOf(u16v cb, u16v cr)
{
    const s16v u = (s16v)cb * (int16_t)s.chromaScale - (int16_t)s.chromaOrigin,
               v = (s16v)cr * (int16_t)s.chromaScale - (int16_t)s.chromaOrigin;
    return {term<s, 0, s.redCr>(u, v), term<s, s.greenCb, s.greenCr>(u, v), term<s, s.blueCb, 0>(u, v)};
}

// A channel from the halves of kGain * (luma - 128), or from the luma for a kGain of 1.
template <const Scheme& s, bool isLong>
ODX_INLINE u8v channel(const s16p& luma, const Term& a, const Term& b)
{
    if constexpr (kGain<s> == 1) {
        static_assert(s.shift == kCommon<s> && s.black == 0);
        return joinClamped({luma.a + a.part, luma.b + b.part});
    } else {
        s16p sum = {addSat(luma.a, a.part), addSat(luma.b, b.part)};
        if constexpr (isLong) sum = {addSat(sum.a, a.rest), addSat(sum.b, b.rest)};
        return joinCentred<s.shift - kCommon<s>>(sum);
    }
}

// Writes kBytes pixels.
template <const Scheme& s, class Pixel, bool backward>
ODX_INLINE void convertLuma(const uint8_t* y, const TermsPair& t, uint8_t* dst)
{
    u8v bytes = load<u8v>(y);
    if constexpr (s.darkest != 0) bytes = max(bytes, u8v{} + (uint8_t)s.darkest);
    s16p luma;
    if constexpr (kGain<s> == 1) {
        const u16p wide = split(bytes);
        luma = {(s16v)wide.a, (s16v)wide.b};
    } else {
        luma = mulCentred<kGain<s>>(bytes);
    }
    u8v red = channel<s, kLong<s, 0, s.redCr>>(luma, t.a.red, t.b.red),
        green = channel<s, kLong<s, s.greenCb, s.greenCr>>(luma, t.a.green, t.b.green),
        blue = channel<s, kLong<s, s.blueCb, 0>>(luma, t.a.blue, t.b.blue);
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
    const s16p part = simd::eachTwice(t.part), rest = simd::eachTwice(t.rest);
    return second ? Term{part.b, rest.b} : Term{part.a, rest.a};
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

#define ODX_PLANAR(name, reference, subsampling, pixels)                                                          \
    void name(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr, uint32_t srcWidth,                 \
              uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst,  \
              uint32_t dstStride)                                                                                 \
    {                                                                                                             \
        if (convert##subsampling<pixels, Chroma::Planes>(planarFrame(                                             \
                srcY, srcCb, srcCr, srcWidth, srcHeight, srcYStride, srcCbStride, srcCrStride, dst, dstStride)))  \
            return;                                                                                               \
        reference(srcY, srcCb, srcCr, srcWidth, srcHeight, srcYStride, srcCbStride, srcCrStride, dst, dstStride); \
    }
#define ODX_PSEUDO_PLANAR(name, reference, subsampling, pixels)                                              \
    void name(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth, uint32_t srcHeight,               \
              uint32_t srcYStride, uint32_t srcCStride, uint8_t* dst, uint32_t dstStride)                    \
    {                                                                                                        \
        if (convert##subsampling<pixels, Chroma::CbCrPairs>(                                                 \
                pseudoPlanarFrame(srcY, srcC, srcWidth, srcHeight, srcYStride, srcCStride, dst, dstStride))) \
            return;                                                                                          \
        reference(srcY, srcC, srcWidth, srcHeight, srcYStride, srcCStride, dst, dstStride);                  \
    }
ODX_PLANAR(odxColorYCbCr444PlanarToRGB565u8V, odxColorYCbCr444PlanarToRGB565u8C, 444, RGB565)
ODX_PLANAR(odxColorYCbCr444PlanarToRGB888u8V, odxColorYCbCr444PlanarToRGB888u8C, 444, RGB888)
ODX_PLANAR(odxColorYCbCr444PlanarToRGBA8888u8V, odxColorYCbCr444PlanarToRGBA8888u8C, 444, RGBA8888)
ODX_PLANAR(odxColorYCbCr422PlanarToRGB565u8V, odxColorYCbCr422PlanarToRGB565u8C, 422, RGB565)
ODX_PLANAR(odxColorYCbCr422PlanarToRGB888u8V, odxColorYCbCr422PlanarToRGB888u8C, 422, RGB888)
ODX_PLANAR(odxColorYCbCr422PlanarToRGBA8888u8V, odxColorYCbCr422PlanarToRGBA8888u8C, 422, RGBA8888)
ODX_PLANAR(odxColorYCbCr420PlanarToRGB565u8V, odxColorYCbCr420PlanarToRGB565u8C, 420, RGB565)
ODX_PLANAR(odxColorYCbCr420PlanarToRGB888u8V, odxColorYCbCr420PlanarToRGB888u8C, 420, RGB888)
ODX_PLANAR(odxColorYCbCr420PlanarToRGBA8888u8V, odxColorYCbCr420PlanarToRGBA8888u8C, 420, RGBA8888)
ODX_PSEUDO_PLANAR(odxColorYCbCr444PseudoPlanarToRGB565u8V, odxColorYCbCr444PseudoPlanarToRGB565u8C, 444, RGB565)
ODX_PSEUDO_PLANAR(odxColorYCbCr444PseudoPlanarToRGB888u8V, odxColorYCbCr444PseudoPlanarToRGB888u8C, 444, RGB888)
ODX_PSEUDO_PLANAR(odxColorYCbCr444PseudoPlanarToRGBA8888u8V, odxColorYCbCr444PseudoPlanarToRGBA8888u8C, 444,
                  RGBA8888)
ODX_PSEUDO_PLANAR(odxColorYCbCr422PseudoPlanarToRGB565u8V, odxColorYCbCr422PseudoPlanarToRGB565u8C, 422, RGB565)
ODX_PSEUDO_PLANAR(odxColorYCbCr422PseudoPlanarToRGB888u8V, odxColorYCbCr422PseudoPlanarToRGB888u8C, 422, RGB888)
ODX_PSEUDO_PLANAR(odxColorYCbCr422PseudoPlanarToRGBA8888u8V, odxColorYCbCr422PseudoPlanarToRGBA8888u8C, 422,
                  RGBA8888)
ODX_PSEUDO_PLANAR(odxColorYCbCr420PseudoPlanarToRGB565u8V, odxColorYCbCr420PseudoPlanarToRGB565u8C, 420, RGB565)
ODX_PSEUDO_PLANAR(odxColorYCbCr420PseudoPlanarToRGB888u8V, odxColorYCbCr420PseudoPlanarToRGB888u8C, 420, RGB888)
ODX_PSEUDO_PLANAR(odxColorYCbCr420PseudoPlanarToRGBA8888u8V, odxColorYCbCr420PseudoPlanarToRGBA8888u8C, 420,
                  RGBA8888)

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
//
// Units are laid out as a planar image, a piece of a row of units at a time, which is then converted as any other.

// Pixels of a piece. A remainder that is narrower than a vector is converted with the piece before it.
constexpr uint32_t kPiece = 256;

template <class Unit>
struct PlanarUnits {
    static constexpr size_t kWidth = kPiece + 64, kChromaWidth = kWidth / Unit::kAcross;
    uint8_t y[Unit::kHeight * kWidth], cb[8 * kChromaWidth], cr[8 * kChromaWidth];
};

// Puts the rows of two blocks side by side.
ODX_INLINE void joinBlocks(const uint8_t* left, const uint8_t* right, uint8_t* dst, size_t stride)
{
    for (uint32_t row = 0; row < 8; ++row) {
        const uint64_t halves[2] = {load<uint64_t>(left + 8 * row), load<uint64_t>(right + 8 * row)};
        memcpy(dst + stride * row, halves, sizeof halves);
    }
}

// Two units at a time; of an odd count the last one comes twice.
template <class Unit>
ODX_INLINE void layOut(const uint8_t* unit, size_t units, PlanarUnits<Unit>& planes)
{
    using Planes = PlanarUnits<Unit>;
    for (size_t i = 0; i < units; i += 2, unit += 2 * Unit::kSize) {
        const uint8_t* const next = i + 1 < units ? unit + Unit::kSize : unit;
        for (size_t row = 0; row < Unit::kDown; ++row) {
            uint8_t* const out = planes.y + 8 * Planes::kWidth * row + Unit::kWidth * i;
            const size_t block = 64 * Unit::kAcross * row;
            if constexpr (Unit::kAcross == 2) {
                joinBlocks(unit + block, unit + block + 64, out, Planes::kWidth);
                joinBlocks(next + block, next + block + 64, out + 16, Planes::kWidth);
            } else {
                joinBlocks(unit + block, next + block, out, Planes::kWidth);
            }
        }
        joinBlocks(unit + Unit::kCb, next + Unit::kCb, planes.cb + 8 * i, Planes::kChromaWidth);
        joinBlocks(unit + Unit::kCr, next + Unit::kCr, planes.cr + 8 * i, Planes::kChromaWidth);
    }
}

// False for an image that is too narrow.
template <class Unit>
ODX_INLINE bool convertUnits(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    using Planes = PlanarUnits<Unit>;
    using L = Layout<Unit::kAcross, Unit::kDown, Chroma::Planes, true>;
    static_assert(kBytes <= 64);
    if (width < kBytes + 1) return false; // an odd width has a vector and a pixel
    Planes planes;
    Frame piece = {
        planes.y, planes.cb, planes.cr, 0, 0, Planes::kWidth, Planes::kChromaWidth, Planes::kChromaWidth,
        dst,      3 * width};
    for (size_t y = 0; y < height; y += Unit::kHeight, src += Unit::rowSize(width)) {
        piece.height = height - y < Unit::kHeight ? (uint32_t)(height - y) : Unit::kHeight;
        for (size_t x = 0; x < width; x += piece.width) {
            piece.width = width - x < Planes::kWidth ? (uint32_t)(width - x) : kPiece;
            piece.dst = rowOf(dst, 3 * size_t{width}, y) + 3 * x;
            layOut<Unit>(src + Unit::kSize * (x / Unit::kWidth), (piece.width + Unit::kWidth - 1) / Unit::kWidth,
                         planes);
            convert<kJpeg, RGB888, L>(piece, piece.height);
        }
    }
    return true;
}

#define ODX_COLOR_UNITS(name, reference, across, down)                                                       \
    void name(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)                             \
    {                                                                                                        \
        if (!convertUnits<Units<across, down>>(src, width, height, dst)) reference(src, width, height, dst); \
    }
ODX_COLOR_UNITS(odxColorYCrCbH1V1toRGB888u8V, odxColorYCrCbH1V1toRGB888u8C, 1, 1)
ODX_COLOR_UNITS(odxColorYCrCbH2V2toRGB888u8V, odxColorYCrCbH2V2toRGB888u8C, 2, 2)
ODX_COLOR_UNITS(odxColorYCrCbH2V1toRGB888u8V, odxColorYCrCbH2V1toRGB888u8C, 2, 1)
ODX_COLOR_UNITS(odxColorYCrCbH1V2toRGB888u8V, odxColorYCrCbH1V2toRGB888u8C, 1, 2)

} // namespace odx::ODX_TARGET
