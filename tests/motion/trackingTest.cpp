// The trackers against their definitions, coded the slow way.
#include "ondrix/tracking.h"
#include "ondrix/opticalFlow.h"
#include "support/referenceTest.h"

#include "frame/log.h"
#include "frame/operations.h"
#include "frame/tables.h"
#include "ondrix/modes.h"
#include "support/childProcess.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string.h>
#include <tuple>
#include <vector>

using namespace odx::test;

namespace
{

size_t index(int i)
{
    return static_cast<size_t>(i);
}

class Tracking : public odx::test::ReferenceTest
{
protected:
    std::mt19937 random_{11};

    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    std::vector<uint8_t> noise(int count, int least = 0)
    {
        std::vector<uint8_t> bytes(index(count));
        for (uint8_t& byte : bytes)
            byte = static_cast<uint8_t>(least + below(256 - least));
        return bytes;
    }
};

struct Result {
    int status;
    int x, y, score;
    float subX, subY;

    bool operator==(const Result& o) const
    {
        return std::tie(status, x, y, score, subX, subY) == std::tie(o.status, o.x, o.y, o.score, o.subX, o.subY);
    }
};
std::ostream& operator<<(std::ostream& stream, const Result& r)
{
    return stream << "status " << r.status << " at " << r.x << "," << r.y << " score " << r.score << " sub "
                  << r.subX << "," << r.subY;
}

// ---- the definition of the search of patches ----

struct Search {
    const uint8_t *patch, *src;
    int width, height, x, y, rx, ry;
    int threshold;
    bool disc;

    struct Sums {
        int64_t p = 0, pp = 0, w = 0, ww = 0, c = 0;

        int64_t n() const { return c - (w * p >> 6); }
        int64_t varP() const { return pp - (p * p >> 6); }
        int64_t varW() const { return ww - (w * w >> 6); }
        int score() const
        {
            return static_cast<int>(static_cast<float>(n()) * 128.0F /
                                        std::sqrt(static_cast<float>(varP()) * static_cast<float>(varW())) +
                                    0.5F); // none is negative
        }
    };
    Sums at(int dx, int dy) const
    {
        Sums s;
        for (int j = 0; j < 8; ++j) {
            for (int i = 0; i < 8; ++i) {
                const int p = patch[8 * j + i], w = src[(y + dy - 4 + j) * width + x + dx - 4 + i];
                s.p += p, s.pp += p * p, s.w += w, s.ww += w * w, s.c += p * w;
            }
        }
        return s;
    }
    bool candidate(int dx, int dy) const { return !disc || dx * dx + dy * dy <= rx * rx; }

    Result run() const
    {
        const auto outside = [](int centre, int r, int size) {
            return centre < r + 4 || centre >= size - (r + 4);
        };
        if (outside(x, rx, width) || outside(y, ry, height)) return {2, 0, 0, 0, 0, 0};
        if (at(0, 0).varP() < threshold) return {4, 0, 0, -127, 0, 0};
        bool found = false;
        Sums best;
        int bx = 0, by = 0;
        for (int dy = -ry; dy <= ry; ++dy) {
            for (int dx = -rx; dx <= rx; ++dx) {
                const Sums s = at(dx, dy);
                if (!candidate(dx, dy) || s.n() < 1) continue;
                const auto n = static_cast<float>(s.n()), m = static_cast<float>(best.n());
                if (found && !(n * n * static_cast<float>(best.varW()) > m * m * static_cast<float>(s.varW())))
                    continue;
                found = true;
                best = s;
                bx = dx;
                by = dy;
            }
        }
        if (!found) return {3, 0, 0, 0, 0, 0};
        if (threshold != 0 && best.varW() <= threshold) return {5, x + bx, y + by, -127, 0, 0};
        const auto sub = [&](int along, int r, int sx, int sy) -> float {
            if (!(-r < along && along < r - 1)) return 0;
            int scores[2];
            for (const int side : {0, 1}) {
                const int dx = bx + (2 * side - 1) * sx, dy = by + (2 * side - 1) * sy;
                if (!candidate(dx, dy) || at(dx, dy).n() < 1) return 0;
                scores[side] = at(dx, dy).score();
            }
            const int bend = 4 * best.score() - 2 * (scores[0] + scores[1]);
            return bend == 0 ? 0 : static_cast<float>(scores[1] - scores[0]) / static_cast<float>(bend);
        };
        return {0, x + bx, y + by, best.score(), sub(bx, rx, 1, 0), sub(by, ry, 0, 1)};
    }
};

using SearchWithThreshold = decltype(&odxNCCPatchOnSquare8x8u8_v2);

Result runSearch(SearchWithThreshold operation, const Search& s, unsigned searchWidth)
{
    uint16_t x = 9, y = 9;
    int32_t score = 9;
    Result r = {};
    r.status = operation(s.patch, s.src, static_cast<unsigned>(s.width), static_cast<unsigned>(s.height),
                         static_cast<unsigned>(s.x), static_cast<unsigned>(s.y), searchWidth, &x, &y, &score, 1,
                         &r.subX, &r.subY, s.threshold);
    r.x = x, r.y = y, r.score = score;
    return r;
}

} // namespace

