#include "cpu/ondrixColorC.h"

#include "cpu/channels.h"
#include "cpu/image.h"
#include "frame/log.h"

namespace odx::color
{

namespace
{

// ---- rows ----

// A row is converted in chunks: first each channel into a plane, then the planes into pixels.
using channels::kChunk;
using channels::Pixels;

template <class Pixel>
void storePixels(const Pixels& pixels, uint8_t* dst, size_t count)
{
    constexpr auto join = Pixel::kSize == 2   ? channels::join565
                          : Pixel::kSize == 3 ? channels::join3
                                              : channels::join4;
    join(pixels.red, pixels.green, pixels.blue, dst, count);
}

// The terms of chroma pair i. Two samples side by side are read as one word, which compilers vectorise better.
template <const Scheme& s, Chroma chroma>
Terms pairTerms(const uint8_t* cb, const uint8_t* cr, size_t i)
{
    if constexpr (chroma == Chroma::Planes) {
        return termsOf<s>(cb[i], cr[i]);
    } else {
        uint16_t pair;
        memcpy(&pair, (chroma == Chroma::CbCrPairs ? cb : cr) + 2 * i, sizeof pair);
        const auto first = static_cast<uint8_t>(pair), second = static_cast<uint8_t>(pair >> 8);
        return chroma == Chroma::CbCrPairs ? termsOf<s>(first, second) : termsOf<s>(second, first);
    }
}

// A row with a chroma pair for each pixel.
template <const Scheme& s, class Pixel, Chroma chroma>
void convertRow(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, size_t length)
{
    constexpr size_t step = kChromaStep<chroma>;
    Pixels pixels;
    for (size_t x0 = 0, count; x0 < length; x0 += count) {
        count = length - x0 < kChunk ? length - x0 : kChunk;
        const uint8_t *const luma = y + x0, *const u = cb + step * x0, *const v = cr + step * x0;
        for (size_t x = 0; x < count; ++x) {
            const Terms terms = pairTerms<s, chroma>(u, v, x);
            const int32_t level = lumaOf<s>(luma[x]);
            pixels.red[x] = channelOf<s>(level, terms.red);
            pixels.green[x] = channelOf<s>(level, terms.green);
            pixels.blue[x] = channelOf<s>(level, terms.blue);
        }
        storePixels<Pixel>(pixels, dst + Pixel::kSize * x0, count);
    }
}

// The pixels of a row that share their chroma pair with a neighbour; all but the last one when the length is odd.
template <const Scheme& s, class Pixel, Chroma chroma>
void convertPairs(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, size_t length)
{
    constexpr size_t step = kChromaStep<chroma>;
    Pixels pixels;
    for (size_t x0 = 0, count; x0 + 1 < length; x0 += count) {
        count = length - x0 < kChunk ? (length - x0) / 2 * 2 : kChunk;
        const uint8_t *const luma = y + x0, *const u = cb + step * x0 / 2, *const v = cr + step * x0 / 2;
        for (size_t i = 0; i < count / 2; ++i) {
            const Terms terms = pairTerms<s, chroma>(u, v, i);
            const int32_t first = lumaOf<s>(luma[2 * i]), second = lumaOf<s>(luma[2 * i + 1]);
            pixels.red[2 * i] = channelOf<s>(first, terms.red);
            pixels.red[2 * i + 1] = channelOf<s>(second, terms.red);
            pixels.green[2 * i] = channelOf<s>(first, terms.green);
            pixels.green[2 * i + 1] = channelOf<s>(second, terms.green);
            pixels.blue[2 * i] = channelOf<s>(first, terms.blue);
            pixels.blue[2 * i + 1] = channelOf<s>(second, terms.blue);
        }
        storePixels<Pixel>(pixels, dst + Pixel::kSize * x0, count);
    }
}

// A row with a chroma pair for every two pixels; the last one of an odd row takes the pair of its neighbours.
template <class Pixel, Chroma chroma>
void convertTwoLumaRow(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, size_t length)
{
    ODX_FATAL_ASSERT("ondrixColorC", __LINE__, length > 1);
    convertPairs<kFullRange, Pixel, chroma>(y, cb, cr, dst, length);
    if (length % 2 != 0) {
        const size_t last = kChromaStep<chroma> * (length / 2 - 1);
        convertPixel<kFullRange, Pixel>(y[length - 1], termsOf<kFullRange>(cb[last], cr[last]),
                                        dst + Pixel::kSize * (length - 1));
    }
}

// A row in video range, with a chroma pair for every two pixels; the last one of an odd row has a pair of its own.
template <const Scheme& s, class Pixel, Chroma chroma>
void convertVideoRow(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, size_t length)
{
    convertPairs<s, Pixel, chroma>(y, cb, cr, dst, length);
    if (length % 2 != 0) {
        const size_t last = kChromaStep<chroma> * (length / 2);
        convertPixel<s, Pixel>(y[length - 1], termsOf<s>(cb[last], cr[last]), dst + Pixel::kSize * (length - 1));
    }
}

// The same, written backward: the first pixel ends at `end`.
template <const Scheme& s, class Pixel, Chroma chroma>
void convertVideoRowBackward(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* end, size_t length)
{
    uint8_t pixels[kChunk * Pixel::kSize];
    for (size_t x0 = 0, count; x0 < length; x0 += count) {
        count = length - x0 < kChunk ? length - x0 : kChunk;
        const size_t pairs = kChromaStep<chroma> * (x0 / 2);
        convertVideoRow<s, Pixel, chroma>(y + x0, cb + pairs, cr + pairs, pixels, count);
        for (size_t x = 0; x < count; ++x)
            memcpy(end - Pixel::kSize * (x0 + x + 1), pixels + Pixel::kSize * x, Pixel::kSize);
    }
}

// ---- images ----

// Converts `rows` rows, of which `sharing` in turn have the same chroma row.
template <auto* row, uint32_t sharing>
void convertRows(const Frame& f, size_t rows)
{
    for (size_t y = 0; y < rows; ++y) {
        row(rowOf(f.y, f.yStride, y), rowOf(f.cb, f.cbStride, y / sharing), rowOf(f.cr, f.crStride, y / sharing),
            rowOf(f.dst, f.dstStride, y), f.width);
    }
}

template <class Pixel, Chroma chroma>
void convert444(const Frame& frame)
{
    convertRows<convertRow<kFullRange, Pixel, chroma>, 1>(frame, frame.height);
}

template <class Pixel, Chroma chroma>
void convert422(const Frame& frame)
{
    convertRows<convertTwoLumaRow<Pixel, chroma>, 1>(frame, frame.height);
}

// Rows come in pairs, so that an odd height takes one row more.
template <class Pixel, Chroma chroma>
void convert420(const Frame& frame)
{
    convertRows<convertTwoLumaRow<Pixel, chroma>, 2>(frame, size_t{frame.height} + frame.height % 2);
}

// ---- coded blocks ----

// Gathers the samples of a row from its units, and converts them like a row with a chroma pair for each pixel.
template <class Unit>
void convertUnits(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    static_assert(kChunk % Unit::kWidth == 0);
    uint8_t luma[kChunk], cb[kChunk], cr[kChunk];
    for (size_t y = 0; y < height; ++y, dst += size_t{3} * width) {
        const uint8_t* unit = src + Unit::rowSize(width) * (y / Unit::kHeight);
        const size_t row = y % Unit::kHeight;
        const size_t lumaRow = row / 8 * Unit::kAcross * 64 + row % 8 * 8, chromaRow = row / Unit::kDown * 8;
        for (size_t x0 = 0, count; x0 < width; x0 += count) {
            count = width - x0 < kChunk ? width - x0 : kChunk;
            for (size_t x = 0; x < count; ++x) {
                const size_t column = x % Unit::kWidth;
                const uint8_t* const from = unit + Unit::kSize * (x / Unit::kWidth);
                luma[x] = from[lumaRow + column / 8 * 64 + column % 8];
                cb[x] = from[Unit::kCb + chromaRow + column / Unit::kAcross];
                cr[x] = from[Unit::kCr + chromaRow + column / Unit::kAcross];
            }
            convertRow<kJpeg, RGB888, Chroma::Planes>(luma, cb, cr, dst + 3 * x0, count);
            unit += Unit::kSize * (kChunk / Unit::kWidth);
        }
    }
}

} // namespace

} // namespace odx::color

