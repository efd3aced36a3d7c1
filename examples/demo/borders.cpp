#include "common/canvas.h"
#include "common/view.h"
#include "demo/sections.h"

#include <string>

namespace demo
{

namespace
{

constexpr int kCropWidth = 24, kCropHeight = 16;
constexpr uint32_t kOutside = 255; // the value of pixels outside for ONDRIX_BORDER_CONSTANT

struct Filter {
    const char* title;
    const char* name;
    odxStatus (*operation)(const uint8_t* src, unsigned width, unsigned height, unsigned srcStride, uint8_t* dst,
                           unsigned dstStride, odxBorderType borderType, uint32_t borderValue);
};

constexpr Filter kFilters[] = {
    {"Gaussian 3x3", NAMED(odxFilterGaussian3x3u8_v3)},
    {"Box 3x3", NAMED(odxBoxFilter3x3u8_v2)},
    {"Median 3x3", NAMED(odxFilterMedian3x3u8_v3)},
};

constexpr struct {
    const char* name;
    odxBorderType type;
} kBorders[] = {{"undefined", ONDRIX_BORDER_UNDEFINED},
                {"constant", ONDRIX_BORDER_CONSTANT},
                {"replicate", ONDRIX_BORDER_REPLICATE}};

// A pattern that shows where nothing was written.
Plane<uint8_t> chequered(unsigned width, unsigned height)
{
    return Plane<uint8_t>::from(width, height, [](unsigned x, unsigned y) { return (x + y) % 2 != 0 ? 150 : 70; });
}

// The crop is filtered where it lies in the picture: a pointer into it, and the picture's stride. The full picture
// gives the time.
void showFilter(Stage& stage, const Filter& filter, size_t border, const Rectangle& crop)
{
    const Plane<uint8_t>& grey = stage.grey();
    const auto filterInto = [&](Plane<uint8_t>& destination, const uint8_t* source) {
        return stage.run(filter.name, destination, [&, source] {
            return filter.operation(source, destination.width(), destination.height(), grey.stride(),
                                    destination.data(), destination.stride(), kBorders[border].type, kOutside);
        });
    };
    Plane<uint8_t> whole(grey.width(), grey.height());
    Outcome outcome = filterInto(whole, grey.data());

    Plane<uint8_t> small = chequered(static_cast<unsigned>(crop.width), static_cast<unsigned>(crop.height));
    const uint8_t* const corner = &grey.at(static_cast<unsigned>(crop.x), static_cast<unsigned>(crop.y));
    outcome.identical &= filterInto(small, corner).identical;
    stage.show(std::string(filter.title) + ", " + kBorders[border].name, outcome, pictureOf(small));
}

Picture cropIn(const Picture& picture, const Rectangle& crop)
{
    Picture marked = picture;
    frame(marked, crop.grown(1), 1, colours::kMarker);
    return marked;
}

} // namespace

void showBorders(Stage& stage)
{
    const Plane<uint8_t>& grey = stage.grey();
    const Rectangle& detail = stage.detail();
    const int width = static_cast<int>(grey.width()), height = static_cast<int>(grey.height());
    const Rectangle crop = windowAbout(detail.x + detail.width / 2, detail.y + detail.height / 2, kCropWidth,
                                       kCropHeight, width, height);
    const Picture greyPicture = pictureOf(grey);

    stage.beginSection("Border types", "a small crop, filtered where it lies in the picture, without a copy");
    for (size_t row = 0; row < std::size(kFilters); ++row) {
        switch (row) {
        case 0:
            stage.showSource("The crop in the picture", "a pointer and a stride", cropIn(greyPicture, crop));
            break;
        case 1:
            stage.showSource("The crop",
                             std::to_string(crop.width) + " x " + std::to_string(crop.height) + " pixels",
                             reduced(greyPicture, crop, 1));
            break;
        default:
            stage.showSource(
                "The destination before", "chequered where not written",
                pictureOf(chequered(static_cast<unsigned>(crop.width), static_cast<unsigned>(crop.height))));
        }
        for (size_t border = 0; border < std::size(kBorders); ++border)
            showFilter(stage, kFilters[row], border, crop);
    }
}

} // namespace demo
