// Statistics against their definitions, coded the slow way.
#include "ondrix.h"
#include "support/referenceTest.h"

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
using Words = std::vector<uint32_t>;

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
        const int64_t row = std::clamp<int64_t>(y, 0, height - 1), column = std::clamp<int64_t>(x, 0, width - 1);
        return pixels[static_cast<size_t>(row * stride + column)];
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

using Statistics = odx::test::ReferenceTest;

// As bits, which tell zeros and not-a-numbers apart.
template <class T>
uint32_t bitsOf(const T& v)
{
    uint32_t bits = 0;
    memcpy(&bits, &v, sizeof v);
    return bits;
}

template <class T, class First, class All, class Value>
void expectExtremes(First* first, All* all, Value valueOf)
{
    for (uint32_t round = 0; round < 60; ++round) {
        const Picture<T> src(1 + round % 23, 1 + round % 4, 2 + round * round % 100, valueOf);
        const uint32_t capacity = round % 6;
        T values[4];
        uint32_t xy[4], counts[2];
        Words lists[2] = {Words(12, 7), Words(12, 7)};
        const auto list = [&](size_t i) { return capacity == 0 ? nullptr : lists[i].data(); };
        src.run(first, values, values + 1, xy, xy + 2);
        EXPECT_EQ(0, src.run(all, values + 2, values + 3, list(0), list(1), capacity, counts, counts + 1));
        for (const size_t most : {0, 1}) {
            uint32_t best = 0x7FC00000;
            Words places;
            src.forEach([&, last = T(0)](uint32_t x, uint32_t y, const T& v) mutable {
                if (std::isnan(static_cast<double>(v))) return;
                if (places.empty() || (most == 1 ? v > last : v < last)) {
                    last = v;
                    best = bitsOf(v);
                    places.clear();
                }
                if (v == last) places.insert(places.end(), {x, y});
            });
            const auto count = static_cast<uint32_t>(places.size() / 2);
            places.resize(std::max<size_t>(places.size(), 2));
            const T *const value = values + most, *const listed = value + 2;
            EXPECT_EQ((Words{best, best, count, places[0], places[1]}),
                      (Words{bitsOf(*value), bitsOf(*listed), counts[most], xy[2 * most], xy[2 * most + 1]}));
            places.resize(size_t{2} * std::min(count, capacity));
            places.resize(12, 7);
            EXPECT_EQ(places, lists[most]);
        }
    }
}

TEST_F(Statistics, FindFirstAndAllExtremes)
{
    constexpr float kSpecial[] = {NAN, -NAN, 0, -0.0F, 1e-45F, -1e-45F, INFINITY, -INFINITY, 1e38F, -2};
    expectExtremes<uint8_t>(odxMinMaxLocu8, odxMinMaxLocu8_v2, asIs);
    expectExtremes<int16_t>(odxMinMaxLocs16, odxMinMaxLocs16_v2, [](int v) { return v * 1001 - 32768; });
    expectExtremes<uint16_t>(odxMinMaxLocu16, odxMinMaxLocu16_v2, [](int v) { return 65535 - v * 999; });
    expectExtremes<int32_t>(odxMinMaxLocs32, odxMinMaxLocs32_v2,
                            [](int v) { return v * 40000000LL - 2147483648; });
    expectExtremes<uint32_t>(odxMinMaxLocu32, odxMinMaxLocu32_v2,
                             [](int v) { return 0xFFFFFFFF - v * 40000000LL; });
    expectExtremes<float>(odxMinMaxLocf32, odxMinMaxLocf32_v2, [&](int v) { return kSpecial[v % 10]; });
}

