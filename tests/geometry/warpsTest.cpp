// Warps and remaps against samples at positions that are computed one by one, in double precision where matrices
// are exact, and against values worked by hand.
#include "cpu/ondrixWarpC.h"
#include "ondrix.h"
#include "support/pictures.h"
#include "support/referenceTest.h"

#include <gtest/gtest.h>

#include <math.h>
#include <numeric>
#include <optional>

using namespace testing;

namespace
{

constexpr unsigned kWidth = 23, kHeight = 19;
constexpr uint8_t kBefore = 77;

std::vector<uint8_t> noise(int count)
{
    return odx::test::noise<uint8_t>(count, 1, 0, 255).pixels;
}

enum class Kind { nearest, bilinear, fixed };

// The pixel of a channel, or what a border puts in its place.
struct Picture {
    std::vector<uint8_t> pixels;
    unsigned channels;

    std::optional<int> at(double x, double y, unsigned c, std::optional<int> beyond) const
    {
        if (x < 0 || y < 0 || x >= kWidth || y >= kHeight) return beyond;
        return pixels[(static_cast<size_t>(y) * kWidth + static_cast<size_t>(x)) * channels + c];
    }

    // Nothing where a pixel is missing that has a share.
    std::optional<int> sample(Kind kind, double x, double y, unsigned c, std::optional<int> beyond) const
    {
        if (!isfinite(x) || !isfinite(y)) return {};
        if (kind == Kind::nearest) return at(floor(x + 0.5), floor(y + 0.5), c, {});
        const double ix = floor(x), iy = floor(y), fx = x - ix, fy = y - iy;
        if (x < -1 || y < -1 || x >= kWidth || y >= kHeight) return {};
        std::optional<int> p00 = at(ix, iy, c, beyond), p01 = at(ix + 1, iy, c, beyond),
                           p10 = at(ix, iy + 1, c, beyond), p11 = at(ix + 1, iy + 1, c, beyond);
        if (kind == Kind::fixed && !beyond) {
            if (fx == 0) p01 = p00, p11 = p10;
            if (fy == 0) p10 = p00, p11 = p01;
        }
        if (!p00 || !p01 || !p10 || !p11) return {};
        const double top = *p00 + fx * (*p01 - *p00), bottom = *p10 + fx * (*p11 - *p10);
        const double value = top + fy * (bottom - top);
        if (kind == Kind::bilinear) return static_cast<int>(value);
        if (fx == 0 || fy == 0) return static_cast<int>(floor(value + 0.5));
        const double t = floor(top * 128 + 0.5), b = floor(bottom * 128 + 0.5);
        return static_cast<int>(floor((t + floor(fy * (b - t) + 0.5) + 64) / 128));
    }
};

// Matrices whose positions floats hold exactly.
const float kMatrices[][9] = {
    {1, 0, 0, 0, 1, 0, 0, 0, 1},
    {1, 0, 0.25f, 0, 1, -0.5f, 0, 0, 1},
    {1, 0, 0x1p-10f, 0, 1, 0.25f, 0, 0, 1},
    {0.75f, 0.5f, -3, -0.25f, 1, 2, 0, 0, 1},
    {2, 0, -8, 0, 2, -8, 0, 0, 2},
    {-1, 0, 22, 0, -1, 18.5f, 0, 0, 1},
    {1, 0, -0.5f, 0, 1, 17.5f, 0, 0, -1},
    {0.5f, 0, -1.5f, 0, 0.5f, -1.25f, 0, 0, 1},
    {NAN, 0, 0, 0, 1, 0, 0, 0, 1},
    {0, 0, 0, 0, 0, 0, 0, 0, 0},
    {1e30f, 0, 5, 0, 1, 0, 0, 0, 1},
};

struct Spot {
    double x, y;
};
constexpr Spot kNowhere = {1e9, 1e9};
Spot spot(const float* m, unsigned x, unsigned y, bool perspective)
{
    const auto times = [](float factor, unsigned n) { return n == 0 ? 0 : static_cast<double>(factor) * n; };
    const auto row = [=](int i) { return times(m[i], x) + times(m[i + 1], y) + static_cast<double>(m[i + 2]); };
    const double den = perspective ? row(6) : 1;
    return {row(0) / den, row(3) / den};
}

// Inside the picture.
Spot nearest(Spot s)
{
    return {fmin(fmax(s.x, 0), kWidth - 1), fmin(fmax(s.y, 0), kHeight - 1)};
}

class Warps : public odx::test::ReferenceTest
{
protected:
    std::vector<uint8_t> grey_ = noise(kWidth * kHeight), triples_ = noise(3 * kWidth * kHeight);
    std::vector<uint8_t> dst_ = std::vector<uint8_t>(4 * kWidth * kHeight, kBefore);

