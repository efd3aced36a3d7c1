#include "common/canvas.h"
#include "demo/sections.h"

#include <algorithm>

namespace demo
{

namespace
{

constexpr unsigned kLevels = 6;

// A pyramid of a picture, whose levels lie in planes.
struct Pyramid {
    std::vector<odxPyrLevelStrided> levels{kLevels};
    unsigned scaleFlag;

    Pyramid(const Plane<uint8_t>& base, unsigned octaves) : scaleFlag(octaves)
    {
        const odxStatus status = odxPyramidAllocate_v3(levels.data(), base.width(), base.height(), base.stride(),
                                                       1, 16, kLevels, scaleFlag, 1);
        if (status != ONDRIX_SUCCESS) abort();
    }
    ~Pyramid() { odxPyramidDelete_v2(levels.data(), kLevels, 0); }
    Pyramid(const Pyramid&) = delete;
    Pyramid& operator=(const Pyramid&) = delete;

    std::vector<Buffer> buffers() const
    {
        std::vector<Buffer> all;
        for (const odxPyrLevelStrided& level : levels)
            all.push_back({level.ptr, size_t{level.stride} * level.height});
        return all;
    }
};

Picture pictureOf(const odxPyrLevelStrided& level)
{
    const auto* const pixels = static_cast<const uint8_t*>(level.ptr);
    return pictureOf(Plane<uint8_t>::from(
        level.width, level.height, [&](unsigned x, unsigned y) { return pixels[size_t{level.stride} * y + x]; }));
}

// The levels on one floor, each a step lower than the one before.
Picture staircase(const Pyramid& pyramid)
{
    constexpr int kGap = 4;
    int width = 0;
    for (const odxPyrLevelStrided& level : pyramid.levels)
        width += static_cast<int>(level.width) + kGap;
    const int height = static_cast<int>(pyramid.levels[0].height);
    Picture stairs(width - kGap, height, {255, 255, 255});
    int left = 0;
    for (const odxPyrLevelStrided& level : pyramid.levels) {
        place(stairs, left, height - static_cast<int>(level.height), pictureOf(level));
        left += static_cast<int>(level.width) + kGap;
    }
    return stairs;
}

// The picture, so small that a staircase of it fits a tile.
Plane<uint8_t> small(const Plane<uint8_t>& grey, unsigned width)
{
    const unsigned high = std::max(1U, grey.height() * width / grey.width());
    Plane<uint8_t> plane(width, high);
    odxScaleDownMNu8(grey.data(), grey.width(), grey.height(), grey.stride(), plane.data(), width, high,
                     plane.stride());
    return plane;
}

void showStairs(Stage& stage, const char* title, unsigned width, unsigned scaleFlag)
{
    const Plane<uint8_t> base = small(stage.grey(), width);
    Pyramid pyramid(base, scaleFlag);
    const Outcome outcome =
        stage.run("odxPyramidCreateu8_v3", pyramid.buffers(), size_t{base.width()} * base.height(), [&] {
            return odxPyramidCreateu8_v3(base.data(), base.width(), base.height(), base.stride(), kLevels,
                                         scaleFlag, pyramid.levels.data());
        });
    stage.show(title, outcome, staircase(pyramid));
}

} // namespace

void showPyramids(Stage& stage)
{
    stage.beginSection("Pyramids and scaling",
                       "a pyramid's levels as a staircase; a detail of the picture, 5 times as large");
    showStairs(stage, "Pyramid in halves", 168, 0);
    showStairs(stage, "Pyramid in quarter octaves", 82, 1);

    const Plane<uint8_t>& grey = stage.grey();
    const Rectangle& part = stage.detail();
    const auto width = static_cast<unsigned>(part.width), height = static_cast<unsigned>(part.height);
    const uint8_t* const corner = &grey.at(static_cast<unsigned>(part.x), static_cast<unsigned>(part.y));
    const auto enlarge = [&](const char* title, const char* name, const auto& call) {
        Plane<uint8_t> large(5 * width, 5 * height);
        const Outcome outcome = stage.run(name, large, [&] { return call(large); });
        stage.show(title, outcome, pictureOf(large));
    };
    enlarge("Nearest pixels", "odxScaleu8", [&](Plane<uint8_t>& large) {
        return odxScaleu8(corner, width, height, grey.stride(), large.data(), large.width(), large.height(),
                          large.stride(), ONDRIX_INTERPOLATION_NEAREST);
    });
    enlarge("Cubic", "odxScaleUpPolyu8", [&](Plane<uint8_t>& large) {
        return done(odxScaleUpPolyu8, corner, width, height, grey.stride(), large.data(), large.width(),
                    large.height(), large.stride());
    });
}

} // namespace demo
