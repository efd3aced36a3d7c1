// The trackers against their definitions, coded the slow way.
#include "ondrix/tracking.h"
#include "frame/log.h"
#include "frame/operations.h"
#include "frame/tables.h"
#include "ondrix/opticalFlow.h"
#include "support/childProcess.h"
#include "support/drawings.h"
#include "support/logCapture.h"
#include "support/referenceTest.h"

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string.h>
#include <tuple>

using namespace odx::test;

namespace
{

using Image = Grid<uint8_t>;

class Tracking : public odx::test::ReferenceTest
{
protected:
    std::mt19937 random_{11};

    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
};

// ---- the definition of the search of patches ----

using Result = std::tuple<int, int, int, int, float, float>; // status, x, y, score, subX, subY

struct Search {
    Image patch, src;
    int x, y, rx = 0, ry = 0, threshold = 0;
    bool disc = false;

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
        for (int i = 0; i < 64; ++i) {
            const int p = patch.at(i % 8, i / 8), w = src.at(x + dx - 4 + i % 8, y + dy - 4 + i / 8);
            s.p += p, s.pp += p * p, s.w += w, s.ww += w * w, s.c += p * w;
        }
        return s;
    }
    bool candidate(int dx, int dy) const { return !disc || dx * dx + dy * dy <= rx * rx; }
    bool fits() const { return x >= rx + 4 && y >= ry + 4 && x < src.width - rx - 4 && y < src.height - ry - 4; }

    Result run() const
    {
        if (!fits()) return {2, 0, 0, 0, 0, 0};
        if (at(0, 0).varP() < threshold) return {4, 0, 0, -127, 0, 0};
        bool found = false;
        Sums best;
        int bx = 0, by = 0;
        window(rx, ry, [&](int dx, int dy) {
            const Sums s = at(dx, dy);
            if (!candidate(dx, dy) || s.n() < 1) return;
            const auto n = static_cast<float>(s.n()), m = static_cast<float>(best.n());
            if (found && !(n * n * static_cast<float>(best.varW()) > m * m * static_cast<float>(s.varW()))) return;
            found = true;
            best = s;
            bx = dx;
            by = dy;
        });
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

Result runSearch(const Search& s, unsigned searchWidth)
{
    uint16_t x = 9, y = 9;
    int32_t score = 9;
    float subX = 0, subY = 0;
    const auto operation = s.disc ? odxNCCPatchOnCircle8x8u8_v2 : odxNCCPatchOnSquare8x8u8_v2;
    const int status =
        operation(s.patch.data(), s.src.data(), s.src.w(), s.src.h(), static_cast<unsigned>(s.x),
                  static_cast<unsigned>(s.y), searchWidth, &x, &y, &score, 1, &subX, &subY, s.threshold);
    return {status, x, y, score, subX, subY};
}

// What a patch shows that is found in an image.
Image cut(const Image& image, int left, int top)
{
    return drawn<uint8_t>(8, 8, [&](int x, int y) { return image.at(left + x, top + y); });
}

} // namespace

TEST_F(Tracking, PatchesAreFoundWhereTheDefinitionFindsThem)
{
    constexpr int kWidth = 40, kHeight = 34;
    int seen[6] = {};
    for (int round = 0; round < 1200; ++round) {
        const int least = round % 3 == 0 ? 120 : 0;
        Image image = noise<uint8_t>(kWidth, kHeight, least, 255);
        if (round % 9 == 0) image = Image(kWidth, kHeight, 50);
        if (round % 3 == 1) { // smooth, so that neighbours are alike
            for (size_t i = image.pixels.size() - 1; i > kWidth; --i)
                image.pixels[i] = static_cast<uint8_t>(
                    (image.pixels[i] + 3 * image.pixels[i - 1] + 3 * image.pixels[i - kWidth]) / 7);
        }
        Search s = {noise<uint8_t>(8, 8, least, 255), image, 3 + below(kWidth - 5), 3 + below(kHeight - 5)};
        if (round % 2 == 0) s.patch = cut(image, std::min(s.x, kWidth - 8), std::min(s.y, kHeight - 8));
        s.threshold = round % 5 == 0 ? 1 + below(600000) : 0;
        const unsigned search = 1 + static_cast<unsigned>(below(11));
        s.rx = s.ry = static_cast<int>(search / 2);
        for (const bool disc : {true, false}) {
            s.disc = disc;
            const Result expected = s.run();
            ++seen[std::get<0>(expected)];
            EXPECT_EQ(expected, runSearch(s, search)) << "round " << round;
        }
        // Several in a rectangle: this one, and a flat one.
        s.ry = below(6);
        Image patches = s.patch;
        patches.pixels.resize(128, 77);
        uint16_t x[2], y[2];
        int32_t score[2], status[2];
        const int result =
            odxNCCPatchesOnRectu8(patches.data(), 2, image.data(), kWidth, kHeight, static_cast<unsigned>(s.x),
                                  static_cast<unsigned>(s.y), search, static_cast<unsigned>(2 * s.ry + 1),
                                  s.threshold, x, y, score, status);
        const int first = std::get<0>(s.run());
        for (const int i : {0, 1}) {
            const auto [expected, atX, atY, best, subX, subY] = s.run();
            EXPECT_EQ(std::tuple(expected, atX, atY, best), std::tuple(status[i], int{x[i]}, int{y[i]}, score[i]))
                << "rectangle, round " << round;
            s.patch = Image(8, 8, 77);
        }
        EXPECT_EQ(first == 0 ? 0 : first == 2 ? 2 : 3, result);
    }
    for (const int status : {0, 2, 3, 4, 5})
        EXPECT_LT(3, seen[status]) << status;
}

TEST_F(Tracking, PatchSearchesHaveLimits)
{
    const Image image = noise<uint8_t>(64, 64, 0, 255), patch = cut(image, 26, 16);
    Search s = {patch, image, 30, 20, 5, 5};
    EXPECT_EQ((Result{0, 30, 20, 128, 0, 0}), runSearch(s, 1));
    EXPECT_EQ((Result{1, 0, 0, 0, 0, 0}), runSearch(s, 20));
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
        EXPECT_EQ(expected, std::get<0>(runSearch(s, 11)));
    }
    s.x = -2; // limits do not wrap
    EXPECT_EQ(2, std::get<0>(runSearch(s, 11)));
    EXPECT_EQ(
        1, odxNCCPatchesOnRectu8(patch.data(), 1, image.data(), 64, 64, 30, 20, 3, 12, 0, &x, &y, &score, status));
    EXPECT_EQ(std::tuple(1, 0, 0), std::tuple(status[0], int{x}, score));
    // Squares from 12 on do not fit the tables.
    s.x = 30;
    for (const unsigned width : {12u, 19u}) {
        expectEnd("src/cpu/ondrixNCCPatchC@.*sumW <= \\(\\(2\\*5\\+1\\)\\+8\\) Assertion failed",
                  [&] { runSearch(s, width); });
    }
}

