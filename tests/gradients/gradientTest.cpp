// Gradients and edges against their definitions and against numbers worked by hand. The other columns are held to
// the reference by the differential test.
#include "cpu/ondrixEdgeC.h"
#include "frame/scratch.h"
#include "ondrix.h"
#include "smoothing/models.h"
#include "support/logCapture.h"

#include <gtest/gtest.h>

using namespace odx::test;

namespace
{

class Gradients : public testing::Test
{
protected:
    Gradients() { EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE)); }
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
        const auto i = static_cast<size_t>(dx + r), j = static_cast<size_t>(dy + r);
        sum += int64_t{downward ? w.smoothing[i] * w.derivative[j] : w.derivative[i] * w.smoothing[j]} *
               sample(src, x + dx, y + dy, outside);
    });
    return sum;
}

const std::pair<int, int> kSizes[] = {{2, 5}, {5, 2}, {3, 3}, {4, 4}, {19, 8}};
constexpr int kUntouched = 77;

// Every element of what an operation writes: pairs (dx, dy) without a frame, or both images below each other.
template <class T, bool pairs, class S = uint8_t, class Operation>
void expectGradients(const char* name, const Weights& weights, double scale, Operation operation)
{
    const auto call = [=](const Grid<S>& src, auto... out) {
        if constexpr (std::is_invocable_v<Operation, const S*, int, int, int, decltype(out)...>) {
            operation(src.data(), src.w(), src.h(), 0, out...);
        } else {
            operation(src.data(), src.w(), src.h(), 0, out..., 0);
        }
    };
    for (const auto& [width, height] : kSizes) {
        const auto grey = noise<uint8_t>(width, height, 0, 255);
        Grid<S> src(width, height);
        std::copy(grey.pixels.begin(), grey.pixels.end(), src.pixels.begin());
        Grid<T> out(pairs ? std::max(2 * width - 4, 1) : width, 2 * height, kUntouched);
        if constexpr (pairs) {
            call(src, out.data());
        } else {
            call(src, out.data(), out.data() + width * height);
        }
        for (int y = 0; y < 2 * height; ++y) {
            for (int x = 0; x < out.width; ++x) {
                const bool downward = pairs ? x % 2 == 1 : y >= height;
                const int atX = pairs ? x / 2 + 1 : x, atY = pairs ? y + 1 : y % height;
                const bool written = !(pairs && y >= height - 2) && !src.border(atX, atY, 1);
                const double sum = static_cast<double>(derivative(grey, atX, atY, weights, downward)) * scale;
                ASSERT_EQ(!written ? kUntouched : static_cast<T>(std::is_integral_v<T> ? std::floor(sum) : sum),
                          out.at(x, y))
                    << name << " " << width << "x" << height << " at " << x << "," << y;
            }
        }
    }
}

} // namespace

