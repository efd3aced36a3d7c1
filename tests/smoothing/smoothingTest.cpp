// The reference filters against their definitions and against numbers worked by hand. The other columns are held
// to the reference by the differential test.
#include "cpu/ondrixBlurC.h"
#include "ondrix.h"
#include "support/childProcess.h"
#include "support/logCapture.h"
#include "support/pictures.h"
#include "support/referenceTest.h"
#include "support/scratchWatch.h"

using namespace odx::test;

namespace
{

const std::vector<int> kBinomial3 = {1, 2, 1}, kBinomial5 = {1, 4, 6, 4, 1},
                       kBinomial11 = {1, 10, 45, 120, 210, 252, 210, 120, 45, 10, 1};
constexpr odxBorderType kBorderTypes[] = {ONDRIX_BORDER_UNDEFINED, ONDRIX_BORDER_CONSTANT,
                                          ONDRIX_BORDER_REPLICATE};

class Smoothing : public odx::test::ReferenceTest
{
};

template <class T>
int64_t windowSum(const Grid<T>& src, int x, int y, int r, Outside outside)
{
    int64_t sum = 0;
    window(r, r, [&](int dx, int dy) { sum += sample(src, x + dx, y + dy, outside); });
    return sum;
}

template <class T>
T windowMedian(const Grid<T>& src, int x, int y, int halfWidth, int halfHeight, Outside outside)
{
    std::vector<int64_t> values;
    window(halfWidth, halfHeight, [&](int dx, int dy) { values.push_back(sample(src, x + dx, y + dy, outside)); });
    std::sort(values.begin(), values.end());
    return static_cast<T>(values[values.size() / 2]);
}

// Runs a filter of (src, width, height, dst, border) and compares it with the definition: interior sums shifted,
// border sums divided by the weights inside; the border untouched unless the flag is 1.
template <class T, class Filter>
void expectBinomial(Filter filter, const std::vector<int>& weights, int shift, const Grid<T>& src)
{
    const int r = static_cast<int>(weights.size()) / 2;
    constexpr T untouched = 77;
    for (const int border : {0, 1, 2}) {
        Grid<T> dst(src.width, src.height, untouched);
        filter(src.data(), src.w(), src.h(), dst.data(), border);
        expectPixels(dst, [&](int x, int y) {
            const Taps taps = binomial(src, x, y, weights);
            if (!src.border(x, y, r)) return taps.sum >> shift;
            return border == 1 ? taps.sum / taps.weight : untouched;
        });
    }
}

int64_t mean(const Grid<uint8_t>& src, int x, int y, int r, int64_t reciprocal, Outside outside = {})
{
    return (windowSum(src, x, y, r, outside) * reciprocal + 32768) >> 16;
}

Outside outsideOf(odxBorderType type, int64_t constant)
{
    return {type == ONDRIX_BORDER_REPLICATE, type == ONDRIX_BORDER_CONSTANT ? constant : 0};
}

} // namespace

// Some rows are longer than the pieces in which they are worked on.
TEST_F(Smoothing, GaussiansAreTheirKernels)
{
    for (const auto& [width, height] : {std::pair{7, 3}, {8, 2}, {13, 11}, {30, 21}, {522, 11}}) {
        expectBinomial<uint8_t>(odxFilterGaussian3x3u8, kBinomial3, 4, noise<uint8_t>(width, height, 0, 255));
        expectBinomial<int16_t>(odxFilterGaussian5x5s16, kBinomial5, 8,
                                noise<int16_t>(width, height, -32768, 32767));
        if (height < 5) continue;
        expectBinomial<uint8_t>(odxFilterGaussian5x5u8, kBinomial5, 8, noise<uint8_t>(width, height, 0, 255));
        expectBinomial<int32_t>(odxFilterGaussian5x5s32, kBinomial5, 8,
                                noise<int32_t>(width, height, -(1 << 22), 1 << 22));
        if (height < 11) continue;
        expectBinomial<uint8_t>(odxFilterGaussian11x11u8, kBinomial11, 20, noise<uint8_t>(width, height, 0, 255));
    }
}

