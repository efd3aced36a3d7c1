// Statistics against their definitions, coded the slow way.
#include "ondrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <string.h>
#include <vector>

namespace
{

using Exact = long double;

// Pixels that are made of the numbers from 0 to levels - 1.
template <class T>
struct Picture {
    uint32_t width, height, stride; // in elements
    std::vector<T> pixels;

    template <class Value>
    Picture(uint32_t w, uint32_t h, uint32_t levels, Value valueOf)
        : width(w), height(h), stride(w + 5), pixels(size_t{h} * (w + 5))
    {
        static std::mt19937 random(7);
        for (T& pixel : pixels)
            pixel = static_cast<T>(valueOf(static_cast<int>(random() % levels)));
    }
    const T& at(int64_t x, int64_t y) const
    {
        return pixels[static_cast<size_t>(std::clamp<int64_t>(y, 0, height - 1) * stride +
                                          std::clamp<int64_t>(x, 0, width - 1))];
    }
    template <class F>
    void forEach(F f) const
    {
        for (uint32_t i = 0; i < width * height; ++i)
            f(i % width, i / width, at(i % width, i / width));
    }
    template <class Operation, class... Arguments>
    auto run(Operation* operation, Arguments... arguments) const
    {
        return operation(pixels.data(), width, height, static_cast<uint32_t>(stride * sizeof(T)), arguments...);
    }
};

int asIs(int v)
{
    return v;
}

class Statistics : public testing::Test
{
protected:
    Statistics() { EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE)); }
};

template <class T, class First, class All, class Value>
void expectExtremes(First* first, All* all, Value valueOf)
{
    for (uint32_t round = 0; round < 60; ++round) {
        const Picture<T> src(1 + round % 23, 1 + round % 4, 2 + round * round % 100, valueOf);
        const uint32_t capacity = round % 6;
        T values[4];
        uint32_t xy[4], counts[2];
        std::vector<uint32_t> lists[2] = {std::vector<uint32_t>(12, 7), std::vector<uint32_t>(12, 7)};
        src.run(first, values, values + 1, xy, xy + 2);
        const auto list = [&](size_t i) { return capacity == 0 ? nullptr : lists[i].data(); };
        EXPECT_EQ(0, src.run(all, values + 2, values + 3, list(0), list(1), capacity, counts, counts + 1));
        for (const size_t most : {0, 1}) {
            const float none = std::nanf("");
            const void* best = &none;
            std::vector<uint32_t> places;
            src.forEach([&](uint32_t x, uint32_t y, const T& v) {
                if (v != v) return;
                const T last = places.empty() ? v : *static_cast<const T*>(best);
                if (places.empty() || (most == 1 ? v > last : v < last)) {
                    best = &v;
                    places.clear();
                }
                if (places.empty() || v == last) places.insert(places.end(), {x, y});
            });
            EXPECT_EQ(0, memcmp(best, values + most, sizeof(T)));
            EXPECT_EQ(0, memcmp(best, values + 2 + most, sizeof(T)));
            EXPECT_EQ(places.size() / 2, counts[most]);
            places.resize(std::max<size_t>(places.size(), 2));
            EXPECT_EQ(std::vector<uint32_t>(places.begin(), places.begin() + 2),
                      std::vector<uint32_t>(xy + 2 * most, xy + 2 * most + 2));
            places.resize(size_t{2} * std::min(counts[most], capacity));
            places.resize(12, 7);
            EXPECT_EQ(places, lists[most]);
        }
    }
}

TEST_F(Statistics, FindFirstAndAllExtremes)
{
    expectExtremes<uint8_t>(odxMinMaxLocu8, odxMinMaxLocu8_v2, asIs);
    expectExtremes<int16_t>(odxMinMaxLocs16, odxMinMaxLocs16_v2, [](int v) { return v * 1001 - 32768; });
    expectExtremes<uint16_t>(odxMinMaxLocu16, odxMinMaxLocu16_v2, [](int v) { return 65535 - v * 999; });
    expectExtremes<int32_t>(odxMinMaxLocs32, odxMinMaxLocs32_v2,
                            [](int v) { return v * 40000000LL - 2147483648; });
    expectExtremes<uint32_t>(odxMinMaxLocu32, odxMinMaxLocu32_v2,
                             [](int v) { return 0xFFFFFFFF - 40000000U * v; });
    expectExtremes<float>(odxMinMaxLocf32, odxMinMaxLocf32_v2, [](int v) {
        constexpr float kSpecial[] = {NAN, -NAN, 0, -0.0F, 1e-45F, -1e-45F, INFINITY, -INFINITY, 1e38F, -2};
        return kSpecial[v % 10];
    });
}