using namespace odx;
using namespace odx::color;

extern "C" {

#define ODX_PLANAR(name, subsampling, pixels)                                                                    \
    void name(const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr, uint32_t srcWidth,                \
              uint32_t srcHeight, uint32_t srcYStride, uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst, \
              uint32_t dstStride)                                                                                \
    {                                                                                                            \
        convert##subsampling<pixels, Chroma::Planes>(planarFrame(                                                \
            srcY, srcCb, srcCr, srcWidth, srcHeight, srcYStride, srcCbStride, srcCrStride, dst, dstStride));     \
    }
#define ODX_PSEUDO_PLANAR(name, subsampling, pixels)                                                     \
    void name(const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth, uint32_t srcHeight,           \
              uint32_t srcYStride, uint32_t srcCStride, uint8_t* dst, uint32_t dstStride)                \
    {                                                                                                    \
        convert##subsampling<pixels, Chroma::CbCrPairs>(                                                 \
            pseudoPlanarFrame(srcY, srcC, srcWidth, srcHeight, srcYStride, srcCStride, dst, dstStride)); \
    }
ODX_PLANAR(odxColorYCbCr444PlanarToRGB565u8C, 444, RGB565)
ODX_PLANAR(odxColorYCbCr444PlanarToRGB888u8C, 444, RGB888)
ODX_PLANAR(odxColorYCbCr444PlanarToRGBA8888u8C, 444, RGBA8888)
ODX_PLANAR(odxColorYCbCr422PlanarToRGB565u8C, 422, RGB565)
ODX_PLANAR(odxColorYCbCr422PlanarToRGB888u8C, 422, RGB888)
ODX_PLANAR(odxColorYCbCr422PlanarToRGBA8888u8C, 422, RGBA8888)
ODX_PLANAR(odxColorYCbCr420PlanarToRGB565u8C, 420, RGB565)
ODX_PLANAR(odxColorYCbCr420PlanarToRGB888u8C, 420, RGB888)
ODX_PLANAR(odxColorYCbCr420PlanarToRGBA8888u8C, 420, RGBA8888)
ODX_PSEUDO_PLANAR(odxColorYCbCr444PseudoPlanarToRGB565u8C, 444, RGB565)
ODX_PSEUDO_PLANAR(odxColorYCbCr444PseudoPlanarToRGB888u8C, 444, RGB888)
ODX_PSEUDO_PLANAR(odxColorYCbCr444PseudoPlanarToRGBA8888u8C, 444, RGBA8888)
ODX_PSEUDO_PLANAR(odxColorYCbCr422PseudoPlanarToRGB565u8C, 422, RGB565)
ODX_PSEUDO_PLANAR(odxColorYCbCr422PseudoPlanarToRGB888u8C, 422, RGB888)
ODX_PSEUDO_PLANAR(odxColorYCbCr422PseudoPlanarToRGBA8888u8C, 422, RGBA8888)
ODX_PSEUDO_PLANAR(odxColorYCbCr420PseudoPlanarToRGB565u8C, 420, RGB565)
ODX_PSEUDO_PLANAR(odxColorYCbCr420PseudoPlanarToRGB888u8C, 420, RGB888)
ODX_PSEUDO_PLANAR(odxColorYCbCr420PseudoPlanarToRGBA8888u8C, 420, RGBA8888)