// ---- windows ----

namespace
{

using Box = std::array<int64_t, 4>; // x, y, width, height

odxWindow windowOf(const Box& box)
{
    const auto side = [&](size_t i) { return static_cast<uint32_t>(box.at(i)); };
    return {side(0), side(1), side(2), side(3)};
}
Box boxOf(const odxWindow& w)
{
    return {w.x, w.y, w.width, w.height};
}

// Weights of any type; whole numbers, so that all sums are exact.
struct Field : Grid<int> {
    using Grid<int>::Grid;

    int64_t size(size_t axis) const { return axis == 0 ? width : height; }
    void clamp(Box& box) const
    {
        for (const size_t i : {0u, 1u}) {
            box[i] = std::min(box[i], size(i) - 1);
            box[i + 2] = std::max<int64_t>(std::min(size(i) - box[i], box[i + 2]), 1);
        }
    }
    // The weights in a box, times term(x, y).
    template <class Term>
    double sum(const Box& box, Term term) const
    {
        double total = 0;
        for (int64_t y = box[1]; y < box[1] + box[3]; ++y) {
            for (int64_t x = box[0]; x < box[0] + box[2]; ++x)
                total += at(static_cast<int>(x), static_cast<int>(y)) *
                         term(static_cast<double>(x), static_cast<double>(y));
        }
        return total;
    }
    // Their mass, and its centre as seen from the box's corner.
    std::array<double, 3> centre(const Box& box) const
    {
        const double m = sum(box, [](double, double) { return 1; });
        return {m, sum(box, [&](double x, double) { return x - static_cast<double>(box[0]); }) / m,
                sum(box, [&](double, double y) { return y - static_cast<double>(box[1]); }) / m};
    }
};

int slowMeanShift(const Field& f, Box& box, int limit, double epsilon)
{
    for (int done = 0; done < limit; ++done) {
        f.clamp(box);
        const std::array<double, 3> centre = f.centre(box);
        if (centre[0] == 0) return done;
        double moved = 0;
        for (const size_t i : {0u, 1u}) {
            const auto at = static_cast<double>(box[i]);
            const double step = std::round(centre[i + 1] - static_cast<double>(box[i + 2]) * 0.5);
            box[i] = static_cast<int64_t>(std::clamp(at + step, 0.0, static_cast<double>(f.size(i) - 1)));
            moved += step * step;
        }
        f.clamp(box);
        if (moved < std::trunc(epsilon * epsilon + 0.5)) return done;
    }
    return limit;
}

// What the adaptive tracker makes of the window that mean shift left, up to rounding.
void expectEllipse(const Field& f, const Box& from, const odxTrackedEllipse& e, const odxWindow& window)
{
    Box around;
    for (const size_t i : {0u, 1u}) {
        around[i] = std::max<int64_t>(from[i] - 10, 0);
        around[i + 2] = std::min(from[i] + from[i + 2] + 10, f.size(i)) - around[i];
    }
    const auto [m, right, down] = f.centre(around);
    if (m <= 0) {
        EXPECT_EQ(std::tuple(0, 0, 0, 0, 0), std::tuple(e.x, e.y, e.length, e.width, e.angle));
        EXPECT_EQ(from, boxOf(window));
        return;
    }
    const double xc = static_cast<double>(around[0]) + right, yc = static_cast<double>(around[1]) + down;
    const auto spread = [&, mass = m](auto term) { return f.sum(around, term) / mass; };
    const double a = std::max(spread([=](double x, double) { return (x - xc) * (x - xc); }), 0.0),
                 b = spread([=](double x, double y) { return (x - xc) * (y - yc); }),
                 c = std::max(spread([=](double, double y) { return (y - yc) * (y - yc); }), 0.0);
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
        Field f(1 + below(60), 1 + below(50));
        const int cx = below(f.width), cy = below(f.height), least = round % 4 == 0 ? -9 : 0;
        for (int y = 0; y < f.height; ++y) {
            for (int x = 0; x < f.width && round % 7 != 0; ++x)
                f.at(x, y) = std::max(200 - 9 * (std::abs(x - cx) + std::abs(y - cy)), least);
        }
        const Box start = {below(f.width + 9), round % 9 == 0 ? 0xFFFFFFFF : below(f.height), below(40),
                           below(40)};
        const unsigned limit = 1 + static_cast<unsigned>(below(12));
        const float epsilon = static_cast<float>(below(30)) / 10;
        Box expected = start;
        const auto iterations = static_cast<unsigned>(
            slowMeanShift(f, expected, static_cast<int>(limit), static_cast<double>(epsilon)));
        const auto expectSame = [&](auto type, auto operation, auto adaptive) {
            const std::vector<decltype(type)> weights(f.pixels.begin(), f.pixels.end());
            odxWindow window = windowOf(start);
            EXPECT_EQ(iterations, operation(weights.data(), f.w(), f.h(), 0, &window, limit, epsilon));
            EXPECT_EQ(expected, boxOf(window)) << "round " << round;
            window = windowOf(start);
            EXPECT_EQ(0u, operation(weights.data(), f.w(), f.h(), 0, &window, 0, epsilon));
            EXPECT_EQ(start, boxOf(window));
            odxTrackedEllipse ellipse = {1, 1, 1, 1, 1};
            EXPECT_EQ(iterations, adaptive(weights.data(), f.w(), f.h(), 0, &window, limit, epsilon, &ellipse));
            expectEllipse(f, expected, ellipse, window);
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
        const int stride = 16 + below(34), width = std::max(stride - below(5), 16), height = 16 + below(30),
                  radius = below(9), step = 1 + below(20);
        Image one = noise<uint8_t>(stride, height, 0, 255), two = one;
        for (size_t i = 0; i < one.pixels.size(); ++i) {
            const int back = round % 5 + (round % 2) * stride;
            if (i >= 64 && round % 3 != 0) two.pixels[i] = one.pixels[i - static_cast<size_t>(back)];
            if (round % 4 == 0) two.pixels[i] = 9;
            if (round % 4 == 1) // stripes, that fit two places equally far away
                one.pixels[i] = i % 4 < 2 ? 200 : 0, two.pixels[i] = static_cast<uint8_t>(200 - one.pixels[i]);
        }
        std::vector<int16_t> flow(2 * 31 * 31), expectedFlow;
        std::vector<uint16_t> sums(31 * 31), expectedSums;
        for (int y = 0; y <= height - 16; y += step) {
            for (int x = 0; x <= width - 16; x += step) {
                std::tuple<int, int, int, int> best = {1 << 30, 0, 0, 0};
                window(radius, radius, [&](int dx, int dy) {
                    if (x + dx < 0 || y + dy < 0 || x + dx > width - 16 || y + dy > height - 16) return;
                    int sum = 0;
                    for (int i = 0; i < 256; ++i) {
                        const int u = x + i % 16, v = y + i / 16;
                        sum += std::abs(one.at(u, v) - two.at(u + dx, v + dy));
                    }
                    best = std::min(best, std::tuple(sum, dx * dx + dy * dy, dy, dx));
                });
                expectedFlow.push_back(static_cast<int16_t>(std::get<3>(best)));
                expectedFlow.push_back(static_cast<int16_t>(std::get<2>(best)));
                expectedSums.push_back(static_cast<uint16_t>(std::get<0>(best)));
            }
        }
        odxTrackBMOpticalFlow16x16u8(one.data(), two.data(), static_cast<unsigned>(width), one.h(), one.w(),
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
