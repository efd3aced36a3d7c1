// Gradients and edges against their definitions and against numbers worked by hand. The other columns are held to
// the reference by the differential test.
#include "cpu/ondrixEdgeC.h"
#include "ondrix.h"
#include "support/drawings.h"
#include "support/logCapture.h"
#include "support/referenceTest.h"
#include "support/scratchWatch.h"

using namespace odx::test;

namespace
{

class Gradients : public odx::test::ReferenceTest
{
};

// A derivative: its weights along its direction, and across.
struct Weights {
    std::vector<int> derivative, smoothing;
};
const Weights kCentral = {{-1, 0, 1}, {0, 1, 0}}, kSobel = {{-1, 0, 1}, {1, 2, 1}},
              kScharr = {{-1, 0, 1}, {3, 10, 3}}, kSobel5 = {{-1, -2, 0, 2, 1}, {1, 4, 6, 4, 1}},
              kSobel7 = {{-1, -4, -5, 0, 5, 4, 1}, {1, 6, 15, 20, 15, 6, 1}};

int64_t derivative(const Grid<uint8_t>& src, int x, int y, const Weights& w, bool downward,
                   Outside outside = {true, 0})
{
    const int r = static_cast<int>(w.derivative.size()) / 2;
    int64_t sum = 0;
    window(r, r, [&](int dx, int dy) {
        const int weight = downward ? w.smoothing.begin()[dx + r] * w.derivative.begin()[dy + r]
                                    : w.derivative.begin()[dx + r] * w.smoothing.begin()[dy + r];
        sum += weight * sample(src, x + dx, y + dy, outside);
    });
    return sum;
}
int64_t saturated(int64_t sum)
{
    return std::clamp<int64_t>(sum, -32768, 32767);
}

// Calls f(x, y) for all pixels but those of a border.
template <class F>
void forPixels(int width, int height, F f, int border = 0)
{
    for (int y = border; y < height - border; ++y) {
        for (int x = border; x < width - border; ++x)
            f(x, y);
    }
}

const std::pair<int, int> kSizes[] = {{2, 5}, {5, 2}, {3, 3}, {4, 4}, {19, 8}};
constexpr int kUntouched = 77;

// Every element of what operations write: pairs (dx, dy) without a frame, or both images below each other.
template <bool pairs, class T, class S, class Operation>
void expectGradient(const char* names, const Weights& weights, double scale, Operation operation)
{
    for (const auto& [width, height] : kSizes) {
        const auto grey = noise<uint8_t>(width, height, 0, 255);
        Grid<S> src(width, height);
        std::copy(grey.pixels.begin(), grey.pixels.end(), src.pixels.begin());
        Grid<T> out(pairs ? std::max(2 * width - 4, 1) : width, 2 * height, kUntouched);
        const auto call = [&, s = &src](auto... results) {
            if constexpr (std::is_invocable_v<Operation, const S*, int, int, int, decltype(results)...>) {
                operation(s->data(), s->w(), s->h(), 0, results...);
            } else {
                operation(s->data(), s->w(), s->h(), 0, results..., 0);
            }
        };
        if constexpr (pairs) {
            call(out.data());
        } else {
            call(out.data(), &out.at(0, height));
        }
        expectPixels(
            out,
            [&, h = height](int x, int y) {
                const bool downward = pairs ? x % 2 == 1 : y >= h;
                const int atX = pairs ? x / 2 + 1 : x, atY = pairs ? y + 1 : y % h;
                const double sum = static_cast<double>(derivative(grey, atX, atY, weights, downward)) * scale;
                if (grey.border(atX, atY, 1)) return T(kUntouched);
                return static_cast<T>(std::is_integral_v<T> ? std::floor(sum) : sum);
            },
            names);
    }
}

} // namespace

