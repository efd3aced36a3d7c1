// The convolutions against their definition.
#include "ondrix.h"
#include "support/drawings.h"
#include "support/referenceTest.h"

#include <gtest/gtest.h>

#include <limits>

using namespace odx::test;

namespace
{

class Convolution : public odx::test::ReferenceTest
{
};

using Kernel = Grid<int64_t>; // as it meets the pixels of a window

// The low 32 bits of a sum, rounded and shifted.
int64_t scaled(int64_t sum, unsigned shift)
{
    const int64_t half = shift != 0 ? int64_t{1} << (shift - 1) : 0;
    return int64_t{static_cast<int32_t>(static_cast<uint32_t>(sum + half))} >> shift;
}

// The pixel whose window begins at left, top.
template <class D, class S>
D filtered(const Grid<S>& src, const Kernel& kernel, int left, int top, unsigned shift, Outside outside = {})
{
    int64_t sum = 0;
    for (int i = 0; i < kernel.height; ++i) {
        for (int j = 0; j < kernel.width; ++j)
            sum += kernel.at(j, i) * sample(src, left + j, top + i, outside);
    }
    return static_cast<D>(
        std::clamp<int64_t>(scaled(sum, shift), std::numeric_limits<D>::min(), std::numeric_limits<D>::max()));
}

template <class T>
Kernel kernelOf(const std::vector<T>& across, const std::vector<T>& down)
{
    return drawn<int64_t>(static_cast<int>(across.size()), static_cast<int>(down.size()),
                          [&](int j, int i) { return int64_t{across.begin()[j]} * down.begin()[i]; });
}

Kernel turned(const Kernel& kernel)
{
    Kernel result = kernel;
    std::reverse(result.pixels.begin(), result.pixels.end());
    return result;
}

std::vector<int16_t> weights(int count, int most)
{
    return noise<int16_t>(count, 1, -most - 1, most).pixels;
}

// All pixels of an image filtered with a border type, the window being that of the kernel.
template <class D, class S>
void expectBordered(const Grid<S>& src, const Kernel& kernel, unsigned shift, odxBorderType type, S value,
                    const Grid<D>& dst)
{
    const int r = kernel.width / 2, s = kernel.height / 2;
    expectPixels(
        dst,
        [&](int x, int y) {
            const bool inside = x >= r && y >= s && x < src.width - r && y < src.height - s;
            if (!inside && type == ONDRIX_BORDER_UNDEFINED) return D{77};
            return filtered<D>(src, kernel, x - r, y - s, shift, {type == ONDRIX_BORDER_REPLICATE, value});
        },
        "kernel of " + std::to_string(kernel.width) + ", type " + std::to_string(type) + ", shift " +
            std::to_string(shift));
}

constexpr odxBorderType kBorders[] = {ONDRIX_BORDER_UNDEFINED, ONDRIX_BORDER_CONSTANT, ONDRIX_BORDER_REPLICATE};

} // namespace

TEST_F(Convolution, RoundsBetweenThePassesOfFixedSizes)
{
    const struct {
        int size;
        decltype(odxFilterCorrSep9x9s16)* packed;
        decltype(odxFilterCorrSep9x9s16_v2)* strided;
    } sizes[] = {{9, odxFilterCorrSep9x9s16, odxFilterCorrSep9x9s16_v2},
                 {11, odxFilterCorrSep11x11s16, odxFilterCorrSep11x11s16_v2},
                 {13, odxFilterCorrSep13x13s16, odxFilterCorrSep13x13s16_v2},
                 {15, odxFilterCorrSep15x15s16, odxFilterCorrSep15x15s16_v2},
                 {17, odxFilterCorrSep17x17s16, odxFilterCorrSep17x17s16_v2},
                 {3, nullptr, nullptr},
                 {31, nullptr, nullptr}};
    for (const auto& [n, packed, strided] : sizes) {
        for (const int most : {32768 / n, 32767}) { // sums wrap with the latter
            const std::vector<int16_t> across = weights(n, most), down = weights(n, most);
            const Kernel row = kernelOf<int16_t>(across, {1}), column = kernelOf<int16_t>({1}, down);
            const Grid<int16_t> src = noise<int16_t>(n + 300 % n, n + 4, -32768, 32767);
            const auto between = drawn<int16_t>(src.width, src.height, [&, r = n / 2](int x, int y) {
                return filtered<int16_t>(src, column, x, y - r, 15, {true, 0});
            });
            const auto expected = drawn<int16_t>(src.width, src.height, [&, r = n / 2](int x, int y) {
                return src.border(x, y, r) ? int16_t{77} : filtered<int16_t>(between, row, x - r, y, 15);
            });
            Grid<int16_t> dst(src.width, src.height, 77), any = dst;
            odxFilterCorrSepNxNs16(across.data(), down.data(), static_cast<unsigned>(n), src.data(), src.w(),
                                   src.h(), 0, any.data(), 0);
            EXPECT_EQ(expected, any) << n;
            if (packed == nullptr) continue;
            packed(across.data(), down.data(), src.data(), src.w(), src.h(), dst.data());
            EXPECT_EQ(expected, dst) << n;
            dst = Grid<int16_t>(src.width, src.height, 77);
            strided(across.data(), down.data(), src.data(), src.w(), src.h(), 0, dst.data(), 0);
            EXPECT_EQ(expected, dst) << n;
        }
    }
}

