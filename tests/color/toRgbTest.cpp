// The conversions to RGB, one pixel after the other: held to their formulas, with plain division. The other
// columns are held to the reference by the differential test.
#include "color/colors.h"
#include "support/childProcess.h"

#include <memory>

using namespace odx::test;

namespace
{

// ---- arithmetics ----

struct Sample {
    int64_t y, cb, cr;
};

Colour clamped(int64_t r, int64_t g, int64_t b)
{
    const auto byte = [](int64_t value) { return std::clamp<int64_t>(value, 0, 255); };
    return {byte(r), byte(g), byte(b)};
}
Colour fullRange(Sample s)
{
    const int64_t u = s.cb - 128, v = s.cr - 128, luma = 256 * s.y + 128;
    return clamped(floorDiv(luma + 359 * v, 256), floorDiv(luma - 88 * u - 183 * v, 256),
                   floorDiv(luma + 454 * u, 256));
}
Colour videoRange(Sample s)
{
    const int64_t u = s.cb - 128, v = s.cr - 128, c = (s.y - 16) * 298;
    return clamped(floorDiv(c + 409 * v, 256), floorDiv(c - 208 * v - 100 * u, 256), floorDiv(c + 517 * u, 256));
}
Colour videoRangeFine(Sample s)
{
    const int64_t u = s.cb - 128, v = s.cr - 128, c = (std::max<int64_t>(s.y, 16) - 16) * 1192;
    return clamped(floorDiv(c + 1634 * v, 1024), floorDiv(c - 833 * v - 400 * u, 1024),
                   floorDiv(c + 2066 * u, 1024));
}
Colour jpeg(Sample s)
{
    const int64_t b = 2 * s.cb - 255, r = 2 * s.cr - 255;
    return clamped(s.y + floorDiv(22970 * r + 16384, 32768), s.y + floorDiv(-5638 * b - 11700 * r + 16384, 32768),
                   s.y + floorDiv(29032 * b + 16384, 32768));
}

// ---- layouts ----

// An image of any samples in a source layout.
struct Source {
    std::function<Sample(uint32_t x, uint32_t y)> at; // what the layout says of a pixel
    std::function<void(uint8_t* dst, uint32_t dstStride)> convert;
};

struct Conversion {
    std::string name;
    PixelLayout pixels;
    Colour (*arithmetic)(Sample);
    std::function<Source(uint32_t width, uint32_t height)> make;
    uint32_t subsampling = 0; // of planes and pairs with strides