    // Every pixel of dst_ is the sample, or what is outside.
    template <class SpotOf>
    void expectSamples(const std::vector<uint8_t>& src, unsigned channels, Kind kind, SpotOf spotOf,
                       std::optional<int> beyond, int outside, const char* what)
    {
        const Picture picture{src, channels};
        for (unsigned i = 0; i < kWidth * kHeight * channels; ++i) {
            const unsigned x = i / channels % kWidth, y = i / channels / kWidth;
            const Spot at = spotOf(x, y);
            ASSERT_EQ(picture.sample(kind, at.x, at.y, i % channels, beyond).value_or(outside), dst_[i])
                << what << " at " << x << "," << y << ": " << at.x << "," << at.y;
        }
        dst_.assign(dst_.size(), kBefore);
    }
};

} // namespace

TEST_F(Warps, PerspectivesSampleWhereTheMatrixSays)
{
    uint8_t *const dst = dst_.data(), *const src = grey_.data();
    for (const float(&m)[9] : kMatrices) {
        const auto at = [&](unsigned x, unsigned y) { return spot(m, x, y, true); };
        odxWarpPerspectiveu8(src, kWidth, kHeight, dst, kWidth, kHeight, m);
        expectSamples(grey_, 1, Kind::bilinear, at, {}, 0, "packed");
        odxWarpPerspectiveu8_v2(src, kWidth, kHeight, 0, dst, kWidth, kHeight, 0, m);
        expectSamples(grey_, 1, Kind::bilinear, at, {}, 0, "v2");
        for (const auto type :
             {ONDRIX_INTERPOLATION_NEAREST, ONDRIX_INTERPOLATION_BILINEAR, ONDRIX_INTERPOLATION_AREA}) {
            const Kind kind = type == ONDRIX_INTERPOLATION_NEAREST ? Kind::nearest : Kind::bilinear;
            EXPECT_EQ(0, odxWarpPerspectiveu8_v3(src, kWidth, kHeight, 0, dst, kWidth, kHeight, 0, m, type));
            expectSamples(grey_, 1, kind, at, {}, 0, "v3");
            for (const auto border : {ONDRIX_BORDER_UNDEFINED, ONDRIX_BORDER_CONSTANT, ONDRIX_BORDER_REPLICATE}) {
                const bool constant = border == ONDRIX_BORDER_CONSTANT;
                EXPECT_EQ(0, odxWarpPerspectiveu8_v4(src, kWidth, kHeight, 0, dst, kWidth, kHeight, 0, m, type,
                                                     border, 256 + 200));
                expectSamples(grey_, 1, kind, at, constant ? std::optional<int>(200) : std::nullopt,
                              constant ? 200 : 0, "v4");
            }
        }
        odx3ChannelWarpPerspectiveu8(triples_.data(), kWidth, kHeight, dst, kWidth, kHeight, m);
        expectSamples(triples_, 3, Kind::bilinear, at, {}, 0, "three channels");
        odx3ChannelWarpPerspectiveu8_v2(triples_.data(), kWidth, kHeight, 0, dst, kWidth, kHeight, 0, m);
        expectSamples(triples_, 3, Kind::bilinear, at, {}, 0, "three channels, v2");
        EXPECT_EQ(0, odx2PlaneWarpPerspectiveu8(triples_.data(), src, kWidth, kHeight, 0, 0,
                                                dst + kWidth * kHeight, dst, kWidth, kHeight, 0, 0, m));
        const std::vector<uint8_t> first(dst + kWidth * kHeight, dst + 2 * kWidth * kHeight);
        expectSamples(grey_, 1, Kind::bilinear, at, {}, 0, "second plane");
        std::copy(first.begin(), first.end(), dst);
        expectSamples({triples_.begin(), triples_.begin() + kWidth * kHeight}, 1, Kind::bilinear, at, {}, 0,
                      "first plane");
    }
    EXPECT_EQ(3, odxWarpPerspectiveu8_v3(src, 2, 2, 0, dst, 2, 2, 0, kMatrices[0],
                                         static_cast<odxInterpolationType>(3)));
    EXPECT_EQ(kBefore, dst[0]);
}

