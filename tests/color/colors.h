// Pixels, luma and chroma in all their layouts, as the tests of conversions see them.
#ifndef ODX_TESTS_COLOR_COLORS_H
#define ODX_TESTS_COLOR_COLORS_H

#include "ondrix.h"
#include "support/pictures.h"
#include "support/referenceTest.h"

#include <array>
#include <random>

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

// Floor of a quotient.
inline int64_t floorDiv(int64_t value, int64_t divisor)
{
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

// Any bytes, but often those around the middle and the limits.
inline Bytes anyBytes(size_t count)
{
    static std::mt19937 random(5);
    constexpr uint8_t kOften[] = {0, 1, 15, 16, 17, 127, 128, 129, 240, 254, 255};
    Bytes bytes(count);
    for (uint8_t& value : bytes)
        value = random() % 3 == 0 ? kOften[random() % std::size(kOften)] : static_cast<uint8_t>(random());
    return bytes;
}

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
        const int64_t word = first / 8 + c.g / 4 * 32 + third / 8 * 2048;
        if (size == 2) return {byte(word % 256), byte(word / 256)};
        Bytes bytes = {byte(first), byte(c.g), byte(third)};
        if (size == 4) bytes.push_back(byte(c.a));
        return bytes;
    }
};

// What these names mean as sources of luma and chroma, and everywhere else.
namespace blueFirst
{
constexpr PixelLayout RGB565 = {2, false, false}, RGB888 = {3, false}, RGBA8888 = {4, false};
}
namespace byName
{
constexpr PixelLayout RGB565 = {2, true}, RGB888 = {3, true}, RGBA8888 = {4, true}, BGR565 = {2, false},
                      BGR888 = {3, false}, BGRA8888 = {4, false};
}

// A luma and chroma image of any layout. Interleaved chroma of odd widths may be a pair short.
struct Picture {
    uint32_t width, height, across, down;
    bool pairs, defaulted, shortRows;
    uint32_t yStride, cStride, crStride;
    Bytes y, cb, cr; // cb also holds pairs

    Picture(uint32_t w, uint32_t h, uint32_t subsampling, bool interleaved, bool packed)
        : width(w), height(h), across(subsampling == 444 ? 1 : 2), down(subsampling == 420 ? 2 : 1),
          pairs(interleaved), defaulted(packed), shortRows(interleaved && packed && across == 2)
    {
        yStride = packed ? w : w + 3;
        // Of strided planes, that of cr alone has gaps in high pictures.
        cStride = shortRows ? w : columns() * (pairs ? 2 : 1) + (packed || h > 4 ? 0 : 5);
        crStride = packed ? cStride : cStride + 2;
        y.assign(size_t{yStride} * rows() * down, 0x5A);
        cb.assign(size_t{cStride} * rows(), 0x5A);
        cr.assign(size_t{crStride} * rows(), 0x5A);
    }
    uint32_t argument(uint32_t stride) const { return defaulted ? 0 : stride; }
    uint32_t columns() const { return (width + across - 1) / across; }
    uint32_t rows() const { return (height + down - 1) / down; }
    // The samples of a kind in a row that are stored.
    uint32_t stored() const { return shortRows ? width / 2 : columns(); }

    void fill()
    {
        for (Bytes* plane : {&y, &cb, &cr})
            *plane = anyBytes(plane->size());
    }
    uint8_t& sample(size_t kind, uint32_t i, uint32_t row)
    {
        if (pairs) return cb[size_t{cStride} * row + 2 * i + kind];
        return kind == 0 ? cb[size_t{cStride} * row + i] : cr[size_t{crStride} * row + i];
    }
    // Sets every sample, of which at(kind, x, y) gives the luma (0) and the chroma of a pixel.
    template <class At>
    void set(At at)
    {
        for (uint32_t i = 0; i < width * height; ++i)
            y[i / width * yStride + i % width] = at(0, i % width, i / width);
        for (uint32_t row = 0; row < rows(); ++row) {
            for (uint32_t i = 0; i < 2 * stored(); ++i)
                sample(i % 2, i / 2, row) = at(1 + i % 2, i / 2 * across, row * down);
        }
    }
    bool operator==(const Picture& other) const { return y == other.y && cb == other.cb && cr == other.cr; }
};

constexpr bool Planar = false, PseudoPlanar = true;

#define ODX_Planar_ARGUMENTS(p) p.y.data(), p.cb.data(), p.cr.data()
#define ODX_Planar_STRIDES(p) p.argument(p.yStride), p.argument(p.cStride), p.argument(p.crStride)
#define ODX_PseudoPlanar_ARGUMENTS(p) p.y.data(), p.cb.data()
#define ODX_PseudoPlanar_STRIDES(p) p.argument(p.yStride), p.argument(p.cStride)

} // namespace odx::test

#endif
