#include "demo/sections.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace demo
{

namespace
{

using Weights = std::vector<int16_t>;

// A Gaussian of so many taps, or its derivative, whose magnitudes are `sum` in all.
Weights gaussian(int taps, float sigma, float sum, bool derivative = false)
{
    std::vector<float> values;
    const int reach = taps / 2;
    float total = 0;
    for (int i = -reach; i <= reach; ++i) {
        const auto x = static_cast<float>(i);
        values.push_back(std::exp(-x * x / (2 * sigma * sigma)) * (derivative ? x : 1));
        total += std::abs(values.back());
    }
    Weights weights;
    for (const float value : values)
        weights.push_back(static_cast<int16_t>(std::lround(value / total * sum)));
    return weights;
}

// A kernel whose weights are those on the diagonal, for the blur of a moving camera.
Weights diagonal(size_t size)
{
    Weights kernel(size * size, 0);
    for (size_t i = 0; i < size; ++i)
        kernel[i * size + i] = 16;
    return kernel;
}

void showConvolved(Stage& stage, const char* title, const Weights& kernel, unsigned size, unsigned shift)
{
    const Plane<uint8_t>& grey = stage.grey();
    Plane<uint8_t> result(grey.width(), grey.height());
    const Outcome outcome = stage.run("odxFilterConvolveMxNu8", result, [&] {
        return odxFilterConvolveMxNu8(kernel.data(), size, size, shift, grey.data(), grey.width(), grey.height(),
                                      grey.stride(), result.data(), result.stride(), ONDRIX_BORDER_REPLICATE, 0);
    });
    stage.show(title, outcome, pictureOf(result));
}

} // namespace

void showConvolutions(Stage& stage)
{
    const Plane<uint8_t>& grey = stage.grey();
    stage.beginSection("Convolution", "any kernels, and large ones made of a row and a column");

    constexpr int kScale = 128; // bytes fill 15 bits
    const auto wide = Plane<int16_t>::from(grey.width(), grey.height(),
                                           [&](unsigned x, unsigned y) { return grey.at(x, y) * kScale; });
    const Weights across = gaussian(17, 3, 32767, true), down = gaussian(17, 3, 32767);
    Plane<int16_t> slope(grey.width(), grey.height());
    const Outcome outcome = stage.run("odxFilterCorrSep17x17s16_v2", slope, [&] {
        return done(odxFilterCorrSep17x17s16_v2, across.data(), down.data(), wide.data(), wide.width(),
                    wide.height(), wide.stride(), slope.data(), slope.stride());
    });
    stage.show("Slope of a Gaussian, 17x17", outcome, pictureOf(slope, [](int16_t value) {
                   const uint8_t level =
                       nearestByte(std::clamp(128 + static_cast<float>(value) / 32, 0.0F, 255.0F));
                   return Rgb{level, level, level};
               }));

    const Weights smooth = gaussian(31, 6, 256);
    Plane<uint8_t> blurred(grey.width(), grey.height());
    const Outcome blur = stage.run("odxFilterCorrSepMxNu8", blurred, [&] {
        return odxFilterCorrSepMxNu8(smooth.data(), 31, smooth.data(), 31, 16, grey.data(), grey.width(),
                                     grey.height(), grey.stride(), blurred.data(), blurred.stride(),
                                     ONDRIX_BORDER_REPLICATE, 0);
    });
    stage.show("Gaussian 31x31", blur, pictureOf(blurred));

    showConvolved(stage, "Motion blur, 15x15", diagonal(15), 15, 8);
    showConvolved(stage, "Sharper, 5x5",
                  {0, 0, -1, 0, 0, 0, -1, -2, -1, 0, -1, -2, 24, -2, -1, 0, -1, -2, -1, 0, 0, 0, -1, 0, 0}, 5, 3);
}

} // namespace demo
