// What the conversions to RGB write, held to their definitions and to values worked by hand.
#include "color/toRgbModel.h"

#include "ondrix.h"

#include <gtest/gtest.h>

#include <random>

using namespace odx::test;

namespace
{

// Runs a conversion into a buffer that ends with the last byte it may write.
Bytes run(const Conversion& conversion, const Source& source)
{
    const uint32_t rows = source.height + source.height % conversion.rowsTogether;
    Bytes dst(static_cast<size_t>(conversion.pixels) * source.width * rows, 0x5A);
    conversion.convert(source, dst.data());
    return dst;
}

Bytes expected(const Conversion& conversion, const Source& source)
{
    const uint32_t rows = source.height + source.height % conversion.rowsTogether;
    Bytes bytes;
    for (uint32_t y = 0; y < rows; ++y) {
        for (uint32_t x = 0; x < source.width; ++x) {
            append(bytes, conversion.pixels, conversion.arithmetic(source.at(x, y)));
        }
    }
    return bytes;
}

// Empty when the conversion wrote what its definition says.
std::string firstDifference(const Conversion& conversion, const Source& source)
{
    const Bytes want = expected(conversion, source), got = run(conversion, source);
    const size_t i =
        static_cast<size_t>(std::mismatch(want.begin(), want.end(), got.begin()).first - want.begin());
    if (i == want.size()) return "";
    const uint32_t pixel = static_cast<uint32_t>(i / static_cast<size_t>(conversion.pixels));
    const uint32_t x = pixel % source.width, y = pixel / source.width;
    const Sample s = source.at(x, y);
    return "pixel (" + std::to_string(x) + ", " + std::to_string(y) + ") of " + std::to_string(source.width) +
           "x" + std::to_string(source.height) + ", from Y " + std::to_string(s.y) + " Cb " +
           std::to_string(s.cb) + " Cr " + std::to_string(s.cr) + ": byte " + std::to_string(i) + " is " +
           std::to_string(got[i]) + " in place of " + std::to_string(want[i]);
}

class ToRgb : public testing::TestWithParam<odxOperationMode>
{
protected:
    ToRgb() { EXPECT_EQ(0, odxSetOperationMode(GetParam())); }

