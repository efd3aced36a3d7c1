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

// Runs a filter of (src, width, height, dst, border), and the same with strides, and compares both with the
// definition: interior sums, which wrap, shifted; border sums divided by the weights inside; the border untouched
// unless the flag is 1.
template <class T, class Packed, class Strided>
void expectBinomial(Packed packed, Strided strided, const std::vector<int>& weights, int shift, const Grid<T>& src)
{
    const int r = static_cast<int>(weights.size()) / 2;
    constexpr T untouched = 77;
    for (const int border : {0, 1, 2}) {
        Grid<T> dst(src.width, src.height, untouched), wide(src.width + 3, src.height, untouched);
        packed(src.data(), src.w(), src.h(), dst.data(), border);
        strided(src.data(), src.w(), src.h(), 0, wide.data(), wide.stride(), border);
        expectPixels(dst, [&](int x, int y) {
            const Taps taps = binomial(src, x, y, weights);
            const int64_t sum = static_cast<int32_t>(static_cast<uint32_t>(taps.sum));
            if (!src.border(x, y, r)) return sum >> shift;
            return border == 1 ? sum / taps.weight : untouched;
        });
        expectPixels(wide, [&](int x, int y) { return x < src.width ? dst.at(x, y) : untouched; });
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
        const auto bytes = noise<uint8_t>(width, height, 0, 255);
        expectBinomial(odxFilterGaussian3x3u8, odxFilterGaussian3x3u8_v2, kBinomial3, 4, bytes);
        expectBinomial(odxFilterGaussian5x5s16, odxFilterGaussian5x5s16_v2, kBinomial5, 8,
                       noise<int16_t>(width, height, -32768, 32767));
        if (height < 5) continue;
        expectBinomial(odxFilterGaussian5x5u8, odxFilterGaussian5x5u8_v2, kBinomial5, 8, bytes);
        for (const int64_t most : {1 << 22, 0x7FFFFFFF})
            expectBinomial(odxFilterGaussian5x5s32, odxFilterGaussian5x5s32_v2, kBinomial5, 8,
                           noise<int32_t>(width, height, -most - 1, most));
        if (height < 11) continue;
        expectBinomial(odxFilterGaussian11x11u8, odxFilterGaussian11x11u8_v2, kBinomial11, 20, bytes);
    }
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
        Grid<uint8_t> dst(width, height, 77), strided = dst;
        odxFilterMedian3x3u8(src.data(), src.w(), src.h(), dst.data());
        odxFilterMedian3x3u8_v2(src.data(), src.w(), src.h(), 0, strided.data(), 0);
        EXPECT_EQ(dst, strided);
        expectPixels(dst,
                     [&](int x, int y) { return src.border(x, y, 1) ? 77 : windowMedian(src, x, y, 1, 1, {}); });
    }
    // Of a few pixels, and of more than are taken at a time.
    const int sizes[][3] = {{17, 3, 3},   {17, 5, 3}, {17, 3, 7}, {17, 9, 5},
                            {51, 19, 15}, {34, 3, 5}, {77, 5, 5}, {98, 15, 3}};
    for (const auto& [width, m, n] : sizes) {
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
