// The references of scaling against their definitions, one pixel at a time, and numbers worked by hand.
#include "ondrix.h"
#include "support/pictures.h"
#include "support/referenceTest.h"

#include <cmath>

using namespace odx::test;

namespace
{

using Scaling = odx::test::ReferenceTest;

using Bytes = Grid<uint8_t>;
constexpr uint8_t kUntouched = 77;
const std::vector<int> kGaussian3 = {1, 2, 1}, kGaussian5 = {1, 4, 6, 4, 1};

// Runs an operation whose sizes are given.
template <class Operation, class... Numbers>
Bytes resized(Operation operation, const Bytes& src, int width, int height, Numbers... numbers)
{
    Bytes dst(width, height, kUntouched);
    operation(src.data(), src.w(), src.h(), 0, dst.data(), dst.w(), dst.h(), 0, numbers...);
    return dst;
}

// Sums of the source's columns and rows [x0, x1) and [y0, y1), with the pixels of a channel.
int64_t sumOf(const Bytes& src, int x0, int x1, int y0, int y1, int channels = 1, int channel = 0)
{
    int64_t sum = 0;
    for (int y = y0; y < y1; ++y) {
        for (int x = x0; x < x1; ++x)
            sum += src.at(x * channels + channel, y);
    }
    return sum;
}

} // namespace

TEST_F(Scaling, BlocksBecomeTheirMeans)
{
    const Bytes src = noise<uint8_t>(536, 24, 0, 255);
    // Of an image, or of the part of it that is 40 pixels wide; then what is beside it stays.
    const auto expect = [&](auto operation, int kx, int ky, int columns) {
        Bytes dst(536 / kx, 24 / ky, kUntouched);
        operation(static_cast<unsigned>(columns), dst);
        expectPixels(dst, [&](int x, int y) {
            return x < columns / kx ? sumOf(src, kx * x, kx * x + kx, ky * y, ky * y + ky) / (kx * ky)
                                    : kUntouched;
        });
    };
    expect([&](unsigned w, Bytes& dst) { odxScaleDownBy2u8(src.data(), w, 24, dst.data()); }, 2, 2, 536);
    expect([&](unsigned w, Bytes& dst) { odxScaleDownBy4u8(src.data(), w, 24, dst.data()); }, 4, 4, 536);
    expect([&](unsigned w, Bytes& d) { odxScaleDownBy2u8_v2(src.data(), w, 24, 536, d.data(), d.w()); }, 2, 2, 40);
    expect([&](unsigned w, Bytes& d) { odxScaleDownBy4u8_v2(src.data(), w, 24, 536, d.data(), d.w()); }, 4, 4, 40);
    for (const auto& [kx, ky] : {std::pair{1, 3}, {2, 2}, {4, 1}, {67, 24}})
        expect([&](unsigned w, Bytes& d) { odxScaleDownu8(src.data(), w, 24, d.data(), d.w(), d.h()); }, kx, ky,
               536);
    expect([&](unsigned w, Bytes& d) { odxScaleDownu8_v2(src.data(), w, 24, 536, d.data(), 4, 3, d.w()); }, 10, 8,
           40);
}

TEST_F(Scaling, ThreeByThreeBecomeTwoByTwo)
{
    const Bytes src = noise<uint8_t>(4, 5, 0, 255); // a block, and a rest
    Bytes dst(4, 4, kUntouched);
    EXPECT_EQ(0, odxScaleDown3To2u8(src.data(), 4, 5, 0, dst.data(), 4));
    expectPixels(dst, [&](int x, int y) {
        if (x > 1 || y > 1) return int{kUntouched};
        const int cx = 2 * x, cy = 2 * y; // the corner's
        return (9 * src.at(cx, cy) + 3 * src.at(1, cy) + 3 * src.at(cx, 1) + src.at(1, 1)) / 16;
    });
    EXPECT_EQ(1, odxScaleDown3To2u8(src.data(), 2, 5, 0, dst.data(), 4));
    EXPECT_EQ(1, odxScaleDown3To2u8(src.data(), 4, 2, 0, dst.data(), 4));
}

