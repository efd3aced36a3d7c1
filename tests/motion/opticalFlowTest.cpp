// Optical flow against its definition, coded the slow way.
#include "ondrix/opticalFlow.h"
#include "support/drawings.h"
#include "support/referenceTest.h"
#include "support/scratchWatch.h"

#include <cmath>
#include <limits>
#include <random>
#include <string.h>

using namespace odx::test;

namespace
{

using Image = Grid<uint8_t>;

uint32_t bitsOf(float value)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    return bits;
}

float near(const Image& image, int x, int y)
{
    return static_cast<float>(sample(image, x, y, {true, 0}));
}

// A texture without a period in sight, as it is after a move.
Image texture(int width, int height, double dx = 0, double dy = 0)
{
    return drawn<uint8_t>(width, height, [=](int x, int y) {
        const double u = x + dx, v = y + dy;
        const double value = 128 + 30 * std::sin(0.21 * u + 0.9 * std::sin(0.11 * v)) +
                             28 * std::sin(0.27 * v + 0.05 * u + 1) + 20 * std::sin(0.53 * u - 0.41 * v) +
                             14 * std::sin(0.83 * u + 0.71 * v + std::sin(0.3 * u));
        return std::lround(std::clamp(value, 0.0, 255.0));
    });
}

struct Pyramid {
    std::vector<Image> images;
    std::vector<odxPyrLevel> packed;
    std::vector<odxPyrLevelStrided> strided;

    Pyramid(const Image& base, size_t levels) : images{base}
    {
        while (images.size() < levels) {
            const Image finer = images.back();
            const int width = std::max(finer.width / 2, 1), height = std::max(finer.height / 2, 1);
            images.push_back(drawn<uint8_t>(width, height, [&](int x, int y) {
                const Taps taps = binomial(finer, 2 * x, 2 * y, {1, 4, 6, 4, 1});
                return taps.sum / taps.weight;
            }));
        }
        for (Image& image : images) {
            packed.push_back({image.data(), image.w(), image.h()});
            strided.push_back({image.data(), image.w(), image.h(), image.w()});
        }
        packed[0].ptr = strided[0].ptr = nullptr; // nobody looks at it
    }
};

struct Tracks {
    std::vector<float> out;
    std::vector<int32_t> status;
};

struct Call {
    int width = 7, height = 7, limit = 20;
    const float* estimates = nullptr;
    float epsilon = 0;
    int mode = 0;
};

constexpr float kUntouched = -77;
constexpr int kUntouchedStatus = 77;

odxStatus track(const Pyramid& one, const Pyramid& two, const std::vector<float>& points, const Call& call,
                Tracks& tracks)
{
    const Image &first = one.images[0], &second = two.images[0];
    tracks.out.assign(points.size(), kUntouched);
    tracks.status.assign(points.size() / 2, kUntouchedStatus);
    return odxTrackLKOpticalFlowu8_v3(first.data(), second.data(), first.w(), first.h(), 0, one.strided.data(),
                                      two.strided.data(), points.data(), tracks.out.data(), tracks.status.data(),
                                      static_cast<int>(points.size() / 2), call.width, call.height, call.limit,
                                      static_cast<int>(one.images.size()), call.estimates,
                                      call.estimates != nullptr, call.epsilon, call.mode);
}

// ---- the definition ----

struct Cut {
    int left, top, right, bottom; // columns and rows of the whole window

    bool empty() const { return left >= right || top >= bottom; }
};

// One point on one level.
class Slow
{
public:
    Slow(const Image& one, const Image& two, int hx, int hy) : one_(one), two_(two), hx_(hx), hy_(hy) {}

