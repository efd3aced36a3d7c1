// sRGB to CIE L*a*b*, in integers.
#include "cpu/ondrixColorFromRgb.h"
#include "cpu/ondrixColorFromRgbC.h"
#include "cpu/ondrixColorLab.h"

namespace odx::color
{

namespace
{

// ---- tables, computed by the compiler ----

// The root of t near `guess`, by Newton's method: guess and t must be positive.
template <int degree>
constexpr double root(double t, double guess)
{
    for (int i = 0; i < 8; ++i) {
        double power = 1;
        for (int k = 1; k < degree; ++k)
            power *= guess;
        guess += (t / power - guess) / degree;
    }
    return guess;
}

// The light of a primary, which at its full brightness is x, y and z of that of white, by sRGB value.
constexpr void fill(Light (&of)[256], double x, double y, double z)
{
    double fifth = 0.3;
    for (int i = 0; i < 256; ++i) {
        const double value = i / 255.0;
        double light = value / 12.92;
        if (value > 0.04045) {
            const double base = (value + 0.055) / 1.055, square = base * base;
            fifth = root<5>(square, fifth);
            light = square * fifth; // base to the power of 2.4
        }
        light *= 1 << kLightBits;
        of[i] = {static_cast<uint32_t>(light * x + 0.5), static_cast<uint32_t>(light * y + 0.5),
                 static_cast<uint32_t>(light * z + 0.5), 0};
    }
}

// The curve f of L*a*b*: cube roots, with a straight piece at the dark end.
constexpr void fill(Segment (&of)[kSegments + 1])
{
    double cube = 0.2;
    for (uint32_t i = 0; i < kSegments + 2; ++i) {
        const double light = static_cast<double>(i) / kSegments;
        double value = light * (841.0 / 108) + 4.0 / 29;
        if (light > 216.0 / 24389) value = cube = root<3>(light, cube);
        const auto at = static_cast<uint16_t>(value * (1 << kCurveBits) + 0.5);
        if (i <= kSegments) of[i].start = at;
        if (i > 0) of[i - 1].rise = static_cast<uint16_t>(at - of[i - 1].start);
    }
}

constexpr LabTables tables()
{
    constexpr double whiteX = 0.4124564 + 0.3575761 + 0.1804375, whiteZ = 0.0193339 + 0.1191920 + 0.9503041;
    LabTables t = {};
    fill(t.red, 0.4124564 / whiteX, 0.2126729, 0.0193339 / whiteZ);
    fill(t.green, 0.3575761 / whiteX, 0.7151522, 0.1191920 / whiteZ);
    fill(t.blue, 0.1804375 / whiteX, 0.0721750, 0.9503041 / whiteZ);
    fill(t.curve);
    return t;
}

int32_t curve(uint32_t light)
{
    const Segment& segment = kLab.curve[light >> kSegmentBits];
    const uint32_t part = light >> (kSegmentBits - kPartBits) & ((1 << kPartBits) - 1);
    return static_cast<int32_t>(segment.start + ((segment.rise * part + (1 << (kPartBits - 1))) >> kPartBits));
}

// ---- conversion ----

void convertRow(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t width)
{
    constexpr int32_t half = 1 << (kCurveBits - 1);
    for (size_t x = 0; x < width; ++x, src += 4, dst += 3) {
        const Light &r = kLab.red[src[0]], &g = kLab.green[src[1]], &b = kLab.blue[src[2]];
        const int32_t fx = curve(r.x + g.x + b.x), fy = curve(r.y + g.y + b.y), fz = curve(r.z + g.z + b.z);
        dst[0] = static_cast<uint8_t>((fy * kLScale - (kLOffset << kCurveBits) + (half << 7)) >> (kCurveBits + 7));
        dst[1] = static_cast<uint8_t>(128 + ((kAScale * (fx - fy) + half) >> kCurveBits));
        dst[2] = static_cast<uint8_t>(128 + ((kBScale * (fy - fz) + half) >> kCurveBits));
    }
}

} // namespace

constexpr LabTables kLab = tables();

} // namespace odx::color

extern "C" {

void rgba2labC(const uint8_t* src, uint8_t* dst, size_t width)
{
    odx::color::convertRow(src, dst, width);
}

void odxColorRGBA8888ToLABu8C(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    odxRepackedRow* const row = rgba2lab_;
    odx::color::eachRow(ODX_Packed_ARGUMENTS, row);
}
}
