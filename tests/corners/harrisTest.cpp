// Harris corners against a model that computes whole images of responses, and their relatives against the corners.
#include "corners/corners.h"
#include "ondrix/harrisCorners.h"
#include "support/childProcess.h"
#include "support/logCapture.h"
#include "support/referenceTest.h"
#include "support/scratchWatch.h"

#include <cmath>
#include <tuple>

using namespace odx::test;

namespace
{

int64_t floorShift(int64_t value, int bits)
{
    return static_cast<int64_t>(std::floor(std::ldexp(static_cast<double>(value), -bits)));
}

// Ixx, Iyy and Ixy of a pixel.
std::tuple<int64_t, int64_t, int64_t> smoothedProducts(const Image& image, int x, int y)
{
    static constexpr int weights[] = {1, 4, 6, 4, 1};
    int64_t xx = 0, yy = 0, xy = 0;
    window(2, 2, [&](int i, int j) {
        const int u = x + i, v = y + j, weight = weights[i + 2] * weights[j + 2];
        const int64_t dx = floorShift(image.at(u + 1, v) - image.at(u - 1, v), 1);
        const int64_t dy = floorShift(image.at(u, v + 1) - image.at(u, v - 1), 1);
        xx += weight * dx * dx;
        yy += weight * dy * dy;
        xy += weight * dx * dy;
    });
    return {floorShift(xx, 8), floorShift(yy, 8), floorShift(xy, 8)};
}

int64_t harris(const Image& image, int x, int y)
{
    const auto [xx, yy, xy] = smoothedProducts(image, x, y);
    return xx * yy - xy * xy - (xx + yy) * (xx + yy) / 16;
}

int64_t minEigenvalue(const Image& image, int x, int y)
{
    const auto [xx, yy, xy] = smoothedProducts(image, x, y);
    const auto root = static_cast<int64_t>(
        std::floor(256 * std::sqrt(static_cast<long double>((xx - yy) * (xx - yy) + 4 * xy * xy))));
    return floorShift(256 * (xx + yy) - root, 1);
}

// All corners in raster order, by their definition.
template <class Strength>
Corners corners(const Image& image, int border, int64_t threshold, Strength strength)
{
    border = std::max(border, 5);
    Grid<int64_t> responses(image.width, image.height);
    for (int y = 3; y < image.height - 3; ++y) {
        for (int x = 3; x < image.width - 3; ++x)
            responses.at(x, y) = strength(image, x, y);
    }
    const auto at = [&](int x, int y) { return responses.at(x, y); };
    Corners found;
    for (int y = border; y < image.height - border; ++y) {
        for (int x = border; x < image.width - border; ++x) {
            bool corner = at(x, y) > threshold;
            window(2, 2,
                   [&](int i, int j) { corner = corner && ((i == 0 && j == 0) || at(x, y) > at(x + i, y + j)); });
            if (corner) found.push_back({static_cast<uint32_t>(x), static_cast<uint32_t>(y), at(x, y)});
        }
    }
    return found;
}

constexpr unsigned kPlenty = 4000;

// Runs detect(xy, &count), which must find these corners and write nothing else.
template <class Detect>
void expectFound(const Corners& expected, Detect detect, const std::string& what = "")
{
    std::vector<uint32_t> xy(2 * kPlenty, 77), places;
    uint32_t count = 77;
    detect(xy.data(), &count);
    ASSERT_EQ(expected.size(), count) << what;
    for (const Corner& corner : expected)
        places.insert(places.end(), {corner.x, corner.y});
    places.resize(xy.size(), 77);
    ASSERT_EQ(places, xy) << what;
}

Corners strongestFirst(Corners corners)
{
    std::stable_sort(corners.begin(), corners.end(),
                     [](const Corner& a, const Corner& b) { return a.strength > b.strength; });
    return corners;
}

Corners detected(const Image& image, unsigned border, int threshold, unsigned capacity = kPlenty)
{
    std::vector<uint32_t> xy(2 * kPlenty, 77);
    std::vector<int32_t> scores(kPlenty, 77);
    uint32_t count = 77;
    odxCornerHarrisScoreu8(image.data(), image.w(), image.h(), 0, border, xy.data(), scores.data(), capacity,
                           &count, threshold);
    Corners found;
    for (uint32_t i = 0; i < count; ++i)
        found.push_back({xy[2 * i], xy[2 * i + 1], scores[i]});
    expectFound(found, [&](uint32_t* plain, uint32_t* plainCount) {
        odxCornerHarrisu8(image.data(), image.w(), image.h(), 0, border, plain, capacity, plainCount, threshold);
    });
    return found;
}

class Harris : public odx::test::ReferenceTest
{
};

// A checkered corner at a point between pixels, with pixels that are covered in part.
Image checkered(double cornerX, double cornerY)
{
    return drawn<uint8_t>(41, 41, [=](int x, int y) {
        const auto covered = [](double edge, int pixel) { return std::clamp(edge - (pixel - 0.5), 0.0, 1.0); };
        const double left = covered(cornerX, x), top = covered(cornerY, y);
        return std::lround(30 + 200 * (left * top + (1 - left) * (1 - top)));
    });
}

} // namespace

