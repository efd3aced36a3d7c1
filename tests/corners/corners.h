// What the tests of corner detectors share.
#ifndef ODX_TESTS_CORNERS_CORNERS_H
#define ODX_TESTS_CORNERS_CORNERS_H

#include "support/drawings.h"

#include <ostream>

namespace odx::test
{

using Image = Grid<uint8_t>;

inline Image noisy(int width, int height, int range = 256)
{
    return noise<uint8_t>(width, height, 0, range - 1);
}

struct Corner {
    uint32_t x, y;
    int64_t strength; // or score; 0 where there is none

    bool operator==(const Corner& o) const { return x == o.x && y == o.y && strength == o.strength; }
};
using Corners = std::vector<Corner>;

inline std::ostream& operator<<(std::ostream& stream, const Corner& corner)
{
    return stream << "(" << corner.x << "," << corner.y << ": " << corner.strength << ")";
}

// A mask with a set bit for what is excluded; its size is the image's times `times` divided by `over`. Rows are
// whole bytes, the first pixel is the most significant bit.
struct Mask {
    uint32_t times, over, width, height;
    Image bits;

    Mask(const Image& image, uint32_t timesOf, uint32_t overOf)
        : times(timesOf), over(overOf), width(image.w() * times / over), height(image.h() * times / over),
          bits(noisy(static_cast<int>(width + 7) / 8, static_cast<int>(height)))
    {
    }
    bool excludes(uint32_t x, uint32_t y) const
    {
        const uint32_t mx = x * times / over, my = y * times / over;
        return (bits.pixels[bits.w() * my + mx / 8] >> (7 - mx % 8) & 1) != 0;
    }
};
constexpr std::pair<uint32_t, uint32_t> kScales[] = {{1, 1}, {2, 1}, {1, 2}, {4, 1}, {1, 4}, {8, 1}, {1, 8}};

} // namespace odx::test

#endif