TEST_F(Warps, RemapsSampleWhereTheMapsSay)
{
    std::vector<float> mapX(kWidth * kHeight), mapY(mapX.size());
    const std::vector<uint8_t> quads = noise(4 * kWidth * kHeight);
    uint8_t* const dst = dst_.data();
    for (const float(&m)[9] : kMatrices) {
        const auto at = [&](unsigned x, unsigned y) { return spot(m, x, y, true); };
        for (unsigned i = 0; i < mapX.size(); ++i) {
            mapX[i] = static_cast<float>(at(i % kWidth, i / kWidth).x);
            mapY[i] = static_cast<float>(at(i % kWidth, i / kWidth).y);
        }
        const auto remap = [&](auto* operation, const std::vector<uint8_t>& src, auto... rest) {
            return operation(src.data(), kWidth, kHeight, 0, dst, kWidth, kHeight, 0, mapX.data(), mapY.data(), 0,
                             rest...);
        };
        remap(odxRemapRGBA8888NNu8, quads);
        expectSamples(quads, 4, Kind::nearest, at, {}, 0, "RGBA, nearest");
        remap(odxRemapRGBA8888BLu8, quads);
        expectSamples(quads, 4, Kind::bilinear, at, {}, 0, "RGBA, bilinear");
        for (const auto type : {ONDRIX_INTERPOLATION_NEAREST, ONDRIX_INTERPOLATION_BILINEAR}) {
            const Kind kind = type == ONDRIX_INTERPOLATION_NEAREST ? Kind::nearest : Kind::bilinear;
            EXPECT_EQ(0, remap(odxRemapu8, grey_, type));
            expectSamples(grey_, 1, kind, at, {}, 0, "grey");
            EXPECT_EQ(0, remap(odxRemapu8_v2, grey_, type, ONDRIX_BORDER_CONSTANT, 200));
            expectSamples(grey_, 1, kind, at, 200, 200, "constant");
            EXPECT_EQ(0, remap(odxRemapu8_v2, grey_, type, ONDRIX_BORDER_REPLICATE, 200));
            const auto clamped = [&](unsigned x, unsigned y) { return nearest(at(x, y)); };
            expectSamples(grey_, 1, kind, clamped, 0, 0, "replicated"); // pixels beyond have no share
        }
        EXPECT_EQ(3, remap(odxRemapu8, grey_, static_cast<odxInterpolationType>(3)));
    }
    EXPECT_EQ(0, odxRemapu8_v2(grey_.data(), 0, 0, 0, dst, 1, 1, 0, mapX.data(), mapY.data(), 0,
                               ONDRIX_INTERPOLATION_BILINEAR, ONDRIX_BORDER_REPLICATE, 9));
    EXPECT_EQ(0, dst[0]);
}

