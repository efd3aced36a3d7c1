// The correlations against their definition.
#include "ondrix.h"
#include "support/pictures.h"
#include "support/referenceTest.h"

using namespace odx::test;

namespace
{

class Correlation : public odx::test::ReferenceTest
{
};

using Image = Grid<uint8_t>;

// Compares every output with value(left, top), of a window's corner; the others stay.
template <class T, class Value>
void expectInterior(const Image& src, int n, const Grid<T>& dst, Value value, const std::string& what)
{
    const int r = n / 2;
    expectPixels(
        dst,
        [&](int x, int y) {
            const bool inside = x >= r && y >= r && x <= src.width - 1 - r && y <= src.height - 1 - r;
            return inside ? value(x - r, y - r) : T(77);
        },
        what);
}

int64_t sum(const Image& src, const Grid<int8_t>& kernel, int left, int top)
{
    int64_t s = 0;
    for (int i = 0; i < kernel.height; ++i) {
        for (int j = 0; j < kernel.width; ++j)
            s += int64_t{kernel.at(j, i)} * src.at(left + j, top + i);
    }
    return s;
}

// The low 32 bits of sum * 2^-shift, as a signed number.
int64_t shifted(int64_t sum, int64_t shift)
{
    if (shift > 0) return shift > 40 ? (sum < 0 ? -1 : 0) : sum >> shift;
    return shift < -31 ? 0 : int64_t{static_cast<int32_t>(static_cast<uint32_t>(sum * (int64_t{1} << -shift)))};
}

} // namespace

TEST_F(Correlation, SumsAreShiftedAndClamped)
{
    for (const int n : {1, 2, 3, 4, 7, 8}) {
        Grid<int8_t> over(n, n), under(n, n); // three products of 43 * 255 do not fit 16 bits
        for (int i = 0; i < n; ++i)
            over.at(i, i) = 43, under.at(n - 1, i) = -43;
        const Grid<int8_t> kernels[] = {
            noise<int8_t>(n, n, -128, 127), noise<int8_t>(n, n, -9, 20), {n, n, 127}, {n, n, -128}, over, under};
        const auto expect = [&, n = n](const Image& src, int s, auto least, auto most, auto operation) {
            using T = decltype(least);
            for (const Grid<int8_t>& kernel : kernels) {
                Grid<T> dst(src.width, src.height, 77);
                operation(kernel.data(), static_cast<unsigned>(n), s, src.data(), src.w(), src.h(), 0, dst.data(),
                          0);
                expectInterior<T>(
                    src, n, dst,
                    [&](int x, int y) {
                        return static_cast<T>(
                            std::clamp<int64_t>(shifted(sum(src, kernel, x, y), s), least, most));
                    },
                    std::to_string(n) + ", shift " + std::to_string(s));
            }
        };
        for (const Image& src : {noise<uint8_t>(n + 9, n + 3, 0, 255), noise<uint8_t>(2, 5, 0, 255),
                                 noise<uint8_t>(300, n + 1, 0, 255), Image(n + 2, n + 1, 255)}) {
            for (const int shift : {-2147483647 - 1, -32, -31, -9, -1, 0, 1, 4, 11, 31, 32, 2147483647}) {
                expect(src, shift, uint8_t{0}, uint8_t{255}, odxFilterCorrNxNu8);
                expect(src, shift, int16_t{-32768}, int16_t{32767}, odxFilterCorrNxNu8s16);
            }
            if (n != 3) continue; // those of 3x3 pixels are in sixteenths
            expect(src, 4, uint8_t{0}, uint8_t{255},
                   [](auto k, auto, auto, auto from, auto w, auto h, auto, auto to, auto) {
                       odxFilterCorr3x3s8(k, from, w, h, to);
                   });
            expect(src, 4, uint8_t{0}, uint8_t{255},
                   [](auto k, auto, auto, auto... images) { odxFilterCorr3x3s8_v2(k, images...); });
        }
    }
}

// 300 * 300 * 127 * 255 is 2^31 and more: it wraps to a negative number.
TEST_F(Correlation, HugeSumsWrap)
{
    const Grid<int8_t> kernel(300, 300, 127);
    const Image src(302, 302, 255);
    Image dst(302, 302, 77);
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU}) {
        EXPECT_EQ(0, odxSetOperationMode(mode));
        EXPECT_EQ(0, odxFilterCorrNxNu8(kernel.data(), 300, 24, src.data(), 302, 302, 0, dst.data(), 0));
        EXPECT_EQ(0, dst.at(150, 150));
        EXPECT_EQ(77, dst.at(152, 152));
    }
}

TEST_F(Correlation, FloatSumsKeepTheOrderOfTheWeights)
{
    for (const int n : {1, 2, 3, 6}) {
        const Image src = noise<uint8_t>(n + 8, n + 2, 0, 255);
        Grid<float> kernel(n, n);
        float weight = 3e7F;
        for (float& k : kernel.pixels)
            k = weight *= -0.37F;
        Grid<float> dst(src.width, src.height, 77);
        EXPECT_EQ(0, odxFilterCorrNxNu8f32(kernel.data(), static_cast<unsigned>(n), src.data(), src.w(), src.h(),
                                           0, dst.data(), 0));
        expectInterior<float>(
            src, n, dst,
            [&](int x, int y) {
                volatile float total = 0; // rounded each time
                for (int i = 0; i < n * n; ++i) {
                    volatile float product =
                        kernel.at(i % n, i / n) * static_cast<float>(src.at(x + i % n, y + i / n));
                    total = total + product;
                }
                return static_cast<float>(total);
            },
            std::to_string(n));
    }
}