TEST_F(Harris, CornersAreStrictMaximaAboveTheThreshold)
{
    for (const auto& [width, height] : {std::pair{5, 5}, {7, 40}, {40, 7}, {11, 11}, {12, 13}, {64, 48}}) {
        for (const int range : {256, 40, 3}) { // the last one has many ties
            const Image image = noisy(width, height, range);
            for (const int border : {0, 5, 6, 9}) {
                for (const int threshold : {0, -1000000000, 2000000}) {
                    const Corners expected = corners(image, border, threshold, harris);
                    ASSERT_EQ(expected, detected(image, static_cast<unsigned>(border), threshold))
                        << width << "x" << height << " range " << range << " border " << border;
                    const Corners first(expected.begin(),
                                        expected.begin() + static_cast<std::ptrdiff_t>(expected.size() / 2));
                    ASSERT_EQ(first, detected(image, static_cast<unsigned>(border), threshold,
                                              static_cast<unsigned>(first.size())));
                }
            }
        }
    }
    EXPECT_GT(corners(noisy(64, 48), 0, 0, harris).size(), 20u);
    EXPECT_EQ(Corners{}, detected(noisy(12, 60), 20, -1000000000)); // borders that meet in one direction only
}

TEST_F(Harris, MaskBitsRuleOutCorners)
{
    const Image image = noisy(64, 48);
    const Corners all = detected(image, 0, 0);
    for (const auto& [times, over] : kScales) {
        const Mask mask(image, times, over);
        Corners expected;
        std::copy_if(all.begin(), all.end(), std::back_inserter(expected),
                     [&](const Corner& corner) { return !mask.excludes(corner.x, corner.y); });
        EXPECT_GT(expected.size(), 5u);
        EXPECT_LT(expected.size(), all.size());
        for (const unsigned more : {0u, 1u}) { // a mask of another size excludes all
            expectFound(more == 0 ? expected : Corners(), [&](uint32_t* xy, uint32_t* count) {
                odxCornerHarrisInMasku8(image.data(), 64, 48, 0, 0, xy, kPlenty, count, 0, mask.bits.data(),
                                        mask.width, mask.height + more);
            });
        }
    }
}

TEST_F(Harris, TheAdaptiveThresholdKeepsTheStrongest)
{
    for (const int range : {256, 3}) {
        const Image image = noisy(64, 48, range);
        const Corners all = corners(image, 0, 1000, harris);
        for (const size_t capacity : {size_t{0}, size_t{1}, size_t{7}, all.size(), all.size() + 5}) {
            Corners strongest = strongestFirst(all);
            strongest.resize(std::min(capacity, all.size()), {});
            Corners expected;
            std::copy_if(all.begin(), all.end(), std::back_inserter(expected), [&](const Corner& corner) {
                return std::find(strongest.begin(), strongest.end(), corner) != strongest.end();
            });
            expectFound(expected, [&](uint32_t* xy, uint32_t* count) {
                odxCornerHarrisAdaptiveu8(image.data(), 64, 48, 0, 0, xy, static_cast<unsigned>(capacity), count,
                                          1000);
            });
        }
    }
}