void odxColorYUV420toRGB565u8C(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const Frame frame = singleBufferFrame(Chroma::CbCrPairs, src, width, height, width, width, dst, 2 * width);
    convertRows<convertVideoRow<kVideoRange, RGB565, Chroma::CbCrPairs>, 2>(frame, height);
}

void odxColorYUV420toRGB565u8Rotate180C(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const Frame f = singleBufferFrame(Chroma::CbCrPairs, src, width, height, width, width, dst, 2 * width);
    for (size_t y = 0; y < height; ++y) {
        convertVideoRowBackward<kVideoRange, RGB565, Chroma::CbCrPairs>(
            rowOf(f.y, f.yStride, y), rowOf(f.cb, f.cbStride, y / 2), rowOf(f.cr, f.crStride, y / 2),
            rowOf(dst, f.dstStride, height - y), width);
    }
}

void odxColorYCrCb420PseudoPlanarToRGB8888u8C(const uint8_t* src, uint32_t srcWidth, uint32_t srcHeight,
                                              uint32_t srcYStride, uint32_t srcCStride, uint8_t* dst,
                                              uint32_t dstStride)
{
    const Frame frame = singleBufferFrame(Chroma::CrCbPairs, src, srcWidth, srcHeight, srcYStride, srcCStride, dst,
                                          dstStride / 4 * 4);
    convertRows<convertVideoRow<kVideoRangeFine, RGBA8888, Chroma::CrCbPairs>, 2>(frame, srcHeight);
}

void odxColorYUV420toRGB8888u8C(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    odxColorYCrCb420PseudoPlanarToRGB8888u8C(src, width, height, width, width, dst, 4 * width);
}

#define ODX_COLOR_UNITS(name, across, down)                                      \
    void name(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst) \
    {                                                                            \
        convertUnits<Units<across, down>>(src, width, height, dst);              \
    }
ODX_COLOR_UNITS(odxColorYCrCbH1V1toRGB888u8C, 1, 1)
ODX_COLOR_UNITS(odxColorYCrCbH2V2toRGB888u8C, 2, 2)
ODX_COLOR_UNITS(odxColorYCrCbH2V1toRGB888u8C, 2, 1)
ODX_COLOR_UNITS(odxColorYCrCbH1V2toRGB888u8C, 1, 2)
}
