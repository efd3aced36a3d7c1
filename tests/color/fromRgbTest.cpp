// The conversions from RGB against their definitions, by the reference and by the SIMD column.
#include "color/fromRgbModels.h"

#include "cpu/ondrixColorFromRgbC.h"
#include "ondrix/modes.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>

using namespace odx::test;

namespace
{

// Runs with the reference and with the SIMD column.
class FromRgb : public testing::TestWithParam<odxOperationMode>
{
protected:
    FromRgb() { EXPECT_EQ(0, odxSetOperationMode(GetParam())); }
};
INSTANTIATE_TEST_SUITE_P(Columns, FromRgb, testing::Values(ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU),
                         [](const auto& mode) {
                             return mode.param == ONDRIX_OP_EXT_CPU ? std::string("simd")
                                                                    : std::string("reference");
                         });

constexpr PixelLayout kRgb888 = {3, true}, kRgba8888 = {4, true};

// What these names mean as sources of luma and chroma, and everywhere else.
namespace blueFirst
{
constexpr PixelLayout RGB565 = {2, false, false}, RGB888 = {3, false}, RGBA8888 = {4, false};
}
namespace byName
{
constexpr PixelLayout RGB565 = {2, true}, RGB888 = kRgb888, RGBA8888 = kRgba8888, BGR565 = {2, false},
                      BGR888 = {3, false}, BGRA8888 = {4, false};
}

using PackedOperation = void(const uint8_t*, uint32_t, uint32_t, uint32_t, uint8_t*, uint32_t);

// Converts an image of the palette and compares every pixel with the model's bytes.
void expectPixels(const char* name, PackedOperation* operation, const PixelLayout& layout, const Palette& palette,
                  const std::function<Bytes(const Colour&)>& model)
{
    const Bytes src = layout.image(palette);
    const size_t size = model(palette.colours[0]).size();
    Bytes dst(palette.colours.size() * size, 0x5A);
    operation(src.data(), Palette::kWidth, palette.height(), 0, dst.data(), 0);
    for (size_t i = 0; i < palette.colours.size(); ++i) {
        const Colour& c = palette.colours[i];
        const Bytes actual(dst.begin() + static_cast<ptrdiff_t>(i * size),
                           dst.begin() + static_cast<ptrdiff_t>((i + 1) * size));
        ASSERT_EQ(model(c), actual) << name << " of " << c.r << ", " << c.g << ", " << c.b;
    }
}

template <class Array>
Bytes bytesOf(const Array& array)
{
    return Bytes(array.begin(), array.end());
}

// ---- luma and chroma ----

// A luma and chroma image with `pairs` or planes of chroma, strided so that every plane has unused columns.
struct Destination {
    uint32_t width, height, across, down;
    bool pairs;
    uint32_t yStride = width + 5, cStride = (pairs ? 2 : 1) * (width / across) + 3;
    Bytes y = Bytes(size_t{yStride} * height, 0x5A);
    Bytes cb = Bytes(size_t{cStride} * ((height + down - 1) / down), 0x5A), cr = cb;
};

void expectYCbCr(const Destination& dst, const PixelLayout& layout, const Palette& palette, const char* name)
{
    Destination expected = {dst.width, dst.height, dst.across, dst.down, dst.pairs};
    for (uint32_t row = 0; row < dst.height; ++row) {
        for (uint32_t x = 0; x < dst.width; ++x) {
            const auto value = yCbCrOf(layout.rounded(palette.at(x, row)));
            expected.y[size_t{dst.yStride} * row + x] = value[0];
            if (x % dst.across != 0 || row % dst.down != 0) continue;
            const size_t start = size_t{dst.cStride} * (row / dst.down), i = x / dst.across;
            if (dst.pairs) {
                expected.cb[start + 2 * i] = value[1];
                expected.cb[start + 2 * i + 1] = value[2];
            } else {
                expected.cb[start + i] = value[1];
                expected.cr[start + i] = value[2];
            }
        }
    }
    EXPECT_TRUE(expected.y == dst.y) << name << ": luma";
    EXPECT_TRUE(expected.cb == dst.cb && expected.cr == dst.cr) << name << ": chroma";
}

TEST_P(FromRgb, LumaAndChromaFollowTheirFormula)
{
    const Palette palette(5);
    const uint32_t height = palette.height();
    ASSERT_EQ(1u, height % 2) << "an odd height is wanted";
    const auto check = [&](const char* name, const PixelLayout& layout, uint32_t subsampling, bool pairs,
                           const auto& convert) {
        Destination dst = {Palette::kWidth, height, subsampling == 444 ? 1u : 2u, subsampling == 420 ? 2u : 1u,
                           pairs};
        const Bytes src = layout.image(palette);
        convert(src.data(), dst);
        expectYCbCr(dst, layout, palette, name);
    };
#define ODX_CASE(pixels, subsampling, source, rows)                                                            \
    check("odxColor" #pixels "ToYCbCr" #subsampling "Planaru8", blueFirst::pixels, subsampling, false,         \
          [](const uint8_t* src, Destination& d) {                                                             \
              odxColor##pixels##ToYCbCr##subsampling##Planaru8(src, d.width, d.height, 0, d.y.data(),          \
                                                               d.cb.data(), d.cr.data(), d.yStride, d.cStride, \
                                                               d.cStride);                                     \
          });                                                                                                  \
    check("odxColor" #pixels "ToYCbCr" #subsampling "PseudoPlanaru8", blueFirst::pixels, subsampling, true,    \
          [](const uint8_t* src, Destination& d) {                                                             \
              odxColor##pixels##ToYCbCr##subsampling##PseudoPlanaru8(src, d.width, d.height, 0, d.y.data(),    \
                                                                     d.cb.data(), d.yStride, d.cStride);       \
          });
    ODX_RGB_TO_YCBCR(ODX_CASE)