TEST_F(Gradients, AreTheirStencils)
{
#define ODX_PAIRS(T, weights, scale, name) expectGradients<T, true>(#name, weights, scale, name)
#define ODX_PLANES(S, T, weights, scale, name) expectGradients<T, false, S>(#name, weights, scale, name)
    ODX_PAIRS(int16_t, kCentral, 1, odxImageGradientInterleaveds16);
    ODX_PAIRS(int16_t, kCentral, 1, odxImageGradientInterleaveds16_v2);
    ODX_PAIRS(float, kCentral, 1, odxImageGradientInterleavedf32);
    ODX_PAIRS(float, kCentral, 1, odxImageGradientInterleavedf32_v2);
    ODX_PAIRS(int16_t, kSobel, 0.125, odxImageGradientSobelInterleaveds16);
    ODX_PAIRS(int16_t, kSobel, 0.125, odxImageGradientSobelInterleaveds16_v2);
    ODX_PAIRS(int16_t, kSobel, 0.125, odxImageGradientSobelInterleaveds16_v3);
    ODX_PAIRS(float, kSobel, 0.125, odxImageGradientSobelInterleavedf32);
    ODX_PAIRS(float, kSobel, 0.125, odxImageGradientSobelInterleavedf32_v2);
    ODX_PAIRS(int16_t, kScharr, 1, odxImageGradientScharrInterleaveds16);
    ODX_PLANES(uint8_t, int16_t, kCentral, 1, odxImageGradientPlanars16);
    ODX_PLANES(uint8_t, int16_t, kCentral, 1, odxImageGradientPlanars16_v2);
    ODX_PLANES(uint8_t, float, kCentral, 1, odxImageGradientPlanarf32);
    ODX_PLANES(uint8_t, float, kCentral, 1, odxImageGradientPlanarf32_v2);
    ODX_PLANES(uint8_t, int16_t, kSobel, 0.125, odxImageGradientSobelPlanars16);
    ODX_PLANES(uint8_t, int16_t, kSobel, 0.125, odxImageGradientSobelPlanars16_v2);
    ODX_PLANES(uint8_t, int16_t, kSobel, 0.125, odxImageGradientSobelPlanars16_v3);
    ODX_PLANES(uint8_t, int8_t, kSobel, 0.125, odxImageGradientSobelPlanars8);
    ODX_PLANES(uint8_t, int8_t, kSobel, 0.125, odxImageGradientSobelPlanars8_v2);
    ODX_PLANES(uint8_t, float, kSobel, 0.125, odxImageGradientSobelPlanarf32);
    ODX_PLANES(uint8_t, float, kSobel, 0.125, odxImageGradientSobelPlanarf32_v2);
    ODX_PLANES(float, float, kSobel, 0.125, odxImageGradientSobelPlanarf32f32);
    ODX_PLANES(float, float, kSobel, 0.125, odxImageGradientSobelPlanarf32f32_v2);
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
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const int64_t sum =
                    std::abs(derivative(src, x, y, kSobel, false)) + std::abs(derivative(src, x, y, kSobel, true));
                const int64_t expected = src.border(x, y, 1) ? kUntouched : std::min<int64_t>(sum, 255);
                ASSERT_EQ(expected, dst.at(x, y)) << x << "," << y;
                ASSERT_EQ(expected, strided.at(x, y)) << x << "," << y;
            }
        }
    }
}