    static const Conversion& named(const char* name)
    {
        static const std::vector<Conversion> all = toRgbConversions();
        for (const Conversion& conversion : all) {
            if (conversion.name == name) return conversion;
        }
        ADD_FAILURE() << name;
        return all.front();
    }
};

INSTANTIATE_TEST_SUITE_P(Columns, ToRgb, testing::Values(ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU),
                         [](const auto& mode) { return mode.param == ONDRIX_OP_EXT_CPU ? "Simd" : "Reference"; });

// Every luma with chroma of every ninth value, and with the values around the middle and the limits: a row for
// each pair of chroma.
TEST_P(ToRgb, FollowsItsFormulaOverTheWholeRange)
{
    std::vector<uint8_t> values = {1, 15, 16, 17, 64, 127, 128, 129, 240, 254, 255};
    for (int value = 0; value < 256; value += 9)
        values.push_back(static_cast<uint8_t>(value));
    const uint32_t count = static_cast<uint32_t>(values.size());
    for (const Conversion& conversion : toRgbConversions()) {
        const Content content = {[](uint32_t x, uint32_t) { return static_cast<uint8_t>(x); },
                                 [&](uint32_t, uint32_t y) { return values[y / count % count]; },
                                 [&](uint32_t, uint32_t y) { return values[y % count]; }};
        const auto source = conversion.make(256, count * count * conversion.down, content);
        EXPECT_EQ("", firstDifference(conversion, *source)) << conversion.name;
    }
}

// Sizes that are no multiples of anything: odd rows and columns, cut units, rows narrower than a vector.
TEST_P(ToRgb, FollowsItsLayoutAtEverySize)
{
    std::mt19937 random(7);
    const auto any = [&](uint32_t, uint32_t) { return static_cast<uint8_t>(random()); };
    for (const Conversion& conversion : toRgbConversions()) {
        const bool needsPair = conversion.arithmetic == fullRange && conversion.across == 2;
        for (uint32_t width : {1, 2, 3, 7, 8, 9, 16, 31, 32, 33, 34, 63, 65, 66, 67, 127, 131, 319, 321, 577}) {
            if (needsPair && width == 1) continue;
            for (uint32_t height : {1, 2, 3, 8, 9, 17}) {
                const auto source = conversion.make(width, height, {any, any, any});
                EXPECT_EQ("", firstDifference(conversion, *source)) << conversion.name;
            }
        }
    }
}

TEST_P(ToRgb, FullRangeByHand)
{
    const auto convert = [](uint8_t y, uint8_t cb, uint8_t cr) {
        Bytes dst(3);
        odxColorYCbCr444PlanarToRGB888u8(&y, &cb, &cr, 1, 1, 0, 0, 0, dst.data(), 0);
        return dst;
    };
    EXPECT_EQ((Bytes{255, 255, 255}), convert(255, 128, 128));
    EXPECT_EQ((Bytes{100, 100, 100}), convert(100, 128, 128));
    EXPECT_EQ((Bytes{0, 44, 0}), convert(0, 0, 128));    // (88 * 128 + 128) >> 8
    EXPECT_EQ((Bytes{0, 92, 0}), convert(0, 128, 0));    // (183 * 128 + 128) >> 8 = 23552 / 256
    EXPECT_EQ((Bytes{254, 0, 0}), convert(76, 85, 255)); // R (19456 + 45593 + 128) >> 8, G < 0, B < 0
}

TEST_P(ToRgb, VideoRangeByHand)
{
    // Chroma of 128 throughout; each luma fills an image, so that one column after the other has it.
    const auto filled = [](uint8_t luma) {
        Bytes src(64 * 2, luma);
        src.resize(64 * 3, 128);
        return src;
    };
    const auto word565 = [&](uint8_t luma) {
        Bytes dst(2 * 64 * 2);
        odxColorYUV420toRGB565u8(filled(luma).data(), 64, 2, dst.data());
        return dst[0] | dst[1] << 8;
    };
    EXPECT_EQ(0xFFFF, word565(235)); // 219 * 298 >> 8 = 254
    EXPECT_EQ(0x0000, word565(16));
    EXPECT_EQ(0x0000, word565(3));
    EXPECT_EQ(0x0841, word565(23)); // 7 * 298 >> 8 = 8: 1 of 31, 2 of 63, 1 of 31
    const auto word8888 = [&](uint8_t luma) {
        Bytes dst(4 * 64 * 2);
        odxColorYUV420toRGB8888u8(filled(luma).data(), 64, 2, dst.data());
        return Bytes(dst.begin(), dst.begin() + 4);
    };
    EXPECT_EQ((Bytes{0, 0, 0, 255}), word8888(16));
    EXPECT_EQ((Bytes{0, 0, 0, 255}), word8888(0));
    EXPECT_EQ((Bytes{1, 1, 1, 255}), word8888(17));        // 1192 >> 10
    EXPECT_EQ((Bytes{254, 254, 254, 255}), word8888(235)); // 219 * 1192 >> 10
}

TEST_P(ToRgb, PixelsOf565HaveRedInTheLowBits)
{
    const uint8_t y = 76, cb = 85, cr = 255; // (254, 0, 0)
    Bytes dst(2);
    odxColorYCbCr444PlanarToRGB565u8(&y, &cb, &cr, 1, 1, 0, 0, 0, dst.data(), 0);
    EXPECT_EQ((Bytes{31, 0}), dst);
}

TEST_P(ToRgb, TurnsTheImage)
{
    // Luma of 16, 58, 101 and 144 gives 0, 48, 98 and 149.
    const Bytes src = {16, 58, 101, 144, 128, 128};
    Bytes dst(8);
    odxColorYUV420toRGB565u8Rotate180(src.data(), 2, 2, dst.data());
    const auto grey = [](int value) { return value >> 3 | value >> 2 << 5 | value >> 3 << 11; };
    const auto word = [&](size_t i) { return dst[2 * i] | dst[2 * i + 1] << 8; };
    EXPECT_EQ(grey(149), word(0));
    EXPECT_EQ(grey(98), word(1));
    EXPECT_EQ(grey(48), word(2));
    EXPECT_EQ(grey(0), word(3));
}

// A chroma row of an odd image has a sample too many: it belongs to no pixel.
TEST_P(ToRgb, TheLastPixelOfAnOddRowSharesChroma)
{
    const Bytes y(3, 100), cb = {128, 0}, cr = {128, 255};
    Bytes dst(9);
    odxColorYCbCr422PlanarToRGB888u8(y.data(), cb.data(), cr.data(), 3, 1, 0, 0, 0, dst.data(), 0);
    EXPECT_EQ(Bytes(9, 100), dst);
}

TEST_P(ToRgb, PlanarAndPseudoPlanarImagesGiveTheSameBytes)
{
    std::mt19937 random(11);
    for (const char* layout : {"444", "422", "420"}) {
        for (const char* pixels : {"RGB565", "RGB888", "RGBA8888"}) {
            const auto name = [&](const char* chroma) {
                return std::string("odxColorYCbCr") + layout + chroma + "To" + pixels + "u8";
            };
            const Conversion &planar = named(name("Planar").c_str()),
                             &pseudoPlanar = named(name("PseudoPlanar").c_str());
            const uint32_t seed = random();
            const auto hash = [seed](uint32_t salt) {
                return [=](uint32_t x, uint32_t y) {
                    return static_cast<uint8_t>(((x * 31 + y * 17 + salt) * 2654435761u ^ seed) >> 13);
                };
            };
            const Content content = {hash(1), hash(2), hash(3)};
            EXPECT_EQ(run(planar, *planar.make(141, 7, content)),
                      run(pseudoPlanar, *pseudoPlanar.make(141, 7, content)))
                << name("Planar");
        }
    }
}

TEST_P(ToRgb, RowsOfStridedImagesLeaveTheRestAlone)
{
    constexpr uint32_t width = 70, height = 4, yStride = 75, cbStride = 40, crStride = 37, cStride = 73,
                       dstStride = 3 * width + 5;
    // Every pixel is of one value, and what lies beside the rows is of none.
    const auto plane = [](uint32_t stride, uint32_t rows, uint32_t length, uint8_t value) {
        Bytes bytes(stride * rows);
        for (uint32_t i = 0; i < bytes.size(); ++i)
            bytes[i] = i % stride < length ? value : 0;
        return bytes;
    };
    const Bytes y = plane(yStride, height, width, 50), cb = plane(cbStride, 2, 35, 128),
                cr = plane(crStride, 2, 35, 128), c = plane(cStride, 2, 70, 128);
    Bytes planar(dstStride * height, 9), pseudoPlanar = planar, expected = planar;
    for (uint32_t i = 0; i < expected.size(); ++i)
        expected[i] = i % dstStride < 3 * width ? 50 : 9;
    odxColorYCbCr420PlanarToRGB888u8(y.data(), cb.data(), cr.data(), width, height, yStride, cbStride, crStride,
                                     planar.data(), dstStride);
    EXPECT_EQ(expected, planar);
    odxColorYCbCr420PseudoPlanarToRGB888u8(y.data(), c.data(), width, height, yStride, cStride,
                                           pseudoPlanar.data(), dstStride);
    EXPECT_EQ(expected, pseudoPlanar);
}

// The chroma of an image in one buffer begins where its last row of luma ends, padding included.
TEST_P(ToRgb, ChromaFollowsThePaddingOfTheLuma)
{
    constexpr uint8_t none = 77;
    const Bytes src = {16,  17,  none, 18,   19,  none, 20, 21, none, 22, 23, none, // luma
                       128, 128, none, none, 255, 128};                             // Cr and Cb
    Bytes dst(4 * 2 * 4);
    odxColorYCrCb420PseudoPlanarToRGB8888u8(src.data(), 2, 4, 3, 4, dst.data(), 8);
    const Bytes grey = {0, 0, 0, 255, 1, 1, 1, 255, 2, 2, 2, 255, 3, 3, 3, 255};
    EXPECT_EQ(grey, Bytes(dst.begin(), dst.begin() + 16));
    // Red (4 * 1192 + 127 * 1634) >> 10 and so on; green and blue: green is below 0.
    EXPECT_EQ((Bytes{207, 0, 4, 255, 208, 0, 5, 255, 209, 0, 6, 255, 210, 0, 8, 255}),
              Bytes(dst.begin() + 16, dst.end()));
}

// A destination stride of 11 moves on by two pixels.
TEST_P(ToRgb, StridesOf8888RowsCountWholePixels)
{
    const Bytes src = {16, 17, 18, 19, 128, 128};
    Bytes dst(16);
    odxColorYCrCb420PseudoPlanarToRGB8888u8(src.data(), 2, 2, 2, 2, dst.data(), 11);
    EXPECT_EQ((Bytes{0, 0, 0, 255, 1, 1, 1, 255, 2, 2, 2, 255, 3, 3, 3, 255}), dst);
}

} // namespace