// Filters images that are packed, as functions without strides take them, and the same between other columns.
template <class T, class Packed, class Strided>
void expectStrides(const char* name, Packed packed, Strided strided)
{
    const auto src = noise<T>(16, 16, 0, 255);
    auto wideSrc = noise<T>(21, 16, 0, 255);
    Grid<T> dst(16, 16, 77), wideDst(19, 16, 77);
    packed(src.data(), 16u, 16u, dst.data());
    for (int y = 0; y < 16; ++y)
        std::copy_n(&src.at(0, y), 16, &wideSrc.at(0, y));
    strided(wideSrc.data(), 16u, 16u, wideSrc.stride(), wideDst.data(), wideDst.stride());
    expectPixels(
        wideDst, [&](int x, int y) { return x < 16 ? dst.at(x, y) : 77; }, name);
}

TEST_F(Smoothing, StridesLeadFromRowToRow)
{
#define ODX_STRIDES(T, name) \
    expectStrides<T>(        \
        #name, [](auto... a) { name(a..., 1); }, [](auto... a) { name##_v2(a..., 1); })
    ODX_STRIDES(uint8_t, odxFilterGaussian3x3u8);
    ODX_STRIDES(uint8_t, odxFilterGaussian5x5u8);
    ODX_STRIDES(uint8_t, odxFilterGaussian11x11u8);
    ODX_STRIDES(int16_t, odxFilterGaussian5x5s16);
    ODX_STRIDES(int32_t, odxFilterGaussian5x5s32);
#undef ODX_STRIDES
    expectStrides<uint8_t>("median", odxFilterMedian3x3u8, odxFilterMedian3x3u8_v2);
}

TEST_F(Smoothing, WideSumsWrap)
{
    // 256 times 2^24 is 2^32: the sum is 0; one less a pixel wraps to -256.
    const Grid<int32_t> full(5, 5, 1 << 24), less(5, 5, (1 << 24) - 1);
    Grid<int32_t> dst(5, 5, 9);
    odxFilterGaussian5x5s32(full.data(), 5, 5, dst.data(), 0);
    EXPECT_EQ(0, dst.at(2, 2));
    odxFilterGaussian5x5s32(less.data(), 5, 5, dst.data(), 0);
    EXPECT_EQ(-1, dst.at(2, 2));
}

TEST_F(Smoothing, NegativeSumsRoundDownInsideAndTowardZeroAtTheBorder)
{
    Grid<int16_t> src(9, 9), dst(9, 9);
    src.at(3, 3) = -1;
    odxFilterGaussian5x5s16(src.data(), 9, 9, dst.data(), 1);
    EXPECT_EQ(-1, dst.at(2, 2)); // -16 >> 8
    EXPECT_EQ(-1, dst.at(5, 5)); // -1 >> 8
    EXPECT_EQ(0, dst.at(1, 1));  // -1 / 121
    EXPECT_EQ(0, dst.at(6, 6));  // out of its reach
    const Grid<int16_t> uniform(9, 9, -1);
    odxFilterGaussian5x5s16(uniform.data(), 9, 9, dst.data(), 1);
    EXPECT_EQ(uniform, dst);
}

TEST_F(Smoothing, BorderTypesFillInWhatIsMissing)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 4}, {5, 1}, {2, 2}, {3, 3}, {9, 6}, {522, 2}}) {
        const auto src = noise<uint8_t>(width, height, 0, 255);
        for (const odxBorderType type : kBorderTypes) {
            constexpr uint32_t value = 0x1C8; // its low 8 bits count: 200
            const Outside outside = outsideOf(type, 200);
            Grid<uint8_t> gaussian(width, height, 7), box(width, height, 7), median(width, height, 7);
            EXPECT_EQ(ONDRIX_SUCCESS,
                      odxFilterGaussian3x3u8_v3(src.data(), src.w(), src.h(), 0, gaussian.data(), 0, type, value));
            EXPECT_EQ(ONDRIX_SUCCESS,
                      odxBoxFilter3x3u8_v2(src.data(), src.w(), src.h(), 0, box.data(), 0, type, value));
            EXPECT_EQ(ONDRIX_SUCCESS,
                      odxFilterMedian3x3u8_v3(src.data(), src.w(), src.h(), 0, median.data(), 0, type, value));
            const auto unknown = [&, t = type](int x, int y) {
                return src.border(x, y, 1) && t == ONDRIX_BORDER_UNDEFINED;
            };
            expectPixels(gaussian, [&](int x, int y) {
                const Taps inside = binomial(src, x, y, kBinomial3);
                int64_t full = 0;
                window(1, 1, [&](int dx, int dy) {
                    full += (2 - std::abs(dx)) * (2 - std::abs(dy)) * sample(src, x + dx, y + dy, outside);
                });
                return unknown(x, y) ? inside.sum / inside.weight : full >> 4;
            });
            expectPixels(box, [&](int x, int y) { return mean(src, x, y, 1, 7282, outside); });
            expectPixels(median,
                         [&](int x, int y) { return unknown(x, y) ? 7 : windowMedian(src, x, y, 1, 1, outside); });
        }
    }
}

