#include "demo/sections.h"

#include <algorithm>
#include <string>

namespace demo
{

namespace
{

constexpr int kNoise = 24;             // grey levels up or down, at most
constexpr float kLevels = 30;          // what counts as the same surface
constexpr float kFar = 64, kReach = 4; // pixels

// Every pixel a little brighter or darker, always the same: the sum of three draws is nearly a Gaussian.
Plane<uint8_t> grainy(const Plane<uint8_t>& grey)
{
    uint32_t state = 1;
    const auto draw = [&state] {
        state = state * 1664525 + 1013904223;
        return static_cast<int>(state >> 16) % (2 * kNoise / 3 + 1) - kNoise / 3;
    };
    return Plane<uint8_t>::from(grey.width(), grey.height(), [&](unsigned x, unsigned y) {
        return static_cast<uint8_t>(std::clamp(grey.at(x, y) + draw() + draw() + draw(), 0, 255));
    });
}

template <class Call>
void show(Stage& stage, const Plane<uint8_t>& noisy, const char* title, const char* name, Call call)
{
    Plane<uint8_t> clean(noisy.width(), noisy.height());
    const Outcome outcome = stage.run(name, clean, [&] { return call(clean.data(), clean.stride()); });
    stage.show(title, outcome, pictureOf(clean));
}

} // namespace

void showBilaterals(Stage& stage)
{
    const Plane<uint8_t> noisy = grainy(stage.grey());
    const auto with = [&noisy](auto* operation, auto... rest) {
        return [&noisy, operation, rest...](uint8_t* dst, unsigned stride) {
            return operation(noisy.data(), noisy.width(), noisy.height(), noisy.stride(), dst, stride, rest...);
        };
    };
    stage.beginSection("Bilateral filters", "they smooth surfaces, and leave edges as they are");
    stage.showSource("With grain", std::to_string(kNoise) + " levels at most", pictureOf(noisy));
    show(stage, noisy, "Gaussian 5x5, to compare", "odxFilterGaussian5x5u8_v2",
         [blur = with(odxFilterGaussian5x5u8_v2, 1)](uint8_t* dst, unsigned stride) {
             blur(dst, stride);
             return ONDRIX_SUCCESS;
         });
    show(stage, noisy, "Bilateral 9x9", "odxBilateralFilter9x9u8_v2",
         with(odxBilateralFilter9x9u8_v2, kLevels, kFar, ONDRIX_BORDER_REPLICATE, 0U));
    show(stage, noisy, "Recursive bilateral", "odxBilateralFilterRecursiveu8",
         with(odxBilateralFilterRecursiveu8, kLevels, kReach));
}

} // namespace demo
