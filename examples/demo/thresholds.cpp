#include "common/canvas.h"
#include "demo/sections.h"

#include <algorithm>

namespace demo
{

namespace
{

constexpr int kWidth = 360, kHeight = 240;

// A page under a lamp, and the shadow of the hand that holds it.
Plane<uint8_t> shadedPage()
{
    Picture page(kWidth, kHeight, {236, 236, 236});
    const char* const kLines[] = {"Of thresholds",
                                  "A page is black and white",
                                  "until a shadow falls on",
                                  "it: then white in shade is",
                                  "darker than black in light",
                                  "and no level separates",
                                  "ink from paper. Averages",
                                  "of the neighbourhood do.",
                                  "0123456789 (3x3, 5x5)"};
    int y = 12;
    for (const char* const line : kLines) {
        write(page, 14, y, TextSize::small, {40, 40, 40}, line);
        y += 25;
    }
    const Plane<uint8_t> grey = greyOf(page);
    uint32_t noise = 1;
    return Plane<uint8_t>::from(grey.width(), grey.height(), [&](unsigned u, unsigned v) {
        noise = noise * 1664525 + 1013904223;
        const float x = static_cast<float>(u) / kWidth, down = static_cast<float>(v) / kHeight;
        const float edge = std::clamp((x + 0.6F * down - 0.75F) * 5, 0.0F, 1.0F);
        const float light = (1 - 0.72F * edge) * (1 - 0.25F * x);
        return nearestByte(
            std::clamp(static_cast<float>(grey.at(u, v)) * light + static_cast<float>(noise >> 29), 0.0F, 255.0F));
    });
}

struct Adaptive {
    const char* title;
    const char* name;
    decltype(odxAdaptiveThresholdMean3x3u8)* operation;
};

constexpr Adaptive kAdaptive[] = {
    {"Against the mean of 5x5", NAMED(odxAdaptiveThresholdMean5x5u8)},
    {"Against the mean of 11x11", NAMED(odxAdaptiveThresholdMean11x11u8)},
    {"Against the Gaussian 11x11", NAMED(odxAdaptiveThresholdGaussian11x11u8)},
};

} // namespace

void showThresholds(Stage& stage)
{
    const Plane<uint8_t> page = shadedPage();
    stage.beginSection("Thresholds", "a page in a shadow, black on white five times");
    stage.showSource("The page", "ink, paper, a shadow", pictureOf(page));
    Plane<uint8_t> marked(page.width(), page.height());
    stage.show("At 100",
               stage.run("odxFilterThresholdu8_v2", marked,
                         [&] {
                             return done(odxFilterThresholdu8_v2, page.data(), page.width(), page.height(),
                                         page.stride(), marked.data(), marked.stride(), 100U);
                         }),
               pictureOf(marked));
    stage.show("At Otsu's level",
               stage.run("odxFilterThresholdOtsuu8", marked,
                         [&] {
                             return done(odxFilterThresholdOtsuu8, page.data(), page.width(), page.height(),
                                         page.stride(), marked.data(), marked.stride(), 0U);
                         }),
               pictureOf(marked));
    for (const Adaptive& adaptive : kAdaptive) {
        const Outcome outcome = stage.run(adaptive.name, marked, [&] {
            return done(adaptive.operation, page.data(), page.width(), page.height(), page.stride(), 255U, 0U, 8,
                        marked.data(), marked.stride());
        });
        stage.show(adaptive.title, outcome, pictureOf(marked));
    }
}

} // namespace demo