TEST_F(Smoothing, BoxesDivideByTheirWholeWindow)
{
    for (const auto& [width, height] : {std::pair{11, 11}, {12, 17}, {40, 13}}) {
        for (const auto& src : {noise<uint8_t>(width, height, 0, 255), Grid<uint8_t>(width, height, 255)}) {
            const auto expect = [&](auto operation, int r, int64_t reciprocal) {
                Grid<uint8_t> dst(src.width + 3, src.height, 77);
                operation(src.data(), src.w(), src.h(), src.w(), dst.data(), dst.w());
                expectPixels(dst,
                             [&](int x, int y) { return x < src.width ? mean(src, x, y, r, reciprocal) : 77; });
            };
            expect(odxBoxFilter3x3u8, 1, 7282);
            expect(odxBoxFilter5x5u8, 2, 2621);
            expect(odxBoxFilter11x11u8, 5, 542);
        }
    }
}

TEST_F(Smoothing, FloatBoxesReachFurtherToTheLeftForAnEvenN)
{
    // Whole numbers: float sums are exact, up to the reciprocal.
    for (const int n : {2, 3, 4, 7, 30}) {
        const auto grey = noise<uint8_t>(19, 9, 0, 255);
        Grid<float> src(19, 9), dst(22, 9, 77);
        std::copy(grey.pixels.begin(), grey.pixels.end(), src.pixels.begin());
        odxBoxFilterNxNf32(src.data(), 19, 9, 0, static_cast<unsigned>(n), dst.data(), dst.stride());
        expectPixels(dst, [&, n = n](int x, int y) {
            int sum = 0;
            for (int i = 0; i < n * n; ++i) {
                const int u = x - n / 2 + i % n, v = y - n / 2 + i / n;
                sum += grey.holds(u, v) ? grey.at(u, v) : 0;
            }
            return x < 19 ? static_cast<float>(sum) * (1.0f / static_cast<float>(n * n)) : 77;
        });
    }
}

