#include "cpu/ondrixColorC.h"

#include "cpu/image.h"
#include "frame/log.h"

namespace odx::color
{

namespace
{

// ---- rows ----

// A row with a chroma pair for each pixel.
template <const Scheme& s, class Pixel, Chroma chroma>
void convertRow(const uint8_t* __restrict y, const uint8_t* __restrict cb, const uint8_t* __restrict cr,
                uint8_t* __restrict dst, size_t length)
{
    for (size_t x = 0; x < length; ++x) {
        const Terms terms = termsOf<s>(cb[kChromaStep<chroma> * x], cr[kChromaStep<chroma> * x]);
        convertPixel<s, Pixel>(y[x], terms, dst + Pixel::kSize * x);
    }
}

// The pixels of a row that share their chroma pair with a neighbour; all but the last one when the length is odd.
// With a `direction` of -1 the row is written backward, from `dst` on.
template <const Scheme& s, class Pixel, Chroma chroma, ptrdiff_t direction = 1>
void convertPairs(const uint8_t* __restrict y, const uint8_t* __restrict cb, const uint8_t* __restrict cr,
                  uint8_t* __restrict dst, size_t length)
{
    constexpr ptrdiff_t size = direction * static_cast<ptrdiff_t>(Pixel::kSize);
    const ptrdiff_t pairs = static_cast<ptrdiff_t>(length / 2);
    for (ptrdiff_t i = 0; i < pairs; ++i) {
        const Terms terms = termsOf<s>(*cb, *cr);
        convertPixel<s, Pixel>(y[2 * i], terms, dst + size * 2 * i);
        convertPixel<s, Pixel>(y[2 * i + 1], terms, dst + size * (2 * i + 1));
        cb += kChromaStep<chroma>;
        cr += kChromaStep<chroma>;
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

constexpr auto* yuvp2bgr565 = convertRow<kFullRange, RGB565, Chroma::Planes>;
constexpr auto* yuvp2bgr888 = convertRow<kFullRange, RGB888, Chroma::Planes>;
constexpr auto* yuvp2bgra = convertRow<kFullRange, RGBA8888, Chroma::Planes>;
constexpr auto* yuv2bgr565 = convertRow<kFullRange, RGB565, Chroma::CbCrPairs>;
constexpr auto* yuv2bgr888 = convertRow<kFullRange, RGB888, Chroma::CbCrPairs>;
constexpr auto* yuv2bgra = convertRow<kFullRange, RGBA8888, Chroma::CbCrPairs>;
constexpr auto* yyuvp2bgr565 = convertTwoLumaRow<RGB565, Chroma::Planes>;
constexpr auto* yyuvp2bgr888 = convertTwoLumaRow<RGB888, Chroma::Planes>;
constexpr auto* yyuvp2bgra = convertTwoLumaRow<RGBA8888, Chroma::Planes>;
constexpr auto* yyuv2bgr565 = convertTwoLumaRow<RGB565, Chroma::CbCrPairs>;
constexpr auto* yyuv2bgr888 = convertTwoLumaRow<RGB888, Chroma::CbCrPairs>;
constexpr auto* yyuv2bgra = convertTwoLumaRow<RGBA8888, Chroma::CbCrPairs>;

// A row in video range, with a chroma pair for every two pixels; the last one of an odd row has a pair of its own.
template <const Scheme& s, class Pixel, Chroma chroma, ptrdiff_t direction = 1>
void convertVideoRow(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, size_t length)
{
    convertPairs<s, Pixel, chroma, direction>(y, cb, cr, dst, length);
    if (length % 2 != 0) {
        const size_t last = kChromaStep<chroma> * (length / 2);
        convertPixel<s, Pixel>(y[length - 1], termsOf<s>(cb[last], cr[last]),
                               dst + direction * static_cast<ptrdiff_t>(Pixel::kSize * (length - 1)));
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

template <auto* row>
void convert444(const Frame& frame)
{
    convertRows<row, 1>(frame, frame.height);
}

template <auto* row>
void convert422(const Frame& frame)
{
    convertRows<row, 1>(frame, frame.height);
}

// Rows come in pairs, so that an odd height takes one row more.
template <auto* row>
void convert420(const Frame& frame)
{
    convertRows<row, 2>(frame, size_t{frame.height} + frame.height % 2);
}

// ---- coded blocks ----

template <class Unit>
void convertUnits(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    for (size_t y = 0; y < height; ++y) {
        const uint8_t* unit = src + Unit::rowSize(width) * (y / Unit::kHeight);
        const size_t row = y % Unit::kHeight;
        for (size_t x = 0; x < width; x += Unit::kWidth, unit += Unit::kSize) {
            const size_t columns = width - x < Unit::kWidth ? width - x : Unit::kWidth;
            for (size_t column = 0; column < columns; ++column) {
                const size_t block = row / 8 * Unit::kAcross + column / 8;
                const size_t chroma = row / Unit::kDown * 8 + column / Unit::kAcross;
                convertPixel<kJpeg, RGB888>(unit[64 * block + row % 8 * 8 + column % 8],
                                            termsOf<kJpeg>(unit[Unit::kCb + chroma], unit[Unit::kCr + chroma]),
                                            dst + 3 * (size_t{width} * y + x + column));
            }
        }
    }
}

} // namespace

} // namespace odx::color

using namespace odx;
using namespace odx::color;

extern "C" {

#define ODX_COLOR_REFERENCE(subsampling, pixels, rows, output)                                                  \
    void odxColorYCbCr##subsampling##PlanarTo##pixels##u8C(                                                     \
        const uint8_t* srcY, const uint8_t* srcCb, const uint8_t* srcCr, uint32_t srcWidth, uint32_t srcHeight, \
        uint32_t srcYStride, uint32_t srcCbStride, uint32_t srcCrStride, uint8_t* dst, uint32_t dstStride)      \
    {                                                                                                           \
        convert##subsampling<rows##p2##output>(planarFrame(srcY, srcCb, srcCr, srcWidth, srcHeight, srcYStride, \
                                                           srcCbStride, srcCrStride, dst, dstStride));          \
    }                                                                                                           \
    void odxColorYCbCr##subsampling##PseudoPlanarTo##pixels##u8C(                                               \
        const uint8_t* srcY, const uint8_t* srcC, uint32_t srcWidth, uint32_t srcHeight, uint32_t srcYStride,   \
        uint32_t srcCStride, uint8_t* dst, uint32_t dstStride)                                                  \
    {                                                                                                           \
        convert##subsampling<rows##2##output>(                                                                  \
            pseudoPlanarFrame(srcY, srcC, srcWidth, srcHeight, srcYStride, srcCStride, dst, dstStride));        \
    }