#undef ODX_CASE
}

// Where pairs of pixels share chroma; rows that only have luma do without pairs.
TEST_P(FromRgb, RowsOfOddWidthStayUnwritten)
{
    constexpr uint32_t kWidth = 7, kHeight = 3;
    const Bytes src(4 * kWidth * kHeight, 9);
    const Bytes untouched(2 * kWidth * kHeight, 0x5A);
    const auto check = [&](const char* name, int subsampling, const auto& convert) {
        Bytes y = untouched, c = untouched, cr = untouched;
        convert(y.data(), c.data(), cr.data());
        for (uint32_t row = 0; row < kHeight; ++row) {
            const bool written = subsampling == 444 || (subsampling == 420 && row % 2 == 1);
            const auto pixels = y.begin() + row * kWidth;
            EXPECT_EQ(written ? 0 : kWidth, std::count(pixels, pixels + kWidth, 0x5A)) << name << " " << row;
        }
        EXPECT_EQ(subsampling == 444, c != untouched) << name;
    };
#define ODX_CASE(pixels, subsampling, source, rows)                                                               \
    check("odxColor" #pixels "ToYCbCr" #subsampling "Planaru8", subsampling,                                      \
          [&](uint8_t* y, uint8_t* cb, uint8_t* cr) {                                                             \
              odxColor##pixels##ToYCbCr##subsampling##Planaru8(src.data(), kWidth, kHeight, 0, y, cb, cr, 0, 0,   \
                                                               0);                                                \
          });                                                                                                     \
    check("odxColor" #pixels "ToYCbCr" #subsampling "PseudoPlanaru8", subsampling,                                \
          [&](uint8_t* y, uint8_t* c, uint8_t*) {                                                                 \
              odxColor##pixels##ToYCbCr##subsampling##PseudoPlanaru8(src.data(), kWidth, kHeight, 0, y, c, 0, 0); \
          });
    ODX_RGB_TO_YCBCR(ODX_CASE)
#undef ODX_CASE
}

// ---- other colour spaces ----

TEST_P(FromRgb, GreyYCrCbAndHsvFollowTheirFormulas)
{
    const Palette palette(5);
    expectPixels("grey", odxColorRGB888ToGrayu8, kRgb888, palette,
                 [](const Colour& c) { return Bytes{greyOf(c)}; });
    expectPixels("YCrCb", odxColorRGB888toYCrCbu8_v2, kRgb888, palette,
                 [](const Colour& c) { return bytesOf(yCrCbOf(c)); });
    expectPixels("HSV", odxColorRGB888ToHSV888u8, kRgb888, palette,
                 [](const Colour& c) { return bytesOf(hsvOf(c)); });
}

// Each pair of a greatest value and a difference, in each sixth of the circle, is a reciprocal and a product of
// its own.
TEST_P(FromRgb, HsvOfEveryReciprocal)
{
    Bytes src;
    std::vector<Colour> colours;
    for (int most = 0; most < 256; ++most) {
        for (int least = 0; least <= most; ++least) {
            const int middle = least + (most - least) * (most % 7) / 6;
            const int orders[6][3] = {{most, middle, least}, {middle, most, least}, {least, most, middle},
                                      {least, middle, most}, {middle, least, most}, {most, least, middle}};
            for (const auto& o : orders) {
                colours.push_back({o[0], o[1], o[2]});
                for (int channel : o)
                    src.push_back(byte(channel));
            }
        }
    }
    const uint32_t width = static_cast<uint32_t>(colours.size());
    Bytes dst(src.size());
    odxColorRGB888ToHSV888u8(src.data(), width, 1, 0, dst.data(), 0);
    for (size_t i = 0; i < width; ++i) {
        const auto expected = hsvOf(colours[i]);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), &dst[3 * i]))
            << colours[i].r << ", " << colours[i].g << ", " << colours[i].b;
    }
}