TEST_F(Gradients, AreTheirStencils)
{
    const auto pairs = [](auto type, const char* names, const Weights& weights, double scale, auto... operations) {
        (expectGradient<true, decltype(type), uint8_t>(names, weights, scale, operations), ...);
    };
    const auto planes = [](auto type, const char* names, const Weights& weights, double scale,
                           auto... operations) {
        (expectGradient<false, decltype(type), uint8_t>(names, weights, scale, operations), ...);
    };
    pairs(int16_t(), "differences, s16", kCentral, 1, odxImageGradientInterleaveds16,
          odxImageGradientInterleaveds16_v2);
    pairs(0.0f, "differences, f32", kCentral, 1, odxImageGradientInterleavedf32,
          odxImageGradientInterleavedf32_v2);
    pairs(int16_t(), "Sobel, s16", kSobel, 0.125, odxImageGradientSobelInterleaveds16,
          odxImageGradientSobelInterleaveds16_v2, odxImageGradientSobelInterleaveds16_v3);
    pairs(0.0f, "Sobel, f32", kSobel, 0.125, odxImageGradientSobelInterleavedf32,
          odxImageGradientSobelInterleavedf32_v2);
    pairs(int16_t(), "Scharr", kScharr, 1, odxImageGradientScharrInterleaveds16);
    planes(int16_t(), "differences, s16", kCentral, 1, odxImageGradientPlanars16, odxImageGradientPlanars16_v2);
    planes(0.0f, "differences, f32", kCentral, 1, odxImageGradientPlanarf32, odxImageGradientPlanarf32_v2);
    planes(int16_t(), "Sobel, s16", kSobel, 0.125, odxImageGradientSobelPlanars16,
           odxImageGradientSobelPlanars16_v2, odxImageGradientSobelPlanars16_v3);
    planes(int8_t(), "Sobel, s8", kSobel, 0.125, odxImageGradientSobelPlanars8, odxImageGradientSobelPlanars8_v2);
    planes(0.0f, "Sobel, f32", kSobel, 0.125, odxImageGradientSobelPlanarf32, odxImageGradientSobelPlanarf32_v2);
    expectGradient<false, float, float>("f32f32", kSobel, 0.125, odxImageGradientSobelPlanarf32f32);
    expectGradient<false, float, float>("f32f32_v2", kSobel, 0.125, odxImageGradientSobelPlanarf32f32_v2);
}

TEST_F(Gradients, FloatSumsRoundInTheirOrder)
{
    // 2^24 + 1 is rounded to 2^24, whatever comes after.
    const float src[9] = {0, 0, 1 << 24, 0, 7, 0.5f, 0, 0, 1},
                transposed[9] = {0, 0, 0, 0, 7, 0, 1 << 24, 0.5f, 1};
    float dx[9], dy[9];
    odxImageGradientSobelPlanarf32f32(src, 3, 3, 0, dx, dy);
    EXPECT_EQ(2097152, dx[4]);
    odxImageGradientSobelPlanarf32f32(transposed, 3, 3, 0, dx, dy);
    EXPECT_EQ(2097152, dy[4]);
}

TEST_F(Gradients, MagnitudesSaturate)
{
    for (const auto& [width, height] : kSizes) {
        const auto src = noise<uint8_t>(width, height, 90, 160);
        Grid<uint8_t> dst(width, height, kUntouched), strided(width + 3, height, kUntouched);
        odxFilterSobel3x3u8(src.data(), src.w(), src.h(), dst.data());
        odxFilterSobel3x3u8_v2(src.data(), src.w(), src.h(), 0, strided.data(), strided.stride());
        expectPixels(strided, [&, w = width](int x, int y) -> int64_t {
            if (x >= w || src.border(x, y, 1)) return kUntouched;
            return std::min<int64_t>(std::abs(derivative(src, x, y, kSobel, false)) +
                                         std::abs(derivative(src, x, y, kSobel, true)),
                                     255);
        });
        expectPixels(dst, [&](int x, int y) { return strided.at(x, y); });
    }
}