TEST_F(Smoothing, MediansAreTheMiddleOfTheirWindow)
{
    for (const auto& [width, height] : {std::pair{1, 9}, {2, 5}, {3, 2}, {3, 3}, {17, 12}}) {
        const auto src = noise<uint8_t>(width, height, 0, 12); // many ties
        Grid<uint8_t> dst(width, height, 77);
        odxFilterMedian3x3u8(src.data(), src.w(), src.h(), dst.data());
        expectPixels(dst,
                     [&](int x, int y) { return src.border(x, y, 1) ? 77 : windowMedian(src, x, y, 1, 1, {}); });
    }
    // Of a few pixels, and of more than are taken at a time.
    for (const auto& [width, m, n] : {std::tuple{17, 3, 3},
                                      {17, 5, 3},
                                      {17, 3, 7},
                                      {17, 9, 5},
                                      {17, 15, 15},
                                      {34, 3, 5},
                                      {77, 5, 5},
                                      {98, 15, 3}}) {
        for (const int range : {2, 100, 32767}) {
            const auto src = noise<int16_t>(width, 16, -range - 1, range);
            Grid<int16_t> dst(width + 3, 16, 77);
            ASSERT_EQ(ONDRIX_SUCCESS,
                      odxFilterMedianMxNs16(src.data(), src.w(), src.h(), src.stride(), static_cast<unsigned>(m),
                                            static_cast<unsigned>(n), dst.data(), dst.stride()));
            expectPixels(dst, [&, w = width, m = m, n = n](int x, int y) -> int16_t {
                if (x >= w) return 77;
                const bool border = x < m / 2 || x >= w - m / 2 || y < n / 2 || y >= 16 - n / 2;
                return border ? src.at(x, y) : windowMedian(src, x, y, m / 2, n / 2, {});
            });
        }
    }
}

// More pixels in a window than 16 bits count.
TEST_F(Smoothing, LargeWindowsHaveMediansToo)
{
    const Grid<int16_t> src(290, 255, 5);
    Grid<int16_t> dst(290, 255, 77);
    ASSERT_EQ(ONDRIX_SUCCESS, odxFilterMedianMxNs16(src.data(), src.w(), src.h(), src.stride(), 259, 255,
                                                    dst.data(), dst.stride()));
    EXPECT_EQ(src, dst);
}

// A median and a mean of images whose temporary memory cannot be had, in these sizes.
void expectUnwritten(uint32_t window, uint32_t boxWidth, uint32_t boxHeight)
{
    const Grid<int16_t> src(9, 9, 5);
    Grid<int16_t> dst(9, 9, 77);
    EXPECT_EQ(ONDRIX_NO_MEMORY,
              odxFilterMedianMxNs16(src.data(), 9, 9, src.stride(), window, window, dst.data(), dst.stride()));
    EXPECT_EQ((Grid<int16_t>(9, 9, 77)), dst);

    const Grid<float> real(9, 40, 5);
    Grid<float> box(9, 40, 77);
    LogCapture log;
    odxBoxFilterNxNf32(real.data(), boxWidth, boxHeight, 0, 3, box.data(), 0);
    EXPECT_EQ((Grid<float>(9, 40, 77)), box);
    const LogLine line = {6, "ondrix_lib_log", "Error - can not allocate scratch buffer for odxBoxFilterNxNf32C"};
    EXPECT_EQ(std::vector<LogLine>{line}, log.take());
}

TEST_F(Smoothing, WithoutTemporaryMemoryNothingIsWritten)
{
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU}) {
        const ScratchWatch watch(ScratchWatch::kAll);
        EXPECT_EQ(0, odxSetOperationMode(mode));
        expectUnwritten(3, 9, 40);
    }
    // Sizes of which 32 bits hold a small remainder.
    EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE));
    expectUnwritten(65537, 65536, 65536);
}

TEST(SmoothingChecks, NarrowImagesEndTheProcessInTheReference)
{
    expectEnd("^6/ondrix_lib_log: ondrixBlurC@79: w6<=w_2 && w6>=w_2-5 Assertion failed\n\n$", [] {
        EXPECT_EQ(0, odxSetOperationMode(ONDRIX_OP_EXT_REFERENCE));
        uint8_t src[60] = {}, dst[60];
        odxFilterGaussian3x3u8C(src, 5, 12, 5, dst, 5, 0);
    });
}