TEST_P(FromRgb, WorkedExamples)
{
    const auto convert = [](PackedOperation* operation, Bytes pixel, size_t size) {
        Bytes result(size);
        operation(pixel.data(), 1, 1, 0, result.data(), 0);
        return result;
    };
    const auto yCbCr = [](Bytes pixel) {
        Bytes r(3);
        odxColorRGB888ToYCbCr444Planaru8(pixel.data(), 1, 1, 0, &r[0], &r[1], &r[2], 0, 0, 0);
        return r;
    };
    EXPECT_EQ((Bytes{255, 128, 128}), yCbCr({255, 255, 255}));
    EXPECT_EQ((Bytes{77, 85, 255}), yCbCr({0, 0, 255})) << "red is the third byte";
    EXPECT_EQ((Bytes{29, 255, 107}), yCbCr({255, 0, 0}));
    EXPECT_EQ((Bytes{255}), convert(odxColorRGB888ToGrayu8, {255, 255, 255}, 1));
    EXPECT_EQ((Bytes{76}), convert(odxColorRGB888ToGrayu8, {255, 0, 0}, 1));
    EXPECT_EQ((Bytes{76, 255, 85}), convert(odxColorRGB888toYCrCbu8_v2, {255, 0, 0}, 3));
    EXPECT_EQ((Bytes{0, 255, 255}), convert(odxColorRGB888ToHSV888u8, {255, 0, 0}, 3));
    EXPECT_EQ((Bytes{85, 255, 255}), convert(odxColorRGB888ToHSV888u8, {0, 255, 0}, 3));
    EXPECT_EQ((Bytes{170, 255, 255}), convert(odxColorRGB888ToHSV888u8, {0, 0, 255}, 3));
    EXPECT_EQ((Bytes{0, 0, 77}), convert(odxColorRGB888ToHSV888u8, {77, 77, 77}, 3));
    EXPECT_EQ((Bytes{0x1F, 0x00}), convert(odxColorRGB888ToRGB565u8, {255, 0, 0}, 2));
    EXPECT_EQ((Bytes{0x00, 0xF8}), convert(odxColorRGB888ToBGR565u8, {255, 0, 0}, 2));
    EXPECT_EQ((Bytes{255, 255, 255, 255}), convert(odxColorRGB565ToRGBA8888u8, {0xFF, 0xFF}, 4));
    EXPECT_EQ((Bytes{8, 4, 8}), convert(odxColorRGB565ToRGB888u8, {0x21, 0x08}, 3)) << "the lowest bits set";
}

TEST_P(FromRgb, WorksInPlaceWhereItSaysSo)
{
    const Palette palette(15);
    const uint32_t width = Palette::kWidth, height = palette.height();
    const auto check = [&](PackedOperation* operation, const PixelLayout& layout) {
        Bytes image = layout.image(palette), other(image.size());
        operation(image.data(), width, height, 0, other.data(), 0);
        operation(image.data(), width, height, 0, image.data(), 0);
        EXPECT_TRUE(other == image);
    };
    check(odxColorRGB888toYCrCbu8_v2, kRgb888);
    check(odxColorRGB888ToHSV888u8, kRgb888);
    check(odxColorCbCrSwapu8, byName::RGB565);
    Bytes image = kRgb888.image(palette), other(image.size());
    odxColorRGB888toYCrCbu8(image.data(), width, height, other.data());
    odxColorRGB888toYCrCbu8(image.data(), width, height, image.data());
    EXPECT_TRUE(other == image);
}

// ---- L*a*b* ----