TEST_F(Gradients, SobelFiltersContinueTheImage)
{
    const auto expect = [](auto filter, const Weights& weights, int r, int width, int height, uint32_t type) {
        auto src = noise<uint8_t>(width, height, 0, 255);
        for (uint8_t& pixel : src.pixels)
            pixel = height < 13 ? pixel : pixel & 0x80 ? 255 : 0; // 7x7 exceeds 16 bits
        Grid<int16_t> out(width, 2 * height, kUntouched);
        const auto run = [&](int16_t* dx, int16_t* dy) {
            return filter(src.data(), src.w(), src.h(), 0, dx, dy, 0, static_cast<odxBorderType>(type), 256 + 30);
        };
        ASSERT_EQ(ONDRIX_SUCCESS, run(out.data(), nullptr));
        ASSERT_EQ(ONDRIX_SUCCESS, run(nullptr, &out.at(0, height)));
        expectPixels(
            out,
            [&](int x, int y) {
                const bool written = type != 0 || !src.border(x, y % height, r);
                const int64_t sum = derivative(src, x, y % height, weights, y >= height, {type == 2, 30});
                return written ? saturated(sum) : kUntouched;
            },
            std::to_string(r) + " type " + std::to_string(type));
    };
    for (const auto& [width, height] : {std::pair{1, 1}, {4, 9}, {9, 4}, {21, 13}}) {
        for (const uint32_t type : {0u, 1u, 2u}) {
            expect(odxFilterSobel3x3u8s16, kSobel, 1, width, height, type);
            expect(odxFilterSobel5x5u8s16, kSobel5, 2, width, height, type);
            expect(odxFilterSobel7x7u8s16, kSobel7, 3, width, height, type);
        }
    }
}

namespace
{

// What the edge detectors differ in.
struct Detector {
    Weights weights;
    int margin;
    bool squares, factorTwo;
};

Grid<uint8_t> slowEdges(const Grid<uint8_t>& src, const Detector& d, int64_t low, int64_t high)
{
    const auto gradient = [&](int x, int y, bool downward) {
        return saturated(derivative(src, x, y, d.weights, downward));
    };
    const auto reaches = [&](int64_t value, int64_t limit) {
        return d.factorTwo ? value >= limit : value > limit;
    };
    const auto m = drawn<int64_t>(src.width, src.height, [&](int x, int y) {
        const int64_t gx = gradient(x, y, false), gy = gradient(x, y, true);
        return d.squares ? gx * gx + gy * gy : std::abs(gx) + std::abs(gy);
    });
    Grid<uint8_t> edges(src.width, src.height);
    const auto thin = [&](int x, int y) {
        const int64_t gx = gradient(x, y, false), gy = gradient(x, y, true), value = m.at(x, y);
        const int64_t across = std::abs(gx), down = std::abs(gy);
        const bool flat = d.factorTwo ? across > 2 * down : across * 13573 > down * 32768;
        const bool diagonal = !flat && (d.factorTwo ? down <= 2 * across : across * 79109 >= down * 32768);
        const int toX = flat ? 1 : !diagonal ? 0 : gx * gy < 0 ? -1 : 1, toY = flat ? 0 : 1;
        const int64_t before = m.at(x - toX, y - toY), after = m.at(x + toX, y + toY);
        const bool strict = diagonal && !d.factorTwo;
        if (!reaches(value, low) || value <= before || value < after || (strict && value == after)) return;
        edges.at(x, y) = reaches(value, high) ? 255 : 128;
    };
    forPixels(src.width, src.height, thin, d.margin);
    bool changed = true;
    const auto grow = [&](int x, int y) {
        if (edges.at(x, y) != 128) return;
        window(1, 1,
               [&](int dx, int dy) { changed |= edges.at(x + dx, y + dy) == 255 && (edges.at(x, y) = 255); });
    };
    while (changed) {
        changed = false;
        forPixels(src.width, src.height, grow, d.margin);
    }
    for (uint8_t& pixel : edges.pixels)
        pixel = pixel == 255 ? 255 : 0;
    return edges;
}

// Waves, blocks and a little noise: plateaus, ties and weak edges that hang together.
Grid<uint8_t> landscape(int width, int height, int contrast)
{
    const auto grain = noise<uint8_t>(width, height, 0, 4);
    return drawn<uint8_t>(width, height, [&](int x, int y) {
        const double wave = std::sin(x * 0.35) + std::cos(y * 0.23 + x * 0.11);
        const int level = static_cast<int>(wave * 2) * contrast / 4 + (x / 9 + y / 7) % 2 * contrast / 3;
        return std::clamp(128 + level + grain.at(x, y), 0, 255);
    });
}

int64_t edgePixels(const Grid<uint8_t>& edges)
{
    return std::count(edges.pixels.begin(), edges.pixels.end(), 255);
}

} // namespace