TEST_F(Statistics, CountLevelsAndSpreadThem)
{
    using Cells = std::array<uint32_t, 4>;
    for (const auto& [cellsX, cellsY, bins, range] :
         {Cells{1, 1, 256, 256}, Cells{7, 3, 16, 256}, Cells{173, 41, 59, 59}, Cells{4, 1, 7, 100}}) {
        const Picture<uint8_t> src(173, 41, bins == 7 ? 1 : range, [](int v) { return v < 30 ? v + 90 : v; });
        std::vector<uint32_t> counts(cellsX * cellsY * bins, 77), expected(counts.size()), all[2], upTo(256);
        src.forEach([&, cX = cellsX, cY = cellsY, n = bins, r = range](uint32_t x, uint32_t y, uint32_t v) {
            if (v < r) ++expected[(y * cY / 41 * cX + x * cX / 173) * n + v * n / r];
            for (uint32_t level = v; level < 256; ++level)
                ++upTo[level];
        });
        src.run(odxImageSpatialHistogramu8_v2, cellsX, cellsY, bins, range, counts.data());
        EXPECT_EQ(expected, counts);
        std::vector<uint32_t> whole(256, 77), levels(256, 77);
        src.run(odxImageIntensityHistogram, whole.data());
        src.run(odxImageSpatialHistogramu8, 1, 1, levels.data());
        EXPECT_EQ(levels, whole);
        std::vector<uint8_t> dst(173 * 41);
        src.run(odxImageHistogramEqualizeu8, dst.data(), 0);
        const uint64_t c0 = *std::find_if(upTo.begin(), upTo.end(), [](uint32_t c) { return c != 0; });
        src.forEach([&](uint32_t x, uint32_t y, uint8_t v) {
            const uint64_t rest = dst.size() - c0;
            ASSERT_EQ(upTo[v] - (v == 0 ? 0 : upTo[v - 1U]), whole[v]);
            ASSERT_EQ(rest == 0 ? v : ((upTo[v] - c0) * 255 + rest / 2) / rest, dst[173 * y + x]);
        });
    }
}

TEST_F(Statistics, MeasureMeanAndVariance)
{
    // White rows whose squares exceed 32 bits.
    for (const Picture<uint8_t>& src :
         {Picture<uint8_t>(70001, 3, 256, asIs), {70001, 3, 1, [](int) { return 255; }}}) {
        using Part = std::array<uint32_t, 4>;
        for (const auto& [x, y, width, height] : {Part{0, 0, 70001, 3}, Part{3, 1, 77, 2}, Part{70000, 2, 1, 1}}) {
            double n = 0, sum = 0, squares = 0;
            src.forEach([&, x0 = x, y0 = y, w = width, h = height](uint32_t u, uint32_t v, double pixel) {
                const bool inside = u - x0 < w && v - y0 < h;
                n += inside ? 1 : 0;
                sum += inside ? pixel : 0;
                squares += inside ? pixel * pixel : 0;
            });
            const double m = sum / n, deviations = squares - sum * m;
            const auto mean = float(m), variance = float(deviations / n),
                       sample = n == 1 ? 0 : float(deviations / (n - 1));
            float found[6];
            src.run(odxImageIntensityStats, x, y, width, height, found, found + 1);
            for (const auto estimator : {ONDRIX_VARIANCE_POPULATION, ONDRIX_VARIANCE_SAMPLE}) {
                float* const at = found + 2 + 2 * estimator;
                EXPECT_EQ(0, src.run(odxImageIntensityStats_v2, x, y, width, height, at, at + 1, estimator));
            }
            EXPECT_EQ((std::vector<float>{mean, variance, mean, variance, mean, sample}),
                      std::vector<float>(found, found + 6));
        }
    }
}

