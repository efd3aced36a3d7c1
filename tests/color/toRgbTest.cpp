// The conversions to RGB, one pixel after the other: held to their formulas, with plain division. The other
// columns are held to the reference by the differential test.
#include "ondrix.h"
#include "support/childProcess.h"
#include "support/referenceTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>

using namespace odx::test;

namespace
{

using Bytes = std::vector<uint8_t>;

struct Sample {
    int64_t y, cb, cr;
};
using Rgb = std::array<int64_t, 3>;

// ---- arithmetics ----

int64_t floorOf(int64_t dividend, int64_t divisor)
{
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}
Rgb clamped(int64_t r, int64_t g, int64_t b)
{
    const auto byte = [](int64_t value) { return std::clamp<int64_t>(value, 0, 255); };
    return {byte(r), byte(g), byte(b)};
}
Rgb fullRange(Sample s)
{
    const int64_t u = s.cb - 128, v = s.cr - 128, luma = 256 * s.y + 128;
    return clamped(floorOf(luma + 359 * v, 256), floorOf(luma - 88 * u - 183 * v, 256),
                   floorOf(luma + 454 * u, 256));
}
Rgb videoRange(Sample s)
{
    const int64_t u = s.cb - 128, v = s.cr - 128, c = (s.y - 16) * 298;
    return clamped(floorOf(c + 409 * v, 256), floorOf(c - 208 * v - 100 * u, 256), floorOf(c + 517 * u, 256));
}
Rgb videoRangeFine(Sample s)
{
    const int64_t u = s.cb - 128, v = s.cr - 128, c = (std::max<int64_t>(s.y, 16) - 16) * 1192;
    return clamped(floorOf(c + 1634 * v, 1024), floorOf(c - 833 * v - 400 * u, 1024), floorOf(c + 2066 * u, 1024));
}
Rgb jpeg(Sample s)
{
    const int64_t b = 2 * s.cb - 255, r = 2 * s.cr - 255;
    return clamped(s.y + floorOf(22970 * r + 16384, 32768), s.y + floorOf(-5638 * b - 11700 * r + 16384, 32768),
                   s.y + floorOf(29032 * b + 16384, 32768));
}

// ---- images ----

enum Pixels { RGB565 = 2, RGB888 = 3, RGBA8888 = 4 }; // sizes

Bytes pixelOf(Pixels pixels, Rgb c)
{
    const int64_t word = c[0] / 8 + c[1] / 4 * 32 + c[2] / 8 * 2048;
    if (pixels == RGB565) return {static_cast<uint8_t>(word % 256), static_cast<uint8_t>(word / 256)};
    Bytes bytes(c.begin(), c.end());
    if (pixels == RGBA8888) bytes.push_back(255);
    return bytes;
}

// What an image shows: luma at (x, y), chroma at the coordinates of its samples.
struct Content {
    std::function<uint8_t(uint32_t x, uint32_t y)> y, cb, cr;
};

// An image in one of the source layouts, in buffers without a byte to spare but that of each row.
struct Source {
    uint32_t width, height;
    Bytes buffers[3] = {};
    uint32_t strides[3] = {};
    std::function<Sample(uint32_t x, uint32_t y)> at = {}; // what the layout says of a pixel
};
using SourcePointer = std::unique_ptr<Source>;

// A conversion and its definition.
struct Conversion {
    std::string name;
    Pixels pixels;
    Rgb (*arithmetic)(Sample);
    uint32_t across, down; // pixels of a chroma sample
    std::function<SourcePointer(uint32_t width, uint32_t height, const Content&)> make;
    std::function<void(const Source&, uint8_t* dst, uint32_t dstStride)> convert;
    bool strided = false;