TEST_F(Harris, TheLocalMaximumIsThatOfTheWindow)
{
    Corner found;
    const auto search = [&](const Image& in, unsigned width, unsigned stride, unsigned x, unsigned y,
                            unsigned radius) {
        int32_t response = 77;
        found.x = found.y = 77;
        const auto status =
            odxLocalHarrisMaxu8(in.data(), width, 30, stride, x, y, radius, &found.x, &found.y, &response);
        found.strength = response;
        return status;
    };
    const Image image = noisy(40, 30);
    const int windows[][3] = {{20, 15, 0}, {20, 15, 4}, {0, 0, 5}, {39, 29, 6}, {20, 15, 1000}, {5, 28, 9}};
    for (const auto& [x, y, radius] : windows) {
        Corner best = {0, 0, INT64_MIN};
        for (int v = std::max(3, y - radius); v <= std::min(26, y + radius); ++v) {
            for (int u = std::max(3, x - radius); u <= std::min(36, x + radius); ++u) {
                const int64_t response = harris(image, u, v);
                if (response > best.strength)
                    best = {static_cast<uint32_t>(u), static_cast<uint32_t>(v), response};
            }
        }
        EXPECT_EQ(ONDRIX_SUCCESS, search(image, 40, 0, static_cast<unsigned>(x), static_cast<unsigned>(y),
                                         static_cast<unsigned>(radius)));
        EXPECT_EQ(best, found);
    }
    EXPECT_EQ(ONDRIX_SUCCESS, search(Image(40, 30, 9), 40, 0, 20, 15, 4));
    EXPECT_EQ((Corner{16, 11, 0}), found); // the first one of many
    const unsigned refused[][5] = {{40, 0, 0, 0, 2},    {40, 0, 37, 15, 0},
                                   {40, 0, 20, 500, 9}, {40, 0, 4000000000u, 15, 9},
                                   {40, 39, 20, 15, 2}, {6, 40, 2, 15, 9}};
    for (const auto& [width, stride, x, y, radius] : refused) {
        EXPECT_EQ(ONDRIX_BAD_PARAMETER, search(image, width, stride, x, y, radius));
        EXPECT_EQ((Corner{77, 77, 77}), found);
    }
}

TEST_F(Harris, GoodFeaturesAreStrongAndApart)
{
    const Image varied = noisy(64, 48);
    // In the other one every corner has equals.
    for (const Image& image :
         {varied, drawn<uint8_t>(64, 48, [&](int x, int y) { return varied.at(x % 16, y % 16); })}) {
        const Corners all = strongestFirst(corners(image, 0, 0, minEigenvalue));
        ASSERT_GT(all.size(), 20u);
        for (const unsigned distance : {0u, 1u, 5u, 12u, 1000000u}) {
            for (const float quality : {0.0f, 0.3f, 1.0f}) {
                for (const size_t capacity : {size_t{0}, size_t{5}, size_t{1000}}) {
                    Corners expected;
                    for (const Corner& corner : all) {
                        const bool apart = std::all_of(expected.begin(), expected.end(), [&](const Corner& kept) {
                            return std::hypot(double(kept.x) - corner.x, double(kept.y) - corner.y) >= distance;
                        });
                        const bool strong = static_cast<double>(corner.strength) >=
                                            double(quality) * static_cast<double>(all[0].strength);
                        if (apart && strong && expected.size() < capacity) expected.push_back(corner);
                    }
                    expectFound(expected, [&](uint32_t* xy, uint32_t* count) {
                        odxGoodFeatureToTracku8(image.data(), 64, 48, 0, 0, xy, static_cast<unsigned>(capacity),
                                                count, quality, distance);
                    });
                }
            }
        }
    }
}

// A refined point by its definition.
std::pair<double, double> refinedModel(const Image& image, double startX, double startY, int half,
                                       unsigned iterations, double epsilon)
{
    const auto value = [&](double u, double v) {
        const int left = static_cast<int>(u), top = static_cast<int>(v), right = std::min(left + 1, 40),
                  bottom = std::min(top + 1, 40);
        const double fx = u - left, fy = v - top;
        return (1 - fy) * ((1 - fx) * image.at(left, top) + fx * image.at(right, top)) +
               fy * ((1 - fx) * image.at(left, bottom) + fx * image.at(right, bottom));
    };
    const auto fits = [=](double at) { return at - half - 1 >= 0 && at + half + 1 <= 40; };
    double x = startX, y = startY;
    for (; iterations > 0; --iterations) {
        if (!fits(x) || !fits(y)) return {startX, startY};
        double xx = 0, yy = 0, xy = 0, bx = 0, by = 0;
        window(half, half, [&](int i, int j) {
            const double u = x + i, v = y + j, weight = (half + 1 - std::abs(i)) * (half + 1 - std::abs(j));
            const double gx = value(u + 1, v) - value(u - 1, v), gy = value(u, v + 1) - value(u, v - 1);
            xx += weight * gx * gx;
            yy += weight * gy * gy;
            xy += weight * gx * gy;
            bx += weight * (gx * gx * i + gx * gy * j);
            by += weight * (gx * gy * i + gy * gy * j);
        });
        const double determinant = xx * yy - xy * xy;
        const double dx = (yy * bx - xy * by) / determinant, dy = (xx * by - xy * bx) / determinant;
        x += dx;
        y += dy;
        const bool near = std::abs(x - startX) <= half && std::abs(y - startY) <= half;
        if (!(determinant > 1e-6 * (xx + yy) * (xx + yy)) || !near) return {startX, startY};
        if (std::hypot(dx, dy) <= epsilon) break;
    }
    return {x, y};
}

