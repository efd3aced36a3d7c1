// The thresholds against their definitions. The other columns are held to the reference by the differential test.
#include "ondrix.h"
#include "support/drawings.h"
#include "support/referenceTest.h"

using namespace odx::test;

namespace
{

class Thresholds : public odx::test::ReferenceTest
{
};

using Image = Grid<uint8_t>;

// Every level once.
Image levels()
{
    return drawn<uint8_t>(256, 1, [](int x, int) { return x; });
}

// What a threshold with these parameters writes.
template <class Operation, class... Parameters>
Image marked(const Image& src, Operation operation, Parameters... parameters)
{
    Image dst(src.width, src.height, 77);
    operation(src.data(), src.w(), src.h(), 0, dst.data(), 0, parameters...);
    return dst;
}

// Marks every level, those that are kept with one value and the others with another.
template <class Keeps, class Operation, class... Parameters>
void expectLevels(Keeps keeps, int inside, int outside, Operation operation, Parameters... parameters)
{
    expectPixels(
        marked(levels(), operation, parameters...), [&](int x, int) { return keeps(x) ? inside : outside; },
        "parameters" + ((" " + std::to_string(parameters)) + ...) + ",");
}

} // namespace

TEST_F(Thresholds, KeepARangeOfLevels)
{
    const auto packed = [](auto src, auto width, auto height, auto, auto dst, auto, auto threshold) {
        odxFilterThresholdu8(src, width, height, threshold, dst);
    };
    for (const unsigned t : {0u, 1u, 100u, 254u, 255u, 256u, 300u, 2147483647u}) {
        const int at = static_cast<int>(t);
        const auto reaches = [&](int level) { return level >= std::min(at, 255); };
        expectLevels(reaches, 255, 0, packed, t);
        expectLevels(reaches, 255, 0, odxFilterThresholdu8_v2, t);
        expectLevels([&](int level) { return level > at; }, 7, 200, odxFilterThresholdu8_v3, t, 0x107u, 200u);
    }
    for (const int low : {-2147483647 - 1, -1, 0, 9, 255, 256}) {
        for (const int high : {-2147483647 - 1, -1, 0, 8, 9, 254, 255, 256, 2147483647}) {
            const auto keeps = [&](int level) { return low <= level && level <= high; };
            expectLevels(keeps, 255, 0, odxFilterThresholdRangeu8, low, high);
            expectLevels(keeps, 7, 200, odxFilterThresholdRangeu8_v2, low, high, 7u, 0x1C8u);
        }
    }
}

// So many pixels of these levels.
Image mixture(const std::vector<std::pair<uint8_t, int>>& parts)
{
    Image image(0, 1);
    for (const auto& [level, count] : parts)
        image.pixels.insert(image.pixels.end(), static_cast<size_t>(count), level);
    image.width = static_cast<int>(image.pixels.size());
    return image;
}

TEST_F(Thresholds, OtsuSeparatesLevelsAtTheFirstBest)
{
    const Image two = mixture({{10, 20}, {200, 20}});
    const std::pair<Image, int> images[] = {
        {Image(9, 9, 0), 0},
        {Image(9, 9, 130), 0},
        {Image(9, 9, 255), 0},
        {two, 10},
        {levels(), 127},
        {mixture({{0, 3}, {100, 1}, {200, 1}}), 0},   // 0.24 * 150^2 beats 0.16 * 175^2
        {mixture({{0, 1}, {100, 1}, {200, 3}}), 100}, // the other way round
        {mixture({{0, 1}, {120, 2}, {240, 1}}), 0},   // as good after 120
        {mixture({{5, 1}, {255, 9999999}}), 0},       // a class of less than 2^-23 is none
    };
    for (const auto& [src, level] : images) {
        for (const unsigned type : {0u, 1u, 2u}) {
            const Image dst = marked(src, odxFilterThresholdOtsuu8, type);
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
        for (const int width : {kind.leastSide, std::max(kind.leastSide, 6), 20}) {
            Image src = noise<uint8_t>(width, kind.leastSide + 4, 90, 140);
            src.at(0, 0) = 0;
            src.at(1, 1) = 255;
            Image average(width, src.height);
            kind.average(src.data(), src.w(), src.h(), src.w(), average.data(), src.w());
            for (const int value : {-2147483647 - 1, -256, -255, -254, -9, -1, 0, 1, 9, 255, 256, 2147483647}) {
                for (const unsigned type : {0u, 1u, 2u, 0xFFFFFFFFu}) {
                    Image dst(width + 3, src.height, 77);
                    kind.operation(src.data(), src.w(), src.h(), 0, 0x1C8, type, value, dst.data(), dst.w());
                    expectPixels(dst, [&, w = width, v = value, t = type](int x, int y) {
                        if (x >= w) return t > 1 ? 0 : 77;
                        const bool above = src.at(x, y) > int64_t{average.at(x, y)} - v;
                        return t > 1 ? 0 : above == (t == 0) ? 200 : 0;
                    });
                }
            }
        }
    }
}