TEST_F(Gradients, SobelFiltersContinueTheImage)
{
    const std::tuple<decltype(&odxFilterSobel3x3u8s16), const Weights*, int> kFilters[] = {
        {odxFilterSobel3x3u8s16, &kSobel, 1},
        {odxFilterSobel5x5u8s16, &kSobel5, 2},
        {odxFilterSobel7x7u8s16, &kSobel7, 3}};
    for (const auto& [filter, weights, r] : kFilters) {
        for (const auto& [width, height] : {std::pair{1, 1}, {4, 9}, {9, 4}, {21, 13}}) {
            auto src = noise<uint8_t>(width, height, 0, 255);
            for (uint8_t& pixel : src.pixels)
                pixel = height == 13 ? pixel & 0x80 ? 255 : 0 : pixel; // 7x7 exceeds 16 bits
            for (const uint32_t type : {0u, 1u, 2u}) {
                Grid<int16_t> dx(width, height, kUntouched), dy = dx, untouched = dx;
                const auto run = [&, filter = filter](int16_t* x, int16_t* y) {
                    return filter(src.data(), src.w(), src.h(), 0, x, y, 0, static_cast<odxBorderType>(type),
                                  256 + 30);
                };
                ASSERT_EQ(ONDRIX_SUCCESS, run(dx.data(), nullptr));
                ASSERT_EQ(ONDRIX_SUCCESS, run(nullptr, dy.data()));
                for (int y = 0; y < height; ++y) {
                    for (int x = 0; x < width; ++x) {
                        for (const bool downward : {false, true}) {
                            const int64_t sum = derivative(src, x, y, *weights, downward, {type == 2, 30});
                            const bool written = type != 0 || !src.border(x, y, r);
                            ASSERT_EQ(written ? std::clamp<int64_t>(sum, -32768, 32767) : kUntouched,
                                      (downward ? dy : dx).at(x, y))
                                << r << " " << width << "x" << height << " type " << type << " at " << x << ","
                                << y;
                        }
                    }
                }
            }
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
        return std::clamp<int64_t>(derivative(src, x, y, d.weights, downward), -32768, 32767);
    };
    Grid<int64_t> m(src.width, src.height);
    Grid<uint8_t> edges(src.width, src.height);
    for (int y = 0; y < src.height; ++y) {
        for (int x = 0; x < src.width; ++x) {
            const int64_t gx = gradient(x, y, false), gy = gradient(x, y, true);
            m.at(x, y) = d.squares ? gx * gx + gy * gy : std::abs(gx) + std::abs(gy);
        }
    }
    const auto reaches = [&](int64_t value, int64_t limit) {
        return d.factorTwo ? value >= limit : value > limit;
    };
    for (int y = d.margin; y < src.height - d.margin; ++y) {
        for (int x = d.margin; x < src.width - d.margin; ++x) {
            const int64_t gx = gradient(x, y, false), gy = gradient(x, y, true), value = m.at(x, y);
            const int64_t across = std::abs(gx), down = std::abs(gy);
            const bool flat = d.factorTwo ? across > 2 * down : across * 13573 > down * 32768;
            const bool diagonal = !flat && (d.factorTwo ? down <= 2 * across : across * 79109 >= down * 32768);
            const int toX = flat || diagonal ? (diagonal && gx * gy < 0 ? -1 : 1) : 0, toY = flat ? 0 : 1;
            const int64_t before = m.at(x - toX, y - toY), after = m.at(x + toX, y + toY);
            const bool strict = diagonal && !d.factorTwo;
            if (!reaches(value, low) || value <= before || value < after || (strict && value == after)) continue;
            edges.at(x, y) = reaches(value, high) ? 255 : 128;
        }
    }
    for (bool changed = true; changed;) {
        changed = false;
        for (int y = d.margin; y < src.height - d.margin; ++y) {
            for (int x = d.margin; x < src.width - d.margin; ++x) {
                if (edges.at(x, y) != 128) continue;
                window(1, 1, [&](int dx, int dy) {
                    changed |= edges.at(x + dx, y + dy) == 255 && (edges.at(x, y) = 255);
                });
            }
        }
    }
    for (uint8_t& pixel : edges.pixels)
        pixel = pixel == 255 ? 255 : 0;
    return edges;
}

// Blobs, flat ground and steps: plateaus, ties and weak edges that hang together.
Grid<uint8_t> landscape(int width, int height, int contrast)
{
    auto src = noise<uint8_t>(width, height, 0, 255);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double wave = std::sin(x * 0.35) + std::cos(y * 0.23 + x * 0.11);
            const int level = static_cast<int>(wave * 2) * contrast / 4 + (x / 9 + y / 7) % 2 * contrast / 3;
            src.at(x, y) = static_cast<uint8_t>(std::clamp(128 + level + src.at(x, y) % 5, 0, 255));
        }
    }
    return src;
}

} // namespace