// Also where no window fits, before a step or after it, where there is no structure or only an edge, and where the
// corner is further away than the window reaches.
TEST_F(Harris, RefinementTakesTheStepsOfItsDefinition)
{
    const Image grain = noisy(41, 41, 25), smooth = checkered(20.3, 19.6),
                grainy = drawn<uint8_t>(41, 41, [&](int x, int y) { return smooth.at(x, y) + grain.at(x, y); }),
                edge = drawn<uint8_t>(41, 41, [](int x, int) { return x < 20 ? 0 : 200; });
    int moved = 0, stayed = 0;
    for (const Image& image : {grainy, edge, Image(41, 41, 9), checkered(20, 20), checkered(6.2, 20),
                               checkered(33.8, 20), checkered(5.6, 20)}) {
        std::vector<float> start = {20.75f, 20.25f, 20, 20, 25.4f, 20, 20, 25.4f};
        for (const float x : {6.0f, 5.9f, 6.4f, 34.0f, 35.0f, -3.0f, 1e30f, NAN})
            start.insert(start.end(), {x, 20, 21, x});
        for (const int half : {1, 4, 5, 15}) {
            for (const unsigned iterations : {1u, 2u, 5u}) {
                for (const float epsilon : {0.0f, 0.2f, 0.6f}) {
                    std::vector<float> xy = start;
                    odxCornerRefineSubPixu8(image.data(), 41, 41, 0, xy.data(),
                                            static_cast<unsigned>(xy.size() / 2), static_cast<unsigned>(half),
                                            iterations, epsilon);
                    for (size_t i = 0; i < xy.size(); i += 2) {
                        const auto [x, y] = refinedModel(image, double(start[i]), double(start[i + 1]), half,
                                                         iterations, double(epsilon));
                        const auto expectNear = [&](double expected, float actual) {
                            if (std::isnan(expected) && std::isnan(actual)) return;
                            EXPECT_TRUE(std::abs(expected - double(actual)) < 1e-4)
                                << actual << ", not " << expected << ", from " << start[i] << ", " << start[i + 1];
                        };
                        expectNear(x, xy[i]);
                        expectNear(y, xy[i + 1]);
                        (xy[i] == start[i] ? stayed : moved)++;
                    }
                }
            }
        }
    }
    EXPECT_LT(100, std::min(moved, stayed));
}