TEST_F(Convolution, TurnsKernelsWhereCorrelationDoesNot)
{
    const std::vector<int16_t> nine = {1, 2, 3, 4, 5, 6, 7, 8, 9}, across = {1, 2, 3}, down = {1, 10, 100};
    Grid<uint8_t> point(5, 5, 0), dst(5, 5, 77);
    point.at(2, 2) = 1;
    EXPECT_EQ(0, odxFilterConvolveMxNu8(nine.data(), 3, 3, 0, point.data(), 5, 5, 0, dst.data(), 0,
                                        ONDRIX_BORDER_CONSTANT, 0));
    EXPECT_EQ((std::vector<uint8_t>{0, 0, 0, 0, 0, 0, 1, 2, 3, 0, 0, 4, 5, 6, 0, 0, 7, 8, 9, 0, 0, 0, 0, 0, 0}),
              dst.pixels);
    EXPECT_EQ(0, odxFilterCorrSepMxNu8(across.data(), 3, down.data(), 3, 0, point.data(), 5, 5, 0, dst.data(), 0,
                                       ONDRIX_BORDER_UNDEFINED, 0));
    EXPECT_EQ((std::vector<uint8_t>{255, 200, 100, 30, 20, 10, 3, 2, 1}),
              (std::vector<uint8_t>{dst.at(1, 1), dst.at(2, 1), dst.at(3, 1), dst.at(1, 2), dst.at(2, 2),
                                    dst.at(3, 2), dst.at(1, 3), dst.at(2, 3), dst.at(3, 3)}));
}

TEST_F(Convolution, SumsOfBytesAreExact)
{
    for (const auto& [m, n] : {std::pair{1, 1}, {3, 3}, {15, 1}, {1, 9}, {5, 15}}) {
        const auto M = static_cast<unsigned>(m), N = static_cast<unsigned>(n);
        for (const auto& [width, height] : {std::pair{1, 1}, {m + 2, n + 1}, {270, 37}}) {
            const Grid<uint8_t> src = noise<uint8_t>(width, height, 0, 255);
            const unsigned shift = width == 1 ? 0 : 15;
            for (const odxBorderType type : kBorders) {
                const std::vector<int16_t> all = weights(m * n, width == 1 ? 200 : 32767),
                                           across = weights(m, 300), down = weights(n, type == 1 ? 20 : 300);
                Kernel kernel(m, n);
                std::copy(all.begin(), all.end(), kernel.pixels.begin());
                Grid<uint8_t> dst(width, height, 77), separable = dst;
                Grid<int16_t> wide(width, height, 77);
                EXPECT_EQ(0, odxFilterConvolveMxNu8(all.data(), M, N, shift, src.data(), src.w(), src.h(), 0,
                                                    dst.data(), 0, type, 256 + 99));
                expectBordered<uint8_t, uint8_t>(src, turned(kernel), shift, type, 99, dst);
                EXPECT_EQ(0, odxFilterConvolveMxNu8s16(all.data(), M, N, shift, src.data(), src.w(), src.h(), 0,
                                                       wide.data(), 0, type, 256 + 99));
                expectBordered<int16_t, uint8_t>(src, turned(kernel), shift, type, 99, wide);
                EXPECT_EQ(0, odxFilterCorrSepMxNu8(across.data(), M, down.data(), N, shift, src.data(), src.w(),
                                                   src.h(), 0, separable.data(), 0, type, 256 + 99));
                expectBordered<uint8_t, uint8_t>(src, kernelOf(across, down), shift, type, 99, separable);
            }
        }
    }
}