TEST_F(Gradients, EdgesAreThoseOfTheDefinition)
{
    const std::tuple<unsigned, Weights, int64_t> kKernels[] = {{3, kSobel, 1}, {5, kSobel5, 12}, {7, kSobel7, 80}};
    int64_t found = 0;
    for (const auto& [width, height, contrast] :
         {std::tuple{1, 5, 90}, {2, 2, 90}, {3, 3, 255}, {5, 4, 255}, {70, 45, 30}, {70, 45, 255}}) {
        const auto src = landscape(width, height, contrast);
        Grid<uint8_t> dst(width, height, kUntouched);
        Grid<int16_t> gx(width, height), gy(width, height);
        const auto expectGradients = [&, x = width / 2, y = height / 2](const Weights& weights) {
            ASSERT_EQ(saturated(derivative(src, x, y, weights, false)), gx.at(x, y));
            ASSERT_EQ(saturated(derivative(src, x, y, weights, true)), gy.at(x, y));
        };
        for (const auto& [kernel, weights, scale] : kKernels) {
            for (const auto& [low, high] : {std::pair{40, 120}, {-90, 500}, {200, 50}, {0, 0}, {INT32_MIN, 9}}) {
                const auto limit = [scale = scale](int64_t t) { return std::max<int64_t>(t * scale, INT32_MIN); };
                const int64_t l = std::min<int64_t>(std::abs(limit(low)), 32767),
                              h = std::min<int64_t>(limit(high), 32767);
                for (const unsigned norm : {0u, 1u, 7u}) {
                    ASSERT_EQ(ONDRIX_SUCCESS,
                              odxFilterCannyu8(src.data(), src.w(), src.h(), 0, kernel,
                                               static_cast<int>(limit(low)), static_cast<int>(limit(high)),
                                               static_cast<odxNormType>(norm), dst.data(), 0, gx.data(), gy.data(),
                                               0));
                    ASSERT_EQ(slowEdges(src, {weights, 1, norm == 1, false}, norm == 1 ? l * l : l,
                                        norm == 1 ? h * h : h),
                              dst)
                        << kernel << " " << low << " " << high << " norm " << norm;
                    found += edgePixels(dst);
                    expectGradients(weights);
                }
            }
        }
        if (width < 3 || height < 3) continue;
        for (const auto& [low, high] : {std::pair{-5, 0}, {6, 30}, {20, 20}, {30, INT32_MAX}}) {
            const int64_t l = std::max(low, 0), h = std::max(high, 0);
            const auto expected = slowEdges(src, {kCentral, 2, true, true}, l * l, h * h);
            odxFilterCanny3x3u8(src.data(), src.w(), src.h(), dst.data(), low, high);
            ASSERT_EQ(expected, dst) << low << " " << high;
            odxFilterCanny3x3u8_v2(src.data(), src.w(), src.h(), 0, dst.data(), 0, low, high);
            ASSERT_EQ(expected, dst);
            odxFilterCanny3x3u8_v3(src.data(), src.w(), src.h(), 0, dst.data(), 0, low, high, gx.data(), gy.data(),
                                   0);
            ASSERT_EQ(expected, dst);
            expectGradients(kCentral);
            found += edgePixels(dst);
        }
    }
    EXPECT_LT(10000, found);
}