TEST_F(Harris, EdgesAlongALineAreThoseOfTheDefinition)
{
    size_t found = 0;
    for (int round = 0; round < 600; ++round) {
        const Image image = noisy(round % 2 == 0 ? 64 : 71, 64, round % 3 == 0 ? 256 : 12); // few levels: plateaus
        const auto turn = 0.37f * static_cast<float>(round), r = static_cast<float>(3 + round % 10);
        const float dir[] = {std::cos(turn), std::sin(turn)},
                    pos[] = {28 + 0.9f * static_cast<float>(round % 9), 31.3f};
        const int gradient = round % 5 * 3 - 3, last = 6 + round % 10 * 2;
        const float angle = 0.3f * static_cast<float>(round % 4);
        const auto place = [&](int k, int stride) { // of the pixel of a sample
            const auto along = [&](int i) {
                return static_cast<int>((pos[i] - r * dir[i]) + static_cast<float>(k) * dir[i] + 0.5f);
            };
            return image.data() + along(1) * stride + along(0);
        };
        const auto slope = [&](int k) {
            const auto sample = [&](int i) {
                const uint8_t* const q = place(i, image.width);
                return (q[-1] + q[0] + q[1] + q[-64] + q[64]) >> 2;
            };
            k = std::clamp(k, 1, last - 1);
            return sample(k + 1) - sample(k - 1);
        };
        std::vector<float> expected, maxima(20, 77);
        for (int k = 1; k < last; ++k) {
            const uint8_t* const q = place(k, 64); // as if rows followed each other
            const auto gx = static_cast<float>(q[-63] - q[-65] + 2 * (q[1] - q[-1]) + q[65] - q[63]);
            const auto gy = static_cast<float>(q[63] - q[-65] + 2 * (q[64] - q[-64]) + q[65] - q[-63]);
            const float m = gx * gx + gy * gy, c = gx * dir[0] + gy * dir[1];
            if (slope(k) >= gradient && slope(k - 1) <= slope(k) && slope(k) > slope(k + 1) && m != 0 &&
                !(c * c / m < angle) && expected.size() < static_cast<size_t>(round % 6))
                expected.push_back(static_cast<float>(k) - r);
        }
        uint32_t count = 77;
        EXPECT_EQ(0u, odxFindMultipleMaximau8(image.data(), 64, 64, image.w(), pos, dir, static_cast<unsigned>(r),
                                              static_cast<unsigned>(round % 6), gradient, angle, maxima.data(),
                                              &count));
        found += expected.size();
        expected.resize(20, 77);
        ASSERT_EQ(expected, maxima) << round;
    }
    EXPECT_LT(300u, found);

    // The ends must keep distance + 2 from the edges; outputs stay as they are.
    const Image image = noisy(64, 64);
    const float right[] = {1, 0};
    std::vector<float> maxima(8, 77.0f);
    uint32_t count = 77;
    const auto search = [&](float x, float y, unsigned distance) {
        const float at[] = {x, y};
        return odxFindMultipleMaximau8(image.data(), 64, 64, 0, at, right, distance, 7, 20, 0, maxima.data(),
                                       &count);
    };
    const std::tuple<float, float, unsigned> beyond[] = {
        {26, 31, 13}, {28, 13.5f, 12}, {28, 50.5f, 12}, {NAN, 31, 12}, {28, 31, 4000000000u}};
    for (const auto& [x, y, distance] : beyond)
        EXPECT_EQ(1u, search(x, y, distance));
    EXPECT_EQ(77u, count);
    EXPECT_EQ(0u, search(32, 14, 12));
    EXPECT_EQ(0u, search(32, 50, 12));
    const ScratchWatch watch(ScratchWatch::kAll);
    EXPECT_EQ(1u, search(32, 31, 12));
    EXPECT_EQ(0u, count);
}

TEST_F(Harris, MemoryIsReturnedWhereverASearchEnds)
{
    const ScratchWatch watch(ScratchWatch::kNone);
    for (const auto& [border, capacity] : {std::pair{5u, 1000u}, {5u, 1u}, {5u, 0u}, {9u, 1000u}, {15u, 1000u}}) {
        detected(noisy(40, 30), border, 0, capacity);
        EXPECT_EQ(0, watch.lent) << border << " " << capacity;
    }
}

TEST_F(Harris, WithoutMemoryForCandidatesThereAreNoCorners)
{
    const Image image = noisy(40, 30);
    const auto expectNone = [&](const std::string& operation, int failing, const auto& detect) {
        const ScratchWatch watch(failing);
        LogCapture log;
        expectFound({}, detect, operation + std::to_string(failing));
        const LogLine line = {6, "ondrix_lib_log", "Error - can not allocate scratch buffer for " + operation};
        EXPECT_EQ(std::vector<LogLine>{line}, log.take());
        EXPECT_EQ(0, watch.lent);
    };
    expectNone("odxCornerHarrisAdaptiveu8", 1, [&](uint32_t* xy, uint32_t* count) {
        odxCornerHarrisAdaptiveu8(image.data(), 40, 30, 0, 0, xy, kPlenty, count, 0);
    });
    for (const int failing : {1, 2, 3}) {
        expectNone("odxGoodFeatureToTracku8", failing, [&](uint32_t* xy, uint32_t* count) {
            odxGoodFeatureToTracku8(image.data(), 40, 30, 0, 0, xy, kPlenty, count, 0, 3);
        });
    }
}

TEST_F(Harris, WithoutTemporaryMemoryTheProcessEnds)
{
    for (const int failing : {1, 2, 3}) {
        expectEnd("6/ondrix_lib_log: ondrixHarrisC@[0-9]+: corner && grads && blurgrads Assertion "
                  "failed\n\nreturned 2\n",
                  [failing] {
                      const ScratchWatch watch(failing, false);
                      atexit([] { fprintf(stderr, "returned %d\n", ScratchWatch::returned); });
                      const Image image = noisy(20, 20);
                      uint32_t xy[8], count;
                      odxCornerHarrisu8(image.data(), 20, 20, 0, 5, xy, 4, &count, 0);
                  });
    }
}
