// The conversions to RGB, one pixel after the other: written from their formulas, with plain division.
#ifndef ODX_TESTS_COLOR_TO_RGB_MODEL_H
#define ODX_TESTS_COLOR_TO_RGB_MODEL_H

#include "ondrix/colorToRgb.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <stdint.h>
#include <string>
#include <vector>

namespace odx::test
{

struct Sample {
    int64_t y, cb, cr;
};
struct Rgb {
    int64_t r, g, b;
};

// ---- arithmetics ----

inline int64_t floorOf(int64_t dividend, int64_t divisor)
{
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}
inline int64_t clamped(int64_t value)
{
    return std::min<int64_t>(std::max<int64_t>(value, 0), 255);
}

inline Rgb fullRange(Sample s)
{
    const int64_t u = s.cb - 128, v = s.cr - 128, luma = 256 * s.y;
    return {clamped(floorOf(luma + 359 * v + 128, 256)), clamped(floorOf(luma - 88 * u - 183 * v + 128, 256)),
            clamped(floorOf(luma + 454 * u + 128, 256))};
}
inline Rgb videoRange(Sample s)
{
    const int64_t u = s.cb - 128, v = s.cr - 128, c = (s.y - 16) * 298;
    return {clamped(floorOf(c + 409 * v, 256)), clamped(floorOf(c - 208 * v - 100 * u, 256)),
            clamped(floorOf(c + 517 * u, 256))};
}
inline Rgb videoRangeFine(Sample s)
{
    const int64_t u = s.cb - 128, v = s.cr - 128, c = (std::max<int64_t>(s.y, 16) - 16) * 1192;
    return {clamped(floorOf(c + 1634 * v, 1024)), clamped(floorOf(c - 833 * v - 400 * u, 1024)),
            clamped(floorOf(c + 2066 * u, 1024))};
}
inline Rgb jpeg(Sample s)
{
    const int64_t b = 2 * s.cb - 255, r = 2 * s.cr - 255;
    return {clamped(s.y + floorOf(22970 * r + 16384, 32768)),
            clamped(s.y + floorOf(-5638 * b - 11700 * r + 16384, 32768)),
            clamped(s.y + floorOf(29032 * b + 16384, 32768))};
}

// ---- pixels ----

enum class Pixels { Rgb565 = 2, Rgb888 = 3, Rgba8888 = 4 }; // sizes

using Bytes = std::vector<uint8_t>;

inline void append(Bytes& bytes, Pixels pixels, Rgb c)
{
    const auto add = [&](auto... values) { (bytes.push_back(static_cast<uint8_t>(values)), ...); };
    if (pixels == Pixels::Rgb565) {
        const int64_t word = c.r / 8 + c.g / 4 * 32 + c.b / 8 * 2048;
        add(word % 256, word / 256);
    } else {
        add(c.r, c.g, c.b);
        if (pixels == Pixels::Rgba8888) add(255);
    }
}

// ---- images ----

// What an image shows: luma at (x, y), chroma at the coordinates of its samples.
struct Content {
    std::function<uint8_t(uint32_t x, uint32_t y)> y, cb, cr;
};

// An image in one of the source layouts, in buffers without a byte to spare.
struct Source {
    uint32_t width, height;
    Bytes buffers[3];
    std::function<Sample(uint32_t x, uint32_t y)> at; // what the layout says of a pixel
};

// A conversion and its definition.
struct Conversion {
    std::string name;
    Pixels pixels;
    Rgb (*arithmetic)(Sample);
    uint32_t across, down; // pixels of a chroma sample
    uint32_t rowsTogether; // rows are converted in groups of so many
    std::function<std::unique_ptr<Source>(uint32_t width, uint32_t height, const Content&)> make;
    std::function<void(const Source&, uint8_t* dst)> convert;
};

// All 26.
std::vector<Conversion> toRgbConversions();

} // namespace odx::test

#endif