TEST_F(Warps, ClippedTransformsLeaveWhatIsOutside)
{
    std::vector<uint32_t> ends(2 * kHeight);
    for (const float(&m)[9] : kMatrices) {
        if (m[8] != 1) continue;
        const auto at = [&](unsigned x, unsigned y) { return spot(m, x, y, false); };
        const auto inside = [&](unsigned x, unsigned y) {
            const Spot s = at(x, y);
            return s.x >= 0 && s.y >= 0 && s.x <= kWidth - 1 && s.y <= kHeight - 1;
        };
        const auto clip = [&](auto* operation, auto... rest) {
            ends.assign(2 * kHeight, 99);
            operation(grey_.data(), kWidth, kHeight, 0, m, dst_.data(), kWidth, kHeight, 0, ends.data(), rest...);
            for (unsigned y = 0; y < kHeight; ++y) {
                unsigned first = 0, end = 0;
                for (unsigned x = kWidth; x-- > 0;) {
                    if (!inside(x, y)) continue;
                    first = x;
                    if (end == 0) end = x + 1;
                }
                ASSERT_EQ(first, ends[2 * y]);
                ASSERT_EQ(end, ends[2 * y + 1]);
            }
        };
        const auto insideOnly = [&](unsigned x, unsigned y) { return inside(x, y) ? at(x, y) : kNowhere; };
        clip(odxTransformAffineClippedu8);
        expectSamples(grey_, 1, Kind::fixed, insideOnly, {}, kBefore, "clipped");
        clip(odxTransformAffineClippedu8_v2, ONDRIX_INTERPOLATION_NEAREST);
        expectSamples(grey_, 1, Kind::nearest, insideOnly, {}, kBefore, "nearest");
        clip(odxTransformAffineClippedu8_v3, ONDRIX_INTERPOLATION_BILINEAR, ONDRIX_BORDER_CONSTANT, 200u);
        expectSamples(grey_, 1, Kind::fixed, at, 200, 200, "constant");
        clip(odxTransformAffineClippedu8_v3, ONDRIX_INTERPOLATION_BILINEAR, ONDRIX_BORDER_REPLICATE, 200u);
        const auto clamped = [&](unsigned x, unsigned y) { return nearest(at(x, y)); };
        expectSamples(grey_, 1, Kind::fixed, clamped, {}, 0, "replicated");
    }
    // Bicubic: whole positions copy, flat stays flat, and half a pixel has the weights -1/16, 9/16, 9/16, -1/16.
    odx3ChannelTransformAffineClippedBCu8(triples_.data(), kWidth, kHeight, 0, kMatrices[0], dst_.data(), kWidth,
                                          kHeight, 0, ends.data());
    EXPECT_EQ(triples_, std::vector<uint8_t>(dst_.begin(), dst_.begin() + 3 * kWidth * kHeight));
    std::vector<uint8_t> steps(3 * 4, 100);
    steps[6] = steps[9] = 200; // red: 100 100 200 200
    const float half[] = {1, 0, 0.5f, 0, 1, 0};
    odx3ChannelTransformAffineClippedBCu8(steps.data(), 4, 1, 0, half, dst_.data(), 4, 1, 0, ends.data());
    const uint8_t expected[] = {94, 100, 100, 150, 100, 100, 206, 100, 100}; // 93.75 and 206.25, rounded
    EXPECT_EQ(0, memcmp(expected, dst_.data(), sizeof expected));
    EXPECT_EQ(3u, ends[1]);
}