template <class T, class Operation>
void expectMoments(Operation* operation, const Picture<T>& src, bool exact)
{
    constexpr int kX[] = {0, 1, 0, 2, 1, 0, 3, 2, 1, 0}, kY[] = {0, 0, 1, 0, 1, 2, 0, 1, 2, 3};
    for (const unsigned binary : {0U, 1U}) {
        odxMoments m;
        src.run(operation, binary, &m);
        Exact spatial[10] = {}, central[10] = {}, mass = 0;
        const auto add = [&](Exact cx, Exact cy, Exact* sums) {
            src.forEach([&](uint32_t x, uint32_t y, const T& pixel) {
                const auto v = static_cast<Exact>(binary != 0 ? pixel != 0 : pixel);
                mass += std::fabs(v) / 2; // twice
                for (size_t k = 0; k < 10; ++k)
                    sums[k] += v * std::pow(x - cx, Exact(kX[k])) * std::pow(y - cy, Exact(kY[k]));
            });
        };
        add(0, 0, spatial);
        add(spatial[1] / spatial[0], spatial[2] / spatial[0], central);
        for (size_t k = 0; k < 10; ++k) {
            const int order = kX[k] + kY[k];
            const Exact limit = 1e-10L * mass * std::pow(Exact(std::max(src.width, src.height)), Exact(order));
            EXPECT_LE(std::fabs(Exact((&m.m00)[k]) - spatial[k]), exact || binary != 0 ? 0 : limit) << k;
            if (k < 3) continue;
            const Exact scale = mass == 0 ? 0 : std::pow(std::fabs(spatial[0]), -1 - order / 2.0L),
                        expected = mass == 0 ? 0 : central[k];
            EXPECT_LE(std::fabs(Exact((&m.mu20)[k - 3]) - expected), limit) << k;
            EXPECT_LE(std::fabs(Exact((&m.nu20)[k - 3]) - expected * scale), limit * scale) << k;
        }
    }
}

TEST_F(Statistics, MeasureMoments)
{
    const Picture<uint8_t> white(640, 480, 1, [](int) { return 255; }), noise(97, 8, 256, asIs),
        black(5, 7, 1, asIs);
    for (const Picture<uint8_t>* src : {&white, &noise, &black})
        expectMoments(odxImageMomentsu8, *src, true);
    expectMoments(odxImageMomentss32, Picture<int32_t>(191, 23, 1000, [](int v) { return (v - 100) * 2000000; }),
                  false);
    expectMoments(odxImageMomentsf32, Picture<float>(301, 20, 1000, [](int v) { return (v - 300) * 1.7e-7; }),
                  false);
}

TEST_F(Statistics, NormalizeNeighbourhoods)
{
    for (const int64_t N : {3, 5, 7, 15, 31}) {
        const Picture<uint8_t> src(83, 70, N == 7 ? 2 : 256,
                                   [=](int v) { return N == 3 ? v / 64 + 90 : 255 - v; });
        const Picture<float> floats(83, 70, 256, [](int v) { return v * 3 - 700; });
        const int64_t deviation = 4 * N, least = N / 3, r = N / 2, n = N * N;
        std::vector<uint8_t> dst(83 * 70);
        std::vector<float> out(83 * 70);
        EXPECT_EQ(0, src.run(odxNormalizeLocalBoxu8, N, dst.data(), 83, deviation, least));
        EXPECT_EQ(0, floats.run(odxNormalizeLocalBoxf32, N, out.data(), 0, 0.1F));
        src.forEach([&](int64_t x, int64_t y, int64_t v) {
            int64_t S = 0, Q = 0;
            Exact s = 0, q = 0;
            for (int64_t i = 0; i < n; ++i) {
                const int64_t pixel = src.at(x - r + i % N, y - r + i / N);
                const auto number = static_cast<Exact>(floats.at(x - r + i % N, y - r + i / N));
                S += pixel;
                Q += pixel * pixel;
                s += number;
                q += number * number;
            }
            int64_t root = 0;
            for (int64_t bit = 1 << 22; bit != 0; bit >>= 1)
                root += (root + bit) * (root + bit) <= 256 * (n * Q - S * S) ? bit : 0;
            const int64_t a = 16 * deviation * (n * v - S), divisor = std::max(root, 16 * n * least),
                          quotient = (2 * std::abs(a) + divisor) / (2 * divisor);
            const size_t i = static_cast<size_t>(83 * y + x);
            ASSERT_EQ(std::clamp<int64_t>(128 + (a < 0 ? -quotient : quotient), 0, 255), dst[i])
                << N << " at " << i;
            const Exact mean = s / n,
                        exact = (Exact(floats.at(x, y)) - mean) / std::max(std::sqrt(q / n - mean * mean), 0.1L);
            ASSERT_LE(std::fabs(exact - Exact(out[i])), 1e-4L * (1 + std::fabs(exact))) << N << " at " << i;
        });
    }
}

} // namespace