TEST_F(Tracking, PatchesAreFoundWhereTheDefinitionFindsThem)
{
    constexpr int kWidth = 40, kHeight = 34;
    int seen[6] = {};
    for (int round = 0; round < 400; ++round) {
        const int range = round % 3 == 0 ? 120 : 0;
        std::vector<uint8_t> image = noise(kWidth * kHeight, range), patch = noise(64, range);
        if (round % 9 == 0) std::fill(image.begin(), image.end(), uint8_t{50});
        if (round % 3 == 1) { // smooth, so that neighbours are alike
            for (size_t i = image.size() - 1; i > kWidth; --i)
                image[i] = static_cast<uint8_t>((image[i] + 3 * image[i - 1] + 3 * image[i - kWidth]) / 7);
        }
        Search s = {
            patch.data(), image.data(), kWidth, kHeight, 3 + below(kWidth - 5), 3 + below(kHeight - 5), 0, 0, 0,
            false};
        if (round % 2 == 0) { // from the image
            for (int j = 0; j < 8; ++j)
                memcpy(&patch[index(8 * j)],
                       &image[index((std::min(s.y, kHeight - 8) + j) * kWidth + std::min(s.x, kWidth - 8))], 8);
        }
        s.threshold = round % 5 == 0 ? 1 + below(600000) : 0;
        const unsigned search = 1 + static_cast<unsigned>(below(11));
        s.rx = s.ry = static_cast<int>(search / 2);
        for (s.disc = false;; s.disc = true) {
            const Result expected = s.run();
            ++seen[expected.status];
            EXPECT_EQ(expected,
                      runSearch(s.disc ? odxNCCPatchOnCircle8x8u8_v2 : odxNCCPatchOnSquare8x8u8_v2, s, search))
                << "round " << round;
            if (s.disc) break;
        }
        // Several in a rectangle: this one, and a flat one.
        s.disc = false;
        s.ry = below(6);
        patch.resize(128, 77);
        s.patch = patch.data();
        Result all[2] = {s.run(), {}};
        s.patch += 64;
        all[1] = s.run();
        uint16_t x[2], y[2];
        int32_t score[2], status[2];
        const int result = odxNCCPatchesOnRectu8(
            patch.data(), 2, image.data(), kWidth, kHeight, static_cast<unsigned>(s.x), static_cast<unsigned>(s.y),
            search, static_cast<unsigned>(2 * s.ry + 1), s.threshold, x, y, score, status);
        for (const int i : {0, 1}) {
            const Result got = {status[i], x[i], y[i], score[i], all[i].subX, all[i].subY};
            EXPECT_EQ(all[i], got) << "rectangle, round " << round;
        }
        EXPECT_EQ(all[0].status == 0 ? 0 : all[0].status == 2 ? 2 : 3, result);
    }
    for (const int status : {0, 2, 3, 4, 5})
        EXPECT_LT(3, seen[status]) << status;
}