TEST_F(Warps, PatchesAreCutAboutAPosition)
{
    const float identity[] = {1, 0, 0, 1}, middle[] = {4, 4, 4.5f, 4, 4, 4},
                affines[] = {1, 0, 0, 1, 1, 0, 0, 1, 0, 1, -1, 0};
    const std::vector<uint8_t> src = noise(64);
    std::vector<uint8_t> patch(3 * 64, kBefore);
    for (auto* const operation : {odxTransformAffineu8, odxTransformAffineu8_v2}) {
        EXPECT_EQ(0, operation(src.data(), 8, 8, 0, middle, identity, patch.data(), 8, 8, 0));
        EXPECT_EQ(src, std::vector<uint8_t>(patch.begin(), patch.begin() + 64));
        EXPECT_EQ(1, operation(src.data(), 8, 8, 0, middle + 2, identity, patch.data(), 8, 8, 0));
        // 3 / 2 is 1.5: the first pixel lies between four.
        EXPECT_EQ(0, operation(src.data(), 8, 8, 0, middle, identity, patch.data() + 64, 3, 3, 0));
        EXPECT_EQ((src[2 * 8 + 2] + src[2 * 8 + 3] + src[3 * 8 + 2] + src[3 * 8 + 3]) / 4, patch[64]);
    }
    for (auto* const operation : {odxTransformAffine8x8u8, odxTransformAffine8x8u8_v2}) {
        patch.assign(3 * 64, kBefore);
        const std::vector<uint8_t> wide = noise(16 * 16);
        const float positions[] = {8, 8, 1, 8, 8.5f, 8};
        EXPECT_EQ(1, operation(wide.data(), 16, 16, 0, 3, positions, affines, patch.data()));
        EXPECT_EQ(wide[4 * 16 + 4], patch[0]);
        EXPECT_EQ(kBefore, patch[64]);
        // Turned: the first pixel is (8.5 - 4, 8 + 4).
        EXPECT_EQ((wide[12 * 16 + 4] + wide[12 * 16 + 5]) / 2, patch[128]);
        EXPECT_EQ(0, operation(wide.data(), 16, 16, 0, 1, positions, affines, patch.data()));
    }
}

TEST_F(Warps, RegionsTurn)
{
    const std::vector<uint8_t> region = noise(25 * 25);
    uint8_t patch[17][17];
    odxCopyRotated17x17u8(region.data(), patch[0], 0);
    for (int y = 0; y < 17; ++y)
        EXPECT_EQ(0, memcmp(region.data() + 25 * (y + 4) + 4, patch[y], 17));
    odxCopyRotated17x17u8(region.data(), patch[0], NAN);
    EXPECT_EQ(region[25 * 4 + 4], patch[0][0]);
    // A smooth picture shows where the pixels come from.
    std::vector<uint8_t> slope(25 * 25);
    for (int i = 0; i < 25 * 25; ++i)
        slope[static_cast<size_t>(i)] = static_cast<uint8_t>(10 * (i % 25) + i / 25 / 3);
    for (const float angle : {0.7f, -2.0f, 3.1f, 40.0f}) {
        odxCopyRotated17x17u8(slope.data(), patch[0], angle);
        const double c = cos(static_cast<double>(angle)), s = sin(static_cast<double>(angle));
        for (int i = 0; i < 17 * 17; ++i) {
            const int x = i % 17 - 8, y = i / 17 - 8;
            ASSERT_NEAR(10 * (12 + c * x - s * y) + (12 + s * x + c * y) / 3, patch[y + 8][x + 8], 1.7) << angle;
        }
    }
}

TEST_F(Warps, MatricesAreInvertedAndFound)
{
    const float affine[] = {2, 1, 3, 1, 1, -2}, singular[] = {1, 2, 5, 2, 4, 7};
    float inverse[9];
    EXPECT_EQ(0, odxInvertAffineTransformf32(affine, inverse));
    const float expected[] = {1, -1, -5, -1, 2, 7, 0, 0, 1};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(expected[i], inverse[i]) << i;
    EXPECT_EQ(0, odxInvertAffineTransformf32(singular, inverse));
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(0, inverse[i]) << i;

    const float square[] = {0, 0, 10, 0, 10, 10, 0, 10}, page[] = {3, 1, 14, 2, 12, 17, 1, 11};
    float m[9];
    odxGetPerspectiveTransformf32(square, page, m);
    for (int i = 0; i < 4; ++i) {
        const float x = square[2 * i], y = square[2 * i + 1], den = m[6] * x + m[7] * y + m[8];
        EXPECT_NEAR(page[2 * i], (m[0] * x + m[1] * y + m[2]) / den, 1e-4f);
        EXPECT_NEAR(page[2 * i + 1], (m[3] * x + m[4] * y + m[5]) / den, 1e-4f);
    }
    EXPECT_EQ(1, m[8]);
    const float line[8] = {};
    odxGetPerspectiveTransformf32(line, page, m);
}
