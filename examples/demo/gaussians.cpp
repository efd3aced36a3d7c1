#include "demo/sections.h"

namespace demo
{

namespace
{

struct Filter {
    const char* title;
    const char* name;
    void (*operation)(const uint8_t* src, unsigned width, unsigned height, unsigned srcStride, uint8_t* dst,
                      unsigned dstStride, int border);
};

constexpr Filter kFilters[] = {
    {"Gaussian 3x3", NAMED(odxFilterGaussian3x3u8_v2)},
    {"Gaussian 5x5", NAMED(odxFilterGaussian5x5u8_v2)},
    {"Gaussian 11x11", NAMED(odxFilterGaussian11x11u8_v2)},
};

} // namespace

void showGaussians(Stage& stage)
{
    const Plane<uint8_t>& grey = stage.grey();
    stage.beginSection("Gaussian filters",
                       "8 bits a pixel, the border computed from the pixels inside the picture");
    stage.showSource("The picture in grey", "what the filters work on", pictureOf(grey));
    for (const Filter& filter : kFilters) {
        Plane<uint8_t> smooth(grey.width(), grey.height());
        const Outcome outcome = stage.run(filter.name, smooth, [&] {
            return done(filter.operation, grey.data(), grey.width(), grey.height(), grey.stride(), smooth.data(),
                        smooth.stride(), 1);
        });
        stage.show(filter.title, outcome, pictureOf(smooth));
    }
}

} // namespace demo