    bool pairs() const { return subsampling == 420 || subsampling == 422; } // rows of pairs need one
};

// In rows that share chroma, the last pixel of an odd row has no sample of its own.
auto planes(uint32_t subsampling, bool pairs, void (*convert)(const Picture&, uint8_t*, uint32_t))
{
    return [=](uint32_t width, uint32_t height) -> Source {
        const auto p = std::make_shared<Picture>(width, height, subsampling, pairs, false);
        p->fill();
        const auto at = [p](uint32_t x, uint32_t y) -> Sample {
            const uint32_t i = p->across == 2 ? std::min(x / 2, p->width / 2 - 1) : x, row = y / p->down;
            return {p->y[p->yStride * y + x], p->sample(0, i, row), p->sample(1, i, row)};
        };
        return {at, [=](uint8_t* dst, uint32_t dstStride) { convert(*p, dst, dstStride); }};
    };
}

using Packed = decltype(odxColorYUV420toRGB8888u8);

// One buffer of so many bytes; at(bytes, x, y) finds the samples of a pixel.
template <class At>
Source packed(size_t size, uint32_t width, uint32_t height, Packed* convert, At at)
{
    const auto bytes = std::make_shared<Bytes>(anyBytes(size));
    return {[=](uint32_t x, uint32_t y) -> Sample { return at(*bytes, x, y); },
            [=](uint8_t* dst, uint32_t) { convert(bytes->data(), width, height, dst); }};
}

// Chroma rows of `width` bytes after the luma; where the width is odd, the last pair of a row ends in the next
// one. A turned image is one whose pixel (x, y) is the other's (width - 1 - x, height - 1 - y).
auto singleBuffer(bool crFirst, Packed* convert, bool turned = false)
{
    return [=](uint32_t width, uint32_t height) {
        const uint32_t size = width * (height + (height + 1) / 2) + width % 2;
        return packed(size, width, height, convert, [=](const Bytes& b, uint32_t x, uint32_t y) -> Sample {
            if (turned) x = width - 1 - x, y = height - 1 - y;
            const uint8_t* const pair = &b[width * (height + y / 2) + x / 2 * 2];
            return {b[width * y + x], pair[crFirst ? 1 : 0], pair[crFirst ? 0 : 1]};
        });
    };
}

// Units of blocks of 8x8 samples.
auto coded(uint32_t across, uint32_t down, Packed* convert)
{
    return [=](uint32_t width, uint32_t height) {
        const uint32_t blocks = across * down, unitSize = 64 * (blocks + 2);
        const uint32_t unitsWide = (width + 8 * across - 1) / (8 * across);
        const uint32_t unitsHigh = (height + 8 * down - 1) / (8 * down);
        const uint32_t advance = unitSize * (blocks == 1 ? width / 8 : unitsWide);
        const uint32_t size = advance * (unitsHigh - 1) + unitSize * unitsWide;
        return packed(size, width, height, convert, [=](const Bytes& b, uint32_t x, uint32_t y) -> Sample {
            const uint32_t unit = advance * (y / (8 * down)) + unitSize * (x / (8 * across));
            const uint32_t block = y / 8 % down * across + x / 8 % across, cx = x / across, cy = y / down;
            const uint32_t cb = unit + 64 * blocks + 8 * (cy % 8) + cx % 8; // that of Cr is one block on
            return {b[unit + 64 * block + 8 * (y % 8) + x % 8], b[cb], b[cb + 64]};
        });
    };
}

// All 26.
std::vector<Conversion> conversions()
{
    using namespace byName;
    const auto strided = [](const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst) {
        odxColorYCrCb420PseudoPlanarToRGB8888u8(src, width, height, width, width, dst, 4 * width);
    };
    std::vector<Conversion> all = {
        {"565", RGB565, videoRange, singleBuffer(false, odxColorYUV420toRGB565u8)},
        {"turned", RGB565, videoRange, singleBuffer(false, odxColorYUV420toRGB565u8Rotate180, true)},
        {"8888", RGBA8888, videoRangeFine, singleBuffer(true, odxColorYUV420toRGB8888u8)},
        {"8888 with strides", RGBA8888, videoRangeFine, singleBuffer(true, strided)},
        {"H1V1", RGB888, jpeg, coded(1, 1, odxColorYCrCbH1V1toRGB888u8)},
        {"H2V2", RGB888, jpeg, coded(2, 2, odxColorYCrCbH2V2toRGB888u8)},
        {"H2V1", RGB888, jpeg, coded(2, 1, odxColorYCrCbH2V1toRGB888u8)},
        {"H1V2", RGB888, jpeg, coded(1, 2, odxColorYCrCbH1V2toRGB888u8)},
    };
#define ODX_ONE(subsampling, chroma, pixels)                                                                      \
    all.push_back({#subsampling #chroma #pixels, pixels, fullRange,                                               \
                   planes(subsampling, chroma,                                                                    \
                          [](const Picture& s, uint8_t* dst, uint32_t dstStride) {                                \
                              odxColorYCbCr##subsampling##chroma##To##pixels##u8(                                 \
                                  ODX_##chroma##_ARGUMENTS(s), s.width, s.height, ODX_##chroma##_STRIDES(s), dst, \
                                  dstStride);                                                                     \
                          }),                                                                                     \
                   subsampling});
#define ODX_ALL(subsampling, chroma)     \
    ODX_ONE(subsampling, chroma, RGB565) \
    ODX_ONE(subsampling, chroma, RGB888) \
    ODX_ONE(subsampling, chroma, RGBA8888)
    ODX_ALL(444, Planar)
    ODX_ALL(422, Planar)
    ODX_ALL(420, Planar)
    ODX_ALL(444, PseudoPlanar)
    ODX_ALL(422, PseudoPlanar)
    ODX_ALL(420, PseudoPlanar)
#undef ODX_ALL
#undef ODX_ONE
    return all;
}

