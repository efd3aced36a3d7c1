// The thresholds against their definitions. The other columns are held to the reference by the differential test.
#include "ondrix.h"
#include "smoothing/models.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace odx::test;

namespace
{

class Thresholds : public testing::Test
{
protected:
    Thresholds() { EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE)); }
};

using Image = Grid<uint8_t>;

// Every level once.
Image levels()
{
    Image image(256, 1);
    for (int i = 0; i < 256; ++i)
        image.at(i, 0) = static_cast<uint8_t>(i);
    return image;
}

template <class Call>
Image marked(const Image& src, Call call)
{
    Image dst(src.width, src.height, 77);
    call(src.data(), src.w(), src.h(), dst.data());
    return dst;
}

template <class Keeps>
void expectLevels(const Image& dst, unsigned inside, unsigned outside, Keeps keeps, const std::string& what)
{
    for (int i = 0; i < 256; ++i)
        ASSERT_EQ(keeps(i) ? inside & 255 : outside & 255, dst.at(i, 0)) << what << ", level " << i;
}

// The level by its formula.
int otsuLevel(const Image& src)
{
    double h[256] = {}, sum = 0;
    for (const uint8_t p : src.pixels) {
        ++h[p];
        sum += p;
    }
    const double s = 1.0 / static_cast<double>(src.pixels.size()), m = s * sum;
    double m1 = 0, w = 0, best = 0;
    int level = 0;
    for (int t = 0; t < 256; ++t) {
        m1 = m1 * w;
        const double p = h[t] * s;
        w = w + p;
        if (std::min(w, 1 - w) < std::ldexp(1.0, -23) || std::max(w, 1 - w) > 1 - std::ldexp(1.0, -23)) continue;
        m1 = (t * p + m1) / w;
        const double d = m1 + (w * m1 - m) / (1 - w), score = ((w * (1 - w)) * d) * d;
        if (score > best) {
            best = score;
            level = t;
        }
    }
    return level;
}

} // namespace

TEST_F(Thresholds, KeepARangeOfLevels)
{
    const Image src = levels();
    for (const unsigned t : {0u, 1u, 100u, 254u, 255u, 256u, 300u, 2147483647u}) {
        const std::string what = "threshold " + std::to_string(t);
        const int at = static_cast<int>(t);
        const auto keeps = [&](int level) { return level >= std::min(at, 255); };
        expectLevels(marked(src, [&](auto s, auto w, auto h, auto d) { odxFilterThresholdu8(s, w, h, t, d); }),
                     255, 0, keeps, what);
        expectLevels(
            marked(src, [&](auto s, auto w, auto h, auto d) { odxFilterThresholdu8_v2(s, w, h, 0, d, 0, t); }),
            255, 0, keeps, what);
        expectLevels(
            marked(src, [&](auto s, auto w, auto h,
                            auto d) { EXPECT_EQ(0, odxFilterThresholdu8_v3(s, w, h, 0, d, 0, t, 0x107, 200)); }),
            7, 200, [&](int level) { return level > at; }, what);
    }
    for (const int low : {-2147483647 - 1, -1, 0, 9, 255, 256}) {
        for (const int high : {-2147483647 - 1, -1, 0, 8, 9, 254, 255, 256, 2147483647}) {
            const std::string what = std::to_string(low) + " to " + std::to_string(high);
            const auto keeps = [&](int level) { return low <= level && level <= high; };
            expectLevels(
                marked(src, [&](auto s, auto w, auto h,
                                auto d) { EXPECT_EQ(0, odxFilterThresholdRangeu8(s, w, h, 0, d, 0, low, high)); }),
                255, 0, keeps, what);
            expectLevels(marked(src,
                                [&](auto s, auto w, auto h, auto d) {
                                    EXPECT_EQ(0,
                                              odxFilterThresholdRangeu8_v2(s, w, h, 0, d, 0, low, high, 7, 0x1C8));
                                }),
                         7, 200, keeps, what);
        }
    }
}

