#include "demo/sections.h"

namespace demo
{

namespace
{

constexpr unsigned kNoisePercent = 2, kSize = 3;

// The bright parts of the picture, with some pixels wrong.
Plane<uint8_t> noisyMask(const Plane<uint8_t>& grey)
{
    Plane<uint8_t> mask(grey.width(), grey.height());
    odxFilterThresholdOtsuu8(grey.data(), grey.width(), grey.height(), grey.stride(), mask.data(), mask.stride(),
                             0);
    uint32_t state = 1;
    return Plane<uint8_t>::from(grey.width(), grey.height(), [&](unsigned x, unsigned y) -> uint8_t {
        state = state * 1664525 + 1013904223;
        const uint8_t value = mask.at(x, y);
        return (state >> 16) % 100 < kNoisePercent ? 255 - value : value;
    });
}

struct Operation {
    const char* name;
    decltype(odxFilterErodeNxNu8)* run;
};
constexpr Operation kErode = {NAMED(odxFilterErodeNxNu8)}, kDilate = {NAMED(odxFilterDilateNxNu8)};

// The second operation on what the first one makes.
Plane<uint8_t> showBoth(Stage& stage, const char* title, const Plane<uint8_t>& mask, const Operation& first,
                        const Operation& second)
{
    Plane<uint8_t> between(mask.width(), mask.height()), result(mask.width(), mask.height());
    const auto run = [&](const Operation& operation, const Plane<uint8_t>& from, Plane<uint8_t>& to) {
        return stage.run(operation.name, to, [&] {
            return operation.run(from.data(), from.width(), from.height(), from.stride(), kSize, to.data(),
                                 to.stride());
        });
    };
    const bool identical = run(first, mask, between).identical;
    Outcome outcome = run(second, between, result);
    outcome.identical &= identical;
    stage.show(title, outcome, pictureOf(result));
    return result;
}

} // namespace

void showMorphology(Stage& stage)
{
    const Plane<uint8_t> mask = noisyMask(stage.grey());
    stage.beginSection("Morphology", "a noisy mask, opened and closed by windows of 3x3");
    stage.showSource("The mask", "Otsu's level, 2% of the pixels wrong", pictureOf(mask));
    const Plane<uint8_t> opened = showBoth(stage, "Opening", mask, kErode, kDilate);
    showBoth(stage, "Closing", mask, kDilate, kErode);
    showBoth(stage, "Closing of the opening", opened, kDilate, kErode);
}

} // namespace demo
