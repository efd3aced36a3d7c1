#include "demo/sections.h"

#include <algorithm>
#include <string>

namespace demo
{

namespace
{

struct Filter {
    const char* title;
    const char* name;
    void (*operation)(const uint8_t* src, unsigned width, unsigned height, unsigned srcStride, uint8_t* dst,
                      unsigned dstStride);
};

constexpr Filter kFilters[] = {
    {"Box 3x3", NAMED(odxBoxFilter3x3u8)},
    {"Box 5x5", NAMED(odxBoxFilter5x5u8)},
    {"Box 11x11", NAMED(odxBoxFilter11x11u8)},
};

void showFloatBox(Stage& stage)
{
    constexpr unsigned kSize = 25;
    const Plane<uint8_t>& grey = stage.grey();
    const auto source = Plane<float>::from(grey.width(), grey.height(), [&](unsigned x, unsigned y) {
        return static_cast<float>(grey.at(x, y)) / 255;
    });
    Plane<float> smooth(grey.width(), grey.height());
    const Outcome outcome = stage.run("odxBoxFilterNxNf32", smooth, [&] {
        return done(odxBoxFilterNxNf32, source.data(), source.width(), source.height(), source.stride(), kSize,
                    smooth.data(), smooth.stride());
    });
    const Picture picture = pictureOf(smooth, [](float value) {
        const uint8_t level = nearestByte(std::clamp(value, 0.0F, 1.0F) * 255);
        return Rgb{level, level, level};
    });
    stage.show("Box 25x25, float", outcome, picture);
}

} // namespace

void showBoxes(Stage& stage)
{
    const Plane<uint8_t>& grey = stage.grey();
    stage.beginSection("Box filters", "the mean of a window; pixels outside the picture count as 0");
    for (const Filter& filter : kFilters) {
        Plane<uint8_t> smooth(grey.width(), grey.height());
        const Outcome outcome = stage.run(filter.name, smooth, [&] {
            return done(filter.operation, grey.data(), grey.width(), grey.height(), grey.stride(), smooth.data(),
                        smooth.stride());
        });
        stage.show(filter.title, outcome, pictureOf(smooth));
    }
    showFloatBox(stage);
}

} // namespace demo
