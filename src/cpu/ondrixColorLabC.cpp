// sRGB to CIE L*a*b*, in integers.
#include "cpu/ondrixColorFromRgb.h"
#include "cpu/ondrixColorFromRgbC.h"

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

// Light relative to white. 1 is 2^30.
constexpr int kLightBits = 30;
struct Light {
    uint32_t x, y, z;
};

// The light of a primary, which at its full brightness is x, y and z of that of white, by sRGB value.
struct Primary {
    Light of[256];

    constexpr Primary(double x, double y, double z) : of()
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
                     static_cast<uint32_t>(light * z + 0.5)};
        }
    }
};
constexpr double kWhiteX = 0.4124564 + 0.3575761 + 0.1804375, kWhiteZ = 0.0193339 + 0.1191920 + 0.9503041;
constexpr Primary kRed(0.4124564 / kWhiteX, 0.2126729, 0.0193339 / kWhiteZ);
constexpr Primary kGreen(0.3575761 / kWhiteX, 0.7151522, 0.1191920 / kWhiteZ);
constexpr Primary kBlue(0.1804375 / kWhiteX, 0.0721750, 0.9503041 / kWhiteZ);

// The curve f of L*a*b* over light of 0..1: cube roots, with a straight piece at the dark end; linear within each
// of its segments. 1 is 2^15.
constexpr int kCurveBits = 15, kSegmentBits = 19;
constexpr uint32_t kSegments = 1 << (kLightBits - kSegmentBits);

struct Curve {
    uint16_t at[kSegments + 2]; // the sums for white round up to a little more than 1

    constexpr Curve() : at()
    {
        double cube = 0.2;
        for (uint32_t i = 0; i < kSegments + 2; ++i) {
            const double light = static_cast<double>(i) / kSegments;
            double value = light * (841.0 / 108) + 4.0 / 29;
            if (light > 216.0 / 24389) value = cube = root<3>(light, cube);
            at[i] = static_cast<uint16_t>(value * (1 << kCurveBits) + 0.5);
        }
    }
};
constexpr Curve kCurve;

int32_t curve(uint32_t light)
{
    constexpr int partBits = 10;
    const uint32_t i = light >> kSegmentBits;
    const uint32_t part = light >> (kSegmentBits - partBits) & ((1 << partBits) - 1);
    const uint32_t low = kCurve.at[i], high = kCurve.at[i + 1];
    return static_cast<int32_t>(low + (((high - low) * part + (1 << (partBits - 1))) >> partBits));
}

// ---- conversion ----

// L = (116 * f(Y) - 16) * 255 / 100, with 7 more bits.
constexpr int32_t kLScale = 37862, kLOffset = 5222;

void labRow(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t width)
{
    constexpr int32_t half = 1 << (kCurveBits - 1);
    for (size_t x = 0; x < width; ++x, src += 4, dst += 3) {
        const Light &r = kRed.of[src[0]], &g = kGreen.of[src[1]], &b = kBlue.of[src[2]];
        const int32_t fx = curve(r.x + g.x + b.x), fy = curve(r.y + g.y + b.y), fz = curve(r.z + g.z + b.z);
        dst[0] = static_cast<uint8_t>((fy * kLScale - (kLOffset << kCurveBits) + (half << 7)) >> (kCurveBits + 7));
        dst[1] = static_cast<uint8_t>(128 + ((500 * (fx - fy) + half) >> kCurveBits));
        dst[2] = static_cast<uint8_t>(128 + ((200 * (fy - fz) + half) >> kCurveBits));
    }
}

} // namespace

} // namespace odx::color

extern "C" {

void odxColorRGBA8888ToLABu8C(ODX_Packed_SOURCE, ODX_Packed_DESTINATION)
{
    odx::color::eachRow(ODX_Packed_ARGUMENTS, odx::color::labRow);
}
}
