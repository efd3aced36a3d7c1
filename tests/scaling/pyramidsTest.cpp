// Pyramids: sizes of the levels, what is done at odd ones, memory.
#include "ondrix.h"
#include "support/pictures.h"
#include "support/referenceTest.h"

using namespace odx::test;

namespace
{

using Bytes = Grid<uint8_t>;
const std::vector<int> kGaussian = {1, 4, 6, 4, 1};

using Pyramids = odx::test::ReferenceTest;

using Sizes = std::vector<std::pair<uint32_t, uint32_t>>;
Sizes sizesOf(const std::vector<odxPyrLevelStrided>& levels)
{
    Sizes sizes;
    for (const auto& level : levels)
        sizes.push_back({level.width, level.height});
    return sizes;
}

Bytes pixelsOf(const odxPyrLevelStrided& level)
{
    Bytes grid(static_cast<int>(level.width), static_cast<int>(level.height));
    for (int y = 0; y < grid.height; ++y)
        std::copy_n(static_cast<const uint8_t*>(level.ptr) + size_t{level.stride} * static_cast<size_t>(y),
                    level.width, &grid.at(0, y));
    return grid;
}

} // namespace

TEST_F(Pyramids, HaveTheSizesOfTheirLevels)
{
    std::vector<odxPyrLevelStrided> levels(6);
    EXPECT_EQ(0, odxPyramidAllocate_v3(levels.data(), 640, 480, 0, 1, 8, 6, 1, 0));
    EXPECT_EQ((Sizes{{640, 480}, {539, 404}, {453, 340}, {381, 286}, {320, 240}, {270, 202}}), sizesOf(levels));
    EXPECT_EQ(nullptr, levels[0].ptr);
    odxPyramidDelete_v2(levels.data(), 6, 1);
    levels.resize(2);
    EXPECT_EQ(0, odxPyramidAllocate_v3(levels.data(), 101, 7, 0, 1, 8, 2, 0, 1));
    EXPECT_EQ((Sizes{{101, 7}, {51, 4}}), sizesOf(levels));
    EXPECT_EQ(56u, levels[1].stride);
    odxPyramidDelete_v2(levels.data(), 2, 0);
    odxPyramidDelete_v2(levels.data(), 2, 0);
    EXPECT_EQ(nullptr, levels[0].ptr);
    EXPECT_EQ(0, odxPyramidAllocate_v2(levels.data(), 101, 7, 128, 2, 2, 1));
    EXPECT_EQ((Sizes{{101, 7}, {50, 3}}), sizesOf(levels));
    EXPECT_EQ(128u, levels[0].stride);
    EXPECT_EQ(100u, levels[1].stride);
    odxPyramidDelete_v2(levels.data(), 2, 0);
    std::vector<odxPyrLevel> packed(9, {&levels, 5, 5});
    EXPECT_EQ(0, odxPyramidAllocate(packed.data(), 100, 30, 1, 9, 0)); // the last ones have no pixels
    EXPECT_EQ((odxPyrLevel{&levels, 5, 5}).ptr, packed[0].ptr);
    EXPECT_EQ(0u, packed[8].width);
    EXPECT_NE(nullptr, packed[8].ptr);
    odxPyramidDelete(packed.data(), 9, 1);
    EXPECT_EQ(&levels, packed[0].ptr);
    EXPECT_EQ(nullptr, packed[1].ptr);
}

TEST_F(Pyramids, KeepNothingWhereMemoryIsShort)
{
    // Levels beyond what an address space has.
    std::vector<odxPyrLevelStrided> levels(3);
    levels[2].ptr = &levels;
    EXPECT_EQ(-1, odxPyramidAllocate_v2(levels.data(), 0x80000000, 0xFFFFFFFF, 1, 0xFFFFFFFF, 3, 0));
    EXPECT_EQ(ONDRIX_NO_MEMORY, odxPyramidAllocate_v3(levels.data(), 0xFFFFFFFF, 0xFFFFFFFF, 0, 1, 8, 3, 0, 1));
    EXPECT_EQ(nullptr, levels[1].ptr);
    EXPECT_EQ(&levels, levels[2].ptr);
    odxPyrLevel packed[2] = {};
    EXPECT_EQ(-1, odxPyramidAllocate(packed, 0x80000000, 0xFFFFFFFF, 0xFFFFFFFF, 2, 0));
}

TEST_F(Pyramids, HalveLevelAfterLevel)
{
    const Bytes src = noise<uint8_t>(40, 24, 0, 255);
    Bytes middle(20, 12), last(10, 6), made[2] = {middle, last}, strided[2] = {middle, last};
    odxScaleDownBy2Gaussian5x5u8(src.data(), 40, 24, middle.data());
    odxScaleDownBy2Gaussian5x5u8(middle.data(), 20, 12, last.data());
    odxPyrLevel levels[4] = {{}, {made[0].data(), 0, 0}, {made[1].data(), 0, 0}, {}};
    EXPECT_EQ(0, odxPyramidCreateu8(src.data(), 40, 24, 3, levels));
    EXPECT_EQ(last, made[1]);
    EXPECT_EQ(10u, levels[2].width);
    EXPECT_EQ(-1, odxPyramidCreateu8(src.data(), 40, 24, 4, levels)); // level 3 has no buffer
    EXPECT_EQ(-1, odxPyramidCreateu8(src.data(), 100, 8, 4, levels)); // 100 is no multiple of 8
    odxPyrLevelStrided wide[3] = {{}, {strided[0].data(), 0, 0, 99}, {strided[1].data(), 0, 0, 99}};
    EXPECT_EQ(0, odxPyramidCreateu8_v2(src.data(), 40, 24, 0, 3, wide));
    EXPECT_EQ(last, strided[1]);
    EXPECT_EQ(10u, wide[2].stride);
    Grid<float> floats(40, 24), half(20, 12), expected = half, other = half;
    std::copy(src.pixels.begin(), src.pixels.end(), floats.pixels.begin());
    odxScaleDownBy2Gaussian5x5f32(floats.data(), 40, 24, expected.data());
    levels[1].ptr = half.data();
    wide[1].ptr = other.data();
    EXPECT_EQ(0, odxPyramidCreatef32(floats.data(), 40, 24, 2, levels));
    EXPECT_EQ(0, odxPyramidCreatef32_v2(floats.data(), 40, 24, 0, 2, wide));
    EXPECT_EQ(expected, half);
    EXPECT_EQ(expected, other);
    EXPECT_EQ(80u, wide[1].stride);
}

