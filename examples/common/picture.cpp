#include "common/picture.h"

#include <algorithm>
#include <cstdlib>

namespace demo
{

namespace
{

// The mean of the pixels inside [left, right) x [top, bottom).
Rgb meanOf(const Picture& picture, int left, int top, int right, int bottom)
{
    unsigned r = 0, g = 0, b = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            const Rgb& pixel = picture.at(x, y);
            r += pixel.r;
            g += pixel.g;
            b += pixel.b;
        }
    }
    const unsigned n = static_cast<unsigned>((right - left) * (bottom - top));
    const auto rounded = [n](unsigned sum) { return static_cast<uint8_t>((sum + n / 2) / n); };
    return {rounded(r), rounded(g), rounded(b)};
}

// How much the gradients in a window differ in direction: nothing for a single edge.
double detailIn(const Plane<uint8_t>& grey, const Rectangle& window)
{
    double xx = 0, yy = 0, xy = 0;
    for (int y = window.y; y < window.bottom(); ++y) {
        for (int x = window.x; x < window.right(); ++x) {
            const auto pixel = [&](int dx, int dy) {
                return grey.at(static_cast<unsigned>(x + dx), static_cast<unsigned>(y + dy));
            };
            const int dx = pixel(1, 0) - pixel(0, 0), dy = pixel(0, 1) - pixel(0, 0);
            xx += dx * dx;
            yy += dy * dy;
            xy += dx * dy;
        }
    }
    return xx * yy - xy * xy;
}

} // namespace

Rectangle windowAbout(int x, int y, int windowWidth, int windowHeight, int width, int height)
{
    windowWidth = std::min(windowWidth, width);
    windowHeight = std::min(windowHeight, height);
    return {std::clamp(x - windowWidth / 2, 0, width - windowWidth),
            std::clamp(y - windowHeight / 2, 0, height - windowHeight), windowWidth, windowHeight};
}

Picture pictureOf(const Plane<uint8_t>& grey)
{
    return pictureOf(grey, [](uint8_t value) { return Rgb{value, value, value}; });
}

Plane<uint8_t> greyOf(const Picture& picture)
{
    return Plane<uint8_t>::from(static_cast<unsigned>(picture.width()), static_cast<unsigned>(picture.height()),
                                [&](unsigned x, unsigned y) {
                                    const Rgb& pixel = picture.at(static_cast<int>(x), static_cast<int>(y));
                                    return (77 * pixel.r + 150 * pixel.g + 29 * pixel.b + 128) >>
                                           8; // luma, the weights add up to 256
                                });
}

Picture reduced(const Picture& picture, const Rectangle& part, int factor)
{
    Picture small(part.width / factor, part.height / factor);
    for (int y = 0; y < small.height(); ++y) {
        for (int x = 0; x < small.width(); ++x) {
            const int left = part.x + x * factor, top = part.y + y * factor;
            small.at(x, y) = meanOf(picture, left, top, left + factor, top + factor);
        }
    }
    return small;
}

Picture fitted(const Picture& picture, int width, int height)
{
    const double scale =
        std::min(static_cast<double>(width) / picture.width(), static_cast<double>(height) / picture.height());
    if (scale >= 1) return enlarged(picture, {0, 0, picture.width(), picture.height()}, static_cast<int>(scale));
    const auto scaled = [scale](int size) { return std::max(1, static_cast<int>(size * scale)); };
    Picture small(scaled(picture.width()), scaled(picture.height()));
    const auto from = [](int at, int n, int size) {
        return static_cast<int>(static_cast<int64_t>(at) * size / n);
    };
    for (int y = 0; y < small.height(); ++y) {
        const int top = from(y, small.height(), picture.height());
        const int bottom = from(y + 1, small.height(), picture.height());
        for (int x = 0; x < small.width(); ++x) {
            const int left = from(x, small.width(), picture.width());
            const int right = from(x + 1, small.width(), picture.width());
            small.at(x, y) = meanOf(picture, left, top, right, bottom);
        }
    }
    return small;
}

Picture enlarged(const Picture& picture, const Rectangle& part, int factor)
{
    Picture large(part.width * factor, part.height * factor);
    for (int y = 0; y < large.height(); ++y)
        for (int x = 0; x < large.width(); ++x)
            large.at(x, y) = picture.at(part.x + x / factor, part.y + y / factor);
    return large;
}

Rectangle mostDetailed(const Plane<uint8_t>& grey, int width, int height)
{
    const int fullWidth = static_cast<int>(grey.width()), fullHeight = static_cast<int>(grey.height());
    // The search stays away from the rim, where a window about the place would have nothing to show on one side.
    const int marginX = fullWidth / 6, marginY = fullHeight / 6;
    Rectangle best = windowAbout(fullWidth / 2, fullHeight / 2, width, height, fullWidth, fullHeight);
    double most = -1;
    for (int top = marginY; top + height < fullHeight - marginY; top += height / 2) {
        for (int left = marginX; left + width < fullWidth - marginX; left += width / 2) {
            const Rectangle window{left, top, width, height};
            const double detail = detailIn(grey, window);
            if (detail > most) {
                most = detail;
                best = window;
            }
        }
    }
    return best;
}

} // namespace demo