    Cut cut(const Image& image, float x, float y) const
    {
        if (!(std::fabs(x) < 1073741824.0F && std::fabs(y) < 1073741824.0F)) return {0, 0, 0, 0};
        const int left = static_cast<int>(std::floor(x)) - hx_, top = static_cast<int>(std::floor(y)) - hy_;
        return {std::max(0, -left), std::max(0, -top), std::min(2 * hx_ + 1, image.width - left),
                std::min(2 * hy_ + 1, image.height - top)};
    }
    Grid<float> patch(const Image& image, float x, float y, const Cut& cut, int margin) const
    {
        const int w = cut.right - cut.left + 2 * margin, h = cut.bottom - cut.top + 2 * margin;
        const auto start = [](float at, int begin, int end, int size, int samples) {
            const int before = begin, behind = size - end;
            return (at + static_cast<float>(before - behind) * 0.5F) - static_cast<float>(samples - 1) * 0.5F;
        };
        const float sx = start(x, cut.left, cut.right, 2 * hx_ + 1, w),
                    sy = start(y, cut.top, cut.bottom, 2 * hy_ + 1, h);
        const int X = static_cast<int>(std::floor(sx)), Y = static_cast<int>(std::floor(sy));
        const float fx = std::max(sx - static_cast<float>(X), 0.0001F), fy = sy - static_cast<float>(Y);
        Grid<float> samples(w, h);
        for (int j = 0; j < h; ++j) {
            for (int i = 0; i < w; ++i) {
                const auto p = [&](int dx, int dy) { return near(image, X + i + dx, Y + j + dy); };
                samples.at(i, j) =
                    (1 - fy) * ((1 - fx) * p(0, 0) + fx * p(1, 0)) + fy * ((1 - fx) * p(0, 1) + fx * p(1, 1));
            }
        }
        return samples;
    }

    int32_t run(float px, float py, float& gx, float& gy, int limit, float epsilon) const
    {
        const Cut window = cut(one_, px, py);
        const Grid<float> first = patch(one_, px, py, window, 1);
        float lastX = 0, lastY = 0;
        for (int k = 0; k < limit; ++k) {
            const Cut there = cut(two_, gx, gy);
            const Cut part = {std::max(window.left, there.left), std::max(window.top, there.top),
                              std::min(window.right, there.right), std::min(window.bottom, there.bottom)};
            if (part.empty()) return -4;
            const Grid<float> second = patch(two_, gx, gy, part, 0);
            float sums[5][16] = {};
            for (int j = 0; j < second.height; ++j) {
                for (int i = 0; i < second.width; ++i) {
                    const auto at = [&](int dx, int dy) {
                        return first.at(part.left - window.left + i + 1 + dx, part.top - window.top + j + 1 + dy);
                    };
                    const auto slope = [&](auto d) { return (d(-1) + d(1)) * 0.09375F + d(0) * 0.3125F; };
                    const float ix = slope([&](int n) { return at(1, n) - at(-1, n); }),
                                iy = slope([&](int n) { return at(n, 1) - at(n, -1); }),
                                difference = at(0, 0) - second.at(i, j);
                    const int place = (j * (second.width + 1) + i) % 16; // a 0 behind each row
                    const float terms[] = {ix * ix, ix * iy, iy * iy, difference * ix, difference * iy};
                    for (int n = 0; n < 5; ++n)
                        sums[n][place] += terms[n];
                }
            }
            for (auto& sum : sums) {
                for (int n = 8; n > 0; n /= 2) {
                    for (int i = 0; i < n; ++i)
                        sum[i] += sum[i + n];
                }
            }
            const float xx = sums[0][0], xy = sums[1][0], yy = sums[2][0], bx = sums[3][0], by = sums[4][0];
            const float determinant = xx * yy - xy * xy;
            if (determinant < 1e-7F) return -2;
            const float dx = (yy * bx - xy * by) / determinant, dy = (xx * by - xy * bx) / determinant;
            gx += dx;
            gy += dy;
            if (dx * dx + dy * dy < epsilon) break;
            if (k > 0 && std::fabs(dx + lastX) < 0.01F && std::fabs(dy + lastY) < 0.01F) {
                gx -= dx * 0.5F;
                gy -= dy * 0.5F;
                break;
            }
            lastX = dx;
            lastY = dy;
        }
        return 1;
    }

private:
    const Image &one_, &two_;
    int hx_, hy_;
};