TEST_F(Scaling, GroupsFollowTheRatio)
{
    const Bytes src = noise<uint8_t>(66, 42, 0, 255);
    for (const auto& [width, height] : {std::pair{66, 42}, {44, 28}, {4, 3}, {40, 41}, {65, 42}}) {
        const auto end = [](int k, int from, int to) { return (k * from + to - 1) / to; };
        const auto mean = [&, width = width, height = height](int x, int y, int columns, int channels,
                                                              int channel) {
            const int x0 = end(x, columns, width), x1 = end(x + 1, columns, width), y0 = end(y, 42, height),
                      y1 = end(y + 1, 42, height);
            const int64_t sum = sumOf(src, x0, x1, y0, y1, channels, channel), n = (x1 - x0) * (y1 - y0);
            return n == 1 ? std::max<int64_t>(sum - 1, 0) : sum / n;
        };
        expectPixels(resized(odxScaleDownMNu8, src, width, height),
                     [&](int x, int y) { return mean(x, y, 66, 1, 0); });
        if (width > 33) continue;
        Bytes pairs(2 * width, height);
        odxScaleDownMNInterleaveu8(src.data(), 33, 42, 66, pairs.data(), static_cast<unsigned>(width), pairs.h(),
                                   0);
        expectPixels(pairs, [&](int x, int y) { return mean(x / 2, y, 33, 2, x % 2); });
    }
    // Larger destinations: a group for each pixel, and none for the rest.
    expectPixels(resized(odxScaleDownMNu8, Bytes(2, 1, 9), 5, 3),
                 [](int x, int y) { return x < 2 && y < 1 ? 8 : kUntouched; });
    const Bytes large(1200, 30, 201); // a group of 18000 pixels
    Bytes mean(2, 1);
    odxScaleDownMNInterleaveu8(large.data(), 600, 30, 0, mean.data(), 1, 1, 0);
    EXPECT_EQ(Bytes(2, 1, 201), mean);
}

TEST_F(Scaling, GaussiansThatHalveDropWhatIsOutside)
{
    for (const auto& [width, height] :
         {std::pair{2, 2}, {3, 4}, {4, 3}, {5, 7}, {10, 8}, {13, 9}, {530, 6}, {531, 5}}) {
        const Bytes src = noise<uint8_t>(width, height, 0, 255);
        Bytes five(width / 2, height / 2);
        odxScaleDownBy2Gaussian5x5u8_v2(src.data(), src.w(), src.h(), 0, five.data(), 0);
        expectPixels(five, [&](int x, int y) {
            const Taps taps = binomial(src, 2 * x, 2 * y, kGaussian5);
            const double share = static_cast<double>(1.0f / static_cast<float>(taps.weight));
            return std::floor(0.5 + static_cast<double>(taps.sum) * share);
        });
        if (width > 2 && height > 2) {
            Bytes three((width + 1) / 2, (height + 1) / 2);
            EXPECT_EQ(0, odxScaleDownBy2Gaussian3x3u8(src.data(), src.w(), src.h(), 0, three.data(), 0));
            expectPixels(three, [&](int x, int y) {
                const Taps taps = binomial(src, 2 * x, 2 * y, kGaussian3);
                const float share = taps.weight == 16 ? 0.0625f : taps.weight == 12 ? 0.0833333f : 0.1111111f;
                return std::floor(static_cast<float>(taps.sum) * share + 0.5f);
            });
        }
        if (width % 2 != 0 || height % 2 != 0) continue;
        Bytes packed(width / 2, height / 2);
        odxScaleDownBy2Gaussian5x5u8(src.data(), src.w(), src.h(), packed.data());
        EXPECT_EQ(five, packed);
        Grid<float> floats(width, height), out(width / 2, height / 2), strided = out;
        std::copy(src.pixels.begin(), src.pixels.end(), floats.pixels.begin());
        odxScaleDownBy2Gaussian5x5f32(floats.data(), src.w(), src.h(), out.data());
        odxScaleDownBy2Gaussian5x5f32_v2(floats.data(), src.w(), src.h(), 0, strided.data(), 0);
        EXPECT_EQ(out, strided);
        expectPixels(out, [&](int x, int y) { // whole numbers: the sum is exact
            const Taps taps = binomial(src, 2 * x, 2 * y, kGaussian5);
            return static_cast<float>(taps.sum) * (1.0f / static_cast<float>(taps.weight));
        });
    }
}

