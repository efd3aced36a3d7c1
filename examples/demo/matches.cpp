#include "demo/sections.h"

#include <algorithm>
#include <random>
#include <string>

namespace demo
{

namespace
{

constexpr int kWidth = 180, kHeight = 242, kGap = 4; // of a view: two of them fill a tile
constexpr int kReach = 13;                           // of a patch, in pixels
constexpr size_t kBytes = 32;
constexpr uint32_t kFar = 40; // of 256 bits: patches that differ in more are different ones
constexpr unsigned kMost = 60;

// Corners, and the patches around them: bit i says which of two fixed points of the patch is brighter.
struct View {
    Plane<uint8_t> image;
    std::vector<Point> corners;
    std::vector<uint8_t> descriptors;

    explicit View(Plane<uint8_t> pixels) : image(std::move(pixels))
    {
        const unsigned width = image.width(), height = image.height(), capacity = 4000;
        std::vector<uint32_t> xy(2 * capacity), scores(capacity), temporary(3 * capacity + height);
        uint32_t count = 0;
        odxCornerFast9Scoreu8_v2(image.data(), width, height, image.stride(), 15, kReach + 1, xy.data(),
                                 scores.data(), capacity, &count, 1, temporary.data());
        for (size_t i = 0; i < count; ++i)
            corners.push_back({static_cast<int>(xy[2 * i]), static_cast<int>(xy[2 * i + 1])});
        // A multiple of four, as they are compared.
        corners.resize(corners.size() / 4 * 4);

        Plane<uint8_t> smooth(width, height);
        odxFilterGaussian5x5u8_v2(image.data(), width, height, image.stride(), smooth.data(), smooth.stride(), 1);
        std::mt19937 random(1);
        const auto coordinate = [&random] { return static_cast<int>(random() % (2 * kReach + 1)) - kReach; };
        descriptors.resize(kBytes * corners.size());
        for (size_t bit = 0; bit < 8 * kBytes; ++bit) {
            const Point a{coordinate(), coordinate()}, b{coordinate(), coordinate()};
            for (size_t i = 0; i < corners.size(); ++i) {
                const auto at = [&](Point p) {
                    return smooth.at(static_cast<unsigned>(corners[i].x + p.x),
                                     static_cast<unsigned>(corners[i].y + p.y));
                };
                const int brighter = at(a) < at(b) ? 1 : 0;
                descriptors[kBytes * i + bit / 8] |= static_cast<uint8_t>(brighter << bit % 8);
            }
        }
    }
};

void drawLine(Picture& picture, Point from, Point to, Rgb colour)
{
    const int steps = std::max({std::abs(to.x - from.x), std::abs(to.y - from.y), 1});
    for (int i = 0; i <= steps; ++i)
        picture.at(from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps) = colour;
}

} // namespace

void showMatches(Stage& stage)
{
    stage.beginSection("Matching descriptors", "corners of two views, the second moved, darker and with noise");
    const Plane<uint8_t>& grey = stage.grey();
    const Rectangle part =
        windowAbout(stage.detail().x + stage.detail().width / 2, stage.detail().y + stage.detail().height / 2,
                    kWidth + 14, kHeight + 9, static_cast<int>(grey.width()), static_cast<int>(grey.height()));
    if (part.width < kWidth + 14 || part.height < kHeight + 9) return;
    const auto pixel = [&](unsigned x, unsigned y) {
        return grey.at(x + static_cast<unsigned>(part.x), y + static_cast<unsigned>(part.y));
    };
    std::mt19937 random(2);
    const View first(Plane<uint8_t>::from(kWidth, kHeight, pixel));
    const View second(Plane<uint8_t>::from(kWidth, kHeight, [&](unsigned x, unsigned y) {
        return pixel(x + 14, y + 9) * 7 / 8 + static_cast<unsigned>(random() % 5);
    }));

    const size_t n = second.corners.size();
    std::vector<uint32_t> distances(first.corners.size() * n);
    const auto compare = [&] {
        for (size_t i = 0; i < first.corners.size(); ++i) {
            for (size_t j = 0; j < n; j += 4) {
                const uint8_t* const four = &second.descriptors[kBytes * j];
                odxHammingDistance32x4u8a4(&first.descriptors[kBytes * i], four, four + kBytes, four + 2 * kBytes,
                                           four + 3 * kBytes, &distances[n * i + j]);
            }
        }
        return ONDRIX_SUCCESS;
    };
    const Outcome outcome =
        stage.run("odxHammingDistance32x4u8a4", {{distances.data(), distances.size() * sizeof(uint32_t)}},
                  distances.size(), compare);

    // The nearest of each, if it is near and clearly nearer than the second.
    Picture both(2 * kWidth + kGap, kHeight, colours::kPanel);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const uint8_t left = first.image.at(static_cast<unsigned>(x), static_cast<unsigned>(y)),
                          right = second.image.at(static_cast<unsigned>(x), static_cast<unsigned>(y));
            both.at(x, y) = {left, left, left};
            both.at(x + kWidth + kGap, y) = {right, right, right};
        }
    }
    unsigned matches = 0, right = 0;
    for (size_t i = 0; i < first.corners.size() && n > 1; ++i) {
        const auto row = distances.begin() + static_cast<std::ptrdiff_t>(n * i);
        const auto best = std::min_element(row, row + static_cast<std::ptrdiff_t>(n));
        if (*best > kFar) continue;
        const bool clear = std::count_if(row, row + static_cast<std::ptrdiff_t>(n),
                                         [=](uint32_t d) { return d < *best + 20; }) == 1;
        if (!clear) continue;
        const Point a = first.corners[i], b = second.corners[static_cast<size_t>(best - row)];
        const bool truly = std::abs(a.x - b.x - 14) <= 2 && std::abs(a.y - b.y - 9) <= 2;
        ++matches;
        right += truly ? 1 : 0;
        if (matches % (first.corners.size() / kMost + 1) == 0)
            drawLine(both, a, {b.x + kWidth + kGap, b.y}, truly ? colours::kGood : colours::kBad);
    }
    stage.show("Matches: " + std::to_string(right) + " of " + std::to_string(matches), outcome, both);
}

} // namespace demo