TEST_F(Gradients, EdgesAreThoseOfTheDefinition)
{
    const std::tuple<unsigned, Weights, int> kKernels[] = {{3, kSobel, 1}, {5, kSobel5, 12}, {7, kSobel7, 80}};
    int64_t found = 0;
    for (const auto& [width, height] : {std::pair{1, 5}, {2, 2}, {3, 3}, {5, 4}, {70, 45}}) {
        for (const int contrast : {30, 255}) {
            const auto src = landscape(width, height, contrast);
            Grid<uint8_t> dst(width, height, kUntouched), expected = dst;
            for (const auto& [kernel, weights, scale] : kKernels) {
                for (const auto& [low, high] :
                     {std::pair{40, 120}, {-90, 500}, {200, 50}, {0, 0}, {INT32_MIN, 9}}) {
                    const int64_t from = std::min<int64_t>(std::abs(int64_t{low}), INT32_MAX / scale) * scale;
                    const int64_t l = std::min<int64_t>(from, 32767),
                                  h = std::min<int64_t>(int64_t{high} * scale, 32767);
                    for (const unsigned norm : {0u, 1u, 7u}) {
                        Grid<int16_t> gx(width, height), gy(width, height);
                        ASSERT_EQ(ONDRIX_SUCCESS, odxFilterCannyu8(src.data(), src.w(), src.h(), 0, kernel,
                                                                   low == INT32_MIN ? low : low * scale,
                                                                   high * scale, static_cast<odxNormType>(norm),
                                                                   dst.data(), 0, gx.data(), gy.data(), 0));
                        expected = slowEdges(src, {weights, 1, norm == 1, false}, norm == 1 ? l * l : l,
                                             norm == 1 ? h * h : h);
                        ASSERT_EQ(expected, dst) << kernel << " " << low << " " << high << " norm " << norm;
                        found += std::count(dst.pixels.begin(), dst.pixels.end(), 255);
                        const int x = width / 2, y = height - 1;
                        ASSERT_EQ(std::clamp<int64_t>(derivative(src, x, y, weights, false), -32768, 32767),
                                  gx.at(x, y));
                        ASSERT_EQ(std::clamp<int64_t>(derivative(src, x, y, weights, true), -32768, 32767),
                                  gy.at(x, y));
                    }
                }
            }
            if (width < 3 || height < 3) continue;
            for (const auto& [low, high] : {std::pair{-5, 0}, {6, 30}, {20, 20}, {30, INT32_MAX}}) {
                const int64_t l = std::max(low, 0), h = std::max(high, 0);
                expected = slowEdges(src, {kCentral, 2, true, true}, l * l, h * h);
                odxFilterCanny3x3u8(src.data(), src.w(), src.h(), dst.data(), low, high);
                ASSERT_EQ(expected, dst) << low << " " << high;
                odxFilterCanny3x3u8_v2(src.data(), src.w(), src.h(), 0, dst.data(), 0, low, high);
                ASSERT_EQ(expected, dst);
                Grid<int16_t> gx(width, height), gy(width, height);
                odxFilterCanny3x3u8_v3(src.data(), src.w(), src.h(), 0, dst.data(), 0, low, high, gx.data(),
                                       gy.data(), 0);
                ASSERT_EQ(expected, dst);
                ASSERT_EQ(derivative(src, 1, 1, kCentral, false), gx.at(1, 1));
                ASSERT_EQ(derivative(src, 1, 1, kCentral, true), gy.at(1, 1));
                found += std::count(dst.pixels.begin(), dst.pixels.end(), 255);
            }
        }
    }
    EXPECT_LT(10000, found);
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
        return std::count(dst.pixels.begin(), dst.pixels.end(), 255);
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
    static int requests, fails, lent;
    auto* const lend = odxGetScratchBufferAligned_;
    auto* const takeBack = odxReleaseScratchBuffer_;
    odxGetScratchBufferAligned_ = [](uint32_t size, uint32_t alignment) -> void* {
        if (++requests == fails) return nullptr;
        ++lent;
        return local_odxGetScratchBufferAligned(size, alignment);
    };
    odxReleaseScratchBuffer_ = [](void* block) {
        lent -= block != nullptr;
        return local_odxReleaseScratchBuffer(block);
    };
    const auto src = landscape(30, 20, 200);
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_ORLAN}) {
        odxSetOperationMode(mode);
        for (fails = 1; fails <= 5; ++fails) {
            Grid<uint8_t> dst(30, 20, kUntouched);
            Grid<int16_t> gx(30, 20, kUntouched);
            requests = 0;
            EXPECT_EQ(ONDRIX_NO_MEMORY, odxFilterCannyu8(src.data(), 30, 20, 0, 3, 9, 9, ONDRIX_NORM_L1,
                                                         dst.data(), 0, gx.data(), nullptr, 0));
            requests = 0;
            LogCapture log;
            odxFilterCanny3x3u8_v3(src.data(), 30, 20, 0, dst.data(), 0, 9, 9, gx.data(), nullptr, 0);
            EXPECT_EQ("Error - can not allocate scratch buffer for odxFilterCanny3x3u8_v3C",
                      log.take().at(0).text);
            EXPECT_EQ((Grid<uint8_t>(30, 20, kUntouched)), dst);
            EXPECT_EQ((Grid<int16_t>(30, 20, kUntouched)), gx);
            EXPECT_EQ(0, lent);
        }
    }
    odxGetScratchBufferAligned_ = lend;
    odxReleaseScratchBuffer_ = takeBack;
}