Tracks slowly(const Pyramid& one, const Pyramid& two, const std::vector<float>& points, const Call& call)
{
    const float* const start = call.estimates != nullptr ? call.estimates : points.data();
    Tracks tracks{{start, start + points.size()}, std::vector<int32_t>(points.size() / 2, 1)};
    const int limit = call.mode == 1 ? 30 : std::clamp(call.limit, 1, 100),
              top = static_cast<int>(one.images.size()) - 1;
    const float epsilon = call.mode == 0 ? 0.0009F : std::clamp(call.epsilon, 0.0F, 10.0F);
    for (int l = top; l >= 0; --l) {
        const auto n = static_cast<size_t>(l);
        const Slow level(one.images[n], two.images[n], call.width / 2, call.height / 2);
        const float scale = std::ldexp(1.0F, -l);
        for (size_t i = 0; i < tracks.status.size(); ++i) {
            if (tracks.status[i] != 1) continue;
            const float px = points[2 * i] * scale, py = points[2 * i + 1] * scale;
            float &x = tracks.out[2 * i], &y = tracks.out[2 * i + 1];
            if (level.cut(one.images[n], px, py).empty()) {
                tracks.status[i] = -4;
                continue;
            }
            x *= l == top ? scale : 2;
            y *= l == top ? scale : 2;
            tracks.status[i] = level.run(px, py, x, y, limit, epsilon);
        }
    }
    return tracks;
}

class OpticalFlow : public odx::test::ReferenceTest
{
protected:
    std::mt19937 random_{7};

    float between(double low, double high)
    {
        return static_cast<float>(low + (high - low) * static_cast<double>(random_()) / 4294967296.0);
    }
};

} // namespace

TEST_F(OpticalFlow, IsItsDefinitionToTheBit)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (int round = 0; round < 60; ++round) {
        const int w = 1 + static_cast<int>(random_() % (round % 3 == 0 ? 12 : 70)),
                  h = 1 + static_cast<int>(random_() % (round % 4 == 0 ? 12 : 60));
        const auto levels = static_cast<size_t>(1 + round % 3);
        const double dx = static_cast<double>(between(-2, 2)), dy = static_cast<double>(between(-2, 2));
        const Image grain = noise<uint8_t>(w, h, 0, 40),
                    faint = drawn<uint8_t>(w, h, [&](int x, int y) { return grain.at(x, y) / 40; });
        const bool flat = round % 10 == 9; // but for a few pixels
        const Pyramid one(flat ? faint : texture(w, h), levels), two(flat ? faint : texture(w, h, dx, dy), levels);
        Call call;
        call.width = 5 + 2 * (round % 9);
        call.height = 5 + 2 * (round / 2 % 13);
        call.limit = round % 7 * 17; // 0 to 102
        call.mode = round % 4;
        call.epsilon = between(-0.01, 0.02);
        std::vector<float> points, estimates;
        for (int i = 0; i < 20; ++i) {
            for (const int size : {w, h}) {
                points.push_back(i == 7 ? std::floor(static_cast<float>(size) * 0.5F) : between(-6, size + 6));
                estimates.push_back(points.back() + between(-2, 2));
            }
        }
        for (const float odd : {kInfinity, -kInfinity, NAN, 1e10F, -1e38F, 1e-40F, -1e-20F, 0.0F})
            points.push_back(odd), estimates.push_back(odd);
        estimates[5] = NAN;
        if (round % 2 == 1) call.estimates = estimates.data();
        Tracks tracks;
        EXPECT_EQ(ONDRIX_SUCCESS, track(one, two, points, call, tracks));
        const Tracks expected = slowly(one, two, points, call);
        EXPECT_EQ(expected.status, tracks.status) << w << "x" << h << ", round " << round;
        for (size_t i = 0; i < points.size(); ++i) {
            EXPECT_EQ(bitsOf(expected.out[i]), bitsOf(tracks.out[i]))
                << w << "x" << h << ", round " << round << ", coordinate " << i << ": " << tracks.out[i]
                << ", not " << expected.out[i];
        }
    }
}

