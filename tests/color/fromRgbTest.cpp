// The conversions from RGB, and between layouts of luma and chroma, against their definitions in wide arithmetic.
// The other columns are held to the reference by the differential test.
#include "color/colors.h"
#include "cpu/ondrixColorFromRgbC.h"

#include <cmath>

using namespace odx::test;

namespace
{

// Every combination of values 0, step, 2 * step ... 255, and, for the finest ones, of a greatest and a least value
// in each sixth of the circle, in an image whose width is no multiple of any vector.
struct Palette {
    static constexpr uint32_t kWidth = 2 * 311;
    std::vector<Colour> colours;

    explicit Palette(int step, bool sixths = false)
    {
        for (int r = 0; r < 256; r += step)
            for (int g = 0; g < 256; g += step)
                for (int b = 0; b < 256; b += step)
                    colours.push_back({r, g, b, (r * 7 + g * 3 + b) % 256});
        for (int most = 0; most < 256 && sixths; ++most) {
            for (int least = 0; least <= most; ++least) {
                const int middle = least + (most - least) * (most % 7) / 6;
                colours.insert(colours.end(), {{most, middle, least},
                                               {middle, most, least},
                                               {least, most, middle},
                                               {least, middle, most},
                                               {middle, least, most},
                                               {most, least, middle}});
            }
        }
        while (colours.size() % kWidth != 0 || colours.size() / kWidth % 2 == 0) // an odd height
            colours.push_back({255, 0, 128, 3});
    }
    uint32_t height() const { return static_cast<uint32_t>(colours.size() / kWidth); }
    const Colour& at(size_t x, size_t y) const { return colours[y * kWidth + x]; }
    Bytes image(const PixelLayout& layout) const
    {
        Bytes all;
        for (const Colour& colour : colours) {
            const Bytes one = layout.pixel(colour);
            all.insert(all.end(), one.begin(), one.end());
        }
        return all;
    }
};

// ---- formulas ----

std::array<uint8_t, 3> yCbCrOf(const Colour& c)
{
    const auto chroma = [](int64_t sum) { return byte(std::min<int64_t>(128 + floorDiv(sum + 128, 256), 255)); };
    return {byte((77 * c.r + 150 * c.g + 29 * c.b + 128) / 256), chroma(-43 * c.r - 85 * c.g + 128 * c.b),
            chroma(128 * c.r - 107 * c.g - 21 * c.b)};
}

uint8_t greyOf(const Colour& c)
{
    return byte((19595 * c.r + 38469 * c.g + 7471 * c.b + 32768) / 65536);
}

std::array<uint8_t, 3> yCrCbOf(const Colour& c)
{
    const auto scaled = [](int64_t offset, int64_t sum) {
        return byte(std::clamp<int64_t>(offset + floorDiv(sum + 16384, 32768), 0, 255));
    };
    return {scaled(0, 9798 * c.r + 19235 * c.g + 3736 * c.b), scaled(128, 16384 * c.r - 13720 * c.g - 2664 * c.b),
            scaled(128, -5529 * c.r - 10855 * c.g + 16384 * c.b)};
}

std::array<uint8_t, 3> hsvOf(const Colour& c)
{
    const auto reciprocal = [](int64_t n) { return n == 0 ? 0 : (2 * 65536 + n) / (2 * n); };
    const int64_t most = std::max({c.r, c.g, c.b}), d = most - std::min({c.r, c.g, c.b});
    int64_t h;
    if (c.r == most) {
        h = reciprocal(d) * (c.g - c.b) + (c.g < c.b ? 6 * 65536 : 0);
    } else if (c.g == most) {
        h = reciprocal(d) * (c.b - c.r) + 2 * 65536;
    } else {
        h = reciprocal(d) * (c.r - c.g) + 4 * 65536;
    }
    return {byte(floorDiv(32768 + floorDiv(h * 85, 2), 65536)), byte((reciprocal(most) * d * 255 + 32768) / 65536),
            byte(most)};
}

class FromRgb : public odx::test::ReferenceTest
{
};

// ---- packed pixels ----

// Converts an image of the palette and compares every pixel with the model's bytes.
void expectPixels(const char* name, decltype(odxColorRGB888ToGrayu8)* operation, const PixelLayout& layout,
                  const Palette& palette, const std::function<Bytes(const Colour&)>& model, bool turned = false)
{
    const Bytes src = palette.image(layout);
    const size_t size = model(palette.colours[0]).size(), count = palette.colours.size();
    Bytes dst(count * size + 2, 0x5A);
    operation(src.data(), Palette::kWidth, palette.height(), 0, dst.data(), 0);
    for (size_t i = 0; i < count; ++i) {
        const Colour& c = palette.colours[i];
        const uint8_t* const actual = &dst[size * (turned ? count - 1 - i : i)];
        ASSERT_EQ(model(c), Bytes(actual, actual + size)) << name << " of " << c.r << ", " << c.g << ", " << c.b;
    }
    EXPECT_EQ((Bytes{0x5A, 0x5A}), Bytes(dst.end() - 2, dst.end())) << name;
}

template <class Array>
Bytes bytesOf(const Array& array)
{
    return Bytes(array.begin(), array.end());
}

TEST_F(FromRgb, PixelsFollowTheirFormulas)
{
    const Palette palette(5), fine(5, true);
    const auto repack = [&](const char* name, auto* operation, const PixelLayout& from, const PixelLayout& to,
                            bool turned = false) {
        expectPixels(
            name, operation, from, palette, [&](const Colour& c) { return to.pixel(from.rounded(c)); }, turned);
    };
    using namespace byName;
#define ODX_CASE(from, to) repack(#from " to " #to, odxColor##from##To##to##u8, from, to);
    ODX_RGB_TO_RGB(ODX_CASE)
#undef ODX_CASE
    repack("turned", odxColorRGB888ToRGB565Rotate180u8, RGB888, RGB565, true);
    expectPixels("grey", odxColorRGB888ToGrayu8, RGB888, palette, [](auto& c) { return Bytes{greyOf(c)}; });
    expectPixels("YCrCb", odxColorRGB888toYCrCbu8_v2, RGB888, palette,
                 [](auto& c) { return bytesOf(yCrCbOf(c)); });
    expectPixels("HSV", odxColorRGB888ToHSV888u8, RGB888, fine, [](auto& c) { return bytesOf(hsvOf(c)); });
    expectPixels("swap", odxColorCbCrSwapu8, {2, true}, palette, [](const Colour& c) {
        const Bytes pair = RGB565.pixel(c);
        return Bytes{pair[1], pair[0]};
    });
    const Bytes src = palette.image(RGB888);
    Bytes packed(src.size()), strided = packed;
    odxColorRGB888toYCrCbu8(src.data(), Palette::kWidth, palette.height(), packed.data());
    odxColorRGB888toYCrCbu8_v2(src.data(), Palette::kWidth, palette.height(), 0, strided.data(), 0);
    EXPECT_TRUE(strided == packed);
}

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

TEST_F(FromRgb, LabIsTheRoundedExactValueButForTheStatedError)
{
    const Palette palette(3);
    const Bytes src = palette.image(byName::RGBA8888);
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

TEST_F(FromRgb, LabOfGreysAndPrimaries)
{
    Bytes src, dst(3 * 256);
    for (int grey = 0; grey < 256; ++grey)
        src.insert(src.end(), {byte(grey), byte(grey), byte(grey), 0});
    odxColorRGBA8888ToLABu8(src.data(), 256, 1, 0, dst.data(), 0);
    for (size_t grey = 0; grey < 256; ++grey) {
        EXPECT_EQ((Bytes{128, 128}), Bytes(&dst[3 * grey + 1], &dst[3 * grey] + 3));
        EXPECT_GE(dst[3 * grey], dst[3 * (grey > 0 ? grey - 1 : 0)]);
    }
    // L*a*b* of red is 53.24, 80.09, 67.20; of green 87.73, -86.18, 83.18; of blue 32.30, 79.19, -107.86.
    const Bytes primaries = {255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255, 0};
    odxColorRGBA8888ToLABu8(primaries.data(), 3, 1, 0, dst.data(), 0);
    dst.resize(9);
    EXPECT_EQ((Bytes{136, 208, 195, 224, 42, 211, 82, 207, 20}), dst);
}

// ---- luma and chroma ----

const struct {
    const char* name;
    PixelLayout layout;
    uint32_t to;
    bool toPairs;
    void (*convert)(const Bytes&, Picture&);
} kFromRgb[] = {
#define ODX_LAYOUT(pixels, subsampling, chroma)                                                         \
    {#pixels " to " #subsampling #chroma, blueFirst::pixels, subsampling, chroma,                       \
     [](const Bytes& src, Picture& d) {                                                                 \
         odxColor##pixels##ToYCbCr##subsampling##chroma##u8(                                            \
             src.data(), d.width, d.height, 0, ODX_##chroma##_ARGUMENTS(d), ODX_##chroma##_STRIDES(d)); \
     }},
#define ODX_CASE(pixels, subsampling)       \
    ODX_LAYOUT(pixels, subsampling, Planar) \
    ODX_LAYOUT(pixels, subsampling, PseudoPlanar)
    ODX_RGB_TO_YCBCR(ODX_CASE)
#undef ODX_CASE
};

TEST_F(FromRgb, LumaAndChromaFollowTheirFormula)
{
    const Palette palette(5);
    for (const auto& c : kFromRgb) {
        Picture dst(Palette::kWidth, palette.height(), c.to, c.toPairs, false), expected = dst;
        expected.set([&](size_t kind, uint32_t x, uint32_t y) {
            return yCbCrOf(c.layout.rounded(palette.at(x, y)))[kind];
        });
        c.convert(palette.image(c.layout), dst);
        EXPECT_TRUE(expected == dst) << c.name;
    }
}

// Where pairs of pixels share chroma; rows that only have luma do without pairs.
TEST_F(FromRgb, RowsOfOddWidthStayUnwritten)
{
    constexpr uint32_t kWidth = 7, kHeight = 3;
    for (const auto& c : kFromRgb) {
        Picture dst(kWidth, kHeight, c.to, c.toPairs, true);
        const Picture untouched = dst;
        c.convert(Bytes(4 * kWidth * kHeight, 9), dst);
        for (uint32_t row = 0; row < kHeight; ++row) {
            const bool written = c.to == 444 || (c.to == 420 && row % 2 == 1);
            const auto pixels = dst.y.begin() + row * kWidth;
            EXPECT_EQ(written ? 0 : kWidth, std::count(pixels, pixels + kWidth, 0x5A)) << c.name << " " << row;
        }
        EXPECT_EQ(c.to == 444, dst.cb != untouched.cb) << c.name;
        EXPECT_EQ(c.to == 444 && !c.toPairs, dst.cr != untouched.cr) << c.name;
    }
}

const struct {
    const char* name;
    uint32_t from, to;
    bool fromPairs, toPairs;
    void (*convert)(const Picture&, Picture&);
} kLayouts[] = {
#define ODX_CASE(from, fromSubsampling, to, toSubsampling)                                                   \
    {#fromSubsampling #from " to " #toSubsampling #to,                                                       \
     fromSubsampling,                                                                                        \
     toSubsampling,                                                                                          \
     from,                                                                                                   \
     to,                                                                                                     \
     [](const Picture& s, Picture& d) {                                                                      \
         odxColorYCbCr##fromSubsampling##from##ToYCbCr##toSubsampling##to##u8(                               \
             ODX_##from##_ARGUMENTS(s), s.width, s.height, ODX_##from##_STRIDES(s), ODX_##to##_ARGUMENTS(d), \
             ODX_##to##_STRIDES(d));                                                                         \
     }},
    ODX_YCBCR_TO_YCBCR(ODX_CASE)
#undef ODX_CASE
};

TEST_F(FromRgb, LayoutsPickAndRepeatSamples)
{
    ASSERT_EQ(30u, std::size(kLayouts));
    for (const auto& c : kLayouts) {
        for (uint32_t width : {1, 2, 3, 4, 7, 33, 66}) {
            for (uint32_t height : {1, 2, 3, 5}) {
                for (bool packed : {false, true}) {
                    Picture src(width, height, c.from, c.fromPairs, packed);
                    Picture dst(width, height, c.to, c.toPairs, packed), expected = dst;
                    src.fill();
                    expected.set([&](size_t kind, uint32_t x, uint32_t y) -> uint8_t {
                        if (kind == 0) return src.y[src.yStride * y + x];
                        if (src.stored() == 0) return 128;
                        return src.sample(kind - 1, std::min(x / src.across, src.stored() - 1), y / src.down);
                    });
                    c.convert(src, dst);
                    EXPECT_TRUE(expected == dst) << c.name << ' ' << width << 'x' << height;
                }
            }
        }
    }
}

} // namespace
