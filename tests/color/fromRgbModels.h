// Colours the obvious way: one pixel at a time, from the definitions, in wide arithmetic.
#ifndef ODX_TESTS_COLOR_FROM_RGB_MODELS_H
#define ODX_TESTS_COLOR_FROM_RGB_MODELS_H

#include <algorithm>
#include <array>
#include <stddef.h>
#include <stdint.h>
#include <vector>

namespace odx::test
{

using Bytes = std::vector<uint8_t>;

struct Colour {
    int64_t r, g, b, a = 255;
};

inline uint8_t byte(int64_t value)
{
    return static_cast<uint8_t>(value);
}

// Every combination of values 0, step, 2 * step ... 255, in an image whose width is no multiple of any vector.
struct Palette {
    static constexpr uint32_t kWidth = 2 * 311;
    std::vector<Colour> colours;

    explicit Palette(int step)
    {
        for (int r = 0; r < 256; r += step)
            for (int g = 0; g < 256; g += step)
                for (int b = 0; b < 256; b += step)
                    colours.push_back({r, g, b, (r * 7 + g * 3 + b) % 256});
        while (colours.size() % kWidth != 0)
            colours.push_back({255, 0, 128, 3});
    }
    uint32_t height() const { return static_cast<uint32_t>(colours.size() / kWidth); }
    const Colour& at(size_t x, size_t y) const { return colours[y * kWidth + x]; }
};

// A layout of packed pixels, by the places of its channels.
struct PixelLayout {
    size_t size;                 // of a pixel, in bytes
    bool redFirst;               // in memory, or in the low bits of a 16-bit word
    bool repeatsHighBits = true; // where a word's channels are widened

    // The colour as it comes out of a pixel of this layout.
    Colour rounded(const Colour& c) const
    {
        if (size != 2) return {c.r, c.g, c.b, size == 4 ? c.a : 255};
        const auto five = [&](int64_t v) { return v / 8 * 8 + (repeatsHighBits ? v / 32 : 0); };
        const auto six = [&](int64_t v) { return v / 4 * 4 + (repeatsHighBits ? v / 64 : 0); };
        return {five(c.r), six(c.g), five(c.b), 255};
    }
    Bytes pixel(const Colour& c) const
    {
        const int64_t first = redFirst ? c.r : c.b, third = redFirst ? c.b : c.r;
        if (size == 2) {
            const int64_t word = first / 8 + c.g / 4 * 32 + third / 8 * 2048;
            return {byte(word % 256), byte(word / 256)};
        }
        Bytes bytes = {byte(first), byte(c.g), byte(third)};
        if (size == 4) bytes.push_back(byte(c.a));
        return bytes;
    }
    Bytes image(const Palette& palette) const
    {
        Bytes all;
        for (const Colour& colour : palette.colours) {
            const Bytes one = pixel(colour);
            all.insert(all.end(), one.begin(), one.end());
        }
        return all;
    }
};

// Floor of a quotient.
inline int64_t floorDiv(int64_t value, int64_t divisor)
{
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

inline std::array<uint8_t, 3> yCbCrOf(const Colour& c)
{
    const auto chroma = [](int64_t sum) { return byte(std::min<int64_t>(128 + floorDiv(sum + 128, 256), 255)); };
    return {byte((77 * c.r + 150 * c.g + 29 * c.b + 128) / 256), chroma(-43 * c.r - 85 * c.g + 128 * c.b),
            chroma(128 * c.r - 107 * c.g - 21 * c.b)};
}

inline uint8_t greyOf(const Colour& c)
{
    return byte((19595 * c.r + 38469 * c.g + 7471 * c.b + 32768) / 65536);
}

inline std::array<uint8_t, 3> yCrCbOf(const Colour& c)
{
    const auto scaled = [](int64_t offset, int64_t sum) {
        return byte(std::clamp<int64_t>(offset + floorDiv(sum + 16384, 32768), 0, 255));
    };
    return {scaled(0, 9798 * c.r + 19235 * c.g + 3736 * c.b), scaled(128, 16384 * c.r - 13720 * c.g - 2664 * c.b),
            scaled(128, -5529 * c.r - 10855 * c.g + 16384 * c.b)};
}

inline std::array<uint8_t, 3> hsvOf(const Colour& c)
{
    const auto reciprocal = [](int64_t n) { return n == 0 ? 0 : (2 * 65536 + n) / (2 * n); };
    const int64_t most = std::max({c.r, c.g, c.b}), d = most - std::min({c.r, c.g, c.b});
    int64_t h;
    if (c.r == most) {
        h = reciprocal(d) * (c.g - c.b) + (c.g < c.b ? 6 * 65536 : 0);
    } else if (c.g == most) {
        h = reciprocal(d) * (c.b - c.r) + 2 * 65536;
    } else {
        h = reciprocal(d) * (c.r - c.g) + 4 * 65536;
    }
    return {byte(floorDiv(32768 + floorDiv(h * 85, 2), 65536)), byte((reciprocal(most) * d * 255 + 32768) / 65536),
            byte(most)};
}

} // namespace odx::test

#endif