TEST_F(OpticalFlow, AllFormsTrackAlike)
{
    const Pyramid one(texture(80, 60), 2), two(texture(80, 60, 1.4, -0.8), 2);
    const std::vector<float> points = {20, 20.5F, 40.2F, 30, 61, 44, 1, 2, -30, 5};
    Tracks expected;
    track(one, two, points, {}, expected);
    EXPECT_EQ((std::vector<int32_t>{1, 1, 1, 1, -4}), expected.status);
    EXPECT_EQ(-30 * 1.0F, expected.out[8]); // nothing was done about it
    const auto expectSame = [&](const char* form, const Tracks& tracks) {
        EXPECT_EQ(expected.out, tracks.out) << form;
        EXPECT_EQ(expected.status, tracks.status) << form;
    };
    const uint8_t *const src1 = one.images[0].data(), *const src2 = two.images[0].data();
    Tracks tracks = {std::vector<float>(10), std::vector<int32_t>(5)};
    for (const auto operation : {odxTrackLKOpticalFlowu8, odxTrackLKOpticalFlowf32}) {
        operation(src1, src2, 80, 60, one.packed.data(), two.packed.data(), nullptr, nullptr, points.data(),
                  tracks.out.data(), tracks.status.data(), 5, 7, 7, 20, 2, 0, 0, 0, 0);
        expectSame("with gradients", tracks);
        tracks = {std::vector<float>(10), std::vector<int32_t>(5)};
    }
    odxTrackLKOpticalFlowu8_v2(src1, src2, 80, 60, 0, one.packed.data(), two.packed.data(), points.data(),
                               tracks.out.data(), tracks.status.data(), 5, 7, 7, 20, 2);
    expectSame("v2", tracks);
    // Estimates may lie where the results go.
    tracks.out = points;
    odxTrackLKOpticalFlowu8_v3(src1, src2, 80, 60, 80, one.strided.data(), two.strided.data(), points.data(),
                               tracks.out.data(), tracks.status.data(), 5, 7, 7, 20, 2, tracks.out.data(), 1, 0,
                               0);
    expectSame("v3", tracks);
}

TEST_F(OpticalFlow, DoesNothingWhereItCannotTrack)
{
    const Pyramid flat(Image(40, 40, 90), 2), one(texture(40, 40), 2);
    const std::vector<float> point = {20, 20};
    Tracks tracks;
    track(flat, one, point, {}, tracks);
    EXPECT_EQ(-2, tracks.status[0]);
    const auto untouched = [&](const char* what) {
        EXPECT_EQ(kUntouched, tracks.out[0]) << what;
        EXPECT_EQ(kUntouchedStatus, tracks.status[0]) << what;
    };
    Call call;
    for (const auto& [w, h] : {std::pair(3, 7), std::pair(7, 3), std::pair(-7, 7), std::pair(1, 1)}) {
        call.width = w;
        call.height = h;
        EXPECT_EQ(ONDRIX_SUCCESS, track(one, one, point, call, tracks));
        untouched("small windows");
    }
    call.width = call.height = 0x7FFFFFFF;
    EXPECT_EQ(ONDRIX_NO_MEMORY, track(one, one, point, call, tracks));
    untouched("no memory");
    {
        const ScratchWatch watch(ScratchWatch::kAll);
        EXPECT_EQ(ONDRIX_NO_MEMORY, track(one, one, point, {}, tracks));
    }
    untouched("no memory");
    // Without levels the estimate is the result; levels without pixels hold no point.
    int32_t status = 0;
    float out[2];
    const uint8_t* const src = one.images[0].data();
    const auto with = [&](int levels) {
        odxTrackLKOpticalFlowu8_v2(src, src, 40, 40, 0, flat.packed.data(), flat.packed.data(), point.data(), out,
                                   &status, 1, 7, 7, 9, levels);
        return status;
    };
    EXPECT_EQ(1, with(0));
    EXPECT_EQ(20, out[1]);
    EXPECT_EQ(-2, with(2));
    const odxPyrLevel none[2] = {};
    odxTrackLKOpticalFlowu8_v2(src, src, 40, 40, 0, none, none, point.data(), out, &status, 1, 7, 7, 9, 2);
    EXPECT_EQ(-4, status);
    status = 5;
    EXPECT_EQ(5, with(-1));
}