TEST_F(Tracking, PatchSearchesHaveLimits)
{
    std::vector<uint8_t> image = noise(64 * 64);
    std::vector<uint8_t> patch;
    for (int j = 0; j < 8; ++j)
        patch.insert(patch.end(), &image[index((16 + j) * 64 + 26)], &image[index((16 + j) * 64 + 34)]);
    Search s = {patch.data(), image.data(), 64, 64, 30, 20, 5, 5, 0, false};
    const Result found = runSearch(odxNCCPatchOnSquare8x8u8_v2, s, 11);
    EXPECT_EQ(0, found.status);
    EXPECT_EQ(std::tuple(30, 20, 128), std::tuple(found.x, found.y, found.score));
    EXPECT_EQ((Result{1, 0, 0, 0, 0, 0}), runSearch(odxNCCPatchOnSquare8x8u8_v2, s, 20));
    // Without a threshold the sub-pixel place may stay away.
    uint16_t x = 0, y = 0;
    int32_t score = 0, status[1];
    for (const auto operation : {odxNCCPatchOnSquare8x8u8, odxNCCPatchOnCircle8x8u8}) {
        EXPECT_EQ(0,
                  operation(patch.data(), image.data(), 64, 64, 31, 19, 5, &x, &y, &score, 0, nullptr, nullptr));
        EXPECT_EQ(std::tuple(30, 20, 128), std::tuple(int{x}, int{y}, score));
    }
    // Patch and window have the same contrast; the limit takes the window's side.
    const auto contrast = static_cast<int>(s.at(0, 0).varP());
    for (const auto& [threshold, expected] : {std::pair(contrast - 1, 0), {contrast, 5}, {contrast + 1, 4}}) {
        s.threshold = threshold;
        EXPECT_EQ(expected, runSearch(odxNCCPatchOnSquare8x8u8_v2, s, 11).status);
    }
    s.threshold = 0;
    s.x = -2; // limits do not wrap
    EXPECT_EQ(2, runSearch(odxNCCPatchOnSquare8x8u8_v2, s, 11).status);
    s.x = 30;
    EXPECT_EQ(
        1, odxNCCPatchesOnRectu8(patch.data(), 1, image.data(), 64, 64, 30, 20, 3, 12, 0, &x, &y, &score, status));
    EXPECT_EQ(std::tuple(1, 0, 0), std::tuple(status[0], int{x}, score));
    // Squares from 12 on do not fit the tables.
    for (const unsigned width : {12u, 19u}) {
        expectEnd("src/cpu/ondrixNCCPatchC@.*sumW <= \\(\\(2\\*5\\+1\\)\\+8\\) Assertion failed",
                  [&] { runSearch(odxNCCPatchOnSquare8x8u8_v2, s, width); });
    }
}

// ---- windows ----

namespace
{

// Weights of any type, and what the definition makes of them; whole numbers, so that all sums are exact.
struct Field {
    int width, height;
    std::vector<int> weights;

    int at(int x, int y) const { return weights[index(y * width + x)]; }
    template <class T, class Use>
    auto as(Use use) const
    {
        const std::vector<T> typed(weights.begin(), weights.end());
        return use(typed.data(), static_cast<unsigned>(width), static_cast<unsigned>(height));
    }
};

struct Box {
    int64_t x, y, w, h;

