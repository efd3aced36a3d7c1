#include "demo/sections.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace demo
{

namespace
{

using Gradient = Plane<int16_t>;

// The direction as hue, the strength as brightness: red to the right, then yellow, green downward, blue upward.
Rgb colourOf(float dx, float dy)
{
    const float angle = std::atan2(dy, dx) * 3 / 3.14159265f; // six thirds of a half turn
    const auto channel = [&](float centre) {
        float distance = std::fabs(angle - centre);
        distance = std::min(distance, 6 - distance);
        return std::clamp(2 - distance, 0.0f, 1.0f);
    };
    const float strength = std::min(255.0f, std::sqrt(dx * dx + dy * dy));
    return {nearestByte(strength * channel(0)), nearestByte(strength * channel(2)),
            nearestByte(strength * channel(-2))};
}

// Both derivatives as colours, of numbers that are `scale` times those of single pixels' differences.
void showDirections(Stage& stage, const std::string& title, const char* name, float scale,
                    const std::function<odxStatus(Gradient& dx, Gradient& dy)>& operation)
{
    const Plane<uint8_t>& grey = stage.grey();
    Gradient dx(grey.width(), grey.height()), dy(grey.width(), grey.height());
    const Outcome outcome = stage.run(name, {{dx.data(), dx.bytes()}, {dy.data(), dy.bytes()}},
                                      size_t{grey.width()} * grey.height(), [&] { return operation(dx, dy); });
    Picture picture(static_cast<int>(grey.width()), static_cast<int>(grey.height()));
    for (unsigned y = 0; y < grey.height(); ++y) {
        for (unsigned x = 0; x < grey.width(); ++x) {
            picture.at(static_cast<int>(x), static_cast<int>(y)) =
                colourOf(static_cast<float>(dx.at(x, y)) / scale, static_cast<float>(dy.at(x, y)) / scale);
        }
    }
    stage.show(title, outcome, picture);
}

void showPlanar(Stage& stage, const char* title, const char* name,
                decltype(odxImageGradientPlanars16_v2)* operation, float scale)
{
    const Plane<uint8_t>& grey = stage.grey();
    showDirections(stage, title, name, scale, [&](Gradient& dx, Gradient& dy) {
        return done(operation, grey.data(), grey.width(), grey.height(), grey.stride(), dx.data(), dy.data(),
                    dx.stride());
    });
}

void showLarge(Stage& stage, const char* title, const char* name, decltype(odxFilterSobel7x7u8s16)* operation,
               float scale)
{
    const Plane<uint8_t>& grey = stage.grey();
    showDirections(stage, title, name, scale, [&](Gradient& dx, Gradient& dy) {
        return operation(grey.data(), grey.width(), grey.height(), grey.stride(), dx.data(), dy.data(),
                         dx.stride(), ONDRIX_BORDER_REPLICATE, 0);
    });
}

// A byte an output, of an operation that takes its destination and stride.
void showBytes(Stage& stage, const std::string& title, const char* name,
               const std::function<odxStatus(uint8_t* dst, unsigned dstStride)>& operation)
{
    Plane<uint8_t> dst(stage.grey().width(), stage.grey().height());
    const Outcome outcome = stage.run(name, dst, [&] { return operation(dst.data(), dst.stride()); });
    stage.show(title, outcome, pictureOf(dst));
}

void showCanny(Stage& stage, int low, int high)
{
    const Plane<uint8_t>& grey = stage.grey();
    const std::string title = "Sobel sums: " + std::to_string(low) + ", " + std::to_string(high);
    showBytes(stage, title, "odxFilterCannyu8", [&](uint8_t* dst, unsigned dstStride) {
        return odxFilterCannyu8(grey.data(), grey.width(), grey.height(), grey.stride(), 3, low, high,
                                ONDRIX_NORM_L1, dst, dstStride, nullptr, nullptr, 0);
    });
}

} // namespace

void showGradients(Stage& stage)
{
    const Plane<uint8_t>& grey = stage.grey();
    stage.beginSection("Gradients", "directions as hues, red where it gets brighter to the right");
    showPlanar(stage, "Differences", NAMED(odxImageGradientPlanars16_v2), 0.5f);
    showPlanar(stage, "Sobel", NAMED(odxImageGradientSobelPlanars16_v2), 0.25f);
    showLarge(stage, "Sobel 7x7", NAMED(odxFilterSobel7x7u8s16), 160);
    showBytes(stage, "Magnitude", "odxFilterSobel3x3u8_v2", [&](uint8_t* dst, unsigned dstStride) {
        return done(odxFilterSobel3x3u8_v2, grey.data(), grey.width(), grey.height(), grey.stride(), dst,
                    dstStride);
    });
}

void showCannyEdges(Stage& stage)
{
    const Plane<uint8_t>& grey = stage.grey();
    stage.beginSection("Canny edges", "thresholds: where edges go on, and where they begin");
    showCanny(stage, 40, 100);
    showCanny(stage, 40, 400);
    showCanny(stage, 200, 400);
    showBytes(stage, "Differences: 15, 50", "odxFilterCanny3x3u8_v2", [&](uint8_t* dst, unsigned dstStride) {
        return done(odxFilterCanny3x3u8_v2, grey.data(), grey.width(), grey.height(), grey.stride(), dst,
                    dstStride, 15, 50);
    });
}

} // namespace demo