TEST_F(Scaling, TheGaussianThatDoublesMirrorsItsGrid)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {2, 1}, {1, 3}, {7, 5}, {300, 2}}) {
        const Bytes src = noise<uint8_t>(width, height, 0, 255);
        Bytes dst(2 * width, 2 * height), packed = dst;
        odxScaleUpBy2Gaussian5x5u8_v2(src.data(), src.w(), src.h(), 0, dst.data(), 0);
        odxScaleUpBy2Gaussian5x5u8(src.data(), src.w(), src.h(), packed.data());
        EXPECT_EQ(dst, packed);
        // Weights of the pixels of an axis: in the doubled grid, 2n samples of which the odd ones are missing.
        const auto weights = [](int out, int n) {
            std::vector<int> w(static_cast<size_t>(n));
            for (int k = 0; k < 5; ++k) {
                int place = std::abs(out + k - 2);
                if (place >= 2 * n) place = 2 * (2 * n - 1) - place;
                const int pixel = std::min(place / 2, n - 1);
                if (place % 2 == 0) w[static_cast<size_t>(pixel)] += kGaussian5[static_cast<size_t>(k)];
            }
            return w;
        };
        expectPixels(dst, [&, w = width, h = height](int x, int y) {
            const auto wx = weights(x, w), wy = weights(y, h);
            int sum = 0, weightX = 0, weightY = 0;
            for (int v = 0; v < h; ++v) {
                weightY += wy[static_cast<size_t>(v)];
                for (int u = 0; u < w; ++u)
                    sum += wx[static_cast<size_t>(u)] * wy[static_cast<size_t>(v)] * src.at(u, v);
            }
            for (const int weight : wx)
                weightX += weight;
            EXPECT_EQ(64, weightX * weightY);
            return (sum + 32) >> 6;
        });
    }
}

TEST_F(Scaling, UpsamplingWeighsThreeToOne)
{
    const auto check = [](auto operation, int channels, bool doublesX, bool doublesY) {
        for (const auto& [width, height] : {std::pair{1, 1}, {1, 3}, {4, 1}, {5, 4}, {300, 3}}) {
            const Bytes src = noise<uint8_t>(channels * width, height, 0, 255);
            Bytes dst(channels * width * (doublesX ? 2 : 1), height * (doublesY ? 2 : 1), kUntouched);
            operation(src.data(), static_cast<unsigned>(width), src.h(), 0, dst.data(), 0);
            struct Axis {
                int near, far, unit; // 3:1, or one pixel
            };
            const auto axis = [](bool doubles, int i, int n) {
                if (!doubles) return Axis{i, i, 1};
                if (i == 0 || i == 2 * n - 1) return Axis{i / 2, i / 2, 1};
                return Axis{i / 2, i % 2 != 0 ? i / 2 + 1 : i / 2 - 1, 4};
            };
            expectPixels(dst, [&, w = width, h = height](int x, int y) {
                const Axis ax = axis(doublesX, x / channels, w), ay = axis(doublesY, y, h);
                if (!doublesX && channels == 1 && ay.unit == 4 && w % 2 != 0 && x == w - 1) return int{kUntouched};
                const auto row = [&](int v) {
                    const auto pixel = [&](int u) { return int{src.at(u * channels + x % channels, v)}; };
                    return ax.unit == 4 ? 3 * pixel(ax.near) + pixel(ax.far) : pixel(ax.near);
                };
                const int sum = ay.unit == 4 ? 3 * row(ay.near) + row(ay.far) : row(ay.near),
                          unit = ax.unit * ay.unit;
                return (sum + unit / 2) / unit;
            });
        }
    };
    check(odxUpsampleVerticalu8, 1, false, true);
    check(odxUpsampleHorizontalu8, 1, true, false);
    check(odxUpsample2Du8, 1, true, true);
    check(odxUpsampleVerticalInterleavedu8, 2, false, true);
    check(odxUpsampleHorizontalInterleavedu8, 2, true, false);
    check(odxUpsample2DInterleavedu8, 2, true, true);
}