TEST_F(Pyramids, OfAnySizeHaveTheirLastColumnAndRow)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 1}, {9, 12}, {13, 11}, {520, 3}}) {
        for (const unsigned octaves : {0u, 1u}) {
            const Bytes src = noise<uint8_t>(width, height, 0, 255);
            std::vector<odxPyrLevelStrided> levels(5);
            odxPyramidAllocate_v3(levels.data(), src.w(), src.h(), 0, 1, 8, 5, octaves, 1);
            EXPECT_EQ(0, odxPyramidCreateu8_v3(src.data(), src.w(), src.h(), 0, 5, octaves, levels.data()));
            EXPECT_EQ(src, pixelsOf(levels[0]));
            for (size_t i = 1; i < levels.size(); ++i) {
                const Bytes above = pixelsOf(levels[i - 1]), level = pixelsOf(levels[i]);
                const auto place = [](int x, int from, int to) {
                    const float step = static_cast<float>(from) / static_cast<float>(to);
                    float a = 0.5f * step;
                    while (x-- > 0)
                        a += step;
                    return static_cast<int>(a);
                };
                for (int y = 0; y < level.height; ++y) {
                    for (int x = 0; x < level.width; ++x) {
                        const int u = octaves ? place(x, above.width, level.width) : 2 * x,
                                  v = octaves ? place(y, above.height, level.height) : 2 * y;
                        const Taps taps = binomial(above, u, v, kGaussian);
                        const int64_t rounding = octaves ? 0 : taps.weight / 2;
                        const int64_t tie = !octaves && 2 * taps.sum % (2 * taps.weight) == taps.weight ? 1 : 0;
                        const int64_t expected = (taps.sum + rounding) / taps.weight;
                        ASSERT_NEAR(static_cast<double>(expected), level.at(x, y), static_cast<double>(tie))
                            << width << "x" << height << " level " << i << " at " << x << "," << y;
                    }
                }
            }
            EXPECT_EQ(ONDRIX_FAILURE,
                      odxPyramidCreateu8_v3(src.data(), src.w(), src.h(), 1000, 5, octaves, levels.data()));
            odxPyramidDelete_v2(levels.data(), 5, 3);
            EXPECT_EQ(ONDRIX_NO_MEMORY,
                      odxPyramidCreateu8_v3(src.data(), src.w(), src.h(), 0, 5, octaves, levels.data()));
            odxPyramidDelete_v2(levels.data(), 5, 0);
            EXPECT_EQ(ONDRIX_SUCCESS,
                      odxPyramidCreateu8_v3(src.data(), src.w(), src.h(), 0, 1, octaves, levels.data()));
            EXPECT_EQ(src.data(), levels[0].ptr); // borrowed
        }
    }
}

TEST_F(Pyramids, HaveGradients)
{
    const Bytes src = noise<uint8_t>(9, 7, 0, 255);
    const Bytes half = noise<uint8_t>(4, 3, 0, 255);
    odxPyrLevel images[4] = {{const_cast<uint8_t*>(src.data()), 9, 7}, {const_cast<uint8_t*>(half.data()), 0, 0}};
    const auto check = [&](auto pixel, auto operation, auto sobel, int level) {
        using T = decltype(pixel);
        const Bytes& image = level == 0 ? src : half;
        Grid<T> dx(9, 7, 5), dy = dx, dx1(4, 3, 5), dy1 = dx1, tail(2, 1, 5);
        Grid<T> expectedX(image.width, image.height, 5), expectedY = expectedX;
        sobel(image.data(), image.w(), image.h(), 0u, expectedX.data(), expectedY.data());
        odxPyrLevel x[4] = {{dx.data(), 0, 0}, {dx1.data(), 0, 0}, {tail.data(), 0, 0}, {}},
                    y[4] = {{dy.data(), 0, 0}, {dy1.data(), 0, 0}, {tail.data(), 0, 0}, {}};
        EXPECT_EQ(-1, operation(images, x, y, 4)); // the last one has no buffer
        EXPECT_EQ(1u, x[3].width);
        EXPECT_EQ(expectedX, level == 0 ? dx : dx1);
        EXPECT_EQ(expectedY, level == 0 ? dy : dy1);
        EXPECT_EQ(5, tail.at(0, 0)); // 2x1 pixels have no inside
        EXPECT_EQ(0, operation(images, x, y, 3));
    };
    for (const int level : {0, 1}) {
        check(int16_t{}, odxPyramidSobelGradientCreatei16, odxImageGradientSobelPlanars16, level);
        check(int8_t{}, odxPyramidSobelGradientCreatei8, odxImageGradientSobelPlanars8, level);
        check(float{}, odxPyramidSobelGradientCreatef32, odxImageGradientSobelPlanarf32, level);
    }
}