TEST_F(Thresholds, OtsuSeparatesLevelsAtTheFirstBest)
{
    std::vector<std::pair<Image, int>> images = {
        {Image(9, 9, 0), 0}, {Image(9, 9, 130), 0}, {Image(9, 9, 255), 0}};
    Image two(10, 4, 10);
    std::fill(two.pixels.begin() + 20, two.pixels.end(), uint8_t{200});
    images.push_back({two, 10}); // all levels up to 199 are as good
    images.push_back({levels(), 127});
    for (const int high : {1, 30, 255}) {
        Image image = noise<uint8_t>(41, 13, 0, high);
        for (int i = 0; i < 150; ++i)
            image.pixels[static_cast<size_t>(i)] /= 3;
        images.push_back({image, otsuLevel(image)});
    }
    for (const auto& [src, level] : images) {
        EXPECT_EQ(level, otsuLevel(src));
        for (const unsigned type : {0u, 1u, 2u}) {
            const Image dst = marked(
                src, [&](auto s, auto w, auto h, auto d) { odxFilterThresholdOtsuu8(s, w, h, 0, d, 0, type); });
            for (size_t i = 0; i < src.pixels.size(); ++i)
                ASSERT_EQ((src.pixels[i] > level) != (type == 1) ? 255 : 0, dst.pixels[i]) << "level " << level;
        }
    }
    Image nothing(1, 1, 77);
    odxFilterThresholdOtsuu8(two.data(), 0, 4, 16, nothing.data(), 16, 0);
    odxFilterThresholdOtsuu8(two.data(), 10, 0, 0, nothing.data(), 0, 0);
    odxFilterThresholdu8(two.data(), 0, 4, 9, nothing.data());
    EXPECT_EQ(77, nothing.at(0, 0));
}

TEST_F(Thresholds, AdaptiveOnesCompareWithTheAverage)
{
    const struct {
        decltype(odxAdaptiveThresholdMean3x3u8)* operation;
        void (*average)(const uint8_t*, unsigned, unsigned, unsigned, uint8_t*, unsigned);
        int leastSide;
    } kinds[] = {
        {odxAdaptiveThresholdGaussian3x3u8,
         [](auto s, auto w, auto h, auto from, auto d, auto to) {
             odxFilterGaussian3x3u8_v3(s, w, h, from, d, to, ONDRIX_BORDER_UNDEFINED, 0);
         },
         2},
        {odxAdaptiveThresholdGaussian5x5u8,
         [](auto s, auto w, auto h, auto from, auto d, auto to) {
             odxFilterGaussian5x5u8_v2(s, w, h, from, d, to, 1);
         },
         5},
        {odxAdaptiveThresholdGaussian11x11u8,
         [](auto s, auto w, auto h, auto from, auto d, auto to) {
             odxFilterGaussian11x11u8_v2(s, w, h, from, d, to, 1);
         },
         11},
        {odxAdaptiveThresholdMean3x3u8, odxBoxFilter3x3u8, 3},
        {odxAdaptiveThresholdMean5x5u8, odxBoxFilter5x5u8, 5},
        {odxAdaptiveThresholdMean11x11u8, odxBoxFilter11x11u8, 11},
    };
    for (const auto& kind : kinds) {
        for (const int width : {kind.leastSide, kind.leastSide + 1, 20}) {
            Image src = noise<uint8_t>(width, kind.leastSide + 4, 90, 140);
            src.at(0, 0) = 0;
            src.at(1, 1) = 255;
            Image average(width, src.height);
            kind.average(src.data(), src.w(), src.h(), src.w(), average.data(), src.w());
            for (const int value : {-2147483647 - 1, -256, -255, -254, -9, -1, 0, 1, 9, 255, 256, 2147483647}) {
                for (const unsigned type : {0u, 1u, 2u, 0xFFFFFFFFu}) {
                    Image dst(width + 3, src.height, 77);
                    kind.operation(src.data(), src.w(), src.h(), 0, 0x1C8, type, value, dst.data(), dst.w());
                    for (int y = 0; y < src.height; ++y) {
                        for (int x = 0; x < width; ++x) {
                            const int64_t level = int64_t{average.at(x, y)} - value;
                            const bool above = src.at(x, y) > level;
                            const int expected = type > 1 ? 0 : above == (type == 0) ? 200 : 0;
                            ASSERT_EQ(expected, dst.at(x, y)) << "type " << type << ", value " << value;
                        }
                        ASSERT_EQ(type > 1 ? 0 : 77, dst.at(width + 2, y));
                    }
                }
            }
        }
    }
}
