// The conversions from RGB, and between layouts of luma and chroma, against their definitions in wide arithmetic.
// The other columns are held to the reference by the differential test.
#include "cpu/ondrixColorFromRgbC.h"
#include "ondrix.h"
#include "support/referenceTest.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <random>

namespace
{

using Bytes = std::vector<uint8_t>;

struct Colour {
    int64_t r, g, b, a = 255;
};

uint8_t byte(int64_t value)
{
    return static_cast<uint8_t>(value);
}

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
};

// A layout of packed pixels, by the places of its channels.
struct PixelLayout {
    size_t size;                 // of a pixel, in bytes
    bool redFirst;               // in memory, or in the low bits of a 16-bit word
    bool repeatsHighBits = true; // where a word's channels are widened

    // The colour as it comes out of a pixel of this layout.
    Colour rounded(const Colour& c) const
    {
        if (size != 2) return {c.r, c.g, c.b, size == 4 ? c.a : 255};
        const auto five = [&](int64_t v) { return v / 8 * 8 + (repeatsHighBits ? v / 32 : 0); };
        const auto six = [&](int64_t v) { return v / 4 * 4 + (repeatsHighBits ? v / 64 : 0); };
        return {five(c.r), six(c.g), five(c.b), 255};
    }
    Bytes pixel(const Colour& c) const
    {
        const int64_t first = redFirst ? c.r : c.b, third = redFirst ? c.b : c.r;
        const int64_t word = first / 8 + c.g / 4 * 32 + third / 8 * 2048;
        if (size == 2) return {byte(word % 256), byte(word / 256)};
        Bytes bytes = {byte(first), byte(c.g), byte(third)};
        if (size == 4) bytes.push_back(byte(c.a));
        return bytes;
    }
    Bytes image(const Palette& palette) const
    {
        Bytes all;
        for (const Colour& colour : palette.colours) {
            const Bytes one = pixel(colour);
            all.insert(all.end(), one.begin(), one.end());
        }
        return all;
    }
};

// What these names mean as sources of luma and chroma, and everywhere else.
namespace blueFirst
{
constexpr PixelLayout RGB565 = {2, false, false}, RGB888 = {3, false}, RGBA8888 = {4, false};
}
namespace byName
{
constexpr PixelLayout RGB565 = {2, true}, RGB888 = {3, true}, RGBA8888 = {4, true}, BGR565 = {2, false},
                      BGR888 = {3, false}, BGRA8888 = {4, false};
}

// ---- formulas ----

// Floor of a quotient.
int64_t floorDiv(int64_t value, int64_t divisor)
{
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

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
    const Bytes src = layout.image(palette);
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
    const Bytes src = RGB888.image(palette);
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
    const Bytes src = byName::RGBA8888.image(palette);
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

// A luma and chroma image of any layout. Interleaved chroma of odd widths may be a pair short.
struct Picture {
    uint32_t width, height, across, down;
    bool pairs, defaulted, shortRows;
    uint32_t yStride, cStride, crStride;
    Bytes y, cb, cr; // cb also holds pairs

    Picture(uint32_t w, uint32_t h, uint32_t subsampling, bool interleaved, bool packed)
        : width(w), height(h), across(subsampling == 444 ? 1 : 2), down(subsampling == 420 ? 2 : 1),
          pairs(interleaved), defaulted(packed), shortRows(interleaved && packed && across == 2)
    {
        yStride = packed ? w : w + 3;
        cStride = shortRows ? w : columns() * (pairs ? 2 : 1) + (packed ? 0 : 5);
        crStride = packed ? cStride : cStride + 2;
        y.assign(size_t{yStride} * h, 0x5A);
        cb.assign(size_t{cStride} * rows(), 0x5A);
        cr.assign(size_t{crStride} * rows(), 0x5A);
    }
    uint32_t argument(uint32_t stride) const { return defaulted ? 0 : stride; }
    uint32_t columns() const { return (width + across - 1) / across; }
    uint32_t rows() const { return (height + down - 1) / down; }
    // The samples of a kind in a row that are stored.
    uint32_t stored() const { return shortRows ? width / 2 : columns(); }

    void fill()
    {
        static std::mt19937 random(5);
        for (auto* plane : {&y, &cb, &cr})
            std::generate(plane->begin(), plane->end(), [] { return static_cast<uint8_t>(random()); });
    }
    uint8_t& sample(size_t kind, uint32_t i, uint32_t row)
    {
        if (pairs) return cb[size_t{cStride} * row + 2 * i + kind];
        return kind == 0 ? cb[size_t{cStride} * row + i] : cr[size_t{crStride} * row + i];
    }
    // Sets every sample, of which at(kind, x, y) gives the luma (0) and the chroma of a pixel.
    template <class At>
    void set(At at)
    {
        for (uint32_t i = 0; i < width * height; ++i)
            y[i / width * yStride + i % width] = at(0, i % width, i / width);
        for (uint32_t row = 0; row < rows(); ++row) {
            for (uint32_t i = 0; i < 2 * stored(); ++i)
                sample(i % 2, i / 2, row) = at(1 + i % 2, i / 2 * across, row * down);
        }
    }
    bool operator==(const Picture& other) const { return y == other.y && cb == other.cb && cr == other.cr; }
};

constexpr bool Planar = false, PseudoPlanar = true;

#define ODX_Planar_ARGUMENTS(p) p.y.data(), p.cb.data(), p.cr.data()
#define ODX_Planar_STRIDES(p) p.argument(p.yStride), p.argument(p.cStride), p.argument(p.crStride)
#define ODX_PseudoPlanar_ARGUMENTS(p) p.y.data(), p.cb.data()
#define ODX_PseudoPlanar_STRIDES(p) p.argument(p.yStride), p.argument(p.cStride)

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
        c.convert(c.layout.image(palette), dst);
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
            for (uint32_t height : {1, 2, 5}) {
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