ODX_YCBCR_TO_RGB(ODX_COLOR_REFERENCE)
#undef ODX_COLOR_REFERENCE

void odxColorYUV420toRGB565u8C(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const Frame frame = singleBufferFrame(Chroma::CbCrPairs, src, width, height, width, width, dst, 2 * width);
    convertRows<convertVideoRow<kVideoRange, RGB565, Chroma::CbCrPairs>, 2>(frame, height);
}

void odxColorYUV420toRGB565u8Rotate180C(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst)
{
    const Frame f = singleBufferFrame(Chroma::CbCrPairs, src, width, height, width, width, dst, 2 * width);
    for (size_t y = 0; y < height; ++y) {
        convertVideoRow<kVideoRange, RGB565, Chroma::CbCrPairs, -1>(
            rowOf(f.y, f.yStride, y), rowOf(f.cb, f.cbStride, y / 2), rowOf(f.cr, f.crStride, y / 2),
            rowOf(dst, f.dstStride, height - y) - RGB565::kSize, width);
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

#define ODX_COLOR_UNITS(across, down)                                                                      \
    void odxColorYCrCbH##across##V##down##toRGB888u8C(const uint8_t* src, uint32_t width, uint32_t height, \
                                                      uint8_t* dst)                                        \
    {                                                                                                      \
        convertUnits<Units<across, down>>(src, width, height, dst);                                        \
    }
ODX_COLOR_UNITS(1, 1)
ODX_COLOR_UNITS(2, 2)
ODX_COLOR_UNITS(2, 1)
ODX_COLOR_UNITS(1, 2)
#undef ODX_COLOR_UNITS
}