    void clampTo(const Field& f)
    {
        x = std::min<int64_t>(x, f.width - 1);
        y = std::min<int64_t>(y, f.height - 1);
        w = std::max<int64_t>(std::min(f.width - x, w), 1);
        h = std::max<int64_t>(std::min(f.height - y, h), 1);
    }
    odxWindow window() const
    {
        return {static_cast<uint32_t>(x), static_cast<uint32_t>(y), static_cast<uint32_t>(w),
                static_cast<uint32_t>(h)};
    }
};

bool operator==(const Box& box, const odxWindow& w)
{
    return box.x == w.x && box.y == w.y && box.w == w.width && box.h == w.height;
}
std::ostream& operator<<(std::ostream& stream, const Box& b)
{
    return stream << b.w << "x" << b.h << " at " << b.x << "," << b.y;
}

int slowMeanShift(const Field& f, Box& box, int limit, double epsilon)
{
    for (int done = 0; done < limit; ++done) {
        box.clampTo(f);
        int64_t m00 = 0, m10 = 0, m01 = 0;
        for (int64_t y = 0; y < box.h; ++y) {
            for (int64_t x = 0; x < box.w; ++x) {
                const int64_t weight = f.at(static_cast<int>(box.x + x), static_cast<int>(box.y + y));
                m00 += weight, m10 += weight * x, m01 += weight * y;
            }
        }
        if (m00 == 0) return done;
        const auto m = static_cast<double>(m00);
        const double dx = std::round(static_cast<double>(m10) / m - static_cast<double>(box.w) * 0.5),
                     dy = std::round(static_cast<double>(m01) / m - static_cast<double>(box.h) * 0.5);
        box.x = static_cast<int64_t>(std::clamp(static_cast<double>(box.x) + dx, 0.0, f.width - 1.0));
        box.y = static_cast<int64_t>(std::clamp(static_cast<double>(box.y) + dy, 0.0, f.height - 1.0));
        box.clampTo(f);
        if (dx * dx + dy * dy < std::trunc(epsilon * epsilon + 0.5)) return done;
    }
    return limit;
}

// What the adaptive tracker makes of the window that mean shift left, up to rounding.
void expectEllipse(const Field& f, const Box& from, const odxTrackedEllipse& e, const odxWindow& window)
{
    const int64_t left = std::max<int64_t>(from.x - 10, 0), top = std::max<int64_t>(from.y - 10, 0),
                  right = std::min<int64_t>(from.x + from.w + 10, f.width),
                  bottom = std::min<int64_t>(from.y + from.h + 10, f.height);
    const auto sum = [&](auto term) {
        double total = 0;
        for (int64_t y = top; y < bottom; ++y) {
            for (int64_t x = left; x < right; ++x)
                total += f.at(static_cast<int>(x), static_cast<int>(y)) *
                         term(static_cast<double>(x), static_cast<double>(y));
        }
        return total;
    };
    const double m = sum([](double, double) { return 1; });
    if (m <= 0) {
        EXPECT_EQ(std::tuple(0, 0, 0, 0, 0), std::tuple(e.x, e.y, e.length, e.width, e.angle));
        EXPECT_TRUE(from == window);
        return;
    }
    const double xc = sum([](double x, double) { return x; }) / m,
                 yc = sum([](double, double y) { return y; }) / m;
    const double a = std::max(sum([=](double x, double) { return (x - xc) * (x - xc); }) / m, 0.0),
                 b = sum([=](double x, double y) { return (x - xc) * (y - yc); }) / m,
                 c = std::max(sum([=](double, double y) { return (y - yc) * (y - yc); }) / m, 0.0);
    const double s = std::hypot(a - c, 2 * b);
    EXPECT_NEAR(xc, static_cast<double>(e.x), 1e-4);
    EXPECT_NEAR(yc, static_cast<double>(e.y), 1e-4);
    EXPECT_NEAR(4 * std::sqrt(std::max((a + c + s) / 2, 0.0)), static_cast<double>(e.length), 1e-3);
    EXPECT_NEAR(4 * std::sqrt(std::max((a + c - s) / 2, 0.0)), static_cast<double>(e.width), 1e-3);
    if (s > 1e-6) EXPECT_NEAR(1, std::cos(std::atan2(2 * b, a - c) - 2 * static_cast<double>(e.angle)), 1e-6);
    const auto expectEnds = [](double centre, double half, int size, uint32_t start, uint32_t length) {
        const auto clamped = [&](double v) { return std::clamp(v, 0.0, size - 1.0); };
        EXPECT_LE(clamped(std::floor(centre - half - 1e-6)), start);
        EXPECT_GE(clamped(std::floor(centre - half + 1e-6)), start);
        EXPECT_LE(clamped(std::ceil(centre + half - 1e-6)), start + length - 1);
        EXPECT_GE(clamped(std::ceil(centre + half + 1e-6)), start + length - 1);
    };
    expectEnds(xc, 2 * std::sqrt(a), f.width, window.x, window.width);
    expectEnds(yc, 2 * std::sqrt(c), f.height, window.y, window.height);
}

} // namespace