std::array<double, 3> exactLab(const Colour& c)
{
    const auto light = [](int64_t value) {
        const double v = static_cast<double>(value) / 255;
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    const auto f = [](double t) { return t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116; };
    const double r = light(c.r), g = light(c.g), b = light(c.b);
    const double fx = f((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / 0.95047);
    const double fy = f(0.2126729 * r + 0.7151522 * g + 0.0721750 * b);
    const double fz = f((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / 1.08883);
    return {(116 * fy - 16) * 255 / 100, 500 * (fx - fy) + 128, 200 * (fy - fz) + 128};
}

TEST_P(FromRgb, LabIsTheRoundedExactValueButForTheStatedError)
{
    const Palette palette(3);
    const Bytes src = kRgba8888.image(palette);
    Bytes dst(3 * palette.colours.size());
    odxColorRGBA8888ToLABu8(src.data(), Palette::kWidth, palette.height(), 0, dst.data(), 0);
    double worst = 0;
    for (size_t i = 0; i < palette.colours.size(); ++i) {
        const auto exact = exactLab(palette.colours[i]);
        for (size_t k = 0; k < 3; ++k)
            worst = std::max(worst, std::abs(exact[k] - dst[3 * i + k]));
    }
    EXPECT_LE(worst, 0.53);
}

TEST_P(FromRgb, LabOfGreysAndPrimaries)
{
    Bytes src, dst(3 * 256);
    for (int grey = 0; grey < 256; ++grey)
        src.insert(src.end(), {byte(grey), byte(grey), byte(grey), 0});
    odxColorRGBA8888ToLABu8(src.data(), 256, 1, 0, dst.data(), 0);
    for (size_t grey = 0; grey < 256; ++grey) {
        EXPECT_EQ(128, dst[3 * grey + 1]);
        EXPECT_EQ(128, dst[3 * grey + 2]);
        EXPECT_GE(dst[3 * grey], dst[3 * (grey > 0 ? grey - 1 : 0)]);
    }
    EXPECT_EQ(0, dst[0]);
    EXPECT_EQ(255, dst[3 * 255]);

    // L*a*b* of red is 53.24, 80.09, 67.20; of green 87.73, -86.18, 83.18; of blue 32.30, 79.19, -107.86.
    const Bytes primaries = {255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0};
    odxColorRGBA8888ToLABu8(primaries.data(), 3, 1, 0, dst.data(), 0);
    dst.resize(9);
    EXPECT_EQ((Bytes{136, 208, 195, 224, 42, 211, 82, 207, 20}), dst);

    // The same in a column of three rows.
    Bytes column(3 * 8, 77), strided(3 * 5, 77);
    for (size_t i = 0; i < 3; ++i)
        std::copy_n(&primaries[4 * i], 4, &column[8 * i]);
    odxColorRGBA8888ToLABu8(column.data(), 1, 3, 8, strided.data(), 5);
    EXPECT_EQ((Bytes{136, 208, 195, 77, 77, 224, 42, 211, 77, 77, 82, 207, 20, 77, 77}), strided);
}

// ---- repacking ----

TEST_P(FromRgb, RepackingKeepsColours)
{
    const Palette palette(5);
    const auto check = [&](const char* name, PackedOperation* operation, const PixelLayout& from,
                           const PixelLayout& to) {
        expectPixels(name, operation, from, palette, [&](const Colour& c) { return to.pixel(from.rounded(c)); });
    };
#define ODX_CASE(from, to) check(#from " to " #to, odxColor##from##To##to##u8, byName::from, byName::to);
    ODX_RGB_TO_RGB(ODX_CASE)
#undef ODX_CASE
}

// Every width up to more than two groups of any implementation, each in a buffer of its own.
TEST_P(FromRgb, RepackingOfEveryWidth)
{
    const Palette palette(51);
    const auto check = [&](const char* name, PackedOperation* operation, const PixelLayout& from,
                           const PixelLayout& to) {
        const Bytes image = from.image(palette);
        for (uint32_t width = 1; width <= 140; ++width) {
            const Bytes src(image.begin(), image.begin() + static_cast<ptrdiff_t>(width * from.size));
            Bytes dst(width * to.size), expected;
            operation(src.data(), width, 1, 0, dst.data(), 0);
            for (uint32_t x = 0; x < width; ++x) {
                const Bytes pixel = to.pixel(from.rounded(palette.colours[x]));
                expected.insert(expected.end(), pixel.begin(), pixel.end());
            }
            ASSERT_EQ(expected, dst) << name << ", width " << width;
        }
    };
#define ODX_CASE(from, to) check(#from " to " #to, odxColor##from##To##to##u8, byName::from, byName::to);
    ODX_RGB_TO_RGB(ODX_CASE)
#undef ODX_CASE
}

TEST_P(FromRgb, Rotate180TurnsTheImage)
{
    const Palette palette(15);
    const size_t width = Palette::kWidth, height = palette.height();
    Bytes turned(2 * palette.colours.size()), straight(turned.size()), src = kRgb888.image(palette);
    odxColorRGB888ToRGB565Rotate180u8(src.data(), Palette::kWidth, palette.height(), 0, turned.data(), 0);
    odxColorRGB888ToRGB565u8(src.data(), Palette::kWidth, palette.height(), 0, straight.data(), 0);
    for (size_t i = 0; i < width * height; ++i) {
        const size_t j = width * height - 1 - i;
        ASSERT_EQ(straight[2 * i] | straight[2 * i + 1] << 8, turned[2 * j] | turned[2 * j + 1] << 8) << i;
    }
}

} // namespace
