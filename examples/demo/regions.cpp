#include "demo/sections.h"

#include <string>

namespace demo
{

namespace
{

// A handle, and what an extraction writes.
struct Regions {
    using Init = uint32_t (*)(unsigned width, unsigned height, int delta, unsigned minArea, unsigned maxArea,
                              float maxVariation, float minDiversity, void** handle);

    Regions(const Plane<uint8_t>& image, Init init)
    {
        constexpr int kDelta = 5;
        constexpr float kVariation = 0.25F, kDiversity = 0.2F;
        const unsigned pixels = image.width() * image.height();
        init(image.width(), image.height(), kDelta, 60, pixels / 20, kVariation, kDiversity, &handle);
    }
    ~Regions()
    {
        if (handle != nullptr) odxMserRelease(handle);
    }
    Regions(const Regions&) = delete;
    Regions& operator=(const Regions&) = delete;

    static constexpr unsigned kMost = 4000, kMostPoints = 4000000;
    void* handle = nullptr;
    uint32_t count = 0;
    std::vector<uint16_t> sizes = std::vector<uint16_t>(kMost);
    std::vector<uint32_t> points = std::vector<uint32_t>(size_t{2} * kMostPoints);
    std::vector<float> variations = std::vector<float>(kMost);
    std::vector<int32_t> polarities = std::vector<int32_t>(kMost);
    std::vector<uint32_t> ids = std::vector<uint32_t>(kMost), counters = std::vector<uint32_t>(kMost);
};

// The ellipse that has the region's centre and second moments.
void drawEllipse(Picture& picture, const uint32_t* points, size_t count, Rgb colour)
{
    double x = 0, y = 0, xx = 0, xy = 0, yy = 0;
    for (size_t i = 0; i < count; ++i) {
        x += points[2 * i];
        y += points[2 * i + 1];
    }
    x /= static_cast<double>(count);
    y /= static_cast<double>(count);
    for (size_t i = 0; i < count; ++i) {
        const double dx = points[2 * i] - x, dy = points[2 * i + 1] - y;
        xx += dx * dx;
        xy += dx * dy;
        yy += dy * dy;
    }
    // The root of the matrix of moments, by its triangular factor, takes a circle to the ellipse.
    const double scale = 4 / static_cast<double>(count);
    const double a = std::sqrt(xx * scale + 1e-9), b = xy * scale / a,
                 c = std::sqrt(std::fmax(yy * scale - b * b, 0));
    constexpr int kSteps = 720;
    for (int i = 0; i < kSteps; ++i) {
        const double angle = 2 * M_PI * i / kSteps;
        const int px = static_cast<int>(std::lround(x + a * std::cos(angle))),
                  py = static_cast<int>(std::lround(y + b * std::cos(angle) + c * std::sin(angle)));
        if (px >= 0 && px < picture.width() && py >= 0 && py < picture.height()) picture.at(px, py) = colour;
    }
}

void showPolarity(Stage& stage, const Regions& regions, const Outcome& outcome, const std::string& title,
                  int32_t polarity, Rgb colour)
{
    Picture picture = pictureOf(stage.grey());
    const uint32_t* points = regions.points.data();
    unsigned shown = 0;
    for (size_t i = 0; i < regions.count; points += size_t{2} * regions.counters[i], ++i) {
        if (regions.polarities[i] != polarity) continue;
        drawEllipse(picture, points, regions.counters[i], colour);
        ++shown;
    }
    stage.show(title + ": " + std::to_string(shown), outcome, picture);
}

using Extraction = decltype(odxMserExtu8_v2);

void showRegions(Stage& stage, const std::string& neighbours, const char* name, Extraction* extract,
                 Regions::Init init)
{
    const Plane<uint8_t>& grey = stage.grey();
    Regions r(grey, init);
    if (r.handle == nullptr) return;
    const Outcome outcome = stage.run(
        name,
        {{&r.count, sizeof r.count},
         {r.sizes.data(), r.sizes.size() * sizeof r.sizes[0]},
         {r.points.data(), r.points.size() * sizeof r.points[0]}},
        size_t{grey.width()} * grey.height(), [&] {
            return extract(r.handle, grey.data(), grey.width(), grey.height(), grey.stride(), Regions::kMost,
                           &r.count, r.sizes.data(), Regions::kMostPoints, r.points.data(), r.variations.data(),
                           r.polarities.data(), r.ids.data(), r.counters.data()) != 0
                       ? ONDRIX_SUCCESS
                       : ONDRIX_FAILURE;
        });
    showPolarity(stage, r, outcome, "Dark, " + neighbours, 1, colours::kMark);
    showPolarity(stage, r, outcome, "Bright, " + neighbours, -1, colours::kMarker);
}

} // namespace

void showStableRegions(Stage& stage)
{
    stage.beginSection("Stable regions", "components of thresholds that hardly change, as "
                                         "ellipses of the same moments");
    showRegions(stage, "4 neighbours", NAMED(odxMserExtu8_v2), odxMserInit);
    showRegions(stage, "8 neighbours", NAMED(odxMserExtNN8u8), odxMserNN8Init);
}

} // namespace demo