TEST_F(Scaling, NearestPixelsAreExact)
{
    const Bytes src = noise<uint8_t>(700, 13, 0, 255);
    for (const auto& [width, height] : {std::pair{700, 13}, {699, 12}, {7, 1}, {1000, 29}}) {
        expectPixels(resized(odxScaleDownNNu8, src, width, height),
                     [&, w = width, h = height](int x, int y) { return src.at(x * 700 / w, y * 13 / h); });
    }
    const Bytes wide = noise<uint8_t>(65536, 1, 0, 255);
    Bytes dst(65536, 1, kUntouched);
    EXPECT_EQ(1, odxScaleDownNNu8(wide.data(), 65536, 1, 0, dst.data(), 65535, 1, 0));
    EXPECT_EQ(Bytes(65536, 1, kUntouched), dst);
    EXPECT_EQ(0, odxScaleDownNNu8(wide.data(), 65536, 1, 0, dst.data(), 65536, 1, 0));
    EXPECT_EQ(wide, dst);
}

TEST_F(Scaling, BilinearWeightsAre2048ths)
{
    const Bytes src = noise<uint8_t>(45, 31, 0, 255);
    for (const auto& [width, height] : {std::pair{30, 20}, {1, 1}, {45, 31}, {600, 40}, {11, 62}}) {
        struct Axis {
            int first, second, w0, w1;
        };
        const auto axis = [](int i, int from, int to) {
            const float position = std::clamp(
                (static_cast<float>(i) + 0.5f) * (static_cast<float>(from) / static_cast<float>(to)) - 0.5f, 0.0f,
                static_cast<float>(from - 1));
            const int first = static_cast<int>(position);
            const float t = position - static_cast<float>(first);
            return Axis{first, std::min(first + 1, from - 1), static_cast<int>((1 - t) * 2048 + 0.5f),
                        static_cast<int>(t * 2048 + 0.5f)};
        };
        expectPixels(resized(odxScaleDownBLu8, src, width, height), [&, w = width, h = height](int x, int y) {
            const Axis ax = axis(x, 45, w), ay = axis(y, 31, h);
            const auto row = [&](int v) { return ax.w0 * src.at(ax.first, v) + ax.w1 * src.at(ax.second, v); };
            return (int64_t{ay.w0} * row(ay.first) + int64_t{ay.w1} * row(ay.second) + (1 << 21)) >> 22;
        });
    }
}

TEST_F(Scaling, CubicOutputsFollowTheirFormula)
{
    const Bytes src = noise<uint8_t>(26, 9, 0, 255);
    const auto check = [&](const Bytes& dst, int channels) {
        const int columns = 26 / channels;
        const auto clamped = [](int i, int n) { return std::clamp(i, 0, n - 1); };
        const auto axis = [](int i, int from, int to, int weights[4]) {
            const double phase = std::floor(64 * ((i + 0.5) * from / to - 0.5) + 0.5 + 1e-9);
            const double first = std::floor(phase / 64), t = phase / 64 - first;
            const auto rounded = [](double w) { return static_cast<int>(std::floor(64 * w + 0.5)); };
            weights[0] = rounded(-t + 2 * t * t - t * t * t);
            weights[2] = rounded(t + 4 * t * t - 3 * t * t * t);
            weights[3] = rounded(t * t * t - t * t);
            weights[1] = 128 - weights[0] - weights[2] - weights[3];
            return static_cast<int>(first) - 1;
        };
        expectPixels(dst, [&](int x, int y) {
            int wx[4], wy[4], sum = 4096;
            const int left = axis(x / channels, columns, dst.width / channels, wx),
                      top = axis(y, 9, dst.height, wy);
            for (int v = 0; v < 4; ++v) {
                int row = 1;
                for (int u = 0; u < 4; ++u)
                    row +=
                        wx[u] * src.at(clamped(left + u, columns) * channels + x % channels, clamped(top + v, 9));
                sum += wy[v] * (row >> 1);
            }
            return std::clamp(sum >> 13, 0, 255);
        });
    };
    for (const auto& [width, height] : {std::pair{52, 18}, {26, 9}, {39, 31}, {600, 2}, {3, 9}, {1, 1}}) {
        check(resized(odxScaleUpPolyu8, src, width, height), 1);
        Bytes pairs(2 * width, height);
        odxScaleUpPolyInterleaveu8(src.data(), 13, 9, 26, pairs.data(), static_cast<unsigned>(width), pairs.h(),
                                   0);
        check(pairs, 2);
    }
}