TEST_F(Tracking, WindowsMoveByTheirDefinition)
{
    for (int round = 0; round < 300; ++round) {
        Field f = {1 + below(60), 1 + below(50), {}};
        const int cx = below(f.width), cy = below(f.height), least = round % 4 == 0 ? -9 : 0;
        for (int y = 0; y < f.height; ++y) {
            for (int x = 0; x < f.width; ++x)
                f.weights.push_back(
                    round % 7 == 0 ? 0 : std::max(200 - 9 * (std::abs(x - cx) + std::abs(y - cy)), least));
        }
        const Box start = {below(f.width + 9), round % 9 == 0 ? 0xFFFFFFFF : below(f.height), below(40),
                           below(40)};
        const int limit = 1 + below(12);
        const float epsilon = static_cast<float>(below(30)) / 10;
        Box expected = start;
        const int iterations = slowMeanShift(f, expected, limit, static_cast<double>(epsilon));
        const auto expectSame = [&](auto type, auto operation, auto adaptive) {
            odxWindow window = start.window();
            f.as<decltype(type)>([&](auto* src, unsigned w, unsigned h) {
                EXPECT_EQ(static_cast<unsigned>(iterations),
                          operation(src, w, h, 0, &window, static_cast<unsigned>(limit), epsilon));
                EXPECT_TRUE(expected == window) << "round " << round << " from " << start << " to " << expected;
                window = start.window();
                EXPECT_EQ(0u, operation(src, w, h, 0, &window, 0, epsilon));
                EXPECT_TRUE(start == window);
                odxTrackedEllipse ellipse = {1, 1, 1, 1, 1};
                EXPECT_EQ(static_cast<unsigned>(iterations),
                          adaptive(src, w, h, 0, &window, static_cast<unsigned>(limit), epsilon, &ellipse));
                expectEllipse(f, expected, ellipse, window);
            });
        };
        if (least == 0) expectSame(uint8_t(), odxMeanShiftu8, odxConAdaTracku8);
        expectSame(int32_t(), odxMeanShifts32, odxConAdaTracks32);
        expectSame(float(), odxMeanShiftf32, odxConAdaTrackf32);
    }
}

TEST_F(Tracking, WeightsThatAreNoNumbersEndTheSearch)
{
    for (const float odd : {NAN, std::numeric_limits<float>::infinity(), 3e38F}) {
        std::vector<float> weights(20 * 20, 1);
        weights[8 * 20 + 9] = odd;
        odxWindow window = {5, 5, 8, 8};
        odxTrackedEllipse ellipse = {1, 1, 1, 1, 1};
        EXPECT_GE(5u, odxMeanShiftf32(weights.data(), 20, 20, 80, &window, 5, 1));
        EXPECT_GE(5u, odxConAdaTrackf32(weights.data(), 20, 20, 0, &window, 5, 1, &ellipse));
        EXPECT_LE(window.x + window.width, 20u);
        if (odd != 3e38F) EXPECT_EQ(0, ellipse.length);
    }
}