// Gradients whose quotients are next to a sector's boundary, 79109 / 32768, on both sides of it: 1970 / 816 points
// down, and the center is above its neighbours there; 816 / 338 points to a corner, where a larger one is.
TEST_F(Gradients, SectorsEndAtTheirTangent)
{
    const struct {
        int gx, gy, edge;
        std::vector<uint8_t> pixels;
    } cases[] = {{816, 1970, 255, {3,  2,  15, 22, 24, 33,  40,  19,  23, 26, 32,  36,  41,  54,  33, 38, 40,
                                   47, 54, 59, 70, 45, 47,  55,  64,  69, 78, 78,  60,  65,  71,  82, 81, 88,
                                   97, 78, 80, 90, 87, 100, 116, 109, 93, 99, 102, 112, 117, 121, 125}},
                 {338, 816, 0, {0,  4,  4,  8,  11, 12, 14, 4,  12, 11, 19, 19, 18, 20, 8,  14, 24,
                                24, 24, 21, 32, 21, 17, 24, 32, 26, 35, 40, 21, 28, 33, 38, 40, 44,
                                44, 28, 36, 35, 39, 43, 56, 47, 40, 42, 41, 42, 44, 47, 53}}};
    for (const auto& c : cases) {
        Grid<uint8_t> src(7, 7), dst(7, 7);
        Grid<int16_t> gx(7, 7), gy(7, 7);
        src.pixels = c.pixels;
        odxFilterCannyu8(src.data(), 7, 7, 0, 5, 0, 0, ONDRIX_NORM_L1, dst.data(), 0, gx.data(), gy.data(), 0);
        EXPECT_EQ(std::pair(c.gx, c.gy), std::pair(int{gx.at(3, 3)}, int{gy.at(3, 3)}));
        EXPECT_EQ(c.edge, dst.at(3, 3)) << c.gy << " / " << c.gx;
    }
}

// A weak line winds through the whole image; where a little of it is strong, all of it is an edge.
TEST_F(Gradients, ASpiralIsFollowedToItsEnd)
{
    constexpr int kSide = 1200, kStep = 8;
    Grid<uint8_t> src(kSide, kSide, 100);
    int x = 4, y = 4, toX = 1, toY = 0, length = kSide - 9;
    const auto draw = [&](uint8_t level) {
        for (const int dx : {0, 1, 2})
            src.at(x + dx - 1, y) = src.at(x, y + dx - 1) = level;
    };
    for (int turn = 0; length > kStep; ++turn) {
        for (int i = 0; i < length; ++i, x += toX, y += toY)
            draw(130);
        std::swap(toX, toY);
        toX = -toX;
        if (turn % 2 == 1) length -= kStep;
    }
    Grid<uint8_t> dst(kSide, kSide);
    const auto edges = [&] {
        EXPECT_EQ(ONDRIX_SUCCESS, odxFilterCannyu8(src.data(), kSide, kSide, 0, 3, 30, 200, ONDRIX_NORM_L1,
                                                   dst.data(), 0, nullptr, nullptr, 0));
        return edgePixels(dst);
    };
    EXPECT_EQ(0, edges());
    for (x = 40, y = 4; x < 80; ++x)
        draw(160);
    const auto all = edges();
    EXPECT_LT(int64_t{kSide} * kSide / kStep, all);
    const uint8_t* const inner = &dst.at(kSide / 2, kSide / 2 - kStep); // where the line ends
    EXPECT_EQ(255, *std::max_element(inner, inner + 2 * kStep * kSide));
}

TEST_F(Gradients, WithoutTemporaryMemoryNothingIsWrittenNorKept)
{
    const auto src = landscape(30, 20, 200);
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_ORLAN}) {
        odxSetOperationMode(mode);
        for (int failing = 1; failing <= 5; ++failing) {
            Grid<uint8_t> dst(30, 20, kUntouched);
            Grid<int16_t> gx(30, 20, kUntouched);
            {
                const ScratchWatch watch(failing);
                EXPECT_EQ(ONDRIX_NO_MEMORY, odxFilterCannyu8(src.data(), 30, 20, 0, 3, 9, 9, ONDRIX_NORM_L1,
                                                             dst.data(), 0, gx.data(), nullptr, 0));
                EXPECT_EQ(0, watch.lent);
            }
            const ScratchWatch watch(failing);
            LogCapture log;
            odxFilterCanny3x3u8_v3(src.data(), 30, 20, 0, dst.data(), 0, 9, 9, gx.data(), nullptr, 0);
            EXPECT_EQ("Error - can not allocate scratch buffer for odxFilterCanny3x3u8_v3C",
                      log.take().at(0).text);
            EXPECT_EQ((Grid<uint8_t>(30, 20, kUntouched)), dst);
            EXPECT_EQ((Grid<int16_t>(30, 20, kUntouched)), gx);
            EXPECT_EQ(0, watch.lent);
        }
    }
}
