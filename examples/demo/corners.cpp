#include "demo/sections.h"

#include <string>

namespace demo
{

namespace
{

constexpr int kBarrier = 20;
constexpr unsigned kBorder = 3;

// What a detector writes.
struct Corners {
    explicit Corners(const Plane<uint8_t>& image)
        : capacity(image.width() * image.height() / 8), xy(2 * size_t{capacity}), scores(capacity),
          temporary(3 * size_t{capacity} + image.height())
    {
    }

    std::vector<Buffer> buffers()
    {
        return {{xy.data(), xy.size() * sizeof(uint32_t)},
                {scores.data(), scores.size() * sizeof(uint32_t)},
                {&count, sizeof count}};
    }
    std::vector<Point> points() const
    {
        std::vector<Point> points;
        for (size_t i = 0; i < count; ++i)
            points.push_back({static_cast<int>(xy[2 * i]), static_cast<int>(xy[2 * i + 1])});
        return points;
    }

    unsigned capacity;
    uint32_t count = 0;
    std::vector<uint32_t> xy, scores, temporary;
};

void showCorners(Stage& stage, const std::string& title, const char* name,
                 const std::function<void(Corners&)>& detect)
{
    const Plane<uint8_t>& grey = stage.grey();
    Corners corners(grey);
    const Outcome outcome = stage.run(name, corners.buffers(), size_t{grey.width()} * grey.height(), [&] {
        detect(corners);
        return ONDRIX_SUCCESS;
    });
    const bool full = corners.count >= corners.capacity;
    const std::string count = std::to_string(corners.count) + (full ? ", list full" : "");
    stage.show(title + ": " + count, outcome, pictureOf(grey), corners.points());
}

using FastDetector = void (*)(const uint8_t* src, unsigned width, unsigned height, unsigned stride, int barrier,
                              unsigned border, uint32_t* xy, unsigned capacity, uint32_t* count);
using FastScoring = void (*)(const uint8_t* src, unsigned width, unsigned height, unsigned stride, int barrier,
                             unsigned border, uint32_t* xy, uint32_t* scores, unsigned capacity, uint32_t* count,
                             unsigned suppress, uint32_t* temporary);

// Before suppression.
void showFast(Stage& stage, const char* title, const char* name, FastDetector detector)
{
    const Plane<uint8_t>& grey = stage.grey();
    showCorners(stage, title, name, [&](Corners& corners) {
        detector(grey.data(), grey.width(), grey.height(), grey.stride(), kBarrier, kBorder, corners.xy.data(),
                 corners.capacity, &corners.count);
    });
}

// After it.
void showBestOfFast(Stage& stage, const char* title, const char* name, FastScoring detector)
{
    const Plane<uint8_t>& grey = stage.grey();
    showCorners(stage, title, name, [&](Corners& corners) {
        detector(grey.data(), grey.width(), grey.height(), grey.stride(), kBarrier, kBorder, corners.xy.data(),
                 corners.scores.data(), corners.capacity, &corners.count, 1, corners.temporary.data());
    });
}

} // namespace

void showFastCorners(Stage& stage)
{
    stage.beginSection("FAST corners", "pixels with a long arc around them that is brighter or darker by " +
                                           std::to_string(kBarrier));
    showFast(stage, "FAST-9", NAMED(odxCornerFast9u8));
    showBestOfFast(stage, "After suppression", NAMED(odxCornerFast9Scoreu8_v2));
    showFast(stage, "FAST-10", NAMED(odxCornerFast10u8));
    showBestOfFast(stage, "After suppression", NAMED(odxCornerFast10Scoreu8));
}

void showHarrisCorners(Stage& stage)
{
    constexpr int kThreshold = 20000;
    constexpr unsigned kBest = 100, kDistance = 12;
    constexpr float kQuality = 0.01F;

    const Plane<uint8_t>& grey = stage.grey();
    stage.beginSection("Harris corners", "pixels about which the picture changes in both directions");
    stage.showSource("The picture in grey", "what the detectors work on", pictureOf(grey));
    showCorners(stage, "Harris", "odxCornerHarrisu8", [&](Corners& corners) {
        odxCornerHarrisu8(grey.data(), grey.width(), grey.height(), grey.stride(), kBorder, corners.xy.data(),
                          corners.capacity, &corners.count, kThreshold);
    });
    showCorners(stage, "The strongest", "odxCornerHarrisAdaptiveu8", [&](Corners& corners) {
        odxCornerHarrisAdaptiveu8(grey.data(), grey.width(), grey.height(), grey.stride(), kBorder,
                                  corners.xy.data(), kBest, &corners.count, kThreshold);
    });
    showCorners(stage, "To track, apart", "odxGoodFeatureToTracku8", [&](Corners& corners) {
        odxGoodFeatureToTracku8(grey.data(), grey.width(), grey.height(), grey.stride(), kBorder,
                                corners.xy.data(), corners.capacity, &corners.count, kQuality, kDistance);
    });
}

} // namespace demo
