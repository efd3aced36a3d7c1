#include "demo/sections.h"

#include <algorithm>
#include <cmath>

namespace demo
{

namespace
{

// The sum of a window about a pixel, as far as it is in the picture, by four reads; and how many pixels it has.
template <class T>
struct Window {
    T sum;
    float pixels;
};
template <class T>
Window<T> windowOf(const Plane<T>& table, unsigned x, unsigned y, unsigned size)
{
    const unsigned before = size / 2, after = size - before;
    const unsigned left = x - std::min(x, before), right = std::min(x + after, table.width() - 1);
    const unsigned top = y - std::min(y, before), bottom = std::min(y + after, table.height() - 1);
    return {table.at(right, bottom) - table.at(left, bottom) - table.at(right, top) + table.at(left, top),
            static_cast<float>((right - left) * (bottom - top))};
}

Picture boxFilter(const Plane<uint32_t>& table, unsigned size)
{
    return pictureOf(Plane<uint8_t>::from(table.width() - 1, table.height() - 1, [&](unsigned x, unsigned y) {
        const Window<uint32_t> window = windowOf(table, x, y, size);
        return nearestByte(static_cast<float>(window.sum) / window.pixels);
    }));
}

// From black in the first corner to white in the last one.
Picture sumsOf(const Plane<uint32_t>& table)
{
    const auto all = static_cast<float>(std::max(table.at(table.width() - 1, table.height() - 1), 1U));
    return pictureOf(Plane<uint8_t>::from(table.width() - 1, table.height() - 1, [&](unsigned x, unsigned y) {
        return nearestByte(255 * static_cast<float>(table.at(x + 1, y + 1)) / all);
    }));
}

void showDeviation(Stage& stage)
{
    constexpr unsigned kSize = 9, kContrast = 4;
    const Plane<uint8_t>& grey = stage.grey();
    Plane<uint64_t> sums(grey.width() + 1, grey.height() + 1), squares(grey.width() + 1, grey.height() + 1);
    const Outcome outcome =
        stage.run("odxIntegrateImageu8u64", {{sums.data(), sums.bytes()}, {squares.data(), squares.bytes()}},
                  static_cast<size_t>(grey.width()) * grey.height(), [&] {
                      return done(odxIntegrateImageu8u64, grey.data(), grey.width(), grey.height(), grey.stride(),
                                  sums.data(), squares.data(), sums.stride());
                  });
    stage.show("Deviation in 9x9", outcome,
               pictureOf(Plane<uint8_t>::from(grey.width(), grey.height(), [&](unsigned x, unsigned y) {
                   const Window<uint64_t> sum = windowOf(sums, x, y, kSize),
                                          square = windowOf(squares, x, y, kSize);
                   const float mean = static_cast<float>(sum.sum) / sum.pixels;
                   const float variance = static_cast<float>(square.sum) / square.pixels - mean * mean;
                   return nearestByte(std::min(kContrast * std::sqrt(std::max(variance, 0.0F)), 255.0F));
               })));
}

} // namespace

void showIntegrals(Stage& stage)
{
    const Plane<uint8_t>& grey = stage.grey();
    stage.beginSection("Integral images", "sums of windows of any size by four reads a pixel");
    Plane<uint32_t> table(grey.width() + 1, grey.height() + 1);
    const Outcome outcome = stage.run("odxIntegrateImageu8_v2", table, [&] {
        return done(odxIntegrateImageu8_v2, grey.data(), grey.width(), grey.height(), grey.stride(), table.data(),
                    table.stride());
    });
    stage.show("Sums of pixels", outcome, sumsOf(table));
    stage.showSource("Box 15x15", "from the integral image", boxFilter(table, 15));
    stage.showSource("Box 61x61", "from the integral image", boxFilter(table, 61));
    showDeviation(stage);
}

} // namespace demo
