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

// Light by sRGB value: 1 is 2^17.
constexpr int kLightBits = 17;

struct Light {
    uint32_t of[256];

    constexpr Light() : of()
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
            of[i] = static_cast<uint32_t>(light * (1 << kLightBits) + 0.5);
        }
    }
};
constexpr Light kLight;

// The curve f of L*a*b* over light of 0..1: cube roots, with a straight piece at the dark end. 1 is 2^15.
constexpr int kCurveBits = 15, kSegmentBits = 6;
constexpr uint32_t kSegments = 1 << (kLightBits - kSegmentBits);

struct Curve {
    uint16_t at[kSegments + 2]; // one more than the ends, for the light of 1

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
    const uint32_t i = light >> kSegmentBits, part = light & ((1 << kSegmentBits) - 1);
    const uint32_t low = kCurve.at[i], high = kCurve.at[i + 1];
    return static_cast<int32_t>(low + (((high - low) * part + (1 << (kSegmentBits - 1))) >> kSegmentBits));
}

// ---- conversion ----

// Light of the primaries to X, Y and Z relative to white: 1 is 2^14, the sum of each row, so that grey stays grey.
constexpr int kWeightBits = 14;
struct Primaries {
    uint32_t red, green, blue;
};
constexpr Primaries kX = {7110, 6164, 3110}, kY = {3484, 11717, 1183}, kZ = {291, 1794, 14299};

constexpr bool sumsToOne(const Primaries& p)
{
    return p.red + p.green + p.blue == 1 << kWeightBits;
}
static_assert(sumsToOne(kX) && sumsToOne(kY) && sumsToOne(kZ));

// L = (116 * f(Y) - 16) * 255 / 100, with 7 more bits.
constexpr int32_t kLScale = 37862, kLOffset = 5222;

void labRow(const uint8_t* __restrict src, uint8_t* __restrict dst, size_t width)
{
    constexpr int32_t half = 1 << (kCurveBits - 1);
    for (size_t x = 0; x < width; ++x, src += 4, dst += 3) {
        const uint32_t r = kLight.of[src[0]], g = kLight.of[src[1]], b = kLight.of[src[2]];
        const auto f = [=](const Primaries& p) {
            const uint32_t sum = p.red * r + p.green * g + p.blue * b; // up to 2^31
            return curve((sum + (1 << (kWeightBits - 1))) >> kWeightBits);
        };
        const int32_t fx = f(kX), fy = f(kY), fz = f(kZ);
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
