#include "demo/sections.h"

#include <string>

namespace demo
{

namespace
{

constexpr unsigned kNoisePercent = 8;
constexpr int kScale16 = 64; // from 8 to 16 bits: uses half of the positive range

// Some pixels black or white, always the same ones.
Plane<uint8_t> saltAndPepper(const Plane<uint8_t>& grey)
{
    uint32_t state = 1;
    return Plane<uint8_t>::from(grey.width(), grey.height(), [&](unsigned x, unsigned y) -> uint8_t {
        state = state * 1664525 + 1013904223;
        const uint32_t draw = state >> 16;
        if (draw % 100 >= kNoisePercent) return grey.at(x, y);
        return draw % 200 >= 100 ? 255 : 0;
    });
}

// The border of the 3x3 median stays as the destination was: the source, here.
void showMedian3x3(Stage& stage, const Plane<uint8_t>& noisy)
{
    Plane<uint8_t> clean = noisy;
    const Outcome outcome = stage.run("odxFilterMedian3x3u8_v2", clean, [&] {
        return done(odxFilterMedian3x3u8_v2, noisy.data(), noisy.width(), noisy.height(), noisy.stride(),
                    clean.data(), clean.stride());
    });
    stage.show("Median 3x3", outcome, pictureOf(clean));
}

void showMedianMxN(Stage& stage, const Plane<uint8_t>& noisy, unsigned m, unsigned n)
{
    const auto source = Plane<int16_t>::from(noisy.width(), noisy.height(),
                                             [&](unsigned x, unsigned y) { return noisy.at(x, y) * kScale16; });
    Plane<int16_t> clean(noisy.width(), noisy.height());
    const Outcome outcome = stage.run("odxFilterMedianMxNs16", clean, [&] {
        return odxFilterMedianMxNs16(source.data(), source.width(), source.height(), source.stride(), m, n,
                                     clean.data(), clean.stride());
    });
    const Picture picture = pictureOf(clean, [](int16_t value) {
        const auto level = static_cast<uint8_t>(value / kScale16);
        return Rgb{level, level, level};
    });
    stage.show("Median " + std::to_string(m) + "x" + std::to_string(n) + ", 16 bits", outcome, picture);
}

} // namespace

void showMedians(Stage& stage)
{
    const Plane<uint8_t> noisy = saltAndPepper(stage.grey());
    stage.beginSection("Median filters", "on a picture with salt-and-pepper noise");
    stage.showSource("With noise", std::to_string(kNoisePercent) + "% of the pixels lost", pictureOf(noisy));
    showMedian3x3(stage, noisy);
    showMedianMxN(stage, noisy, 5, 5);
    showMedianMxN(stage, noisy, 3, 9);
}

} // namespace demo