TEST_F(Tracking, BlocksGoWhereTheyFitBest)
{
    for (int round = 0; round < 40; ++round) {
        const int width = 16 + below(30), height = 16 + below(30), stride = width + below(5), radius = below(9),
                  step = 1 + below(20);
        std::vector<uint8_t> one = noise(stride * height), two = one;
        for (size_t i = 64; i < two.size() && round % 3 != 0; ++i)
            two[i] = one[i - index(round % 5 + (round % 2) * stride)];
        if (round % 4 == 0) std::fill(two.begin(), two.end(), uint8_t{9});
        if (round % 4 == 1) { // stripes, that fit two places equally far away
            for (size_t i = 0; i < two.size(); ++i)
                one[i] = i % 4 < 2 ? 200 : 0, two[i] = static_cast<uint8_t>(200 - one[i]);
        }
        std::vector<int16_t> flow(2 * 31 * 31), expectedFlow;
        std::vector<uint16_t> sums(31 * 31), expectedSums;
        for (int y = 0; y <= height - 16; y += step) {
            for (int x = 0; x <= width - 16; x += step) {
                std::tuple<int, int, int, int> best = {1 << 30, 0, 0, 0};
                for (int dy = -radius; dy <= radius; ++dy) {
                    for (int dx = -radius; dx <= radius; ++dx) {
                        if (x + dx < 0 || y + dy < 0 || x + dx > width - 16 || y + dy > height - 16) continue;
                        int sum = 0;
                        for (int j = 0; j < 16; ++j) {
                            for (int i = 0; i < 16; ++i)
                                sum += std::abs(one[index((y + j) * stride + x + i)] -
                                                two[index((y + dy + j) * stride + x + dx + i)]);
                        }
                        best = std::min(best, std::tuple(sum, dx * dx + dy * dy, dy, dx));
                    }
                }
                expectedFlow.push_back(static_cast<int16_t>(std::get<3>(best)));
                expectedFlow.push_back(static_cast<int16_t>(std::get<2>(best)));
                expectedSums.push_back(static_cast<uint16_t>(std::get<0>(best)));
            }
        }
        odxTrackBMOpticalFlow16x16u8(one.data(), two.data(), static_cast<unsigned>(width),
                                     static_cast<unsigned>(height), static_cast<unsigned>(stride),
                                     static_cast<unsigned>(step), static_cast<unsigned>(radius), flow.data(),
                                     sums.data());
        flow.resize(expectedFlow.size());
        sums.resize(expectedSums.size());
        EXPECT_EQ(expectedFlow, flow) << "round " << round;
        EXPECT_EQ(expectedSums, sums) << "round " << round;
    }
}

// Limits that are not of alignment or size.
TEST_F(Tracking, TargetsTakeTheSearchesAndWindowsThatTheyKnow)
{
    alignas(16) static uint8_t image[192 * 144];
    uint16_t place[2];
    int32_t score;
    float sub[2];
    const auto taken = [](uint32_t number, uint32_t column, const auto& call) {
        LogCapture log;
        const uint32_t before = odxImplTable[number];
        odxImplTable[number] = column;
        libLogPrint = 1;
        call();
        libLogPrint = 0;
        odxImplTable[number] = before;
        const std::string line = log.take().at(0).text;
        return line.substr(line.rfind('_') + 1);
    };
    const auto search = [&](unsigned width, int subPixel) {
        return taken(odx::op_odxNCCPatchOnSquare8x8u8, ODX_IMPL_GPU, [&] {
            odxNCCPatchOnSquare8x8u8(image, image, 192, 144, 90, 70, width, place, place + 1, &score, subPixel,
                                     sub, sub + 1);
        });
    };
    EXPECT_EQ("GPU", search(11, 0));
    EXPECT_EQ("ORLAN", search(20, 0));
    EXPECT_EQ("ORLAN", search(11, 1));
    const auto flow = [&](uint32_t column, int width, int height) {
        const odxPyrLevel levels[1] = {};
        return taken(odx::op_odxTrackLKOpticalFlowu8_v2, column, [&] {
            odxTrackLKOpticalFlowu8_v2(image, image, 192, 144, 0, levels, levels, sub, sub, &score, 0, width,
                                       height, 9, 1);
        });
    };
    for (const auto& [w, h] : {std::pair(7, 9), {9, 7}}) {
        EXPECT_EQ("ORLAN", flow(ODX_IMPL_XDSP, w, h));
        EXPECT_EQ("GPU", flow(ODX_IMPL_GPU, w, h));
    }
    EXPECT_EQ("XDSP", flow(ODX_IMPL_XDSP, 7, 7));
}
