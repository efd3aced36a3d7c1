// The bilateral filters against their definition.
#include "ondrix.h"
#include "support/pictures.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace odx::test;

namespace
{

using Image = Grid<uint8_t>;

class Bilateral : public testing::Test
{
protected:
    Bilateral() { EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE)); }
};

double gauss(int square, float deviation)
{
    const auto sigma = static_cast<double>(deviation);
    return std::exp(-square / (2 * sigma * sigma));
}

uint8_t average(const Image& src, int x, int y, int n, float sigmaColor, float sigmaSpace, Outside outside)
{
    int64_t sum = 0, total = 0;
    window(n / 2, n / 2, [&](int dx, int dy) {
        const int64_t pixel = sample(src, x + dx, y + dy, outside), d = pixel - src.at(x, y);
        const auto range =
                       static_cast<int64_t>(std::floor(128 * gauss(static_cast<int>(d * d), sigmaColor) + 0.5)),
                   space = static_cast<int64_t>(std::floor(255 * gauss(dx * dx + dy * dy, sigmaSpace) + 0.5));
        sum += range * space * pixel;
        total += range * space;
    });
    return static_cast<uint8_t>((sum + total / 2) / total);
}

// Levels near each other, over edges.
Image picture(int width, int height)
{
    Image image = noise<uint8_t>(width, height, 0, 40);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.at(x, y) = static_cast<uint8_t>(image.at(x, y) + (x > 9 ? 100 : 0) + (y % 8 > 5 ? 115 : 0));
    }
    return image;
}

struct Line {
    std::vector<int> values, guide;
};

// The sums of the definition, from the left.
struct Sums {
    std::vector<int64_t> weight, sum;

    Sums(const Line& line, const std::vector<int>& steps) : weight(1, 32), sum(1, 0)
    {
        for (size_t x = 1; x < line.values.size(); ++x) {
            const int64_t t = steps[static_cast<size_t>(std::abs(line.guide[x] - line.guide[x - 1]))];
            sum.push_back((t * (sum[x - 1] + (line.values[x - 1] - line.values[x]) * weight[x - 1]) + 2048) >> 12);
            weight.push_back(32 + ((t * weight[x - 1] + 2048) >> 12));
        }
    }
};

std::vector<int> smooth(Line line, const std::vector<int>& steps)
{
    const Sums left(line, steps);
    const std::vector<int> values = line.values;
    std::reverse(line.values.begin(), line.values.end());
    std::reverse(line.guide.begin(), line.guide.end());
    const Sums right(line, steps);
    std::vector<int> result;
    for (size_t x = 0, last = values.size() - 1; x <= last; ++x) {
        const int64_t weight = left.weight[x] + right.weight[last - x] - 32,
                      sum = left.sum[x] + right.sum[last - x];
        const double change = std::floor(static_cast<double>(2 * sum + weight) / static_cast<double>(2 * weight));
        result.push_back(std::clamp(values[x] + static_cast<int>(change), 0, 255));
    }
    return result;
}

std::vector<int> row(const Image& image, int y)
{
    const uint8_t* const begin = &image.at(0, y);
    return {begin, begin + image.width};
}

Image transposed(const Image& image)
{
    Image result(image.height, image.width);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x)
            result.at(y, x) = image.at(x, y);
    }
    return result;
}

Image rowsSmoothed(const Image& image, const Image& guide, const std::vector<int>& steps)
{
    Image result = image;
    for (int y = 0; y < image.height; ++y) {
        const std::vector<int> line = smooth({row(image, y), row(guide, y)}, steps);
        std::copy(line.begin(), line.end(), &result.at(0, y));
    }
    return result;
}

} // namespace

TEST_F(Bilateral, WindowsAreWeightedByDistanceAndDifference)
{
    struct Filter {
        int n;
        decltype(&odxBilateralFilter5x5u8) plain;
        decltype(&odxBilateralFilter5x5u8_v2) filter;
    };
    const Filter filters[] = {{5, odxBilateralFilter5x5u8, odxBilateralFilter5x5u8_v2},
                              {7, odxBilateralFilter7x7u8, odxBilateralFilter7x7u8_v2},
                              {9, odxBilateralFilter9x9u8, odxBilateralFilter9x9u8_v2}};
    const float infinite = INFINITY;
    for (const Filter& f : filters) {
        for (const auto& [width, height] : {std::pair{24, 20}, {9, 11}, {4, 12}, {1, 1}}) {
            const Image src = picture(width, height);
            const auto expect = [&](const Image& dst, float color, float space, const Outside* outside) {
                for (int y = 0; y < src.height; ++y) {
                    for (int x = 0; x < src.width; ++x) {
                        const uint8_t value =
                            outside != nullptr || !src.border(x, y, f.n / 2)
                                ? average(src, x, y, f.n, color, space, outside ? *outside : Outside{})
                                : 77;
                        ASSERT_EQ(value, dst.at(x, y)) << f.n << " at " << x << "," << y << ", " << color;
                    }
                }
            };
            Image dst(width, height, 77);
            f.plain(src.data(), src.w(), src.h(), 0, dst.data(), 0);
            expect(dst, 16, static_cast<float>(f.n) / 4, nullptr);
            for (const auto& [color, space] : {std::pair{30.F, 1.7F},
                                               {3.F, infinite},
                                               {infinite, 1.F},
                                               {1e-40F, 2.F},
                                               {infinite, infinite},
                                               {50.F, 1e-40F}}) {
                for (const odxBorderType type :
                     {ONDRIX_BORDER_UNDEFINED, ONDRIX_BORDER_CONSTANT, ONDRIX_BORDER_REPLICATE}) {
                    const Outside outside = {type == ONDRIX_BORDER_REPLICATE, 20};
                    Image bordered(width, height, 77);
                    EXPECT_EQ(0, f.filter(src.data(), src.w(), src.h(), 0, bordered.data(), 0, color, space, type,
                                          0x714));
                    expect(bordered, color, space, type == ONDRIX_BORDER_UNDEFINED ? nullptr : &outside);
                }
            }
        }
    }
}

TEST_F(Bilateral, RecursionFollowsItsLines)
{
    for (const auto& [width, height] : {std::pair{70, 40}, {130, 3}, {1, 66}, {1, 1}, {64, 64}}) {
        for (const Image& src :
             {picture(width, height), noise<uint8_t>(width, height, 0, 255), Image(width, height, 9)}) {
            for (const auto& [color, space] :
                 {std::pair{20.F, 5.F}, {INFINITY, 64.F}, {1e-40F, 2.F}, {60.F, 1e-40F}}) {
                std::vector<int> steps;
                for (int d = 0; d < 256; ++d) {
                    steps.push_back(static_cast<int>(std::floor(
                        4096 * std::exp(-std::sqrt(2.0) / static_cast<double>(space)) * gauss(d * d, color) +
                        0.5)));
                }
                const Image rows = rowsSmoothed(src, src, steps);
                const Image expected = transposed(rowsSmoothed(transposed(rows), transposed(src), steps));
                Image dst(width, height, 77);
                EXPECT_EQ(0, odxBilateralFilterRecursiveu8(src.data(), src.w(), src.h(), 0, dst.data(), 0, color,
                                                           space));
                ASSERT_EQ(expected.pixels, dst.pixels) << width << "x" << height << ", " << color << ", " << space;
            }
        }
    }
}