// 257 * 255 is the greatest sum of a column that has 16 bits.
TEST_F(Convolution, ColumnsOfBytesMayHaveMoreThan16Bits)
{
    const std::vector<int16_t> one = {1};
    const Grid<uint8_t> src(70, 3, 255);
    for (const odxOperationMode mode : {ONDRIX_OP_EXT_REFERENCE, ONDRIX_OP_EXT_CPU}) {
        EXPECT_EQ(0, odxSetOperationMode(mode));
        for (const int middle : {85, 86, 87, -85, -86}) {
            const std::vector<int16_t> down = {86, static_cast<int16_t>(middle), 86};
            Grid<uint8_t> dst(70, 3, 77);
            EXPECT_EQ(0, odxFilterCorrSepMxNu8(one.data(), 1, down.data(), 3, 9, src.data(), 70, 3, 0, dst.data(),
                                               0, ONDRIX_BORDER_REPLICATE, 0));
            EXPECT_EQ(Grid<uint8_t>(70, 3, static_cast<uint8_t>(((172 + middle) * 255 + 256) >> 9)), dst);
        }
    }
}

TEST_F(Convolution, SumsOfWordsWrap)
{
    for (const auto& [m, n] : {std::pair{1, 1}, {3, 5}, {31, 7}, {1, 31}}) {
        const auto M = static_cast<unsigned>(m), N = static_cast<unsigned>(n);
        const Grid<int16_t> src = noise<int16_t>(m + 4, n + 3, -32768, 32767);
        for (const unsigned shift : {0u, 1u, 16u, 30u, 31u}) {
            for (const uint32_t symmetry : {0u, 1u, 2u}) {
                std::vector<int16_t> across = weights(m, shift < 16 ? 3 : 32766), down = weights(n, 3);
                for (size_t i = 0; i < across.size() && symmetry != 0; ++i) {
                    const size_t mirrored = across.size() - 1 - i;
                    if (symmetry == 2 && i == mirrored) across[i] = 0;
                    if (i > mirrored)
                        across[i] = static_cast<int16_t>(symmetry == 1 ? across[mirrored] : -across[mirrored]);
                }
                const Kernel kernel = turned(kernelOf(across, down));
                // What is not to be read.
                std::vector<int16_t> given = across;
                for (size_t i = across.size() / 2 + (symmetry == 1 ? 1 : 0); i < across.size() && symmetry != 0;
                     ++i)
                    given[i] = 1234;
                const auto convolve = [&](odxFilterRegion region, odxBorderType type, Grid<int16_t>& dst) {
                    EXPECT_EQ(0, odxFilterConvSepMxNs16(given.data(), M, static_cast<odxKernelSymmetry>(symmetry),
                                                        down.data(), N, ONDRIX_KERNEL_GENERAL, shift, src.data(),
                                                        src.w(), src.h(), 0, dst.data(), 0, region, type,
                                                        0x10000 - 99));
                };
                for (const odxBorderType type : kBorders) {
                    Grid<int16_t> dst(src.width, src.height, 77);
                    convolve(ONDRIX_FILTER_SAME, type, dst);
                    expectBordered<int16_t, int16_t>(src, kernel, shift, type, -99, dst);
                }
                Grid<int16_t> dst(5, 4);
                convolve(ONDRIX_FILTER_VALID, ONDRIX_BORDER_REPLICATE, dst);
                expectPixels(dst, [&](int x, int y) { return filtered<int16_t>(src, kernel, x, y, shift); });
            }
        }
    }
}

TEST_F(Convolution, KernelsOfAnySizeStayInside)
{
    for (const auto& [m, n] : {std::pair{1, 1}, {2, 2}, {4, 3}, {1, 6}, {700, 2}}) {
        const auto M = static_cast<unsigned>(m), N = static_cast<unsigned>(n);
        const Grid<int16_t> src = noise<int16_t>(m + 5, n + 2, -32768, 32767);
        for (const unsigned shift : {0u, 14u, 31u}) {
            const std::vector<int16_t> all = weights(m * n, shift == 0 ? 2 : 32767);
            Kernel kernel(m, n);
            std::copy(all.begin(), all.end(), kernel.pixels.begin());
            Grid<int16_t> dst(6, 3);
            odxConvValids16(all.data(), M, N, shift, src.data(), src.w(), src.h(), 0, dst.data(), 0);
            expectPixels(dst, [&](int x, int y) { return filtered<int16_t>(src, turned(kernel), x, y, shift); });
        }
    }
}