TEST_F(Statistics, CountLevelsAndSpreadThem)
{
    using Cells = std::array<uint32_t, 4>;
    for (const Cells& c : {Cells{1, 1, 256, 256}, {7, 3, 16, 256}, {173, 41, 59, 59}, {4, 1, 7, 100}}) {
        const Picture<uint8_t> src(173, 41, c[2] == 7 ? 1 : c[3], [](int v) { return v < 30 ? v + 90 : v; });
        Words counts(c[0] * c[1] * c[2], 77), expected(counts.size()), upTo(257), whole(256, 77), levels(256, 77);
        src.forEach([&](uint32_t x, uint32_t y, uint32_t v) {
            if (v < c[3]) ++expected[(y * c[1] / 41 * c[0] + x * c[0] / 173) * c[2] + v * c[2] / c[3]];
            for (uint32_t level = v; level < 256; ++level)
                ++upTo[level + 1];
        });
        Picture<uint8_t> dst = src;
        src.run(odxImageSpatialHistogramu8_v2, c[0], c[1], c[2], c[3], counts.data());
        src.run(odxImageIntensityHistogram, whole.data());
        src.run(odxImageSpatialHistogramu8, 1, 1, levels.data());
        dst.run(odxImageHistogramEqualizeu8, dst.pixels.data(), dst.stride);
        EXPECT_EQ(expected, counts);
        EXPECT_EQ(levels, whole);
        const uint64_t c0 = *std::find_if(upTo.begin(), upTo.end(), [](uint32_t n) { return n != 0; });
        src.forEach([&](uint32_t x, uint32_t y, uint8_t v) {
            const uint64_t rest = 173 * 41 - c0;
            ASSERT_EQ(upTo[v + 1U] - upTo[v], whole[v]);
            ASSERT_EQ(rest == 0 ? v : ((upTo[v + 1U] - c0) * 255 + rest / 2) / rest, dst.at(x, y));
        });
    }
    Words counts(256); // more pixels of a level than 16 bits count, also in a fourth of the image
    Picture<uint8_t>(70001, 5, 1, [](int) { return 7; }).run(odxImageIntensityHistogram, counts.data());
    EXPECT_EQ(350005U, counts[7]);
}

TEST_F(Statistics, MeasureMeanAndVariance)
{
    using Part = std::array<uint32_t, 4>;
    for (const int least : {0, 255}) { // noise, and white rows whose squares exceed 32 bits
        const Picture<uint8_t> src(70001, 3, 256, [=](int v) { return v | least; });
        for (const Part& p : {Part{0, 0, 70001, 3}, {3, 1, 77, 2}, {70000, 2, 1, 1}}) {
            double n = 0, sum = 0, squares = 0;
            src.forEach([&](uint32_t x, uint32_t y, double v) {
                const bool inside = x - p[0] < p[2] && y - p[1] < p[3];
                n += inside ? 1 : 0;
                sum += inside ? v : 0;
                squares += inside ? v * v : 0;
            });
            float found[6];
            src.run(odxImageIntensityStats, p[0], p[1], p[2], p[3], found, found + 1);
            for (const auto estimator : {ONDRIX_VARIANCE_POPULATION, ONDRIX_VARIANCE_SAMPLE}) {
                float* const to = found + 2 + 2 * estimator;
                EXPECT_EQ(0, src.run(odxImageIntensityStats_v2, p[0], p[1], p[2], p[3], to, to + 1, estimator));
            }
            const double d = squares - sum * (sum / n);
            const auto mean = static_cast<float>(sum / n), variance = static_cast<float>(d / n),
                       sample = n == 1 ? 0 : static_cast<float>(d / (n - 1));
            EXPECT_EQ((std::vector<float>{mean, variance, mean, variance, mean, sample}),
                      std::vector<float>(found, found + 6));
        }
    }
}

