#include "demo/sections.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace demo
{

namespace
{

constexpr int kSlopeScale = 64;  // differences of 8-bit pixels fill 16 bits with room for rounding
constexpr int kEnergyScale = 32; // 2 * 255 * 255 * 32 * 256, the largest weighted sum, fits 31 bits

// The difference of the pixels `dx` and `dy` apart about (x, y); pixels outside repeat those of the edge.
int difference(const Plane<uint8_t>& grey, unsigned x, unsigned y, unsigned dx, unsigned dy)
{
    const unsigned right = std::min(x + dx, grey.width() - 1), below = std::min(y + dy, grey.height() - 1);
    return grey.at(right, below) - grey.at(x - std::min(x, dx), y - std::min(y, dy));
}

uint8_t between(int from, int to, float part)
{
    return nearestByte(static_cast<float>(from) + static_cast<float>(to - from) * part);
}

Rgb between(Rgb from, Rgb to, float part)
{
    return {between(from.r, to.r, part), between(from.g, to.g, part), between(from.b, to.b, part)};
}

// Zero is dark, positive values orange, negative ones blue.
Rgb signedColour(int16_t value)
{
    constexpr Rgb kZero{18, 20, 26}, kPositive{255, 176, 84}, kNegative{86, 172, 255};
    const float size = std::min(1.0F, std::abs(static_cast<float>(value)) / (kSlopeScale * 96.0F));
    return between(kZero, value < 0 ? kNegative : kPositive, std::sqrt(size));
}

// From black through red to a light yellow.
Rgb heatColour(int32_t value)
{
    constexpr Rgb kStops[] = {{12, 10, 24}, {86, 20, 96}, {196, 54, 62}, {250, 150, 36}, {255, 244, 180}};
    constexpr float kMost = 180;
    const float root = std::sqrt(std::max(0.0F, static_cast<float>(value) / kEnergyScale));
    const float place = std::min(root / kMost, 0.999F) * (std::size(kStops) - 1);
    const auto stop = static_cast<size_t>(place);
    return between(kStops[stop], kStops[stop + 1], place - static_cast<float>(stop));
}

template <class T>
struct Filter {
    const char* title;
    const char* name;
    void (*operation)(const T* src, unsigned width, unsigned height, unsigned srcStride, T* dst,
                      unsigned dstStride, int border);
};

template <class T>
void showFilter(Stage& stage, const Filter<T>& filter, const Plane<T>& source, Rgb (*colourOf)(T))
{
    Plane<T> smooth(source.width(), source.height());
    const Outcome outcome = stage.run(filter.name, smooth, [&] {
        return done(filter.operation, source.data(), source.width(), source.height(), source.stride(),
                    smooth.data(), smooth.stride(), 1);
    });
    stage.show(filter.title, outcome, pictureOf(smooth, colourOf));
}

} // namespace

void showWidePixels(Stage& stage)
{
    const Plane<uint8_t>& grey = stage.grey();
    const auto slope = Plane<int16_t>::from(grey.width(), grey.height(), [&](unsigned x, unsigned y) {
        return difference(grey, x, y, 1, 0) * kSlopeScale;
    });
    const auto energy = Plane<int32_t>::from(grey.width(), grey.height(), [&](unsigned x, unsigned y) {
        const int dx = difference(grey, x, y, 1, 0), dy = difference(grey, x, y, 0, 1);
        return (dx * dx + dy * dy) * kEnergyScale;
    });

    stage.beginSection("Gaussian filters of wide pixels",
                       "signed values of 16 and 32 bits: what gradients are made of");
    stage.showSource("Horizontal slope, 16 bits", "orange rises, blue falls", pictureOf(slope, signedColour));
    showFilter(stage, {"Gaussian 5x5, 16 bits", NAMED(odxFilterGaussian5x5s16_v2)}, slope, signedColour);
    stage.showSource("Edge energy, 32 bits", "squared gradient", pictureOf(energy, heatColour));
    showFilter(stage, {"Gaussian 5x5, 32 bits", NAMED(odxFilterGaussian5x5s32_v2)}, energy, heatColour);
}

} // namespace demo
