// Pictures for tests of definitions: one pixel at a time, in wide arithmetic.
#ifndef ODX_TESTS_SUPPORT_PICTURES_H
#define ODX_TESTS_SUPPORT_PICTURES_H

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <stdint.h>
#include <string>
#include <vector>

namespace odx::test
{

template <class T>
struct Grid {
    int width, height;
    std::vector<T> pixels;

    Grid(int w, int h, T fill = T())
        : width(w), height(h), pixels(static_cast<size_t>(w) * static_cast<size_t>(h), fill)
    {
    }
    T& at(int x, int y)
    {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
    }
    const T& at(int x, int y) const { return const_cast<Grid*>(this)->at(x, y); }
    bool holds(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }
    // Whether the pixel is closer than r to an edge.
    bool border(int x, int y, int r) const { return x < r || y < r || x >= width - r || y >= height - r; }
    bool operator==(const Grid& other) const { return pixels == other.pixels; }

    unsigned w() const { return static_cast<unsigned>(width); }
    unsigned h() const { return static_cast<unsigned>(height); }
    unsigned stride() const { return w() * static_cast<unsigned>(sizeof(T)); }
    const T* data() const { return pixels.data(); }
    T* data() { return pixels.data(); }
};

template <class T>
Grid<T> noise(int width, int height, int64_t low, int64_t high)
{
    static std::mt19937_64 random(11);
    Grid<T> grid(width, height);
    for (T& pixel : grid.pixels)
        pixel = static_cast<T>(std::uniform_int_distribution<int64_t>(low, high)(random));
    return grid;
}

// Compares every pixel with at(x, y).
template <class T, class At>
void expectPixels(const Grid<T>& picture, At at, const std::string& what = "")
{
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x)
            ASSERT_EQ(static_cast<T>(at(x, y)), picture.at(x, y))
                << what << ' ' << picture.width << "x" << picture.height << " at " << x << ',' << y;
    }
}

// A pixel outside the image: a constant, or the nearest inside it.
struct Outside {
    bool replicate;
    int64_t constant;
};

template <class T>
int64_t sample(const Grid<T>& src, int64_t x, int64_t y, Outside outside)
{
    const auto u = std::clamp<int64_t>(x, 0, src.width - 1), v = std::clamp<int64_t>(y, 0, src.height - 1);
    const bool inside = u == x && v == y;
    return inside || outside.replicate ? src.at(static_cast<int>(u), static_cast<int>(v)) : outside.constant;
}

// Calls f(dx, dy) over a window.
inline void window(int halfWidth, int halfHeight, const std::function<void(int, int)>& f)
{
    for (int dy = -halfHeight; dy <= halfHeight; ++dy) {
        for (int dx = -halfWidth; dx <= halfWidth; ++dx)
            f(dx, dy);
    }
}

// Weighted sum and weight of the taps inside the image.
struct Taps {
    int64_t sum = 0, weight = 0;
};

template <class T>
Taps binomial(const Grid<T>& src, int x, int y, const std::vector<int>& weights)
{
    const int r = static_cast<int>(weights.size()) / 2;
    Taps taps;
    window(r, r, [&](int dx, int dy) {
        if (!src.holds(x + dx, y + dy)) return;
        const int64_t weight = int64_t{weights.begin()[dx + r]} * weights.begin()[dy + r];
        taps.sum += weight * src.at(x + dx, y + dy);
        taps.weight += weight;
    });
    return taps;
}

} // namespace odx::test

#endif