template <class T, class Operation>
void expectMoments(Operation* operation, const Picture<T>& src, bool exact)
{
    for (const unsigned binary : {0U, 1U}) {
        odxMoments m;
        src.run(operation, binary, &m);
        Exact spatial[10] = {}, central[10] = {}, mass = 0;
        const auto add = [&](Exact cx, Exact cy, Exact* sums) {
            src.forEach([&](uint32_t x, uint32_t y, const T& pixel) {
                const auto v = static_cast<Exact>(binary != 0 ? pixel != 0 : pixel);
                mass += std::fabs(v) / 2; // twice
                const Exact u = x - cx, w = y - cy,
                            terms[] = {1, u, w, u * u, u * w, w * w, u * u * u, u * u * w, u * w * w, w * w * w};
                for (size_t k = 0; k < 10; ++k)
                    sums[k] += v * terms[k];
            });
        };
        add(0, 0, spatial);
        add(spatial[1] / spatial[0], spatial[2] / spatial[0], central);
        for (size_t k = 0; k < 10; ++k) {
            const Exact order = k == 0  ? 0
                                : k < 3 ? 1
                                : k < 6 ? 2
                                        : 3,
                        limit = 1e-10L * mass * std::pow(Exact(src.width), order),
                        scale = mass == 0 ? 0 : std::pow(std::fabs(spatial[0]), -1 - order / 2);
            EXPECT_LE(std::fabs(Exact((&m.m00)[k]) - spatial[k]), exact || binary != 0 ? 0 : limit) << k;
            if (k < 3) continue;
            const Exact expected = mass == 0 ? 0 : central[k];
            EXPECT_LE(std::fabs(Exact((&m.mu20)[k - 3]) - expected), limit) << k;
            EXPECT_LE(std::fabs(Exact((&m.nu20)[k - 3]) - expected * scale), limit * scale) << k;
        }
    }
}

TEST_F(Statistics, MeasureMoments)
{
    for (const int v : {0, 255}) // black, and white
        expectMoments(odxImageMomentsu8, Picture<uint8_t>(640, 480, 1, [=](int) { return v; }), true);
    expectMoments(odxImageMomentsu8, Picture<uint8_t>(97, 8, 256, asIs), true);
    expectMoments(odxImageMomentss32, Picture<int32_t>(191, 23, 999, [](int v) { return (v - 99) * 2000000; }),
                  false);
    expectMoments(odxImageMomentsf32, Picture<float>(301, 20, 999, [](int v) { return (v - 300) * 1.7e-7; }),
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
            int64_t S = 0, Q = 0, root = 0;
            Exact s = 0, q = 0;
            for (int64_t i = 0; i < n; ++i) {
                const int64_t u = x - r + i % N, w = y - r + i / N, pixel = src.at(u, w);
                S += pixel;
                Q += pixel * pixel;
                s += Exact(floats.at(u, w));
                q += Exact(floats.at(u, w)) * Exact(floats.at(u, w));
            }
            for (int64_t bit = 1 << 22; bit != 0; bit >>= 1)
                root += (root + bit) * (root + bit) <= 256 * (n * Q - S * S) ? bit : 0;
            const int64_t a = 16 * deviation * (n * v - S), divisor = std::max(root, 16 * n * least),
                          quotient = (2 * std::abs(a) + divisor) / (2 * divisor);
            const auto i = static_cast<size_t>(83 * y + x);
            ASSERT_EQ(std::clamp<int64_t>(a < 0 ? 128 - quotient : 128 + quotient, 0, 255), dst[i])
                << N << ", " << i;
            const Exact mean = s / Exact(n), spread = std::max(std::sqrt(q / Exact(n) - mean * mean), 0.1L),
                        exact = (Exact(floats.at(x, y)) - mean) / spread;
            ASSERT_LE(std::fabs(exact - Exact(out[i])), 1e-4L * (1 + std::fabs(exact))) << N << ", " << i;
        });
    }
}

TEST(Extremes, LieInsideLongRows)
{
    ASSERT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_CPU));
    std::vector<uint8_t> row(4098, 7); // one element more than pieces of whole vectors, and one behind the row
    row[4096] = 3;
    row[4097] = 0;
    uint8_t least = 0;
    uint32_t place[2] = {};
    odxMinMaxLocu8(row.data(), 4097, 1, 0, &least, nullptr, place, nullptr);
    EXPECT_EQ(3, least);
    EXPECT_EQ(4096u, place[0]);
}

} // namespace