// The positions and weights of odxScaleu8, from their text.
struct FloatAxis {
    std::vector<int> nearest, first, second;
    std::vector<float> w0, w1;

    FloatAxis(int from, int to, bool area)
    {
        const float step = static_cast<float>(from) / static_cast<float>(to),
                    inverse = static_cast<float>(to) / static_cast<float>(from);
        float centre = 0.5f * step, start = 0;
        for (int i = 0; i < to; ++i, centre += step) {
            nearest.push_back(std::min(static_cast<int>(centre), from - 1));
            const float end = start + step, at = area ? start : centre - 0.5f;
            const int x0 = static_cast<int>(std::floor(at));
            int x1 = area ? std::min(static_cast<int>(end), from - 1) : x0 + 1;
            float a = 1 - (at - static_cast<float>(x0)), b = at - static_cast<float>(x0);
            if (area) {
                a = inverse * ((static_cast<float>(x0) - start) + 1);
                b = inverse * (end - static_cast<float>(x1));
                if (i == to - 1) {
                    x1 = from - 1;
                    b = std::min(1.0f, inverse);
                }
                if (x0 == x1) a = b = 0.5f;
            }
            first.push_back(x0);
            second.push_back(x1);
            w0.push_back(a);
            w1.push_back(b);
            start = end;
        }
    }
};

TEST_F(Scaling, ScalingFollowsItsText)
{
    const Bytes src = noise<uint8_t>(30, 24, 0, 255);
    const std::pair<int, int> sizes[] = {{20, 16}, {30, 24}, {45, 36}, {29, 23}, {15, 12}, {60, 72},
                                         {10, 48}, {90, 8},  {600, 5}, {1, 1},   {7, 100}};
    for (const auto& [width, height] : sizes) {
        const int w = width, h = height;
        for (const bool area : {false, true}) {
            const FloatAxis columns(30, w, area), rows(24, h, area);
            const auto divides = [](int a, int b) { return a % b == 0 || b % a == 0; };
            const bool blocks = area ? divides(30, w) && divides(24, h) : w == 15 && h == 12;
            const auto type = area ? ONDRIX_INTERPOLATION_AREA : ONDRIX_INTERPOLATION_BILINEAR;
            for (const auto border : {ONDRIX_BORDER_UNDEFINED, ONDRIX_BORDER_CONSTANT, ONDRIX_BORDER_REPLICATE}) {
                const Outside outside = {border == ONDRIX_BORDER_REPLICATE,
                                         border == ONDRIX_BORDER_CONSTANT ? 200 : 0};
                const auto expected = [&](int x, int y) {
                    if (blocks) {
                        const int kx = std::max(30 / w, 1), ky = std::max(24 / h, 1), x0 = x * 30 / w / kx * kx,
                                  y0 = y * 24 / h / ky * ky;
                        const auto sum = static_cast<float>(sumOf(src, x0, x0 + kx, y0, y0 + ky));
                        return static_cast<int>(sum * (1.0f / static_cast<float>(kx * ky)) + 0.5f);
                    }
                    const auto i = static_cast<size_t>(x), j = static_cast<size_t>(y);
                    const auto row = [&](int v) {
                        const auto pixel = [&](int u) { return static_cast<float>(sample(src, u, v, outside)); };
                        return columns.w0[i] * pixel(columns.first[i]) + columns.w1[i] * pixel(columns.second[i]);
                    };
                    const float first = row(rows.first[j]), second = row(rows.second[j]);
                    const bool one = rows.first[j] == rows.second[j];
                    return static_cast<int>(one ? first : rows.w0[j] * first + rows.w1[j] * second);
                };
                expectPixels(resized(odxScaleu8_v2, src, w, h, type, border, uint8_t{200}), expected);
            }
            expectPixels(resized(odxScaleu8, src, w, h, ONDRIX_INTERPOLATION_NEAREST), [&](int x, int y) {
                return src.at(columns.nearest[static_cast<size_t>(x)], rows.nearest[static_cast<size_t>(y)]);
            });
        }
    }
}