    bool pairs() const { return strided && across == 2; } // rows of pairs need one
};

uint32_t groupsOf(uint32_t size, uint32_t count)
{
    return (count + size - 1) / size;
}

// Rows of `width` values and some that are none.
Bytes rowsOf(uint32_t width, uint32_t stride, uint32_t rows, const std::function<uint8_t(uint32_t, uint32_t)>& at)
{
    Bytes bytes(stride * rows, 0x99);
    for (uint32_t i = 0; i < width * rows; ++i)
        bytes[i / width * stride + i % width] = at(i % width, i / width);
    return bytes;
}

// Planes, or a plane of luma and one of pairs. In rows of pairs, the last pixel of an odd row has no sample of its
// own.
SourcePointer planarSource(Source s, bool pairs, uint32_t across, uint32_t down, const Content& content)
{
    const uint32_t rows = groupsOf(down, s.height), columns = pairs ? s.width / across : groupsOf(across, s.width);
    s.strides[0] = s.width + 5;
    s.strides[1] = columns * (pairs ? 2 : 1) + 3;
    s.strides[2] = columns + 2;
    s.buffers[0] = rowsOf(s.width, s.strides[0], rows * down, content.y);
    const auto both = [&](uint32_t i, uint32_t y) { return (i % 2 == 0 ? content.cb : content.cr)(i / 2, y); };
    s.buffers[1] =
        pairs ? rowsOf(2 * columns, s.strides[1], rows, both) : rowsOf(columns, s.strides[1], rows, content.cb);
    s.buffers[2] = pairs ? Bytes() : rowsOf(columns, s.strides[2], rows, content.cr);
    auto source = std::make_unique<Source>(std::move(s));
    source->at = [=, &i = *source](uint32_t x, uint32_t y) -> Sample {
        const uint32_t at = across == 2 ? std::min(x / 2, i.width / 2 - 1) : x, row = y / down;
        const uint8_t luma = i.buffers[0][i.strides[0] * y + x], *const c = &i.buffers[1][i.strides[1] * row];
        if (pairs) return {luma, c[2 * at], c[2 * at + 1]};
        return {luma, c[at], i.buffers[2][i.strides[2] * row + at]};
    };
    return source;
}

// Chroma rows of `width` bytes after the luma; where the width is odd, the last pair of a row ends in the next
// one.
SourcePointer singleBufferSource(Source s, bool crFirst, const Content& content)
{
    const uint32_t width = s.width, luma = s.width * s.height;
    s.strides[0] = width;
    s.buffers[0] = rowsOf(width, width, s.height + groupsOf(2, s.height), [=](uint32_t x, uint32_t y) {
        if (y < s.height) return content.y(x, y);
        return ((x % 2 == 0) != crFirst ? content.cb : content.cr)(x / 2, y - s.height);
    });
    if (width % 2 != 0) s.buffers[0].push_back(content.cr(width / 2, s.height / 2));
    auto source = std::make_unique<Source>(std::move(s));
    source->at = [=, &b = source->buffers[0]](uint32_t x, uint32_t y) -> Sample {
        const uint8_t* pair = &b[luma + width * (y / 2) + x / 2 * 2];
        return {b[width * y + x], pair[crFirst ? 1 : 0], pair[crFirst ? 0 : 1]};
    };
    return source;
}

SourcePointer codedSource(Source s, uint32_t across, uint32_t down, const Content& content)
{
    const uint32_t blocks = across * down, unitSize = 64 * (blocks + 2);
    const uint32_t unitsWide = groupsOf(8 * across, s.width), unitsHigh = groupsOf(8 * down, s.height);
    const uint32_t advance = unitSize * (blocks == 1 ? s.width / 8 : unitsWide);
    Bytes& bytes = s.buffers[0];
    bytes.resize(advance * (unitsHigh - 1) + unitSize * unitsWide);
    const auto lumaPlace = [=](uint32_t x, uint32_t y) {
        const uint32_t unit = advance * (y / (8 * down)) + unitSize * (x / (8 * across));
        const uint32_t block = y / 8 % down * across + x / 8 % across;
        return unit + 64 * block + 8 * (y % 8) + x % 8;
    };
    const auto chromaPlace = [=](uint32_t x, uint32_t y) { // of Cb; that of Cr is one block on
        return advance * (y / 8) + unitSize * (x / 8) + 64 * blocks + 8 * (y % 8) + x % 8;
    };
    for (uint32_t y = 0; y < 8 * down * unitsHigh; ++y) {
        for (uint32_t x = 0; x < 8 * across * unitsWide; ++x) {
            bytes[lumaPlace(x, y)] = content.y(x, y);
            if (x % across != 0 || y % down != 0) continue;
            const uint32_t chroma = chromaPlace(x / across, y / down);
            bytes[chroma] = content.cb(x / across, y / down);
            bytes[chroma + 64] = content.cr(x / across, y / down);
        }
    }
    auto source = std::make_unique<Source>(std::move(s));
    source->at = [=, &b = source->buffers[0]](uint32_t x, uint32_t y) -> Sample {
        const uint32_t chroma = chromaPlace(x / across, y / down);
        return {b[lumaPlace(x, y)], b[chroma], b[chroma + 64]};
    };
    return source;
}

// ---- the table ----

Conversion conversion(const char* name, Pixels pixels, uint32_t across, uint32_t down,
                      decltype(odxColorYCbCr444PlanarToRGB888u8)* function)
{
    const auto make = [=](uint32_t w, uint32_t h, const Content& c) {
        return planarSource({w, h}, false, across, down, c);
    };
    const auto convert = [=](const Source& s, uint8_t* dst, uint32_t dstStride) {
        function(s.buffers[0].data(), s.buffers[1].data(), s.buffers[2].data(), s.width, s.height, s.strides[0],
                 s.strides[1], s.strides[2], dst, dstStride);
    };
    return {name, pixels, fullRange, across, down, make, convert, true};
}

Conversion conversion(const char* name, Pixels pixels, uint32_t across, uint32_t down,
                      decltype(odxColorYCbCr444PseudoPlanarToRGB888u8)* function)
{
    const auto make = [=](uint32_t w, uint32_t h, const Content& c) {
        return planarSource({w, h}, true, across, down, c);
    };
    const auto convert = [=](const Source& s, uint8_t* dst, uint32_t dstStride) {
        function(s.buffers[0].data(), s.buffers[1].data(), s.width, s.height, s.strides[0], s.strides[1], dst,
                 dstStride);
    };
    return {name, pixels, fullRange, across, down, make, convert, true};
}

using Packed = decltype(odxColorYUV420toRGB8888u8);

auto call(Packed* function)
{
    return [=](const Source& s, uint8_t* dst, uint32_t) { function(s.buffers[0].data(), s.width, s.height, dst); };
}

Conversion singleBuffer(const char* name, Pixels pixels, Rgb (*arithmetic)(Sample), bool crFirst, Packed* function)
{
    const auto make = [=](uint32_t w, uint32_t h, const Content& c) {
        return singleBufferSource({w, h}, crFirst, c);
    };
    return {name, pixels, arithmetic, 2, 2, make, call(function)};
}

// A turned image is one whose pixel (x, y) is the other's (width - 1 - x, height - 1 - y).
Conversion turned(Conversion conversion)
{
    conversion.make = [make = conversion.make](uint32_t width, uint32_t height, const Content& content) {
        SourcePointer source = make(width, height, content);
        source->at = [at = source->at, width, height](uint32_t x, uint32_t y) {
            return at(width - 1 - x, height - 1 - y);
        };
        return source;
    };
    return conversion;
}

Conversion coded(const char* name, uint32_t across, uint32_t down, Packed* function)
{
    const auto make = [=](uint32_t w, uint32_t h, const Content& c) {
        return codedSource({w, h}, across, down, c);
    };
    return {name, RGB888, jpeg, across, down, make, call(function)};
}

// All 26.
std::vector<Conversion> conversions()
{
    std::vector<Conversion> all;
#define ODX_ONE(subsampling, across, down, layout, pixels)                       \
    all.push_back(conversion(#subsampling #layout #pixels, pixels, across, down, \
                             odxColorYCbCr##subsampling##layout##To##pixels##u8));
#define ODX_ALL(subsampling, across, down)                   \
    ODX_ONE(subsampling, across, down, Planar, RGB565)       \
    ODX_ONE(subsampling, across, down, PseudoPlanar, RGB565) \
    ODX_ONE(subsampling, across, down, Planar, RGB888)       \
    ODX_ONE(subsampling, across, down, PseudoPlanar, RGB888) \
    ODX_ONE(subsampling, across, down, Planar, RGBA8888)     \
    ODX_ONE(subsampling, across, down, PseudoPlanar, RGBA8888)
    ODX_ALL(444, 1, 1)
    ODX_ALL(422, 2, 1)
    ODX_ALL(420, 2, 2)
#undef ODX_ALL
#undef ODX_ONE
    all.push_back(singleBuffer("565", RGB565, videoRange, false, odxColorYUV420toRGB565u8));
    all.push_back(turned(singleBuffer("turned", RGB565, videoRange, false, odxColorYUV420toRGB565u8Rotate180)));
    all.push_back(singleBuffer("8888", RGBA8888, videoRangeFine, true, odxColorYUV420toRGB8888u8));
    Conversion strided = all.back();
    strided.name = "8888 with strides";
    strided.convert = [](const Source& s, uint8_t* dst, uint32_t) {
        odxColorYCrCb420PseudoPlanarToRGB8888u8(s.buffers[0].data(), s.width, s.height, s.width, s.width, dst,
                                                4 * s.width);
    };
    all.push_back(strided);
    all.push_back(coded("H1V1", 1, 1, odxColorYCrCbH1V1toRGB888u8));
    all.push_back(coded("H2V2", 2, 2, odxColorYCrCbH2V2toRGB888u8));
    all.push_back(coded("H2V1", 2, 1, odxColorYCrCbH2V1toRGB888u8));
    all.push_back(coded("H1V2", 1, 2, odxColorYCrCbH1V2toRGB888u8));
    return all;
}

// Runs a conversion into a buffer that ends with the last byte it may write.
void expectDefinition(const Conversion& c, const Source& s)
{
    const uint32_t size = static_cast<uint32_t>(c.pixels), stride = size * s.width + (c.strided ? size : 0);
    const uint32_t rows = c.strided ? groupsOf(c.down, s.height) * c.down : s.height; // in groups
    Bytes expected(stride * rows, 0x5A), dst = expected;
    for (uint32_t i = 0; i < s.width * rows; ++i) {
        const Bytes pixel = pixelOf(c.pixels, c.arithmetic(s.at(i % s.width, i / s.width)));
        std::copy(pixel.begin(), pixel.end(), &expected[i / s.width * stride + i % s.width * size]);
    }
    c.convert(s, dst.data(), stride);
    const auto at = std::mismatch(expected.begin(), expected.end(), dst.begin()).first - expected.begin();
    EXPECT_TRUE(expected == dst) << c.name << " of " << s.width << "x" << s.height << ", row " << at / stride
                                 << ", byte " << at % stride;
}

class ToRgb : public odx::test::ReferenceTest
{
};

// Every luma with chroma of every ninth value, and with the values around the middle and the limits: a row for
// each pair of chroma.
TEST_F(ToRgb, FollowsItsFormulaOverTheWholeRange)
{
    Bytes values = {1, 15, 16, 17, 64, 127, 128, 129, 240, 254, 255};
    for (int value = 0; value < 256; value += 9)
        values.push_back(static_cast<uint8_t>(value));
    const uint32_t count = static_cast<uint32_t>(values.size());
    ASSERT_EQ(26u, conversions().size());
    for (const Conversion& conversion : conversions()) {
        const Content content = {[](uint32_t x, uint32_t) { return static_cast<uint8_t>(x); },
                                 [&](uint32_t, uint32_t y) { return values[y / count % count]; },
                                 [&](uint32_t, uint32_t y) { return values[y % count]; }};
        expectDefinition(conversion, *conversion.make(256, count * count * conversion.down, content));
    }
}

// Sizes that are no multiples of anything: odd rows and columns, cut units.
TEST_F(ToRgb, FollowsItsLayoutAtEverySize)
{
    std::mt19937 random(7);
    const auto any = [&](uint32_t, uint32_t) { return static_cast<uint8_t>(random()); };
    for (const Conversion& conversion : conversions()) {
        for (uint32_t width : {1, 2, 3, 7, 8, 9, 16, 33, 66, 321}) {
            for (uint32_t height : {1, 2, 3, 8, 9, 17}) {
                if (conversion.pairs() && width == 1) continue;
                expectDefinition(conversion, *conversion.make(width, height, {any, any, any}));
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
    const auto grey = [](uint32_t, uint32_t) { return 128; };
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU}) {
        for (const Conversion& conversion : conversions()) {
            if (!conversion.pairs()) continue;
            const auto source = conversion.make(2, 2, {grey, grey, grey});
            source->width = 1;
            expectEnd("ondrixColorC@[1-9][0-9]*: length > 1 Assertion failed\n", [&] {
                EXPECT_EQ(0, odxSetOperationMode(mode));
                Bytes dst(16);
                conversion.convert(*source, dst.data(), 0);
            });
        }
    }
}

} // namespace