// Runs a conversion into a buffer that ends with the last byte it may write.
void expectDefinition(const Conversion& c, uint32_t width, uint32_t height)
{
    const Source source = c.make(width, height);
    const size_t size = c.pixels.size, stride = size * width + (c.subsampling != 0 ? size : 0);
    const uint32_t rows = height + (c.subsampling == 420 ? height % 2 : 0); // in pairs
    Bytes expected(stride * rows, 0x5A), dst = expected;
    for (uint32_t i = 0; i < width * rows; ++i) {
        const Bytes pixel = c.pixels.pixel(c.arithmetic(source.at(i % width, i / width)));
        std::copy(pixel.begin(), pixel.end(), &expected[i / width * stride + i % width * size]);
    }
    source.convert(dst.data(), static_cast<uint32_t>(stride));
    const auto at =
        static_cast<size_t>(std::mismatch(expected.begin(), expected.end(), dst.begin()).first - expected.begin());
    EXPECT_TRUE(expected == dst) << c.name << " of " << width << "x" << height << ", row " << at / stride
                                 << ", byte " << at % stride;
}

class ToRgb : public odx::test::ReferenceTest
{
};

// A large image for the formula; the others have odd rows and columns, and cut units.
TEST_F(ToRgb, FollowsItsFormulaAndItsLayout)
{
    ASSERT_EQ(26u, conversions().size());
    for (const Conversion& conversion : conversions()) {
        expectDefinition(conversion, 320, 900);
        for (uint32_t width : {1, 2, 3, 7, 8, 9, 16, 33, 66, 321}) {
            for (uint32_t height : {1, 2, 3, 8, 9, 17}) {
                if (!conversion.pairs() || width != 1) expectDefinition(conversion, width, height);
            }
        }
    }
}

// The chroma of an image in one buffer begins where its last row of luma ends, padding included. A destination
// stride of 11 moves on by two pixels.
TEST_F(ToRgb, StridesOfOneBuffer)
{
    constexpr uint8_t none = 77;
    const Bytes src = {16,  17,  none, 18,   19,  none, 20, 21, none, 22, 23, none, // luma
                       128, 128, none, none, 255, 128};                             // Cr and Cb
    // Red of the last ones is (4 * 1192 + 127 * 1634) >> 10 and so on; their green is below 0.
    const Bytes expected = {0,   0, 0, 255, 1,   1, 1, 255, 2,   2, 2, 255, 3,   3, 3, 255,
                            207, 0, 4, 255, 208, 0, 5, 255, 209, 0, 6, 255, 210, 0, 8, 255};
    Bytes dst(32);
    odxColorYCrCb420PseudoPlanarToRGB8888u8(src.data(), 2, 4, 3, 4, dst.data(), 11);
    EXPECT_EQ(expected, dst);
}

// Whatever column is selected.
TEST_F(ToRgb, OneColumnOfPairsEndsTheProcess)
{
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU}) {
        for (const Conversion& conversion : conversions()) {
            if (!conversion.pairs()) continue;
            expectEnd("ondrixColorC@[1-9][0-9]*: length > 1 Assertion failed\n", [&] {
                EXPECT_EQ(0, odxSetOperationMode(mode));
                Bytes dst(16);
                conversion.make(1, 2).convert(dst.data(), 0);
            });
        }
    }
}

} // namespace
