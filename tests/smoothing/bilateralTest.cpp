// The bilateral filters against their definition.
#include "ondrix.h"
#include "support/drawings.h"
#include "support/referenceTest.h"

#include <cmath>
#include <limits>

using namespace odx::test;

namespace
{

using Image = Grid<uint8_t>;
using Line = std::vector<int>;

// floor(unit * exp(-square / (2 * sigma^2)) + 0.5)
int weight(double unit, int square, float sigma)
{
    const auto s = static_cast<double>(sigma);
    return static_cast<int>(std::floor(unit * std::exp(-square / (2 * s * s)) + 0.5));
}

int average(const Image& src, int x, int y, int n, float sigmaColor, float sigmaSpace, Outside outside)
{
    int64_t sum = 0, total = 0;
    window(n / 2, n / 2, [&](int dx, int dy) {
        const auto pixel = static_cast<int>(sample(src, x + dx, y + dy, outside)), d = pixel - src.at(x, y);
        const int64_t w = int64_t{weight(128, d * d, sigmaColor)} * weight(255, dx * dx + dy * dy, sigmaSpace);
        sum += w * pixel;
        total += w;
    });
    return static_cast<int>((sum + total / 2) / total);
}

// Levels near each other, over edges.
Image picture(int width, int height)
{
    const Image grain = noise<uint8_t>(width, height, 0, 40);
    return drawn<uint8_t>(
        width, height, [&](int x, int y) { return grain.at(x, y) + (x > 9 ? 100 : 0) + (y % 8 > 5 ? 115 : 0); });
}

// The weights F and the sums E of a line from its start.
std::pair<Line, Line> sums(const Line& values, const Line& guide, const Line& steps)
{
    Line f = {32}, e = {0};
    for (size_t x = 1; x < values.size(); ++x) {
        const int64_t t = steps[static_cast<size_t>(std::abs(guide[x] - guide[x - 1]))];
        e.push_back(static_cast<int>((t * (e[x - 1] + (values[x - 1] - values[x]) * f[x - 1]) + 2048) >> 12));
        f.push_back(static_cast<int>(32 + ((t * f[x - 1] + 2048) >> 12)));
    }
    return {f, e};
}

// Every row; the result is transposed.
Image smoothed(const Image& image, const Image& guide, const Line& steps)
{
    Image result(image.height, image.width);
    for (int y = 0; y < image.height; ++y) {
        const auto row = [y](const Image& i) { return Line(&i.at(0, y), &i.at(0, y) + i.width); };
        const auto reversed = [](const Line& line) { return Line(line.rbegin(), line.rend()); };
        const Line values = row(image);
        const auto [f, e] = sums(values, row(guide), steps);
        const auto [g, d] = sums(reversed(values), reversed(row(guide)), steps);
        for (size_t x = 0, last = values.size() - 1; x <= last; ++x) {
            const double all = f[x] + g[last - x] - 32, sum = e[x] + d[last - x];
            const int value = values[x] + static_cast<int>(std::floor((2 * sum + all) / (2 * all)));
            result.at(y, static_cast<int>(x)) = static_cast<uint8_t>(std::clamp(value, 0, 255));
        }
    }
    return result;
}

Image transposed(const Image& image)
{
    return smoothed(image, image, Line(256, 0)); // no pixel counts but its own
}

constexpr float kInfinite = std::numeric_limits<float>::infinity();

class Bilateral : public odx::test::ReferenceTest
{
};

} // namespace

TEST_F(Bilateral, WindowsAreWeightedByDistanceAndDifference)
{
    const auto test = [](int n, auto* plain, auto* filter, int width, int height) {
        const Image src = picture(width, height);
        const auto expect = [&](const Image& dst, float color, float space, bool whole, Outside outside) {
            expectPixels(dst, [&](int x, int y) {
                return whole || !src.border(x, y, n / 2) ? average(src, x, y, n, color, space, outside) : 77;
            });
        };
        Image dst(width, height, 77);
        plain(src.data(), src.w(), src.h(), 0, dst.data(), 0);
        expect(dst, 16, static_cast<float>(n) / 4, false, {});
        const float sigmas[][2] = {{30, 1.7F},  {3, kInfinite},         {kInfinite, 1},
                                   {1e-40F, 2}, {kInfinite, kInfinite}, {50, 1e-40F}};
        for (const auto& [color, space] : sigmas) {
            for (const odxBorderType type :
                 {ONDRIX_BORDER_UNDEFINED, ONDRIX_BORDER_CONSTANT, ONDRIX_BORDER_REPLICATE}) {
                Image all(width, height, 77);
                EXPECT_EQ(0, filter(src.data(), src.w(), src.h(), 0, all.data(), 0, color, space, type, 0x714));
                expect(all, color, space, type != ONDRIX_BORDER_UNDEFINED, {type == ONDRIX_BORDER_REPLICATE, 20});
            }
        }
    };
    for (const auto& [width, height] : {std::pair{24, 20}, {9, 11}, {4, 12}, {1, 1}}) {
        test(5, odxBilateralFilter5x5u8, odxBilateralFilter5x5u8_v2, width, height);
        test(7, odxBilateralFilter7x7u8, odxBilateralFilter7x7u8_v2, width, height);
        test(9, odxBilateralFilter9x9u8, odxBilateralFilter9x9u8_v2, width, height);
    }
}

TEST_F(Bilateral, RecursionFollowsItsLines)
{
    for (const auto& [width, height] : {std::pair{70, 40}, {130, 3}, {1, 66}, {1, 1}, {64, 64}}) {
        for (const Image& src : {picture(width, height), noise<uint8_t>(width, height, 0, 255)}) {
            for (const auto& [color, space] :
                 {std::pair{20.F, 5.F}, {kInfinite, 64.F}, {1e-40F, 2.F}, {60.F, 1e-40F}}) {
                Line steps;
                for (int d = 0; d < 256; ++d)
                    steps.push_back(
                        weight(4096 * std::exp(-std::sqrt(2.0) / static_cast<double>(space)), d * d, color));
                Image dst(width, height, 77);
                EXPECT_EQ(0, odxBilateralFilterRecursiveu8(src.data(), src.w(), src.h(), 0, dst.data(), 0, color,
                                                           space));
                EXPECT_EQ(smoothed(smoothed(src, src, steps), transposed(src), steps), dst)
                    << color << ", " << space;
            }
        }
    }
}
